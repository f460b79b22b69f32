// SPDX-License-Identifier: Apache-2.0
#include "platform/operations/focus.h"

#include "platform/model/access_internal.h"
#include "platform/operations/life.h"

#include <algorithm>
#include <map>
#include <utility>

namespace tarn::platform {

namespace {

struct Watch {
    Object focus;
    std::vector<int> keys;
};

// By the handles of the windows that asked: a window of the same name that is loaded later is another one.
std::map<int, Watch>& watched() {
    static std::map<int, Watch> windows;
    return windows;
}

Watch* watchOf(const Object& object) {
    const Window* const window = findWindow(object);
    if (window == nullptr) return nullptr;
    const auto place = watched().find(window->handle);
    return place == watched().end() ? nullptr : &place->second;
}

Object* watchedFocus(const Object& object) {
    Watch* const watch = watchOf(object);
    return watch == nullptr ? nullptr : &watch->focus;
}

void tellLeft(const Object& control) {
    if (!control.empty()) static_cast<void>(PostMessage(control, LEAVE_EVENT, 0));
}

}  // namespace

Code WatchFocus(const Object& object) {
    const Window* const window = findWindow(object);
    if (window == nullptr) return WindowNotLoaded;
    std::erase_if(watched(), [](const auto& entry) { return windowOfHandle(entry.first) == nullptr; });
    watched().try_emplace(window->handle);
    return Ok;
}

Code TakeKeys(const Object& window, std::vector<int> keys) {
    const Code code = WatchFocus(window);
    if (code == Ok) watchOf(window)->keys = std::move(keys);
    return code;
}

bool takesKey(const Window& window, int key) {
    const Watch* const watch = watchOf(window.object);
    return watch != nullptr && key != 0 &&
           std::find(watch->keys.begin(), watch->keys.end(), key) != watch->keys.end();
}

Object GetFocus(const Object& window) {
    const Object* const control = watchedFocus(window);
    return control != nullptr ? *control : Object();
}

Code SetFocus(const Object& object) {
    Control* const control = findControl(object);
    if (control == nullptr || object.isWindow()) return missing(object);
    view().changed(*control, Property::Focus);
    userFocus(*control);
    return Ok;
}

void userFocus(Control& control) {
    Object* const focus = watchedFocus(control.object);
    if (focus == nullptr || *focus == control.object) return;
    tellLeft(std::exchange(*focus, control.object));
}

void leaveFocus(const Window& window) {
    if (const Object* const focus = watchedFocus(window.object)) tellLeft(*focus);
}

}  // namespace tarn::platform
