#pragma once

/// Creates every missing directory of an absolute path, with mode 0777 minus the umask. Returns
/// true if all of them are directories when it returns. After a failure the directories created
/// before it stay. Returns false for a null or relative path. Follows symbolic links. Any thread.
[[nodiscard]] bool MakeDirectoryPath(const char* absolutePath);
