#pragma once

#include <cstdint>

#include "IBrowserIpcClient.h"
#include "IBrowserIpcClientCB.h"
#include "JSONIPCClient.h"

/// Creates the process's one client, which connects to the agent on 127.0.0.1. Returns false, with
/// a null client, if there is one already or if it cannot be created. The callback must not be null
/// and must outlive the client. It may be called before this function returns. Owner's thread.
[[nodiscard]] bool RegisterBrowserIpcClient(std::uint16_t port, IBrowserIpcClientCB* callback,
                                            IBrowserIpcClient** client);

/// Destroys the client; no callback comes after this. Must not be called from a callback. Owner's
/// thread.
void UnregisterBrowserIpcClient(IBrowserIpcClient* client);

/// Receives browser operations and sends results over the JSON transport. Created and destroyed on
/// the owner's thread. The transport's callbacks run on the I/O thread.
class CBrowserIpcClient final : public IBrowserIpcClient, private CJsonIpcClient {
public:
    /// Creates the process's one instance. On failure returns an error code and sets the instance
    /// to null.
    [[nodiscard]] static ResultCode createSingletonInstance(std::uint16_t port,
                                                            IBrowserIpcClientCB* callback,
                                                            CBrowserIpcClient** instance);

    ~CBrowserIpcClient() override;
    CBrowserIpcClient(const CBrowserIpcClient&) = delete;
    CBrowserIpcClient& operator=(const CBrowserIpcClient&) = delete;

    [[nodiscard]] ResultCode SendBrowserResult(const CBrowserResult& result) override;

    // Called by the transport, on the I/O thread.
    void OnMsgReceived(std::uint32_t messageId, const char* payload, std::size_t length) override;
    void OnIpcSendComplete(std::uint32_t messageId) override;
    void OnIpcSendError(std::uint32_t messageId) override;
    void OnIpcConnectError() override;
    void OnIpcReceiveError() override;

private:
    friend void UnregisterBrowserIpcClient(IBrowserIpcClient* client);

    CBrowserIpcClient(std::uint16_t port, IBrowserIpcClientCB* callback, ResultCode& result);

    /// Releases one reference. Returns true if the caller must destroy the client.
    [[nodiscard]] static bool releaseInstance(const IBrowserIpcClient* client);

    // Used on the owner's thread only.
    static CBrowserIpcClient* s_instance;
    static std::uint32_t s_referenceCount;

    IBrowserIpcClientCB* const m_callback;
};
