// SPDX-License-Identifier: Apache-2.0
//
// Where the keys of a window go, for windows that keep what was entered in a control when the user leaves it. Only a
// window that asked hears of it, and only until it is unloaded. Cost: a look-up of the window.
#pragma once

#include "platform/object.h"

#include <vector>

namespace tarn::platform {

class Control;
class Window;

// Sent to the window function, with the control as its sender, when the user has gone from one control to another, or to
// another window of the program. An event loop sends it, so what handles it may ask the user.
inline constexpr int LEAVE_EVENT = 32790;

Code WatchFocus(const Object& window);  // 702: it is not loaded
// A window that asked hears these keys as its own, whatever menu they belong to elsewhere: with Ctrl (0x1000) and Shift
// (0x2000) added, as KEYPRESS_EVENT. Keys that a text with the focus needs stay with the text.
Code TakeKeys(const Object& window, std::vector<int> keys);
bool takesKey(const Window& window, int key);  // for views
Object GetFocus(const Object& window);         // of a window that asked; empty: none has it
Code SetFocus(const Object& control);          // in its window, which stays where it is
void userFocus(Control& control);              // for views: the user has gone there
void leaveFocus(const Window& window);         // another window has become active

}  // namespace tarn::platform
