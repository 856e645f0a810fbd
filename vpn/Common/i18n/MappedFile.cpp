#include "MappedFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Returns the size of an open file, or 0 if it is not a regular file or is too large.
std::size_t MappableSize(int descriptor, std::size_t maximumSize) {
    struct stat status = {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        return 0;
    }
    const auto size = static_cast<std::size_t>(status.st_size);
    return size > maximumSize ? 0 : size;
}

}  // namespace

CMappedFile::~CMappedFile() {
    Unmap();
}

bool CMappedFile::Map(const char* path, std::size_t maximumSize) {
    Unmap();
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return false;
    }
    const std::size_t size = MappableSize(descriptor, maximumSize);
    void* const address =
        size == 0 ? MAP_FAILED : mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
    close(descriptor);
    if (address == MAP_FAILED) {
        return false;
    }
    m_address = address;
    m_size = size;
    return true;
}

void CMappedFile::Unmap() {
    if (m_address != nullptr) {
        munmap(m_address, m_size);
        m_address = nullptr;
        m_size = 0;
    }
}

std::string_view CMappedFile::Bytes() const {
    return {static_cast<const char*>(m_address), m_size};
}
