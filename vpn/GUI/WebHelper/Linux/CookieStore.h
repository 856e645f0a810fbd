#pragma once

#include <webkit2/webkit2.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "StoredCookie.h"
#include "WebKitSymbolResolver.h"

/// The engine's cookie store, asked through the functions that are looked up at run time. Main
/// thread only.
class CCookieStore {
public:
    /// Takes the cookies, or nothing when the query failed, which has been logged. Called once for
    /// each query, later, on the main loop; never after the end of the object that was asked.
    using Answer = std::function<void(std::optional<std::vector<StoredCookie>>)>;

    /// The manager is not owned.
    explicit CCookieStore(WebKitCookieManager* manager) : m_manager(manager) {}
    CCookieStore(const CCookieStore&) = delete;
    CCookieStore& operator=(const CCookieStore&) = delete;

    /// False with an engine that lacks the functions: then nothing may be asked.
    [[nodiscard]] static bool CanBeAsked();

    /// Asks for the cookies that a request for this URI would carry.
    void QueryFor(const std::string& uri, Answer answer) const;

    /// Asks for every cookie, or, with an engine that cannot tell, for those of this URI.
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
