#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <string>

#include "AppLog.h"
#include "ManualLock.h"
#include "ResultCodes.h"

/// The one live object of a class and the number of its holders. The class is built from an
/// out-parameter for a result code and a string. Any thread, but for CreateSingletonInstance().
template <class T>
class CCountedInstance {
public:
    /// Makes the instance, or acquires the one that is there. Without a lock around the check:
    /// called once at start-up, before there are other threads.
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

    /// The instance with one more holder, or null when there is none.
    T* AcquireInstance() {
        const CManualLockGuard guard(m_lock);
        if (m_instance != nullptr) {
            ++m_referenceCount;
        }
        return m_instance;
    }

    /// Takes a holder away and destroys the object with the last one. An object that is not the
    /// instance is destroyed at once: that is how a half-made one is disposed of.
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
        // cppcheck-suppress unreadVariable ; its destructor is what it is for
        const std::unique_ptr<T> disposed(instance);
    }

    std::uint32_t GetInstanceRefCount() {
        const CManualLockGuard guard(m_lock);
        return m_referenceCount;
    }

private:
    // Null, with a result that says so, when there is no memory for it.
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
