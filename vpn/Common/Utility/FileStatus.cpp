#include "FileStatus.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "AppLog.h"

namespace {

// Returns 0 or the error number.
int QueryStatus(const std::string& path, struct stat& status) {
    return stat(path.c_str(), &status) == 0 ? 0 : errno;
}

// These functions test a single bit, not the whole type field. A socket therefore counts as a
// regular file and as a directory, and a block device counts as a directory. The suite's other
// components rely on this.
bool HasRegularFileBit(const struct stat& status) {
    return (status.st_mode & S_IFREG) != 0;
}

bool HasDirectoryBit(const struct stat& status) {
    return (status.st_mode & S_IFDIR) != 0;
}

}  // namespace

bool fileExists(const std::string& path) {
    struct stat status = {};
    const int error = QueryStatus(path, status);
    if (error != 0 && error != ENOENT) {
        TK_LOG_FAILED_CALL_TEXT("_tstat", error, "File: %s\nError: %s", path.c_str(),
                                std::strerror(error));
    }
    return error == 0 && HasRegularFileBit(status);
}

bool directoryExists(const std::string& path) {
    struct stat status = {};
    const int error = QueryStatus(path, status);
    if (error != 0 && error != ENOENT) {
        TK_LOG_FAILED_CALL_TEXT("_tstat", error, "Directory: %s\nError: %s", path.c_str(),
                                std::strerror(error));
    }
    return error == 0 && HasDirectoryBit(status);
}

bool fileIsReadable(const std::string& path) {
    struct stat status = {};
    const int error = QueryStatus(path, status);
    if (error != 0) {
        if (error != ENOENT) {
            TK_LOG_FAILED_CALL_TEXT("_tstat", error, "File: %s\nError: %s", path.c_str(),
                                    std::strerror(error));
        }
        return false;
    }
    if (status.st_size == 0) {
        TK_LOG_WARNING("File (%s) is empty.", path.c_str());
        return false;
    }
    if (!HasRegularFileBit(status) || (status.st_mode & S_IRUSR) == 0) {
        TK_LOG_WARNING("File (%s) is not readable or is not a regular file.", path.c_str());
        return false;
    }
    return true;
}

int RemoveFile(const char* path) {
    if (path == nullptr) {
        return EINVAL;
    }
    return unlink(path) == 0 ? 0 : errno;
}

bool GetFileStatus(const char* path, struct stat& status) {
    return path != nullptr && stat(path, &status) == 0;
}
