// An agent that answers each result with its next operation at once.

#include "HelperTest.h"

namespace {

constexpr int kOperations = 10'000;

using QuickAgent = HelperTest;

std::string PathOf(int number) {
    return "/" + std::to_string(number);
}

}  // namespace

TEST_F(QuickAgent, GetsEachResultOnce) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    int wrong = 0;
    for (int number = 0; number < kOperations && wrong == 0; ++number) {
        Send(OperationText({{"operation", "browse"},
                            {"url", m_server.Url(PathOf(number))},
                            {"final_url", m_server.Url("/elsewhere")}}));
        const std::string result = NextResult();
        wrong += result == "error_navi" ? 0 : 1;
        EXPECT_EQ(result, "error_navi") << number;
    }
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_EQ(NextResult(), "(closed)");
    EXPECT_EQ(m_server.Requests().size(), kOperations);
}
