#pragma once

#include <sys/stat.h>

#include <string>

// All follow symbolic links, and a path that does not exist is no failure worth a log line.

/// Whether the path names a regular file. So does a socket here: one bit of the type is tested.
bool fileExists(const std::string& path);

/// Whether the path names a directory. So does a block device here: one bit of the type is tested.
bool directoryExists(const std::string& path);

/// Whether the path names a regular file that is not empty and that its owner may read; whether
/// the caller may is not asked.
bool fileIsReadable(const std::string& path);

/// Deletes a file and gives 0 or the error number; EINVAL for a null path. Logs nothing.
int RemoveFile(const char* path);

/// Gives the path's status; false for a null path or when the query fails. Logs nothing.
[[nodiscard]] bool GetFileStatus(const char* path, struct stat& status);
