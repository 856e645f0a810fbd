#include "HelperConnection.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>

#include "Waiting.h"

namespace {

// Cookie values have no limit of their own. This limit keeps a wrong length from taking all memory.
constexpr std::size_t kLongestResult = std::size_t{64} * 1024 * 1024;
constexpr timeval kSendTimeout{10, 0};

template <class Value>
void SetOption(int descriptor, int level, int name, const Value& value) {
    // This fails only if the connection is gone. The next send or read reports that.
    static_cast<void>(setsockopt(descriptor, level, name, &value, sizeof(value)));
}

}  // namespace

CHelperConnection::CHelperConnection(CUniqueFd socket)
    : m_socket(std::move(socket)), m_reader(kLongestResult) {
    SetOption(m_socket.Get(), IPPROTO_TCP, TCP_NODELAY, int{1});
    SetOption(m_socket.Get(), SOL_SOCKET, SO_SNDTIMEO, kSendTimeout);
}

bool CHelperConnection::SendOperation(const CBrowserOperation& operation) {
    std::string payload;
    return operation.Serialize(payload) && SendPayload(payload);
}

bool CHelperConnection::SendPayload(const std::string& payload) {
    const std::vector<char> frame = EncodeFrame(kBrowserResultMessageId, payload);
    return SendBytes({frame.data(), frame.size()});
}

bool CHelperConnection::SendBytes(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = send(m_socket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

ReceiveOutcome CHelperConnection::ReceivePayload(std::string& payload, Deadline deadline) {
    for (;;) {
        const ReceiveOutcome filled = fill(m_wanted, deadline);
        if (filled != ReceiveOutcome::Received) {
            return filled;
        }
        const JsonIpcFrameStep step =
            m_reader.ProcessReceivedData(m_received.data(), m_received.size());
        m_wanted = step.nextSize;
        if (step.outcome == JsonIpcFrameStep::Outcome::refusal) {
            return ReceiveOutcome::Garbled;
        }
        if (step.outcome == JsonIpcFrameStep::Outcome::message) {
            payload.assign(m_received.data(), step.length);
        }
        m_received.clear();
        if (step.outcome == JsonIpcFrameStep::Outcome::message) {
            return ReceiveOutcome::Received;
        }
    }
}

ReceiveOutcome CHelperConnection::ReceiveResult(CBrowserResult& result, Deadline deadline) {
    std::string payload;
    const ReceiveOutcome outcome = ReceivePayload(payload, deadline);
    if (outcome != ReceiveOutcome::Received) {
        return outcome;
    }
    return result.Deserialize(payload) ? ReceiveOutcome::Received : ReceiveOutcome::Garbled;
}

// Reads until that many bytes have come. Bytes that came before a deadline stay for the next call.
ReceiveOutcome CHelperConnection::fill(std::size_t size, Deadline deadline) {
    std::size_t count = m_received.size();
    while (count < size) {
        if (!WaitReadable({m_socket.Get()}, deadline).has_value()) {
            return ReceiveOutcome::TimedOut;
        }
        m_received.resize(size);
        const ssize_t got = recv(m_socket.Get(), m_received.data() + count, size - count, 0);
        count += got > 0 ? static_cast<std::size_t>(got) : 0;
        m_received.resize(count);
        if (got == 0 || (got < 0 && errno != EINTR)) {
            return ReceiveOutcome::Closed;
        }
    }
    return ReceiveOutcome::Received;
}

void CHelperConnection::Abort() {
    SetOption(m_socket.Get(), SOL_SOCKET, SO_LINGER, linger{1, 0});
    m_socket.Reset();
}
