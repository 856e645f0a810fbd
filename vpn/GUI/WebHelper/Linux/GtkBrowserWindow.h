#pragma once

#include <gtk/gtk.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "BrowserDataModel.h"

struct CookieQuery;

/// The one browser of the process: a top-level window with a web view. It carries out browser
/// operations in the order in which they come and hands exactly one result for each to its
/// result handler. What the engine tells goes to a CPageOperation, which decides.
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
    /// What the toolkit and the engine call: each tells the operation, and nothing else.
    struct Callbacks;
    /// What the operation asks of the window.
    class OperationPort;
    /// What the main thread alone touches; with the engine's types, which this file does without.
    struct MainThreadParts;

    void init(GtkApplication* application);
    void initWebView();
    void connectWebViewSignals();
    void removeWebView();
    void updateUserAgent(const std::string& userAgent);
    void carryOut(const CBrowserOperation& operation);
    void queryCookies(const CookieQuery& query);
    void SendResult(CBrowserResult& result, bool resultSentAfter);

    static gboolean handleOperationCB(gpointer block);

    ResultHandler m_resultHandler;
    // Cleared by the thread that queues an operation, set when its result is delivered.
    std::atomic<bool> m_resultSent{false};
    std::unique_ptr<MainThreadParts> m_parts;
};
