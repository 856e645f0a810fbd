#include "CookieStore.h"

#include <libsoup/soup.h>

#include <cassert>
#include <memory>

#include "AppLog.h"
#include "GObjectPtr.h"
#include "MainThread.h"
#include "WebKitSymbolResolver.h"

namespace {

struct SoupCookieFree {
    void operator()(SoupCookie* cookie) const { soup_cookie_free(cookie); }
};

void onCookieListItem(gpointer item, gpointer cookies) {
    const std::unique_ptr<SoupCookie, SoupCookieFree> cookie(static_cast<SoupCookie*>(item));
    static_cast<std::vector<StoredCookie>*>(cookies)->push_back(
        {soup_cookie_get_name(cookie.get()), soup_cookie_get_value(cookie.get()),
         soup_cookie_get_domain(cookie.get()), soup_cookie_get_path(cookie.get()),
         soup_cookie_get_secure(cookie.get()) != FALSE});
}

std::vector<StoredCookie> TakeCookies(GList* list) {
    std::vector<StoredCookie> cookies;
    g_list_foreach(list, onCookieListItem, &cookies);
    g_list_free(list);
    return cookies;
}

}  // namespace

struct CCookieStore::Query {
    std::weak_ptr<Alive> store;
    Answer answer;
    CWebKitSymbolResolver::GetCookiesFinish finish;
};

std::unique_ptr<CCookieStore::Query> CCookieStore::makeQuery(
    Answer answer, CWebKitSymbolResolver::GetCookiesFinish finish) const {
    return std::make_unique<Query>(Query{m_alive, std::move(answer), finish});
}

void CCookieStore::getCookiesAsyncReadyCB(GObject* manager, GAsyncResult* result, gpointer query) {
    assert(IsMainThread());
    const std::unique_ptr<Query> answered(static_cast<Query*>(query));
    GError* rawError = nullptr;
    GList* const list = answered->finish(WEBKIT_COOKIE_MANAGER(manager), result, &rawError);
    const GErrorPtr error(rawError);
    if (error) {
        TK_LOG_ERROR("Unable to get cookies from cookie manager. %s", error->message);
    }
    std::vector<StoredCookie> cookies = TakeCookies(list);
    if (!answered->store.expired()) {
        answered->answer(error ? std::nullopt : std::make_optional(std::move(cookies)));
    }
}

bool CCookieStore::CanBeAsked() {
    return CWebKitSymbolResolver::GetInstance().ready;
}

void CCookieStore::QueryFor(const std::string& uri, Answer answer) const {
    assert(IsMainThread());
    const CWebKitSymbolResolver& resolver = CWebKitSymbolResolver::GetInstance();
    resolver.getCookies(m_manager, uri.c_str(), nullptr, getCookiesAsyncReadyCB,
                        makeQuery(std::move(answer), resolver.getCookiesFinish).release());
}

void CCookieStore::QueryAll(const std::string& uri, Answer answer) const {
    assert(IsMainThread());
    const CWebKitSymbolResolver& resolver = CWebKitSymbolResolver::GetInstance();
    if (resolver.getAllCookies == nullptr || resolver.getAllCookiesFinish == nullptr) {
        QueryFor(uri, std::move(answer));
        return;
    }
    resolver.getAllCookies(m_manager, nullptr, getCookiesAsyncReadyCB,
                           makeQuery(std::move(answer), resolver.getAllCookiesFinish).release());
}
