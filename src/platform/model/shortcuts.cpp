// SPDX-License-Identifier: Apache-2.0
//
// The names of keys, and which of them a text keeps for itself. Cost: one pass over a small table.
#include "platform/model/model.h"
#include "platform/model/state.h"
#include "platform/operations/values.h"
#include "platform/text.h"

#include <algorithm>
#include <iterator>

namespace tarn::platform {

namespace {

struct NamedKey {
    std::string_view name;
    int code;
};

constexpr NamedKey modifiers[] = {{"Ctrl+", 0x1000}, {"Shift+", 0x2000}, {"Alt+", 0x4000}};
constexpr int KeyMask = 0xFFF;

constexpr NamedKey namedKeys[] = {
    {"Up", 38},     {"Down", 40},   {"Left", 37},     {"Right", 39}, {"Del", 46},      {"Delete", 46},
    {"Ins", 45},    {"Insert", 45}, {"End", 35},      {"Home", 36},  {"Enter", 13},    {"Return", 13},
    {"Escape", 27}, {"Esc", 27},    {"PgDn", 34},     {"PgUp", 33},  {"PageDown", 34}, {"PageUp", 33},
    {"Space", 32},  {"Tab", 9},     {"Backspace", 8}, {"Plus", 187}, {"Minus", 189},
};

int keyFromText(std::string_view text) {
    if (text.size() == 1) {
        const char c = upper(text[0]);  // the codes of other characters are those of the named keys
        return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ? c : 0;
    }
    if (upper(text[0]) == 'F')
        if (const auto number = wholeNumber(text.substr(1)); number && *number >= 1 && *number <= 24)
            return 111 + *number;
    for (const NamedKey& key : namedKeys)
        if (sameText(key.name, text)) return key.code;
    return 0;
}

}  // namespace

int shortcutFromText(std::string_view text) {
    int code = 0;
    for (bool found = true; found;) {
        found = false;
        for (const NamedKey& modifier : modifiers) {
            if (!sameText(text.substr(0, modifier.name.size()), modifier.name)) continue;
            code |= modifier.code;
            text.remove_prefix(modifier.name.size());
            found = true;
        }
    }
    const int key = text.empty() ? 0 : keyFromText(text);
    return key == 0 ? 0 : code | key;
}

std::string shortcutName(int shortcut) {
    const int key = shortcut & KeyMask;
    std::string name;
    if ((key >= 'A' && key <= 'Z') || (key >= '0' && key <= '9'))
        name = static_cast<char>(key);
    else if (key >= KEY_F1 && key < KEY_F1 + 24)
        name = "F" + std::to_string(key - KEY_F1 + 1);
    for (const NamedKey& named : namedKeys)
        if (name.empty() && named.code == key) name = named.name;
    if (name.empty()) return name;
    for (const NamedKey& modifier : {modifiers[2], modifiers[1], modifiers[0]})
        if ((shortcut & modifier.code) != 0) name.insert(0, modifier.name);
    return name;
}

std::string ShortcutName(std::string_view keys) {
    return shortcutName(shortcutFromText(keys));
}

// ---- keys of texts ----

bool isTextKey(int shortcut) {
    constexpr int Ctrl = modifiers[0].code, Shift = modifiers[1].code, Alt = modifiers[2].code;
    constexpr int Insert = 45, Backspace = 8, FirstCaretKey = 33, LastCaretKey = 40;
    static constexpr int keys[] = {
        Ctrl + 'A',         Ctrl + 'C',         Ctrl + 'V',        Ctrl + 'X',     Ctrl + 'Z',
        Ctrl + 'Y',         Ctrl + Shift + 'Z', Ctrl + Insert,     Shift + Insert, Insert,
        Shift + KEY_DELETE, KEY_DELETE,         Ctrl + KEY_DELETE, Backspace,      Ctrl + Backspace,
    };
    if (std::find(std::begin(keys), std::end(keys), shortcut) != std::end(keys)) return true;
    const int key = shortcut & KeyMask;
    return key >= FirstCaretKey && key <= LastCaretKey && (shortcut & Alt) == 0;
}

bool IsTextKey(std::string_view keys) {
    return isTextKey(shortcutFromText(keys));
}

}  // namespace tarn::platform
