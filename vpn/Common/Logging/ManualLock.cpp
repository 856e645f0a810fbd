#include "ManualLock.h"

CManualLock::CManualLock(unsigned /*spinCount*/) : m_holdCount(0) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&m_mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

CManualLock::~CManualLock() {
    while (Unlock() != 0) {
    }
    pthread_mutex_destroy(&m_mutex);
}

void CManualLock::Lock() {
    pthread_mutex_lock(&m_mutex);
    ++m_holdCount;
}

bool CManualLock::TryLock() {
    if (pthread_mutex_trylock(&m_mutex) != 0) {
        return false;
    }
    ++m_holdCount;
    return true;
}

std::uint64_t CManualLock::Unlock() {
    if (m_holdCount == 0) {
        return 0;
    }
    // Only the holder may read the count, so read it before another thread can take the mutex.
    const std::uint64_t holdsLeft = --m_holdCount;
    pthread_mutex_unlock(&m_mutex);
    return holdsLeft;
}
