#pragma once

#include <sys/types.h>

#include <set>
#include <string>

/// Every process whose parent is the given one or a descendant of it.
[[nodiscard]] std::set<pid_t> Descendants(pid_t ancestor);

/// The name of a process's program, such as "WebKitWebProcess"; empty once the process has ended.
[[nodiscard]] std::string ProgramOf(pid_t process);

/// The descendants of a process that run a program of that name and have not ended.
[[nodiscard]] std::set<pid_t> DescendantsRunning(pid_t ancestor, const std::string& program);

/// Whether each thread of a process sleeps at this moment.
[[nodiscard]] bool IsAsleep(pid_t process);
