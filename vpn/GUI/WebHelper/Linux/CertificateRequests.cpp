#include "CertificateRequests.h"

#include <libsoup/soup.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CertificateDialog.h"
#include "GObjectPtr.h"
#include "MainThread.h"
#include "OperationJournal.h"
#include "PinDialog.h"
#include "TlsCertificate.h"
#include "TokenListing.h"

namespace {

struct CredentialFree {
    void operator()(WebKitCredential* credential) const { webkit_credential_free(credential); }
};
using CredentialPtr = std::unique_ptr<WebKitCredential, CredentialFree>;

bool IsForCertificate(WebKitAuthenticationRequest* request) {
    return webkit_authentication_request_get_scheme(request) ==
           WEBKIT_AUTHENTICATION_SCHEME_CLIENT_CERTIFICATE_REQUESTED;
}

bool IsForPin(WebKitAuthenticationRequest* request) {
    return webkit_authentication_request_get_scheme(request) ==
           WEBKIT_AUTHENTICATION_SCHEME_CLIENT_CERTIFICATE_PIN_REQUESTED;
}

// Host and port.
std::string SiteOf(WebKitAuthenticationRequest* request) {
    const std::string host = webkit_authentication_request_get_host(request);
    const bool isIpv6 = host.find(':') != std::string::npos && host.front() != '[';
    return (isIpv6 ? "[" + host + "]" : host) + ":" +
           std::to_string(webkit_authentication_request_get_port(request));
}

void Authenticate(WebKitAuthenticationRequest* request, CredentialPtr credential) {
    webkit_authentication_request_authenticate(request, credential.get());
}

PinTries::Left TriesLeft(WebKitAuthenticationRequest* request) {
    const GTlsPasswordFlags flags =
        webkit_authentication_request_get_certificate_pin_flags(request);
    if ((flags & G_TLS_PASSWORD_FINAL_TRY) != 0) {
        return PinTries::Left::one;
    }
    return (flags & G_TLS_PASSWORD_MANY_TRIES) != 0 ? PinTries::Left::few : PinTries::Left::enough;
}

// An address that a view is given is UTF-8. A request takes each of its bytes for a character.
std::string Escaped(const std::string& uri) {
    std::string escaped;
    for (const char byte : uri) {
        const auto code = static_cast<unsigned char>(byte);
        if (code < 0x80) {
            escaped += byte;
        } else {
            std::array<char, 4> text{};
            g_snprintf(text.data(), text.size(), "%%%02X", code);
            escaped += text.data();
        }
    }
    return escaped;
}

}  // namespace

/// Takes the requests one by one: there is at most one dialog.
class CCertificateRequests::Desk {
public:
    Desk(GtkWindow* window, WebKitWebView* webView, COperationJournal& journal);
    ~Desk();
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    void OnPageOver();

private:
    using RequestPtr = GObjectPtr<WebKitAuthenticationRequest>;
    /// Nothing means that the person goes without one.
    using Choice = std::optional<TokenCertificate>;

    void serve();
    void ask();
    void askForCertificate();
    void askForPin(const TokenCertificate& certificate);
    void choose(const Choice& choice);
    void give(const Choice& choice);
    void givePin(const char* pin);
    void goWithoutPin();
    void refuse(WebKitAuthenticationRequest* request);
    void refuseAll();
    void stopAsking();
    RequestPtr take();

    static gboolean onAuthenticate(WebKitWebView* webView, WebKitAuthenticationRequest* request,
                                   Desk* self);
    static void onCancelled(WebKitAuthenticationRequest* request, Desk* self);
    static void onLoadChanged(WebKitWebView* webView, WebKitLoadEvent event, Desk* self);
    static void onUnmap(GtkWidget* webView, Desk* self);

    GtkWindow* m_window;
    WebKitWebView* m_webView;
    COperationJournal& m_journal;
    // The first one is being served.
    std::deque<RequestPtr> m_requests;
    std::map<std::string, Choice> m_choices;
    std::optional<CTokenListing> m_listing;
    std::optional<CCertificateDialog> m_certificateDialog;
    std::optional<CPinDialog> m_pinDialog;
    PinTries m_tries;
    // Until the next load has started, what comes belongs to the page before, or is taken back by
    // the engine.
    bool m_isPageOver = false;
};

CCertificateRequests::Desk::Desk(GtkWindow* window, WebKitWebView* webView,
                                 COperationJournal& journal)
    : m_window(window), m_webView(webView), m_journal(journal) {
    assert(IsMainThread());
    g_signal_connect(m_webView, "authenticate", G_CALLBACK(onAuthenticate), this);
    g_signal_connect(m_webView, "load-changed", G_CALLBACK(onLoadChanged), this);
    g_signal_connect(m_webView, "unmap", G_CALLBACK(onUnmap), this);
}

CCertificateRequests::Desk::~Desk() {
    assert(IsMainThread());
    g_signal_handlers_disconnect_by_data(m_webView, this);
    refuseAll();
}

void CCertificateRequests::Desk::OnPageOver() {
    assert(IsMainThread());
    m_isPageOver = true;
    refuseAll();
}

gboolean CCertificateRequests::Desk::onAuthenticate(WebKitWebView* webView,
                                                    WebKitAuthenticationRequest* request,
                                                    Desk* self) {
    if (!IsForCertificate(request) && !IsForPin(request)) {
        return FALSE;
    }
    if (gtk_widget_get_mapped(GTK_WIDGET(webView)) == FALSE) {
        self->refuse(request);
        return TRUE;
    }
    g_signal_connect(request, "cancelled", G_CALLBACK(onCancelled), self);
    self->m_requests.emplace_back(WEBKIT_AUTHENTICATION_REQUEST(g_object_ref(request)));
    self->serve();
    return TRUE;
}

void CCertificateRequests::Desk::serve() {
    while (!m_isPageOver && !m_requests.empty() && !m_listing && !m_certificateDialog &&
           !m_pinDialog) {
        WebKitAuthenticationRequest* const request = m_requests.front().get();
        const auto known = m_choices.find(SiteOf(request));
        if (IsForCertificate(request)) {
            known == m_choices.end() ? askForCertificate() : give(known->second);
        } else if (known != m_choices.end() && known->second) {
            askForPin(*known->second);
        } else {
            refuse(take().get());
        }
    }
}

void CCertificateRequests::Desk::askForCertificate() {
    m_listing.emplace([this](const std::vector<TokenCertificate>& certificates) {
        m_listing.reset();
        if (certificates.empty()) {
            // No choice of the person's: the card may come later.
            refuse(take().get());
            serve();
            return;
        }
        m_certificateDialog.emplace(
            m_window, SiteOf(m_requests.front().get()), certificates,
            [this, certificates](std::optional<std::size_t> number) {
                m_certificateDialog.reset();
                choose(number ? Choice(certificates[*number]) : std::nullopt);
            });
    });
}

void CCertificateRequests::Desk::choose(const Choice& choice) {
    m_choices[SiteOf(m_requests.front().get())] = choice;
    serve();
}

void CCertificateRequests::Desk::give(const Choice& choice) {
    const GObjectPtr<GTlsCertificate> certificate = choice ? NewTlsCertificate(*choice) : nullptr;
    if (!certificate) {
        refuse(take().get());
        return;
    }
    const RequestPtr request = take();
    m_journal.OnCertificateRequested(SiteOf(request.get()), true);
    // The engine would keep it past a reset, and with it the PIN.
    Authenticate(request.get(), CredentialPtr(webkit_credential_new_for_certificate(
                                    certificate.get(), WEBKIT_CREDENTIAL_PERSISTENCE_NONE)));
}

void CCertificateRequests::Desk::askForPin(const TokenCertificate& certificate) {
    WebKitAuthenticationRequest* const request = m_requests.front().get();
    const bool isRetry = webkit_authentication_request_is_retry(request) != FALSE;
    if (isRetry && m_tries.left == PinTries::Left::one) {
        goWithoutPin();  // the token has locked itself, and says no more than that this was wrong
        return;
    }
    m_tries = {isRetry ? m_tries.wrong + 1 : 0, TriesLeft(request)};
    m_pinDialog.emplace(m_window, certificate.token, m_tries, [this](const char* pin) {
        if (pin != nullptr) {
            givePin(pin);
        } else {
            goWithoutPin();
        }
        m_pinDialog.reset();
        serve();
    });
}

void CCertificateRequests::Desk::givePin(const char* pin) {
    Authenticate(take().get(), CredentialPtr(webkit_credential_new_for_certificate_pin(
                                   pin, WEBKIT_CREDENTIAL_PERSISTENCE_NONE)));
}

void CCertificateRequests::Desk::goWithoutPin() {
    const RequestPtr request = take();
    m_choices[SiteOf(request.get())] = std::nullopt;
    refuse(request.get());
}

// Without a PIN the engine would try an empty one, again and again, until the token locks itself.
void CCertificateRequests::Desk::refuse(WebKitAuthenticationRequest* request) {
    if (IsForPin(request)) {
        webkit_authentication_request_cancel(request);
        return;
    }
    m_journal.OnCertificateRequested(SiteOf(request), false);
    webkit_authentication_request_authenticate(request, nullptr);
}

void CCertificateRequests::Desk::refuseAll() {
    stopAsking();
    while (!m_requests.empty()) {
        refuse(take().get());
    }
}

void CCertificateRequests::Desk::stopAsking() {
    m_listing.reset();
    m_certificateDialog.reset();
    m_pinDialog.reset();
}

// The first request leaves the queue, to be answered.
CCertificateRequests::Desk::RequestPtr CCertificateRequests::Desk::take() {
    RequestPtr request = std::move(m_requests.front());
    m_requests.pop_front();
    g_signal_handlers_disconnect_by_data(request.get(), this);
    return request;
}

// By the engine, because of another load, or because it asked before it told of the load's start.
void CCertificateRequests::Desk::onCancelled(WebKitAuthenticationRequest* request, Desk* self) {
    g_signal_handlers_disconnect_by_data(request, self);
    const bool isServed = self->m_requests.front().get() == request;
    self->m_requests.erase(
        std::find_if(self->m_requests.begin(), self->m_requests.end(),
                     [&](const RequestPtr& other) { return other.get() == request; }));
    if (isServed) {
        self->stopAsking();
        self->serve();
    }
}

void CCertificateRequests::Desk::onLoadChanged(WebKitWebView* /*webView*/, WebKitLoadEvent event,
                                               Desk* self) {
    if (event == WEBKIT_LOAD_STARTED) {
        // They belong to the page before.
        self->refuseAll();
        self->m_isPageOver = false;
    }
}

void CCertificateRequests::Desk::onUnmap(GtkWidget* /*webView*/, Desk* self) {
    self->refuseAll();
}

CCertificateRequests::CCertificateRequests(GtkWindow* window, WebKitWebView* webView,
                                           COperationJournal& journal)
    : m_desk(std::make_unique<Desk>(window, webView, journal)) {}

CCertificateRequests::~CCertificateRequests() = default;

void CCertificateRequests::OnPageOver() {
    m_desk->OnPageOver();
}

// When a program asks for a load, the engine connects beforehand, and the load waits for that. But
// such a connection cannot ask for a certificate: the load would wait for ten seconds and then
// fail. It waits only for a connection that has its own user agent. So the request is given another
// one, which the engine replaces by the right one before it sends the request.
void LoadPageThatMayAsk(WebKitWebView* webView, const std::string& uri) {
    const GObjectPtr<WebKitURIRequest> request(webkit_uri_request_new(Escaped(uri).c_str()));
    SoupMessageHeaders* const headers = webkit_uri_request_get_http_headers(request.get());
    if (headers != nullptr) {
        soup_message_headers_replace(headers, "User-Agent", "none");
    }
    webkit_web_view_load_request(webView, request.get());
}
