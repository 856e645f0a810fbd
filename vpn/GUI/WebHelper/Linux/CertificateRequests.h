#pragma once

#include <webkit2/webkit2.h>

#include <memory>
#include <string>

class COperationJournal;

/// Answers the sites that ask one web view for the person's certificate. The person chooses among
/// those on the machine's tokens and gives the token's PIN, in dialogs on the window. The choice
/// holds for the site as long as this lives. In a view that nobody can see, nothing is asked and no
/// certificate given. Nothing is looked for before a site asks. Main thread only.
///
/// The engine's older API never asks: there this does nothing.
class CCertificateRequests {
public:
    /// Must be made before other handlers of "authenticate" are connected. Nothing is owned, and
    /// everything must outlive this.
    CCertificateRequests(GtkWindow* window, WebKitWebView* webView, COperationJournal& journal);
    /// Closes the dialog, if one is open, and goes on without a certificate.
    ~CCertificateRequests();
    CCertificateRequests(const CCertificateRequests&) = delete;
    CCertificateRequests& operator=(const CCertificateRequests&) = delete;

    /// The page gives way to the next operation's page. Its question goes, and until the next load
    /// has started, nothing is asked.
    void OnPageOver();

private:
    class Desk;
    std::unique_ptr<Desk> m_desk;
};

/// Loads a page whose site may ask for a certificate. Main thread only.
void LoadPageThatMayAsk(WebKitWebView* webView, const std::string& uri);
