// The Debian package from its installation to its removal, in a system's root of the test's own.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include "Catalogs.h"
#include "ProgramRun.h"
#include "SystemLog.h"
#include "TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

constexpr char kProgram[] = "/opt/velto/tunnelkeep/bin/tkwebhelper";
constexpr char kDatabase[] = "var/lib/dpkg";

std::string PathOfThePackage() {
    for (const fs::directory_entry& entry : fs::directory_iterator(TK_PACKAGES)) {
        if (entry.path().filename().string().rfind("tunnelkeep-webhelper_", 0) == 0) {
            return entry.path();
        }
    }
    return "no package in " TK_PACKAGES;
}

/// All paths below a folder.
std::set<std::string> EntriesBelow(const std::string& folder) {
    std::set<std::string> entries;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        entries.insert(fs::relative(entry.path(), folder));
    }
    return entries;
}

class InstalledPackage : public testing::Test {
protected:
    // What this machine has installed counts as installed there, so that dpkg finds out whether the
    // package's dependencies are met. The program looks for its files below /opt.
    InstalledPackage() {
        fs::create_directories(m_root.Path(kDatabase) + "/info");
        fs::create_directories(m_root.Path(kDatabase) + "/updates");
        fs::copy("/var/lib/dpkg/status", m_root.Path(kDatabase));
        fs::create_directory_symlink(m_root.Path("opt/velto"), "/opt/velto");
    }
    ~InstalledPackage() override { fs::remove("/opt/velto"); }

    /// Runs a program to its end; gives what it printed when that was not a success.
    [[nodiscard]] testing::AssertionResult Succeeds(
        const std::vector<std::string>& arguments,
        std::map<std::string, std::optional<std::string>> environment = {}) {
        LaunchCommand command;
        command.arguments = arguments;
        command.environment = std::move(environment);
        const ProgramRun run = RunProgram(command);
        if (run.end == "exited with status 0") {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << run.end << "\n" << run.output << run.errors;
    }

    /// Whether dpkg does this in the root. It believes to be root, whoever runs the test, and that
    /// it changes owners: the private world of an ordinary user knows no other.
    [[nodiscard]] testing::AssertionResult Dpkg(const std::string& action,
                                                const std::string& package) {
        return Succeeds(
            {"/usr/bin/fakeroot", "dpkg", "--root=" + m_root.Path(), "--force-script-chrootless",
             "--log=" + m_output.Path("log"), action, package},
            {{"PATH", "/usr/sbin:/usr/bin:/sbin:/bin"}, {"FAKEROOTDONTTRYCHOWN", "1"}});
    }

    /// Everything in the root but dpkg's own database.
    [[nodiscard]] std::set<std::string> Entries() const {
        std::set<std::string> entries = EntriesBelow(m_root.Path());
        for (auto entry = entries.begin(); entry != entries.end();) {
            entry = entry->rfind("var", 0) == 0 ? entries.erase(entry) : std::next(entry);
        }
        return entries;
    }

    SystemLog m_log;

private:
    TemporaryFolder m_root;
    TemporaryFolder m_output;
};

}  // namespace

TEST_F(InstalledPackage, SignsInAndLeavesTwoFilesInTheHome) {
    ASSERT_TRUE(Dpkg("--install", PathOfThePackage()));
    EXPECT_THAT(Entries(), testing::Contains("opt/velto/tunnelkeep/bin/tkwebhelper"));

    UseTestLocales();
    EXPECT_TRUE(Succeeds({TKAGENT_PATH, "demo", "--unattended", "--helper", kProgram},
                         {{"LC_ALL", "pt_BR.UTF-8"}}));
    EXPECT_TRUE(m_log.WaitFor("The character set is utf-8."));

    EXPECT_TRUE(Dpkg("--purge", "tunnelkeep-webhelper"));
    EXPECT_THAT(Entries(), testing::IsEmpty());
    // Those of which the manual page says that they stay.
    EXPECT_THAT(
        EntriesBelow(std::getenv("HOME")),
        testing::ElementsAre(".local", ".local/share", ".local/share/Velto Tunnelkeep VPN Client",
                             ".local/share/Velto Tunnelkeep VPN Client/hsts-storage.sqlite",
                             ".velto", ".velto/tkwebhelper.cookies.sqlite"));
}
