#include "OperationLoad.h"

#include <utility>

#include "AppLog.h"
#include "MainLoopSource.h"

namespace {

// Of the loads whose certificate it refuses, the engine of API 4.1 cancels one in seven, each for
// itself: so many in a row do not come by chance.
constexpr int kMostRepeatsOfCancelled = 10;

}  // namespace

COperationLoad::COperationLoad(WebKitWebView* webView, std::function<void()> onLost)
    : m_webView(webView), m_onLost(std::move(onLost)) {
    g_signal_connect(m_webView, "notify::is-loading", G_CALLBACK(isLoadingChangedCB), this);
    g_signal_connect(m_webView, "notify::is-web-process-responsive",
                     G_CALLBACK(responsivenessChangedCB), this);
}

COperationLoad::~COperationLoad() {
    RemoveSource(m_lostLoadSource);
    g_signal_handlers_disconnect_by_data(m_webView, this);
}

void COperationLoad::Prepare(const std::string& uri) {
    m_uri = uri;
    m_mayBeRepeated = true;
    m_repeatsOfCancelled = 0;
    m_phase = Phase::waiting;
}

void COperationLoad::Ask() {
    m_phase = Phase::waiting;
    // Known to be unresponsive before, the process is not reported again.
    if (isProcessStuck()) {
        webkit_web_view_terminate_web_process(m_webView);
    }
    m_phase = Phase::asked;
    webkit_web_view_load_uri(m_webView, m_uri.c_str());
}

bool COperationLoad::IsToCome() const {
    return m_phase == Phase::waiting || m_phase == Phase::asked;
}

bool COperationLoad::isProcessStuck() const {
    return m_processHasLoaded && webkit_web_view_get_is_web_process_responsive(m_webView) == FALSE;
}

void COperationLoad::OnStarted() {
    m_processHasLoaded = true;
    // One that starts while the operation's own is not asked for yet is the last page's.
    if (m_phase != Phase::waiting) {
        m_phase = m_phase == Phase::asked ? Phase::started : Phase::over;
    }
}

void COperationLoad::OnResult() {
    m_mayBeRepeated = false;
    if (m_phase == Phase::started) {
        m_phase = Phase::over;
    }
}

bool COperationLoad::OnCancelledByEngine() {
    if (m_phase != Phase::started || m_repeatsOfCancelled == kMostRepeatsOfCancelled) {
        return false;
    }
    ++m_repeatsOfCancelled;
    logLoss();
    Ask();
    return true;
}

bool COperationLoad::OutlivesProcess() {
    m_processHasLoaded = false;
    switch (m_phase) {
        case Phase::waiting:
            return true;
        case Phase::asked:
            // It was asked for while the process was already dying, and is lost with it.
            repeat();
            return true;
        default:
            m_phase = Phase::over;
            return false;
    }
}

void COperationLoad::logLoss() const {
    TK_LOG_WARNING("The engine lost a load, URI = %s", m_uri.c_str());
}

void COperationLoad::repeat() {
    if (!m_mayBeRepeated) {
        m_onLost();
        return;
    }
    m_mayBeRepeated = false;
    Ask();
}

// The engine can lose a load that takes the place of another while its first process is still
// starting: the load starts, and then the view stops loading without a word of how it ended.
void COperationLoad::isLoadingChangedCB(WebKitWebView* webView, GParamSpec* /*property*/,
                                        COperationLoad* self) {
    RemoveSource(self->m_lostLoadSource);
    if (self->m_phase == Phase::started && !webkit_web_view_is_loading(webView)) {
        // An end that is told comes right behind this.
        self->m_lostLoadSource = g_idle_add(lookForLostLoadCB, self);
    }
}

// The last operation's page is busy with itself, or frozen, and would keep this operation's from
// ever starting: its process goes, and the load is asked for once more, in a new one.
void COperationLoad::responsivenessChangedCB(WebKitWebView* webView, GParamSpec* /*property*/,
                                             COperationLoad* self) {
    if (self->m_phase == Phase::asked && self->isProcessStuck()) {
        webkit_web_view_terminate_web_process(webView);
    }
}

gboolean COperationLoad::lookForLostLoadCB(gpointer load) {
    auto* const self = static_cast<COperationLoad*>(load);
    self->m_lostLoadSource = 0;
    if (self->m_phase == Phase::started) {
        self->logLoss();
        self->repeat();
    }
    return G_SOURCE_REMOVE;
}
