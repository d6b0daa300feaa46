// What other programs get of the page of the archives, read back as they do it.

#include "EASY_GUI/win32/clipboard.h"
#include "EASY_GUI/win32/com_ptr.h"
#include "tests/windows/app/main_window_fixture.h"

#include <map>
#include <ole2.h>
#include <thread>

namespace korvane::test
{
namespace
{

class exchange_test : public main_window_test
{
protected:
    void openArchives()
    {
        openWindow();
        for (int i = 0; i < 3; ++i)
            pressWithControl(VK_TAB);
        ASSERT_TRUE(pumpUntil([this] { return !m_window->archivePage().isSearching(); }));
        SetFocus(find(control_archive_list));
    }

public:
    static CLIPFORMAT format(const wchar_t* name) { return static_cast<CLIPFORMAT>(RegisterClipboardFormatW(name)); }
    static HRESULT get(IDataObject& from, CLIPFORMAT what, LONG number, DWORD medium, STGMEDIUM& got)
    {
        FORMATETC wanted{what, nullptr, DVASPECT_CONTENT, number, medium};
        return from.GetData(&wanted, &got);
    }
    // Path to "size: bytes", or to what reading it gave.
    static std::map<std::string, std::string> filesOf(IDataObject& data)
    {
        std::map<std::string, std::string> files;
        STGMEDIUM group{};
        if (FAILED(get(data, format(CFSTR_FILEDESCRIPTORW), -1, TYMED_HGLOBAL, group)))
            return files;
        const auto* const list = static_cast<const FILEGROUPDESCRIPTORW*>(GlobalLock(group.hGlobal));
        for (UINT i = 0; i < list->cItems; ++i)
        {
            const FILEDESCRIPTORW& each = list->fgd[i];
            const std::string size =
                (each.dwFlags & FD_FILESIZE) != 0 ? std::to_string(each.nFileSizeLow) : std::string("?");
            files[fromWide(each.cFileName)] = size + ": " + contentsOf(data, static_cast<LONG>(i));
        }
        GlobalUnlock(group.hGlobal);
        ReleaseStgMedium(&group);
        return files;
    }
    static std::string contentsOf(IDataObject& data, LONG number)
    {
        STGMEDIUM contents{};
        if (FAILED(get(data, format(CFSTR_FILECONTENTS), number, TYMED_ISTREAM, contents)))
            return "no stream";
        std::string bytes;
        char piece[3];
        ULONG read = 0;
        HRESULT result = S_OK;
        while ((result = contents.pstm->Read(piece, sizeof piece, &read)) == S_OK || read > 0)
            bytes.append(piece, read);
        if (const ULARGE_INTEGER all{{100, 0}}; SUCCEEDED(result)) // again from the start, as a copy
        {
            com_ptr<IStream> copy;
            EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, copy.put()), S_OK);
            ULARGE_INTEGER copied{};
            EXPECT_EQ(contents.pstm->Seek({}, STREAM_SEEK_SET, nullptr), S_OK);
            EXPECT_EQ(contents.pstm->CopyTo(copy.get(), all, nullptr, &copied), S_OK);
            EXPECT_EQ(copied.QuadPart, bytes.size());
        }
        ReleaseStgMedium(&contents);
        return FAILED(result) ? "fails" : bytes;
    }
};

TEST_F(exchange_test, copiedFilesAreReadBackAlsoWhenTheArchivesAreReadAgain)
{
    const std::string huge(900, 'x');
    writeArchive({{"men\\body.txt", "bytes"},
                  {"men\\deep\\a.txt", ""},
                  {"men\\deep\\" + huge, "too long a name"},
                  {"men\\con.txt", "a device"},
                  {"plain.txt", "p"}});
    openArchives();
    press(VK_HOME);
    press(VK_END, VK_SHIFT); // the folder and the file
    ASSERT_TRUE(pumpUntil([this] { return IsWindowEnabled(find(control_archive_take_out)); }));
    pressWithControl('C');
    EXPECT_TRUE(happened().starts_with("Copied: 2 paths. Pasted into a folder of the file manager: 3 files."))
        << happened();
    EXPECT_TRUE(happened().ends_with("2 files with a name that no folder can hold stayed away.")) << happened();

    com_ptr<IDataObject> data;
    ASSERT_EQ(OleGetClipboard(data.put()), S_OK);
    const std::map<std::string, std::string> expected = {
        {"men\\body.txt", "5: bytes"}, {"men\\deep\\a.txt", "0: "}, {"plain.txt", "1: p"}};
    EXPECT_EQ(filesOf(*data.get()), expected);
    failure why;
    EXPECT_EQ(clipboardText(m_window->handle(), why), "men\r\nplain.txt");

    writeArchive({{"other.txt", "another archive"}});
    choose(document_command::reread_archives);
    EXPECT_EQ(m_window->archivePage().browser().rows().rowCount(), 1u);
    EXPECT_EQ(filesOf(*data.get()), expected) << "what was copied holds the former archives";

    data.reset();
    m_window.reset(); // after which the text is left
    EXPECT_EQ(clipboardText(nullptr, why), "men\r\nplain.txt");
}

TEST_F(exchange_test, aDamagedFileFailsItsStreamAlone)
{
    test_entry damaged{"bad.txt", std::string("\x05\0\0\0 no packer's frame", 23)};
    damaged.compression = 1;
    test_pack pack;
    pack.magic = "PFH5";
    pack.entries = {{"a.txt", "fine"}, damaged, {"c.txt", "fine, too"}};
    const std::string data_folder = m_folder + "packed\\";
    std::filesystem::create_directories(toPath(data_folder));
    write("packed\\a.pack", pack.bytes());
    changeConfig([&](config_file& config) { return config.add("data_paths", {data_folder}, false); });
    openArchives();
    pressWithControl('A');
    ASSERT_TRUE(pumpUntil([this] { return IsWindowEnabled(find(control_archive_take_out)); }));
    pressWithControl('C');
    com_ptr<IDataObject> data;
    ASSERT_EQ(OleGetClipboard(data.put()), S_OK);
    EXPECT_EQ(filesOf(*data.get()), (std::map<std::string, std::string>{
                                        {"a.txt", "4: fine"}, {"bad.txt", "?: fails"}, {"c.txt", "9: fine, too"}}));
    EXPECT_EQ(contentsOf(*data.get(), 3), "no stream");
}

// Another program's window, which looks at what is dropped on it.
class drop_window : public plain_window, public IDropTarget
{
public:
    drop_window()
    {
        SetWindowPos(handle(), HWND_TOPMOST, 1200, 700, 100, 100, SWP_NOACTIVATE);
        EXPECT_EQ(RegisterDragDrop(handle(), this), S_OK);
    }
    ~drop_window() override { RevokeDragDrop(handle()); }
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** found) override
    {
        const bool is_known = IsEqualIID(wanted, IID_IUnknown) || IsEqualIID(wanted, IID_IDropTarget);
        *found = is_known ? static_cast<IDropTarget*>(this) : nullptr;
        return is_known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE DragEnter(IDataObject*, DWORD, POINTL, DWORD* effect) override
    {
        *effect &= DROPEFFECT_COPY;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DragOver(DWORD, POINTL, DWORD* effect) override
    {
        *effect &= DROPEFFECT_COPY;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DragLeave() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Drop(IDataObject* data, DWORD, POINTL, DWORD* effect) override
    {
        *effect &= DROPEFFECT_COPY;
        m_files = exchange_test::filesOf(*data);
        return S_OK;
    }
    std::map<std::string, std::string> m_files;
};

TEST_F(exchange_test, filesAreDraggedIntoAnotherWindow)
{
    writeArchive({{"a.txt", "fine"}, {"b.txt", "b"}});
    openArchives();
    const ole_session ole;
    const drop_window other;
    RECT row{LVIR_LABEL, 0, 0, 0};
    SendMessageW(find(control_archive_list), LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row));
    POINT from{row.left + 10, (row.top + row.bottom) / 2};
    ClientToScreen(find(control_archive_list), &from);
    std::thread hand([from] { // the list and the system wait for it in loops of their own
        const auto act = [](POINT at, DWORD what) {
            SetCursorPos(at.x, at.y);
            INPUT input{};
            input.type = INPUT_MOUSE;
            input.mi.dwFlags = what;
            SendInput(1, &input, sizeof input);
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        };
        act(from, MOUSEEVENTF_LEFTDOWN);
        for (const POINT at : {POINT{from.x + 30, from.y + 30}, POINT{1240, 740}, POINT{1250, 750}})
            act(at, MOUSEEVENTF_MOVE);
        act({1250, 750}, MOUSEEVENTF_LEFTUP);
    });
    EXPECT_TRUE(pumpUntil([&other] { return !other.m_files.empty(); }));
    hand.join();
    pump();
    EXPECT_EQ(other.m_files, (std::map<std::string, std::string>{{"a.txt", "4: fine"}}));
    EXPECT_EQ(happened(), "Handed over: 1 file.");
}

} // namespace
} // namespace korvane::test
