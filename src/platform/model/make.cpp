// SPDX-License-Identifier: Apache-2.0
//
// Windows and controls made from the resources. Cost: linear in controls and properties; one measure of text.
#include "platform/model/state.h"

#include "platform/text.h"

#include <array>
#include <set>
#include <unordered_map>

namespace tarn::platform {

namespace {

constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

std::array<int, 4> numbers(std::string_view text) {
    std::array<int, 4> result{};
    for (int& number : result) {
        text = trim(text);
        number = leadingNumber(text);
        text.remove_prefix(std::min(text.find_first_of(" \t"), text.size()));
    }
    return result;
}

void setPosition(Control& control, std::string_view value) {
    const auto [x, y, w, h] = numbers(value);
    if (control.type == Type::Menuitem)
        control.level = x;
    else
        control.units = {x, y, w, h};
}

void setRows(Control& control, std::string_view value) {
    while (!value.empty()) {
        const std::size_t end = std::min(value.find('\n'), value.size());
        std::string_view row = value.substr(0, end);
        if (row.ends_with('\r')) row.remove_suffix(1);
        control.rows.push_back({std::string(row), ""});
        value.remove_prefix(std::min(end + 1, value.size()));
    }
}

bool flag(std::string_view value) {
    return leadingNumber(value) != 0;
}

Window& asWindow(Control& control) {
    return static_cast<Window&>(control);
}

using Setter = void (*)(Control& control, std::string_view value);

// What a property sets. Those of windows alone are below.
const std::unordered_map<std::string_view, Setter> setters = {
    {"POSITION", setPosition},
    {"CAPTION", [](Control& c, std::string_view v) { c.caption = v; }},
    {"TEXT",
     [](Control& c, std::string_view v) {
         if (c.text) c.text->setText(v);
     }},
    {"HINT", [](Control& c, std::string_view v) { c.hint = v; }},
    {"PICTURE", [](Control& c, std::string_view v) { c.picture = v; }},
    {"ROWS", setRows},
    {"ENABLED", [](Control& c, std::string_view v) { c.enabled = flag(v); }},
    {"VISIBLE", [](Control& c, std::string_view v) { c.visible = flag(v); }},
    {"TABSTOP", [](Control& c, std::string_view v) { c.tabStop = flag(v); }},
    {"ARRAY", [](Control& c, std::string_view v) { c.array = v; }},
    {"ALIGNMENT", [](Control& c, std::string_view v) { c.alignment = leadingNumber(v); }},
    {"BORDERSTYLE", [](Control& c, std::string_view v) { c.border = leadingNumber(v); }},
    {"SCROLLBARS", [](Control& c, std::string_view v) { c.scrollBars = leadingNumber(v); }},
    {"MAXLENGTH", [](Control& c, std::string_view v) { c.maxLength = leadingNumber(v); }},
    {"MINIMUM", [](Control& c, std::string_view v) { c.minimum = leadingNumber(v); }},
    {"MAXIMUM", [](Control& c, std::string_view v) { c.maximum = leadingNumber(v); }},
    {"VALUE", [](Control& c, std::string_view v) { c.value = leadingNumber(v); }},
    {"FORECOLOUR", [](Control& c, std::string_view v) { c.foreColour = leadingNumber(v); }},
    {"BACKCOLOUR", [](Control& c, std::string_view v) { c.backColour = leadingNumber(v); }},
    {"READONLY", [](Control& c, std::string_view v) { c.readonly = flag(v); }},
    {"MULTILINE", [](Control& c, std::string_view v) { c.multiline = flag(v) ? 1 : 0; }},
    {"PASSWORDCHAR", [](Control& c, std::string_view v) { c.passwordChar = leadingNumber(v); }},
    {"COMBOSTYLE", [](Control& c, std::string_view v) { c.comboStyle = leadingNumber(v); }},
    {"USETABSTOPS", [](Control& c, std::string_view v) { c.useTabStops = flag(v); }},
    {"DEFAULT", [](Control& c, std::string_view v) { c.isDefault = flag(v); }},
    {"CANCEL", [](Control& c, std::string_view v) { c.isCancel = flag(v); }},
    {"CHECKED", [](Control& c, std::string_view v) { c.checked = flag(v); }},
    {"SHORTCUT", [](Control& c, std::string_view v) { c.shortcut = shortcutFromText(v); }},
    {"SHAPE", [](Control& c, std::string_view v) { c.shape = leadingNumber(v); }},
    {"FLAGS",
     [](Control& c, std::string_view v) {
         c.flags = leadingNumber(v);
         c.readonly = (c.flags & READONLY) != 0;
     }},
    {"FONTNAME", [](Control& c, std::string_view v) { c.font.name = v; }},
    {"FONTSIZE", [](Control& c, std::string_view v) { c.font.size = leadingNumber(v); }},
    {"FONTBOLD", [](Control& c, std::string_view v) { c.font.bold = flag(v); }},
    {"FONTITALIC", [](Control& c, std::string_view v) { c.font.italic = flag(v); }},
};

const std::unordered_map<std::string_view, Setter> windowSetters = {
    {"BORDERSTYLE", [](Control& c, std::string_view v) { asWindow(c).borderStyle = leadingNumber(v); }},
    {"CLOSEBOX", [](Control& c, std::string_view v) { asWindow(c).closeBox = flag(v); }},
    {"MAXBUTTON", [](Control& c, std::string_view v) { asWindow(c).maxButton = flag(v); }},
    {"MINBUTTON", [](Control& c, std::string_view v) { asWindow(c).minButton = flag(v); }},
    {"OWNER",
     [](Control& c, std::string_view v) {
         asWindow(c).owned = leadingNumber(v) == 1;
         asWindow(c).onTop = leadingNumber(v) == 2;
     }},
};

void set(Control& control, std::string_view name, std::string_view value) {
    if (isWindowType(control.type)) {
        const auto own = windowSetters.find(name);
        if (own != windowSetters.end()) return own->second(control, value);
    }
    const auto setter = setters.find(name);
    if (setter != setters.end()) setter->second(control, value);
}

void fill(Control& control, Type type, const std::string& name, const Properties& properties) {
    control.type = type;
    control.name = name;
    if (hasText(type)) control.text = makePlainText();
    for (const PropertyRow& row : propertiesOf(type))
        if (!row.missing.empty()) set(control, row.name, row.missing);
    for (const auto& [property, value] : properties) set(control, property, value);
    if (type == Type::Combobox && !control.text->length()) {
        // A drop-down list shows one of its rows, so it begins with none.
        control.listIndex = 0;
    }
}

void fill(Control& control, const Object& window, const ObjectTemplate& from) {
    control.object = Object(window.window(), from.number);
    fill(control, from.type, from.name, from.properties);
    enroll(control);
}

// Resource units: a quarter of the average character's width, an eighth of its height; at least a pixel each, for
// the smallest fonts.
struct Measure {
    int width = 1, height = 1;
    explicit Measure(const Window& window) {
        width = std::max(view().textWidth(window, letters) / static_cast<int>(letters.size()), 1);
        height = std::max(view().textHeight(window, letters), 1);
    }
    [[nodiscard]] Rect pixels(const Rect& units) const {
        return {units.x * width / 4, units.y * height / 8, units.w * width / 4, units.h * height / 8};
    }
};

struct TextOf {
    int handle = 0;
    std::string text;
};

std::vector<TextOf> textsOf(const Window& window) {
    std::vector<TextOf> texts;
    const auto see = [&](const Control& control) {
        if (control.text != nullptr && control.text->length() > 0)
            texts.push_back({control.handle, control.text->text()});
    };
    see(window);
    for (const auto& control : window.controls) see(*control);
    return texts;
}

void giveTexts(const std::vector<TextOf>& texts) {
    for (const TextOf& one : texts) {
        TextStore& store = *state().byHandle.at(one.handle)->text;
        if (store.text() != one.text) store.setText(one.text);
    }
}

void place(Window& window) {
    const Measure measure(window);
    window.position = measure.pixels(window.units);
    for (const auto& control : window.controls) control->position = measure.pixels(control->units);
}

}  // namespace

bool hasText(Type type) {
    return isEditWindowType(type) || type == Type::Edit || type == Type::Combobox;
}
bool hasRows(Type type) {
    return type == Type::Listbox || type == Type::Iconlist || type == Type::Combobox;
}

void numberArrays(Window& window) {
    std::map<std::string, int, LessText> counts;
    const auto number = [&](Control& control) {
        control.index = control.array.empty() ? 0 : ++counts[control.array];
    };
    for (const auto& control : window.controls) number(*control);
    for (const auto& item : window.menuItems) number(*item);
}

Code makeWindow(const Object& object, const WindowTemplate& from, const std::string& file,
                const std::vector<std::string>& values) {
    auto made = std::make_unique<Window>();
    Window& window = *made;
    fill(window, object, from.window);
    window.object = object;
    window.resourceFile = file;
    const auto function = state().functions.find(&object.window());
    if (function != state().functions.end()) window.function = function->second;
    for (const ObjectTemplate& control : from.controls)
        fill(*window.controls.emplace_back(std::make_unique<Control>()), object, control);
    for (const ObjectTemplate& item : from.menu)
        fill(*window.menuItems.emplace_back(std::make_unique<Control>()), object, item);
    numberArrays(window);
    place(window);
    putValues(window, values);
    state().windows.push_back(std::move(made));
    const std::vector<TextOf> texts = textsOf(window);
    view().load(window);
    giveTexts(texts);  // a view may have put stores of its own in place
    if (const Rect frame = view().frameExtents(window); frame.w != 0 || frame.h != 0) {
        window.position.w += frame.w;
        window.position.h += frame.h;
        view().changed(window, Property::Position);
    }
    sendEvent(object, LOAD_EVENT, object, 0);
    return Ok;
}

std::unique_ptr<Control> makeLoose(std::string_view properties) {
    const ParsedList list = parsePropertyList(properties);
    if (isWindowType(list.type) || list.type == Type::Menuitem || propertiesOf(list.type).empty())
        return nullptr;
    auto control = std::make_unique<Control>();
    fill(*control, list.type, list.name, list.properties);
    return control;
}

std::unique_ptr<Control> makeMenuitem(const Control& like) {
    auto item = std::make_unique<Control>();
    const Window& window = windowOf(like);
    std::set<int> used;
    for (const auto& control : window.controls) used.insert(control->object.number());
    for (const auto& other : window.menuItems) used.insert(other->object.number());
    int number = like.object.number();
    while (used.contains(number)) ++number;
    item->object = Object(window.object.window(), number);
    item->type = Type::Menuitem;
    item->name = like.name;
    item->array = like.array;
    item->level = like.level;
    enroll(*item);
    return item;
}

}  // namespace tarn::platform
