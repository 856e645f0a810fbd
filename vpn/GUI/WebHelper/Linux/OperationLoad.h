#pragma once

#include <webkit2/webkit2.h>

#include <functional>
#include <string>

/// The load that an operation asks its web view for, until the page comes or fails. Loads of the
/// page that stood there before end in between, and the engine can lose one: this tells them
/// apart, and asks once more for a lost one. Main thread only.
class COperationLoad {
public:
    /// The view is not owned and must outlive this. `onLost` is called when the load that was asked
    /// for once more has been lost, too.
    COperationLoad(WebKitWebView* webView, std::function<void()> onLost);
    ~COperationLoad();
    COperationLoad(const COperationLoad&) = delete;
    COperationLoad& operator=(const COperationLoad&) = delete;

    /// From here on what the view tells is the last page's, until the load has been asked for and
    /// has started.
    void Prepare(const std::string& uri);

    void Ask();

    /// True while what the view tells belongs to an earlier page.
    [[nodiscard]] bool IsToCome() const;

    /// The view tells that a load has started.
    void OnStarted();

    /// The view tells how the load goes on, so that it cannot be lost any more.
    void OnAnswered() { m_phase = Phase::over; }

    /// The operation has its result: its load goes on as it will, and is not asked for once more.
    void OnResult();

    /// The view tells that the engine has cancelled a load, which nobody had asked of it. True when
    /// it was this one and it has been asked for again.
    [[nodiscard]] bool OnCancelledByEngine();

    /// The view's web process has ended. True when the load is still to come, in a new process.
    [[nodiscard]] bool OutlivesProcess();

private:
    enum class Phase {
        waiting,  ///< it has not been asked for yet
        asked,    ///< it has not started yet
        started,  ///< nothing has come of it yet
        over,     ///< it has been committed, has ended, or there is none
    };

    [[nodiscard]] bool isProcessStuck() const;
    void logLoss() const;
    void repeat();

    static void isLoadingChangedCB(WebKitWebView* webView, GParamSpec* property,
                                   COperationLoad* self);
    static void responsivenessChangedCB(WebKitWebView* webView, GParamSpec* property,
                                        COperationLoad* self);
    static gboolean lookForLostLoadCB(gpointer load);

    WebKitWebView* m_webView;
    std::function<void()> m_onLost;
    std::string m_uri;
    Phase m_phase = Phase::over;
    // A process that has not yet begun a load may be slow to start, which is no reason to end it.
    bool m_processHasLoaded = false;
    // Lost, it is asked for once more, as long as its operation has no result.
    bool m_mayBeRepeated = false;
    int m_repeatsOfCancelled = 0;
    guint m_lostLoadSource = 0;
};
