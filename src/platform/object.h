// SPDX-License-Identifier: Apache-2.0
//
// Names of windows and controls, and the constants of events, keys and types.
//
// A window is named by its name in the resource file, a control by its window and its number there. An Object
// is such a name: it may be made before the window is loaded and outlives it, and two are equal if they name
// the same control. Window names compare without regard to case.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform {

// The types stand in a namespace of their own, so that a call that passes one of them does not find the
// operations of this layer beside the wrappers that the kernel makes of them.
namespace types {

class Object {
public:
    Object() = default;  // names nothing
    explicit Object(std::string_view window, int number = 0);
    [[nodiscard]] const std::string& window() const { return *window_; }  // as it was first written
    [[nodiscard]] int number() const { return number_; }                  // 0: the window itself
    [[nodiscard]] bool isWindow() const { return number_ == 0; }
    [[nodiscard]] bool empty() const;
    [[nodiscard]] Object owner() const;  // the window
    friend bool operator==(const Object&, const Object&) = default;

private:
    const std::string* window_ = &none();  // interned: equal names, equal pointers
    int number_ = 0;
    static const std::string& none();
};

enum class Type {
    None,
    Dialog,
    Editwindow,
    Richeditwindow,
    Label,
    Edit,
    Combobox,
    Listbox,
    Iconlist,
    Pushbutton,
    Bitmapbutton,
    Checkbox,
    Radiobutton,
    Groupbox,
    Scrollbar,
    Progressbar,
    Shape,
    Icon,
    Image,
    Menuitem,
    Screen,
    Printer,
    Clipboard,
};
}  // namespace types
using namespace types;

std::string_view typeName(Type type);      // "Dialog", ...
Type typeFromName(std::string_view name);  // any case; None if there is no such type
inline bool isWindowType(Type t) {
    return t == Type::Dialog || t == Type::Editwindow || t == Type::Richeditwindow;
}
inline bool isEditWindowType(Type t) {
    return t == Type::Editwindow || t == Type::Richeditwindow;
}

namespace constants {

enum Event : int {
    ACTIVATE_EVENT = 32769,
    CHANGE_EVENT = 32770,
    MOUSEDOWN_EVENT = 32771,
    COMMAND_EVENT = 32772,
    DBLCLICK_EVENT = 32773,
    KEYPRESS_EVENT = 32775,
    LOAD_EVENT = 32776,
    INFO_EVENT = 32777,
    RESIZE_EVENT = 32778,
    TIMER_EVENT = 32780,
    CLOSE_EVENT = 32781,
};

enum Key : int {
    KEY_RETURN = 13,
    KEY_ESCAPE = 27,
    KEY_LEFT = 37,
    KEY_UP = 38,
    KEY_RIGHT = 39,
    KEY_DOWN = 40,
    KEY_DELETE = 46,
    KEY_F1 = 112,
    KEY_F2 = 113,
    KEY_F3 = 114,
    KEY_F4 = 115,
    KEY_CTRL_CLICK = 0x1001,  // a click with Ctrl on a word of an edit window, which has the caret then
};

// Flags of an edit window.
enum EditFlag : int {
    ALLOWOVERWRITE = 16,
    AUTOINDENT = 32,
    HILITE = 64,
    READONLY = 128,
    SELECTALL = 256,
    STATUSBAR = 512,
    TABSHIFT = 1024,
    PRIVATE_MODIFY = 2048,
    NUMBERBAR = 4096,
};

// What an edit window shows around its text.
enum Look : int {
    LOOK_LINE = 1,      // the line with the caret
    LOOK_BRACKETS = 2,  // the bracket at the caret and its partner
    LOOK_BLANKS = 4,    // blanks and tabs
    LOOK_FOLDS = 8,     // the margin with the blocks that can be folded
    LOOK_CHANGES = 16,  // the margin with the lines that were changed
    LOOK_CHOICES = 32,  // for the program: it offers words by itself
};

// What a word in the status bar of an edit window does.
enum class StatusKind { Stays, Passes };

enum LineEnds : int { ENDS_LF = 0, ENDS_CRLF = 1, ENDS_CR = 2, ENDS_MIXED = 3, ENDS_NONE = 4 };

// The flag of an edit. Its text is the name of the keys that the user pressed last in it ("Ctrl+Shift+K"), and
// CHANGE_EVENT tells of each press; Backspace and Del empty it. Tab, Return, Escape, F1 and the mnemonics of the window
// keep their meaning, and a key without a name does nothing.
enum : int { KEYFIELD = 8192 };

}  // namespace constants
using namespace constants;

// The objects of the system, which are always there: their types are Screen, Printer and Clipboard. A printer
// other than the default one has a number (see PrinterList).
inline const Object Sysscreen("Sysscreen"), Sysprinter("Sysprinter"), Sysclipboard("Sysclipboard");

// A window function: true means handled or, for CLOSE_EVENT, veto. A key that is handled goes no further.
// `parameter` is told beside each event; for a COMMAND_EVENT that came through `Command` it is 1 and
// `commandText()` (windowing.h) holds the text, otherwise 0.
using WindowFunction = bool (*)(const Object& window, int event, const Object& control, int parameter);

namespace types {

struct Rect {
    int x = 0, y = 0, w = 0, h = 0;  // pixels
    friend bool operator==(const Rect&, const Rect&) = default;
};

struct Selection {
    int start = 1;   // 1-based byte position
    int length = 0;  // bytes
};

struct Font {
    std::string name;  // empty: the desktop's (a fixed-width one in edit windows)
    int size = 0;      // points; 0: the desktop's
    bool bold = false, italic = false;
    friend bool operator==(const Font&, const Font&) = default;
};

enum class BoxIcon { None, Information, Question, Warning, Error };

// A picture value: what it measures, in pixels, and the handle by which the program knows it; 0 is none.
struct Picture {
    int width = 0, height = 0, handle = 0;
    friend bool operator==(const Picture&, const Picture&) = default;
};

// What a rectangle keeps to while the user drags it, in pixels.
struct TrackLimits {
    int handle = 4;               // how wide the edges are by which it is resized
    int width = 12, height = 12;  // the smallest size
    int step = 1;                 // of the grid
};

struct PrintChoice {
    Object printer;        // empty: the dialog was cancelled
    int flags = 0;         // PRINT_SELECTION: the selection alone
    int from = 0, to = 0;  // pages; 0: all
    int copies = 1;
};

struct Process {
    int id = 0;
    std::string name;
};

// What the user sits before.
struct Desktop {
    int monitors = 0;   // 0: there is no screen, and nothing of the rest is known
    Rect screen;        // the whole of the screen with the active window
    int iconSize = 0;   // pixels of the side of a large icon
    bool dark = false;  // its letters are lighter than their ground
};

struct CommTimeouts {
    int read = 1000, write = 1000;  // milliseconds
};

}  // namespace types

namespace constants {
enum ShapeKind : int {
    RECTANGLE_SHAPE = 0,
    ROUNDRECTANGLE_SHAPE = 1,
    ELLIPSE_SHAPE = 2,
    HORIZONTALLINE_SHAPE = 3,
    VERTICALLINE_SHAPE = 4,
};

enum TrackMode : int { TRACK_NEW = 0, TRACK_MOVE = 1 };

enum PrintFlag : int { PRINT_SELECTION = 32 };

enum PrinterStatus : int { PRINTER_READY = 0, PRINTER_BUSY = 1, PRINTER_STOPPED = 2 };

enum CommError : int { COMM_OVERRUN = 1, COMM_PARITY = 2, COMM_FRAMING = 4, COMM_BREAK = 8 };

enum Unit : int {
    WINDOW_UNIT =
        0,  // the frame, in screen pixels (a window); the control's rectangle in its window (a control)
    CLIENT_UNIT = 1,  // the area inside the frame (a window); as WINDOW_UNIT (a control)
};
}  // namespace constants

// What an operation of this layer gives back: 0 or a code of the kernel's table of run-time errors.
using Code = std::int32_t;
inline constexpr Code Ok = 0;
inline constexpr Code WindowNotLoaded = 702;
inline constexpr Code NoSuchProperty = 703;
inline constexpr Code NotAControlArray = 707;
inline constexpr Code GraphicsNotStarted = 709;
inline constexpr Code BitmapInvalid = 710;
inline constexpr Code WindowNotInResources = 721;
inline constexpr Code ControlNotInResources = 723;
inline constexpr Code ControlInvalid = 727;
inline constexpr Code FileNotWritten = 652;
inline constexpr Code PrinterNotReady = 922;
inline constexpr Code PrinterFailed = 923;
inline constexpr Code PrintNotStarted = 924;

template <class T>
struct Answer {
    T value{};
    Code code = Ok;
};

}  // namespace tarn::platform
