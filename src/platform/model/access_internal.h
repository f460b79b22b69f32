// SPDX-License-Identifier: Apache-2.0
//
// How the operations reach their object: each looks it up, changes the model and tells the view. Only the
// files of this folder include it.
#pragma once

#include "platform/model/state.h"
#include "platform/model/view.h"

#include <string>
#include <utility>

namespace tarn::platform {

inline Code missing(const Object& object) {
    const bool unloaded = !object.empty() && !isSystemName(object) && findWindow(object) == nullptr;
    return unloaded ? WindowNotLoaded : ControlInvalid;
}

// What `of` tells of the object.
template <class T, class Of>
Answer<T> ask(const Object& object, Of of) {
    Control* const control = findControl(object);
    if (control == nullptr) return {T{}, missing(object)};
    return {of(*control), Ok};
}

// Lets `change` change the object; it tells whether the view has to know.
template <class Change>
Code tell(const Object& object, Property property, Change change) {
    Control* const control = findControl(object);
    if (control == nullptr) return missing(object);
    if (change(*control)) view().changed(*control, property);
    return Ok;
}

// Whether that changed anything.
template <class T>
bool assign(T& field, T value) {
    if (field == value) return false;
    field = std::move(value);
    return true;
}

inline bool isRange(Type type) {
    return type == Type::Scrollbar || type == Type::Progressbar;
}
inline bool isMark(Type type) {
    return type == Type::Checkbox || type == Type::Radiobutton;
}

}  // namespace tarn::platform
