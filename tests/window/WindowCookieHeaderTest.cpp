#include "AddedHeader.h"
#include "CookieQueries.h"
#include "WindowTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Cookies that a response itself brings. The operation looks for "sid" and for the error "err".
class WindowCookieHeaderTest : public OpenWindowTest {
protected:
    // Answers a cookie operation with a page that has this header.
    void BrowseToPageWithHeader(const std::string& setCookie, const HttpResponse& response) {
        m_server.Serve("/page", response);
        const AddedHeader header(View(), m_server.Url("/page"), setCookie);
        Send(
            Operation::BrowseForCookie(m_server.Url("/page"), m_server.Url("/page"), "sid", "err"));
        ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
        // An operation that no header has decided asks for the stored cookies; there are none.
        ASSERT_TRUE(WaitForCookieQueries(View()));
        EXPECT_TRUE(header.IsDelivered());
    }
};

/// A header and what it makes of the operation.
struct HeaderCase {
    const char* name;
    const char* header;
    std::vector<std::string> results;
};

void PrintTo(const HeaderCase& header, std::ostream* stream) {
    *stream << header.name;
}

std::string NameOf(const testing::TestParamInfo<HeaderCase>& info) {
    return info.param.name;
}

class WindowHeaderValueTest : public WindowCookieHeaderTest,
                              public testing::WithParamInterface<HeaderCase> {};

/// A response whose header does not count.
struct ResponseCase {
    const char* name;
    unsigned status;
    const char* contentType;
    std::vector<std::string> results;
};

void PrintTo(const ResponseCase& response, std::ostream* stream) {
    *stream << response.name;
}

std::string NameOfResponse(const testing::TestParamInfo<ResponseCase>& info) {
    return info.param.name;
}

class WindowHeaderResponseTest : public WindowCookieHeaderTest,
                                 public testing::WithParamInterface<ResponseCase> {};

}  // namespace

TEST_P(WindowHeaderValueTest, DecidesTheOperation) {
    BrowseToPageWithHeader(GetParam().header, {200, "hello"});
    EXPECT_EQ(Results(), GetParam().results);
    EXPECT_THAT(LogLines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Headers, WindowHeaderValueTest,
    testing::Values(HeaderCase{"TheCookie", "sid=abc; Path=/", {"success_with_cookie abc"}},
                    HeaderCase{"TheErrorCookie", "err=E7; Path=/", {"error_cookie E7"}},
                    HeaderCase{"TheCookieBeforeTheErrorCookie",
                               "err=E7; Path=/, sid=abc; Path=/",
                               {"success_with_cookie abc"}},
                    HeaderCase{"TheFirstOccurrenceInALongerName",
                               "presid=7; sid=9;",
                               {"success_with_cookie 7"}},
                    HeaderCase{"NoSemicolon", "sid=abc", {}},
                    HeaderCase{"EmptyValue", "sid=; Path=/", {}},
                    HeaderCase{"EmptyValueWithErrorCookie", "sid=; err=E7;", {"error_cookie E7"}},
                    HeaderCase{"AnotherCookie", "other=abc; Path=/", {}}),
    NameOf);

TEST_P(WindowHeaderResponseTest, DoesNotCount) {
    BrowseToPageWithHeader("sid=abc; Path=/", {GetParam().status, "hello", GetParam().contentType});
    EXPECT_EQ(Results(), GetParam().results);
}

INSTANTIATE_TEST_SUITE_P(
    Responses, WindowHeaderResponseTest,
    testing::Values(ResponseCase{"PlainText", 200, "text/plain", {}},
                    ResponseCase{"XhtmlPage", 200, "application/xhtml+xml", {}},
                    ResponseCase{"StatusAboveTheRange", 300, "text/html", {}},
                    ResponseCase{"HttpError", 404, "text/html", {"error_navi"}}),
    NameOfResponse);

TEST_F(WindowCookieHeaderTest, ComesBeforeThePageIsFinished) {
    m_server.ServeHalfUntilRelease("/page", {200, std::string(4000, 'x')});
    const AddedHeader header(View(), m_server.Url("/page"), "sid=abc; Path=/");
    Send(Operation::BrowseForCookie(m_server.Url("/page"), m_server.Url("/page"), "sid"));
    ASSERT_TRUE(WaitForResults(1));
    m_server.Release("/page");
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowCookieHeaderTest, CountsOnAnyPageOfTheFinalHost) {
    m_server.ServePage("/other", "hello");
    const AddedHeader header(View(), m_server.Url("/other"), "sid=abc; Path=/");
    Send(Operation::BrowseForCookie(m_server.Url("/other"), m_server.Url("/final"), "sid"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowCookieHeaderTest, CountsInAFrame) {
    m_server.ServePage("/page", "<iframe src='/frame'></iframe>");
    m_server.ServePage("/frame", "inner");
    const AddedHeader header(View(), m_server.Url("/frame"), "sid=abc; Path=/");
    Send(Operation::BrowseForCookie(m_server.Url("/page"), m_server.Url("/final"), "sid"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowCookieHeaderTest, DoesNotCountOnAnotherHost) {
    m_server.ServePage("/page", "hello");
    const AddedHeader header(View(), m_server.Url("/page"), "sid=abc; Path=/");
    Send(Operation::BrowseForCookie(m_server.Url("/page"), m_server.Url("/page", "localhost"),
                                    "sid"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    EXPECT_TRUE(header.IsDelivered());
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowCookieHeaderTest, DoesNotCountWithoutAFinalHost) {
    m_server.ServePage("/page", "hello");
    const AddedHeader header(View(), m_server.Url("/page"), "sid=abc; Path=/");
    Send(Operation::BrowseForCookie(m_server.Url("/page"), "no address", "sid"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    EXPECT_TRUE(header.IsDelivered());
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowCookieHeaderTest, DoesNotCountWithoutACookieToLookFor) {
    m_server.ServePage("/page", "hello");
    const AddedHeader header(View(), m_server.Url("/page"), "err=E7; Path=/");
    // The error cookie alone makes no cookie operation.
    Send(Operation::BrowseForCookie(m_server.Url("/page"), m_server.Url("/page"), "", "err"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_TRUE(header.IsDelivered());
    EXPECT_THAT(Results(), ElementsAre("success"));
}
