#include "FolderEntries.h"

#include <system_error>

std::vector<std::filesystem::path> FolderEntries(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> entries;
    std::error_code error;
    // The loop over a range would throw where the folder ends unreadable.
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        entries.push_back(entry->path());
    }
    return entries;
}
