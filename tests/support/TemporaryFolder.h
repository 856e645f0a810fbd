#pragma once

#include <filesystem>
#include <string>

/// A new empty folder. It is removed, with everything in it, when the object is destroyed. Other
/// users may read it, so that a test can look at it as another user.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Absolute, without a trailing slash.
    [[nodiscard]] std::string Path() const { return m_path.string(); }

    /// Path of something below the folder.
    [[nodiscard]] std::string Path(const std::string& relative) const {
        return (m_path / relative).string();
    }

private:
    std::filesystem::path m_path;
};

/// Writes a new file, and creates the folders above it. Throws if that fails.
void WriteFile(const std::string& path, const std::string& bytes);

/// The bytes of a file; throws when it cannot be read.
[[nodiscard]] std::string ReadFile(const std::string& path);
