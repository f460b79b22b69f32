// SPDX-License-Identifier: Apache-2.0
//
// Control arrays, and menu items that come and go.
#include "platform/operations/arrays.h"

#include "platform/model/access_internal.h"

#include <algorithm>

namespace tarn::platform {

namespace {

// The array of a control; a code if there is no control or no array.
Code arrayFor(const Object& element, std::vector<Control*>& members) {
    Control* const control = findControl(element);
    if (control == nullptr) return missing(element);
    members = arrayOf(*control);
    return members.empty() ? NotAControlArray : Ok;
}

template <class T, class Of>
Answer<T> askArray(const Object& element, Of of) {
    std::vector<Control*> members;
    const Code code = arrayFor(element, members);
    return code != Ok ? Answer<T>{T{}, code} : Answer<T>{of(*findControl(element), members), Ok};
}

const Control* selected(const std::vector<Control*>& members) {
    for (const Control* const member : members)
        if (member->type == Type::Radiobutton && member->value != 0) return member;
    return nullptr;
}

Code menuitem(const Object& object, Control*& item) {
    item = findControl(object);
    if (item == nullptr) return missing(object);
    return item->type == Type::Menuitem && !item->array.empty() ? Ok : NotAControlArray;
}

}  // namespace

Object ControlElement(const Object& element, int index) {
    std::vector<Control*> members;
    const bool found =
        arrayFor(element, members) == Ok && index >= 1 && index <= static_cast<int>(members.size());
    return found ? members[static_cast<std::size_t>(index - 1)]->object : Object();
}

Answer<std::string> Controlarray(const Object& element) {
    return askArray<std::string>(element, [](const Control& c, const auto&) { return c.array; });
}
Answer<int> Controlarraypos(const Object& element) {
    return askArray<int>(element, [](const Control& c, const auto&) { return c.index; });
}
Answer<int> ControlLbound(const Object& element) {
    return askArray<int>(element, [](const Control&, const auto&) { return 1; });
}
Answer<int> ControlUbound(const Object& element) {
    return askArray<int>(
        element, [](const Control&, const auto& members) { return static_cast<int>(members.size()); });
}
Answer<Object> Controlselection(const Object& element) {
    return askArray<Object>(element, [](const Control&, const auto& members) {
        const Control* const set = selected(members);
        return set == nullptr ? Object() : set->object;
    });
}
Answer<int> Controlselectionpos(const Object& element) {
    return askArray<int>(element, [](const Control&, const auto& members) {
        const Control* const set = selected(members);
        return set == nullptr ? 0 : set->index;
    });
}

namespace {

auto placeOf(Window& window, const Control& item) {
    return std::find_if(window.menuItems.begin(), window.menuItems.end(),
                        [&](const auto& one) { return one.get() == &item; });
}

// Behind `after` and what hangs below it.
Control& insertItem(Window& window, const Control& after, std::string_view caption) {
    std::unique_ptr<Control> item = makeMenuitem(after);
    item->caption = caption;
    auto place = placeOf(window, after);
    for (++place; place != window.menuItems.end() && (*place)->level > after.level;) ++place;
    return **window.menuItems.insert(place, std::move(item));
}

void takeItem(Window& window, const Control& item) {
    const auto place = placeOf(window, item);
    state().byHandle.erase(item.handle);
    state().removed.push_back(std::move(*place));
    window.menuItems.erase(place);
}

void menuChanged(Window& window) {
    numberArrays(window);
    view().changed(window, Property::MenuItems);
}

std::string_view nextLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

}  // namespace

Code AddMenuitem(const Object& after, std::string_view caption) {
    Control* control = nullptr;
    if (const Code code = menuitem(after, control); code != Ok) return code;
    insertItem(windowOf(*control), *control, caption);
    menuChanged(windowOf(*control));
    return Ok;
}

Code AddMenuitems(const Object& after, std::string_view captions) {
    Control* control = nullptr;
    if (const Code code = menuitem(after, control); code != Ok) return code;
    Window& window = windowOf(*control);
    while (!captions.empty()) control = &insertItem(window, *control, nextLine(captions));
    menuChanged(window);
    return Ok;
}

Code RemoveMenuitem(const Object& item) {
    return RemoveMenuitems(item, item);
}

Code RemoveMenuitems(const Object& first, const Object& last) {
    Control *from = nullptr, *to = nullptr;
    if (const Code code = menuitem(first, from); code != Ok) return code;
    if (const Code code = menuitem(last, to); code != Ok) return code;
    Window& window = windowOf(*from);
    const std::vector<Control*> members = arrayOf(*from);
    if (std::find(members.begin(), members.end(), to) == members.end()) return NotAControlArray;
    const int lower = from->index, upper = to->index;
    for (Control* const member : members)
        if (member->index >= lower && member->index <= upper) takeItem(window, *member);
    menuChanged(window);
    return Ok;
}

}  // namespace tarn::platform
