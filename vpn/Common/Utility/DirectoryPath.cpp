#include "DirectoryPath.h"

#include <sys/stat.h>

#include <cstring>
#include <new>
#include <vector>

#include "BoundedString.h"

namespace {

constexpr mode_t kDirectoryMode = 0777;

bool IsDirectory(const char* path) {
    struct stat status = {};
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

bool EnsureDirectory(const char* path) {
    struct stat status = {};
    if (stat(path, &status) == 0) {
        return S_ISDIR(status.st_mode);
    }
    // Another process may create the same directory between the two calls. That counts as success.
    return mkdir(path, kDirectoryMode) == 0 || IsDirectory(path);
}

}  // namespace

bool MakeDirectoryPath(const char* absolutePath) try {
    if (absolutePath == nullptr || absolutePath[0] != '/') {
        return false;
    }
    const std::size_t capacity = std::strlen(absolutePath) + 1;
    std::vector<char> components(absolutePath + 1, absolutePath + capacity);
    std::vector<char> path(capacity);
    char* position = nullptr;
    for (const char* component = strtok_r(components.data(), "/", &position); component != nullptr;
         component = strtok_r(nullptr, "/", &position)) {
        BoundedAppend(path.data(), "/", capacity);
        BoundedAppend(path.data(), component, capacity);
        if (!EnsureDirectory(path.data())) {
            return false;
        }
    }
    return true;
} catch (const std::bad_alloc&) {
    return false;
}
