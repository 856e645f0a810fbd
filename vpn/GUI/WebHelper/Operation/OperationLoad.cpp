#include "OperationLoad.h"

#include "AppLog.h"
#include "IPageOperationPort.h"

namespace {

// The engine of API 4.1 cancels one in seven of the loads whose certificate it refuses, each
// independently of the others. Ten in a row do not come by chance.
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
    // The engine reports an unresponsive process only once, so a stuck process must be ended now.
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

bool COperationLoad::MayDecide() const {
    return !IsToCome() && m_phase != Phase::usedUp;
}

void COperationLoad::UseUp() {
    m_phase = Phase::usedUp;
}

bool COperationLoad::TakeAnswer() {
    // When a load replaces another one, the engine first reports the end of the other load, with
    // the new URI already.
    if (!MayDecide()) {
        return false;
    }
    m_phase = Phase::over;
    return true;
}

void COperationLoad::OnStarted() {
    m_processHasLoaded = true;
    // A load that starts before the operation's own was requested belongs to the previous page.
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

// The engine can lose a load that replaces another one while the view's first process is still
// starting: the load starts, and then the view stops loading and reports no end.
bool COperationLoad::SurvivesStop() {
    if (m_phase != Phase::started) {
        return true;
    }
    logLoss();
    return repeatOnce();
}

bool COperationLoad::SurvivesProcess(ProcessEnd end) {
    m_processHasLoaded = false;
    switch (m_phase) {
        case Phase::waiting:
            return true;
        case Phase::asked:
            // The load was requested while the process was already dying, and is lost with it.
            return repeatOnce();
        case Phase::usedUp:
            return true;
        case Phase::started:
            // Until the commit, the page in the process is the one before.
            if (end == ProcessEnd::forced) {
                return repeatOnce();
            }
            [[fallthrough]];
        default:
            m_phase = Phase::over;
            return false;
    }
}

void COperationLoad::OnResponsiveness(bool isResponsive) {
    m_isProcessResponsive = isResponsive;
    if (m_isAwaited && m_phase == Phase::asked && isProcessStuck()) {
        // This loses the load as well. It is repeated in a new process.
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
