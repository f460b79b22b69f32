// SPDX-License-Identifier: Apache-2.0
#include "platform/object.h"

#include "platform/text.h"

#include <array>
#include <set>

namespace tarn::platform {

namespace {

// In the order of the enumeration.
constexpr std::array<std::string_view, 23> typeNames = {
    "",          "Dialog",      "Editwindow", "Richeditwindow", "Label",    "Edit",        "Combobox",
    "Listbox",   "Iconlist",    "Pushbutton", "Bitmapbutton",   "Checkbox", "Radiobutton", "Groupbox",
    "Scrollbar", "Progressbar", "Shape",      "Icon",           "Image",    "Menuitem",    "Screen",
    "Printer",   "Clipboard"};

// The names ever used. They are never freed: an Object may outlive everything else, and there are few.
const std::string* intern(std::string_view name) {
    static auto& names = *new std::set<std::string, LessText>();
    auto place = names.find(name);
    if (place == names.end()) place = names.emplace(name).first;
    return &*place;
}

}  // namespace

const std::string& Object::none() {
    static const std::string& empty = *intern("");
    return empty;
}

Object::Object(std::string_view window, int number) : window_(intern(window)), number_(number) {}

bool Object::empty() const {
    return window_->empty();
}

Object Object::owner() const {
    Object window = *this;
    window.number_ = 0;
    return window;
}

std::string_view typeName(Type type) {
    return typeNames[static_cast<std::size_t>(type)];
}

Type typeFromName(std::string_view name) {
    for (std::size_t i = 1; i < typeNames.size(); ++i)
        if (sameText(typeNames[i], name)) return static_cast<Type>(i);
    return Type::None;
}

}  // namespace tarn::platform
