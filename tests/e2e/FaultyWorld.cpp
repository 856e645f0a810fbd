#include "FaultyWorld.h"

#include <unistd.h>

#include <filesystem>

namespace {

namespace fs = std::filesystem;

constexpr gid_t kKeepGroup = static_cast<gid_t>(-1);

const std::string kPrograms = ENGINE_PROGRAMS;
const std::string kSpoilt[] = {kPrograms + "/WebKitNetworkProcess", kPrograms + "/WebKitWebProcess",
                               "/usr/bin/bwrap", "/usr/bin/xdg-dbus-proxy"};

std::string NameOf(const std::string& path) {
    return fs::path(path).filename();
}

}  // namespace

FaultyWorld& FaultyWorld::Get() {
    static FaultyWorld world;
    return world;
}

FaultyWorld::FaultyWorld() {
    for (const char* const name : {"read-only", "foreign"}) {
        WriteFile(m_folder.Path(name) + "/" + kCookieStore, "");
        fs::permissions(m_folder.Path(name), fs::perms(0755));
    }
    for (const std::string& path : kSpoilt) {
        fs::copy_file(path, Program(NameOf(path)));
    }
}

std::string FaultyWorld::Program(const std::string& name) const {
    return m_folder.Path(name);
}

std::string FaultyWorld::ForeignStoreFolder() const {
    return m_folder.Path("foreign");
}

PrivateWorld FaultyWorld::Describe() const {
    PrivateWorld world;
    world.smallDisk = kSmallDisk;
    world.readOnlySource = m_folder.Path("read-only");
    world.readOnlyFolder = kReadOnlyFolder;
    const std::string foreignStore = ForeignStoreFolder() + "/" + kCookieStore;
    if (chown(foreignStore.c_str(), kNobody, kKeepGroup) != 0) {
        // What an ordinary user cannot give away, root has plenty of.
        world.coveredFiles[foreignStore] = "/etc/group";
    }
    for (const std::string& path : kSpoilt) {
        world.coveredFiles[path] = Program(NameOf(path));
    }
    return world;
}
