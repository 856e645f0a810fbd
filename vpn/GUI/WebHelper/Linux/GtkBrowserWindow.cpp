#include "GtkBrowserWindow.h"

#include <libsoup/soup.h>

#include <algorithm>
#include <limits>

#include "Accelerators.h"
#include "AppLog.h"
#include "BuiltInMessages.h"
#include "CookieHeader.h"
#include "CookieStorage.h"
#include "InstallRoot.h"
#include "MainLoopSource.h"
#include "MsgCatalog.h"
#include "PageOutcome.h"
#include "TlsErrorText.h"
#include "UriHost.h"
#include "UserAgent.h"

namespace {

constexpr int kWindowWidth = 1000;
constexpr int kWindowHeight = 600;
constexpr guint kMiddleButton = 2;
constexpr char kWindowIcon[] = "/resources/vpnui128.png";

// The window does without an icon where the suite's resources are missing.
void SetWindowIcon(GtkWindow* window) {
    GError* rawError = nullptr;
    gtk_window_set_icon_from_file(window, (std::string(kInstallRoot) + kWindowIcon).c_str(),
                                  &rawError);
    const GErrorPtr ignored(rawError);
}

// GLib counts the timeout in milliseconds in as many bits as it takes seconds in.
guint LongestTimeoutAtMost(std::uint32_t seconds) {
    return std::min<guint>(seconds, std::numeric_limits<guint>::max() / 1000);
}

const char* TerminationText(WebKitWebProcessTerminationReason reason) {
    switch (reason) {
        case WEBKIT_WEB_PROCESS_CRASHED:
            return "crashed";
        case WEBKIT_WEB_PROCESS_EXCEEDED_MEMORY_LIMIT:
            return "exceeded its memory limit";
        default:
            return "was terminated";
    }
}

}  // namespace

struct GtkBrowserWindow::QueuedOperation {
    GtkBrowserWindow* window;
    CBrowserOperation operation;
};

GtkBrowserWindow::GtkBrowserWindow(GtkApplication* application, ResultHandler resultHandler)
    : m_resultHandler(std::move(resultHandler)) {
    init(application);
    initWebView();
}

GtkBrowserWindow::~GtkBrowserWindow() {
    RemoveSource(m_timeoutSource);
    g_signal_handlers_disconnect_by_data(m_webView.get(), this);
    g_signal_handlers_disconnect_by_data(m_window.get(), this);
    g_signal_handlers_disconnect_by_data(m_cookieManager, this);
}

void GtkBrowserWindow::init(GtkApplication* application) {
    m_window.reset(GTK_WIDGET(g_object_ref(gtk_application_window_new(application))));
    GtkWindow* const window = GTK_WINDOW(m_window.get());
    gtk_window_set_title(window, MsgCatalog::getMessage(kLoginWindowTitle.c_str()).c_str());
    gtk_window_set_default_size(window, kWindowWidth, kWindowHeight);
    SetWindowIcon(window);
    m_acceleratorGroup.reset(gtk_accel_group_new());
    gtk_window_add_accel_group(window, m_acceleratorGroup.get());
    ConnectAccelerators(m_acceleratorGroup.get());
    g_signal_connect(m_window.get(), "delete-event", G_CALLBACK(onDeleteEvent), this);
    m_webContext.reset(webkit_web_context_new());
    // Newer engines choose their processes themselves and call this deprecated; older ones obey.
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    webkit_web_context_set_process_model(m_webContext.get(),
                                         WEBKIT_PROCESS_MODEL_SHARED_SECONDARY_PROCESS);
    G_GNUC_END_IGNORE_DEPRECATIONS
    RefuseDownloads(m_webContext.get());
    m_cookieManager = webkit_web_context_get_cookie_manager(m_webContext.get());
    g_signal_connect(m_cookieManager, "changed", G_CALLBACK(cookiesChangedCB), this);
    m_cookieStore.emplace(m_cookieManager);
    KeepCookiesInHome(m_cookieManager);
}

void GtkBrowserWindow::initWebView() {
    GtkWidget* const widget = webkit_web_view_new_with_context(m_webContext.get());
    m_webView.reset(WEBKIT_WEB_VIEW(g_object_ref_sink(widget)));
    connectWebViewSignals();
    m_pageGuard = std::make_unique<CPageGuard>(m_webView.get());
    m_load = std::make_unique<COperationLoad>(
        m_webView.get(), [this] { sendFinalResult(BrowserResultType::error_unknown); });
    gtk_drag_dest_unset(widget);
    gtk_container_add(GTK_CONTAINER(m_window.get()), widget);
    GtkWindow* const window = GTK_WINDOW(m_window.get());
    gtk_window_set_position(window, GTK_WIN_POS_CENTER);
    gtk_window_resize(window, kWindowWidth, kWindowHeight);
    WebKitSettings* const settings = webkit_web_view_get_settings(m_webView.get());
    g_object_set(settings, "enable-plugins", FALSE, "enable-java", FALSE, nullptr);
    // A sign-in page needs no graphics processor, and a broken driver would leave it blank.
    webkit_settings_set_hardware_acceleration_policy(settings,
                                                     WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
}

void GtkBrowserWindow::connectWebViewSignals() {
    const struct {
        const char* signal;
        GCallback handler;
    } handlers[] = {
        {"ready-to-show", G_CALLBACK(onReadyToShow)},
        {"load-failed-with-tls-errors", G_CALLBACK(webViewLoadFailedWithTLSErrorsCB)},
        {"load-changed", G_CALLBACK(webViewLoadChangedCB)},
        {"load-failed", G_CALLBACK(webViewLoadFailedCB)},
        {"context-menu", G_CALLBACK(onContextMenu)},
        {"resource-load-started", G_CALLBACK(onResourceLoadStarted)},
        {"decide-policy", G_CALLBACK(onDecidePolicy)},
        {"web-process-terminated", G_CALLBACK(webProcessTerminatedCB)},
    };
    for (const auto& [signal, handler] : handlers) {
        g_signal_connect(m_webView.get(), signal, handler, this);
    }
}

void GtkBrowserWindow::onReadyToShow(WebKitWebView* webView, GtkBrowserWindow* self) {
    WebKitWindowProperties* const properties = webkit_web_view_get_window_properties(webView);
    GdkRectangle geometry;
    webkit_window_properties_get_geometry(properties, &geometry);
    GtkWindow* const window = GTK_WINDOW(self->m_window.get());
    if (geometry.x >= 0 && geometry.y >= 0) {
        gtk_window_move(window, geometry.x, geometry.y);
    }
    if (geometry.width > 0 && geometry.height > 0) {
        gtk_window_resize(window, geometry.width, geometry.height);
    }
    if (!webkit_window_properties_get_resizable(properties)) {
        gtk_window_set_resizable(window, FALSE);
    }
}

gboolean GtkBrowserWindow::onContextMenu() {
    return TRUE;
}

void GtkBrowserWindow::HandleOperation(const CBrowserOperation& operation) {
    auto block = std::make_unique<QueuedOperation>(QueuedOperation{this, operation});
    // Cleared now, not when the operation starts: an event of the page before that comes in
    // between is meant to count as this operation's result.
    m_resultSent = false;
    gdk_threads_add_idle_full(G_PRIORITY_HIGH_IDLE, handleOperationCB, block.release(), nullptr);
}

gboolean GtkBrowserWindow::handleOperationCB(gpointer block) {
    const std::unique_ptr<QueuedOperation> queued(static_cast<QueuedOperation*>(block));
    queued->window->carryOut(queued->operation);
    return G_SOURCE_REMOVE;
}

void GtkBrowserWindow::carryOut(const CBrowserOperation& operation) {
    switch (operation.GetOperationType()) {
        case BrowserOperationType::browse:
            LoadPage(operation.GetUrl(), operation.GetFinalUrl(), "", "", operation.GetUserAgent(),
                     operation.GetTimeout());
            break;
        case BrowserOperationType::browse_for_cookie:
            // No timeout on purpose: a person may take any time to sign in.
            LoadPage(operation.GetUrl(), operation.GetFinalUrl(), operation.GetCookieName(),
                     operation.GetErrorCookieName(), operation.GetUserAgent(), 0);
            break;
        case BrowserOperationType::reset:
            Hide();
            ResetBrowser();
            return;
        default:
            LogMessage("handleOperationCB", __FILE__, __LINE__, 'E', "Invalid browser operation.");
            return;
    }
    if (operation.GetShow()) {
        Show();
    }
}

void GtkBrowserWindow::LoadPage(const std::string& url, const std::string& finalUrl,
                                const std::string& cookieName, const std::string& errorCookieName,
                                const std::string& userAgent, std::uint32_t timeout) {
    m_load->Prepare(url);
    m_finalUrl = finalUrl;
    m_cookieMode = !cookieName.empty();
    m_cookieName = cookieName;
    m_errorCookieName = errorCookieName;
    ++m_operationNumber;
    if (!userAgent.empty()) {
        updateUserAgent(userAgent);
    }
    beginCookieWatch();
    if (timeout != 0) {
        // An earlier timeout is overwritten and still fires: it ends whatever runs then.
        m_timeoutSource =
            gdk_threads_add_timeout_seconds(LongestTimeoutAtMost(timeout), onLoadTimeout, this);
    }
}

void GtkBrowserWindow::updateUserAgent(const std::string& userAgent) {
    const auto parts = SplitUserAgent(userAgent);
    if (!parts) {
        TK_LOG_WARNING("Invalid user agent from API.");
        return;
    }
    webkit_settings_set_user_agent_with_application_details(
        webkit_web_view_get_settings(m_webView.get()), parts->applicationName.c_str(),
        parts->applicationVersion.c_str());
}

void GtkBrowserWindow::Show() {
    gtk_widget_show_all(m_window.get());
    gtk_widget_grab_focus(GTK_WIDGET(m_webView.get()));
}

void GtkBrowserWindow::Hide() {
    gtk_widget_hide(m_window.get());
}

void GtkBrowserWindow::ResetBrowser() {
    webkit_web_view_stop_loading(m_webView.get());
    g_signal_handlers_disconnect_by_data(m_webView.get(), this);
    m_pageGuard.reset();
    m_load.reset();
    gtk_container_remove(GTK_CONTAINER(m_window.get()), GTK_WIDGET(m_webView.get()));
    m_webView.reset();
    m_resultSent = false;
    initWebView();
    CBrowserResult ready(BrowserResultType::ready, "");
    SendResult(ready, false);
}

void GtkBrowserWindow::SendResult(CBrowserResult& result, bool resultSentAfter) {
    RemoveSource(m_timeoutSource);
    // The flag has its new value before the handler is called: an agent may answer a result with
    // its next operation at once, and that operation's clearing must come last.
    if (m_resultSent.exchange(resultSentAfter)) {
        return;
    }
    // Answers to cookie queries that are still on their way are nobody's from here on.
    ++m_operationNumber;
    m_cookieWatch.End();
    m_load->OnResult();
    m_resultHandler(result);
    Hide();
}

void GtkBrowserWindow::sendFinalResult(BrowserResultType type, const std::string& cookieValue) {
    CBrowserResult result(type, cookieValue);
    SendResult(result, true);
}

void GtkBrowserWindow::webViewLoadChangedCB(WebKitWebView* /*webView*/, WebKitLoadEvent event,
                                            GtkBrowserWindow* self) {
    if (event == WEBKIT_LOAD_STARTED) {
        self->loadStarted();
        return;
    }
    // A load that replaces another first brings the other's end, which already bears the new URI.
    if (self->m_load->IsToCome() || event == WEBKIT_LOAD_REDIRECTED) {
        return;
    }
    self->m_load->OnAnswered();
    if (event == WEBKIT_LOAD_COMMITTED) {
        self->pageCommitted();
    } else {
        self->pageFinished();
    }
}

void GtkBrowserWindow::loadStarted() {
    webkit_web_view_set_zoom_level(m_webView.get(), 1.0);
    m_load->OnStarted();
}

void GtkBrowserWindow::pageCommitted() {
    WebKitWebResource* const resource = webkit_web_view_get_main_resource(m_webView.get());
    WebKitURIResponse* const response =
        resource != nullptr ? webkit_web_resource_get_response(resource) : nullptr;
    const guint status = response != nullptr ? webkit_uri_response_get_status_code(response) : 0;
    if (IsHttpError(status)) {
        LogMessage("webViewLoadChangedCB", __FILE__, __LINE__, 'E',
                   "HTTP ERROR CODE = %u, URL = %s", status,
                   webkit_web_view_get_uri(m_webView.get()));
        sendFinalResult(BrowserResultType::error_navi);
    }
}

void GtkBrowserWindow::pageFinished() {
    const char* const uri = webkit_web_view_get_uri(m_webView.get());
    if (!IsFinalUrl(uri, m_finalUrl) || m_resultSent) {
        return;
    }
    if (m_cookieMode) {
        queryCookies(uri);
    } else {
        sendFinalResult(BrowserResultType::success);
    }
}

void GtkBrowserWindow::queryCookies(const char* uri) {
    if (!CCookieStore::CanBeAsked()) {
        sendFinalResult(BrowserResultType::error_cookie);
        return;
    }
    m_cookieStore->QueryFor(uri, [this, operation = m_operationNumber](const auto& cookies) {
        if (operation == m_operationNumber && cookies) {
            decideByCookies(*cookies);
        }
    });
}

void GtkBrowserWindow::decideByCookies(const std::vector<StoredCookie>& cookies) {
    // Without any cookie the operation stays open on purpose: the sign-in may still be going on.
    if (cookies.empty()) {
        return;
    }
    // The first match ends the walk. The flag would not do: the agent's next operation, on its way
    // as soon as the result is out, clears it.
    for (const StoredCookie& cookie : cookies) {
        if (onCookieListItem(cookie)) {
            return;
        }
    }
    LogMessage("getCookiesAsyncReadyCB", __FILE__, __LINE__, 'E',
               "Unable to get cookie from cookie manager.");
    sendFinalResult(BrowserResultType::error_cookie);
}

bool GtkBrowserWindow::onCookieListItem(const StoredCookie& cookie) {
    if (cookie.value.empty()) {
        return false;
    }
    if (cookie.name == m_cookieName) {
        sendFinalResult(BrowserResultType::success_with_cookie, cookie.value);
        return true;
    }
    if (cookie.name == m_errorCookieName) {
        sendFinalResult(BrowserResultType::error_cookie, cookie.value);
        return true;
    }
    return false;
}

void GtkBrowserWindow::beginCookieWatch() {
    m_cookieWatch.Begin(m_cookieName, m_errorCookieName);
    if (!m_cookieMode || !CCookieStore::CanBeAsked()) {
        m_load->Ask();
        return;
    }
    // The load waits for the answer: a quick page's cookie would otherwise stand in the store
    // before it, and be taken for one that had always been there.
    m_cookieStore->QueryAll(m_finalUrl, [this, operation = m_operationNumber](auto cookies) {
        if (operation != m_operationNumber) {
            return;
        }
        if (cookies) {
            m_cookieWatch.SetBaseline(std::move(*cookies));
        }
        m_load->Ask();
    });
}

void GtkBrowserWindow::askCookieStore() {
    const std::optional<std::string> uri = m_cookieWatch.TakeQuery();
    if (!uri) {
        return;
    }
    m_cookieStore->QueryFor(*uri, [this, operation = m_operationNumber](const auto& cookies) {
        if (operation == m_operationNumber && cookies) {
            decideByStoredCookies(*cookies);
        } else {
            m_cookieWatch.OnNoAnswer();
        }
        askCookieStore();
    });
}

void GtkBrowserWindow::decideByStoredCookies(const std::vector<StoredCookie>& cookies) {
    const std::optional<FoundCookie> found = m_cookieWatch.OnAnswer(cookies);
    if (found) {
        sendFinalResult(found->kind == FoundCookie::Kind::cookie
                            ? BrowserResultType::success_with_cookie
                            : BrowserResultType::error_cookie,
                        found->value);
    }
}

void GtkBrowserWindow::cookiesChangedCB(WebKitCookieManager* /*manager*/, GtkBrowserWindow* self) {
    self->m_cookieWatch.OnCookiesChanged();
    self->askCookieStore();
}

void GtkBrowserWindow::onResourceLoadStarted(WebKitWebView* /*webView*/,
                                             WebKitWebResource* resource, WebKitURIRequest* request,
                                             GtkBrowserWindow* self) {
    if (!self->m_cookieMode) {
        return;
    }
    self->m_cookieWatch.OnResourceStarted();
    if (HaveEqualHosts(webkit_uri_request_get_uri(request), self->m_finalUrl.c_str())) {
        g_signal_connect(resource, "notify::response", G_CALLBACK(onResourceResponse), self);
    }
}

void GtkBrowserWindow::onResourceResponse(WebKitWebResource* resource, GParamSpec* /*property*/,
                                          GtkBrowserWindow* self) {
    WebKitURIResponse* const response = webkit_web_resource_get_response(resource);
    if (self->m_load->IsToCome() || response == nullptr ||
        !IsCookieBearingResponse(webkit_uri_response_get_status_code(response),
                                 webkit_uri_response_get_mime_type(response))) {
        return;
    }
    SoupMessageHeaders* const headers = webkit_uri_response_get_http_headers(response);
    const char* const header =
        headers != nullptr ? soup_message_headers_get_one(headers, "Set-Cookie") : nullptr;
    if (header != nullptr) {
        self->decideByHeader(header);
        return;
    }
    // Today's engines hide the header. What it did to the store still shows.
    self->m_cookieWatch.OnResponse(webkit_uri_response_get_uri(response));
    self->askCookieStore();
}

void GtkBrowserWindow::decideByHeader(const char* header) {
    const std::string value = ExtractCookieValue(header, m_cookieName);
    if (!value.empty()) {
        sendFinalResult(BrowserResultType::success_with_cookie, value);
        return;
    }
    const std::string errorValue = ExtractCookieValue(header, m_errorCookieName);
    if (!errorValue.empty()) {
        sendFinalResult(BrowserResultType::error_cookie, errorValue);
    }
}

gboolean GtkBrowserWindow::webViewLoadFailedCB(WebKitWebView* /*webView*/,
                                               WebKitLoadEvent /*event*/, const char* failingUri,
                                               GError* error, GtkBrowserWindow* self) {
    if (IsNetworkProcessLoss(error->code)) {
        // The engine tells of no cookie that changes in the new process.
        self->m_cookieWatch.OnChangesUntold();
    }
    const LoadFailure failure = ClassifyLoadFailure(error->code);
    if (failure == LoadFailure::cancelled) {
        return FALSE;
    }
    if (self->m_load->IsToCome()) {
        return TRUE;
    }
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE &&
        self->m_load->OnCancelledByEngine()) {
        return TRUE;
    }
    self->m_load->OnAnswered();
    TK_LOG_ERROR("Failed to load page: %s, URI = %s", error->message, failingUri);
    if (failure == LoadFailure::failed) {
        self->sendFinalResult(BrowserResultType::error_unknown);
    }
    return TRUE;
}

gboolean GtkBrowserWindow::webViewLoadFailedWithTLSErrorsCB(WebKitWebView* /*webView*/,
                                                            const char* /*failingUri*/,
                                                            GTlsCertificate* /*certificate*/,
                                                            GTlsCertificateFlags errors,
                                                            GtkBrowserWindow* self) {
    if (!self->m_load->IsToCome()) {
        self->m_load->OnAnswered();
        TK_LOG_ERROR("Failed to load page: %s", TlsErrorsToText(errors).c_str());
        self->sendFinalResult(BrowserResultType::error_cert);
    }
    return TRUE;
}

void GtkBrowserWindow::webProcessTerminatedCB(WebKitWebView* webView,
                                              WebKitWebProcessTerminationReason reason,
                                              GtkBrowserWindow* self) {
    const char* const uri = webkit_web_view_get_uri(webView);
    TK_LOG_ERROR("The web process %s, URI = %s", TerminationText(reason),
                 uri != nullptr ? uri : "");
    if (!self->m_load->OutlivesProcess()) {
        self->sendFinalResult(BrowserResultType::error_unknown);
    }
}

gboolean GtkBrowserWindow::onDecidePolicy(WebKitWebView* webView, WebKitPolicyDecision* decision,
                                          WebKitPolicyDecisionType type,
                                          GtkBrowserWindow* /*self*/) {
    if (type != WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION) {
        return FALSE;
    }
    WebKitNavigationAction* const action = webkit_navigation_policy_decision_get_navigation_action(
        WEBKIT_NAVIGATION_POLICY_DECISION(decision));
    if (webkit_navigation_action_get_navigation_type(action) !=
            WEBKIT_NAVIGATION_TYPE_LINK_CLICKED &&
        webkit_navigation_action_get_mouse_button(action) != kMiddleButton) {
        return FALSE;
    }
    // No second window is ever made: what would open one is loaded in this view.
    webkit_web_view_load_request(webView, webkit_navigation_action_get_request(action));
    webkit_policy_decision_ignore(decision);
    return TRUE;
}

gboolean GtkBrowserWindow::onLoadTimeout(gpointer self) {
    static_cast<GtkBrowserWindow*>(self)->sendFinalResult(BrowserResultType::error_timeout);
    return G_SOURCE_REMOVE;
}

gboolean GtkBrowserWindow::onDeleteEvent(GtkWidget* /*widget*/, GdkEvent* /*event*/,
                                         GtkBrowserWindow* self) {
    self->sendFinalResult(BrowserResultType::cancel);
    return TRUE;
}
