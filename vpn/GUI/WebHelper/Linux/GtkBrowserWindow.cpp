#include "GtkBrowserWindow.h"

#include <libsoup/soup.h>
#include <webkit2/webkit2.h>

#include <algorithm>
#include <cassert>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Accelerators.h"
#include "AppLog.h"
#include "BuiltInMessages.h"
#include "CertificateRequests.h"
#include "CookieStorage.h"
#include "CookieStore.h"
#include "GObjectPtr.h"
#include "IPageOperationPort.h"
#include "InstallRoot.h"
#include "LoadIndicator.h"
#include "LostQuestions.h"
#include "MainLoopSource.h"
#include "MainThread.h"
#include "MsgCatalog.h"
#include "OperationJournal.h"
#include "PageCurtain.h"
#include "PageGuard.h"
#include "PageOperation.h"
#include "PageSettings.h"
#include "PasswordDialog.h"
#include "ResponseHeader.h"
#include "Sandbox.h"
#include "TlsErrorText.h"
#include "UserAgent.h"
#include "WebsiteData.h"
#include "WheelZoom.h"
#include "WindowClass.h"

namespace {

constexpr int kWindowWidth = 1000;
constexpr int kWindowHeight = 600;
constexpr guint kMiddleButton = 2;
constexpr char kRequestsKey[] = "tk-requests";
constexpr char kWindowIcon[] = "/resources/vpnui128.png";

// If the suite's resources are missing, the window has no icon.
void SetWindowIcon(GtkWindow* window) {
    GError* rawError = nullptr;
    gtk_window_set_icon_from_file(window, (std::string(kInstallRoot) + kWindowIcon).c_str(),
                                  &rawError);
    const GErrorPtr ignored(rawError);
}

// GLib converts the seconds to milliseconds in an integer of the same size. More would overflow.
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

std::string TextOf(const char* text) {
    return text != nullptr ? text : "";
}

// From version 2.26 on, engines choose their processes themselves, and only print that this call
// has no effect.
void ShareOneWebProcess(WebKitWebContext* context) {
    if (webkit_get_major_version() > 2 || webkit_get_minor_version() >= 26) {
        return;
    }
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    webkit_web_context_set_process_model(context, WEBKIT_PROCESS_MODEL_SHARED_SECONDARY_PROCESS);
    G_GNUC_END_IGNORE_DEPRECATIONS
}

// Empty for a view without a page.
std::string UriOf(WebKitWebView* webView) {
    return TextOf(webkit_web_view_get_uri(webView));
}

std::string UriOf(WebKitURIRequest* request) {
    return TextOf(webkit_uri_request_get_uri(request));
}

// The addresses that were requested for a watched resource, which owns them.
std::vector<std::string>& RequestsOf(WebKitWebResource* resource) {
    return *static_cast<std::vector<std::string>*>(
        g_object_get_data(G_OBJECT(resource), kRequestsKey));
}

void SetRequestsOf(WebKitWebResource* resource, std::vector<std::string> requests) {
    auto owned = std::make_unique<std::vector<std::string>>(std::move(requests));
    g_object_set_data_full(G_OBJECT(resource), kRequestsKey, owned.release(), [](gpointer data) {
        delete static_cast<std::vector<std::string>*>(data);
    });
}

WebKitNavigationAction* ActionOf(WebKitPolicyDecision* decision) {
    return webkit_navigation_policy_decision_get_navigation_action(
        WEBKIT_NAVIGATION_POLICY_DECISION(decision));
}

// 0 for a page without a response.
guint StatusOfPage(WebKitWebView* webView) {
    WebKitWebResource* const resource = webkit_web_view_get_main_resource(webView);
    WebKitURIResponse* const response =
        resource != nullptr ? webkit_web_resource_get_response(resource) : nullptr;
    return response != nullptr ? webkit_uri_response_get_status_code(response) : 0;
}

// With the newer API the engine cancels some of the loads whose certificate it refuses, instead of
// reporting the certificate. It cancels loads for no other reason, and never without TLS.
bool IsCancelledByEngine(const GError* error, const char* uri) {
    return SOUP_MAJOR_VERSION >= 3 && g_str_has_prefix(uri, "https:") != FALSE &&
           g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE;
}

}  // namespace

struct GtkBrowserWindow::QueuedOperation {
    GtkBrowserWindow* window;
    CBrowserOperation operation;
};

class GtkBrowserWindow::OperationPort final : public IPageOperationPort {
public:
    explicit OperationPort(GtkBrowserWindow& window) : m_window(window) {}

    void Load(const std::string& url) override;
    void EndProcess() override;
    [[nodiscard]] bool CanQueryCookies() const override { return CCookieStore::CanBeAsked(); }
    void QueryCookies(const CookieQuery& query) override { m_window.queryCookies(query); }
    [[nodiscard]] bool IsResultSent() const override { return m_window.m_resultSent; }
    void SendResult(BrowserResultType type, const std::string& cookieValue) override {
        CBrowserResult result(type, cookieValue);
        m_window.SendResult(result, true);
    }

private:
    GtkBrowserWindow& m_window;
};

struct GtkBrowserWindow::MainThreadParts {
    explicit MainThreadParts(GtkBrowserWindow& browser) : port(browser), operation(port) {}

    GObjectPtr<GtkWidget> window;
    GObjectPtr<WebKitWebView> webView;
    bool isViewNew = true;  // never shown yet
    GObjectPtr<WebKitWebContext> webContext;
    WebKitCookieManager* cookieManager = nullptr;
    std::optional<CCookieStore> cookieStore;
    GObjectPtr<GtkAccelGroup> acceleratorGroup;
    COperationJournal journal;
    std::optional<CCertificateRequests> certificateRequests;
    std::optional<CLostQuestions> lostQuestions;
    std::optional<CPageGuard> pageGuard;
    std::optional<CPageCurtain> pageCurtain;
    std::optional<CLoadIndicator> loadIndicator;
    std::optional<CWheelZoom> wheelZoom;
    OperationPort port;
    CPageOperation operation;
    guint timeoutSource = 0;
    guint loadStoppedSource = 0;
    std::optional<CWebsiteDataRemoval> dataRemoval;
    // Asked for while the data of the view before was being removed.
    std::optional<std::string> loadAfterRemoval;
};

void GtkBrowserWindow::OperationPort::Load(const std::string& url) {
    MainThreadParts& parts = *m_window.m_parts;
    if (parts.dataRemoval->IsGoingOn()) {
        parts.loadAfterRemoval = url;
    } else {
        LoadPageThatMayAsk(parts.webView.get(), url);
    }
}

void GtkBrowserWindow::OperationPort::EndProcess() {
    webkit_web_view_terminate_web_process(m_window.m_parts->webView.get());
}

struct GtkBrowserWindow::Callbacks {
    static CPageOperation& OperationOf(gpointer browser) {
        return static_cast<GtkBrowserWindow*>(browser)->m_parts->operation;
    }

    static void onReadyToShow(WebKitWebView* webView, GtkBrowserWindow* self) {
        WebKitWindowProperties* const properties = webkit_web_view_get_window_properties(webView);
        GdkRectangle geometry;
        webkit_window_properties_get_geometry(properties, &geometry);
        GtkWindow* const window = GTK_WINDOW(self->m_parts->window.get());
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

    static gboolean onContextMenu() { return TRUE; }

    // While the next page is still to come, a key would load the one before again instead.
    static gboolean onKey(GtkAccelGroup* /*group*/, GObject* /*window*/, guint /*key*/,
                          GdkModifierType /*modifiers*/, GtkBrowserWindow* self) {
        return self->m_parts->pageCurtain->KeepsInput() ? TRUE : FALSE;
    }

    // What is no link, such as a script's window or a form's.
    static GtkWidget* onCreate(WebKitWebView* webView, WebKitNavigationAction* /*action*/,
                               GtkBrowserWindow* self) {
        self->m_parts->journal.OnWindowRefused(UriOf(webView));
        return nullptr;
    }

    static void webViewLoadChangedCB(WebKitWebView* webView, WebKitLoadEvent event,
                                     GtkBrowserWindow* self) {
        CPageOperation& operation = OperationOf(self);
        switch (event) {
            case WEBKIT_LOAD_STARTED:
                webkit_web_view_set_zoom_level(webView, 1.0);
                operation.OnLoadStarted();
                break;
            case WEBKIT_LOAD_COMMITTED:
                if (!operation.IsPageToCome()) {
                    self->m_parts->pageGuard->OnPageCame();
                    self->m_parts->pageCurtain->OpenWhenDrawn();
                }
                operation.OnPageCommitted(StatusOfPage(webView), UriOf(webView));
                break;
            case WEBKIT_LOAD_FINISHED:
                if (!operation.IsPageToCome()) {
                    self->m_parts->pageCurtain->OpenSoon();
                }
                operation.OnPageFinished(UriOf(webView));
                break;
            default:
                break;
        }
    }

    static gboolean webViewLoadFailedCB(WebKitWebView* /*webView*/, WebKitLoadEvent /*event*/,
                                        const char* failingUri, GError* error,
                                        GtkBrowserWindow* self) {
        const bool isHandled = OperationOf(self).OnLoadFailed(
            {error->code, IsCancelledByEngine(error, failingUri), error->message, failingUri});
        return isHandled ? TRUE : FALSE;
    }

    static gboolean webViewLoadFailedWithTLSErrorsCB(WebKitWebView* /*webView*/,
                                                     const char* /*failingUri*/,
                                                     GTlsCertificate* /*certificate*/,
                                                     GTlsCertificateFlags errors,
                                                     GtkBrowserWindow* self) {
        OperationOf(self).OnCertificateRefused(TlsErrorsToText(errors));
        return TRUE;
    }

    static void uriChangedCB(WebKitWebView* webView, GParamSpec* /*property*/,
                             GtkBrowserWindow* self) {
        if (webkit_web_view_is_loading(webView) == FALSE) {
            OperationOf(self).OnAddressChanged(UriOf(webView));
        }
    }

    // The engine can stop a load without reporting how it ended. If it does report an end, the
    // report follows immediately, so the operation hears of the stop only when the main loop is
    // idle.
    static void isLoadingChangedCB(WebKitWebView* webView, GParamSpec* /*property*/,
                                   GtkBrowserWindow* self) {
        RemoveSource(self->m_parts->loadStoppedSource);
        if (webkit_web_view_is_loading(webView) == FALSE) {
            self->m_parts->loadStoppedSource = g_idle_add(onLoadStopped, self);
        }
    }

    static gboolean onLoadStopped(gpointer self) {
        static_cast<GtkBrowserWindow*>(self)->m_parts->loadStoppedSource = 0;
        OperationOf(self).OnLoadStopped();
        return G_SOURCE_REMOVE;
    }

    static void responsivenessChangedCB(WebKitWebView* webView, GParamSpec* /*property*/,
                                        GtkBrowserWindow* self) {
        OperationOf(self).OnResponsiveness(webkit_web_view_get_is_web_process_responsive(webView) !=
                                           FALSE);
    }

    static void webProcessTerminatedCB(WebKitWebView* webView,
                                       WebKitWebProcessTerminationReason reason,
                                       GtkBrowserWindow* self) {
        TK_LOG_ERROR("The web process %s, URI = %s", TerminationText(reason),
                     UriOf(webView).c_str());
        OperationOf(self).OnProcessEnded(reason == WEBKIT_WEB_PROCESS_TERMINATED_BY_API
                                             ? ProcessEnd::forced
                                             : ProcessEnd::itsOwn);
    }

    static void cookiesChangedCB(WebKitCookieManager* /*manager*/, GtkBrowserWindow* self) {
        OperationOf(self).OnCookiesChanged();
    }

    static void onResourceLoadStarted(WebKitWebView* /*webView*/, WebKitWebResource* resource,
                                      WebKitURIRequest* request, GtkBrowserWindow* self) {
        if (OperationOf(self).WatchesResponses()) {
            SetRequestsOf(resource, {UriOf(request)});
            g_signal_connect(resource, "sent-request", G_CALLBACK(onRequestSent), nullptr);
            g_signal_connect(resource, "notify::response", G_CALLBACK(onResourceResponse), self);
        }
    }

    static void onRequestSent(WebKitWebResource* resource, WebKitURIRequest* request,
                              const WebKitURIResponse* redirect) {
        if (redirect != nullptr) {
            RequestsOf(resource).push_back(UriOf(request));
        }
    }

    static void onResourceResponse(WebKitWebResource* resource, GParamSpec* /*property*/,
                                   GtkBrowserWindow* self) {
        WebKitURIResponse* const response = webkit_web_resource_get_response(resource);
        if (response != nullptr) {
            OperationOf(self).OnResponse({webkit_uri_response_get_status_code(response),
                                          TextOf(webkit_uri_response_get_mime_type(response)),
                                          RequestsOf(resource),
                                          ResponseHeader(response, "Set-Cookie")});
        }
    }

    static gboolean onDecidePolicy(WebKitWebView* webView, WebKitPolicyDecision* decision,
                                   WebKitPolicyDecisionType type, GtkBrowserWindow* self) {
        if (type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION) {
            return holdNavigation(decision, self);
        }
        if (type != WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION) {
            return FALSE;
        }
        WebKitNavigationAction* const action = ActionOf(decision);
        if (webkit_navigation_action_get_navigation_type(action) !=
                WEBKIT_NAVIGATION_TYPE_LINK_CLICKED &&
            webkit_navigation_action_get_mouse_button(action) != kMiddleButton) {
            return FALSE;
        }
        // There is never a second window: what would open one is loaded in this view.
        webkit_web_view_load_request(webView, webkit_navigation_action_get_request(action));
        webkit_policy_decision_ignore(decision);
        return TRUE;
    }

    // Without the wait a quick page's cookie could be in the store before the answer, and would
    // count as an older one.
    static gboolean holdNavigation(WebKitPolicyDecision* decision, GtkBrowserWindow* self) {
        const std::optional<CookieQuery> query = OperationOf(self).OnNavigation(
            UriOf(webkit_navigation_action_get_request(ActionOf(decision))));
        if (!query) {
            return FALSE;
        }
        const std::shared_ptr<WebKitPolicyDecision> held(
            WEBKIT_POLICY_DECISION(g_object_ref(decision)), g_object_unref);
        self->m_parts->cookieStore->QueryAll(query->uri,
                                             [self, query = *query, held](const auto& cookies) {
                                                 OperationOf(self).OnCookies(query, cookies);
                                                 webkit_policy_decision_use(held.get());
                                             });
        return TRUE;
    }

    static gboolean onLoadTimeout(gpointer self) {
        OperationOf(self).OnTimeout();
        return G_SOURCE_REMOVE;
    }

    static gboolean onDeleteEvent(GtkWidget* /*widget*/, GdkEvent* /*event*/,
                                  GtkBrowserWindow* self) {
        OperationOf(self).OnWindowClosed();
        return TRUE;
    }
};

GtkBrowserWindow::GtkBrowserWindow(GtkApplication* application, ResultHandler resultHandler)
    : m_resultHandler(std::move(resultHandler)), m_parts(std::make_unique<MainThreadParts>(*this)) {
    assert(IsMainThread());
    init(application);
    initWebView();
}

GtkBrowserWindow::~GtkBrowserWindow() {
    assert(IsMainThread());
    RemoveSource(m_parts->timeoutSource);
    RemoveSource(m_parts->loadStoppedSource);
    g_signal_handlers_disconnect_by_data(m_parts->webView.get(), this);
    g_signal_handlers_disconnect_by_data(m_parts->window.get(), this);
    g_signal_handlers_disconnect_by_data(m_parts->acceleratorGroup.get(), this);
    g_signal_handlers_disconnect_by_data(m_parts->cookieManager, this);
}

void GtkBrowserWindow::init(GtkApplication* application) {
    m_parts->window.reset(GTK_WIDGET(g_object_ref(gtk_application_window_new(application))));
    GtkWindow* const window = GTK_WINDOW(m_parts->window.get());
    gtk_window_set_title(window, MsgCatalog::getMessage(kLoginWindowTitle.c_str()).c_str());
    gtk_window_set_default_size(window, kWindowWidth, kWindowHeight);
    SetWindowIcon(window);
    SetWindowClass(window);
    m_parts->acceleratorGroup.reset(gtk_accel_group_new());
    gtk_window_add_accel_group(window, m_parts->acceleratorGroup.get());
    // Before the keys' actions, so that it decides first.
    g_signal_connect(m_parts->acceleratorGroup.get(), "accel-activate",
                     G_CALLBACK(Callbacks::onKey), this);
    ConnectAccelerators(m_parts->acceleratorGroup.get());
    g_signal_connect(window, "delete-event", G_CALLBACK(Callbacks::onDeleteEvent), this);
    m_parts->webContext.reset(NewWebContext());
    ShareOneWebProcess(m_parts->webContext.get());
    ConfineWebProcesses(m_parts->webContext.get());
    // Only the server itself may answer: what a cache answers says nothing about a session of now.
    webkit_web_context_set_cache_model(m_parts->webContext.get(),
                                       WEBKIT_CACHE_MODEL_DOCUMENT_VIEWER);
    RefuseDownloads(m_parts->webContext.get());
    WebKitCookieManager* const manager =
        webkit_web_context_get_cookie_manager(m_parts->webContext.get());
    m_parts->cookieManager = manager;
    g_signal_connect(manager, "changed", G_CALLBACK(Callbacks::cookiesChangedCB), this);
    m_parts->cookieStore.emplace(manager);
    m_parts->dataRemoval.emplace(m_parts->webContext.get(), [this] { loadWhatWaited(); });
    if (webkit_web_context_is_ephemeral(m_parts->webContext.get()) == FALSE) {
        KeepCookiesInHome(manager);
    }
}

void GtkBrowserWindow::loadWhatWaited() {
    if (m_parts->loadAfterRemoval) {
        const std::string url = *std::exchange(m_parts->loadAfterRemoval, std::nullopt);
        LoadPageThatMayAsk(m_parts->webView.get(), url);
    }
}

void GtkBrowserWindow::initWebView() {
    GtkWidget* const widget = webkit_web_view_new_with_context(m_parts->webContext.get());
    m_parts->webView.reset(WEBKIT_WEB_VIEW(g_object_ref_sink(widget)));
    connectWebViewSignals();
    GtkWindow* const window = GTK_WINDOW(m_parts->window.get());
    m_parts->lostQuestions.emplace(m_parts->webView.get());
    m_parts->certificateRequests.emplace(window, m_parts->webView.get(), m_parts->journal);
    m_parts->pageGuard.emplace(m_parts->webView.get());
    CompletePasswordDialogs(m_parts->webView.get());
    m_parts->pageCurtain.emplace(m_parts->webView.get());
    m_parts->loadIndicator.emplace(m_parts->window.get(), m_parts->webView.get());
    m_parts->wheelZoom.emplace(m_parts->webView.get());
    gtk_drag_dest_unset(widget);
    gtk_container_add(GTK_CONTAINER(window), widget);
    gtk_window_set_position(window, GTK_WIN_POS_CENTER);
    gtk_window_resize(window, kWindowWidth, kWindowHeight);
    m_parts->isViewNew = true;
    RestrictPages(webkit_web_view_get_settings(m_parts->webView.get()));
}

void GtkBrowserWindow::connectWebViewSignals() {
    const struct {
        const char* signal;
        GCallback handler;
    } handlers[] = {
        {"ready-to-show", G_CALLBACK(Callbacks::onReadyToShow)},
        {"load-failed-with-tls-errors", G_CALLBACK(Callbacks::webViewLoadFailedWithTLSErrorsCB)},
        {"load-changed", G_CALLBACK(Callbacks::webViewLoadChangedCB)},
        {"load-failed", G_CALLBACK(Callbacks::webViewLoadFailedCB)},
        {"context-menu", G_CALLBACK(Callbacks::onContextMenu)},
        {"create", G_CALLBACK(Callbacks::onCreate)},
        {"resource-load-started", G_CALLBACK(Callbacks::onResourceLoadStarted)},
        {"decide-policy", G_CALLBACK(Callbacks::onDecidePolicy)},
        {"web-process-terminated", G_CALLBACK(Callbacks::webProcessTerminatedCB)},
        {"notify::uri", G_CALLBACK(Callbacks::uriChangedCB)},
        {"notify::is-loading", G_CALLBACK(Callbacks::isLoadingChangedCB)},
        {"notify::is-web-process-responsive", G_CALLBACK(Callbacks::responsivenessChangedCB)},
    };
    for (const auto& [signal, handler] : handlers) {
        g_signal_connect(m_parts->webView.get(), signal, handler, this);
    }
}

void GtkBrowserWindow::removeWebView() {
    webkit_web_view_stop_loading(m_parts->webView.get());
    g_signal_handlers_disconnect_by_data(m_parts->webView.get(), this);
    RemoveSource(m_parts->loadStoppedSource);
    m_parts->wheelZoom.reset();
    m_parts->loadIndicator.reset();
    m_parts->pageCurtain.reset();
    m_parts->pageGuard.reset();
    m_parts->lostQuestions.reset();
    m_parts->certificateRequests.reset();
    m_parts->operation.OnViewReplaced();
    m_parts->loadAfterRemoval.reset();
    // Also while a call to its page, which holds a reference, is not answered.
    gtk_widget_destroy(GTK_WIDGET(m_parts->webView.get()));
    m_parts->webView.reset();
}

void GtkBrowserWindow::HandleOperation(const CBrowserOperation& operation) {
    auto block = std::make_unique<QueuedOperation>(QueuedOperation{this, operation});
    // Cleared now, not when the operation starts. This is meant so: an event of the previous page
    // that comes in between counts as this operation's result.
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
            m_parts->journal.OnBegin(operation);
            LoadPage(operation.GetUrl(), operation.GetFinalUrl(), "", "", operation.GetUserAgent(),
                     operation.GetTimeout());
            break;
        case BrowserOperationType::browse_for_cookie:
            m_parts->journal.OnBegin(operation);
            // No timeout on purpose, because a person may take any time to sign in.
            LoadPage(operation.GetUrl(), operation.GetFinalUrl(), operation.GetCookieName(),
                     operation.GetErrorCookieName(), operation.GetUserAgent(), 0);
            break;
        case BrowserOperationType::reset:
            m_parts->journal.OnBegin(operation);
            Hide();
            ResetBrowser();
            return;
        default:
            TK_LOG_ERROR_OF("handleOperationCB", "Invalid browser operation.");
            return;
    }
    if (operation.GetShow()) {
        Show();
    }
}

void GtkBrowserWindow::LoadPage(const std::string& url, const std::string& finalUrl,
                                const std::string& cookieName, const std::string& errorCookieName,
                                const std::string& userAgent, std::uint32_t timeout) {
    assert(IsMainThread());
    if (!userAgent.empty()) {
        updateUserAgent(userAgent);
    }
    // First: the page whose question is refused behind this must not be loaded again.
    m_parts->lostQuestions->OnPageOver();
    m_parts->certificateRequests->OnPageOver();
    m_parts->pageGuard->OnPageOver();
    m_parts->pageCurtain->Close();
    m_parts->operation.Begin(url, finalUrl, {cookieName, errorCookieName});
    if (timeout != 0) {
        // The timeout of an operation that was replaced is not removed. It still fires, and ends
        // whichever operation runs then.
        m_parts->timeoutSource = gdk_threads_add_timeout_seconds(LongestTimeoutAtMost(timeout),
                                                                 Callbacks::onLoadTimeout, this);
    }
}

void GtkBrowserWindow::updateUserAgent(const std::string& userAgent) {
    const auto parts = SplitUserAgent(userAgent);
    if (!parts) {
        TK_LOG_WARNING("Invalid user agent from API.");
        return;
    }
    webkit_settings_set_user_agent_with_application_details(
        webkit_web_view_get_settings(m_parts->webView.get()), parts->applicationName.c_str(),
        parts->applicationVersion.c_str());
}

void GtkBrowserWindow::Show() {
    assert(IsMainThread());
    if (std::exchange(m_parts->isViewNew, false)) {
        restoreSize();
    }
    gtk_widget_show_all(m_parts->window.get());
    // It may be shown already, but minimised or covered by another window.
    gtk_window_present(GTK_WINDOW(m_parts->window.get()));
    gtk_widget_grab_focus(GTK_WIDGET(m_parts->webView.get()));
}

// A size that the user gave the window can arrive after the reset. The toolkit takes it for the
// window's own, and asks for no other, because it already asked for the first size at the start.
void GtkBrowserWindow::restoreSize() {
    GdkWindow* const shownBefore = gtk_widget_get_window(m_parts->window.get());
    if (shownBefore != nullptr) {
        gdk_window_resize(shownBefore, kWindowWidth, kWindowHeight);
    }
}

void GtkBrowserWindow::Hide() {
    assert(IsMainThread());
    gtk_widget_hide(m_parts->window.get());
}

void GtkBrowserWindow::ResetBrowser() {
    assert(IsMainThread());
    removeWebView();
    m_resultSent = false;
    m_parts->dataRemoval->Start();
    initWebView();
    CBrowserResult ready(BrowserResultType::ready, "");
    SendResult(ready, false);
}

void GtkBrowserWindow::queryCookies(const CookieQuery& query) {
    const auto answer = [this, query](const auto& cookies) {
        m_parts->operation.OnCookies(query, cookies);
    };
    if (query.purpose == CookieQuery::Purpose::baseline) {
        m_parts->cookieStore->QueryAll(query.uri, answer);
    } else {
        m_parts->cookieStore->QueryFor(query.uri, answer);
    }
}

void GtkBrowserWindow::SendResult(CBrowserResult& result, bool resultSentAfter) {
    RemoveSource(m_parts->timeoutSource);
    // The flag gets its new value before the handler is called. An agent may answer a result at
    // once with its next operation, and that operation's clearing of the flag must come last.
    if (m_resultSent.exchange(resultSentAfter)) {
        return;
    }
    m_parts->operation.OnResult();
    m_parts->journal.OnResult(result.GetResultType());
    m_resultHandler(result);
    Hide();
}
