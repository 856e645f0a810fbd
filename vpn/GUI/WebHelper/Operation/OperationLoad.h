#pragma once

#include <string>

class IPageOperationPort;

/// Who ended the web process.
enum class ProcessEnd {
    itsOwn,  ///< nobody: it crashed or was killed
    forced,  ///< this program, because of the page in it
};

/// Tracks the current operation's load, ignores the previous page's events, and repeats a load that
/// the engine lost. Thread-unsafe.
class COperationLoad {
public:
    /// The port is not owned and must outlive this.
    explicit COperationLoad(IPageOperationPort& port) : m_port(port) {}
    COperationLoad(const COperationLoad&) = delete;
    COperationLoad& operator=(const COperationLoad&) = delete;

    /// A new operation will load this page. Until that load has started, every event belongs to the
    /// previous page.
    void Prepare(const std::string& url);

    /// Requests the load. A web process that is stuck in the previous page is ended first.
    void Ask();

    /// The web view was replaced by a new one, which loads nothing yet.
    void Forget();

    /// Whether this load has not started yet. The engine's reports then belong to the previous
    /// page.
    [[nodiscard]] bool IsToCome() const;

    /// Whether the engine's reports belong to this load, and may decide.
    [[nodiscard]] bool MayDecide() const;

    /// This load has brought the result before its end. Whatever it still brings decides nothing,
    /// for no operation.
    void UseUp();

    /// The engine reports how a load goes on. Returns false if the report may not decide. Otherwise
    /// this load counts as answered and can no longer be lost.
    [[nodiscard]] bool TakeAnswer();

    void OnStarted();

    /// The operation has its result. Its load may go on but is not repeated.
    void OnResult();

    /// The engine cancelled a load by itself. Returns true if this load is requested again.
    [[nodiscard]] bool RepeatCancelled();

    /// The web view has stopped loading and no end was reported. Returns false if this load is lost
    /// for good.
    [[nodiscard]] bool SurvivesStop();

    /// The web process has ended. Returns false if this load has ended with it.
    [[nodiscard]] bool SurvivesProcess(ProcessEnd end);

    /// The web process has become responsive or unresponsive. If it is stuck in the previous page
    /// and keeps this load from starting, it is ended.
    void OnResponsiveness(bool isResponsive);

private:
    enum class Phase {
        waiting,  ///< not requested yet
        asked,    ///< requested, but not started yet
        started,  ///< started, but not committed yet
        over,     ///< committed or ended, or there is no load
        usedUp,   ///< has brought the result, and may still go on
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
    // A process that has not begun any load may only be slow to start. It is not ended for that.
    bool m_processHasLoaded = false;
    bool m_isProcessResponsive = true;
};
