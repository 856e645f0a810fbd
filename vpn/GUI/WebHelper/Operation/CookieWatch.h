#pragma once

#include <optional>
#include <string>
#include <vector>

#include "StoredCookie.h"

/// Decides, for engines that hide "Set-Cookie", when the cookie store is worth asking and which of
/// the cookies in its answer are new: those that did not stand in the store, with this value, when
/// the operation began. One query is under way at a time. Thread-unsafe.
class CCookieWatch {
public:
    /// A new operation begins, or the current one has its result: nothing is asked until a baseline
    /// is set. An answer that is still on its way must be told, too.
    void Begin();

    /// What stood in the store when the operation began; nothing when that cannot be known.
    void SetBaseline(std::optional<std::vector<StoredCookie>> cookies);

    /// Some cookie in the store has changed.
    void OnCookiesChanged();

    /// Cookie changes are no longer reported, for this operation and all that follow: every page
    /// may have brought one.
    void OnChangesUntold() { m_changesUntold = true; }

    /// The engine asks a server for something: later changes are no longer the last page's.
    void OnRequest();

    /// A page has come whose headers show no cookie.
    void OnPage(const std::string& uri);

    /// The URI to ask the store for now, once for each time that is due.
    [[nodiscard]] std::optional<std::string> TakeQuery();

    /// The last query has been answered, or has failed.
    void OnAnswered() { m_inFlight = false; }

    /// Those of the cookies that do not stand in the baseline, which is set.
    [[nodiscard]] std::vector<StoredCookie> NewOnes(const std::vector<StoredCookie>& cookies) const;

private:
    std::optional<std::vector<StoredCookie>> m_baseline;
    bool m_changed = false;
    bool m_changesUntold = false;
    std::string m_pageUri;
    // The last page's cookies may still be reported: nothing else has been asked for since.
    bool m_pageOpen = false;
    bool m_due = false;
    bool m_inFlight = false;
};
