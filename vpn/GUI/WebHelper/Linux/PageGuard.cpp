#include "PageGuard.h"

#include <cassert>

#include "AppLog.h"
#include "ContentDisposition.h"
#include "MainThread.h"
#include "ResponseHeader.h"

namespace {

// More dialogs than any page has a reason for.
constexpr int kMostAnsweredDialogs = 100;

bool IsSeen(WebKitWebView* webView) {
    return gtk_widget_get_mapped(GTK_WIDGET(webView)) != FALSE;
}

// Answers as a person would who only wants to go on.
void Dismiss(WebKitScriptDialog* dialog) {
    switch (webkit_script_dialog_get_dialog_type(dialog)) {
        case WEBKIT_SCRIPT_DIALOG_CONFIRM:
            webkit_script_dialog_confirm_set_confirmed(dialog, FALSE);
            break;
        case WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM:
            webkit_script_dialog_confirm_set_confirmed(dialog, TRUE);
            break;
        default:
            break;
    }
}

void LogRefusedDownload(const char* uri) {
    TK_LOG_WARNING("Refused a download, URI = %s", uri);
}

void onDownloadStarted(WebKitWebContext* /*context*/, WebKitDownload* download) {
    LogRefusedDownload(webkit_uri_request_get_uri(webkit_download_get_request(download)));
    webkit_download_cancel(download);
}

}  // namespace

CPageGuard::CPageGuard(WebKitWebView* webView) : m_webView(webView) {
    assert(IsMainThread());
    g_signal_connect(m_webView, "permission-request", G_CALLBACK(onPermissionRequest), this);
    g_signal_connect(m_webView, "print", G_CALLBACK(onPrint), this);
    g_signal_connect(m_webView, "decide-policy", G_CALLBACK(onDecidePolicy), nullptr);
    g_signal_connect(m_webView, "authenticate", G_CALLBACK(onAuthenticate), this);
    g_signal_connect(m_webView, "script-dialog", G_CALLBACK(onScriptDialog), this);
    g_signal_connect(m_webView, "load-changed", G_CALLBACK(onLoadChanged), this);
    g_signal_connect(m_webView, "unmap", G_CALLBACK(onUnmap), this);
}

CPageGuard::~CPageGuard() {
    assert(IsMainThread());
    g_signal_handlers_disconnect_by_data(m_webView, this);
    closeDialog();
}

void CPageGuard::OnPageOver() {
    assert(IsMainThread());
    m_isPageOver = true;
    closeDialog();
}

void CPageGuard::OnPageCame() {
    assert(IsMainThread());
    m_isPageOver = false;
}

gboolean CPageGuard::onPermissionRequest(WebKitWebView* /*webView*/,
                                         WebKitPermissionRequest* request) {
    TK_LOG_WARNING("Denied a page's %s", G_OBJECT_TYPE_NAME(request));
    webkit_permission_request_deny(request);
    return TRUE;
}

// TRUE prevents the engine's print dialog. While that is open, nothing else runs until a person has
// answered it.
gboolean CPageGuard::onPrint() {
    return TRUE;
}

// Some names of files make the older HTTP library free memory that it does not own, in this process
// too. So a file is refused before anybody asks for its name: when its download has started, it is
// too late.
gboolean CPageGuard::onDecidePolicy(WebKitWebView* /*webView*/, WebKitPolicyDecision* decision,
                                    WebKitPolicyDecisionType type) {
    if (type != WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
        return FALSE;
    }
    WebKitURIResponse* const response =
        webkit_response_policy_decision_get_response(WEBKIT_RESPONSE_POLICY_DECISION(decision));
    const auto disposition = ResponseHeader(response, "Content-Disposition");
    if (!disposition || IsInline(*disposition)) {
        return FALSE;
    }
    LogRefusedDownload(webkit_uri_response_get_uri(response));
    webkit_policy_decision_ignore(decision);
    return TRUE;
}

gboolean CPageGuard::onAuthenticate(WebKitWebView* webView, WebKitAuthenticationRequest* request) {
    if (IsSeen(webView)) {
        return FALSE;
    }
    // Without a name and a password the page is the server's refusal. If the request were
    // cancelled, the load would end without any report.
    webkit_authentication_request_authenticate(request, nullptr);
    return TRUE;
}

gboolean CPageGuard::onScriptDialog(WebKitWebView* webView, WebKitScriptDialog* dialog,
                                    CPageGuard* self) {
    // A "leave page?" prompt must not hold up the operation that replaces the page.
    const bool isLeft =
        webkit_script_dialog_get_dialog_type(dialog) == WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM;
    if (IsSeen(webView) && !isLeft && !self->m_isPageOver) {
        self->m_dialog.reset(webkit_script_dialog_ref(dialog));
        return FALSE;
    }
    self->answer(dialog);
    return TRUE;
}

void CPageGuard::answer(WebKitScriptDialog* dialog) {
    Dismiss(dialog);
    if (++m_answeredDialogs == kMostAnsweredDialogs) {
        webkit_web_view_terminate_web_process(m_webView);
    }
}

void CPageGuard::onLoadChanged(WebKitWebView* /*webView*/, WebKitLoadEvent event,
                               CPageGuard* self) {
    if (event == WEBKIT_LOAD_STARTED) {
        self->m_answeredDialogs = 0;
    }
}

void CPageGuard::onUnmap(GtkWidget* /*webView*/, CPageGuard* self) {
    self->closeDialog();
}

void CPageGuard::closeDialog() {
    if (m_dialog) {
        Dismiss(m_dialog.get());
        webkit_script_dialog_close(m_dialog.get());
        m_dialog.reset();
    }
}

void RefuseDownloads(WebKitWebContext* context) {
    g_signal_connect(context, "download-started", G_CALLBACK(onDownloadStarted), nullptr);
}
