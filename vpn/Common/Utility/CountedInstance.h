#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <string>

#include "AppLog.h"
#include "ManualLock.h"
#include "ResultCodes.h"

/// Holds the single instance of a class and counts its holders. The class's constructor takes a
/// result code, which it sets, and a string. Any thread, except for CreateSingletonInstance().
template <class T>
class CCountedInstance {
public:
    /// Creates the instance, or acquires the existing one. The check for an existing one takes no
    /// lock, so call this only at start-up, before there are other threads.
    [[nodiscard]] ResultCode CreateSingletonInstance(T*& instance, const char* className,
                                                     const std::string& argument) {
        instance = nullptr;
        if (m_instance != nullptr) {
            instance = AcquireInstance();
            return kSuccess;
        }
        ResultCode result = kSuccess;
        T* const created = Create(result, argument);
        if (result != kSuccess) {
            ReleaseInstance(created);
            TK_LOG_FAILED_CALL(className, result);
            return result;
        }
        m_instance = created;
        m_referenceCount = 1;
        instance = m_instance;
        return kSuccess;
    }

    /// Adds a holder and returns the instance, or null if there is none.
    T* AcquireInstance() {
        const CManualLockGuard guard(m_lock);
        if (m_instance != nullptr) {
            ++m_referenceCount;
        }
        return m_instance;
    }

    /// Removes a holder; the last one destroys the instance. An object that is not the instance is
    /// destroyed at once: this disposes of an object whose construction failed.
    void ReleaseInstance(T* instance) {
        {
            const CManualLockGuard guard(m_lock);
            if (instance != nullptr && instance == m_instance) {
                if (--m_referenceCount != 0) {
                    return;
                }
                m_instance = nullptr;
            }
        }
        // cppcheck-suppress unreadVariable ; its destructor does the work
        const std::unique_ptr<T> disposed(instance);
    }

    std::uint32_t GetInstanceRefCount() {
        const CManualLockGuard guard(m_lock);
        return m_referenceCount;
    }

private:
    // Returns null and sets the result if there is no memory for the object.
    static T* Create(ResultCode& result, const std::string& argument) {
        try {
            return std::make_unique<T>(result, argument).release();
        } catch (const std::bad_alloc&) {
            result = GLOBAL_ERROR_MEMALLOC_FAILED;
            return nullptr;
        }
    }

    static constexpr unsigned kSpinCount = 500;

    CManualLock m_lock{kSpinCount};
    T* m_instance = nullptr;
    std::uint32_t m_referenceCount = 0;
};
