#include "BrowserIPCClient.h"

#include <memory>
#include <new>
#include <string>

#include "AppLog.h"
#include "JsonIpcFrame.h"

CBrowserIpcClient* CBrowserIpcClient::s_instance = nullptr;
std::uint32_t CBrowserIpcClient::s_referenceCount = 0;

bool RegisterBrowserIpcClient(std::uint16_t port, IBrowserIpcClientCB* callback,
                              IBrowserIpcClient** client) {
    *client = nullptr;
    CBrowserIpcClient* instance = nullptr;
    const ResultCode code = CBrowserIpcClient::createSingletonInstance(port, callback, &instance);
    if (code != kSuccess) {
        TK_LOG_FAILED_CALL("CBrowserIpcClient::createSingletonInstance", code);
        return false;
    }
    *client = instance;
    return true;
}

void UnregisterBrowserIpcClient(IBrowserIpcClient* client) {
    if (client == nullptr) {
        TK_LOG_ERROR("Invalid parameter");
        return;
    }
    if (CBrowserIpcClient::releaseInstance(client)) {
        const std::unique_ptr<IBrowserIpcClient> last(client);
    }
}

ResultCode CBrowserIpcClient::createSingletonInstance(std::uint16_t port,
                                                      IBrowserIpcClientCB* callback,
                                                      CBrowserIpcClient** instance) {
    *instance = nullptr;
    if (s_instance != nullptr || s_referenceCount != 0) {
        TK_LOG_ERROR("CBrowserIpcClient instance already initialized");
        return BROWSERIPCCLIENT_ERROR_ALREADY_INITIALIZED;
    }
    ResultCode code = kSuccess;
    std::unique_ptr<CBrowserIpcClient> created(new (std::nothrow)
                                                   CBrowserIpcClient(port, callback, code));
    // No exception leaves this function: a lack of memory is a result code, too.
    if (created == nullptr) {
        code = BROWSERIPCCLIENT_ERROR_MEMALLOC_FAILED;
    }
    if (code != kSuccess) {
        TK_LOG_FAILED_CALL("CBrowserIpcClient", code);
        return code;
    }
    s_referenceCount = 1;
    s_instance = created.release();
    *instance = s_instance;
    return kSuccess;
}

bool CBrowserIpcClient::releaseInstance(const IBrowserIpcClient* client) {
    if (client != s_instance) {
        // Deliberate: a client that was made elsewhere is destroyed here too, and is not counted.
        return true;
    }
    if (--s_referenceCount > 0) {
        return false;
    }
    s_instance = nullptr;
    return true;
}

CBrowserIpcClient::CBrowserIpcClient(std::uint16_t port, IBrowserIpcClientCB* callback,
                                     ResultCode& result)
    : CJsonIpcClient(port, result), m_callback(callback) {
    if (result != kSuccess) {
        TK_LOG_FAILED_CALL("CJsonIpcClient", result);
    }
    openGate();
}

CBrowserIpcClient::~CBrowserIpcClient() {
    shutdown();
}

ResultCode CBrowserIpcClient::SendBrowserResult(const CBrowserResult& result) {
    std::string json;
    if (!result.Serialize(json)) {
        return BROWSERIPCCLIENT_ERROR_SERIALIZE_FAILURE;
    }
    // The same for a lack of memory, of which no callback would tell.
    return postMessage(kBrowserResultMessageId, json) ? kSuccess
                                                      : BROWSERIPCCLIENT_ERROR_MEMALLOC_FAILED;
}

void CBrowserIpcClient::OnMsgReceived(std::uint32_t messageId, const char* payload,
                                      std::size_t length) {
    if (messageId != kBrowserResultMessageId) {
        TK_LOG_ERROR("Unexpected message [id %u]", messageId);
        return;
    }
    if (payload == nullptr || length == 0) {
        TK_LOG_ERROR("Invalid browser operation message");
        m_callback->OnReceivedInvalidBrowserOperation();
        return;
    }
    CBrowserOperation operation;
    if (!operation.Deserialize(std::string(payload, length))) {
        TK_LOG_ERROR("Failed to deserialize browser operation message");
        m_callback->OnReceivedInvalidBrowserOperation();
        return;
    }
    m_callback->OnReceivedBrowserOperation(operation);
}

void CBrowserIpcClient::OnIpcSendComplete(std::uint32_t messageId) {
    if (messageId != kBrowserResultMessageId) {
        TK_LOG_ERROR("Unexpected message ID %u", messageId);
        return;
    }
    m_callback->OnBrowserResultSent();
}

void CBrowserIpcClient::OnIpcSendError(std::uint32_t messageId) {
    if (messageId != kBrowserResultMessageId) {
        TK_LOG_ERROR("Unexpected message ID %u", messageId);
        return;
    }
    m_callback->OnBrowserResultSendError();
}

void CBrowserIpcClient::OnIpcConnectError() {
    m_callback->OnIpcConnectError();
}

void CBrowserIpcClient::OnIpcReceiveError() {
    m_callback->OnIpcReceiveError();
}
