#pragma once

#include <functional>
#include <memory>
#include <string>

#include "JSONIPCClient.h"

/// A client whose callbacks leave a record each in the log, of level 'T', among the program's own:
/// "T OnMsgReceived 0 text". The action, if any, is then run on the I/O thread with that text;
/// it outlives the client.
class RecordingClient final : public CJsonIpcClient {
public:
    using Action = std::function<void(const std::string&)>;

    /// With a closed gate nothing is dispatched before OpenGate().
    enum class Gate { opened, closed };

    RecordingClient(std::uint16_t port, ResultCode& result, Action action = nullptr,
                    Gate gate = Gate::opened);
    ~RecordingClient() override;
    RecordingClient(const RecordingClient&) = delete;
    RecordingClient& operator=(const RecordingClient&) = delete;

    void OpenGate() { openGate(); }
    [[nodiscard]] bool StartThreadAgain() { return startIoServiceThread(); }

    void OnMsgReceived(std::uint32_t messageId, const char* payload, std::size_t length) override;
    void OnIpcSendComplete(std::uint32_t messageId) override;
    void OnIpcSendError(std::uint32_t messageId) override;
    void OnIpcConnectError() override;
    void OnIpcReceiveError() override;

private:
    void record(const std::string& callback);

    std::shared_ptr<const Action> m_action;
};
