#include "JsonIpcSendQueue.h"

#include <boost/asio/error.hpp>
#include <utility>

#include "JsonIpcFrame.h"

CJsonIpcSend::CJsonIpcSend(std::uint32_t messageId, const std::string& payload)
    : m_messageId(messageId), m_frame(EncodeFrame(messageId, payload)) {}

std::size_t CJsonIpcSend::BytesLeft(std::size_t written) const {
    return m_phase == Phase::writing ? m_frame.size() - written : 0;
}

CJsonIpcSendQueue::Send CJsonIpcSendQueue::Start() {
    if (m_current != nullptr || m_waiting.empty()) {
        return nullptr;
    }
    m_current = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_current->m_phase = CJsonIpcSend::Phase::writing;
    return m_current;
}

bool CJsonIpcSendQueue::OnTimeout(CJsonIpcSend& send) {
    if (send.m_phase == CJsonIpcSend::Phase::over) {
        return false;
    }
    send.m_phase = CJsonIpcSend::Phase::late;
    return true;
}

boost::system::error_code CJsonIpcSendQueue::OnWritten(const Send& send, std::size_t written,
                                                       const boost::system::error_code& error) {
    const bool isLate = send->m_phase == CJsonIpcSend::Phase::late;
    const bool isComplete = written == send->m_frame.size();
    send->m_phase = CJsonIpcSend::Phase::over;
    m_isCut = m_isCut || (written != 0 && !isComplete);
    if (m_current == send) {
        m_current.reset();
    }
    // A short write without an error means that we cancelled it.
    return error || (isComplete && !isLate) ? error : boost::asio::error::operation_aborted;
}

std::deque<CJsonIpcSendQueue::Send> CJsonIpcSendQueue::Cancel() {
    if (m_current != nullptr && m_current->m_phase == CJsonIpcSend::Phase::writing) {
        m_current->m_phase = CJsonIpcSend::Phase::cancelled;
    }
    return std::exchange(m_waiting, {});
}
