#include <gmock/gmock.h>

#include <condition_variable>
#include <mutex>

#include "BrowserIPCClient.h"
#include "LoopbackPeer.h"
#include "TestDeadline.h"

namespace {

constexpr int kLives = 2000;

/// Counts every callback.
class CountingCallback : public IBrowserIpcClientCB {
public:
    void OnReceivedBrowserOperation(const IBrowserOperation& /*operation*/) override { other(); }
    void OnReceivedInvalidBrowserOperation() override { other(); }
    void OnBrowserResultSent() override { other(); }
    void OnBrowserResultSendError() override { other(); }
    void OnIpcReceiveError() override { other(); }
    void OnIpcConnectError() override {
        const std::lock_guard<std::mutex> guard(m_mutex);
        ++m_connectErrors;
        m_called.notify_all();
    }

    [[nodiscard]] bool WaitForConnectError() {
        std::unique_lock<std::mutex> guard(m_mutex);
        return m_called.wait_for(guard, kTestDeadline, [this] { return m_connectErrors > 0; });
    }

    [[nodiscard]] int ConnectErrors() {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return m_connectErrors;
    }

    [[nodiscard]] int Others() {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return m_others;
    }

private:
    void other() {
        const std::lock_guard<std::mutex> guard(m_mutex);
        ++m_others;
    }

    std::mutex m_mutex;
    std::condition_variable m_called;
    int m_connectErrors = 0;
    int m_others = 0;
};

TEST(BrowserIPCClientLife, EachOf2000ClientsThatNobodyAnswersGetsOneConnectError) {
    const ClosedPort closed;
    for (int life = 0; life < kLives; ++life) {
        CountingCallback callback;
        IBrowserIpcClient* client = nullptr;
        ASSERT_TRUE(RegisterBrowserIpcClient(closed.Port(), &callback, &client));
        ASSERT_TRUE(callback.WaitForConnectError());
        UnregisterBrowserIpcClient(client);
        ASSERT_EQ(callback.ConnectErrors(), 1) << life;
        ASSERT_EQ(callback.Others(), 0) << life;
    }
}

TEST(BrowserIPCClientLife, ClientsThatEndAtOnceGetOneConnectErrorAtMost) {
    const ClosedPort closed;
    for (int life = 0; life < kLives; ++life) {
        CountingCallback callback;
        IBrowserIpcClient* client = nullptr;
        ASSERT_TRUE(RegisterBrowserIpcClient(closed.Port(), &callback, &client));
        UnregisterBrowserIpcClient(client);
        ASSERT_LE(callback.ConnectErrors(), 1) << life;
        ASSERT_EQ(callback.Others(), 0) << life;
    }
}

TEST(BrowserIPCClientLife, NoCallbackComesAfterUnregistering) {
    const LoopbackListener listener;
    for (int life = 0; life < kLives / 10; ++life) {
        IBrowserIpcClient* client = nullptr;
        {
            // Gone as soon as the client is: a later callback would find nothing.
            const auto callback = std::make_unique<CountingCallback>();
            ASSERT_TRUE(RegisterBrowserIpcClient(listener.Port(), callback.get(), &client));
            const LoopbackConnection peer = listener.Accept();
            peer.Send(std::string(90, '\0'));
            EXPECT_EQ(client->SendBrowserResult({BrowserResultType::ready, ""}), kSuccess);
            UnregisterBrowserIpcClient(client);
            ASSERT_EQ(callback->ConnectErrors(), 0) << life;
        }
    }
}

}  // namespace
