#pragma once

// Owner of one reference to a COM object. Copying adds a reference. Explicit throughout: get() lends the pointer, put()
// releases what is held and gives the address for a creating function to fill.

#include <utility>

namespace korvane
{

template <class interface_type> class com_ptr
{
public:
    com_ptr() = default;
    ~com_ptr() { reset(); }
    com_ptr(const com_ptr& other)
        : m_po_object(other.m_po_object)
    {
        if (m_po_object)
            m_po_object->AddRef();
    }
    com_ptr(com_ptr&& other) noexcept
        : m_po_object(std::exchange(other.m_po_object, nullptr))
    {
    }
    com_ptr& operator=(com_ptr other) noexcept
    {
        std::swap(m_po_object, other.m_po_object);
        return *this;
    }

    void reset()
    {
        if (interface_type* object = std::exchange(m_po_object, nullptr))
            object->Release();
    }
    interface_type* get() const { return m_po_object; }
    interface_type* operator->() const { return m_po_object; }
    explicit operator bool() const { return m_po_object != nullptr; }

    interface_type** put()
    {
        reset();
        return &m_po_object;
    }
    // For creating functions that take void**, with __uuidof of the interface.
    void** putVoid() { return reinterpret_cast<void**>(put()); }

private:
    interface_type* m_po_object = nullptr;
};

} // namespace korvane
