#pragma once

#include <sys/types.h>

/// What a process takes of the machine's memory, in KiB.
struct ProcessMemory {
    long resident = 0;
    /// The same with each shared page counted by its share.
    long proportional = 0;
    /// What no other process shares.
    long unshared = 0;
};

/// Zeros when the process is gone.
[[nodiscard]] ProcessMemory MemoryOf(pid_t process);
