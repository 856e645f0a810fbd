#pragma once

#include <optional>
#include <string>
#include <vector>

#include "StoredCookie.h"

/// For engines that hide "Set-Cookie": decides when to query the cookie store, and which cookies in
/// the answer are new. A cookie is new if the store did not hold it, with this value, when the
/// operation began. Only one query is under way at a time. Thread-unsafe.
class CCookieWatch {
public:
    /// A new operation begins, or the current one has its result. No query is made until a baseline
    /// is set. OnAnswered() must still be called for a query that is under way.
    void Begin();

    /// Sets what the store held when the operation began; nothing if that is unknown.
    void SetBaseline(std::optional<std::vector<StoredCookie>> cookies);

    /// Some cookie in the store has changed.
    void OnCookiesChanged();

    /// Cookie changes are no longer reported, for this operation and all that follow. From now on
    /// the store is queried after every page, because every page may have set a cookie.
    void OnChangesUntold() { m_changesUntold = true; }

    /// The engine sends a request. Later changes no longer belong to the last page.
    void OnRequest();

    /// A page's response has come, without a visible "Set-Cookie".
    void OnPage(const std::string& uri);

    /// Returns the URI for which the store must be queried now, if a query is due. That query then
    /// counts as under way.
    [[nodiscard]] std::optional<std::string> TakeQuery();

    /// The last query has been answered, or has failed.
    void OnAnswered() { m_inFlight = false; }

    /// Returns the cookies that are not in the baseline. The baseline must be set.
    [[nodiscard]] std::vector<StoredCookie> NewOnes(const std::vector<StoredCookie>& cookies) const;

private:
    std::optional<std::vector<StoredCookie>> m_baseline;
    bool m_changed = false;
    bool m_changesUntold = false;
    std::string m_pageUri;
    // Whether a change may still belong to the last page: nothing was requested since.
    bool m_pageOpen = false;
    bool m_due = false;
    bool m_inFlight = false;
};
