#pragma once

// A counted owner of a COM object: explicit get(), put() that releases first, no implicit conversion.

#include <utility>

namespace korvane
{

template <typename Interface>
class com_ptr
{
public:
    com_ptr() = default;
    com_ptr(const com_ptr& other) : m_po(other.m_po)
    {
        if (m_po != nullptr)
            m_po->AddRef();
    }
    com_ptr(com_ptr&& other) noexcept : m_po(std::exchange(other.m_po, nullptr)) {}
    com_ptr& operator=(com_ptr other) noexcept
    {
        std::swap(m_po, other.m_po);
        return *this;
    }
    ~com_ptr() { reset(); }

    Interface* get() const { return m_po; }
    Interface* operator->() const { return m_po; }
    explicit operator bool() const { return m_po != nullptr; }

    // For functions that hand out an object with one reference.
    Interface** put()
    {
        reset();
        return &m_po;
    }
    void** putVoid() { return reinterpret_cast<void**>(put()); }

    void reset()
    {
        if (Interface* const old = std::exchange(m_po, nullptr); old != nullptr)
            old->Release();
    }

private:
    Interface* m_po = nullptr;
};

} // namespace korvane
