#pragma once

#include <string>

#include "UniqueFd.h"

/// A private folder for what pages store, which must not outlive this process. Its destructor
/// removes the folder. A process that was killed leaves its folder behind; the next one removes it.
/// Main thread only.
class CSessionFolder {
public:
    /// Makes the folder in the user's runtime folder, which is in memory, or else among the
    /// temporary files. If that fails, it is logged and the path is empty.
    CSessionFolder();
    ~CSessionFolder();
    CSessionFolder(const CSessionFolder&) = delete;
    CSessionFolder& operator=(const CSessionFolder&) = delete;

    [[nodiscard]] const std::string& Path() const { return m_path; }

    /// The one of this process, made by the first call. The engine's processes write into it until
    /// they end, so whatever ends them must be made after this.
    static const CSessionFolder& Instance();

private:
    std::string m_path;
    // Tells others that this folder is in use. The kernel drops the lock with the process, however
    // that ends.
    CUniqueFd m_lock;
};
