#pragma once

#include <webkit2/webkit2.h>

#include <memory>

/// Keeps the pages of one web view from what no sign-in needs: permissions are denied and nothing
/// is printed; and a question that no person can see, or whether to leave the page, is answered in
/// their place, since it would stop everything until then. A page that never stops asking loses its
/// process. Main thread only.
class CPageGuard {
public:
    /// The view is not owned and must outlive the guard.
    explicit CPageGuard(WebKitWebView* webView);
    ~CPageGuard();
    CPageGuard(const CPageGuard&) = delete;
    CPageGuard& operator=(const CPageGuard&) = delete;

private:
    struct DialogUnref {
        void operator()(WebKitScriptDialog* dialog) const { webkit_script_dialog_unref(dialog); }
    };

    void closeDialog();
    void answer(WebKitScriptDialog* dialog);

    static gboolean onPermissionRequest(WebKitWebView* webView, WebKitPermissionRequest* request);
    static gboolean onPrint();
    static gboolean onAuthenticate(WebKitWebView* webView, WebKitAuthenticationRequest* request);
    static gboolean onScriptDialog(WebKitWebView* webView, WebKitScriptDialog* dialog,
                                   CPageGuard* self);
    static void onLoadChanged(WebKitWebView* webView, WebKitLoadEvent event, CPageGuard* self);
    static void onUnmap(GtkWidget* webView, CPageGuard* self);

    WebKitWebView* m_webView;
    // The one that a person sees; the engine shows one at a time.
    std::unique_ptr<WebKitScriptDialog, DialogUnref> m_dialog;
    // Dialogs of the current page that nobody was asked.
    int m_answeredDialogs = 0;
};

/// Cancels every download of the context before it reaches the disk. Main thread only.
void RefuseDownloads(WebKitWebContext* context);
