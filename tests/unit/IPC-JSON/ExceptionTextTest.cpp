#include "ExceptionText.h"

#include <gtest/gtest.h>

#include <boost/system/system_error.hpp>
#include <boost/thread/exceptions.hpp>
#include <cerrno>
#include <new>
#include <stdexcept>
#include <string>

namespace {

using boost::system::error_code;
using boost::system::system_category;
using boost::system::system_error;

/// What a version of Boost other than this one may say.
class OtherVersionsError : public system_error {
public:
    explicit OtherVersionsError(const char* text)
        : system_error(error_code(EMFILE, system_category())), m_text(text) {}
    [[nodiscard]] const char* what() const noexcept override { return m_text; }

private:
    const char* m_text;
};

TEST(ExceptionText, IsWhatAnOrdinaryExceptionSays) {
    EXPECT_STREQ(CExceptionText(std::runtime_error("no [system:24]")).Text(), "no [system:24]");
    EXPECT_STREQ(CExceptionText(std::bad_alloc()).Text(), "std::bad_alloc");
}

TEST(ExceptionText, HasNoNumberOfASystemError) {
    const system_error error(EMFILE, system_category(), "open");
    EXPECT_STREQ(CExceptionText(error).Text(), "open: Too many open files");
}

TEST(ExceptionText, HasNoNumberOfAThreadsError) {
    const boost::thread_resource_error error(EAGAIN, "boost::thread_resource_error");
    EXPECT_STREQ(CExceptionText(error).Text(),
                 "boost::thread_resource_error: Resource temporarily unavailable");
}

TEST(ExceptionText, IsTheSameWithEveryVersion) {
    for (const char* const text :
         {"open: Too many open files", "open: Too many open files [system:24]",
          "open: Too many open files [system:24 at client.cpp:54:9 in function 'open']"}) {
        EXPECT_STREQ(CExceptionText(OtherVersionsError(text)).Text(), "open: Too many open files");
    }
}

TEST(ExceptionText, StaysWholeWithoutTheErrorsMessage) {
    EXPECT_STREQ(CExceptionText(OtherVersionsError("open [failed]")).Text(), "open [failed]");
}

TEST(ExceptionText, IsCut) {
    const std::runtime_error error(std::string(1024, 'x'));
    EXPECT_EQ(CExceptionText(error).Text(), std::string(1023, 'x'));
}

}  // namespace
