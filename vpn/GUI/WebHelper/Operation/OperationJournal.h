#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

#include "BrowserTypes.h"
#include "IBrowserOperation.h"

/// Tells the log how operations begin and end, so that it alone shows what has happened. Of an
/// address it shows the scheme and the host, because the rest may be secret. Main thread only.
class COperationJournal {
public:
    /// An operation begins. It replaces one that has no result yet.
    void OnBegin(const IBrowserOperation& operation);

    /// A result goes to the agent. Without a running operation it comes from a late event.
    void OnResult(BrowserResultType result);

    /// The page at this address asked for a window of its own, and gets none. Only the first time
    /// during an operation is shown, because a page can ask without end.
    void OnWindowRefused(const std::string& uri);

    /// A site, by host and port, asked for the person's certificate, and is given one or not. The
    /// same answer is shown once during an operation, because each connection asks.
    void OnCertificateRequested(const std::string& site, bool isGiven);

private:
    struct Running {
        BrowserOperationType type;
        std::chrono::steady_clock::time_point begin;
    };

    std::optional<Running> m_running;
    bool m_isRefusalKnown = false;
    // By site, whether it was given one.
    std::map<std::string, bool> m_certificates;
};
