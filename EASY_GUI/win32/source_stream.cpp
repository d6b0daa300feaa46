#include "EASY_GUI/win32/source_stream.h"

#include "EASY_GUI/win32/wide_text.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>
#include <vector>

namespace korvane
{

source_stream::source_stream(std::function<byte_source()> open, std::string name, std::optional<std::uint64_t> size)
    : m_open(std::move(open))
    , m_name(std::move(name))
    , m_size(size)
{
}

HRESULT source_stream::QueryInterface(REFIID wanted, void** found)
{
    if (found == nullptr)
        return E_POINTER;
    const bool is_known = IsEqualIID(wanted, IID_IUnknown) || IsEqualIID(wanted, IID_ISequentialStream) ||
                          IsEqualIID(wanted, IID_IStream);
    *found = is_known ? this : nullptr;
    if (is_known)
        AddRef();
    return is_known ? S_OK : E_NOINTERFACE;
}

ULONG source_stream::AddRef()
{
    return static_cast<ULONG>(InterlockedIncrement(&m_holders));
}

ULONG source_stream::Release()
{
    const LONG left = InterlockedDecrement(&m_holders);
    if (left == 0)
        delete this;
    return static_cast<ULONG>(left);
}

// What the source throws would pass through the system's code.
HRESULT source_stream::advance(std::byte* target, std::uint64_t wanted, std::uint64_t& done)
try
{
    if (!m_source && m_error == S_OK)
        m_source = m_open();
    while (done < wanted && !m_is_at_end && m_error == S_OK)
    {
        failure why;
        if (m_piece.empty() && !m_source(m_piece, why))
            m_error = why.kind == failure_kind::not_found ? STG_E_FILENOTFOUND : STG_E_READFAULT;
        else if (m_piece.empty())
            m_is_at_end = true;
        else
        {
            const auto some = static_cast<std::size_t>(std::min<std::uint64_t>(m_piece.size(), wanted - done));
            if (target != nullptr)
                std::memcpy(target + done, m_piece.data(), some);
            m_piece = m_piece.subspan(some);
            done += some;
        }
    }
    m_position += done;
    return m_error;
}
catch (...)
{
    return m_error = E_OUTOFMEMORY;
}

HRESULT source_stream::Read(void* target, ULONG wanted, ULONG* read)
{
    if (target == nullptr)
        return STG_E_INVALIDPOINTER;
    std::uint64_t done = 0;
    const HRESULT result = advance(static_cast<std::byte*>(target), wanted, done);
    if (read != nullptr)
        *read = static_cast<ULONG>(done);
    return result != S_OK ? result : done < wanted ? S_FALSE : S_OK;
}

HRESULT source_stream::moveTo(std::uint64_t position)
{
    if (position < m_position)
    {
        m_source = nullptr;
        m_piece = {};
        m_position = 0;
        m_is_at_end = false;
    }
    std::uint64_t done = 0;
    const HRESULT result = advance(nullptr, position - m_position, done);
    return result != S_OK ? result : m_position == position ? S_OK : STG_E_INVALIDFUNCTION;
}

HRESULT source_stream::Seek(LARGE_INTEGER distance, DWORD from, ULARGE_INTEGER* position)
{
    if (from == STREAM_SEEK_END && !m_size)
        return STG_E_INVALIDFUNCTION; // only the whole of it would tell
    const std::uint64_t base = from == STREAM_SEEK_CUR ? m_position : from == STREAM_SEEK_END ? *m_size : 0;
    const std::uint64_t back =
        distance.QuadPart < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(distance.QuadPart) : 0;
    if (from > STREAM_SEEK_END || back > base)
        return STG_E_INVALIDFUNCTION;
    const HRESULT result =
        moveTo(back > 0 ? base - back : base + static_cast<std::uint64_t>(std::max<LONGLONG>(distance.QuadPart, 0)));
    if (position != nullptr)
        position->QuadPart = m_position;
    return result;
}

HRESULT source_stream::CopyTo(IStream* target, ULARGE_INTEGER wanted, ULARGE_INTEGER* read, ULARGE_INTEGER* written)
{
    if (target == nullptr)
        return STG_E_INVALIDPOINTER;
    std::vector<std::byte> piece(1 << 16);
    std::uint64_t copied = 0;
    HRESULT result = S_OK;
    while (copied < wanted.QuadPart && result == S_OK)
    {
        ULONG came = 0, went = 0;
        result = Read(piece.data(), static_cast<ULONG>(std::min<std::uint64_t>(piece.size(), wanted.QuadPart - copied)),
                      &came);
        if (const HRESULT taken = came > 0 ? target->Write(piece.data(), came, &went) : S_OK; FAILED(taken))
            result = taken;
        copied += went;
    }
    if (read != nullptr)
        read->QuadPart = copied;
    if (written != nullptr)
        written->QuadPart = copied;
    return FAILED(result) ? result : S_OK;
}

HRESULT source_stream::Stat(STATSTG* described, DWORD flags)
{
    if (described == nullptr)
        return STG_E_INVALIDPOINTER;
    *described = {};
    described->type = STGTY_STREAM;
    described->cbSize.QuadPart = m_size.value_or(0);
    described->grfMode = STGM_READ;
    if ((flags & STATFLAG_NONAME) != 0)
        return S_OK;
    const std::wstring name = toWide(m_name);
    const std::size_t bytes = (name.size() + 1) * sizeof(wchar_t);
    described->pwcsName = static_cast<LPOLESTR>(CoTaskMemAlloc(bytes)); // the asker's
    if (described->pwcsName == nullptr)
        return STG_E_INSUFFICIENTMEMORY;
    std::memcpy(described->pwcsName, name.c_str(), bytes);
    return S_OK;
}

HRESULT source_stream::Clone(IStream** copy)
{
    if (copy == nullptr)
        return STG_E_INVALIDPOINTER;
    *copy = new (std::nothrow) source_stream(m_open, m_name, m_size);
    return *copy == nullptr  ? STG_E_INSUFFICIENTMEMORY
           : m_position == 0 ? S_OK
                             : static_cast<source_stream*>(*copy)->moveTo(m_position);
}

} // namespace korvane
