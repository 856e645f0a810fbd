// With the engine's older API.

#include "CertificateRequests.h"

class CCertificateRequests::Desk {};

CCertificateRequests::CCertificateRequests(GtkWindow* /*window*/, WebKitWebView* /*webView*/,
                                           COperationJournal& /*journal*/) {}

CCertificateRequests::~CCertificateRequests() = default;
