#pragma once

#include <cstdint>

#include "IBrowserIpcClient.h"
#include "IBrowserIpcClientCB.h"
#include "JSONIPCClient.h"

/// Connects to the agent on 127.0.0.1 and gives the process's one client; false, and a null
/// client, when there is one already or it cannot be made. The callback (never null) outlives the
/// client, and may be called before this returns. Owner's thread.
[[nodiscard]] bool RegisterBrowserIpcClient(std::uint16_t port, IBrowserIpcClientCB* callback,
                                            IBrowserIpcClient** client);

/// Ends the client: no callback comes after this. Not from inside a callback. Owner's thread.
void UnregisterBrowserIpcClient(IBrowserIpcClient* client);

/// Carries browser operations and results over the JSON transport. Made and ended on the owner's
/// thread; the transport's callbacks come on the I/O thread.
class CBrowserIpcClient final : public IBrowserIpcClient, private CJsonIpcClient {
public:
    /// Makes the process's one instance, or gives a code and a null instance.
    [[nodiscard]] static ResultCode createSingletonInstance(std::uint16_t port,
                                                            IBrowserIpcClientCB* callback,
                                                            CBrowserIpcClient** instance);

    ~CBrowserIpcClient() override;
    CBrowserIpcClient(const CBrowserIpcClient&) = delete;
    CBrowserIpcClient& operator=(const CBrowserIpcClient&) = delete;

    [[nodiscard]] ResultCode SendBrowserResult(const CBrowserResult& result) override;

    // What the transport calls, on the I/O thread.
    void OnMsgReceived(std::uint32_t messageId, const char* payload, std::size_t length) override;
    void OnIpcSendComplete(std::uint32_t messageId) override;
    void OnIpcSendError(std::uint32_t messageId) override;
    void OnIpcConnectError() override;
    void OnIpcReceiveError() override;

private:
    friend void UnregisterBrowserIpcClient(IBrowserIpcClient* client);

    CBrowserIpcClient(std::uint16_t port, IBrowserIpcClientCB* callback, ResultCode& result);

    /// Gives one reference back; true when the client is to be destroyed.
    [[nodiscard]] static bool releaseInstance(const IBrowserIpcClient* client);

    // Touched on the owner's thread only.
    static CBrowserIpcClient* s_instance;
    static std::uint32_t s_referenceCount;

    IBrowserIpcClientCB* const m_callback;
};
