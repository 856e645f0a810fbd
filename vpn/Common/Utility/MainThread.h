#pragma once

#include <unistd.h>

/// Whether the caller is on the thread that runs main(). Any thread.
inline bool IsMainThread() {
    return gettid() == getpid();
}
