#include "EASY_GUI/win32/data_object.h"

#include "EASY_GUI/win32/source_stream.h"
#include "EASY_GUI/win32/wide_text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ole2.h>
#include <shldisp.h>
#include <shlobj.h>
#include <utility>

namespace korvane
{

namespace
{

CLIPFORMAT formatOf(const wchar_t* name)
{
    return static_cast<CLIPFORMAT>(RegisterClipboardFormatW(name));
}

HRESULT giveBlock(std::size_t bytes, STGMEDIUM& medium, HGLOBAL& block)
{
    block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes);
    medium.tymed = TYMED_HGLOBAL;
    medium.hGlobal = block;
    medium.pUnkForRelease = nullptr;
    return block != nullptr ? S_OK : E_OUTOFMEMORY;
}

class data_object final : public IDataObject, public IDataObjectAsyncCapability
{
public:
    data_object(std::shared_ptr<const virtual_files> files, const std::string& text)
        : m_po_files(std::move(files))
        , m_text(toWide(text))
    {
        if (m_po_files && m_po_files->count() > 0)
        {
            addFormat(m_descriptors, TYMED_HGLOBAL);
            addFormat(m_contents, TYMED_ISTREAM);
        }
        if (!m_text.empty())
            addFormat(CF_UNICODETEXT, TYMED_HGLOBAL);
    }
    virtual ~data_object() = default;

    // --- IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** found) override
    {
        if (found == nullptr)
            return E_POINTER;
        *found = nullptr;
        if (IsEqualIID(wanted, IID_IUnknown) || IsEqualIID(wanted, IID_IDataObject))
            *found = static_cast<IDataObject*>(this);
        else if (IsEqualIID(wanted, __uuidof(IDataObjectAsyncCapability)))
            *found = static_cast<IDataObjectAsyncCapability*>(this);
        else
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&m_holders)); }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const LONG left = InterlockedDecrement(&m_holders);
        if (left == 0)
            delete this;
        return static_cast<ULONG>(left);
    }

    // --- IDataObject
    HRESULT STDMETHODCALLTYPE GetData(FORMATETC* wanted, STGMEDIUM* medium) override
    {
        if (wanted == nullptr || medium == nullptr)
            return E_POINTER;
        *medium = {};
        if (const HRESULT known = QueryGetData(wanted); known != S_OK)
            return known;
        try
        {
            if (wanted->cfFormat == CF_UNICODETEXT)
                return giveText(*medium);
            return wanted->cfFormat == m_descriptors ? giveDescriptors(*medium) : giveContents(*wanted, *medium);
        }
        catch (...) // nothing passes through the system's code
        {
            return E_OUTOFMEMORY;
        }
    }
    HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC*, STGMEDIUM*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC* wanted) override
    {
        if (wanted == nullptr)
            return E_POINTER;
        for (std::size_t i = 0; i < m_format_count; ++i)
            if (m_formats[i].cfFormat == wanted->cfFormat)
                return wanted->dwAspect != DVASPECT_CONTENT        ? DV_E_DVASPECT
                       : (wanted->tymed & m_formats[i].tymed) != 0 ? S_OK
                                                                   : DV_E_TYMED;
        return DV_E_FORMATETC;
    }
    HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC*, FORMATETC* same) override
    {
        if (same == nullptr)
            return E_POINTER;
        same->ptd = nullptr;
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD direction, IEnumFORMATETC** all) override
    {
        if (direction != DATADIR_GET)
            return E_NOTIMPL;
        return SHCreateStdEnumFmtEtc(static_cast<UINT>(m_format_count), m_formats.data(), all);
    }
    HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override
    {
        return OLE_E_ADVISENOTSUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE DUnadvise(DWORD) override { return OLE_E_ADVISENOTSUPPORTED; }
    HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA**) override { return OLE_E_ADVISENOTSUPPORTED; }

    // --- IDataObjectAsyncCapability: who takes many files may do so beside its window.
    HRESULT STDMETHODCALLTYPE SetAsyncMode(BOOL is_wanted) override
    {
        m_is_beside = is_wanted != FALSE;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetAsyncMode(BOOL* is_wanted) override
    {
        if (is_wanted == nullptr)
            return E_POINTER;
        *is_wanted = m_is_beside ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE StartOperation(IBindCtx*) override
    {
        m_is_at_work = true;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE InOperation(BOOL* is_at_work) override
    {
        if (is_at_work == nullptr)
            return E_POINTER;
        *is_at_work = m_is_at_work ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EndOperation(HRESULT, IBindCtx*, DWORD) override
    {
        m_is_at_work = false;
        return S_OK;
    }

private:
    void addFormat(CLIPFORMAT format, DWORD medium)
    {
        m_formats[m_format_count++] = {format, nullptr, DVASPECT_CONTENT, -1, medium};
    }
    HRESULT giveText(STGMEDIUM& medium) const
    {
        HGLOBAL block = nullptr;
        const std::size_t bytes = (m_text.size() + 1) * sizeof(wchar_t);
        if (const HRESULT made = giveBlock(bytes, medium, block); made != S_OK)
            return made;
        std::memcpy(GlobalLock(block), m_text.c_str(), bytes);
        GlobalUnlock(block);
        return S_OK;
    }
    HRESULT giveDescriptors(STGMEDIUM& medium) const
    {
        HGLOBAL block = nullptr;
        const std::size_t count = m_po_files->count();
        const std::size_t bytes = offsetof(FILEGROUPDESCRIPTORW, fgd) + count * sizeof(FILEDESCRIPTORW);
        if (const HRESULT made = giveBlock(bytes, medium, block); made != S_OK)
            return made;
        auto* const group = static_cast<FILEGROUPDESCRIPTORW*>(GlobalLock(block));
        group->cItems = static_cast<UINT>(count);
        auto* const first = reinterpret_cast<FILEDESCRIPTORW*>(reinterpret_cast<std::byte*>(group) +
                                                               offsetof(FILEGROUPDESCRIPTORW, fgd));
        for (std::size_t i = 0; i < count; ++i)
        {
            FILEDESCRIPTORW& each = first[i];
            each.dwFlags = static_cast<DWORD>(FD_PROGRESSUI) | static_cast<DWORD>(FD_UNICODE);
            if (const auto size = m_po_files->size(i))
            {
                each.dwFlags |= FD_FILESIZE;
                each.nFileSizeHigh = static_cast<DWORD>(*size >> 32);
                each.nFileSizeLow = static_cast<DWORD>(*size);
            }
            const std::wstring path = toWide(m_po_files->path(i));
            std::copy_n(path.data(), std::min(path.size(), std::size(each.cFileName) - 1), each.cFileName);
        }
        GlobalUnlock(block);
        return S_OK;
    }
    HRESULT giveContents(const FORMATETC& wanted, STGMEDIUM& medium) const
    {
        const LONG number = wanted.lindex == -1 && m_po_files->count() == 1 ? 0 : wanted.lindex;
        if (number < 0 || static_cast<std::size_t>(number) >= m_po_files->count())
            return DV_E_LINDEX;
        const auto file = static_cast<std::size_t>(number);
        medium.tymed = TYMED_ISTREAM;
        medium.pstm = new source_stream([files = m_po_files, file] { return files->open(file); },
                                        m_po_files->path(file), m_po_files->size(file));
        return S_OK;
    }

    const std::shared_ptr<const virtual_files> m_po_files;
    const std::wstring m_text;
    const CLIPFORMAT m_descriptors = formatOf(CFSTR_FILEDESCRIPTORW);
    const CLIPFORMAT m_contents = formatOf(CFSTR_FILECONTENTS);
    std::array<FORMATETC, 3> m_formats{};
    std::size_t m_format_count = 0;
    LONG m_holders = 1;
    bool m_is_beside = true;
    bool m_is_at_work = false;
};

class drag_source final : public IDropSource // lies on the stack
{
public:
    virtual ~drag_source() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** found) override
    {
        if (found == nullptr)
            return E_POINTER;
        const bool is_known = IsEqualIID(wanted, IID_IUnknown) || IsEqualIID(wanted, IID_IDropSource);
        *found = is_known ? this : nullptr;
        return is_known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE QueryContinueDrag(BOOL is_escape_pressed, DWORD keys) override
    {
        if (is_escape_pressed || (keys & MK_RBUTTON) != 0)
            return DRAGDROP_S_CANCEL;
        return (keys & MK_LBUTTON) == 0 ? DRAGDROP_S_DROP : S_OK;
    }
    HRESULT STDMETHODCALLTYPE GiveFeedback(DWORD) override { return DRAGDROP_S_USEDEFAULTCURSORS; }
};

} // namespace

ole_session::ole_session() : m_is_open(SUCCEEDED(OleInitialize(nullptr))) {}

ole_session::~ole_session()
{
    if (m_is_open)
        OleUninitialize();
}

com_ptr<IDataObject> makeDataObject(std::shared_ptr<const virtual_files> files, const std::string& text)
{
    com_ptr<IDataObject> made;
    *made.put() = new data_object(std::move(files), text);
    return made;
}

// Another program may hold the clipboard for a moment.
bool setClipboardData(const com_ptr<IDataObject>& data, failure& why)
{
    constexpr int attempts = 10;
    constexpr DWORD pause = 20; // milliseconds
    for (int i = 0; i < attempts; ++i)
    {
        if (i > 0)
            Sleep(pause);
        if (SUCCEEDED(OleSetClipboard(data.get())))
            return true;
    }
    return fail(why, failure_kind::refused, "the clipboard is in use by another program; try it again");
}

void leaveClipboard(const com_ptr<IDataObject>& data, const std::string& text)
{
    if (!data || OleIsCurrentClipboard(data.get()) != S_OK)
        return;
    failure ignored; // the files are gone anyway
    if (setClipboardData(makeDataObject(nullptr, text), ignored))
        OleFlushClipboard(); // which writes it down for good
}

bool dragData(const com_ptr<IDataObject>& data)
{
    drag_source source;
    DWORD effect = DROPEFFECT_NONE;
    return DoDragDrop(data.get(), &source, DROPEFFECT_COPY, &effect) == DRAGDROP_S_DROP && effect != DROPEFFECT_NONE;
}

} // namespace korvane
