#pragma once

// A page of the main window: a child window that fills the place below the tabs, and what it asks of the main window.

#include "EASY_GUI/services/user_prompt.h"
#include "EASY_GUI/services/work_port.h"
#include "EASY_GUI/win32/font.h"
#include "EASY_GUI/win32/ui_thread.h"
#include "EASY_GUI/win32/window.h"
#include "Korvane/document/model_commands.h"
#include "Korvane/document/open_files.h"
#include "Korvane/presenters/help_topics.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

class scene_pictures;
class shared_config;

// The main window, as its pages and dialogs see it. Window thread.
class page_host
{
public:
    virtual ~page_host() = default;

    virtual open_files& document() = 0;
    virtual model_commands& commands() = 0;
    virtual user_prompt& prompt() = 0;
    virtual shared_config& config() = 0;
    virtual const ui_thread& thread() const = 0; // for background tasks
    virtual HWND frame() const = 0;              // owner of dialogs
    // For one preview's worker; null: nothing can be drawn.
    virtual const std::shared_ptr<scene_pictures>& pictures() const = 0;

    virtual bool openFile(const std::string& path) = 0;                // as if the person had chosen it
    virtual void openFiles(const std::vector<std::string>& paths) = 0; // as if they were dropped on the window
    virtual bool mayLeaveModel() = 0;                      // asks what becomes of unsaved edits; false: the model stays
    virtual void runCommand(document_command command) = 0; // does nothing while it is not enabled
    virtual bool isEnabled(document_command command) const = 0;
    // After a command of model_commands: shows what has changed, and what it was in the status bar.
    virtual void took(command_outcome outcome) = 0;
    // Another LOD or group was chosen, or a texture row is to be seen (-1: none of them); the Model page shows it.
    virtual void select(model_selection wanted) = 0;
    virtual void showModelPage(int texture_row) = 0;
    virtual void showDefinitionPage() = 0;
    virtual void rereadArchives(bool trusts_cache) = 0;
    virtual void showFigure() = 0;                           // of the definition: other alternatives were chosen
    virtual void tookConverted() = 0;                        // a conversion has written an animation
    virtual void playAnimation(const std::string& path) = 0; // of the disk or with "pack:", in the view
    virtual void setStatus(const std::string& text) = 0;     // what happened last
    virtual void logLine(const std::string& line) = 0;
    // Runs long work on a worker; the window answers, but is disabled but for a Stop button. False when it was stopped.
    virtual bool work(const std::string& title, const std::function<void(const work_port&)>& work) = 0;
};

// For dialog_settings::help.
inline DWORD helpContext(help_topic topic)
{
    return static_cast<DWORD>(topic);
}

class page : public window
{
public:
    explicit page(page_host& host) : m_host(host) {}

    [[nodiscard]] bool createIn(HWND parent, failure& why);
    // Of all its controls; outlives the page or the next call. Lays the page out again.
    void setFont(const font& used);
    void place(const RECT& where); // in the parent
    // The document was opened, closed or changed in a way that is not only another selection.
    virtual void showDocument() = 0;
    virtual void showSelection() {}
    virtual void takeTyped() {}            // into the document, before a command looks at it
    virtual void follow() {}               // what other programs do with files; about twice a second
    virtual HWND firstControl() const = 0; // gets the focus when the page is chosen by a command; null: none
    // What Copy takes while no text of a field is selected; empty: nothing is selected here.
    virtual std::string copiedText() const { return {}; }
    // True: the page has copied more than a text, and has said so.
    virtual bool copyMore() { return false; }
    // Paste, with the focus on a control of the page. False: it has no use for a text, and the control itself gets it.
    virtual bool paste(const std::string& /*text*/) { return false; }
    // Escape that no control has used (IDCANCEL), or a command of command_ids.h that is the page's own.
    virtual bool onPageKey(int /*command*/) { return false; }
    // Where the guide opens, with the focus where it is.
    virtual help_topic helpTopic() const = 0;
    // What the person arranged here, for the next start. True when the configuration changed.
    virtual bool keep(config_file& /*config*/) const { return false; }

protected:
    page_host& host() const { return m_host; }
    virtual DWORD extraStyle() const { return 0; } // WS_VSCROLL
    // Most pages of a start are never seen, and each control takes time: they are created when they are needed first.
    // Then they get the font and are filled. When the system refuses one the person is told why, and the page
    // stays empty.
    void needControls();
    bool hasControls() const { return m_has_controls; }
    virtual bool createControls(failure& why) = 0;
    virtual void fillControls() { showDocument(); } // when they are new
    virtual void applyFont(const font& used) = 0;   // to what is created, and layout
    const font* usedFont() const { return m_po_font; }

private:
    page_host& m_host;
    bool m_was_asked = false; // for the controls
    bool m_has_controls = false;
    const font* m_po_font = nullptr;
};

} // namespace korvane
