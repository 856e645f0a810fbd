#include <gmock/gmock.h>

#include "BrowserDataModel.h"
#include "EachCall.h"
#include "SparedLog.h"

namespace {

using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kOperation =
    R"({"operation":"browse","show":"true","timeout":"30","title":"Sign in to the network",)"
    R"("url":"https:\/\/vpn.example.com\/login","final_url":"https:\/\/vpn.example.com\/done"})"
    "\n";
const std::string kResult =
    R"({"result":"success_with_cookie","cookie_value":"a-value-of-the-cookie"})"
    "\n";

CBrowserOperation Operation() {
    return {BrowserOperationType::browse,   true, 30, "https://vpn.example.com/login",
            "https://vpn.example.com/done", "",   "", "",
            "Sign in to the network"};
}

CBrowserResult Result() {
    return {BrowserResultType::success_with_cookie, "a-value-of-the-cookie"};
}

void ExpectOutcome(bool done, const SparedLog& log, const char* message) {
    if (done) {
        EXPECT_THAT(log.Lines(), IsEmpty());
    } else {
        EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr(message)));
    }
}

template <class Record>
bool Serialize(const Record& record, const std::string& expected, Call kind, std::size_t number) {
    const SparedLog log;
    std::string json = "what was there before, and is to go";
    bool done = false;
    const bool hasFailed = WhileFailing(kind, number, [&] { done = record.Serialize(json); });
    EXPECT_EQ(done, !hasFailed);
    EXPECT_EQ(json, done ? expected : "");
    ExpectOutcome(done, log, "Caught serialization exception - ");
    return hasFailed;
}

template <class Record>
bool Deserialize(Record& record, const std::string& json, Call kind, std::size_t number) {
    const SparedLog log;
    bool done = false;
    const bool hasFailed = WhileFailing(kind, number, [&] { done = record.Deserialize(json); });
    EXPECT_EQ(done, !hasFailed);
    ExpectOutcome(done, log, "Caught deserialization exception - ");
    return hasFailed;
}

TEST(FailingCallsOfAnOperation, EveryAllocationOfWriting) {
    const auto failed = FailEachCall(Call::Allocation, [](Call kind, std::size_t number) {
        return Serialize(Operation(), kOperation, kind, number);
    });
    EXPECT_THAT(failed, Ge(20U));
}

TEST(FailingCallsOfAnOperation, EveryAllocationOfReading) {
    const auto failed = FailEachCall(Call::Allocation, [](Call kind, std::size_t number) {
        CBrowserOperation operation;
        const bool hasFailed = Deserialize(operation, kOperation, kind, number);
        if (!hasFailed) {
            EXPECT_EQ(operation.GetTimeout(), 30U);
            EXPECT_TRUE(operation.GetShow());
            EXPECT_STREQ(operation.GetUrl(), "https://vpn.example.com/login");
            EXPECT_STREQ(operation.GetTitle(), "Sign in to the network");
        }
        return hasFailed;
    });
    EXPECT_THAT(failed, Ge(20U));
}

TEST(FailingCallsOfAResult, EveryAllocationOfWriting) {
    const auto failed = FailEachCall(Call::Allocation, [](Call kind, std::size_t number) {
        return Serialize(Result(), kResult, kind, number);
    });
    EXPECT_THAT(failed, Ge(10U));
}

TEST(FailingCallsOfAResult, EveryAllocationOfReading) {
    const auto failed = FailEachCall(Call::Allocation, [](Call kind, std::size_t number) {
        CBrowserResult result;
        const bool hasFailed = Deserialize(result, kResult, kind, number);
        if (!hasFailed) {
            EXPECT_STREQ(result.GetCookieValue(), "a-value-of-the-cookie");
        }
        return hasFailed;
    });
    EXPECT_THAT(failed, Ge(10U));
}

}  // namespace
