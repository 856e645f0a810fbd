// An agent that answers each result with its next operation at once.

#include "HelperTest.h"

namespace {

constexpr int kOperations = 10'000;

/// The operations take turns in three kinds, each of which ends with the last event of its page
/// that could end anything.
class QuickAgent : public HelperTest {
protected:
    QuickAgent() {
        m_server.ServePage("/page", "");
        m_server.Handle("/cookie", [](HttpExchange& exchange) {
            // Two cookies that match, for one walk through the cookies.
            const std::string value = "sid=" + exchange.Request().target.substr(8);
            exchange.Respond(
                {200,
                 "",
                 "text/html",
                 {{"Set-Cookie", value + "; Path=/"}, {"Set-Cookie", value + "; Path=/cookie"}}});
        });
    }

    /// Sends the operation of that number and gives the result that it must have.
    std::string SendNumber(int number) {
        switch (number % 3) {
            case 0:
                Browse(TargetOf(number), "/elsewhere");
                return "error_navi";
            case 1:
                Browse(TargetOf(number), TargetOf(number));
                return "success";
            default:
                Send(OperationText({{"operation", "browse_for_cookie"},
                                    {"url", m_server.Url(TargetOf(number))},
                                    {"final_url", m_server.Url(TargetOf(number))},
                                    {"cookie_name", "sid"}}));
                return "success_with_cookie " + std::to_string(number);
        }
    }

    static std::string TargetOf(int number) {
        const char* const paths[] = {"/missing?", "/page?", "/cookie?"};
        return paths[number % 3] + std::to_string(number);
    }

private:
    void Browse(const std::string& target, const std::string& finalTarget) {
        Send(OperationText({{"operation", "browse"},
                            {"url", m_server.Url(target)},
                            {"final_url", m_server.Url(finalTarget)}}));
    }
};

}  // namespace

TEST_F(QuickAgent, LosesNoResultAndGetsNoneTwice) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    std::vector<std::string> requests;
    for (int number = 0; number < kOperations; ++number) {
        const std::string expected = SendNumber(number);
        ASSERT_EQ(NextResult(), expected) << "operation " << number;
        requests.push_back("GET " + TargetOf(number));
    }
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_EQ(NextResult(), "(closed)");
    EXPECT_EQ(m_server.RequestLines(), requests);
}
