#include "BrowserOperation.h"

#include <gmock/gmock.h>

#include <type_traits>

#include "BrowserDataModel.h"
#include "FailingLocale.h"
#include "LogCapture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;

namespace {

CBrowserOperation Full(BrowserOperationType type) {
    return {type, true, 30, "u", "f", "c", "e", "a", "t"};
}

CBrowserOperation WithUrl(BrowserOperationType type) {
    return {type, false, 0, "u", "", "", "", "", ""};
}

void ExpectTexts(const CBrowserOperation& operation, const std::string& url,
                 const std::string& finalUrl, const std::string& cookieName,
                 const std::string& errorCookieName, const std::string& userAgent,
                 const std::string& title) {
    EXPECT_EQ(operation.GetUrl(), url);
    EXPECT_EQ(operation.GetFinalUrl(), finalUrl);
    EXPECT_EQ(operation.GetCookieName(), cookieName);
    EXPECT_EQ(operation.GetErrorCookieName(), errorCookieName);
    EXPECT_EQ(operation.GetUserAgent(), userAgent);
    EXPECT_EQ(operation.GetTitle(), title);
}

std::string Written(const CBrowserOperation& operation) {
    std::string json = "left over";
    EXPECT_TRUE(operation.Serialize(json));
    return json;
}

class BrowserOperation : public ::testing::Test {
protected:
    LogCapture m_log;
};

TEST_F(BrowserOperation, IsUndefinedAndEmptyAtFirst) {
    const CBrowserOperation operation;
    EXPECT_EQ(operation.GetOperationType(), BrowserOperationType::undefined);
    EXPECT_FALSE(operation.GetShow());
    EXPECT_EQ(operation.GetTimeout(), 0U);
    ExpectTexts(operation, "", "", "", "", "", "");
}

TEST_F(BrowserOperation, KeepsEveryFieldInConstructorOrder) {
    const CBrowserOperation operation = Full(BrowserOperationType::reset);
    EXPECT_EQ(operation.GetOperationType(), BrowserOperationType::reset);
    EXPECT_TRUE(operation.GetShow());
    EXPECT_EQ(operation.GetTimeout(), 30U);
    ExpectTexts(operation, "u", "f", "c", "e", "a", "t");
}

TEST_F(BrowserOperation, IsAMessageFirstAndAnOperationSecond) {
    CBrowserOperation operation;
    EXPECT_EQ(static_cast<void*>(static_cast<IJSONIpcMessage*>(&operation)), &operation);
    EXPECT_TRUE((std::is_base_of_v<IBrowserOperation, CBrowserOperation>));
}

TEST_F(BrowserOperation, CopiesMemberwise) {
    const CBrowserOperation original = Full(BrowserOperationType::browse);
    CBrowserOperation copy;
    copy = original;
    EXPECT_EQ(copy.GetOperationType(), BrowserOperationType::browse);
    EXPECT_TRUE(copy.GetShow());
    EXPECT_EQ(copy.GetTimeout(), 30U);
    ExpectTexts(copy, "u", "f", "c", "e", "a", "t");
    EXPECT_NE(copy.GetUrl(), original.GetUrl());
}

TEST_F(BrowserOperation, ResetKeepsTheTimeoutOnly) {
    CBrowserOperation operation = Full(BrowserOperationType::browse);
    operation.Reset();
    EXPECT_EQ(operation.GetOperationType(), BrowserOperationType::undefined);
    EXPECT_FALSE(operation.GetShow());
    EXPECT_EQ(operation.GetTimeout(), 30U);
    ExpectTexts(operation, "", "", "", "", "", "");
}

TEST_F(BrowserOperation, WritesBrowseAsOneLineOfStringsInOrder) {
    const CBrowserOperation operation(BrowserOperationType::browse, true, 30, "u", "", "", "", "",
                                      "t");
    EXPECT_EQ(Written(operation),
              "{\"operation\":\"browse\",\"show\":\"true\",\"timeout\":\"30\",\"title\":\"t\","
              "\"url\":\"u\"}\n");
}

TEST_F(BrowserOperation, WritesEveryMemberOfBrowseInOrder) {
    EXPECT_EQ(Written(Full(BrowserOperationType::browse)),
              "{\"operation\":\"browse\",\"show\":\"true\",\"timeout\":\"30\",\"title\":\"t\","
              "\"url\":\"u\",\"final_url\":\"f\",\"cookie_name\":\"c\","
              "\"error_cookie_name\":\"e\",\"user_agent\":\"a\"}\n");
}

TEST_F(BrowserOperation, WritesAFalseFlagAndAZeroTimeoutOfBrowse) {
    EXPECT_EQ(Written(WithUrl(BrowserOperationType::browse)),
              "{\"operation\":\"browse\",\"show\":\"false\",\"timeout\":\"0\",\"url\":\"u\"}\n");
}

TEST_F(BrowserOperation, WritesBrowseForCookieWithoutATimeout) {
    EXPECT_EQ(Written(Full(BrowserOperationType::browse_for_cookie)),
              "{\"operation\":\"browse_for_cookie\",\"show\":\"true\",\"title\":\"t\","
              "\"url\":\"u\",\"final_url\":\"f\",\"cookie_name\":\"c\","
              "\"error_cookie_name\":\"e\",\"user_agent\":\"a\"}\n");
    EXPECT_EQ(Written(WithUrl(BrowserOperationType::browse_for_cookie)),
              "{\"operation\":\"browse_for_cookie\",\"show\":\"false\",\"url\":\"u\"}\n");
}

TEST_F(BrowserOperation, WritesTerminateAndResetWithoutShowTimeoutAndTitle) {
    const std::string texts =
        "\"url\":\"u\",\"final_url\":\"f\",\"cookie_name\":\"c\",\"error_cookie_name\":\"e\","
        "\"user_agent\":\"a\"}\n";
    EXPECT_EQ(Written(Full(BrowserOperationType::terminate)),
              "{\"operation\":\"terminate\"," + texts);
    EXPECT_EQ(Written(Full(BrowserOperationType::reset)), "{\"operation\":\"reset\"," + texts);
}

TEST_F(BrowserOperation, WritesTheUndefinedType) {
    EXPECT_EQ(Written(CBrowserOperation()), "{\"operation\":\"undefined\"}\n");
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(BrowserOperation, RefusesToWriteATypeWithoutName) {
    std::string json = "left over";
    EXPECT_FALSE(WithUrl(static_cast<BrowserOperationType>(1)).Serialize(json));
    EXPECT_EQ(json, "");
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Undefined browser operation type."));
}

TEST_F(BrowserOperation, ReportsAnErrorOfTheWriter) {
    const FailingLocale<FailingNumbers> locale;
    std::string json = "left over";
    EXPECT_FALSE(WithUrl(BrowserOperationType::browse).Serialize(json));
    EXPECT_EQ(json, "");
    EXPECT_THAT(m_log.Lines(),
                ElementsAre(MatchesRegex("E Caught serialization exception - conversion of type "
                                         "\"b(ool)?\" to data failed")));
}

TEST_F(BrowserOperation, ReadsWhatItWrites) {
    CBrowserOperation read;
    ASSERT_TRUE(read.Deserialize(Written(Full(BrowserOperationType::browse))));
    EXPECT_EQ(read.GetOperationType(), BrowserOperationType::browse);
    EXPECT_TRUE(read.GetShow());
    EXPECT_EQ(read.GetTimeout(), 30U);
    ExpectTexts(read, "u", "f", "c", "e", "a", "t");
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(BrowserOperation, ReadsEveryOperationByName) {
    const std::pair<const char*, BrowserOperationType> rows[] = {
        {"browse", BrowserOperationType::browse},
        {"browse_for_cookie", BrowserOperationType::browse_for_cookie},
        {"terminate", BrowserOperationType::terminate},
        {"reset", BrowserOperationType::reset},
    };
    for (const auto& [name, type] : rows) {
        CBrowserOperation operation;
        EXPECT_TRUE(operation.Deserialize(std::string("{\"operation\":\"") + name + "\"}"));
        EXPECT_EQ(operation.GetOperationType(), type);
    }
}

TEST_F(BrowserOperation, ReadsEveryKeyForEveryTypeAndIgnoresOthers) {
    CBrowserOperation operation;
    ASSERT_TRUE(operation.Deserialize(
        R"({"other":"x","operation":"terminate","show":"true","timeout":"7","url":"u",)"
        R"("final_url":"f","cookie_name":"c","error_cookie_name":"e","user_agent":"a",)"
        R"("title":"t","more":[1,{"url":"no"}]})"));
    EXPECT_TRUE(operation.GetShow());
    EXPECT_EQ(operation.GetTimeout(), 7U);
    ExpectTexts(operation, "u", "f", "c", "e", "a", "t");
}

TEST_F(BrowserOperation, ReadsBareLiterals) {
    CBrowserOperation operation;
    ASSERT_TRUE(
        operation.Deserialize(R"({"operation":"browse","show":true,"timeout":4294967295})"));
    EXPECT_TRUE(operation.GetShow());
    EXPECT_EQ(operation.GetTimeout(), 4294967295U);
}

TEST_F(BrowserOperation, ReadsTheFourSpellingsOfAFlag) {
    const std::pair<const char*, bool> rows[] = {
        {"true", true}, {"1", true}, {" true ", true}, {"false", false}, {"0", false}};
    for (const auto& [text, flag] : rows) {
        CBrowserOperation operation(BrowserOperationType::browse, !flag, 0, "", "", "", "", "", "");
        EXPECT_TRUE(
            operation.Deserialize(std::string(R"({"operation":"browse","show":")") + text + "\"}"));
        EXPECT_EQ(operation.GetShow(), flag) << text;
    }
}

TEST_F(BrowserOperation, ReadsTheseSpellingsOfATimeout) {
    for (const char* const text : {"30", "030", "+30", " 30 "}) {
        CBrowserOperation operation;
        EXPECT_TRUE(operation.Deserialize(std::string(R"({"operation":"browse","timeout":")") +
                                          text + "\"}"));
        EXPECT_EQ(operation.GetTimeout(), 30U) << text;
    }
}

TEST_F(BrowserOperation, ReadsATimeoutOfMinusOneAsTheLongest) {
    CBrowserOperation operation;
    EXPECT_TRUE(operation.Deserialize(R"({"operation":"browse","timeout":-1})"));
    EXPECT_EQ(operation.GetTimeout(), 4294967295U);
}

TEST_F(BrowserOperation, ReadsAnUnreadableFlagAsFalse) {
    for (const char* const text : {"\"yes\"", "\"on\"", "\"True\"", "2", "null", "\"\""}) {
        CBrowserOperation operation = Full(BrowserOperationType::browse);
        EXPECT_TRUE(
            operation.Deserialize(std::string(R"({"operation":"browse","show":)") + text + "}"));
        EXPECT_FALSE(operation.GetShow()) << text;
    }
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(BrowserOperation, ReadsAnUnreadableTimeoutAsZero) {
    for (const char* const text :
         {"\"soon\"", "1.5", "\"1s\"", "1e1", "\"0x1\"", "true", "null", "\"\"", "4294967296"}) {
        CBrowserOperation operation = Full(BrowserOperationType::browse);
        EXPECT_TRUE(
            operation.Deserialize(std::string(R"({"operation":"browse","timeout":)") + text + "}"));
        EXPECT_EQ(operation.GetTimeout(), 0U) << text;
    }
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(BrowserOperation, ReadsMissingMembersAsDefaults) {
    CBrowserOperation operation = Full(BrowserOperationType::browse);
    EXPECT_TRUE(operation.Deserialize(R"({"operation":"reset"})"));
    EXPECT_EQ(operation.GetOperationType(), BrowserOperationType::reset);
    EXPECT_FALSE(operation.GetShow());
    EXPECT_EQ(operation.GetTimeout(), 0U);
    ExpectTexts(operation, "", "", "", "", "", "");
}

TEST_F(BrowserOperation, RefusesADocumentWithoutAKnownOperation) {
    for (const char* const document :
         {R"({"url":"new"})", R"({"operation":"fly","url":"new"})",
          R"({"operation":"undefined","url":"new"})", R"({"operation":"Browse","url":"new"})",
          R"({"operation":"","url":"new"})", R"({"operation":"browse ","url":"new"})",
          R"({"operation":{"operation":"browse"},"url":"new"})", "[]", "\"browse\"", "{}"}) {
        m_log.Clear();
        CBrowserOperation operation = Full(BrowserOperationType::browse);
        EXPECT_FALSE(operation.Deserialize(document)) << document;
        EXPECT_EQ(operation.GetOperationType(), BrowserOperationType::undefined);
        EXPECT_TRUE(operation.GetShow());
        EXPECT_EQ(operation.GetTimeout(), 30U);
        ExpectTexts(operation, "u", "f", "c", "e", "a", "t");
        EXPECT_THAT(m_log.Lines(), ElementsAre("E Undefined browser operation type."));
    }
}

TEST_F(BrowserOperation, RefusesMalformedJsonAndStaysAsItWas) {
    for (const char* const document : {"", "{", "{\"operation\":\"browse\"", "browse",
                                       "{\"operation\":\"browse\"} more", "{operation:browse}"}) {
        m_log.Clear();
        CBrowserOperation operation = Full(BrowserOperationType::reset);
        EXPECT_FALSE(operation.Deserialize(document)) << document;
        EXPECT_EQ(operation.GetOperationType(), BrowserOperationType::reset);
        ExpectTexts(operation, "u", "f", "c", "e", "a", "t");
        EXPECT_THAT(m_log.Lines(),
                    ElementsAre(::testing::StartsWith("E Caught deserialization exception - ")));
    }
}

TEST_F(BrowserOperation, ReportsTheTextOfASyntaxError) {
    CBrowserOperation operation;
    EXPECT_FALSE(operation.Deserialize("{"));
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Caught deserialization exception - "
                                           "<unspecified file>(1): expected key string"));
}

TEST_F(BrowserOperation, KeepsTextThatJsonMustEscape) {
    const std::string text = "q\" b\\ s/ n\n t\t \xC3\xA9 \xE2\x82\xAC";
    CBrowserOperation read;
    ASSERT_TRUE(read.Deserialize(
        Written({BrowserOperationType::browse, false, 0, text, "", "", "", "", text})));
    ExpectTexts(read, text, "", "", "", "", text);
}

}  // namespace
