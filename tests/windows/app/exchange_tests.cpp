// What other programs get of the page of the archives, read back as they do it.

#include "EASY_GUI/win32/clipboard.h"
#include "EASY_GUI/win32/com_ptr.h"
#include "tests/windows/app/main_window_fixture.h"

#include <atomic>
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
        m_is_entered = true;
        *effect &= DROPEFFECT_COPY;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DragOver(DWORD, POINTL, DWORD* effect) override
    {
        *effect &= DROPEFFECT_COPY;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DragLeave() override
    {
        m_is_entered = false;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Drop(IDataObject* data, DWORD, POINTL, DWORD* effect) override
    {
        *effect &= DROPEFFECT_COPY;
        m_files = exchange_test::filesOf(*data);
        m_has_dropped = true;
        return S_OK;
    }
    std::map<std::string, std::string> m_files;
    std::atomic<bool> m_is_entered = false, m_has_dropped = false; // for the hand, which is another thread
};

TEST_F(exchange_test, filesAreDraggedIntoAnotherWindow)
{
    writeArchive({{"a.txt", "fine"}, {"b.txt", "b"}});
    openArchives();
    const ole_session ole;
    drop_window other;
    RECT row{LVIR_LABEL, 0, 0, 0};
    SendMessageW(find(control_archive_list), LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row));
    POINT from{row.left + 10, (row.top + row.bottom) / 2};
    ClientToScreen(find(control_archive_list), &from);
    std::atomic<bool> is_over = false; // set when the system has seen all that the hand did
    std::thread hand([&] {             // the list and the system wait for it in loops of their own
        const auto act = [](POINT at, DWORD what) {
            SetCursorPos(at.x, at.y);
            INPUT input{};
            input.type = INPUT_MOUSE;
            input.mi.dwFlags = what;
            SendInput(1, &input, sizeof input);
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        };
        for (const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(180);
             !other.m_has_dropped && std::chrono::steady_clock::now() < end;)
        {
            // A hand that looks: it presses when the pointer is and stays there (a display says late where its own
            // pointer was), and goes on when it is seen.
            other.m_is_entered = false;
            for (int seen = 0; seen < 4 && std::chrono::steady_clock::now() < end;)
            {
                POINT now{};
                seen = GetCursorPos(&now) && now.x == from.x && now.y == from.y ? seen + 1 : 0;
                act(from, MOUSEEVENTF_MOVE);
            }
            act(from, MOUSEEVENTF_LEFTDOWN);
            for (LONG step = 0; step < 60 && !other.m_is_entered; ++step)
                act(step < 3 ? POINT{from.x + 10 * step, from.y + 10 * step} : POINT{1240 + step % 10, 740 + step % 10},
                    MOUSEEVENTF_MOVE);
            act({1250, 750}, MOUSEEVENTF_LEFTUP);
            for (int wait = 0; wait < 40 && other.m_is_entered && !other.m_has_dropped; ++wait)
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        is_over = true;
    });
    while (!is_over)
        static_cast<void>(pumpUntil([&is_over] { return is_over.load(); }));
    hand.join();
    pump();
    EXPECT_EQ(other.m_files, (std::map<std::string, std::string>{{"a.txt", "4: fine"}}));
    EXPECT_EQ(happened(), "Handed over: 1 file.");
}

TEST_F(exchange_test, theModFolderIsWrittenToAndShownAtOnce)
{
    writeArchive({{"men\\body.txt", "of the game"}, {"men\\other.txt", "o"}});
    const std::string mod = m_folder + "mod\\";
    std::filesystem::create_directories(toPath(mod));
    changeConfig([&](config_file& config) { return config.add("mod_paths", {mod}, false); });
    std::filesystem::create_directories(toPath(m_folder + "in\\sub"));
    write("in\\sub\\new.txt", "new");
    write("body.txt", "mine");
    openArchives();
    const archive_rows& rows = m_window->archivePage().browser().rows();
    const auto names = [&rows] {
        std::string all;
        for (std::size_t i = 0; i < rows.rowCount(); ++i)
            all += rows.text(i, archive_rows::name) +
                   (rows.text(i, archive_rows::archive).starts_with("Mod") ? "* " : " ");
        return all;
    };
    const auto drop = [this](const std::vector<std::string>& paths) {
        std::wstring list;
        for (const std::string& path : paths)
            list += toWide(path) + L'\0';
        list += L'\0';
        const HGLOBAL block = GlobalAlloc(GHND, sizeof(DROPFILES) + list.size() * sizeof(wchar_t));
        auto* const files = static_cast<DROPFILES*>(GlobalLock(block));
        files->pFiles = sizeof(DROPFILES);
        files->fWide = TRUE;
        std::memcpy(reinterpret_cast<std::byte*>(files) + sizeof(DROPFILES), list.data(),
                    list.size() * sizeof(wchar_t));
        GlobalUnlock(block);
        SendMessageW(GetParent(find(control_archive_list)), WM_DROPFILES, reinterpret_cast<WPARAM>(block), 0);
        ASSERT_TRUE(pumpUntil([this] { return !m_window->archivePage().isSearching(); }));
    };
    SetWindowTextW(find(control_archive_path), L"men");
    ASSERT_EQ(names(), "body.txt other.txt ");

    m_prompt.confirmations = {false, true};
    drop({m_folder + "body.txt", m_folder + "in"});
    EXPECT_EQ(names(), "body.txt other.txt ") << "the answer was no";
    drop({m_folder + "body.txt", m_folder + "in"});
    EXPECT_EQ(happened(), "2 files put into the mod folder.");
    EXPECT_EQ(names(), "in body.txt* other.txt ");
    SetFocus(find(control_archive_list));
    EXPECT_EQ(SendMessageW(find(control_archive_list), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED), 1);

    const auto rename = [this](const wchar_t* name, int button) {
        inDialog([this] { SendMessageW(find(control_archive_list), WM_KEYDOWN, VK_F2, 1); },
                 [=](HWND shown) {
                     SetWindowTextW(GetDlgItem(shown, control_name_field), name);
                     PostMessageW(GetDlgItem(shown, button), BM_CLICK, 0, 0);
                 });
    };
    rename(L"Torso.txt", control_name_ok);
    EXPECT_EQ(happened(), "Renamed: men\\torso.txt");
    EXPECT_EQ(names(), "in body.txt other.txt torso.txt* ");
    rename(L"else.txt", control_dialog_close);
    EXPECT_EQ(names(), "in body.txt other.txt torso.txt* ");

    SetFocus(find(control_archive_list));
    press(VK_UP); // that of the archive
    press(VK_F2);
    EXPECT_EQ(happened(), "other.txt is in a.pack, and archives are never changed: put it into the mod folder first.");
    press(VK_DELETE);
    EXPECT_TRUE(happened().starts_with("other.txt is in a.pack"));
    memory_file bytes;
    failure why;
    ASSERT_TRUE(bytes.read(mod + "men\\Torso.txt", why)) << describe(why);
    EXPECT_EQ(bytes.text(), "mine");
    EXPECT_TRUE(std::filesystem::exists(toPath(mod + "men\\in\\sub\\new.txt")));
}

} // namespace
} // namespace korvane::test
