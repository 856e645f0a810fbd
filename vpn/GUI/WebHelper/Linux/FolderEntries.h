#pragma once

#include <filesystem>
#include <vector>

/// The paths of what lies in a folder, as far as it can be read. Thread-safe.
[[nodiscard]] std::vector<std::filesystem::path> FolderEntries(const std::filesystem::path& folder);
