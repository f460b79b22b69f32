// SPDX-License-Identifier: Apache-2.0
//
// The window family of the system library: objects by name, boxes, timers, events and places. Each is a thin
// form of a windowing operation; what that does, and its errors, stand in platform/operations/. Lists of names
// are line texts.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>

namespace tarn {

// ---- finding; an empty object, and 0, for what is not there ----
Object ACTIVEWINDOW();
Object FINDCONTROL(const Object& window, std::string_view name);              // any case
Object FINDCONTROL(const Object& window, std::string_view array, int place);  // of a control array, from 1
Object FINDWINDOW(std::string_view name);                                     // a loaded one, any case
Object FINDWINDOW(int handle);
int FINDWINDOWHANDLE(const std::string& caption);  // of a window of this program, by its whole caption
int FINDWINDOWHANDLE(const std::string& windowClass, const std::string& caption);  // other copies too
bool ISLOADED(const Object& object);

// ---- boxes ----
void MSGBOX(const std::string& text);  // under the program's name; one OK
void MSGBOX(const std::string& title, const std::string& text);
// The caption of the button that was pressed; empty if the box was closed. One button a line.
std::string MSGBOX(const std::string& title, const std::string& text, const std::string& buttons);
std::string MSGBOX(const std::string& title, const std::string& text, const std::string& buttons,
                   BoxIcon icon);
std::string MSGBOX(const std::string& title, const std::string& text, const std::string& buttons,
                   BoxIcon icon, int defaultButton);
int MSGBOX(const std::string& title, const std::string& text, int flags);  // see MsgBoxEx
bool MSGBOX(const std::string& title, const std::string& text, const std::string& buttons,
            const std::string& yes);  // whether that button was pressed
std::string INPUTBOX(const std::string& title, const std::string& prompt, const std::string& value = {});
std::string LISTBOX(const std::string& title, const std::string& prompt, const std::string& rows);
PrintChoice PRINTDIALOG(const Object& owner, int flags = 0);
std::string PRINTERS();  // their names, the default one first

// ---- timers and events ----
// TIMER_EVENT to the window again and again; true if the window is there. A control, or a number of one, has
// a timer of its own; 0 is the window's.
bool SETTIMER(const Object& owner, int milliseconds);
bool SETTIMER(const Object& window, int number, int milliseconds);
bool KILLTIMER(const Object& owner);
bool KILLTIMER(const Object& window, int number);
// Sends the event from the next round of an event loop; 702 for a window that is not loaded.
void POSTMESSAGE(const Object& object, int event, int parameter);
void SOUND();

// ---- places, in pixels ----
void SETWINDOWPOS(const Object& window, int x, int y, int width, int height);
void STARTGRAPH(const Object& object);  // drawing begins
// Where a control goes when the client area of its window changes from one size to another: each of its edges
// that lay right of the centre, or below it, keeps its distance to the right or lower side; the others stay.
// So a control that spans the centre is stretched. An edge at the centre itself stays.
Rect ADJUSTEDPOS(const Rect& control, const Rect& before, const Rect& after);
// Moves the control so; `before` is the client area that the window had.
void ADJUSTCONTROLPOS(const Object& window, const Object& control, const Rect& before);

}  // namespace tarn
