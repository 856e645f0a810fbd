#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
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
    // A program of its own, since only one that has just begun can be moved into another world.
    FILE* const program = popen(TK_IMPOSSIBLE_WORLD " 2>&1", "r");
    ASSERT_NE(program, nullptr);
    std::string text;
    for (int character = std::fgetc(program); character != EOF; character = std::fgetc(program)) {
        text += static_cast<char>(character);
    }
    EXPECT_EQ(WEXITSTATUS(pclose(program)), EXIT_FAILURE);
    EXPECT_EQ(text,
              "Cannot make a private world for this test program: mount "
              "/etc/ssl/certs/ca-certificates.crt: No such file or directory\n");
}
