#include "LostQuestions.h"

#include <cassert>
#include <utility>

#include "CertificateRequests.h"
#include "MainThread.h"

CLostQuestions::CLostQuestions(WebKitWebView* webView) : m_webView(webView) {
    assert(IsMainThread());
    g_signal_connect(m_webView, "authenticate", G_CALLBACK(onAuthenticate), this);
    g_signal_connect(m_webView, "load-changed", G_CALLBACK(onLoadChanged), this);
    g_signal_connect(m_webView, "load-failed", G_CALLBACK(onLoadFailed), this);
}

CLostQuestions::~CLostQuestions() {
    assert(IsMainThread());
    g_signal_handlers_disconnect_by_data(m_webView, this);
    OnPageOver();
}

void CLostQuestions::OnPageOver() {
    assert(IsMainThread());
    forgetQuestions();
    keepFromLoading();
}

void CLostQuestions::forgetQuestions() {
    for (const auto& question : m_questions) {
        g_signal_handlers_disconnect_by_data(question.get(), this);
    }
    m_questions.clear();
    m_isQuestionLost = false;
}

gboolean CLostQuestions::onAuthenticate(WebKitWebView* /*webView*/,
                                        WebKitAuthenticationRequest* question,
                                        CLostQuestions* self) {
    g_signal_connect(question, "cancelled", G_CALLBACK(onCancelled), self);
    self->m_questions.emplace_back(WEBKIT_AUTHENTICATION_REQUEST(g_object_ref(question)));
    return FALSE;
}

void CLostQuestions::onCancelled(WebKitAuthenticationRequest* /*question*/, CLostQuestions* self) {
    self->m_isQuestionLost = true;
}

void CLostQuestions::onLoadChanged(WebKitWebView* /*webView*/, WebKitLoadEvent event,
                                   CLostQuestions* self) {
    if (event == WEBKIT_LOAD_STARTED) {
        self->keepFromLoading();
    } else if (event == WEBKIT_LOAD_COMMITTED) {
        self->forgetQuestions();
    }
}

gboolean CLostQuestions::onLoadFailed(WebKitWebView* webView, WebKitLoadEvent /*event*/,
                                      const char* failingUri, GError* error, CLostQuestions* self) {
    const bool isCancelled =
        g_error_matches(error, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED) != FALSE;
    const bool isReplaced = webkit_web_view_is_loading(webView) != FALSE;
    const bool isSeen = gtk_widget_get_mapped(GTK_WIDGET(webView)) != FALSE;
    if (std::exchange(self->m_isQuestionLost, false) && isCancelled && !isReplaced && isSeen) {
        self->m_lostUri = failingUri;
        self->closeConnections();
    }
    return FALSE;
}

// That of the lost question goes on without a certificate, and libsoup 3.8 would take it for the
// next load. The engine closes all when the proxy's settings change.
void CLostQuestions::closeConnections() {
    WebKitWebContext* const context = webkit_web_view_get_context(m_webView);
    WebKitWebsiteDataManager* const manager = webkit_web_context_get_website_data_manager(context);
    for (const auto mode :
         {WEBKIT_NETWORK_PROXY_MODE_NO_PROXY, WEBKIT_NETWORK_PROXY_MODE_DEFAULT}) {
        webkit_website_data_manager_set_network_proxy_settings(manager, mode, nullptr);
    }
    // The engine tells nothing of it. But its network process does one thing after the other, so
    // any answer of that process will do. A load before that would be cancelled with the rest.
    keepFromLoading();
    m_closing.reset(g_cancellable_new());
    webkit_cookie_manager_get_accept_policy(webkit_web_context_get_cookie_manager(context),
                                            m_closing.get(), onConnectionsClosed, this);
}

void CLostQuestions::keepFromLoading() {
    if (m_closing) {
        g_cancellable_cancel(m_closing.get());
        m_closing.reset();
    }
}

void CLostQuestions::onConnectionsClosed(GObject* cookieManager, GAsyncResult* result,
                                         gpointer self) {
    GError* rawError = nullptr;
    webkit_cookie_manager_get_accept_policy_finish(WEBKIT_COOKIE_MANAGER(cookieManager), result,
                                                   &rawError);
    const GErrorPtr error(rawError);
    if (error && g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE) {
        return;  // another load has begun, or the object is gone
    }
    auto* const questions = static_cast<CLostQuestions*>(self);
    LoadPageThatMayAsk(questions->m_webView, questions->m_lostUri);
}
