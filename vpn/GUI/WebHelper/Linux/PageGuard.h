#pragma once

#include <webkit2/webkit2.h>

#include <memory>

/// Guards the pages of one web view. Denies permissions, printing and files to save. Dialogs and
/// password requests that nobody can see, "leave page?" prompts, and dialogs of a page that is over
/// are answered automatically, because an open dialog blocks the page. A page that never stops
/// opening dialogs loses its process. Main thread only.
class CPageGuard {
public:
    /// The view is not owned and must outlive the guard.
    explicit CPageGuard(WebKitWebView* webView);
    ~CPageGuard();
    CPageGuard(const CPageGuard&) = delete;
    CPageGuard& operator=(const CPageGuard&) = delete;

    /// The page gives way to the next operation's page. Nobody shall answer its dialogs any more.
    void OnPageOver();

    /// The next operation's page has taken its place.
    void OnPageCame();

private:
    struct DialogUnref {
        void operator()(WebKitScriptDialog* dialog) const { webkit_script_dialog_unref(dialog); }
    };

    void closeDialog();
    void answer(WebKitScriptDialog* dialog);

    static gboolean onPermissionRequest(WebKitWebView* webView, WebKitPermissionRequest* request);
    static gboolean onPrint();
    static gboolean onDecidePolicy(WebKitWebView* webView, WebKitPolicyDecision* decision,
                                   WebKitPolicyDecisionType type);
    static gboolean onAuthenticate(WebKitWebView* webView, WebKitAuthenticationRequest* request);
    static gboolean onScriptDialog(WebKitWebView* webView, WebKitScriptDialog* dialog,
                                   CPageGuard* self);
    static void onLoadChanged(WebKitWebView* webView, WebKitLoadEvent event, CPageGuard* self);
    static void onUnmap(GtkWidget* webView, CPageGuard* self);

    WebKitWebView* m_webView;
    // The dialog that a person sees. The engine shows one at a time.
    std::unique_ptr<WebKitScriptDialog, DialogUnref> m_dialog;
    bool m_isPageOver = false;
    // How many of the current page's dialogs were answered automatically.
    int m_answeredDialogs = 0;
};

/// Cancels every download of the context that starts nevertheless, before it reaches the disk. Main
/// thread only.
void RefuseDownloads(WebKitWebContext* context);
