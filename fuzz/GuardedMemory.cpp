#include "GuardedMemory.h"

#include <sys/mman.h>
#include <unistd.h>

#include "Check.h"

GuardedMemory::GuardedMemory(std::size_t capacity)
    : m_memory(nullptr), m_readable(0), m_page(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) {
    m_readable = (capacity + m_page - 1) / m_page * m_page;
    void* const memory = mmap(nullptr, m_readable + m_page, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    TK_CHECK(memory != MAP_FAILED);
    m_memory = static_cast<char*>(memory);
    TK_CHECK(mprotect(m_memory + m_readable, m_page, PROT_NONE) == 0);
}

GuardedMemory::~GuardedMemory() {
    munmap(m_memory, m_readable + m_page);
}

std::string_view GuardedMemory::Place(std::string_view bytes) {
    TK_CHECK(bytes.size() <= m_readable);
    char* const start = m_memory + m_readable - bytes.size();
    bytes.copy(start, bytes.size());
    return {start, bytes.size()};
}
