// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations of the debugger's window: one list, a status text and a toolbar, which stay usable while all
// other windows of the program are painted but deaf. A process has at most one. It is no window of a resource file and
// is not among the windows of the program.
//
// Without a screen the terminal takes the part of the window, if the standard input is a terminal, a pipe or a file: it
// shows the status and the lines around the selected one on the standard error, and takes the commands as words. At the
// end of that input every stop is left at once.
//
// The handler is called inside of ActivateDebug. While the program runs, the window can be looked at, and only two
// things can be done there: Command 101 reaches the handler from the program's event loop, or from a statement; and
// the window's own button, Ctrl+Break or closing the window set the user's break.
//
// The user's break (GetUserBreak, SetUserBreak) is also set by the signal DebugBreakSignal while the window stands, and
// by the terminal's interrupt key where the terminal takes the part of the window. A program that does not come to its
// event loop hears the user all the same: GetUserBreak, which a debugged program asks at each statement, lets the window
// work every 50 ms or so, and keeps what is typed for other windows until later.
//
// Lines are numbered from 1; what a line that does not exist is asked for is empty, and telling it something does
// nothing. Cost: filling the list is linear in the text; everything else is constant.
#pragma once

#include "platform/object.h"

#include <csignal>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform {

namespace types {

class DebugWindow;  // stands from StartDebug to EndDebug

enum class DebugMessage {
    Command,      // a button, or its key: `number` is the command's
    DoubleClick,  // on a line of the list, or Return there: `number` is the line
    Help,         // F1, or the window's help
    Edit,  // F2 on a line: its value, or the rule of its breakpoint, is to be changed: `number` is the line
    Hover,  // the pointer rests on a word of a line: `number` is the line, `text` its beginning up to the end of
            // the word, as it is shown. The handler answers by SetDebugTip
    Close,  // the user has closed the window
};
struct DebugEvent {
    DebugMessage message = DebugMessage::Command;
    int number = 0;
    std::string text;
};
using DebugHandler = std::function<void(DebugWindow& window, const DebugEvent& event)>;

// Flags of a line.
enum DebugFlag : int { DEBUG_BREAKPOINT = 1, DEBUG_CURRENT = 2, DEBUG_CHANGED = 4, DEBUG_RULE = 8 };

enum class DebugMarker { None, Expand, Collapse };

struct DebugPlace {
    int left = 0, top = 0, width = 0,
        height = 0;  // of the frame, in pixels; width or height 0: the view chooses
    friend bool operator==(const DebugPlace&, const DebugPlace&) = default;
};

}  // namespace types

// What whoever started a debugged program sends to break into it. A process without the window takes no notice of it.
inline constexpr int DebugBreakSignal = SIGURG;

// Makes the window and shows it; null if there is one already. `bitmapNames` has a picture's name on each line, an
// empty line for a gap; the buttons send 101 and up, a gap takes no number. What `handler` does may start a box or ask
// for a text, not a second ActivateDebug. A place that is larger than the screen is made to fit. Without a place the view
// chooses one that leaves `beside` free, if that is told and there is room.
DebugWindow* StartDebug(const Object& owner, std::string_view caption, std::string_view bitmapNames,
                        std::string_view iconName, DebugHandler handler, const DebugPlace& place,
                        const DebugPlace& beside = {});
// Brings the window to the front and returns when the handler has called LeaveDebug. Until then the program's own
// windows are painted, and take neither keys nor the mouse; their timers rest.
void ActivateDebug(DebugWindow& window);
void LeaveDebug(DebugWindow& window);
void EndDebug(DebugWindow* window);  // null is allowed

void SetDebugCaption(DebugWindow& window, std::string_view caption);
std::string GetDebugCaption(const DebugWindow& window);
void SetDebugStatus(DebugWindow& window, std::string_view text);  // control 302
std::string GetDebugStatus(const DebugWindow& window);
DebugPlace GetDebugPlace(const DebugWindow& window);  // where it stands; width 0: it was never on a screen
void SetDebugTip(DebugWindow& window, std::string_view text);  // shown at the pointer; empty hides it

// ---- the list, control 201 ----

// Fills the list with the lines of a text: LF ends a line, and a text without an end of its last line has one all the
// same. Flags, markers, numbers and extent are gone, nothing is selected.
void DebugAddstrings(DebugWindow& window, std::string_view text);
int DebugCount(const DebugWindow& window);
std::string DebugLine(const DebugWindow& window, int line);
int DebugFlags(const DebugWindow& window, int line);
void SetDebugFlags(DebugWindow& window, int line, int flags);
DebugMarker GetDebugMarker(const DebugWindow& window, int line);
void SetDebugMarker(DebugWindow& window, int line, DebugMarker marker);
int DebugSelected(const DebugWindow& window);                  // 0 for none
void DebugSelect(DebugWindow& window, int line, bool scroll);  // 0 for none; `scroll` brings it into view
int DebugTop(const DebugWindow& window);                       // the first line that is seen
void SetDebugTop(DebugWindow& window, int line);
// A margin shows the numbers of the lines; they are no part of the text. Off at first.
void SetDebugNumbers(DebugWindow& window, bool on);
void DebugExtent(DebugWindow& window);  // the longest line and 30 pixels can be reached by scrolling sideways
void DebugRepaint(DebugWindow& window);

}  // namespace tarn::platform
