// Preloaded into the helper where no other user can be had: the file that TK_SOCKET_TABLE names
// takes the place of the kernel's table of sockets.

#include <dlfcn.h>
#include <fcntl.h>

#include <cstdarg>
#include <cstdlib>
#include <cstring>

// The parameters' names are this file's own.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int open(const char* path, int flags, ...) {
    using Open = int (*)(const char*, int, ...);
    static const auto hidden = reinterpret_cast<Open>(dlsym(RTLD_NEXT, "open"));
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    const bool isTable = std::strcmp(path, "/proc/self/net/tcp") == 0;
    return hidden(isTable ? std::getenv("TK_SOCKET_TABLE") : path, flags, mode);
}
