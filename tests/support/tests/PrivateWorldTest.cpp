#include "PrivateWorld.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

std::string Home() {
    return getpwuid(geteuid())->pw_dir;
}

bool CanWrite(const fs::path& path) {
    std::ofstream file(path);
    file << "x" << std::flush;
    return file.good();
}

// What a file of process 1's namespace would be, seen from here.
bool StandsOutside(const fs::path& path) {
    return fs::exists("/proc/1/root" / path.relative_path());
}

PrivateWorld WithAuthoritiesOnly(const std::string& certificates) {
    PrivateWorld world;
    world.home = world.opt = world.dev = false;
    world.trustedCertificates = certificates;
    return world;
}

bool ReachesOutside() {
    return access("/proc/1/root/", X_OK) == 0;
}

}  // namespace

TEST(PrivateWorldTest, KeepsTheUsersId) {
    struct stat status {};
    ASSERT_EQ(stat("/proc/self", &status), 0);
    EXPECT_EQ(geteuid(), status.st_uid);
    EXPECT_NE(getpwuid(geteuid()), nullptr);
}

TEST(PrivateWorldTest, HomeIsAnEmptyWritableFolder) {
    EXPECT_EQ(getenv("HOME"), Home());
    EXPECT_TRUE(fs::is_empty(Home()));
    EXPECT_TRUE(CanWrite(fs::path(Home()) / "file"));
    if (ReachesOutside()) {
        EXPECT_FALSE(StandsOutside(fs::path(Home()) / "file"));
    }
    fs::remove(fs::path(Home()) / "file");
}

TEST(PrivateWorldTest, OptHoldsNoInstallationAndIsWritable) {
    EXPECT_FALSE(fs::exists("/opt/velto"));
    fs::create_directories("/opt/velto/tunnelkeep");
    EXPECT_TRUE(CanWrite("/opt/velto/tunnelkeep/private-world-test"));
    if (ReachesOutside()) {
        EXPECT_FALSE(StandsOutside("/opt/velto/tunnelkeep/private-world-test"));
    }
    fs::remove_all("/opt/velto");
}

TEST(PrivateWorldTest, DevicesStillWork) {
    EXPECT_FALSE(fs::exists("/dev/log"));
    EXPECT_TRUE(CanWrite("/dev/null"));
    EXPECT_TRUE(CanWrite("/dev/shm/private-world-test-" + std::to_string(getpid())));
    fs::remove("/dev/shm/private-world-test-" + std::to_string(getpid()));
    std::ifstream random("/dev/urandom");
    EXPECT_NE(random.get(), std::ifstream::traits_type::eof());
    EXPECT_TRUE(fs::is_symlink("/dev/fd"));
}

TEST(PrivateWorldTest, FilePermissionsHoldForAnOrdinaryUser) {
    if (geteuid() == 0) {
        // Root is above them everywhere.
        EXPECT_EQ(access("/etc/shadow", R_OK), 0);
        return;
    }
    const fs::path folder = fs::path(Home()) / "read-only";
    fs::create_directory(folder);
    fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_FALSE(CanWrite(folder / "file"));
    fs::remove(folder);
}

TEST(PrivateWorldTest, ChildrenSeeTheSameHome) {
    EXPECT_EQ(system(("test -d " + Home() + " && test \"$HOME\" = " + Home()).c_str()), 0);
}

TEST(PrivateWorldTest, SaysWhyItCannotBeMade) {
    testing::internal::CaptureStderr();
    const pid_t child = fork();
    if (child == 0) {
        _exit(EnterPrivateWorld(WithAuthoritiesOnly("/no/such/file.pem")) ? 0 : 7);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 7);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Cannot make a private world for this test program: mount "
              "/etc/ssl/certs/ca-certificates.crt: No such file or directory\n");
}

TEST(PrivateWorldTest, PutsOtherCertificateAuthoritiesInPlace) {
    const fs::path bundle = fs::path(Home()) / "authorities.pem";
    std::ofstream(bundle) << "mine\n";
    const pid_t child = fork();
    if (child == 0) {
        const bool entered = EnterPrivateWorld(WithAuthoritiesOnly(bundle));
        std::string line;
        std::getline(std::ifstream("/etc/ssl/certs/ca-certificates.crt"), line);
        _exit(entered && line == "mine" ? 0 : 7);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    fs::remove(bundle);
}
