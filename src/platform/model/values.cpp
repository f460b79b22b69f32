// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: captions, texts, values, list rows, positions, arrays and fonts. Each looks its
// object up, changes the model and tells the view; a control that lacks the property answers with an empty
// value.
#include "platform/windowing.h"

#include "platform/model/state.h"
#include "platform/text.h"

#include <algorithm>

namespace tarn::platform {

namespace {

Code missing(const Object& object) {
    return !object.empty() && findWindow(object) == nullptr ? WindowNotLoaded : ControlInvalid;
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

template <class T>
bool assign(T& field, T value) {
    if (field == value) return false;
    field = std::move(value);
    return true;
}

bool isRange(Type type) {
    return type == Type::Scrollbar || type == Type::Progressbar;
}
bool isMark(Type type) {
    return type == Type::Checkbox || type == Type::Radiobutton;
}
bool isDropList(const Control& c) {
    return c.type == Type::Combobox && c.comboStyle == 2;
}

std::string selectedRow(const Control& c) {
    return c.listIndex > 0 ? c.rows[static_cast<std::size_t>(c.listIndex - 1)].text : std::string();
}

std::string textOf(const Control& c) {
    if (isDropList(c)) return selectedRow(c);
    return c.text != nullptr ? c.text->text() : std::string();
}

// Selects the row that equals the text, with the case as it is or else without; none leaves the selection
// alone.
bool selectRowOf(Control& c, std::string_view text) {
    const auto find = [&](auto same) {
        const auto row =
            std::find_if(c.rows.begin(), c.rows.end(), [&](const Row& one) { return same(one.text, text); });
        return row == c.rows.end() ? 0 : static_cast<int>(row - c.rows.begin()) + 1;
    };
    int row = find([](std::string_view a, std::string_view b) { return a == b; });
    if (row == 0) row = find(sameText);
    if (row == 0 || row == c.listIndex) return false;
    setRow(c, row);
    return true;
}

bool setText(Control& c, std::string_view text) {
    if (isDropList(c)) return selectRowOf(c, text);
    if (c.text == nullptr) return false;
    c.text->setText(text);
    if (c.type == Type::Combobox) c.listIndex = 0;
    return true;
}

}  // namespace

Answer<int> GetHandle(const Object& object) {
    return ask<int>(object, [](const Control& c) { return c.handle; });
}

Answer<std::string> GetName(const Object& object) {
    return ask<std::string>(object,
                            [&](const Control& c) { return object.isWindow() ? c.object.window() : c.name; });
}

Answer<std::string> GetCaption(const Object& object) {
    return ask<std::string>(object, [](const Control& c) { return c.caption; });
}

Code SetCaption(const Object& object, std::string_view caption) {
    return tell(object, Property::Caption,
                [&](Control& c) { return assign(c.caption, std::string(caption)); });
}

Answer<std::string> GetText(const Object& object) {
    return ask<std::string>(object, textOf);
}

Code SetText(const Object& object, std::string_view text) {
    return tell(object, Property::Text, [&](Control& c) { return setText(c, text); });
}

Answer<int> GetTextLength(const Object& object) {
    return ask<int>(object, [](const Control& c) {
        if (c.text != nullptr && !isDropList(c)) return c.text->length();
        return static_cast<int>(textOf(c).size());
    });
}

Answer<std::string> GetTokens(const Object& object) {
    return ask<std::string>(object, [](const Control& c) { return c.tokens; });
}

Code SetTokens(const Object& object, std::string_view tokens) {
    return tell(object, Property::Tokens, [&](Control& c) {
        return isEditWindowType(c.type) && assign(c.tokens, std::string(tokens));
    });
}

Answer<std::string> GetSelText(const Object& object) {
    return ask<std::string>(object, [](const Control& c) {
        if (c.text == nullptr) return std::string();
        const Selection selection = c.text->selection();
        return c.text->text().substr(static_cast<std::size_t>(selection.start - 1),
                                     static_cast<std::size_t>(selection.length));
    });
}

Code SetSelText(const Object& object, std::string_view text) {
    Control* const control = findControl(object);
    if (control == nullptr) return missing(object);
    if (control->text == nullptr || isDropList(*control)) return Ok;
    control->text->replaceSelection(text);
    view().changed(*control, Property::Text);
    userChange(*control);
    return Ok;
}

Answer<Selection> GetSelection(const Object& object) {
    return ask<Selection>(
        object, [](const Control& c) { return c.text == nullptr ? Selection() : c.text->selection(); });
}

Code SetSelection(const Object& object, int start, int length) {
    return tell(object, Property::Selection, [&](Control& c) {
        if (c.text != nullptr) c.text->select(start, length);
        return c.text != nullptr;
    });
}

Answer<int> GetValue(const Object& object) {
    return ask<int>(object, [](const Control& c) { return isMark(c.type) || isRange(c.type) ? c.value : 0; });
}

Code SetValue(const Object& object, int value) {
    return tell(object, Property::Value, [&](Control& c) {
        if (c.type == Type::Radiobutton) return setRadio(c, value != 0 ? 1 : 0), false;
        if (c.type == Type::Checkbox) return assign(c.value, value != 0 ? 1 : 0);
        return isRange(c.type) &&
               assign(c.value, std::clamp(value, c.minimum, std::max(c.minimum, c.maximum)));
    });
}

Answer<bool> GetChecked(const Object& object) {
    return ask<bool>(object, [](const Control& c) { return c.checked || (isMark(c.type) && c.value != 0); });
}

Code SetChecked(const Object& object, bool checked) {
    if (const Control* const control = findControl(object); control != nullptr && isMark(control->type))
        return SetValue(object, checked ? 1 : 0);
    return tell(object, Property::Checked,
                [&](Control& c) { return c.type == Type::Menuitem && assign(c.checked, checked); });
}

Answer<bool> GetModify(const Object& object) {
    return ask<bool>(object, [](const Control& c) { return c.text != nullptr && c.text->modified(); });
}

Code SetModify(const Object& object, bool modified) {
    return tell(object, Property::Modify, [&](Control& c) {
        if (c.text != nullptr) c.text->setModified(modified);
        return c.text != nullptr;
    });
}

Answer<bool> GetReadonly(const Object& object) {
    return ask<bool>(object, [](const Control& c) { return c.readonly; });
}

Answer<int> GetMaxLength(const Object& object) {
    return ask<int>(object, [](const Control& c) { return c.maxLength; });
}

Code SetMaxLength(const Object& object, int length) {
    return tell(object, Property::MaxLength,
                [&](Control& c) { return c.text != nullptr && assign(c.maxLength, std::max(length, 0)); });
}

Answer<int> GetPasswordChar(const Object& object) {
    return ask<int>(object, [](const Control& c) { return c.passwordChar; });
}

Code SetPasswordChar(const Object& object, int character) {
    return tell(object, Property::Password,
                [&](Control& c) { return c.type == Type::Edit && assign(c.passwordChar, character); });
}

Answer<std::string> GetCombotext(const Object& object) {
    return ask<std::string>(object,
                            [](const Control& c) { return c.type == Type::Combobox ? textOf(c) : ""; });
}

Code SetCombotext(const Object& object, std::string_view text) {
    return tell(object, Property::Text,
                [&](Control& c) { return c.type == Type::Combobox && setText(c, text); });
}

Answer<int> GetCombostyle(const Object& object) {
    return ask<int>(object, [](const Control& c) { return c.type == Type::Combobox ? c.comboStyle : 0; });
}

Answer<int> GetMin(const Object& object) {
    return ask<int>(object, [](const Control& c) { return isRange(c.type) ? c.minimum : 0; });
}

Code SetMin(const Object& object, int value) {
    return tell(object, Property::Range,
                [&](Control& c) { return isRange(c.type) && assign(c.minimum, value); });
}

Answer<int> GetMax(const Object& object) {
    return ask<int>(object, [](const Control& c) { return isRange(c.type) ? c.maximum : 0; });
}

Code SetMax(const Object& object, int value) {
    return tell(object, Property::Range,
                [&](Control& c) { return isRange(c.type) && assign(c.maximum, value); });
}

Answer<bool> GetEnabled(const Object& object) {
    return ask<bool>(object, [](const Control& c) { return c.enabled; });
}

Code SetEnabled(const Object& object, bool enabled) {
    return tell(object, Property::Enabled, [&](Control& c) { return assign(c.enabled, enabled); });
}

Answer<int> GetFlags(const Object& object) {
    return ask<int>(object, [](const Control& c) { return c.flags; });
}

Code SetFlags(const Object& object, int flags) {
    return tell(object, Property::Flags, [&](Control& c) {
        if (!isEditWindowType(c.type) || !assign(c.flags, flags)) return false;
        c.readonly = (flags & READONLY) != 0;
        return true;
    });
}

Answer<int> GetBorderStyle(const Object& object) {
    return ask<int>(object, [&](const Control& c) {
        return object.isWindow() ? static_cast<const Window&>(c).borderStyle : c.border;
    });
}

Answer<std::string> GetPicture(const Object& object) {
    return ask<std::string>(object, [](const Control& c) { return c.picture; });
}

Code SetPicture(const Object& object, std::string_view picture) {
    return tell(object, Property::Picture,
                [&](Control& c) { return assign(c.picture, std::string(picture)); });
}

// ---- list controls ----

namespace {

// A row has no line end.
std::string rowText(std::string_view text) {
    if (text.ends_with('\n')) text.remove_suffix(1);
    if (text.ends_with('\r')) text.remove_suffix(1);
    return std::string(text);
}

bool hasRow(const Control& c, int row) {
    return row >= 1 && row <= static_cast<int>(c.rows.size());
}

bool insertRow(Control& c, int row, std::string_view text, std::string_view picture) {
    if (!hasRows(c.type)) return false;
    row = std::clamp(row, 1, static_cast<int>(c.rows.size()) + 1);
    c.rows.insert(c.rows.begin() + (row - 1), Row{rowText(text), std::string(picture)});
    if (c.listIndex >= row) ++c.listIndex;
    return true;
}

}  // namespace

Answer<int> GetListCount(const Object& list) {
    return ask<int>(list, [](const Control& c) { return static_cast<int>(c.rows.size()); });
}

Answer<int> GetListIndex(const Object& list) {
    return ask<int>(list, [](const Control& c) { return c.listIndex; });
}

Code SetListIndex(const Object& list, int row) {
    return tell(list, Property::ListIndex, [&](Control& c) {
        if (hasRows(c.type)) setRow(c, row);
        return hasRows(c.type);
    });
}

Answer<std::string> GetList(const Object& list, int row) {
    return ask<std::string>(list, [&](const Control& c) {
        return hasRow(c, row) ? c.rows[static_cast<std::size_t>(row - 1)].text : std::string();
    });
}

Code SetList(const Object& list, int row, std::string_view text) {
    return tell(list, Property::Rows, [&](Control& c) {
        return hasRow(c, row) && assign(c.rows[static_cast<std::size_t>(row - 1)].text, rowText(text));
    });
}

Code AddItem(const Object& list, std::string_view text, std::string_view picture) {
    return AddItem(list, INT32_MAX, text, picture);
}

Code AddItem(const Object& list, int row, std::string_view text, std::string_view picture) {
    return tell(list, Property::Rows, [&](Control& c) { return insertRow(c, row, text, picture); });
}

Code RemoveItem(const Object& list, int row) {
    return tell(list, Property::Rows, [&](Control& c) {
        if (!hasRow(c, row)) return false;
        c.rows.erase(c.rows.begin() + (row - 1));
        if (c.listIndex == row)
            c.listIndex = 0;
        else if (c.listIndex > row)
            --c.listIndex;
        return true;
    });
}

Code Clear(const Object& list) {
    return tell(list, Property::Rows, [](Control& c) {
        if (!hasRows(c.type)) return false;
        c.rows.clear();
        c.listIndex = 0;
        return true;
    });
}

Answer<std::string> GetArrayValue(const Object& object, std::string_view name) {
    const Window* const window = findWindow(object);
    if (window == nullptr) return {"", WindowNotLoaded};
    for (const auto& [key, value] : window->values)
        if (sameText(key, name)) return {value, Ok};
    return {};
}

Code SetArrayValue(const Object& object, std::string_view name, std::string_view value) {
    Window* const window = findWindow(object);
    if (window == nullptr) return WindowNotLoaded;
    for (auto& [key, old] : window->values)
        if (sameText(key, name)) return old = value, Ok;
    window->values.emplace(name, value);
    return Ok;
}

// ---- position ----

namespace {

Rect inside(const Rect& frame, const Rect& extents) {
    return {frame.x + extents.x, frame.y + extents.y, std::max(0, frame.w - extents.w),
            std::max(0, frame.h - extents.h)};
}

// A size of the frame within the limits of its client area; a limit of 0 is none.
int within(int size, int extent, int minimum, int maximum) {
    if (maximum > 0) size = std::min(size, maximum + extent);
    return std::max({size, minimum > 0 ? minimum + extent : 0, 0});
}

Rect frameFor(const Window& window, Unit unit, Rect rect) {
    const Rect extents = view().frameExtents(window);
    if (unit == CLIENT_UNIT)
        rect = {rect.x - extents.x, rect.y - extents.y, rect.w + extents.w, rect.h + extents.h};
    rect.w = within(rect.w, extents.w, window.minimum_.w, window.maximum_.w);
    rect.h = within(rect.h, extents.h, window.minimum_.h, window.maximum_.h);
    return rect;
}

Answer<Rect> limit(const Object& object, Rect Window::*which) {
    const Window* const window = findWindow(object);
    return window == nullptr ? Answer<Rect>{{}, WindowNotLoaded} : Answer<Rect>{window->*which, Ok};
}

Code setLimit(const Object& object, Rect Window::*which, const Rect& rect) {
    Window* const window = findWindow(object);
    if (window == nullptr) return WindowNotLoaded;
    if (assign(window->*which, rect)) view().changed(*window, Property::MinMax);
    return Ok;
}

}  // namespace

Answer<Rect> GetPosition(const Object& object, Unit unit) {
    return ask<Rect>(object, [&](const Control& c) {
        const bool client = object.isWindow() && unit == CLIENT_UNIT;
        return client ? inside(c.position, view().frameExtents(static_cast<const Window&>(c))) : c.position;
    });
}

Code SetPosition(const Object& object, Unit unit, const Rect& rect) {
    return tell(object, Property::Position, [&](Control& c) {
        return assign(c.position,
                      object.isWindow() ? frameFor(static_cast<const Window&>(c), unit, rect) : rect);
    });
}

Answer<Rect> GetMinPosition(const Object& window) {
    return limit(window, &Window::minimum_);
}
Code SetMinPosition(const Object& window, const Rect& rect) {
    return setLimit(window, &Window::minimum_, rect);
}
Answer<Rect> GetMaxPosition(const Object& window) {
    return limit(window, &Window::maximum_);
}
Code SetMaxPosition(const Object& window, const Rect& rect) {
    return setLimit(window, &Window::maximum_, rect);
}

Rect ScreenSize() {
    return view().screen();
}

Answer<int> TextWidth(const Object& object, std::string_view text) {
    return ask<int>(object, [&](const Control& c) { return view().textWidth(c, text); });
}

Answer<int> TextHeight(const Object& object, std::string_view text) {
    return ask<int>(object, [&](const Control& c) { return view().textHeight(c, text); });
}

int GetDpi() {
    return view().dpi();
}

// ---- control arrays ----

namespace {

// The array of a control; a code if there is no control or no array.
Code arrayFor(const Object& element, std::vector<Control*>& members) {
    Control* const control = findControl(element);
    if (control == nullptr) return missing(element);
    members = arrayOf(*control);
    return members.empty() ? NotAControlArray : Ok;
}

Code menuitem(const Object& object, Control*& item) {
    item = findControl(object);
    if (item == nullptr) return missing(object);
    return item->type == Type::Menuitem && !item->array.empty() ? Ok : NotAControlArray;
}

}  // namespace

Answer<Bounds> ControlBounds(const Object& element) {
    std::vector<Control*> members;
    const Code code = arrayFor(element, members);
    return code != Ok ? Answer<Bounds>{{}, code} : Answer<Bounds>{{1, static_cast<int>(members.size())}, Ok};
}

Object ControlElement(const Object& element, int index) {
    std::vector<Control*> members;
    const bool found =
        arrayFor(element, members) == Ok && index >= 1 && index <= static_cast<int>(members.size());
    return found ? members[static_cast<std::size_t>(index - 1)]->object : Object();
}

Answer<int> ControlIndex(const Object& element) {
    std::vector<Control*> members;
    const Code code = arrayFor(element, members);
    return code != Ok ? Answer<int>{0, code} : Answer<int>{findControl(element)->index, Ok};
}

Answer<int> Controlselectionpos(const Object& element) {
    std::vector<Control*> members;
    if (const Code code = arrayFor(element, members); code != Ok) return {0, code};
    for (const Control* const member : members)
        if (member->type == Type::Radiobutton && member->value != 0) return {member->index, Ok};
    return {0, Ok};
}

Code AddMenuitem(const Object& after, std::string_view caption) {
    Control* control = nullptr;
    if (const Code code = menuitem(after, control); code != Ok) return code;
    Window& window = windowOf(*control);
    std::unique_ptr<Control> item = makeMenuitem(*control);
    item->caption = caption;
    auto place = std::find_if(window.menuItems.begin(), window.menuItems.end(),
                              [&](const auto& one) { return one.get() == control; });
    // Behind what hangs below it.
    for (++place; place != window.menuItems.end() && (*place)->level > control->level;) ++place;
    window.menuItems.insert(place, std::move(item));
    numberArrays(window);
    view().changed(window, Property::MenuItems);
    return Ok;
}

Code RemoveMenuitem(const Object& object) {
    Control* item = nullptr;
    if (const Code code = menuitem(object, item); code != Ok) return code;
    Window& window = windowOf(*item);
    const auto place = std::find_if(window.menuItems.begin(), window.menuItems.end(),
                                    [&](const auto& one) { return one.get() == item; });
    state().byHandle.erase(item->handle);
    state().removed.push_back(std::move(*place));
    window.menuItems.erase(place);
    numberArrays(window);
    view().changed(window, Property::MenuItems);
    return Ok;
}

// ---- fonts ----

Answer<Font> GetFont(const Object& object) {
    return ask<Font>(object, [](const Control& c) { return c.font; });
}

Code SetFont(const Object& object, const Font& font) {
    return tell(object, Property::Font, [&](Control& c) { return assign(c.font, font); });
}

}  // namespace tarn::platform
