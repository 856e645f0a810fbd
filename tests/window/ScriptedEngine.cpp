#include "ScriptedEngine.h"

#include <libsoup/soup.h>

ScriptedEngine& ScriptedEngine::Instance() {
    static ScriptedEngine engine;
    return engine;
}

void ScriptedEngine::Start() {
    g_clear_object(&m_resource);
    *this = ScriptedEngine();
}

void ScriptedEngine::SetLoading(bool loading) {
    m_loading = loading;
    g_object_notify(G_OBJECT(m_view), "is-loading");
}

void ScriptedEngine::TellLoadChanged(WebKitLoadEvent event, guint status) {
    m_status = status;
    g_signal_emit_by_name(m_view, "load-changed", event);
}

void ScriptedEngine::TellLoadFailed(GQuark domain, int code) {
    GError* error = g_error_new_literal(domain, code, "a failure");
    gboolean handled = FALSE;
    g_signal_emit_by_name(m_view, "load-failed", WEBKIT_LOAD_STARTED, m_uri.c_str(), error,
                          &handled);
    g_error_free(error);
}

void ScriptedEngine::TellResourceStarted(const std::string& uri) {
    g_clear_object(&m_resource);
    m_resource = WEBKIT_WEB_RESOURCE(g_object_new(WEBKIT_TYPE_WEB_RESOURCE, nullptr));
    WebKitURIRequest* const request = webkit_uri_request_new(uri.c_str());
    g_signal_emit_by_name(m_view, "resource-load-started", m_resource, request);
    g_object_unref(request);
}

void ScriptedEngine::TellNoResponse() {
    m_hasResponse = false;
    g_object_notify(G_OBJECT(m_resource), "response");
}

void ScriptedEngine::AnswerQuery(const Cookies& cookies) {
    m_answer = cookies;
    const Query query = m_queries.front();
    m_queries.pop_front();
    query.callback(G_OBJECT(query.manager), nullptr, query.data);
}

/// What the engine's functions do here.
struct ScriptedEngineFunctions {
    static ScriptedEngine& Engine() { return ScriptedEngine::Instance(); }

    static void Load(WebKitWebView* view, const char* uri) {
        Engine().m_view = view;
        Engine().m_uri = uri;
        Engine().m_loads.emplace_back(uri);
    }

    static const char* Uri() { return Engine().m_uri.c_str(); }
    static bool IsLoading() { return Engine().m_loading; }
    static void Forget() { Engine().m_uri.clear(); }
    static WebKitWebResource* Resource() { return Engine().m_resource; }
    static bool HasResponse() { return Engine().m_hasResponse; }
    static guint Status() { return Engine().m_status; }

    static void AddQuery(WebKitCookieManager* manager, GAsyncReadyCallback callback,
                         gpointer data) {
        Engine().m_queries.push_back({manager, callback, data});
    }

    static GList* FinishQuery() {
        GList* list = nullptr;
        for (const auto& [name, value] : Engine().m_answer) {
            list = g_list_append(
                list, soup_cookie_new(name.c_str(), value.c_str(), "127.0.0.1", "/", -1));
        }
        return list;
    }
};

extern "C" {

void webkit_web_view_load_uri(WebKitWebView* view, const gchar* uri) {
    ScriptedEngineFunctions::Load(view, uri);
}

void webkit_web_view_load_request(WebKitWebView* view, WebKitURIRequest* request) {
    ScriptedEngineFunctions::Load(view, webkit_uri_request_get_uri(request));
}

void webkit_web_view_stop_loading(WebKitWebView* /*view*/) {
    ScriptedEngineFunctions::Forget();
}

const gchar* webkit_web_view_get_uri(WebKitWebView* /*view*/) {
    return ScriptedEngineFunctions::Uri();
}

gboolean webkit_web_view_is_loading(WebKitWebView* /*view*/) {
    return ScriptedEngineFunctions::IsLoading() ? TRUE : FALSE;
}

WebKitWebResource* webkit_web_view_get_main_resource(WebKitWebView* /*view*/) {
    return ScriptedEngineFunctions::Resource();
}

WebKitURIResponse* webkit_web_resource_get_response(WebKitWebResource* resource) {
    // Never looked into but by the functions below.
    return ScriptedEngineFunctions::HasResponse() ? reinterpret_cast<WebKitURIResponse*>(resource)
                                                  : nullptr;
}

guint webkit_uri_response_get_status_code(WebKitURIResponse* /*response*/) {
    return ScriptedEngineFunctions::Status();
}

void webkit_cookie_manager_get_cookies(WebKitCookieManager* manager, const gchar* /*uri*/,
                                       GCancellable* /*cancellable*/, GAsyncReadyCallback callback,
                                       gpointer data) {
    ScriptedEngineFunctions::AddQuery(manager, callback, data);
}

void webkit_cookie_manager_get_all_cookies(WebKitCookieManager* manager,
                                           GCancellable* /*cancellable*/,
                                           GAsyncReadyCallback callback, gpointer data) {
    ScriptedEngineFunctions::AddQuery(manager, callback, data);
}

GList* webkit_cookie_manager_get_cookies_finish(WebKitCookieManager* /*manager*/,
                                                GAsyncResult* /*result*/, GError** /*error*/) {
    return ScriptedEngineFunctions::FinishQuery();
}

GList* webkit_cookie_manager_get_all_cookies_finish(WebKitCookieManager* /*manager*/,
                                                    GAsyncResult* /*result*/, GError** /*error*/) {
    return ScriptedEngineFunctions::FinishQuery();
}

}  // extern "C"
