// SPDX-License-Identifier: Apache-2.0
//
// The shape that dialogs share, so that each of them behaves as users know it from the others: Esc and Cancel leave,
// F1 and Help show the help, OK checks what was entered, stores it and leaves. A dialog says what is its own in a
// DialogShape and hands its events over:
//
//     bool ARGUMENTSDLG(const Object& window, int event, const Object& control, int parameter) {
//         return DIALOGSHAPEEVENT(shape, window, event, control, parameter);
//     }
//
// Names are compared as they stand in the resource file, in lower case. A button that the dialog does not have has an
// empty name.
#pragma once

#include "kernel/windows/windowing.h"

#include <span>
#include <string>
#include <string_view>

namespace tarn {

// A button beside those that all dialogs have, and what it does.
struct DialogButton {
    std::string_view name;
    void (*action)(const Object& window);
};

struct DialogShape {
    std::string_view ok = "pushbutton1", cancel = "pushbutton2", help = "pushbutton3";
    // The settings file that keeps the controls under the window's name from one use to the next: they are restored at
    // LOAD_EVENT and stored by OK. Null: they are not kept.
    std::string (*settings)() = nullptr;
    // Shows the help of the window. Null: there is none, and F1 does nothing.
    void (*showHelp)(const Object& window) = nullptr;
    // What else LOAD_EVENT does, behind the restoring.
    void (*load)(const Object& window) = nullptr;
    // What is wrong with the entries, empty if nothing: then it is shown in a box and the dialog stays, with nothing
    // stored.
    std::string (*problem)(const Object& window) = nullptr;
    // What OK does with the entries, behind the storing.
    void (*accept)(const Object& window) = nullptr;
    // OK hides the window, so that the caller of its modal Show can read it, and unloads it afterwards.
    bool hides = false;
    // The dialog's own buttons, which outlive the shape.
    std::span<const DialogButton> buttons = {};
};

// True for an event that the shape handles. Errors of what it calls stay in the cell for the caller's stamp.
bool DIALOGSHAPEEVENT(const DialogShape& shape, const Object& window, int event, const Object& control,
                      int parameter);

}  // namespace tarn
