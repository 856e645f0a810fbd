#pragma once

#include <string>
#include <vector>

#include "Certificates.h"
#include "PictureTest.h"
#include "TestTokens.h"

constexpr char kCertificateTitle[] = "Choose a Certificate";
constexpr char kPinTitle[] = "Enter the PIN";

/// The fixture of the suites in which a site asks for the person's certificate: one site that asks
/// with each connection. Its page "/page" is the operation's final one.
class CertificateTest : public PictureTest {
protected:
    CertificateTest();
    ~CertificateTest() override;

    /// A site whose pages need a certificate, or do without one as well.
    static TlsIdentity Asking(TlsIdentity::Version version, bool needsClient);

    /// Shows the site's page.
    void Visit(HttpServer& site);
    /// Runs the main loop until there is a dialog of this title, gives it the keyboard and returns
    /// it. Null after the test deadline.
    GtkWindow* AwaitDialog(const std::string& title);
    /// The same for the question, and the answer "yes, the selected one".
    void UseCertificate();
    /// The same for the PIN.
    void GivePin(const std::string& pin);
    /// Runs the main loop until no dialog is left.
    bool WaitUntilAlone();
    /// The dialog of this title, or null.
    static GtkWindow* FindDialog(const std::string& title);
    /// What the dialog says, from top to bottom.
    static std::vector<std::string> TextsOf(GtkWindow* dialog);

    /// The common name in the certificate that each request for a path came with.
    static std::vector<std::string> Clients(const HttpServer& site);

    TestTokens& m_tokens;
    HttpServer m_site{Asking(TlsIdentity::Version::latest, true)};
};
