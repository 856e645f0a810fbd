#pragma once

#include <string>

class IPageOperationPort;

/// Tracks the load that the current operation asks for: tells its events from those of the page
/// before, and asks again for a load that the engine lost. Thread-unsafe.
class COperationLoad {
public:
    /// The port is not owned and must outlive this.
    explicit COperationLoad(IPageOperationPort& port) : m_port(port) {}
    COperationLoad(const COperationLoad&) = delete;
    COperationLoad& operator=(const COperationLoad&) = delete;

    /// A new operation will ask for this page. Until its load has started, every event is one of
    /// the page before.
    void Prepare(const std::string& url);

    /// Has the page loaded. A web process that is stuck in the page before is ended first.
    void Ask();

    /// The web view was replaced by a new one, which loads nothing yet.
    void Forget();

    /// Whether what the engine tells belongs to the page before.
    [[nodiscard]] bool IsToCome() const;

    /// The engine tells how a load goes on. True when it is this one, which can be lost no more.
    [[nodiscard]] bool TakeAnswer();

    void OnStarted();

    /// The operation has its result: its load goes on as it will, and is not asked for again.
    void OnResult();

    /// The engine cancelled a load without being asked. True when this load is asked for again.
    [[nodiscard]] bool RepeatCancelled();

    /// The web view has stopped loading and told no reason. False when this load is lost for good.
    [[nodiscard]] bool SurvivesStop();

    /// The web process has ended. False when this load has ended with it.
    [[nodiscard]] bool SurvivesProcess();

    /// Ends a web process that is stuck in the page before and keeps this load from starting.
    void OnResponsiveness(bool isResponsive);

private:
    enum class Phase {
        waiting,  ///< it has not been asked for yet
        asked,    ///< it has not started yet
        started,  ///< nothing has come of it yet
        over,     ///< it has been committed, has ended, or there is none
    };

    [[nodiscard]] bool isProcessStuck() const;
    [[nodiscard]] bool repeatOnce();
    void logLoss() const;

    IPageOperationPort& m_port;
    std::string m_url;
    Phase m_phase = Phase::over;
    bool m_isAwaited = false;
    bool m_isRepeated = false;
    int m_repeatsOfCancelled = 0;
    // A process that has not yet begun a load may be slow to start, which is no reason to end it.
    bool m_processHasLoaded = false;
    bool m_isProcessResponsive = true;
};
