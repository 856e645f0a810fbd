#include <gmock/gmock.h>

#include <boost/asio/io_context.hpp>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <system_error>
#include <thread>

#include "BrowserIPCClient.h"
#include "EachCall.h"
#include "LoopbackPeer.h"
#include "SparedLog.h"
#include "TestDeadline.h"

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Eq;
using testing::Ge;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string Frame(const std::string& payload) {
    std::string frame(9, '\0');
    frame[1] = static_cast<char>(payload.size());
    return frame + payload;
}

const std::string kOperationFrame =
    Frame(R"({"operation":"browse","url":"https://vpn.example.com/login"})");
const std::string kResultFrame =
    Frame("{\"result\":\"success_with_cookie\",\"cookie_value\":\"a-value-of-the-cookie\"}\n");

/// What the client told its user, how often.
struct Told {
    int operations = 0;
    int invalidOperations = 0;
    int sent = 0;
    int sendErrors = 0;
    int connectErrors = 0;
    int receiveErrors = 0;

    [[nodiscard]] int Errors() const {
        return invalidOperations + sendErrors + connectErrors + receiveErrors;
    }
};

class CountingCallback : public IBrowserIpcClientCB {
public:
    void OnReceivedBrowserOperation(const IBrowserOperation& operation) override {
        const SparedCalls spared;
        EXPECT_STREQ(operation.GetUrl(), "https://vpn.example.com/login");
        Count(&Told::operations);
    }
    void OnReceivedInvalidBrowserOperation() override { Count(&Told::invalidOperations); }
    void OnBrowserResultSent() override { Count(&Told::sent); }
    void OnBrowserResultSendError() override { Count(&Told::sendErrors); }
    void OnIpcConnectError() override { Count(&Told::connectErrors); }
    void OnIpcReceiveError() override { Count(&Told::receiveErrors); }

    [[nodiscard]] Told Total() {
        const SparedCalls spared;
        const std::lock_guard<std::mutex> guard(m_mutex);
        return m_told;
    }

    /// Waits until it was told of one of these, or of an error.
    void WaitFor(int Told::*count) {
        const SparedCalls spared;
        std::unique_lock<std::mutex> guard(m_mutex);
        EXPECT_TRUE(m_called.wait_for(guard, kTestDeadline, [&] {
            return m_told.*count > 0 || m_told.Errors() > 0;
        })) << "nothing came back";
    }

private:
    void Count(int Told::*count) {
        const SparedCalls spared;
        const std::lock_guard<std::mutex> guard(m_mutex);
        ++(m_told.*count);
        m_called.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_called;
    Told m_told;
};

/// The agent, on a thread of its own: sends an operation and keeps what comes back.
class Agent {
public:
    Agent() : m_thread([this] { Serve(); }) {}

    [[nodiscard]] std::uint16_t Port() const { return m_listener.Port(); }

    /// Everything that came until the client's end. To be called behind that.
    std::string TakeReceived() {
        // Where nobody connected, this ends the waiting.
        m_listener.Connect().Close();
        m_thread.join();
        return m_received;
    }

private:
    void Serve() {
        const SparedCalls spared;
        try {
            const LoopbackConnection client = m_listener.Accept();
            client.Send(kOperationFrame);
            m_received = client.Receive(2 * kResultFrame.size());
        } catch (const std::system_error&) {
            // The client went before it got the operation.
        }
    }

    LoopbackListener m_listener;
    std::string m_received;
    std::thread m_thread;
};

struct Outcome {
    bool isRegistered = false;
    ResultCode code = kSuccess;
    bool hasFailed = false;
};

/// The life of a client: it is registered, gets an operation, sends a result and is unregistered.
Outcome Live(CountingCallback& callback, std::uint16_t port, const CBrowserResult& result,
             Call kind, std::size_t number) {
    Outcome outcome;
    const FailingCall failing(kind, number, FailingOn::EveryThread);
    IBrowserIpcClient* client = nullptr;
    outcome.isRegistered = RegisterBrowserIpcClient(port, &callback, &client);
    if (outcome.isRegistered) {
        callback.WaitFor(&Told::operations);
        if (callback.Total().operations > 0) {
            outcome.code = client->SendBrowserResult(result);
        }
        if (callback.Total().operations > 0 && outcome.code == kSuccess) {
            callback.WaitFor(&Told::sent);
        }
        UnregisterBrowserIpcClient(client);
    }
    outcome.hasFailed = FailingCall::HasFailed();
    return outcome;
}

void ExpectOneOutcome(const Outcome& outcome, const Told& told, const std::string& received,
                      const std::vector<std::string>& log) {
    const bool isRefused = !outcome.isRegistered || outcome.code != kSuccess;
    EXPECT_TRUE(outcome.hasFailed || (told.sent == 1 && told.Errors() == 0));
    EXPECT_LE(told.operations, 1);
    // A failed send takes the connection down, and the end of that is told as well.
    EXPECT_LE(told.sendErrors, 1);
    EXPECT_LE(told.invalidOperations + told.connectErrors + told.receiveErrors, 1);
    EXPECT_TRUE(told.sent > 0 || told.Errors() > 0 || isRefused);
    // What was sent is sent once and for all, but the connection may end behind it.
    EXPECT_TRUE(told.sent == 0 || (told.Errors() == told.receiveErrors && !isRefused));
    EXPECT_LE(told.sent, 1);
    EXPECT_THAT(received, AnyOf(Eq(""), Eq(kResultFrame)));
    EXPECT_TRUE(told.sent == 0 || received == kResultFrame);
    if (told.Errors() > 0 || isRefused) {
        EXPECT_THAT(log, Contains(StartsWith("E ")));
    }
    EXPECT_THAT(log, Not(Contains(HasSubstr("Failed to stop io service thread"))));
}

bool LiveOnce(Call kind, std::size_t number) {
    const SparedLog log;
    CountingCallback callback;
    Agent agent;
    const CBrowserResult result(BrowserResultType::success_with_cookie, "a-value-of-the-cookie");
    const Outcome outcome = Live(callback, agent.Port(), result, kind, number);
    const std::string received = agent.TakeReceived();
    ExpectOneOutcome(outcome, callback.Total(), received, log.Lines());
    if (testing::Test::HasFailure()) {
        for (const std::string& line : log.Lines()) {
            GTEST_LOG_(INFO) << line;
        }
    }
    return outcome.hasFailed;
}

bool MakeIoContext(std::size_t failingAllocation) {
    return WhileFailing(Call::Allocation, failingAllocation, [] {
        try {
            const boost::asio::io_context context;
        } catch (const std::bad_alloc&) {
            // What that leaves behind is what counts.
        }
    });
}

/// How many blocks are lost when each allocation of nothing but an io_context fails in turn: one
/// with Boost 1.92, whose constructor forgets its list of services then, and none with 1.83.
std::size_t LossesOfBoostAlone() {
    const std::size_t before = BlocksHeld();
    std::size_t number = 1;
    while (MakeIoContext(number)) {
        ++number;
    }
    return BlocksHeld() - before;
}

TEST(FailingCallsOfTheIpcClient, EveryAllocation) {
    EXPECT_THAT(FailEachCall(Call::Allocation, LiveOnce, LossesOfBoostAlone()), Ge(50U));
}

TEST(FailingCallsOfTheIpcClient, EveryOpen) {
    EXPECT_THAT(FailEachCall(Call::Open, LiveOnce), Eq(1U));
}

TEST(FailingCallsOfTheIpcClient, NothingIsSentIfTheOwnerOfThePortCannotBeFound) {
    const SparedLog log;
    CountingCallback callback;
    Agent agent;
    const std::string port = std::to_string(agent.Port());
    const CBrowserResult result(BrowserResultType::success_with_cookie, "a-value-of-the-cookie");
    EXPECT_TRUE(Live(callback, agent.Port(), result, Call::Open, 1).hasFailed);
    EXPECT_EQ(agent.TakeReceived(), "");
    EXPECT_EQ(callback.Total().connectErrors, 1);
    EXPECT_THAT(log.Lines(), Contains(HasSubstr("Unable to find out who owns IPC port " + port +
                                                " - Too many open files")));
}

TEST(FailingCallsOfTheIpcClient, EveryRead) {
    EXPECT_THAT(FailEachCall(Call::Read, LiveOnce), Ge(4U));
}

TEST(FailingCallsOfTheIpcClient, EverySocket) {
    EXPECT_THAT(FailEachCall(Call::Socket, LiveOnce), Eq(1U));
}

TEST(FailingCallsOfTheIpcClient, EveryConnect) {
    EXPECT_THAT(FailEachCall(Call::Connect, LiveOnce), Ge(1U));
}

TEST(FailingCallsOfTheIpcClient, EverySocketOption) {
    EXPECT_THAT(FailEachCall(Call::SocketOption, LiveOnce), Ge(3U));
}

TEST(FailingCallsOfTheIpcClient, EverySocketControl) {
    EXPECT_THAT(FailEachCall(Call::SocketControl, LiveOnce), Ge(1U));
}

TEST(FailingCallsOfTheIpcClient, EverySend) {
    EXPECT_THAT(FailEachCall(Call::Send, LiveOnce), Ge(1U));
}

TEST(FailingCallsOfTheIpcClient, EveryReceive) {
    EXPECT_THAT(FailEachCall(Call::Receive, LiveOnce), Ge(2U));
}

TEST(FailingCallsOfTheIpcClient, EveryPoller) {
    EXPECT_THAT(FailEachCall(Call::Poller, LiveOnce), Ge(3U));
}

/// Asio looks only at what becomes of the sockets that it adds to the poller: what it does to its
/// own wake-up and timer there, and to those that are in it, needs no memory of the kernel's.
TEST(FailingCallsOfTheIpcClient, EverySocketInThePoller) {
    EXPECT_THAT(FailEachCall(Call::PollerEntry, LiveOnce), Eq(1U));
}

TEST(FailingCallsOfTheIpcClient, EveryWakeUp) {
    EXPECT_THAT(FailEachCall(Call::WakeUp, LiveOnce), Eq(1U));
}

TEST(FailingCallsOfTheIpcClient, EveryTimer) {
    EXPECT_THAT(FailEachCall(Call::Timer, LiveOnce), Ge(2U));
}

TEST(FailingCallsOfTheIpcClient, EveryClose) {
    EXPECT_THAT(FailEachCall(Call::Close, LiveOnce), Ge(4U));
}

TEST(FailingCallsOfTheIpcClient, EveryThread) {
    EXPECT_THAT(FailEachCall(Call::Thread, LiveOnce), Eq(1U));
}

}  // namespace
