#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// The engine's processes that are children of this one.
enum class EngineProcess { web, network };

/// Their ids, in no order; a dead one that nobody has waited for does not count.
[[nodiscard]] std::vector<pid_t> FindEngineProcesses(EngineProcess kind);

/// Kills every such process as the kernel would when memory runs out; false when there was none.
[[nodiscard]] bool KillEngineProcesses(EngineProcess kind);
