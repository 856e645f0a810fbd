#pragma once

#include <pthread.h>

#include <cstddef>
#include <exception>
#include <stdexcept>

/// From now on the kernel answers this system call of the calling process with "Too many open
/// files", as it does when there are; the sanitizers' own calls still work. There is no way back:
/// for a process of its own.
void RefuseSystemCall(unsigned number);

/// No thread can be started, for a scope: each would get more stack than there is memory.
class NoThreads {
public:
    NoThreads() {
        pthread_attr_t attributes;
        pthread_getattr_default_np(&attributes);
        pthread_attr_getstacksize(&attributes, &m_previous);
        pthread_attr_destroy(&attributes);
        if (!SetStackSize(std::size_t{1} << 50)) {
            throw std::runtime_error("pthread_setattr_default_np");
        }
    }
    ~NoThreads() {
        if (!SetStackSize(m_previous)) {
            std::terminate();
        }
    }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

private:
    [[nodiscard]] static bool SetStackSize(std::size_t size) {
        pthread_attr_t attributes;
        pthread_getattr_default_np(&attributes);
        pthread_attr_setstacksize(&attributes, size);
        const bool isSet = pthread_setattr_default_np(&attributes) == 0;
        pthread_attr_destroy(&attributes);
        return isSet;
    }

    std::size_t m_previous = 0;
};
