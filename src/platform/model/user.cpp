// SPDX-License-Identifier: Apache-2.0
//
// What the user did, as a view reports it. Each function changes the model and then sends the event; what it
// was given may be gone when it returns. A window that takes no input hears nothing.
#include "platform/model/debugger/debugwindow.h"
#include "platform/model/drawscale.h"
#include "platform/model/state.h"
#include "platform/model/useracts.h"
#include "platform/operations/focus.h"

#include <algorithm>

namespace tarn::platform {

namespace {

std::uint64_t acts = 0;

// Whether the user could have done something to the control.
bool reachable(const Control& control) {
    if (!isAlive(control)) return false;
    return takesInput(windowOf(control)) && control.enabled;
}

// Of the window's drawing. The low word is x, the high word y; both have a sign.
int place(const Control& control, int x, int y) {
    const Point at = onDrawing({x, y}, drawScale(control));
    return static_cast<int>((static_cast<unsigned>(at.y) & 0xffffU) << 16 |
                            (static_cast<unsigned>(at.x) & 0xffffU));
}

bool send(const Control& control, int event, int parameter = 0) {
    return sendEvent(control.object.owner(), event, control.object, parameter);
}

Control* buttonFor(Window& window, int key, const Control* focus) {
    if (key == KEY_RETURN && focus != nullptr && focus->type == Type::Pushbutton)
        return const_cast<Control*>(focus);
    for (const auto& control : window.controls) {
        const bool meant = key == KEY_RETURN ? control->isDefault : control->isCancel;
        if (control->type == Type::Pushbutton && meant && control->enabled && control->visible)
            return control.get();
    }
    return nullptr;
}

bool takesReturn(const Window& window, const Control* focus) {
    return isEditWindowType(window.type) ||
           (focus != nullptr && focus->type == Type::Edit && focus->multiline != 0);
}

}  // namespace

void noteUserAct() {
    ++acts;
}
std::uint64_t userActs() {
    return acts;
}

void userCommand(Control& control) {
    noteUserAct();
    if (reachable(control)) send(control, COMMAND_EVENT);
}

void userChange(Control& control) {
    if (!isAlive(control)) return;
    userFocus(control);
    if (control.type == Type::Combobox) control.listIndex = 0;
    send(control, CHANGE_EVENT);
}

void userValue(Control& control, int value) {
    noteUserAct();
    if (!reachable(control)) return;
    if (control.type == Type::Scrollbar) {
        control.value = std::clamp(value, control.minimum, std::max(control.minimum, control.maximum));
        send(control, CHANGE_EVENT);
        return;
    }
    if (control.type == Type::Radiobutton)
        setRadio(control, value);
    else
        control.value = value;
    send(control, COMMAND_EVENT);
}

void userRow(Control& control, int row) {
    noteUserAct();
    if (!reachable(control) || !hasRows(control.type)) return;
    setRow(control, row);
    send(control, CHANGE_EVENT);
}

bool userMouseDown(Control& control, int x, int y) {
    noteUserAct();
    return reachable(control) && send(control, MOUSEDOWN_EVENT, place(control, x, y));
}

void userDoubleClick(Control& control, int x, int y) {
    noteUserAct();
    if (reachable(control)) send(control, DBLCLICK_EVENT, place(control, x, y));
}

void userDrag(Point pressed, Point released) {
    state().drag.emplace(pressed, released);
}

bool userKey(Window& window, Control* focus, int key) {
    noteUserAct();
    if (!isAlive(window) || !takesInput(window)) return false;
    if (focus != nullptr && !isAlive(*focus)) focus = nullptr;
    if (focus != nullptr) userFocus(*focus);
    const Object object = window.object;
    const Object sender = focus != nullptr ? focus->object : object;
    if (sendEvent(object, KEYPRESS_EVENT, sender, key)) return true;
    Window* const left = findWindow(object);
    if (left == nullptr || !left->shown) return true;  // the key closed it
    if (key == KEY_F1) return helpOn(std::string(left->caption), "");
    if (key != KEY_RETURN && key != KEY_ESCAPE) return false;
    focus = findControl(sender);
    if (key == KEY_RETURN && takesReturn(*left, focus)) return false;
    Control* const button = buttonFor(*left, key, focus);
    if (button == nullptr) return false;
    userCommand(*button);
    return true;
}

void userClose(Window& window) {
    noteUserAct();
    if (isAlive(window) && takesInput(window)) static_cast<void>(Unload(window.object));
}

void userActivate(Window& window) {
    if (isAlive(window) && window.shown && !programRests()) activate(window);
}

void userReturn(Window& window) {
    if (!isAlive(window) || !window.shown || programRests()) return;
    std::erase(state().activation, window.handle);  // so that it is told
    activate(window);
}

void userMoved(Window& window, const Rect& frame, int state) {
    if (!isAlive(window)) return;
    const bool resized =
        frame.w != window.position.w || frame.h != window.position.h || state != window.state;
    window.position = frame;
    window.state = state;
    if (resized) sendEvent(window.object, RESIZE_EVENT, window.object, 0);
}

void userColours(Window& window) {
    if (isAlive(window) && window.shown) sendEvent(window.object, RESIZE_EVENT, window.object, 0);
}

bool userInfo(Control& control, int x, int y) {
    return isAlive(control) && takesInput(windowOf(control)) &&
           send(control, INFO_EVENT, place(control, x, y));
}

// A handler that asks or waits runs the event loop, and a tick that comes meanwhile is one too many.
void timerFired(Control& owner) {
    static std::vector<int> running;
    const int handle = owner.handle;
    if (!isAlive(owner) || std::find(running.begin(), running.end(), handle) != running.end()) return;
    running.push_back(handle);
    send(owner, TIMER_EVENT);
    std::erase(running, handle);
}

}  // namespace tarn::platform
