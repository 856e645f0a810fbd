// What the environment may ask of the program, and what it may not.

#include <fcntl.h>

#include <filesystem>
#include <set>
#include <string>

#include "Certificates.h"
#include "HelperTest.h"
#include "HttpServer.h"
#include "ProcessFamily.h"
#include "TemporaryFolder.h"
#include "UniqueFd.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class EnvironmentOfTheProgram : public HelperTest {
protected:
    void Load(const HttpServer& server) {
        Send(OperationText(
            {{"operation", "browse"}, {"url", server.Url("/")}, {"final_url", server.Url("/")}}));
    }
};

}  // namespace

TEST_F(EnvironmentOfTheProgram, CannotHaveTlsKeysWritten) {
    const TemporaryFolder folder;
    HttpServer secure(TestCertificate("good"));
    secure.ServePage("/", "");
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady({{"SSLKEYLOGFILE", folder.Path("keys")}}));
    Load(secure);
    EXPECT_EQ(NextResult(), "success");
    EXPECT_FALSE(std::filesystem::exists(folder.Path("keys")));
}

// The engine's processes inherit the environment as the program has it when it starts them.
TEST_F(EnvironmentOfTheProgram, CannotHaveThePageInspected) {
    ASSERT_NO_FATAL_FAILURE(
        LaunchAndAwaitReady({{"WEBKIT_INSPECTOR_SERVER", "127.0.0.1:1999"},
                             {"WEBKIT_INSPECTOR_HTTP_SERVER", "127.0.0.1:1998"}}));
    ShowWaitingPage();
    const std::set<pid_t> processes = Descendants(m_helper.Pid());
    EXPECT_THAT(processes, Not(IsEmpty()));
    for (const pid_t process : processes) {
        EXPECT_THAT(ReadFile("/proc/" + std::to_string(process) + "/environ"),
                    Not(HasSubstr("WEBKIT_INSPECTOR")));
    }
}

TEST_F(EnvironmentOfTheProgram, MayAskForOldTls) {
    TlsIdentity identity = TestCertificate("good");
    identity.version = TlsIdentity::Version::tls1_1;
    HttpServer outdated(identity);
    outdated.ServePage("/", "");
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady({{"G_TLS_GNUTLS_PRIORITY", "NORMAL:%COMPAT"}}));
    Load(outdated);
    EXPECT_EQ(NextResult(), "success");
}

// On its error stream.
TEST_F(EnvironmentOfTheProgram, IsSparedWarningsOfDeprecatedFunctions) {
    const TemporaryFolder folder;
    const std::string errors = folder.Path("errors");
    const CUniqueFd stream(open(errors.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
    m_errorStream = stream.Get();
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    Reset();
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_THAT(ReadFile(errors), Not(HasSubstr("deprecated")));
}
