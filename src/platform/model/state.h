// SPDX-License-Identifier: Apache-2.0
//
// The model's own state and the ways through which everything in it is made, reached and destroyed. Only the
// files of this folder include it.
//
// Window functions may unload any window, their own too. So nothing here keeps a pointer to a window or a
// control over an event: handles are kept instead, and what was unloaded is freed only when the next event
// begins with no other one running.
#pragma once

#include "os/instance.h"
#include "platform/model/drawscale.h"
#include "platform/model/model.h"
#include "platform/operations/boxhelp.h"
#include "platform/resources/rcx.h"

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

namespace tarn::platform {

struct State {
    std::vector<std::unique_ptr<Window>> windows;
    std::vector<std::unique_ptr<Window>> unloaded;  // to be freed
    std::vector<std::unique_ptr<Control>> removed;  // menu items, to be freed
    std::unordered_map<int, Control*> byHandle;     // windows and controls that are alive
    std::unordered_map<const std::string*, WindowFunction> functions;
    std::vector<int> modal;                    // handles of the windows shown modally, the innermost last
    std::vector<int> activation;               // handles of the windows that were active, the active one last
    std::deque<os::InstanceCommand> commands;  // of later copies, not yet run
    Object main;                               // set by MainLoop
    std::map<Type, std::unique_ptr<Control>> system;  // screen and clipboard, once asked for
    std::vector<std::unique_ptr<Control>> printers;   // by number, from 1
    std::map<int, std::pair<std::string, std::string>>
        elsewhere;                      // class and caption of other copies' windows
    std::map<int, int> results;         // of the windows that are shown modally, by handle
    std::map<int, DrawLook> drawLooks;  // of the windows and images that have one, by handle
    std::vector<Object> commanding;     // senders of the COMMAND_EVENTs being handled, the innermost last
    HelpViewer helpViewer = nullptr;
    BoxHelp boxHelp = nullptr;
    std::optional<std::pair<Point, Point>> drag;  // of the next TrackRect; see userDrag
    std::string commandText;
    int lastHandle = 0;
    int depth = 0, waiting = 0, busy = 0, loops = 0;
    bool quit = false;
};

State& state();

Control* findSystem(const Object& object);      // screen, printer, clipboard; null for other objects
bool isSystemName(const Object& object);        // of one of them, be it there or not
Object printerObject(const std::string& name);  // the printer of that name, which need not be there any more
void putValues(Window& window, const std::vector<std::string>& values);  // "Name=value" each

Window* windowOfHandle(int handle);  // null if it is gone
bool isAlive(const Control& control);
Window& windowOf(const Control& control);  // of a control that is alive
int newHandle();
void enroll(Control& control);  // gives it a handle

// Runs the window function. False if there is none, or if it does not handle the event.
bool sendEvent(const Object& window, int event, const Object& sender, int parameter);
// Frees what was unloaded, unless an event is being handled.
void settle();
// Runs what later copies asked for, unless an event is being handled or a modal window is open.
void runCommands();
void activate(Window& window);
void destroy(Window& window);
void setShown(Window& window, bool shown);
bool runLoop(const std::function<bool()>& until);  // false if the view gave up

Code makeWindow(const Object& object, const WindowTemplate& from, const std::string& file,
                const std::vector<std::string>& values = {});
std::unique_ptr<Control> makeMenuitem(const Control& like);
void numberArrays(Window& window);  // sets `index` of all members of control arrays
bool hasText(Type type);
bool hasRows(Type type);
int shortcutFromText(std::string_view text);  // "Ctrl+S"; 0 if it is none

// The members of the array of `control`, in order; empty if it is in none.
std::vector<Control*> arrayOf(Control& control);
// The radio buttons that exclude each other: those of its array, or those next to it that are in none.
std::vector<Control*> radioGroup(Control& radio);
void setRadio(Control& radio, int value);
void setRow(Control& list, int row);

}  // namespace tarn::platform
