// SPDX-License-Identifier: Apache-2.0
#include "platform/registry.h"

#include "os/files.h"
#include "os/process.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace tarn::platform {

namespace {

struct Line {
    bool setting = false;
    std::string name, value;  // of a setting
    std::string text;         // as it stands in the file
};

struct Section {
    std::string key;  // empty: what stands before the first section
    std::vector<Line> lines;
};

using Registry = std::vector<Section>;

// One `\` between parts, none at the ends.
std::string keyOf(std::string_view text) {
    std::string key;
    for (const char c : text) {
        if (c != '\\' || (!key.empty() && key.back() != '\\')) key += c;
    }
    if (key.ends_with('\\')) key.pop_back();
    return key;
}

// What is left of `key` below `above`; empty if it is not below.
std::string_view below(std::string_view key, std::string_view above) {
    if (above.empty()) return key;
    const bool inside = key.size() > above.size() && key[above.size()] == '\\' &&
                        ascii::equal(key.substr(0, above.size()), above);
    return inside ? key.substr(above.size() + 1) : std::string_view();
}

// ---- The text of the file

std::string escaped(std::string_view text, std::string_view special) {
    std::string result;
    for (const char c : text) {
        if (c == '\n' || c == '\r' || c == '\\' || special.find(c) != std::string_view::npos) result += '\\';
        result += c == '\n' ? 'n' : c == '\r' ? 'r' : c;
    }
    return result;
}

std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escape = text[i] == '\\' && i + 1 < text.size();
        if (escape) ++i;
        const char c = text[i];
        result += escape && c == 'n' ? '\n' : escape && c == 'r' ? '\r' : c;
    }
    return result;
}

Line settingOf(const std::string& name, const std::string& value) {
    // Unescaped these would end the name, or begin a section or a comment.
    return {true, name, value, escaped(name, "=[;#") + "=" + escaped(value, "")};
}

Line lineOf(std::string_view text) {
    Line line;
    line.text = text;
    if (text.starts_with(';') || text.starts_with('#')) return line;
    std::size_t at = 0;
    while (at < text.size() && text[at] != '=') at += text[at] == '\\' ? 2 : 1;
    if (at >= text.size()) return line;
    line.setting = true;
    line.name = unescaped(text.substr(0, at));
    line.value = unescaped(text.substr(at + 1));
    return line;
}

Registry parse(std::string_view text) {
    Registry registry(1);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);  // a value's own is escaped
        const bool bracketed = line.size() > 2 && line.front() == '[' && line.back() == ']';
        const std::string key = bracketed ? keyOf(line.substr(1, line.size() - 2)) : std::string();
        if (!key.empty()) {
            registry.push_back({key, {}});
        } else {
            registry.back().lines.push_back(lineOf(line));
        }
    }
    return registry;
}

std::string textOf(const Registry& registry) {
    std::string text;
    for (const Section& section : registry) {
        if (!section.key.empty()) text += "[" + section.key + "]\n";
        for (const Line& line : section.lines) text += line.text + "\n";
    }
    return text;
}

std::string fileName() {
    return os::settingsFolder() + "registry.ini";
}

os::FileError load(Registry& registry) {
    std::string text;
    const os::FileError error = os::readFile(fileName(), text);
    registry = parse(text);
    return error == os::FileError::NotFound ? os::FileError::None : error;
}

os::FileError store(const Registry& registry) {
    const os::FileError error = os::makeFolders(os::settingsFolder());
    if (error != os::FileError::None) return error;
    return os::saveFile(fileName(), textOf(registry), os::Durability::Unsynced).error;
}

// ---- Looking and changing

// A key that stands twice is one key: the first value of a name counts. Null if there is none.
const Line* findSetting(const Registry& registry, const std::string& key, const std::string& name) {
    for (const Section& section : registry) {
        if (section.key.empty() || !ascii::equal(section.key, key)) continue;
        for (const Line& line : section.lines) {
            if (line.setting && ascii::equal(line.name, name)) return &line;
        }
    }
    return nullptr;
}

Section& sectionFor(Registry& registry, const std::string& key) {
    const auto found = std::find_if(registry.begin() + 1, registry.end(),
                                    [&](const Section& section) { return ascii::equal(section.key, key); });
    if (found != registry.end()) return *found;
    registry.push_back({key, {}});
    return registry.back();
}

// New settings go before the empty lines at the end of a section.
void append(Section& section, Line line) {
    auto at = section.lines.end();
    while (at != section.lines.begin() && (at - 1)->text.empty()) --at;
    section.lines.insert(at, std::move(line));
}

bool isKey(const std::string& key) {
    return !key.empty() && key.find_first_of("\r\n") == std::string::npos;
}

std::string messageOf(os::FileError error) {
    return std::string(os::describe(error));
}

}  // namespace

bool RegKeyExists(const std::string& key) {
    Registry registry;
    load(registry);
    const std::string wanted = keyOf(key);
    return std::any_of(registry.begin() + 1, registry.end(), [&](const Section& section) {
        return ascii::equal(section.key, wanted) || !below(section.key, wanted).empty();
    });
}

std::string RegGetSetting(const std::string& key, const std::string& name) {
    Registry registry;
    load(registry);
    const Line* const found = findSetting(registry, keyOf(key), name);
    return found != nullptr ? found->value : std::string();
}

RegInfo RegGetSettingInfo(const std::string& key, const std::string& name) {
    Registry registry;
    load(registry);
    const Line* const found = findSetting(registry, keyOf(key), name);
    if (found == nullptr) return {};
    std::string_view digits = found->value;
    if (digits.starts_with('-') || digits.starts_with('+')) digits.remove_prefix(1);
    const bool number = !digits.empty() && digits.find_first_not_of("0123456789") == std::string_view::npos;
    return {true, static_cast<std::int64_t>(found->value.size()), number};
}

std::string RegSaveSetting(const std::string& key, const std::string& name, const std::string& value) {
    const std::string wanted = keyOf(key);
    if (!isKey(wanted)) return "The key of a setting must be a name in one line.";
    Registry registry;
    if (const os::FileError error = load(registry); error != os::FileError::None) return messageOf(error);
    // The registry is this function's own, so what the search gives may be changed.
    Line* const found = const_cast<Line*>(findSetting(registry, wanted, name));
    if (found != nullptr && found->value == value) return {};
    if (found != nullptr) {
        *found = settingOf(found->name, value);
    } else {
        append(sectionFor(registry, wanted), settingOf(name, value));
    }
    return messageOf(store(registry));
}

std::string RegDeleteSetting(const std::string& key, const std::string& name) {
    const std::string wanted = keyOf(key);
    Registry registry;
    if (const os::FileError error = load(registry); error != os::FileError::None) return messageOf(error);
    std::size_t removed = 0;
    for (Section& section : registry) {
        if (section.key.empty() || !ascii::equal(section.key, wanted)) continue;
        removed += std::erase_if(
            section.lines, [&](const Line& line) { return line.setting && ascii::equal(line.name, name); });
    }
    return removed == 0 ? std::string() : messageOf(store(registry));
}

std::string RegGetAllSections(const std::string& key) {
    Registry registry;
    load(registry);
    const std::string above = keyOf(key);
    std::vector<std::string> names;
    for (const Section& section : registry) {
        const std::string_view rest = below(section.key, above);
        const std::string name(rest.substr(0, rest.find('\\')));
        const auto known = [&](const std::string& one) { return ascii::equal(one, name); };
        if (!name.empty() && std::none_of(names.begin(), names.end(), known)) names.push_back(name);
    }
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : "\n") + name;
    return text;
}

std::string RegGetAllSettings(const std::string& key) {
    Registry registry;
    load(registry);
    const std::string wanted = keyOf(key);
    std::string text;
    for (const Section& section : registry) {
        if (section.key.empty() || !ascii::equal(section.key, wanted)) continue;
        for (const Line& line : section.lines) {
            if (line.setting) text += (text.empty() ? "" : "\n") + line.text;
        }
    }
    return text;
}

}  // namespace tarn::platform
