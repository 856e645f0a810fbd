#include "FaultyWorld.h"

#include <filesystem>

namespace {

const std::string kPrograms = ENGINE_PROGRAMS;
constexpr const char* kSpoilt[] = {"WebKitNetworkProcess", "WebKitWebProcess"};

}  // namespace

FaultyWorld& FaultyWorld::Get() {
    static FaultyWorld world;
    return world;
}

FaultyWorld::FaultyWorld() {
    WriteFile(m_folder.Path("read-only/") + kCookieStore, "");
    for (const char* const name : kSpoilt) {
        std::filesystem::copy_file(kPrograms + "/" + name, Program(name));
    }
}

std::string FaultyWorld::Program(const std::string& name) const {
    return m_folder.Path(name);
}

PrivateWorld FaultyWorld::Describe() const {
    PrivateWorld world;
    world.smallDisk = kSmallDisk;
    world.readOnlySource = m_folder.Path("read-only");
    world.readOnlyFolder = kReadOnlyFolder;
    for (const char* const name : kSpoilt) {
        world.coveredFiles[kPrograms + "/" + name] = Program(name);
    }
    return world;
}
