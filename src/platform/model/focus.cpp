// SPDX-License-Identifier: Apache-2.0
#include "platform/operations/focus.h"

#include "platform/model/access_internal.h"
#include "platform/operations/life.h"

#include <map>
#include <utility>

namespace tarn::platform {

namespace {

// By the handles of the windows that asked: a window of the same name that is loaded later is another one.
std::map<int, Object>& watched() {
    static std::map<int, Object> controls;
    return controls;
}

Object* watchedFocus(const Object& object) {
    const Window* const window = findWindow(object);
    if (window == nullptr) return nullptr;
    const auto place = watched().find(window->handle);
    return place == watched().end() ? nullptr : &place->second;
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
