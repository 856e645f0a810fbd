#pragma once

#include <sys/stat.h>

#include <string>

// The functions that look at a file follow symbolic links. A path that does not exist is not
// logged.

/// Whether the path names a regular file. A socket counts too, because one bit of the type is
/// tested.
bool fileExists(const std::string& path);

/// Whether the path names a directory. A block device and a socket count too, because one bit of
/// the type is tested.
bool directoryExists(const std::string& path);

/// Whether the path names a regular file that is not empty and that its owner may read. It does not
/// check whether the caller may read the file.
bool fileIsReadable(const std::string& path);

/// Deletes a file and returns 0 or the error number; EINVAL for a null path. Logs nothing.
int RemoveFile(const char* path);

/// Sets status to the path's status. Returns false for a null path or if the query fails. Logs
/// nothing.
[[nodiscard]] bool GetFileStatus(const char* path, struct stat& status);
