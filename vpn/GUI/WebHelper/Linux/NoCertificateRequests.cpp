// With the engine's older API.

#include "CertificateRequests.h"

class CCertificateRequests::Desk {};

CCertificateRequests::CCertificateRequests(GtkWindow* /*window*/, WebKitWebView* /*webView*/,
                                           COperationJournal& /*journal*/) {}

CCertificateRequests::~CCertificateRequests() = default;

void CCertificateRequests::OnPageOver() {}

void LoadPageThatMayAsk(WebKitWebView* webView, const std::string& uri) {
    webkit_web_view_load_uri(webView, uri.c_str());
}
