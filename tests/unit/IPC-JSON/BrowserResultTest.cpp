#include "BrowserResult.h"

#include <gmock/gmock.h>

#include <type_traits>

#include "FailingLocale.h"
#include "LogCapture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

struct NamedResult {
    BrowserResultType type;
    const char* name;
};

constexpr NamedResult kResults[] = {
    {BrowserResultType::ready, "ready"},
    {BrowserResultType::cancel, "cancel"},
    {BrowserResultType::success, "success"},
    {BrowserResultType::success_with_cookie, "success_with_cookie"},
    {BrowserResultType::error_cookie, "error_cookie"},
    {BrowserResultType::error_navi, "error_navi"},
    {BrowserResultType::error_cert, "error_cert"},
    {BrowserResultType::error_timeout, "error_timeout"},
    {BrowserResultType::error_client_terminated, "error_client_terminated"},
    {BrowserResultType::error_unknown, "error_unknown"},
};

class BrowserResult : public ::testing::Test {
protected:
    LogCapture m_log;
};

TEST_F(BrowserResult, IsUndefinedAndEmptyAtFirst) {
    const CBrowserResult result;
    EXPECT_EQ(result.GetResultType(), BrowserResultType::undefined);
    EXPECT_STREQ(result.GetCookieValue(), "");
}

TEST_F(BrowserResult, IsAMessageFirstAndAResultSecond) {
    CBrowserResult result;
    EXPECT_EQ(static_cast<void*>(static_cast<IJSONIpcMessage*>(&result)), &result);
    EXPECT_TRUE((std::is_base_of_v<IBrowserResult, CBrowserResult>));
}

TEST_F(BrowserResult, CopiesMemberwise) {
    const CBrowserResult original(BrowserResultType::cancel, "v");
    CBrowserResult copy;
    copy = original;
    EXPECT_EQ(copy.GetResultType(), BrowserResultType::cancel);
    EXPECT_STREQ(copy.GetCookieValue(), "v");
    EXPECT_NE(copy.GetCookieValue(), original.GetCookieValue());
}

TEST_F(BrowserResult, ResetGoesBackToTheDefaults) {
    CBrowserResult result(BrowserResultType::success_with_cookie, "v");
    result.Reset();
    EXPECT_EQ(result.GetResultType(), BrowserResultType::undefined);
    EXPECT_STREQ(result.GetCookieValue(), "");
}

TEST_F(BrowserResult, WritesEveryResultByNameWithoutAnEmptyCookieValue) {
    for (const NamedResult& row : kResults) {
        std::string json = "left over";
        EXPECT_TRUE(CBrowserResult(row.type, "").Serialize(json));
        EXPECT_EQ(json, std::string("{\"result\":\"") + row.name + "\"}\n");
    }
}

TEST_F(BrowserResult, WritesTheCookieValueSecond) {
    std::string json;
    EXPECT_TRUE(CBrowserResult(BrowserResultType::success_with_cookie, "v=1").Serialize(json));
    EXPECT_EQ(json, "{\"result\":\"success_with_cookie\",\"cookie_value\":\"v=1\"}\n");
}

TEST_F(BrowserResult, RefusesToWriteTheUndefinedTypeAndOnesWithoutName) {
    for (const int value : {-11, -8, 1}) {
        m_log.Clear();
        std::string json = "left over";
        EXPECT_FALSE(CBrowserResult(static_cast<BrowserResultType>(value), "v").Serialize(json));
        EXPECT_EQ(json, "");
        EXPECT_THAT(m_log.Lines(), ElementsAre("E Undefined browser result type."));
    }
}

TEST_F(BrowserResult, ReportsAnErrorOfTheWriter) {
    const FailingLocale<FailingCharacters> locale;
    std::string json = "left over";
    EXPECT_FALSE(CBrowserResult(BrowserResultType::ready, "").Serialize(json));
    EXPECT_EQ(json, "");
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Caught serialization exception - no characters"));
}

TEST_F(BrowserResult, ReadsEveryResultByName) {
    for (const NamedResult& row : kResults) {
        CBrowserResult result;
        EXPECT_TRUE(result.Deserialize(std::string("{\"result\":\"") + row.name +
                                       "\",\"cookie_value\":\"v\"}"));
        EXPECT_EQ(result.GetResultType(), row.type);
        EXPECT_STREQ(result.GetCookieValue(), "v");
    }
}

TEST_F(BrowserResult, ReadsAMissingCookieValueAsEmpty) {
    CBrowserResult result(BrowserResultType::cancel, "old");
    EXPECT_TRUE(result.Deserialize("{\"result\":\"ready\"}"));
    EXPECT_STREQ(result.GetCookieValue(), "");
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(BrowserResult, RefusesADocumentWithoutAKnownResult) {
    for (const char* const document :
         {R"({"cookie_value":"new"})", R"({"result":"undefined","cookie_value":"new"})",
          R"({"result":"Ready","cookie_value":"new"})", R"({"result":"done"})", "{}"}) {
        m_log.Clear();
        CBrowserResult result(BrowserResultType::cancel, "old");
        EXPECT_FALSE(result.Deserialize(document)) << document;
        EXPECT_EQ(result.GetResultType(), BrowserResultType::undefined);
        EXPECT_STREQ(result.GetCookieValue(), "old");
        EXPECT_THAT(m_log.Lines(), ElementsAre("E Undefined browser result type."));
    }
}

TEST_F(BrowserResult, RefusesMalformedJsonAndStaysAsItWas) {
    CBrowserResult result(BrowserResultType::cancel, "old");
    EXPECT_FALSE(result.Deserialize("{\"result\":"));
    EXPECT_EQ(result.GetResultType(), BrowserResultType::cancel);
    EXPECT_STREQ(result.GetCookieValue(), "old");
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Caught deserialization exception - "
                                           "<unspecified file>(1): expected value"));
}

}  // namespace
