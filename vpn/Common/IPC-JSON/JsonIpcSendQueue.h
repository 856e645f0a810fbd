#pragma once

#include <boost/system/error_code.hpp>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

/// One message on its way out. Thread-unsafe.
class CJsonIpcSend {
public:
    CJsonIpcSend(std::uint32_t messageId, const std::string& payload);

    [[nodiscard]] std::uint32_t MessageId() const { return m_messageId; }
    [[nodiscard]] const std::vector<char>& Frame() const { return m_frame; }

    /// How many bytes are still to be written behind the given number; 0 stops the write.
    [[nodiscard]] std::size_t BytesLeft(std::size_t written) const;

private:
    friend class CJsonIpcSendQueue;

    enum class Phase {
        waiting,    ///< none of it has been written
        writing,    ///< its time runs
        cancelled,  ///< the same, but no further byte is to be written
        late,       ///< its time is over, however much was written
        over,       ///< its write has ended
    };

    const std::uint32_t m_messageId;
    const std::vector<char> m_frame;
    Phase m_phase = Phase::waiting;
};

/// The messages on their way out. One is written at a time, since two writes at once would mix
/// their bytes; and none behind a frame that was cut, since the peer would take it for the rest.
/// No socket, no clock. Thread-unsafe: the I/O thread's.
class CJsonIpcSendQueue {
public:
    using Send = std::shared_ptr<CJsonIpcSend>;

    void Add(Send send) { m_waiting.push_back(std::move(send)); }

    /// Takes the next message, whose write is to start now unless IsCut(). Null while another is
    /// being written, or when none waits.
    [[nodiscard]] Send Start();

    [[nodiscard]] bool IsWriting() const { return m_current != nullptr; }

    /// Whether a frame was written in part, so that every further message fails.
    [[nodiscard]] bool IsCut() const { return m_isCut; }

    /// A message's time is over. False when its write has ended, so that it was in time.
    [[nodiscard]] static bool OnTimeout(CJsonIpcSend& send);

    /// A message's write has ended. Gives the message's own error: that of the write, or
    /// "operation aborted" for one that was late or stopped on the way.
    [[nodiscard]] boost::system::error_code OnWritten(const Send& send, std::size_t written,
                                                      const boost::system::error_code& error);

    /// Stops the write that is going on, and gives the messages that wait, which have failed.
    [[nodiscard]] std::deque<Send> Cancel();

private:
    std::deque<Send> m_waiting;
    Send m_current;
    bool m_isCut = false;
};
