#include "AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocationCount = 0;

}  // namespace

std::size_t AllocationCount() {
    return allocationCount;
}

// The standard lets a program replace these; the array forms are here because
// a sanitizer brings its own.
void* operator new(std::size_t size) {
    ++allocationCount;
    if (void* const memory = std::malloc(size != 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

void* operator new[](std::size_t size) {
    return operator new(size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
