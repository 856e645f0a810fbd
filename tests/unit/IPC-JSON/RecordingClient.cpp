#include "RecordingClient.h"

#include <utility>

#include "AppLog.h"

RecordingClient::RecordingClient(std::uint16_t port, ResultCode& result, Action action, Gate gate)
    : CJsonIpcClient(port, result), m_action(std::make_shared<const Action>(std::move(action))) {
    if (gate == Gate::opened) {
        openGate();
    }
}

RecordingClient::~RecordingClient() {
    shutdown();
}

void RecordingClient::OnMsgReceived(std::uint32_t messageId, const char* payload,
                                    std::size_t length) {
    record("OnMsgReceived " + std::to_string(messageId) + " " +
           (payload != nullptr ? std::string(payload, length) : "null " + std::to_string(length)));
}

void RecordingClient::OnIpcSendComplete(std::uint32_t messageId) {
    record("OnIpcSendComplete " + std::to_string(messageId));
}

void RecordingClient::OnIpcSendError(std::uint32_t messageId) {
    record("OnIpcSendError " + std::to_string(messageId));
}

void RecordingClient::OnIpcConnectError() {
    record("OnIpcConnectError");
}

void RecordingClient::OnIpcReceiveError() {
    record("OnIpcReceiveError");
}

void RecordingClient::record(const std::string& callback) {
    const std::shared_ptr<const Action> action = m_action;
    LogMessage(__func__, __FILE__, __LINE__, 'T', "%s", callback.c_str());
    if (*action) {
        (*action)(callback);
    }
}
