// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/textedit.h"

#include "ide/debug/codemarks.h"
#include "ide/editor/backup.h"
#include "ide/editor/completion.h"
#include "ide/editor/declaration.h"
#include "ide/editor/editlooks.h"
#include "ide/editor/fileinfo.h"
#include "ide/editor/seenfile.h"
#include "ide/shell/idecore.h"
#include "ide/shell/undomenu.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/windows/linemarks.h"
#include "library/dialogs/finddlgs.h"
#include "library/settings/profstr.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>
#include <array>

MODULE("textedit", tarn::TEXTEDIT_ONERROR)

namespace tarn {

void TEXTEDIT_ONERROR(std::int32_t code) {
    if (!ISFILEERROR(code)) return DefaultErrorHandler(code);
    const std::string failedSave = SAVEFILEREPORT();
    TELLERROR(code, !failedSave.empty() ? failedSave
                    : code == 651
                        ? "The file was not opened. Check that it exists and that you may read it."
                        : "Nothing was written. Check that you may write to it and that the disk has room.");
}

// ---- flags ----

namespace {

constexpr std::pair<int, std::string_view> flagNames[] = {{ALLOWOVERWRITE, "ALLOWOVERWRITE"},
                                                          {AUTOINDENT, "AUTOINDENT"},
                                                          {HILITE, "HILITE"},
                                                          {READONLY, "READONLY"},
                                                          {SELECTALL, "SELECTALL"},
                                                          {STATUSBAR, "STATUSBAR"},
                                                          {TABSHIFT, "TABSHIFT"},
                                                          {PRIVATE_MODIFY, "PRIVATE_MODIFY"},
                                                          {NUMBERBAR, "NUMBERBAR"}};

void setFlag(const Object& window, int flag, bool on) {
    const int flags = GetFlags(window);
    SetFlags(window, on ? flags | flag : flags & ~flag);
}

constexpr int CAPTION_MARKED = 0x10000;  // of this module alone, beside the flags of the control
constexpr std::string_view ModifyMark = " *";

// Whether the end of the caption is the mark that this module has put there; a name may end like it.
bool isMarked(const Object& window, std::string_view caption) {
    return (GetFlags(window) & CAPTION_MARKED) != 0 && caption.ends_with(ModifyMark);
}

bool isEditWindow(const Object& window) {
    const std::string type = GetTypeof(window);
    return STREQUAL(type, "Editwindow") || STREQUAL(type, "Richeditwindow");
}

bool editorSetting(std::string_view key) {
    return PROFILESTRGET(GETIDEINIFILE(), "EditorOptionsDlg", key) == "1";
}

}  // namespace

std::string FLAGSTOSTR(int flags) {
    FRAME(FLAGSTOSTR);
    std::string names;
    for (const auto& [bit, name] : flagNames) {
        if ((flags & bit) != 0) ADDWORD(name, " ", names);
    }
    return STRTRIM(STRLOWER(names));
}

void EDITWNDSETSTATUS(const Object& window, bool on) {
    FRAME(EDITWNDSETSTATUS);
    STAMP();
    setFlag(window, STATUSBAR, on);
}

void EDITWNDSETNUMBERS(const Object& window, bool on) {
    FRAME(EDITWNDSETNUMBERS);
    STAMP();
    setFlag(window, NUMBERBAR, on);
}

void EDITWNDSETAUTOINDENT(const Object& window, bool on) {
    FRAME(EDITWNDSETAUTOINDENT);
    STAMP();
    setFlag(window, AUTOINDENT, on);
}

bool GETMODIFYPRIVATE(const Object& window) {
    FRAME(GETMODIFYPRIVATE);
    STAMP();
    return (GetFlags(window) & PRIVATE_MODIFY) != 0;
}

void SETMODIFYPRIVATE(const Object& window, bool modified) {
    FRAME(SETMODIFYPRIVATE);
    STAMP();
    setFlag(window, PRIVATE_MODIFY, modified);
}

int GETTOKENLEVEL() {
    FRAME(GETTOKENLEVEL);
    return editorSetting("HiliteOn") ? 1 : 0;
}

void EDITWNDSETTOKENS(const Object& window, int level) {
    FRAME(EDITWNDSETTOKENS);
    STAMP();
    std::string tokens;
    if (level == 1) tokens = MAKETOKENSTR(GETIDEINIFILE(), FILEGETEXT(EDITWNDGETFILENAME(window)));
    STAMP();
    setFlag(window, HILITE, level == 1);
    SetTokens(window, tokens);
    SetBlocks(window, BLOCKRULES(EDITWNDGETFILENAME(window)));
}

// ---- name, size and marks ----

std::string EDITWNDGETFILENAME(const Object& window) {
    FRAME(EDITWNDGETFILENAME);
    if (!IsLoaded(window)) return {};
    STAMP();
    std::string name = GetCaption(window);
    if (isMarked(window, name)) name.resize(name.size() - ModifyMark.size());
    return name;
}

int EDITWNDGETMAXLENGTH(const Object& window) {
    FRAME(EDITWNDGETMAXLENGTH);
    const std::string type = GetTypeof(window);
    if (STREQUAL(type, "Richeditwindow")) return 4000000;
    if (!STREQUAL(type, "Editwindow")) return 0;
    static constexpr std::array<std::string_view, 3> small{"Windows 95", "Windows 98", "Windows ME"};
    const std::string system = SystemInfo();
    for (const std::string_view name : small) {
        if (system == name) return 32767;
    }
    return 4000000;
}

void DRAWMODIFYINDICATOR(const Object& window) {
    FRAME(DRAWMODIFYINDICATOR);
    STAMP();
    const std::string name = EDITWNDGETFILENAME(window);
    STAMP();
    const bool modified = GetModify(window), marked = isMarked(window, GetCaption(window));
    STAMP();
    if (modified == marked) return;
    setFlag(window, CAPTION_MARKED, modified);
    SetCaption(window, modified ? name + std::string(ModifyMark) : name);
}

void EDITWNDSETFILENAME(const Object& window, const std::string& name) {
    FRAME(EDITWNDSETFILENAME);
    STAMP();
    setFlag(window, CAPTION_MARKED, false);
    SetCaption(window, name);
}

void INITFILE(const Object& window) {
    FRAME(INITFILE);
    STAMP();
    SetText(window, "");
    EDITWNDSETFILENAME(window, "");
    SetTokens(window, "");
    SetBlocks(window, "");
    STAMP();
    SetModify(window, false);
    SETMODIFYPRIVATE(window, false);
    SetStatus(window, "");
    SHOWBREAKPOINTS(window);
}

namespace {

// The lines that two texts have in common at their start, in bytes, and behind them at their end.
std::pair<std::size_t, std::size_t> commonEnds(const std::string& a, const std::string& b) {
    const std::size_t most = std::min(a.size(), b.size());
    std::size_t head = 0, tail = 0;
    while (head < most && a[head] == b[head]) head++;
    while (head > 0 && a[head - 1] != '\n') head--;
    while (tail < most - head && a[a.size() - 1 - tail] == b[b.size() - 1 - tail]) tail++;
    while (tail > 0 && a[a.size() - tail - 1] != '\n') tail--;
    return {head, tail};
}

void showReadOnly(const Object& window, const std::string& file) {
    const os::FileInfo info = os::infoOf(os::native(file));
    SetStatus(window, info.exists && !info.writable ? "Read-only file" : "");
}

}  // namespace

bool EDITWNDHASROOM(const Object& window, std::int64_t bytes) {
    FRAME(EDITWNDHASROOM);
    STAMP();
    const int most = EDITWNDGETMAXLENGTH(window);
    if (bytes <= 0 || GetTextLength(window) + bytes <= most) return true;
    Sound();
    SetStatus(window, "No room: a text has at most " + STR(most) + " bytes", StatusKind::Passes);
    STAMP();
    return false;
}

void EDITWNDCHANGETEXT(const Object& window, const std::string& text) {
    FRAME(EDITWNDCHANGETEXT);
    STAMP();
    const std::string before = GetText(window);
    if (before == text) return;
    const auto [head, tail] = commonEnds(before, text);
    ReplaceText(window, static_cast<int>(head) + 1, static_cast<int>(before.size() - head - tail),
                std::string_view(text).substr(head, text.size() - head - tail));
    STAMP();
}

void EDITWNDNOTELOADED(const Object& window, const std::string& file) {
    FRAME(EDITWNDNOTELOADED);
    STAMP();
    SetModify(window, false);
    SETMODIFYPRIVATE(window, false);
    NOTEFILESEEN(window, file);
    showReadOnly(window, file);
    STAMP();
    DRAWMODIFYINDICATOR(window);
}

// ---- full screen ----

void EDITWNDSETMAXSIZE(const Object& window, const Object& mainWindow) {
    FRAME(EDITWNDSETMAXSIZE);
    STAMP();
    if (!isEditWindow(window) || !STREQUAL(GetTypeof(mainWindow), "Dialog")) return;
    const std::string fullScreen = PROFILESTRGET(GETIDEINIFILE(), "EditorOptionsDlg", "FullScreenOn");
    if (fullScreen == "1") SetMaxPosition(window, Rect{});
    STAMP();
    if (fullScreen != "0") return;
    const Rect screen = ScreenSize();
    const int below = GetPosition(mainWindow, WINDOW_UNIT).h;
    const Rect frame = GetPosition(window, WINDOW_UNIT), client = GetPosition(window, CLIENT_UNIT);
    SetMaxPosition(window, Rect{screen.x, screen.y + below, screen.w - (frame.w - client.w),
                                screen.h - below - (frame.h - client.h)});
}

// ---- the window's events ----

namespace {

const RegisteredWindow registered("SDIEdit", SDIEDIT);

void loadCodeWindow(const Object& window) {
    LOADINIFILE(GETIDEINIFILE(), window, true, true);
    INITFILE(window);
    EDITWNDSETSTATUS(window, editorSetting("StatusBarOn"));
    EDITWNDSETNUMBERS(window, editorSetting("NumberBarOn"));
    EDITWNDSETAUTOINDENT(window, editorSetting("AutoIndentOn"));
    EDITWNDAPPLYLOOKS(window);
    SetMaxLength(window, EDITWNDGETMAXLENGTH(window));  // what is larger could not be opened again
}

void closeCodeWindow(const Object& window) {
    EDITWNDCLOSE(window, true);
    if (!EDITWNDGETFILENAME(window).empty()) return;
    SAVEINIFILE(GETIDEINIFILE(), window, true, true);
    KEEPZOOM(window);
}

void helpOnWord(const Object& window) {
    const std::string word = GETWORDATCURSOR(window);
    SHOWHELP(word.empty() ? "Code editor" : word);
}

}  // namespace

bool SDIEDIT(const Object& window, int event, const Object&, int parameter) {
    FRAME(SDIEDIT);
    STAMP();
    switch (event) {
    case KEYPRESS_EVENT:
        if (parameter == KEY_CTRL_CLICK) return GOTODECLARATION(window, true);
        if (parameter == KEY_MARGIN_CLICK) return TOGGLEBREAKPOINT(window, GetClickedLine(window)), true;
        if (parameter != KEY_F1 && parameter != KEY_F2) return false;
        if (parameter == KEY_F1)
            helpOnWord(window);
        else
            FILEINFODIALOG();
        break;
    case CHANGE_EVENT:
        SETMODIFYPRIVATE(window, true);
        DRAWMODIFYINDICATOR(window);
        UPDATEUNDOTYPINGITEMS();
        SetStatus(window, "", StatusKind::Passes);  // it told of the text before
        OFFERHELP(window);
        break;
    case TIMER_EVENT:
        EDITWNDAUTOBACKUP(window);
        UPDATEUNDOMENU();  // the menu may be opened by a key, without a command before it
        break;
    case INFO_EVENT: FILEINFODIALOG(); break;
    case LOAD_EVENT: loadCodeWindow(window); break;
    case CLOSE_EVENT: closeCodeWindow(window); break;  // only hidden: the window lives as long as the program
    default: return false;
    }
    STAMP();
    return true;
}

}  // namespace tarn
