#pragma once

// Bytes that come piece by piece as a stream for other programs: read from the beginning on; going back begins anew. A
// failure of the source is an error of the stream, then and later.

#include "EASY_GUI/services/byte_source.h"

#include <cstdint>
#include <functional>
#include <objidl.h>
#include <optional>
#include <string>

namespace korvane
{

class source_stream final : public IStream
{
public:
    // With one holder. The source is made when the first byte is asked for.
    source_stream(std::function<byte_source()> open, std::string name, std::optional<std::uint64_t> size);
    virtual ~source_stream() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** found) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE Read(void* target, ULONG wanted, ULONG* read) override;
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER distance, DWORD from, ULARGE_INTEGER* position) override;
    HRESULT STDMETHODCALLTYPE CopyTo(IStream* target, ULARGE_INTEGER wanted, ULARGE_INTEGER* read,
                                     ULARGE_INTEGER* written) override;
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* described, DWORD flags) override;
    HRESULT STDMETHODCALLTYPE Clone(IStream** copy) override;
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override { return STG_E_ACCESSDENIED; }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return STG_E_ACCESSDENIED; }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Revert() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override
    {
        return STG_E_INVALIDFUNCTION;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override
    {
        return STG_E_INVALIDFUNCTION;
    }

private:
    HRESULT advance(std::byte* target, std::uint64_t wanted, std::uint64_t& done); // null: passes over them
    HRESULT moveTo(std::uint64_t position);

    const std::function<byte_source()> m_open;
    const std::string m_name;
    const std::optional<std::uint64_t> m_size;
    byte_source m_source; // empty: not begun
    std::span<const std::byte> m_piece;
    std::uint64_t m_position = 0;
    bool m_is_at_end = false;
    HRESULT m_error = S_OK;
    LONG m_holders = 1;
};

} // namespace korvane
