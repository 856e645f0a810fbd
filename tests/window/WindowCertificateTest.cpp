// What happens when a site asks for the person's certificate.

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "CertificateTest.h"
#include "CookieQueries.h"
#include "NewestQuestion.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Version = TlsIdentity::Version;

class WindowCertificateTest : public CertificateTest {
protected:
    /// Keeps a picture of the screen once the dialog of this title has been drawn, to its end.
    void KeepDrawn(const std::string& name, const std::string& title) const {
        Screenshot before;
        EXPECT_TRUE(RunMainLoopUntil([&] {
            const Screenshot last =
                std::exchange(before, m_screen.Capture(m_screen.FindByTitle(title).value_or(0)));
            return last == before && !before.pixels.empty() &&
                   !(before == Screenshot::Plain(before.width, before.height, before.At(0, 0)));
        }));
        Keep(name, ScreenPicture());
    }

    /// Runs the main loop until the dialog for the PIN says this.
    static bool AwaitPinText(const std::string& text) {
        return RunMainLoopUntil([&] {
            GtkWindow* const dialog = FindDialog(kPinTitle);
            const std::vector<std::string> texts =
                dialog != nullptr ? TextsOf(dialog) : std::vector<std::string>{};
            return std::find(texts.begin(), texts.end(), text) != texts.end();
        });
    }
};

/// A site that asks for a certificate in one way or another.
struct SiteCase {
    const char* name;
    Version version;
    bool needsClient;
};

void PrintTo(const SiteCase& site, std::ostream* stream) {
    *stream << site.name;
}

std::string NameOfSite(const testing::TestParamInfo<SiteCase>& info) {
    return info.param.name;
}

class WindowCertificateSiteTest : public CertificateTest,
                                  public testing::WithParamInterface<SiteCase> {
protected:
    WindowCertificateSiteTest() : m_other(Asking(GetParam().version, GetParam().needsClient)) {
        m_other.ServePage("/page", "page");
    }

    /// How a visit without a certificate ends there.
    static std::string Refusal() { return GetParam().needsClient ? "error_unknown" : "success"; }

    HttpServer m_other;
};

/// Which of the two dialogs stands when something else happens.
enum class Asked { ForCertificate, ForPin };

std::string NameOfDialog(const testing::TestParamInfo<Asked>& info) {
    return info.param == Asked::ForCertificate ? "ForCertificate" : "ForPin";
}

class WindowCertificateDialogTest : public CertificateTest,
                                    public testing::WithParamInterface<Asked> {
protected:
    /// Visits the site up to this dialog, within so many seconds if that is not 0.
    void ShowDialog(std::uint32_t timeout = 0) {
        m_tokens.Insert({"alice"});
        Send(Operation::Browse(m_site.Url("/page"), m_site.Url("/page")).Shown().Timeout(timeout));
        ASSERT_TRUE(WaitUntilShown());
        if (GetParam() == Asked::ForPin) {
            UseCertificate();
            ASSERT_NE(AwaitDialog(kPinTitle), nullptr);
        } else {
            ASSERT_NE(AwaitDialog(kCertificateTitle), nullptr);
        }
    }
};

constexpr SiteCase kSites[] = {
    {"ThatNeedsOne", Version::latest, true},
    {"ThatNeedsOneWithTheOlderVersion", Version::tls1_2, true},
    {"ThatOnlyAsks", Version::latest, false},
    {"ThatOnlyAsksWithTheOlderVersion", Version::tls1_2, false},
};

}  // namespace

TEST_P(WindowCertificateSiteTest, GetsTheChosenOne) {
    m_tokens.Insert({"alice"});
    Visit(m_other);
    UseCertificate();
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(Clients(m_other), ElementsAre("Alice"));
    EXPECT_TRUE(WaitUntilAlone());
}

TEST_P(WindowCertificateSiteTest, GetsNoneAfterCancel) {
    m_tokens.Insert({"alice"});
    Visit(m_other);
    ASSERT_NE(AwaitDialog(kCertificateTitle), nullptr);
    m_screen.Press({GDK_KEY_Escape});
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre(Refusal()));
    EXPECT_TRUE(WaitUntilAlone());
}

TEST_P(WindowCertificateSiteTest, GetsTheChosenOneIfTheEngineGivesItsQuestionUp) {
    m_tokens.Insert({"alice"});
    NewestQuestion question;
    Visit(m_other);
    ASSERT_NE(AwaitDialog(kCertificateTitle), nullptr);
    question.Cancel();
    EXPECT_EQ(FindDialog(kCertificateTitle), nullptr);
    UseCertificate();
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(Clients(m_other), ElementsAre("Alice"));
}

TEST_P(WindowCertificateSiteTest, GetsNoneWithoutThePin) {
    m_tokens.Insert({"alice"});
    Visit(m_other);
    UseCertificate();
    ASSERT_NE(AwaitDialog(kPinTitle), nullptr);
    m_screen.Press({GDK_KEY_Escape});
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre(Refusal()));
    EXPECT_TRUE(WaitUntilAlone());
}

TEST_P(WindowCertificateSiteTest, GetsNoneWhereThereAreNoTokens) {
    Visit(m_other);
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre(Refusal()));
}

TEST_P(WindowCertificateSiteTest, GetsNoneWhereNobodySeesTheWindow) {
    m_tokens.Insert({"alice"});
    Send(Operation::Browse(m_other.Url("/page"), m_other.Url("/page")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre(Refusal()));
    EXPECT_EQ(FindDialog(kCertificateTitle), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Site, WindowCertificateSiteTest, testing::ValuesIn(kSites), NameOfSite);

// What is offered.

TEST_F(WindowCertificateTest, IsAskedForOnceTheCardIsThere) {
    Visit(m_site);
    ASSERT_TRUE(WaitForResults(1));
    m_tokens.Insert({"alice"});
    Visit(m_site);
    UseCertificate();
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("error_unknown", "success"));
}

TEST_F(WindowCertificateTest, IsConfirmedEvenIfThereIsOnlyOne) {
    m_tokens.Insert({"alice"});
    Visit(m_site);
    GtkWindow* const dialog = AwaitDialog(kCertificateTitle);
    ASSERT_NE(dialog, nullptr);
    KeepDrawn("question", kCertificateTitle);
    EXPECT_THAT(TextsOf(dialog),
                ElementsAre("The site 127.0.0.1:" + std::to_string(m_site.Port()) +
                                " asks for your certificate, which tells the site who you are.",
                            "Alice", "Issued by Test authority of people",
                            "Valid from 2020-01-01 to 2120-01-01", "On alice", "Cancel",
                            "Use This Certificate"));
    EXPECT_THAT(m_site.Requests(), IsEmpty());
}

TEST_F(WindowCertificateTest, IsChosenAmongThoseOfAllTokens) {
    m_tokens.Insert({"alice", "bob"});
    Visit(m_site);
    GtkWindow* const question = AwaitDialog(kCertificateTitle);
    ASSERT_NE(question, nullptr);
    // SoftHSM orders its cards by chance.
    const std::vector<std::string> texts = TextsOf(question);
    ASSERT_THAT(texts, testing::SizeIs(11));
    ASSERT_THAT(texts[8], testing::AnyOf("On alice", "On bob"));
    const bool isBobLast = texts[8] == "On bob";
    m_screen.Press({GDK_KEY_End});
    m_screen.Press({GDK_KEY_Return});
    GtkWindow* const dialog = AwaitDialog(kPinTitle);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(TextsOf(dialog).front(),
              isBobLast ? "Enter the PIN of bob." : "Enter the PIN of alice.");
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(Clients(m_site), ElementsAre(isBobLast ? "Bob" : "Alice"));
}

TEST_F(WindowCertificateTest, IsChosenWithAClickOnTheButton) {
    m_tokens.Insert({"alice"});
    Visit(m_site);
    GtkWindow* const dialog = AwaitDialog(kCertificateTitle);
    ASSERT_NE(dialog, nullptr);
    GtkWidget* const button =
        gtk_dialog_get_widget_for_response(GTK_DIALOG(dialog), GTK_RESPONSE_ACCEPT);
    GtkAllocation place;
    gtk_widget_get_allocation(button, &place);
    m_screen.Click(m_screen.FindByTitle(kCertificateTitle).value(), place.x + place.width / 2,
                   place.y + place.height / 2);
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Clients(m_site), ElementsAre("Alice"));
}

TEST_F(WindowCertificateTest, IsNotOfferedIfItCannotServe) {
    // An expired one, a machine's, one without a key, and an authority's.
    m_tokens.Insert({"useless"});
    Visit(m_site);
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
}

TEST_F(WindowCertificateTest, IsNotOfferedIfItsTokenIsLocked) {
    m_tokens.Insert({"alice"});
    m_tokens.SetWrongPins("alice", 3);
    Visit(m_site);
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
}

TEST_F(WindowCertificateTest, IsChosenAmongAThousand) {
    m_tokens.Insert({"thousand"});
    Visit(m_site);
    ASSERT_NE(AwaitDialog(kCertificateTitle), nullptr);
    m_screen.Press({GDK_KEY_End});
    m_screen.Press({GDK_KEY_Return});
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(Clients(m_site), ElementsAre("Alice"));
}

// The PIN.

TEST_F(WindowCertificateTest, CountsWrongPinsOutLoud) {
    m_tokens.Insert({"alice"});
    Visit(m_site);
    UseCertificate();
    GtkWindow* dialog = AwaitDialog(kPinTitle);
    ASSERT_NE(dialog, nullptr);
    EXPECT_THAT(TextsOf(dialog), ElementsAre("Enter the PIN of alice.", "Cancel", "Continue"));
    GivePin("1111");
    ASSERT_TRUE(AwaitPinText("The PIN was wrong. Wrong PINs so far: 1."));
    EXPECT_THAT(TextsOf(FindDialog(kPinTitle)),
                ElementsAre("Enter the PIN of alice.", "The PIN was wrong. Wrong PINs so far: 1.",
                            "Only a few tries are left.", "Cancel", "Continue"));
    GivePin("2222");
    ASSERT_TRUE(AwaitPinText("The PIN was wrong. Wrong PINs so far: 2."));
    EXPECT_THAT(TextsOf(FindDialog(kPinTitle)),
                ElementsAre("Enter the PIN of alice.", "The PIN was wrong. Wrong PINs so far: 2.",
                            "Only one try is left. After another wrong PIN the card is locked.",
                            "Cancel", "Continue"));
    ASSERT_NE(AwaitDialog(kPinTitle), nullptr);
    KeepDrawn("pin", kPinTitle);
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowCertificateTest, EndsWhenThePinLocksTheToken) {
    m_tokens.Insert({"alice"});
    m_tokens.SetWrongPins("alice", 2);
    Visit(m_site);
    UseCertificate();
    GivePin("1111");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
    EXPECT_TRUE(WaitUntilAlone());
}

TEST_F(WindowCertificateTest, TriesNoEmptyPin) {
    m_tokens.Insert({"alice"});
    m_tokens.SetWrongPins("alice", 2);
    Visit(m_site);
    UseCertificate();
    GtkWindow* const dialog = AwaitDialog(kPinTitle);
    ASSERT_NE(dialog, nullptr);
    GtkWidget* const button =
        gtk_dialog_get_widget_for_response(GTK_DIALOG(dialog), GTK_RESPONSE_ACCEPT);
    EXPECT_FALSE(gtk_widget_is_sensitive(button));
    m_screen.Press({GDK_KEY_Return});
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
}

// How long the choice holds.

TEST_F(WindowCertificateTest, IsChosenOnceForASite) {
    m_tokens.Insert({"alice"});
    Visit(m_site);
    UseCertificate();
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(1));
    Visit(m_site);
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("success", "success"));
    EXPECT_THAT(Clients(m_site), ElementsAre("Alice", "Alice"));
    // No load was lost over a connection that cannot ask.
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowCertificateTest, IsRefusedOnceForASite) {
    m_tokens.Insert({"alice"});
    Visit(m_site);
    ASSERT_NE(AwaitDialog(kCertificateTitle), nullptr);
    m_screen.Press({GDK_KEY_Escape});
    ASSERT_TRUE(WaitForResults(1));
    Visit(m_site);
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("error_unknown", "error_unknown"));
}

TEST_F(WindowCertificateTest, IsChosenAnewForAnotherSite) {
    HttpServer other(Asking(Version::latest, true));
    other.ServePage("/page", "page");
    m_tokens.Insert({"alice"});
    Visit(m_site);
    UseCertificate();
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(1));
    Visit(other);
    UseCertificate();
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Clients(other), ElementsAre("Alice"));
}

TEST_F(WindowCertificateTest, IsChosenAnewAfterAReset) {
    m_tokens.Insert({"alice"});
    Visit(m_site);
    UseCertificate();
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(1));
    Reset();
    Visit(m_site);
    UseCertificate();
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(3));
    EXPECT_THAT(Results(), ElementsAre("success", "ready", "success"));
}

// What comes in between.

TEST_P(WindowCertificateDialogTest, GoesWithAReset) {
    ShowDialog();
    Reset();
    EXPECT_THAT(Results(), ElementsAre("ready"));
    EXPECT_TRUE(WaitUntilAlone());
    EXPECT_THAT(m_site.Requests(), IsEmpty());
    m_server.ServePage("/other", "other");
    Send(Operation::Browse(m_server.Url("/other"), m_server.Url("/other")));
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("ready", "success"));
}

TEST_P(WindowCertificateDialogTest, GoesWithTheWindow) {
    ShowDialog();
    CloseWindow();
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("cancel"));
    EXPECT_TRUE(WaitUntilAlone());
    EXPECT_TRUE(WaitUntilHidden());
    // The page is not loaded again without a certificate.
    EXPECT_TRUE(RunMainLoopUntil([&] { return webkit_web_view_is_loading(View()) == FALSE; }));
    ASSERT_TRUE(WaitForCookieQueries(View()));
    EXPECT_FALSE(webkit_web_view_is_loading(View()));
    EXPECT_THAT(m_site.Requests(), IsEmpty());
}

TEST_P(WindowCertificateDialogTest, GoesWithTheTimeout) {
    ShowDialog(6);
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_timeout"));
    EXPECT_TRUE(WaitUntilAlone());
    EXPECT_THAT(m_site.Requests(), IsEmpty());
}

TEST_P(WindowCertificateDialogTest, GoesWithTheNextOperation) {
    ShowDialog();
    m_server.ServePage("/other", "other");
    Send(Operation::Browse(m_server.Url("/other"), m_server.Url("/other")).Shown());
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_TRUE(WaitUntilAlone());
    EXPECT_THAT(m_site.Requests(), IsEmpty());
}

TEST_P(WindowCertificateDialogTest, LoadsNoPageAgainThatGoesWithTheNextOperation) {
    ShowDialog();
    const std::string started = "STARTED " + m_site.Url("/page");
    const auto before = std::count(m_loads.All().begin(), m_loads.All().end(), started);
    m_server.Serve("/other", {200, "other", "text/html", {{"Set-Cookie", "sid=1"}}});
    // Its own load waits until the store has been asked.
    Send(Operation::BrowseForCookie(m_server.Url("/other"), m_server.Url("/other"), "sid").Shown());
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie 1"));
    EXPECT_EQ(std::count(m_loads.All().begin(), m_loads.All().end(), started), before);
}

TEST_P(WindowCertificateDialogTest, SurvivesThatTheTokenIsPulledOut) {
    ShowDialog();
    m_tokens.Insert({});
    if (GetParam() == Asked::ForCertificate) {
        m_screen.Press({GDK_KEY_Return});
    } else {
        GivePin("1234");
    }
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
    EXPECT_TRUE(WaitUntilAlone());
}

INSTANTIATE_TEST_SUITE_P(Asking, WindowCertificateDialogTest,
                         testing::Values(Asked::ForCertificate, Asked::ForPin), NameOfDialog);

TEST_F(WindowCertificateTest, WaitsForASlowReaderWithoutStandingStill) {
    m_tokens.Insert({"alice"});
    std::optional<TestTokens::Block> reading(std::in_place, m_tokens, "reading");
    Visit(m_site);
    ASSERT_TRUE(RunMainLoopUntil([&] { return reading->IsReached(); }));
    EXPECT_EQ(FindDialog(kCertificateTitle), nullptr);
    reading.reset();
    UseCertificate();
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowCertificateTest, IsNotAskedForWhenASlowReaderIsTooLate) {
    m_tokens.Insert({"alice"});
    std::optional<TestTokens::Block> reading(std::in_place, m_tokens, "reading");
    Visit(m_site);
    ASSERT_TRUE(RunMainLoopUntil([&] { return reading->IsReached(); }));
    CloseWindow();
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("cancel"));
    reading.reset();
    // Another reading of the tokens comes behind that one.
    HttpServer other(Asking(Version::latest, false));
    other.ServePage("/page", "page");
    Visit(other);
    ASSERT_NE(AwaitDialog(kCertificateTitle), nullptr);
    EXPECT_THAT(TextsOf(FindDialog(kCertificateTitle)).front(),
                testing::HasSubstr(std::to_string(other.Port())));
}

TEST_F(WindowCertificateTest, LetsATimeoutEndASlowSignature) {
    m_tokens.Insert({"alice"});
    TestTokens::Block signing(m_tokens, "signing");
    Send(Operation::Browse(m_site.Url("/page"), m_site.Url("/page")).Shown().Timeout(6));
    UseCertificate();
    GivePin("1234");
    EXPECT_TRUE(RunMainLoopUntil([&] { return signing.IsReached(); }));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_timeout"));
}

TEST_F(WindowCertificateTest, IsAskedForInTheMiddleOfAConnectionAsWell) {
    TlsIdentity identity = TestCertificate("good");
    identity.version = Version::tls1_2;
    HttpServer site(identity);
    site.Handle("/page", [](HttpExchange& exchange) {
        const bool isDone = exchange.AskForClient();
        exchange.Respond({isDone && exchange.Request().client == "Alice" ? 200U : 403U, "page"});
    });
    m_tokens.Insert({"alice"});
    Visit(site);
    // GLib's TLS module of that time takes no second handshake any more.
    if (glib_check_version(2, 90, 0) == nullptr) {
        ASSERT_TRUE(WaitForResults(1));
        EXPECT_THAT(Results(), ElementsAre("error_unknown"));
        EXPECT_THAT(LogLines(), ElementsAre(HasSubstr("Rehandshake was requested by the peer")));
        return;
    }
    UseCertificate();
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(Clients(site), ElementsAre(""));
}

TEST_F(WindowCertificateTest, IsToldToTheLogWithoutItsName) {
    m_tokens.Insert({"alice"});
    Visit(m_site);
    UseCertificate();
    GivePin("1234");
    ASSERT_TRUE(WaitForResults(1));
    Send(Operation::Browse(m_site.Url("/page"), m_site.Url("/page")));
    ASSERT_TRUE(WaitForResults(2));
    const std::string site = "127.0.0.1:" + std::to_string(m_site.Port());
    EXPECT_THAT(m_log.JournalLines(),
                ElementsAre("I Operation browse begins: https://127.0.0.1, shown",
                            "I A site asked for a certificate: " + site + ", given",
                            "I Operation browse ends: success after N ms",
                            "I Operation browse begins: https://127.0.0.1, not shown",
                            "I A site asked for a certificate: " + site + ", not given",
                            "I Operation browse ends: error_unknown after N ms"));
}
