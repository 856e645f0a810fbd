#pragma once

/// Holds one reference to the instance of a reference-counted singleton class for a scope. Holds
/// nothing if the class has no instance. Any thread.
template <class T>
class CInstanceSmartPtr {
public:
    /// Acquires a reference.
    CInstanceSmartPtr() : m_instance(T::AcquireInstance()) {}

    /// Takes over a reference that the caller holds, for example from CreateSingletonInstance().
    explicit CInstanceSmartPtr(T* acquired) : m_instance(acquired) {}

    ~CInstanceSmartPtr() {
        if (m_instance != nullptr) {
            T::ReleaseInstance(m_instance);
        }
    }

    CInstanceSmartPtr(const CInstanceSmartPtr&) = delete;
    CInstanceSmartPtr& operator=(const CInstanceSmartPtr&) = delete;

    T* Get() const { return m_instance; }
    T* operator->() const { return m_instance; }
    explicit operator bool() const { return m_instance != nullptr; }

private:
    T* m_instance;
};
