#pragma once

#include <webkit2/webkit2.h>

#include <string>
#include <vector>

#include "GObjectPtr.h"

/// Loads a page again when the engine has lost it together with its site's question for a password
/// or a certificate. With the newer API the engine does that when the question comes before it has
/// told of the load's start. It also gives up a page whose question this program cancels. Main
/// thread only.
class CLostQuestions {
public:
    /// Must be made before other handlers of "authenticate" are connected. The view is not owned
    /// and must outlive this.
    explicit CLostQuestions(WebKitWebView* webView);
    ~CLostQuestions();
    CLostQuestions(const CLostQuestions&) = delete;
    CLostQuestions& operator=(const CLostQuestions&) = delete;

    /// The page gives way to the next operation's page, and is not loaded again.
    void OnPageOver();

private:
    void forgetQuestions();
    void closeConnections();
    void keepFromLoading();

    static gboolean onAuthenticate(WebKitWebView* webView, WebKitAuthenticationRequest* question,
                                   CLostQuestions* self);
    static void onCancelled(WebKitAuthenticationRequest* question, CLostQuestions* self);
    static void onLoadChanged(WebKitWebView* webView, WebKitLoadEvent event, CLostQuestions* self);
    static gboolean onLoadFailed(WebKitWebView* webView, WebKitLoadEvent event,
                                 const char* failingUri, GError* error, CLostQuestions* self);
    static void onConnectionsClosed(GObject* cookieManager, GAsyncResult* result, gpointer self);

    WebKitWebView* m_webView;
    // Of the page that is on its way, or shown.
    std::vector<GObjectPtr<WebKitAuthenticationRequest>> m_questions;
    // If the question was the page's, and not that of something in it, the engine cancels the load
    // as well.
    bool m_isQuestionLost = false;
    std::string m_lostUri;
    // Cancels the wait before the page is loaded again.
    GObjectPtr<GCancellable> m_closing;
};
