#pragma once

/// Creates every missing directory along an absolute path, with mode 0777 less the umask. True
/// when, on return, each of them is a directory; a failure leaves those made before it in place.
/// A null or relative path is false. Symbolic links are followed. Any thread.
[[nodiscard]] bool MakeDirectoryPath(const char* absolutePath);
