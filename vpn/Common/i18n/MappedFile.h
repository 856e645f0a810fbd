#pragma once

#include <cstddef>
#include <string_view>

/// The bytes of a regular file, mapped into memory for reading. Thread-unsafe.
class CMappedFile {
public:
    CMappedFile() = default;
    ~CMappedFile();
    CMappedFile(const CMappedFile&) = delete;
    CMappedFile& operator=(const CMappedFile&) = delete;

    /// Maps the file and unmaps the previous one. Returns false, with nothing mapped, if the file
    /// cannot be read, is not a regular file, is empty or is larger than the maximum.
    [[nodiscard]] bool Map(const char* path, std::size_t maximumSize);

    /// Unmaps the file. Its bytes must not be used afterwards.
    void Unmap();

    /// The file's bytes, valid until Unmap() or the next Map().
    std::string_view Bytes() const;

private:
    void* m_address = nullptr;
    std::size_t m_size = 0;
};
