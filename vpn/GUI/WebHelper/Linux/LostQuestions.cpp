#include "LostQuestions.h"

#include <cassert>
#include <utility>

#include "CertificateRequests.h"
#include "MainLoopSource.h"
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
    RemoveSource(m_loadAgainSource);
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
        RemoveSource(self->m_loadAgainSource);
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
        RemoveSource(self->m_loadAgainSource);
        // Not before the engine has told that the lost load is over. Operations come later.
        self->m_loadAgainSource = g_idle_add_full(G_PRIORITY_DEFAULT, onLoadAgain, self, nullptr);
    }
    return FALSE;
}

gboolean CLostQuestions::onLoadAgain(gpointer self) {
    CLostQuestions* const questions = static_cast<CLostQuestions*>(self);
    questions->m_loadAgainSource = 0;
    LoadPageThatMayAsk(questions->m_webView, questions->m_lostUri);
    return G_SOURCE_REMOVE;
}
