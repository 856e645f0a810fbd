#include "PrivateInstallation.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>

#include "Check.h"
#include "InstallRoot.h"
#include "PrivateWorld.h"

void EnterPrivateInstallation() {
    PrivateWorld world;
    world.home = false;
    world.dev = false;
    TK_CHECK(EnterPrivateWorld(world));
}

std::string WriteInstalledFile(const std::string& relativePath, std::string_view bytes) {
    std::string path = std::string(kInstallRoot) + "/" + relativePath;
    int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0) {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    }
    TK_CHECK(file >= 0);
    TK_CHECK(write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
    close(file);
    return path;
}
