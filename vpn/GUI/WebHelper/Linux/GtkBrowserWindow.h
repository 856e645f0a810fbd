#pragma once

#include <gtk/gtk.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "BrowserDataModel.h"

struct CookieQuery;

/// The process's one browser: a top-level window with a web view. It carries out browser operations
/// in the order in which they come, and passes exactly one result for each to its result handler.
/// The engine's events go to a CPageOperation, which decides.
///
/// Created, used and destroyed on the main thread, where the result handler is called, too. Only
/// HandleOperation() may be called on any thread. Must be destroyed after the main loop's end. The
/// GTK window itself is left to GTK.
class GtkBrowserWindow {
public:
    using ResultHandler = std::function<void(CBrowserResult&)>;

    /// Creates the window, hidden. The handler must not be empty when the first result comes.
    GtkBrowserWindow(GtkApplication* application, ResultHandler resultHandler);
    virtual ~GtkBrowserWindow();
    GtkBrowserWindow(const GtkBrowserWindow&) = delete;
    GtkBrowserWindow& operator=(const GtkBrowserWindow&) = delete;

    /// Queues a copy of the operation for the main loop. Any thread.
    virtual void HandleOperation(const CBrowserOperation& operation);

    /// Loads a page for an operation. If a cookie name is given, the operation wants that cookie.
    /// The timeout is in seconds; 0 means none.
    virtual void LoadPage(const std::string& url, const std::string& finalUrl,
                          const std::string& cookieName, const std::string& errorCookieName,
                          const std::string& userAgent, std::uint32_t timeout);

    virtual void Show();
    virtual void Hide();

    /// Replaces the web view by a new one and reports `ready`. Only the cookies are kept.
    virtual void ResetBrowser();

private:
    struct QueuedOperation;
    /// The callbacks of the toolkit and the engine. They pass page events on to the operation and
    /// decide nothing about its result.
    struct Callbacks;
    /// Carries out what the operation asks of the window.
    class OperationPort;
    /// Members that only the main thread uses. Their types are the engine's, which this header does
    /// not include.
    struct MainThreadParts;

    void init(GtkApplication* application);
    void initWebView();
    void loadWhatWaited();
    void connectWebViewSignals();
    void removeWebView();
    void restoreSize();
    void updateUserAgent(const std::string& userAgent);
    void carryOut(const CBrowserOperation& operation);
    void queryCookies(const CookieQuery& query);
    void SendResult(CBrowserResult& result, bool resultSentAfter);

    static gboolean handleOperationCB(gpointer block);

    ResultHandler m_resultHandler;
    // Cleared by the thread that queues an operation, set when the operation's result is delivered.
    std::atomic<bool> m_resultSent{false};
    std::unique_ptr<MainThreadParts> m_parts;
};
