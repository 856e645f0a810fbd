#include "OpenDescriptors.h"

#include <filesystem>

std::map<int, std::string> OpenDescriptors() {
    std::map<int, std::string> open;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        const std::string target = std::filesystem::read_symlink(entry.path(), gone).string();
        // The descriptor that reads the folder is not one of ours.
        if (!gone && target.rfind("/proc/", 0) != 0) {
            open[std::stoi(entry.path().filename().string())] = target;
        }
    }
    return open;
}

std::map<int, std::string> DescriptorsSince::All() const {
    std::map<int, std::string> since;
    for (const auto& [descriptor, target] : OpenDescriptors()) {
        const auto before = m_before.find(descriptor);
        if (before == m_before.end() || before->second != target) {
            since[descriptor] = target;
        }
    }
    return since;
}

int DescriptorsSince::Find(const std::string& kind) const {
    for (const auto& [descriptor, target] : All()) {
        if (target.rfind(kind, 0) == 0) {
            return descriptor;
        }
    }
    return -1;
}
