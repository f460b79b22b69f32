// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/textview.h"

#include "ide/build/toolrun.h"
#include "ide/editor/textedit.h"
#include "ide/program/projedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windowplace.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/data/dbutil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/text/utf8.h"

MODULE("textview", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

// The folder of the Code window's class is searched first, then that of the main file, then the inherited
// paths.
std::string searchPath() {
    std::string paths = GETINHERITEDPATHS();
    for (const std::string& file : {COMPILERGETMAINFILE(), EDITWNDGETFILENAME(SDIEdit)}) {
        if (ISCLASSFILE(file)) paths = FILEGETDIR(file) + ";" + paths;
    }
    return paths;
}

struct Message {
    std::string file;
    int line = 0, number = 0;
};

// The bytes that the tool wrote, which name files; the window may show some of them in another form. Its lines are theirs.
constexpr std::string_view BytesValue = "bytes";

void setMessages(const Object& window, const std::string& bytes) {
    SetArrayValue(window, BytesValue, bytes);
    SetText(window, utf8::shown(bytes));
}

int lineStart(const std::string& text, int line) {
    int place = 1;
    for (; line > 1 && place > 0; --line) place = STRFIND("\n", text, place) + 1;
    return place;
}

Message messageAtCursor(const Object& window) {
    std::string text = GetText(window);
    int place = GetSelection(window).start;
    const std::string bytes = GetArrayValue(window, BytesValue);
    if (bytes != text && utf8::shown(bytes) == text) {
        place = lineStart(bytes, STRLINES(STRLEFT(text, place - 1)) + 1);
        text = bytes;
    }
    const std::string result = FILEGETERROR(text, place, searchPath());
    Message message;
    bool ok = false;
    message.file = STRREMOVEQUOTES(STRTOKEN(result, 1));
    message.line = CVTI(STRTOKEN(result, 2), ok);
    message.number = CVTI(STRTOKEN(result, 3), ok);
    if (message.file == "-") message.file.clear();
    return message;
}

void jumpToSource(const Object& window) {
    const Message message = messageAtCursor(window);
    if (message.file.empty() || message.line == 0)
        return MSGBOX("View Errors",
                      "Cannot jump to source code.\nThe file name and line number of the source file "
                      "cannot be found.");
    if (FileSize(message.file) < 0)
        return MSGBOX("View Errors", "Cannot jump to source code. The following source file:\n\n\t'" +
                                         message.file + "'\n\ndoes not exist.");
    EDITWNDOPEN(SDIEdit, message.file, false, message.line);
    Show(window, false);  // stays above the editor
    SetCaption(MAINCONTROL("codelabel"), EDITWNDGETFILENAME(SDIEdit));
}

void helpOnError(const Object& window) {
    if (GetCaption(window) == FoundTitle) return SHOWWINDOWHELP(window);
    const Message message = messageAtCursor(window);
    if (message.number == 0)
        return MSGBOX("View Errors", "Cannot get help for the error.\nThe error number cannot be found.");
    const std::string page = GETMESSAGEPAGE(message.number);
    if (page.empty()) return SHOWHELP(STR(message.number));
    MULTIHELP(0, page, 257, "");
}

// Where it was last; at first below the Code window's place, over the width of the screen.
void place(const Object& window) {
    const std::string ini = GETIDEINIFILE();
    LOADINIFILE(ini, window, true, false);
    if (HASPLACE("Viewdlg")) return;
    const Rect screen = ScreenSize();
    const int height = screen.h / 5;
    SetPosition(window, WINDOW_UNIT, Rect{screen.x, screen.y + screen.h - height, screen.w, height});
}

bool keyPressed(const Object& window, int key) {
    switch (key) {
    case KEY_ESCAPE: Unload(window); return true;
    case KEY_RETURN: jumpToSource(window); return true;
    case KEY_F1: helpOnError(window); return true;
    default: return false;
    }
}

}  // namespace

namespace {

const RegisteredWindow registered("ViewDlg", VIEWDLG);

}  // namespace

bool VIEWDLG(const Object& window, int event, const Object&, int parameter) {
    FRAME(VIEWDLG);
    STAMP();
    bool result = true;
    switch (event) {
    case LOAD_EVENT: place(window); break;
    case CLOSE_EVENT:
        SAVEINIFILE(GETIDEINIFILE(), window, true, false);
        result = false;
        break;
    case KEYPRESS_EVENT: result = keyPressed(window, parameter); break;
    case DBLCLICK_EVENT: jumpToSource(window); break;
    default: result = false;
    }
    STAMP();
    return result;
}

namespace {

void showText(const std::string& title, const std::string& text, const std::string& fontName, int fontSize) {
    if (!IsLoaded(ViewDlg)) Load(ViewDlg);
    SetCaption(ViewDlg, title);
    SetFontName(ViewDlg, fontName);
    SetFontSize(ViewDlg, fontSize);
    setMessages(ViewDlg, text);
    SetSelection(ViewDlg, 1, 0);
    Show(ViewDlg, false);
}

}  // namespace

void VIEWDIALOG(const std::string& title, const std::string& file, const std::string& fontName,
                int fontSize) {
    FRAME(VIEWDIALOG);
    std::string text;
    STAMP();
    if (FileSize(file) >= 0) LOADFILE(file, text);
    STAMP();
    showText(title, text, fontName, fontSize);
    STAMP();
}

void VIEWTEXT(const std::string& title, const std::string& text) {
    FRAME(VIEWTEXT);
    STAMP();
    showText(title, text, GetFontName(SDIEdit), GetFontSize(SDIEdit));
    STAMP();
}

}  // namespace tarn
