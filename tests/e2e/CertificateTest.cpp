// A person signs in with a smart card.

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "AccessibilityBus.h"
#include "Certificates.h"
#include "HelperProgram.h"
#include "HelperTest.h"
#include "ProcessFamily.h"
#include "TestTokens.h"
#include "WaitUntil.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::uint32_t kReturn = 0xFF0D;
constexpr char kModule[] = "libtk_test_token_module";

TlsIdentity AskingIdentity() {
    TlsIdentity identity = TestCertificate("good");
    identity.clientAuthorities = PeoplesAuthority();
    identity.needsClient = true;
    return identity;
}

/// Whether the process has mapped a file whose name begins with this.
bool HasMapped(pid_t process, const std::string& beginning) {
    std::ifstream maps("/proc/" + std::to_string(process) + "/maps");
    for (std::string line; std::getline(maps, line);) {
        if (std::filesystem::path(line).filename().string().rfind(beginning, 0) == 0) {
            return true;
        }
    }
    return false;
}

class Certificate : public HelperTest {
protected:
    Certificate() {
        m_site.ServePage("/page", "page");
        m_tokens.Insert({"alice"});
    }

    /// Lets the window visit the site.
    void Visit() {
        Send(OperationText({{"operation", "browse"},
                            {"show", "true"},
                            {"url", m_site.Url("/page")},
                            {"final_url", m_site.Url("/page")}}));
    }

    /// Waits for the dialog and gives it the keyboard.
    void AwaitDialog(const std::string& title) {
        ASSERT_TRUE(m_screen.WaitUntil([&] {
            const auto dialog = m_screen.FindByTitle(title);
            return dialog && m_screen.IsMapped(*dialog);
        }));
        m_screen.Focus(m_screen.FindByTitle(title).value());
    }

    [[nodiscard]] std::set<pid_t> EngineProcesses(const std::string& program) const {
        return DescendantsRunning(m_helper.Pid(), program);
    }

    TestTokens m_tokens;
    HttpServer m_site{AskingIdentity()};
};

/// The same on a desktop with a screen reader.
class CertificateAccessibility : public Certificate {
protected:
    AccessibilityBus m_bus;
};

}  // namespace

TEST_F(Certificate, SignsIn) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    Visit();
    AwaitDialog("Choose a Certificate");
    m_screen.Press({kReturn});
    AwaitDialog("Enter the PIN");
    m_screen.Type("1234");
    m_screen.Press({kReturn});
    EXPECT_EQ(NextResult(), "success");
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_THAT(LogLinesWithJournal(),
                ElementsAre("I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
                            "I IPC connection established",
                            "I Operation browse begins: https://127.0.0.1, shown",
                            "I A site asked for a certificate: 127.0.0.1:" +
                                std::to_string(m_site.Port()) + ", given",
                            "I Operation browse ends: success after N ms",
                            "I Successfully stopped io service thread"));
}

TEST_F(Certificate, TouchesNoTokenBeforeASiteAsks) {
    m_server.ServePage("/page", "page");
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    BrowseTo("/page");
    EXPECT_EQ(NextResult(), "success");
    EXPECT_FALSE(HasMapped(m_helper.Pid(), "libgnutls"));
    EXPECT_FALSE(HasMapped(m_helper.Pid(), "libp11-kit"));
    HttpServer secure(TestCertificate("good"));
    secure.ServePage("/page", "page");
    Send(OperationText({{"operation", "browse"},
                        {"url", secure.Url("/page")},
                        {"final_url", secure.Url("/page")}}));
    EXPECT_EQ(NextResult(), "success");
    EXPECT_FALSE(HasMapped(m_helper.Pid(), kModule));
    Visit();
    AwaitDialog("Choose a Certificate");
    EXPECT_TRUE(HasMapped(m_helper.Pid(), kModule));
}

TEST_F(Certificate, ItsKeyIsUsedOutsideOfTheWebProcess) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    Visit();
    AwaitDialog("Choose a Certificate");
    m_screen.Press({kReturn});
    AwaitDialog("Enter the PIN");
    const auto network = EngineProcesses("WebKitNetworkProcess");
    const auto pages = EngineProcesses("WebKitWebProcess");
    ASSERT_THAT(network, testing::SizeIs(1));
    ASSERT_THAT(pages, testing::Not(IsEmpty()));
    EXPECT_TRUE(HasMapped(*network.begin(), kModule));
    for (const pid_t page : pages) {
        EXPECT_FALSE(HasMapped(page, kModule));
    }
}

TEST_F(Certificate, TheProgramEndsAtOnceWhileATokenIsBeingRead) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    TestTokens::Block reading(m_tokens, "reading");
    Visit();
    ASSERT_TRUE(PollUntil([&] { return reading.IsReached(); }));
    Send(OperationText({{"operation", "terminate"}}));
    EXPECT_EQ(AwaitPromptEnd(), "exited with status 0");
}

TEST_F(Certificate, TheProgramEndsAtOnceWhileATokenSigns) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    TestTokens::Block signing(m_tokens, "signing");
    Visit();
    AwaitDialog("Choose a Certificate");
    m_screen.Press({kReturn});
    AwaitDialog("Enter the PIN");
    m_screen.Type("1234");
    m_screen.Press({kReturn});
    ASSERT_TRUE(PollUntil([&] { return signing.IsReached(); }));
    Send(OperationText({{"operation", "terminate"}}));
    EXPECT_EQ(AwaitPromptEnd(), "exited with status 0");
}

TEST_F(CertificateAccessibility, ReadsTheQuestion) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady(m_bus.ForProgram()));
    Visit();
    AwaitDialog("Choose a Certificate");
    const std::string tree = m_bus.PrintTree();
    EXPECT_THAT(tree, HasSubstr("dialog|Choose a Certificate|"));
    EXPECT_THAT(tree, HasSubstr("The site 127.0.0.1:" + std::to_string(m_site.Port()) +
                                " asks for your certificate"));
    EXPECT_THAT(tree, HasSubstr("list item|Alice, Issued by Test authority of people, "
                                "Valid from 2020-01-01 to 2120-01-01, On alice|"));
    EXPECT_THAT(tree, testing::ContainsRegex("(push )?button\\|Use This Certificate\\|"));
}

TEST_F(CertificateAccessibility, ReadsTheQuestionForThePinButNotThePin) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady(m_bus.ForProgram()));
    Visit();
    AwaitDialog("Choose a Certificate");
    m_screen.Press({kReturn});
    AwaitDialog("Enter the PIN");
    m_screen.Type("12");
    const std::string tree = m_bus.PrintTree();
    EXPECT_THAT(tree, HasSubstr("dialog|Enter the PIN|"));
    EXPECT_THAT(tree, HasSubstr("label|Enter the PIN of alice.|"));
    EXPECT_THAT(tree, HasSubstr("password text|"));
    EXPECT_THAT(tree, testing::Not(HasSubstr("|12")));
}
