// SPDX-License-Identifier: Apache-2.0
//
// The object model: what is known of every loaded window and control, with or without a screen. Views read it
// and report the user's doings through the `user...` functions, which change the state and send the events.
#pragma once

#include "platform/model/view.h"
#include "platform/object.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarn::platform {

struct Graph;

struct Row {
    std::string text, picture;
};

class Control {
public:
    virtual ~Control() = default;
    Object object;
    Type type = Type::None;
    std::string name;   // as in the resource file
    int handle = 0;     // unique among all objects ever loaded
    std::string array;  // name of the control array it belongs to, else empty
    int index = 0;      // its place there
    int level = 0;      // menu items: 1 for the menu bar, 2 below it, ...
    int shortcut = 0;   // menu items: key + 0x1000 Ctrl + 0x2000 Shift + 0x4000 Alt; 0 none

    std::string caption, tokens, picture, hint, status, passing;
    std::unique_ptr<TextStore> text;  // edit windows, edits, combo boxes
    std::vector<Row> rows;
    int listIndex = 0;
    int value = 0, minimum = 0, maximum = 100, maxLength = 0, passwordChar = 0, comboStyle = 1, flags = 0;
    bool checked = false, enabled = true, visible = true, readonly = false;
    bool isDefault = false, isCancel = false;  // push buttons: what Return and Esc press
    bool tabStop = true;
    int multiline = 0;   // edits: 1 if several lines
    int alignment = 0;   // 0 left, 1 right, 2 centre; check boxes and radio buttons: 0 mark on the right, 1
                         // left; bars: 0 by their shape, 4 horizontal, 5 vertical
    int border = 0;      // 0 none; labels, images, bars, shapes: 1 line, 2 sunken; others: 1 as usual
    int scrollBars = 0;  // 1 horizontal, 2 vertical, 3 both
    int shape = 0;       // shapes: 0 rectangle, 1 round rectangle, 2 ellipse, 3, 4 horizontal, vertical line
    bool useTabStops = false;  // icon lists: TAB parts columns
    Rect position;             // pixels, in the window's client area; a window: its frame on the screen
    Rect units;                // as in the resource file, resource units
    Font font;
    int foreColour = -1, backColour = -1;  // 0xBBGGRR, -1: the desktop's
    std::shared_ptr<Graph> graph;          // while it is drawn on; see graph_internal.h
    void* widget = nullptr;                // the view's
    // Edit windows; operations/edits.h tells what they mean.
    int looks = LOOK_LINE, tabWidth = 4, zoom = 0, typed = 0, tipPlace = 0;
    Selection tipMark;
    bool folded = false, markMargin = false;
    int clickedLine = 0;
    std::string blocks, choices, callTip;
};

class Window : public Control {
public:
    WindowFunction function = nullptr;
    std::vector<std::unique_ptr<Control>> controls;           // in the order of the resource file
    std::vector<std::unique_ptr<Control>> menuItems;          // in order; `level` tells the nesting
    std::vector<std::pair<std::string, std::string>> values;  // named values, in the order of their setting
    // Limits of the client area's size, pixels; 0 is none. x and y of the largest one are where a maximised
    // window goes.
    Rect minimum_, maximum_;
    bool closeBox = true, maxButton = true, minButton = true;
    bool owned = false;        // stays above the main window
    bool onTop = false;        // stays above all windows
    bool clientWide = false, clientHigh = false;  // given last as the size of its client area
    int borderStyle = 2;       // 0 none, 1 fixed, 2 sizable
    int state = 0;             // 0 normal, 1 minimised, 2 maximised
    bool shown = false, modal = false, closing = false;
    std::string resourceFile;  // where it came from
};

// All loaded windows in the order of loading.
const std::vector<std::unique_ptr<Window>>& windows();
Window* findWindow(const Object& object);    // the window of an object; null if it is not loaded
Control* findControl(const Object& object);  // the control, or the window itself

// What the user did. Each changes the model first and then sends the event; the view has nothing else to do.
void userCommand(Control& control);           // pressed, picked
void userChange(Control& control);            // edits: after the TextStore changed
void userValue(Control& control, int value);  // check box, radio button, scroll bar
void userRow(Control& control, int row);      // list or combo box selection
// The mouse: places are pixels of the window's client area. True: handled, the view does nothing more with it.
bool userMouseDown(Control& control, int x, int y);
void userDoubleClick(Control& control, int x, int y);
bool userInfo(Control& control, int x, int y);  // a right click
// Where the mouse goes from and to at the next TrackRect of a view without a screen.
void userDrag(Point pressed, Point released);
bool userKey(Window& window, Control* focus, int key);  // true: handled, goes no further
void userClose(Window& window);                         // the window's close button
void userActivate(Window& window);
void userReturn(Window& window);   // the user comes back from another program
void userColours(Window& window);  // chooses other colours: a RESIZE_EVENT, to draw again
void userMoved(Window& window, const Rect& frame, int state);
void timerFired(Control& owner);

// The keys of a shortcut by their name, as resource files have them: "Ctrl+S"; empty for 0 and for a key without one.
std::string shortcutName(int shortcut);
// Whether a text with the focus needs the keys for itself: to copy, undo, delete, or move the caret.
bool isTextKey(int shortcut);

// What is going on, for views and for whoever plays the user.
Window* topModal();  // the innermost window that is shown modally; null if none is
int eventDepth();    // how many window functions are running, one inside the other
bool waiting();      // inside WaitEvents: a tool runs, or the splash is shown
bool busy();         // SetBusy is on
// False while the window takes no input: a modal one is open above it, or the program is busy.
bool takesInput(const Window& window);

// A control that no window has, of a property list; null if that is none of a control.
std::unique_ptr<Control> makeLoose(std::string_view properties);
// The text store of the model itself.
std::unique_ptr<TextStore> makePlainText();

}  // namespace tarn::platform
