#pragma once

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "BrowserDataModel.h"
#include "CookieStore.h"
#include "CookieWatch.h"
#include "GObjectPtr.h"
#include "OperationLoad.h"
#include "PageGuard.h"

/// The one browser of the process: a top-level window with a web view. It carries out browser
/// operations in the order in which they come and hands exactly one result for each to its
/// result handler.
///
/// Made, used and destroyed on the main thread, which is also where the result handler is called;
/// only HandleOperation may be called on any thread. It is destroyed after the main loop's end;
/// the GTK window itself is left to GTK.
class GtkBrowserWindow {
public:
    using ResultHandler = std::function<void(CBrowserResult&)>;

    /// Makes the window, hidden. A handler must be given before the first result.
    GtkBrowserWindow(GtkApplication* application, ResultHandler resultHandler);
    virtual ~GtkBrowserWindow();
    GtkBrowserWindow(const GtkBrowserWindow&) = delete;
    GtkBrowserWindow& operator=(const GtkBrowserWindow&) = delete;

    /// Queues a copy of the operation for the main loop. Any thread.
    virtual void HandleOperation(const CBrowserOperation& operation);

    /// Loads a page for an operation. With a cookie name the operation is one for a cookie. The
    /// timeout is in seconds, 0 for none.
    virtual void LoadPage(const std::string& url, const std::string& finalUrl,
                          const std::string& cookieName, const std::string& errorCookieName,
                          const std::string& userAgent, std::uint32_t timeout);

    virtual void Show();
    virtual void Hide();

    /// Replaces the web view by a new one, which keeps the cookies only, and reports ready.
    virtual void ResetBrowser();

private:
    struct QueuedOperation;
    void init(GtkApplication* application);
    void initWebView();
    void connectWebViewSignals();
    void updateUserAgent(const std::string& userAgent);
    void carryOut(const CBrowserOperation& operation);

    void SendResult(CBrowserResult& result, bool resultSentAfter);
    void sendFinalResult(BrowserResultType type, const std::string& cookieValue = "");
    void loadStarted();
    void pageCommitted();
    void pageFinished();
    void queryCookies(const char* uri);
    void decideByCookies(const std::vector<StoredCookie>& cookies);
    [[nodiscard]] bool onCookieListItem(const StoredCookie& cookie);
    void beginCookieWatch();
    void askCookieStore();
    void decideByStoredCookies(const std::vector<StoredCookie>& cookies);
    void decideByHeader(const char* header);

    static gboolean handleOperationCB(gpointer block);
    static void onReadyToShow(WebKitWebView* webView, GtkBrowserWindow* self);
    static gboolean onContextMenu();
    static void webViewLoadChangedCB(WebKitWebView* webView, WebKitLoadEvent event,
                                     GtkBrowserWindow* self);
    static gboolean webViewLoadFailedCB(WebKitWebView* webView, WebKitLoadEvent event,
                                        const char* failingUri, GError* error,
                                        GtkBrowserWindow* self);
    static gboolean webViewLoadFailedWithTLSErrorsCB(WebKitWebView* webView, const char* failingUri,
                                                     GTlsCertificate* certificate,
                                                     GTlsCertificateFlags errors,
                                                     GtkBrowserWindow* self);
    static void webProcessTerminatedCB(WebKitWebView* webView,
                                       WebKitWebProcessTerminationReason reason,
                                       GtkBrowserWindow* self);
    static void cookiesChangedCB(WebKitCookieManager* manager, GtkBrowserWindow* self);
    static void onResourceLoadStarted(WebKitWebView* webView, WebKitWebResource* resource,
                                      WebKitURIRequest* request, GtkBrowserWindow* self);
    static void onResourceResponse(WebKitWebResource* resource, GParamSpec* property,
                                   GtkBrowserWindow* self);
    static gboolean onDecidePolicy(WebKitWebView* webView, WebKitPolicyDecision* decision,
                                   WebKitPolicyDecisionType type, GtkBrowserWindow* self);
    static gboolean onLoadTimeout(gpointer self);
    static gboolean onDeleteEvent(GtkWidget* widget, GdkEvent* event, GtkBrowserWindow* self);

    ResultHandler m_resultHandler;
    GObjectPtr<GtkWidget> m_window;
    GObjectPtr<WebKitWebView> m_webView;
    GObjectPtr<WebKitWebContext> m_webContext;
    WebKitCookieManager* m_cookieManager = nullptr;
    std::optional<CCookieStore> m_cookieStore;
    CCookieWatch m_cookieWatch;
    GObjectPtr<GtkAccelGroup> m_acceleratorGroup;
    std::unique_ptr<CPageGuard> m_pageGuard;
    std::unique_ptr<COperationLoad> m_load;
    std::string m_finalUrl;
    std::string m_cookieName;
    std::string m_errorCookieName;
    bool m_cookieMode = false;
    guint m_timeoutSource = 0;
    // Cleared by the thread that queues an operation, set when its result is delivered.
    std::atomic<bool> m_resultSent{false};
    // Tells the answer of an earlier operation's cookie query from one of this operation's: it
    // changes when an operation asks for its load, and when a result is delivered.
    std::uint64_t m_operationNumber = 0;
};
