#include "ProcessMemory.h"

#include <fstream>
#include <string>

namespace {

/// The number behind a name at the start of a line.
long NumberIn(const std::string& path, const std::string& name) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.rfind(name, 0) == 0) {
            return std::stol(line.substr(name.size()));
        }
    }
    return 0;
}

}  // namespace

ProcessMemory MemoryOf(pid_t process) {
    const std::string folder = "/proc/" + std::to_string(process);
    const std::string rollup = folder + "/smaps_rollup";
    return {NumberIn(folder + "/status", "VmRSS:"), NumberIn(rollup, "Pss:"),
            NumberIn(rollup, "Private_Clean:") + NumberIn(rollup, "Private_Dirty:")};
}
