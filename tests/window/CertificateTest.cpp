#include "CertificateTest.h"

#include <gdk/gdkkeysyms.h>

#include <memory>

namespace {

// Made before the first window, whose engine reads the environment; there is one in a process.
TestTokens& TheTokens() {
    static TestTokens tokens;
    return tokens;
}

void CollectTexts(GtkWidget* widget, gpointer texts) {
    if (GTK_IS_LABEL(widget)) {
        static_cast<std::vector<std::string>*>(texts)->emplace_back(
            gtk_label_get_text(GTK_LABEL(widget)));
    } else if (GTK_IS_CONTAINER(widget)) {
        gtk_container_forall(GTK_CONTAINER(widget), CollectTexts, texts);
    }
}

}  // namespace

CertificateTest::CertificateTest() : m_tokens(TheTokens()) {
    m_tokens.Insert({});
    m_tokens.SetWrongPins("alice", 0);
    m_site.ServePage("/page", "page");
    Open();
    m_log.Clear();
}

CertificateTest::~CertificateTest() = default;

TlsIdentity CertificateTest::Asking(TlsIdentity::Version version, bool needsClient) {
    TlsIdentity identity = TestCertificate("good");
    identity.version = version;
    identity.clientAuthorities = PeoplesAuthority();
    identity.needsClient = needsClient;
    return identity;
}

void CertificateTest::Visit(HttpServer& site) {
    Send(Operation::Browse(site.Url("/page"), site.Url("/page")).Shown());
    ASSERT_TRUE(WaitUntilShown());
}

GtkWindow* CertificateTest::FindDialog(const std::string& title) {
    GtkWindow* found = nullptr;
    const std::unique_ptr<GList, void (*)(GList*)> windows(gtk_window_list_toplevels(),
                                                           g_list_free);
    for (GList* window = windows.get(); window != nullptr; window = window->next) {
        const char* const name = gtk_window_get_title(GTK_WINDOW(window->data));
        if (name != nullptr && name == title) {
            found = GTK_WINDOW(window->data);
        }
    }
    return found;
}

GtkWindow* CertificateTest::AwaitDialog(const std::string& title) {
    // The X server may still have an older one of that title.
    const bool hasKeyboard = RunMainLoopUntil([&] {
        GtkWindow* const dialog = FindDialog(title);
        const auto window = m_screen.FindByTitle(title);
        if (dialog == nullptr || !window || !m_screen.IsMapped(*window)) {
            return false;
        }
        m_screen.Focus(*window);
        return gtk_window_has_toplevel_focus(dialog) != FALSE;
    });
    EXPECT_TRUE(hasKeyboard) << title;
    return hasKeyboard ? FindDialog(title) : nullptr;
}

void CertificateTest::UseCertificate() {
    ASSERT_NE(AwaitDialog(kCertificateTitle), nullptr);
    m_screen.Press({GDK_KEY_Return});
}

void CertificateTest::GivePin(const std::string& pin) {
    ASSERT_NE(AwaitDialog(kPinTitle), nullptr);
    m_screen.Type(pin);
    m_screen.Press({GDK_KEY_Return});
}

bool CertificateTest::WaitUntilAlone() {
    return RunMainLoopUntil([] {
        return FindDialog(kCertificateTitle) == nullptr && FindDialog(kPinTitle) == nullptr;
    });
}

std::vector<std::string> CertificateTest::TextsOf(GtkWindow* dialog) {
    std::vector<std::string> texts;
    CollectTexts(gtk_dialog_get_content_area(GTK_DIALOG(dialog)), &texts);
    return texts;
}

std::vector<std::string> CertificateTest::Clients(const HttpServer& site) {
    std::vector<std::string> clients;
    for (const HttpRequest& request : site.Requests()) {
        clients.push_back(request.client);
    }
    return clients;
}
