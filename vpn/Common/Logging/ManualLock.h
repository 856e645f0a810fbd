#pragma once

#include <pthread.h>

#include <cstdint>

/// Recursive mutex that counts the holds of its owning thread. Destroying a held lock releases
/// it first. Any thread.
class CManualLock {
public:
    /// The spin count is accepted for the callers' sake and has no effect.
    explicit CManualLock(unsigned spinCount);
    virtual ~CManualLock();
    CManualLock(const CManualLock&) = delete;
    CManualLock& operator=(const CManualLock&) = delete;

    /// Waits for the lock; a thread that holds it may take it again.
    void Lock();

    /// Takes the lock if that needs no waiting. Returns whether it was taken.
    [[nodiscard]] bool TryLock();

    /// Releases one hold and returns how many are left; returns 0 also if nothing was held.
    std::uint64_t Unlock();

private:
    pthread_mutex_t m_mutex;
    std::uint64_t m_holdCount;
};

/// Holds a CManualLock for a scope.
class CManualLockGuard {
public:
    explicit CManualLockGuard(CManualLock& lock) : m_lock(lock) { m_lock.Lock(); }
    ~CManualLockGuard() { m_lock.Unlock(); }
    CManualLockGuard(const CManualLockGuard&) = delete;
    CManualLockGuard& operator=(const CManualLockGuard&) = delete;

private:
    CManualLock& m_lock;
};
