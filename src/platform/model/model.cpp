// SPDX-License-Identifier: Apache-2.0
//
// The loaded windows: finding, showing, unloading, and the way of an event.
#include "platform/model/model.h"

#include "platform/model/debugger/debugwindow.h"
#include "platform/model/debugger/userbreak.h"
#include "platform/model/state.h"
#include "platform/operations/focus.h"
#include "platform/text.h"

#include <algorithm>

namespace tarn::platform {

State& state() {
    // Never destroyed: window functions of static objects may still ask at the end of the process.
    static State& one = *new State;
    return one;
}

const std::vector<std::unique_ptr<Window>>& windows() {
    return state().windows;
}

Window* findWindow(const Object& object) {
    for (const auto& window : state().windows)
        if (&window->object.window() == &object.window()) return window.get();
    return nullptr;
}

Control* findControl(const Object& object) {
    Window* const window = object.empty() ? nullptr : findWindow(object);
    if (window == nullptr) return findSystem(object);
    if (object.isWindow()) return window;
    for (const auto* controls : {&window->controls, &window->menuItems})
        for (const auto& control : *controls)
            if (control->object.number() == object.number()) return control.get();
    return nullptr;
}

Window* windowOfHandle(int handle) {
    for (const auto& window : state().windows)
        if (window->handle == handle) return window.get();
    return nullptr;
}

bool isAlive(const Control& control) {
    const auto place = state().byHandle.find(control.handle);
    return place != state().byHandle.end() && place->second == &control;
}

Window& windowOf(const Control& control) {
    return *findWindow(control.object);
}

int newHandle() {
    return ++state().lastHandle;
}

void enroll(Control& control) {
    control.handle = newHandle();
    state().byHandle.emplace(control.handle, &control);
}

// ---- events ----

bool sendEvent(const Object& object, int event, const Object& sender, int parameter) {
    if (programRests()) return noteRested(object, event), false;
    settle();
    const Window* const window = findWindow(object);
    if (window == nullptr || window->function == nullptr) return false;
    const WindowFunction function = window->function;
    if (state().depth == 0) noteUserHeard();
    ++state().depth;
    if (event == COMMAND_EVENT) state().commanding.push_back(sender);
    const bool handled = function(object, event, sender, parameter);
    if (event == COMMAND_EVENT) state().commanding.pop_back();
    --state().depth;
    runCommands();
    return handled;
}

void settle() {
    State& s = state();
    if (s.depth > 0) return;
    s.unloaded.clear();
    s.removed.clear();
}

int eventDepth() {
    return state().depth;
}
bool waiting() {
    return state().waiting > 0;
}
bool busy() {
    return state().busy > 0;
}

Window* topModal() {
    const std::vector<int>& modal = state().modal;
    for (auto handle = modal.rbegin(); handle != modal.rend(); ++handle)
        if (Window* const window = windowOfHandle(*handle); window != nullptr && window->shown) return window;
    return nullptr;
}

bool takesInput(const Window& window) {
    const Window* const top = topModal();
    return !busy() && !programRests() && window.shown && (top == nullptr || top == &window);
}

// ---- showing ----

void activate(Window& window) {
    State& s = state();
    if (!s.activation.empty() && s.activation.back() == window.handle) return;
    const Window* const before = s.activation.empty() ? nullptr : windowOfHandle(s.activation.back());
    if (before != nullptr) leaveFocus(*before);
    std::erase(s.activation, window.handle);
    s.activation.push_back(window.handle);
    const Object object = window.object;
    const int handle = window.handle;
    const Object main = !s.main.empty() ? s.main : s.windows.front()->object;
    sendEvent(object, ACTIVATE_EVENT, object, handle);
    if (main != object) sendEvent(main, ACTIVATE_EVENT, object, handle);
}

namespace {

// The window that was active before the one that goes; the desktop chooses one too, and it may be another.
void activateNext(bool raise) {
    const std::vector<int> order = state().activation;
    for (auto handle = order.rbegin(); handle != order.rend(); ++handle) {
        Window* const window = windowOfHandle(*handle);
        if (window == nullptr || !window->shown) continue;
        if (raise) view().raise(*window);
        std::erase(state().activation, window->handle);  // so that it is told
        return activate(*window);
    }
}

// The control whose command ends a modal window is the window's answer.
void noteResult(const Window& window) {
    const auto place = state().results.find(window.handle);
    if (place == state().results.end() || state().commanding.empty()) return;
    const Object& sender = state().commanding.back();
    if (sender.owner() == window.object) place->second = sender.number();
}

}  // namespace

void setShown(Window& window, bool shown) {
    if (window.shown == shown) return;
    const bool wasActive = !state().activation.empty() && state().activation.back() == window.handle;
    const bool modal = window.modal;
    window.shown = window.visible = shown;
    if (shown) return;
    noteResult(window);
    std::erase(state().activation, window.handle);
    view().hide(window);
    if (wasActive) activateNext(modal);
}

void destroy(Window& window) {
    State& s = state();
    const int handle = window.handle;
    setShown(window, false);
    if (windowOfHandle(handle) == nullptr) return;  // gone meanwhile
    view().unload(window);
    s.byHandle.erase(handle);
    s.drawLooks.erase(handle);
    for (const auto* controls : {&window.controls, &window.menuItems})
        for (const auto& control : *controls) {
            s.byHandle.erase(control->handle);
            s.drawLooks.erase(control->handle);
        }
    std::erase(s.activation, handle);
    const auto place = std::find_if(s.windows.begin(), s.windows.end(),
                                    [&](const auto& one) { return one.get() == &window; });
    s.unloaded.push_back(std::move(*place));
    s.windows.erase(place);
}

bool runLoop(const std::function<bool()>& until) {
    State& s = state();
    ++s.loops;
    const std::function<bool()> done = [&] { return s.quit || until(); };
    view().loop(done);
    const bool ended = done();
    if (--s.loops == 0) s.quit = false;
    return ended;
}

// ---- arrays ----

std::vector<Control*> arrayOf(Control& control) {
    std::vector<Control*> members;
    if (control.array.empty()) return members;
    Window& window = windowOf(control);
    for (const auto* controls : {&window.controls, &window.menuItems})
        for (const auto& one : *controls)
            if (sameText(one->array, control.array)) members.push_back(one.get());
    return members;
}

std::vector<Control*> radioGroup(Control& radio) {
    if (!radio.array.empty()) return arrayOf(radio);
    std::vector<Control*> group;
    bool found = false;
    for (const auto& control : windowOf(radio).controls) {
        if (control->type == Type::Radiobutton && control->array.empty()) {
            group.push_back(control.get());
            found = found || control.get() == &radio;
        } else if (found) {
            break;
        } else {
            group.clear();
        }
    }
    return group;
}

void setRadio(Control& radio, int value) {
    if (value != 0)
        for (Control* const other : radioGroup(radio)) {
            if (other == &radio || other->type != Type::Radiobutton || other->value == 0) continue;
            other->value = 0;
            view().changed(*other, Property::Value);
        }
    radio.value = value;
    view().changed(radio, Property::Value);
}

void setRow(Control& list, int row) {
    list.listIndex = row < 1 || row > static_cast<int>(list.rows.size()) ? 0 : row;
    if (list.type == Type::Combobox && list.listIndex > 0)
        list.text->setText(list.rows[static_cast<std::size_t>(list.listIndex - 1)].text);
}

}  // namespace tarn::platform
