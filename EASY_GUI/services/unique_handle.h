#pragma once

// One owner for every kind of Windows handle. The policy names the handle's type, its empty value and how it is closed;
// EASY_GUI/win32/handle_policies.h lists those of the toolkit.

#include <utility>

namespace korvane
{

template <typename Policy>
class unique_handle
{
public:
    using handle_type = typename Policy::handle_type;

    unique_handle() = default;
    explicit unique_handle(handle_type handle) : m_handle(Policy::isValid(handle) ? handle : handle_type{}) {}
    unique_handle(unique_handle&& other) noexcept : m_handle(other.release()) {}
    unique_handle& operator=(unique_handle&& other) noexcept
    {
        reset(other.release());
        return *this;
    }
    unique_handle(const unique_handle&) = delete;
    unique_handle& operator=(const unique_handle&) = delete;
    ~unique_handle() { reset(); }

    handle_type get() const { return m_handle; }
    explicit operator bool() const { return m_handle != handle_type{}; }

    // Gives the handle up: the caller closes it.
    [[nodiscard]] handle_type release() { return std::exchange(m_handle, handle_type{}); }

    void reset(handle_type handle = {})
    {
        const handle_type old = std::exchange(m_handle, handle);
        if (old != handle_type{} && old != handle)
            Policy::close(old);
    }

private:
    handle_type m_handle{};
};

} // namespace korvane
