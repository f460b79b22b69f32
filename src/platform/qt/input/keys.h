// SPDX-License-Identifier: Apache-2.0
//
// Keys of the model (object.h) and keys of Qt. A shortcut of the model is the key code plus 0x1000 for Ctrl,
// 0x2000 for Shift and 0x4000 for Alt.
#pragma once

#include <QString>

class QKeyEvent;
class QWidget;

namespace tarn::platform::qt {

int modelKey(int qtKey);                    // letters, digits and named keys; else 0
int modelShortcut(const QKeyEvent& event);  // 0 likewise
QString shortcutText(int shortcut);         // "Ctrl+S" in the user's language; empty for 0

// Keys that the focused widget needs for itself whatever the menus say: a text its editing keys, a list its
// arrows.
bool widgetNeeds(const QWidget& focus, const QKeyEvent& event);
// What a field that holds the name of keys makes of a key press: nothing of its own (the key goes on as elsewhere), a
// new text, or no text, which empties it.
struct PressedKeys {
    bool taken = false, named = false;
    int shortcut = 0;  // 0: empty it
};
PressedKeys keysPressed(const QKeyEvent& event);
// Plain keys that a window function hears of before anything else, given where the focus is.
bool windowHears(const QWidget* focus, const QKeyEvent& event);
// Keys that a window function hears of last, if no menu has them, in a window without a control that takes the keyboard:
// Tab, and what has a name and is pressed with Ctrl or Shift. They come as shortcuts.
bool windowHearsLast(const QKeyEvent& event);

}  // namespace tarn::platform::qt
