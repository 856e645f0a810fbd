#pragma once

#include <sys/types.h>

/// How much of the machine's memory a process uses, in KiB.
struct ProcessMemory {
    long resident = 0;
    /// The same, but a page shared by n processes counts as 1/n.
    long proportional = 0;
    /// Memory that no other process shares.
    long unshared = 0;
};

/// All zero if the process is gone.
[[nodiscard]] ProcessMemory MemoryOf(pid_t process);
