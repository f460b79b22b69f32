// SPDX-License-Identifier: Apache-2.0
//
// Rows of list controls, and the named values of windows.
#include "platform/operations/lists.h"

#include "os/text/ascii.h"
#include "platform/model/access_internal.h"
#include "platform/text.h"

#include <algorithm>

namespace tarn::platform {

namespace {

// A row has no line end. A carriage return by itself is none: it may end the last value of a property list.
std::string rowText(std::string_view text) {
    const std::size_t end = text.ends_with("\r\n") ? 2 : text.ends_with('\n') ? 1 : 0;
    return std::string(text.substr(0, text.size() - end));
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

Code SetList(const Object& list, int row, std::string_view text, std::string_view picture) {
    return tell(list, Property::Rows, [&](Control& c) {
        if (!hasRow(c, row)) return false;
        Row& one = c.rows[static_cast<std::size_t>(row - 1)];
        const bool news = assign(one.text, rowText(text));
        return assign(one.picture, std::string(picture)) || news;
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

Code Clear(const Object& object) {
    return tell(object, Property::Rows, [](Control& c) {
        if (c.type == Type::Dialog || c.type == Type::Image) view().wipe(c);
        if (!hasRows(c.type)) return false;
        c.rows.clear();
        c.listIndex = 0;
        return true;
    });
}

// ---- named values ----

namespace {

using NamedValues = std::vector<std::pair<std::string, std::string>>;

NamedValues::iterator valueOf(NamedValues& values, std::string_view name) {
    return std::find_if(values.begin(), values.end(),
                        [&](const auto& one) { return sameText(one.first, name); });
}

void setValue(NamedValues& values, std::string_view name, std::string_view value) {
    const auto place = valueOf(values, name);
    if (place != values.end())
        place->second = value;
    else if (!name.empty())
        values.emplace_back(name, value);
}

}  // namespace

Answer<std::string> GetArrayValue(const Object& object, std::string_view name) {
    Window* const window = findWindow(object);
    if (window == nullptr) return {"", WindowNotLoaded};
    const auto place = valueOf(window->values, name);
    return {place == window->values.end() ? std::string() : place->second, Ok};
}

Code SetArrayValue(const Object& object, std::string_view name, std::string_view value) {
    Window* const window = findWindow(object);
    if (window == nullptr) return WindowNotLoaded;
    setValue(window->values, name, value);
    return Ok;
}

Answer<std::vector<std::string>> GetArrayValues(const Object& object, std::string_view pattern) {
    const Window* const window = findWindow(object);
    if (window == nullptr) return {{}, WindowNotLoaded};
    Answer<std::vector<std::string>> answer;
    for (const auto& [name, value] : window->values)
        if (ascii::matches(name, pattern)) answer.value.push_back(name + "=" + value);
    return answer;
}

Code SetArrayValues(const Object& object, const std::vector<std::string>& values) {
    Window* const window = findWindow(object);
    if (window == nullptr) return WindowNotLoaded;
    putValues(*window, values);
    return Ok;
}

void putValues(Window& window, const std::vector<std::string>& values) {
    for (const std::string_view line : values) {
        const std::size_t sign = std::min(line.find('='), line.size());
        setValue(window.values, line.substr(0, sign), line.substr(std::min(sign + 1, line.size())));
    }
}

}  // namespace tarn::platform
