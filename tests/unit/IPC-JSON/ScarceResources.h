#pragma once

#include <pthread.h>
#include <sys/resource.h>

#include <stdexcept>

#include "OpenDescriptors.h"

/// Lets the process open so many descriptors more, for a scope.
class DescriptorsLeft {
public:
    explicit DescriptorsLeft(unsigned count) {
        getrlimit(RLIMIT_NOFILE, &m_previous);
        rlimit limit = m_previous;
        limit.rlim_cur = LimitFor(count);
        Apply(limit);
    }
    ~DescriptorsLeft() { Apply(m_previous); }
    DescriptorsLeft(const DescriptorsLeft&) = delete;
    DescriptorsLeft& operator=(const DescriptorsLeft&) = delete;

private:
    static rlim_t LimitFor(unsigned count) {
        const auto open = OpenDescriptors();
        int limit = 0;
        for (unsigned left = count; left > 0 || open.count(limit) != 0; ++limit) {
            left -= open.count(limit) == 0 ? 1 : 0;
        }
        return static_cast<rlim_t>(limit);
    }

    static void Apply(const rlimit& limit) {
        if (setrlimit(RLIMIT_NOFILE, &limit) != 0) {
            throw std::runtime_error("setrlimit");
        }
    }

    rlimit m_previous{};
};

/// No thread can be started, for a scope: each would get more stack than there is memory.
class NoThreads {
public:
    NoThreads() {
        pthread_attr_t attributes;
        pthread_getattr_default_np(&attributes);
        pthread_attr_getstacksize(&attributes, &m_previous);
        pthread_attr_destroy(&attributes);
        SetStackSize(std::size_t{1} << 50);
    }
    ~NoThreads() { SetStackSize(m_previous); }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

private:
    static void SetStackSize(std::size_t size) {
        pthread_attr_t attributes;
        pthread_getattr_default_np(&attributes);
        pthread_attr_setstacksize(&attributes, size);
        if (pthread_setattr_default_np(&attributes) != 0) {
            throw std::runtime_error("pthread_setattr_default_np");
        }
        pthread_attr_destroy(&attributes);
    }

    std::size_t m_previous = 0;
};
