// SPDX-License-Identifier: Apache-2.0
//
// The window family: windowing operations as programs of the language call them.
#include "library/system/windows.h"

#include "kernel/values/sets.h"
#include "library/system/constants.h"
#include "os/paths.h"
#include "os/process.h"
#include "os/text/ascii.h"

#include <algorithm>

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

OwnedSet FILENAMESET() {
    FRAME(FILENAMESET);
    OwnedSet set;
    STAMP();
    SetInit(set.get(), FirstNameChar, LastNameChar);
    for (const char c : FILENAMECHARS) SetInclude(c, set.get());
    return set;
}

Object PREDEFINEDOBJECT(std::string_view word) {
    struct Row {
        std::string_view word;
        const Object& object;
    };
    const Row rows[] = {{"printer", printer}, {"screen", screen}, {"clipboard", clipboard}};
    for (const Row& row : rows)
        if (ascii::equal(row.word, word)) return row.object;
    return {};
}

Object ACTIVEWINDOW() {
    FRAME(ACTIVEWINDOW);
    return ActiveWindow();
}

Object FINDCONTROL(const Object& window, std::string_view name) {
    FRAME(FINDCONTROL);
    return FindControl(window, name);
}

Object FINDCONTROL(const Object& window, std::string_view array, int place) {
    FRAME(FINDCONTROL);
    STAMP();
    if (!IsLoaded(window)) return {};
    for (const Object& control : ControlList(window)) {
        const platform::Answer<std::string> name = platform::Controlarray(control);
        if (name.code == platform::Ok && ascii::equal(name.value, array))
            return ControlElement(control, place);
    }
    return {};
}

Object FINDWINDOW(std::string_view name) {
    FRAME(FINDWINDOW);
    return FindWindow(name);
}

Object FINDWINDOW(int handle) {
    FRAME(FINDWINDOW);
    const Object object = FindHandle(handle);
    return object.isWindow() ? object : Object();
}

int FINDWINDOWHANDLE(const std::string& caption) {
    FRAME(FINDWINDOWHANDLE);
    STAMP();
    for (const Object& window : WindowList())
        if (GetCaption(window) == caption) return GetHandle(window);
    return 0;
}

int FINDWINDOWHANDLE(const std::string& windowClass, const std::string& caption) {
    FRAME(FINDWINDOWHANDLE);
    STAMP();
    return FindWindowHandle(windowClass, caption);
}

bool ISLOADED(const Object& object) {
    FRAME(ISLOADED);
    return IsLoaded(object);
}

// ---- boxes ----

void MSGBOX(const std::string& text) {
    FRAME(MSGBOX);
    STAMP();
    MsgBox(std::string(paths::stem(os::executablePath())), text, "");
}

void MSGBOX(const std::string& title, const std::string& text) {
    FRAME(MSGBOX);
    STAMP();
    MsgBox(title, text, "");
}

std::string MSGBOX(const std::string& title, const std::string& text, const std::string& buttons) {
    FRAME(MSGBOX);
    STAMP();
    return MsgBox(title, text, buttons);
}

std::string MSGBOX(const std::string& title, const std::string& text, const std::string& buttons,
                   BoxIcon icon) {
    FRAME(MSGBOX);
    STAMP();
    return MsgBox(title, text, buttons, icon);
}

std::string MSGBOX(const std::string& title, const std::string& text, const std::string& buttons,
                   BoxIcon icon, int defaultButton) {
    FRAME(MSGBOX);
    STAMP();
    return MsgBox(title, text, buttons, icon, defaultButton);
}

int MSGBOX(const std::string& title, const std::string& text, int flags) {
    FRAME(MSGBOX);
    STAMP();
    return MsgBoxEx(title, text, flags);
}

bool MSGBOX(const std::string& title, const std::string& text, const std::string& buttons,
            const std::string& yes) {
    FRAME(MSGBOX);
    STAMP();
    return MsgBox(title, text, buttons) == yes;
}

std::string INPUTBOX(const std::string& title, const std::string& prompt, const std::string& value) {
    FRAME(INPUTBOX);
    STAMP();
    return InputBox(title, prompt, value);
}

std::string LISTBOX(const std::string& title, const std::string& prompt, const std::string& rows) {
    FRAME(LISTBOX);
    STAMP();
    return ListBox(title, prompt, rows);
}

PrintChoice PRINTDIALOG(const Object& owner, int flags) {
    FRAME(PRINTDIALOG);
    STAMP();
    return PrintDialog(owner, flags);
}

std::string PRINTERS() {
    FRAME(PRINTERS);
    std::string names;
    STAMP();
    for (const Object& one : PrinterList()) names += GetName(one) + "\n";
    return names;
}

// ---- timers and events ----

bool SETTIMER(const Object& owner, int milliseconds) {
    FRAME(SETTIMER);
    STAMP();
    if (!IsLoaded(owner)) return false;
    SetTimer(owner, milliseconds);
    return true;
}

bool SETTIMER(const Object& window, int number, int milliseconds) {
    FRAME(SETTIMER);
    STAMP();
    return SETTIMER(Object(window.window(), number), milliseconds);
}

bool KILLTIMER(const Object& owner) {
    FRAME(KILLTIMER);
    STAMP();
    return SETTIMER(owner, 0);
}

bool KILLTIMER(const Object& window, int number) {
    FRAME(KILLTIMER);
    STAMP();
    return SETTIMER(window, number, 0);
}

void POSTMESSAGE(const Object& object, int event, int parameter) {
    FRAME(POSTMESSAGE);
    STAMP();
    SetError(PostMessage(object, event, parameter));
}

void SOUND() {
    FRAME(SOUND);
    Sound();
}

// ---- places ----

void SETWINDOWPOS(const Object& window, int x, int y, int width, int height) {
    FRAME(SETWINDOWPOS);
    STAMP();
    SetPosition(window, WINDOW_UNIT, {x, y, width, height});
}

void STARTGRAPH(const Object& object) {
    FRAME(STARTGRAPH);
    STAMP();
    StartGraph(object);
}

namespace {

// The place of an edge; `before` and `after` are the size of the window in its direction.
int moved(int edge, int before, int after) {
    const bool behindCentre = std::int64_t{edge} * 2 > before;
    return behindCentre ? edge + after - before : edge;
}

}  // namespace

Rect ADJUSTEDPOS(const Rect& control, const Rect& before, const Rect& after) {
    const int left = moved(control.x, before.w, after.w);
    const int top = moved(control.y, before.h, after.h);
    const int right = moved(control.x + control.w, before.w, after.w);
    const int bottom = moved(control.y + control.h, before.h, after.h);
    return {left, top, std::max(right - left, 0), std::max(bottom - top, 0)};
}

void ADJUSTCONTROLPOS(const Object& window, const Object& control, const Rect& before) {
    FRAME(ADJUSTCONTROLPOS);
    STAMP();
    const Rect now = GetPosition(control, WINDOW_UNIT);
    const Rect after = GetPosition(window, CLIENT_UNIT);
    STAMP();
    if (ErrorCell() != 0) return;
    SetPosition(control, WINDOW_UNIT, ADJUSTEDPOS(now, before, after));
}

}  // namespace tarn
