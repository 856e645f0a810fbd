#pragma once

#include <sys/types.h>

#include <set>

/// The engine's processes that descend from this one.
enum class EngineProcess { web, network };

/// Their ids; a dead one that nobody has waited for does not count.
[[nodiscard]] std::set<pid_t> FindEngineProcesses(EngineProcess kind);

/// Kills every such process as the kernel would when memory runs out; false when there was none.
[[nodiscard]] bool KillEngineProcesses(EngineProcess kind);
