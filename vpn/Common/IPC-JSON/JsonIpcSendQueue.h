#pragma once

#include <boost/system/error_code.hpp>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

/// One outgoing message. Thread-unsafe.
class CJsonIpcSend {
public:
    CJsonIpcSend(std::uint32_t messageId, const std::string& payload);

    [[nodiscard]] std::uint32_t MessageId() const { return m_messageId; }
    [[nodiscard]] const std::vector<char>& Frame() const { return m_frame; }

    /// Returns how many bytes are still to be written after the given number; 0 stops the write.
    [[nodiscard]] std::size_t BytesLeft(std::size_t written) const;

private:
    friend class CJsonIpcSendQueue;

    enum class Phase {
        waiting,    ///< its write has not started
        writing,    ///< its write and its timer run
        cancelled,  ///< the same, but no further byte may be written
        late,       ///< its timer has expired, however much was written
        over,       ///< its write has ended
    };

    const std::uint32_t m_messageId;
    const std::vector<char> m_frame;
    Phase m_phase = Phase::waiting;
};

/// The outgoing messages. One is written at a time, because two writes at once would mix their
/// bytes. Nothing is written after a frame that was cut, because the peer would take it for the
/// rest of that frame. No socket, no clock. Thread-unsafe: used on the I/O thread.
class CJsonIpcSendQueue {
public:
    using Send = std::shared_ptr<CJsonIpcSend>;

    void Add(Send send) { m_waiting.push_back(std::move(send)); }

    /// Takes the next message. Its write must start now, unless IsCut(). Returns null while another
    /// message is being written, or if none waits.
    [[nodiscard]] Send Start();

    [[nodiscard]] bool IsWriting() const { return m_current != nullptr; }

    /// Whether a frame was written only in part. Every further message then fails.
    [[nodiscard]] bool IsCut() const { return m_isCut; }

    /// The timer of a message has expired. Returns false if its write had already ended, in time.
    [[nodiscard]] static bool OnTimeout(CJsonIpcSend& send);

    /// The write of a message has ended. Returns the message's own error: the error of the write,
    /// or "operation aborted" if the message was late or was stopped before its end.
    [[nodiscard]] boost::system::error_code OnWritten(const Send& send, std::size_t written,
                                                      const boost::system::error_code& error);

    /// Stops the current write. Removes and returns the waiting messages, which have failed.
    [[nodiscard]] std::deque<Send> Cancel();

private:
    std::deque<Send> m_waiting;
    Send m_current;
    bool m_isCut = false;
};
