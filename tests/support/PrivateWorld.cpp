#include "PrivateWorld.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <pwd.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <system_error>
#include <utility>
#include <vector>

#include "ProgramRestart.h"
#include "UniqueFd.h"

namespace {

namespace fs = std::filesystem;

constexpr char kHomeParent[] = "/home";
constexpr char kHome[] = "/home/tkwebhelper-test";
constexpr char kRuntime[] = "/home/tkwebhelper-test-runtime";
constexpr char kPasswordFile[] = "/etc/passwd";
constexpr char kLibraryCatalogs[] = "/usr/share/locale";
constexpr char kCertificateBundle[] = "/etc/ssl/certs/ca-certificates.crt";

void Check(bool done, const std::string& what) {
    if (!done) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

void WriteFile(const fs::path& path, const std::string& text) {
    std::ofstream file(path);
    file << text;
    file.close();
    Check(file.good(), "write " + path.string());
}

void Bind(const fs::path& source, const fs::path& target) {
    Check(mount(source.c_str(), target.c_str(), "none", MS_BIND | MS_REC, nullptr) == 0,
          "mount " + target.string());
}

// What a mount in another user's namespace forbids besides writing has to stay forbidden.
void BindReadOnly(const fs::path& source, const fs::path& folder) {
    fs::create_directories(folder);
    Bind(source, folder);
    struct statvfs disk {};
    Check(statvfs(folder.c_str(), &disk) == 0, "look at " + folder.string());
    unsigned long flags = MS_REMOUNT | MS_BIND | MS_RDONLY;
    const std::pair<unsigned long, unsigned long> kept[] = {
        {ST_NOSUID, MS_NOSUID}, {ST_NODEV, MS_NODEV}, {ST_NOEXEC, MS_NOEXEC}};
    for (const auto& [ofDisk, ofMount] : kept) {
        flags |= (disk.f_flag & ofDisk) != 0 ? ofMount : 0;
    }
    Check(mount(nullptr, folder.c_str(), nullptr, flags, nullptr) == 0,
          "make read-only " + folder.string());
}

// Only a user namespace lets an ordinary user mount; the ids in it stay what they are outside.
void UnshareWithUserNamespace() {
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    Check(unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "make a user and mount namespace");
    WriteFile("/proc/self/setgroups", "deny");
    WriteFile("/proc/self/uid_map", user + " " + user + " 1");
    WriteFile("/proc/self/gid_map", group + " " + group + " 1");
}

void UnshareMounts() {
    // Root in a container may lack the right to mount, too.
    if (geteuid() != 0 || unshare(CLONE_NEWNS) != 0) {
        UnshareWithUserNamespace();
    }
    Check(mount(nullptr, "/", "none", MS_REC | MS_PRIVATE, nullptr) == 0, "make mounts private");
}

// An ordinary user shall not be spared the permission checks of its own files. But tests look into
// processes that keep others out. A process that they start gets no capability.
void DropCapabilities() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct kept[_LINUX_CAPABILITY_U32S_3] = {};
    kept[0].permitted = kept[0].effective = 1U << CAP_SYS_PTRACE;
    Check(syscall(SYS_capset, &header, kept) == 0, "drop capabilities");
}

void KeepEntry(const fs::path& original, const fs::path& target) {
    if (fs::is_symlink(original)) {
        fs::copy_symlink(original, target);
        return;
    }
    if (fs::is_directory(original)) {
        fs::create_directory(target);
    } else {
        WriteFile(target, "");
    }
    Bind(original, target);
}

// Covers a folder with an empty one, in which its old entries except one stand as before.
void CoverFolder(const fs::path& folder, const std::string& leftOut) {
    const CUniqueFd original(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    Check(original.Get() >= 0, "open " + folder.string());
    std::vector<fs::path> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
    }
    Check(mount("tmpfs", folder.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, "mode=0755") == 0,
          "mount " + folder.string());
    const fs::path source = "/proc/self/fd/" + std::to_string(original.Get());
    for (const fs::path& name : names) {
        if (name != leftOut) {
            KeepEntry(source / name, folder / name);
        }
    }
}

bool IsEntryOf(const std::string& line, uid_t user) {
    std::istringstream fields(line);
    std::string field;
    for (int i = 0; i < 3; ++i) {
        std::getline(fields, field, ':');
    }
    return field == std::to_string(user);
}

std::string PasswordEntry(uid_t user) {
    const passwd* const entry = getpwuid(user);
    return (entry != nullptr ? entry->pw_name : "tester") + std::string(":x:") +
           std::to_string(user) + ":" + std::to_string(getegid()) + "::" + kHome + ":/bin/sh\n";
}

// The password file with another home for this user. Its own entry comes first and so counts.
std::string PasswordsWithHome(uid_t user) {
    std::string text = PasswordEntry(user);
    std::ifstream file(kPasswordFile);
    for (std::string line; std::getline(file, line);) {
        text += IsEntryOf(line, user) ? "" : line + "\n";
    }
    return text;
}

// The real home stays where it is, since the build may lie in it and it may not even exist; the
// password database names another one instead.
void MakeHome() {
    const std::string passwords = PasswordsWithHome(geteuid());
    CoverFolder(kHomeParent, fs::path(kHome).filename());
    fs::create_directory(kHome);
    fs::create_directory(kRuntime);
    fs::permissions(kRuntime, fs::perms::owner_all);
    const fs::path file = fs::path(kRuntime) / "passwd";
    WriteFile(file, passwords);
    Bind(file, kPasswordFile);
    fs::remove(file);
    const passwd* const entry = getpwuid(geteuid());
    if (entry == nullptr || entry->pw_dir != std::string(kHome)) {
        throw std::runtime_error("the password database does not read " +
                                 std::string(kPasswordFile) + " first");
    }
}

void SetHomeVariables() {
    setenv("HOME", kHome, 1);
    setenv("XDG_RUNTIME_DIR", kRuntime, 1);
    for (const char* const name :
         {"XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"}) {
        unsetenv(name);
    }
}

void Enter(const PrivateWorld& world) {
    umask(S_IWGRP | S_IWOTH);
    UnshareMounts();
    if (world.home) {
        MakeHome();
        SetHomeVariables();
    }
    if (world.opt) {
        CoverFolder("/opt", "velto");
    }
    if (world.dev) {
        CoverFolder("/dev", "log");
    }
    if (!world.trustedCertificates.empty()) {
        Bind(world.trustedCertificates, kCertificateBundle);
    }
    if (!world.libraryCatalogs.empty()) {
        Bind(world.libraryCatalogs, kLibraryCatalogs);
    }
    if (!world.smallDisk.empty()) {
        fs::create_directories(world.smallDisk);
        Check(mount("tmpfs", world.smallDisk.c_str(), "tmpfs", MS_NOSUID | MS_NODEV,
                    "size=64k,mode=0777") == 0,
              "mount " + world.smallDisk);
    }
    if (!world.readOnlyFolder.empty()) {
        BindReadOnly(world.readOnlySource, world.readOnlyFolder);
    }
    for (const auto& [covered, file] : world.coveredFiles) {
        Bind(file, covered);
    }
    if (geteuid() != 0) {
        DropCapabilities();
    }
}

bool TryToEnter(const PrivateWorld& world) {
    try {
        Enter(world);
        return true;
    } catch (const std::exception& error) {
        std::cerr << "Cannot make a private world for this test program: " << error.what() << "\n";
        return false;
    }
}

}  // namespace

bool EnterPrivateWorld(const PrivateWorld& world) {
    if (WasRestarted()) {
        return true;
    }
    // A process with threads gets no user namespace, and of a mount namespace only one thread
    // would see anything. Some libraries and sanitizers start threads before main.
    if (HasOtherThreads()) {
        RestartInChild([&] { return TryToEnter(world); });
    }
    return TryToEnter(world);
}
