#include "OperationLoad.h"

#include "AppLog.h"
#include "IPageOperationPort.h"

namespace {

// Of the loads whose certificate it refuses, the engine of API 4.1 cancels one in seven, each for
// itself: so many in a row do not come by chance.
constexpr int kMostRepeatsOfCancelled = 10;

}  // namespace

void COperationLoad::Prepare(const std::string& url) {
    m_url = url;
    m_phase = Phase::waiting;
    m_isAwaited = true;
    m_isRepeated = false;
    m_repeatsOfCancelled = 0;
}

void COperationLoad::Ask() {
    m_phase = Phase::waiting;
    // Once reported as unresponsive, a process is not reported again.
    if (isProcessStuck()) {
        m_port.EndProcess();
    }
    m_phase = Phase::asked;
    m_port.Load(m_url);
}

void COperationLoad::Forget() {
    m_phase = Phase::over;
    m_isAwaited = false;
    m_processHasLoaded = false;
    m_isProcessResponsive = true;
}

bool COperationLoad::IsToCome() const {
    return m_phase == Phase::waiting || m_phase == Phase::asked;
}

bool COperationLoad::TakeAnswer() {
    // A load that replaces another first brings the other's end, which already bears the new URI.
    if (IsToCome()) {
        return false;
    }
    m_phase = Phase::over;
    return true;
}

void COperationLoad::OnStarted() {
    m_processHasLoaded = true;
    // One that starts while the operation's own is not asked for yet is the last page's.
    if (m_phase != Phase::waiting) {
        m_phase = m_phase == Phase::asked && m_isAwaited ? Phase::started : Phase::over;
    }
}

void COperationLoad::OnResult() {
    m_isAwaited = false;
    if (m_phase == Phase::started) {
        m_phase = Phase::over;
    }
}

bool COperationLoad::RepeatCancelled() {
    if (m_phase != Phase::started || m_repeatsOfCancelled == kMostRepeatsOfCancelled) {
        return false;
    }
    ++m_repeatsOfCancelled;
    logLoss();
    Ask();
    return true;
}

// The engine can lose a load that takes the place of another while its first process is still
// starting: the load starts, and then the view stops loading without a word of how it ended.
bool COperationLoad::SurvivesStop() {
    if (m_phase != Phase::started) {
        return true;
    }
    logLoss();
    return repeatOnce();
}

bool COperationLoad::SurvivesProcess() {
    m_processHasLoaded = false;
    switch (m_phase) {
        case Phase::waiting:
            return true;
        case Phase::asked:
            // It was asked for while the process was already dying, and is lost with it.
            return repeatOnce();
        default:
            m_phase = Phase::over;
            return false;
    }
}

void COperationLoad::OnResponsiveness(bool isResponsive) {
    m_isProcessResponsive = isResponsive;
    if (m_isAwaited && m_phase == Phase::asked && isProcessStuck()) {
        // The load is lost with the process, and is repeated in a new one.
        m_port.EndProcess();
    }
}

bool COperationLoad::isProcessStuck() const {
    return m_processHasLoaded && !m_isProcessResponsive;
}

bool COperationLoad::repeatOnce() {
    if (!m_isAwaited || m_isRepeated) {
        return false;
    }
    m_isRepeated = true;
    Ask();
    return true;
}

void COperationLoad::logLoss() const {
    TK_LOG_WARNING("The engine lost a load, URI = %s", m_url.c_str());
}
