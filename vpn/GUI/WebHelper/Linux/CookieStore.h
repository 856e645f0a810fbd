#pragma once

#include <webkit2/webkit2.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "StoredCookie.h"
#include "WebKitSymbolResolver.h"

/// Queries the engine's cookie store, through functions that are looked up at run time. Main thread
/// only.
class CCookieStore {
public:
    /// Receives the cookies, or nothing if the query failed, which has been logged. Called once for
    /// each query, later, on the main loop; never after this object was destroyed.
    using Answer = std::function<void(std::optional<std::vector<StoredCookie>>)>;

    /// The manager is not owned.
    explicit CCookieStore(WebKitCookieManager* manager) : m_manager(manager) {}
    CCookieStore(const CCookieStore&) = delete;
    CCookieStore& operator=(const CCookieStore&) = delete;

    /// False if the engine lacks the functions. No query may be made then.
    [[nodiscard]] static bool CanBeAsked();

    /// Queries the cookies that a request for this URI would carry.
    void QueryFor(const std::string& uri, Answer answer) const;

    /// Queries every cookie. If the engine cannot list them all, queries those for this URI.
    void QueryAll(const std::string& uri, Answer answer) const;

private:
    struct Query;
    struct Alive {};

    [[nodiscard]] std::unique_ptr<Query> makeQuery(
        Answer answer, CWebKitSymbolResolver::GetCookiesFinish finish) const;

    static void getCookiesAsyncReadyCB(GObject* manager, GAsyncResult* result, gpointer query);

    WebKitCookieManager* m_manager;
    std::shared_ptr<Alive> m_alive = std::make_shared<Alive>();
};
