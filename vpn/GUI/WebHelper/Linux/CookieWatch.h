#pragma once

#include <optional>
#include <string>
#include <vector>

#include "StoredCookie.h"

/// What a search for an operation's two cookies came to.
struct FoundCookie {
    enum class Kind { cookie, errorCookie };
    Kind kind;
    std::string value;
};

/// Decides, for engines that hide "Set-Cookie", when the cookie store is worth asking and what in
/// its answer is the operation's: a cookie that came with a page of the watched host, and that did
/// not stand in the store, with this value, when the operation began. Plain code: it is told of
/// events and asks for queries, one at a time. Thread-unsafe.
class CCookieWatch {
public:
    /// A new operation begins. An answer that is still on its way is waited for and dropped.
    void Begin(const std::string& cookieName, const std::string& errorCookieName);

    /// The operation has its result: nothing more is asked for.
    void End() { Begin("", ""); }

    /// What stood in the store when the operation began. Until it is known nothing is asked.
    void SetBaseline(std::vector<StoredCookie> cookies);

    /// Some cookie in the store has changed.
    void OnCookiesChanged();

    /// From here on changes go untold, for this operation and all that follow: any page may have
    /// brought one.
    void OnChangesUntold() { m_changesUntold = true; }

    /// The engine asks a server for something: later changes are no longer the last page's.
    void OnResourceStarted();

    /// A watched response has come whose headers show no cookie.
    void OnResponse(const std::string& uri);

    /// The URI to ask the store for now, once for each time that is due.
    std::optional<std::string> TakeQuery();

    /// The answer to the last query; the operation's cookie in it before its error cookie.
    std::optional<FoundCookie> OnAnswer(const std::vector<StoredCookie>& cookies);

    /// The last query failed, or its answer is another operation's.
    void OnNoAnswer();

private:
    const StoredCookie* FindNew(const std::vector<StoredCookie>& cookies,
                                const std::string& name) const;

    std::string m_cookieName;
    std::string m_errorCookieName;
    std::optional<std::vector<StoredCookie>> m_baseline;
    bool m_changed = false;
    bool m_changesUntold = false;
    std::string m_responseUri;
    // The last page's cookies may still be reported: nothing else has been asked for since.
    bool m_responseOpen = false;
    bool m_due = false;
    bool m_inFlight = false;
};
