#include "CookieStore.h"

#include <libsoup/soup.h>

#include <memory>

#include "AppLog.h"
#include "GObjectPtr.h"
#include "WebKitSymbolResolver.h"

namespace {

std::vector<StoredCookie> TakeCookies(GList* list) {
    std::vector<StoredCookie> cookies;
    for (const GList* item = list; item != nullptr; item = item->next) {
        auto* const cookie = static_cast<SoupCookie*>(item->data);
        cookies.push_back({soup_cookie_get_name(cookie), soup_cookie_get_value(cookie),
                           soup_cookie_get_domain(cookie), soup_cookie_get_path(cookie)});
    }
    g_list_free_full(list,
                     [](gpointer cookie) { soup_cookie_free(static_cast<SoupCookie*>(cookie)); });
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
    const CWebKitSymbolResolver& resolver = CWebKitSymbolResolver::GetInstance();
    resolver.getCookies(m_manager, uri.c_str(), nullptr, getCookiesAsyncReadyCB,
                        makeQuery(std::move(answer), resolver.getCookiesFinish).release());
}

void CCookieStore::QueryAll(const std::string& uri, Answer answer) const {
    const CWebKitSymbolResolver& resolver = CWebKitSymbolResolver::GetInstance();
    if (resolver.getAllCookies == nullptr || resolver.getAllCookiesFinish == nullptr) {
        QueryFor(uri, std::move(answer));
        return;
    }
    resolver.getAllCookies(m_manager, nullptr, getCookiesAsyncReadyCB,
                           makeQuery(std::move(answer), resolver.getAllCookiesFinish).release());
}
