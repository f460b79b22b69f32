// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/options/shortcuts.h"

#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>
#include <map>

MODULE("toolmenu")

namespace tarn {
namespace {

constexpr std::string_view Section = "Shortcuts", NoKeys = "none";

// ---- keys that no command can have ----

constexpr struct {
    std::string_view keys, reason;
} taken[] = {{"F1", "F1 shows the help of every window."},
             {"F2", "F2 shows the file information of the text editor."},
             {"Alt+F4", "Alt+F4 closes windows."},
             {"Ctrl+Tab", "Tab leads from one control to the next."},
             {"Ctrl+Shift+Tab", "Tab leads from one control to the next."}};

bool isPlain(std::string_view keys) {
    return STRFIND("Ctrl+", keys) == 0 && STRFIND("Alt+", keys) == 0;
}

bool isFunctionKey(std::string_view keys) {
    const std::string key(keys.substr(keys.rfind('+') + 1));
    return key.size() > 1 && key[0] == 'F' && ISDIGITS(key.substr(1));
}

bool isMnemonic(std::string_view keys) {
    return keys.size() == 5 && STREQUAL(keys.substr(0, 4), "Alt+") && !ISDIGITS(keys.substr(4));
}

// ---- the commands of a menu ----

// Their captions are data.
bool isCommandArray(const Object& item) {
    const platform::Answer<std::string> array = platform::Controlarray(item);
    return array.code != platform::Ok || (array.value != "file_mru_1" && array.value != "edit_undo_01");
}

std::string plainCaption(const Object& item) {
    std::string caption = STRREPLACE(GetCaption(item), "&", "");
    if (caption.ends_with("...")) caption.resize(caption.size() - 3);
    return caption;
}

std::vector<Object> menuItems(const Object& window) {
    std::vector<Object> items;
    for (const Object& control : ControlList(window))
        if (GetTypeof(control) == "Menuitem") items.push_back(control);
    return items;
}

std::string settingOf(const Object& item) {
    const std::string window = item.window() == Main.window() ? "" : item.window() + ".";
    return window + GetName(item);
}

// The keys that each item had when it was seen first, before anybody changed them.
const std::string& usualKeys(const std::string& setting, const Object& item) {
    static std::map<std::string, std::string> known;
    const auto place = known.find(setting);
    return place != known.end() ? place->second : known.emplace(setting, GetShortcut(item)).first->second;
}

void addCommands(const Object& window, std::vector<CommandKeys>& commands) {
    const std::vector<Object> items = menuItems(window);
    std::vector<std::string> path;
    for (std::size_t i = 0; i < items.size(); i++) {
        const auto level = static_cast<std::size_t>(std::max(GetMenulevel(items[i]), 1));
        const bool parent = i + 1 < items.size() && GetMenulevel(items[i + 1]) > static_cast<int>(level);
        const std::string caption = plainCaption(items[i]);
        path.resize(level - 1);
        path.push_back(caption);
        if (parent || level == 1 || caption.empty() || caption == "-" || !isCommandArray(items[i])) continue;
        CommandKeys command{items[i], settingOf(items[i]), path[0], "", GetShortcut(items[i])};
        for (std::size_t part = 1; part < path.size(); part++) command.title += "-" + path[part];
        command.usual = usualKeys(command.setting, items[i]);
        commands.push_back(command);
    }
}

// ---- the settings ----

// What the settings give a command; false if they say nothing that can be used.
bool storedKeys(const std::string& setting, std::string& keys) {
    const std::string text = STRTRIM(PROFILESTRGET(GETIDEINIFILE(), Section, setting));
    if (text.empty()) return false;
    const bool none = STREQUAL(text, NoKeys);
    keys = none ? "" : ShortcutName(text);
    return none || SHORTCUTFAULT(keys).empty();
}

// Takes back what gives keys to two commands, the later one first, until none does. The usual keys are all different, so
// that comes to an end.
void dropConflicts(std::vector<CommandKeys>& commands) {
    for (auto one = commands.rbegin(); one != commands.rend();) {
        const bool own = one->keys != one->usual;
        if (own && COMMANDWITHKEYS(commands, one->item, one->keys) != nullptr) {
            one->keys = one->usual;
            one = commands.rbegin();
        } else {
            ++one;
        }
    }
}

// ---- the hints of the toolbar, which name the keys ----

void nameKeysInHint(const Object& window, const CommandKeys& command) {
    const Object button = FINDCONTROL(window, "btn" + GetName(command.item));
    if (button.empty()) return;
    std::string hint = GetHint(button);
    const std::size_t open = hint.rfind(" (");
    if (open != std::string::npos && hint.ends_with(')')) hint.resize(open);
    SetHint(button, command.keys.empty() ? hint : hint + " (" + command.keys + ")");
}

void giveKeys(const CommandKeys& command) {
    SetShortcut(command.item, command.keys);
    nameKeysInHint(command.item.owner(), command);
}

}  // namespace

std::vector<CommandKeys> COMMANDKEYS() {
    FRAME(COMMANDKEYS);
    std::vector<CommandKeys> commands;
    STAMP();
    for (const Object& window : WindowList()) addCommands(window, commands);
    STAMP();
    std::stable_partition(commands.begin(), commands.end(),
                          [](const CommandKeys& command) { return command.item.window() == Main.window(); });
    return commands;
}

std::string SHORTCUTFAULT(std::string_view keys) {
    FRAME(SHORTCUTFAULT);
    const std::string name = ShortcutName(keys);
    if (name.empty()) return "These keys have no name by which a command could have them.";
    for (const auto& one : taken)
        if (one.keys == name) return std::string(one.reason);
    if (IsTextKey(name)) return name + " belongs to the text editor.";
    if (isMnemonic(name)) return name + " opens menus.";
    if (isPlain(name) && !isFunctionKey(name)) return name + " is needed without Ctrl and Alt.";
    return {};
}

const CommandKeys* COMMANDWITHKEYS(const std::vector<CommandKeys>& commands, const Object& of,
                                   std::string_view keys) {
    FRAME(COMMANDWITHKEYS);
    for (const CommandKeys& command : commands)
        if (!keys.empty() && command.keys == keys && command.item != of &&
            command.item.window() == of.window())
            return &command;
    return nullptr;
}

void APPLYSHORTCUTS(const Object& window) {
    FRAME(APPLYSHORTCUTS);
    std::vector<CommandKeys> commands;
    STAMP();
    addCommands(window, commands);
    STAMP();
    const std::string settings = "\n" + PROFILESTRKEYS(GETIDEINIFILE(), Section);
    for (CommandKeys& command : commands) {
        std::string keys;
        // As a rule there are none, and a start has no time to look for each of them in the file.
        const bool isThere = STRFIND("\n" + command.setting + "\n", settings) > 0;
        command.keys = isThere && storedKeys(command.setting, keys) ? keys : command.usual;
    }
    STAMP();
    dropConflicts(commands);
    STAMP();
    for (const CommandKeys& command : commands) giveKeys(command);
    STAMP();
}

void SAVESHORTCUTS(const std::vector<CommandKeys>& commands) {
    FRAME(SAVESHORTCUTS);
    const std::string file = GETIDEINIFILE();
    for (const CommandKeys& command : commands) {
        STAMP();
        const std::string now = PROFILESTRGET(file, Section, command.setting);
        const std::string wanted = command.keys == command.usual ? ""
                                   : command.keys.empty()        ? std::string(NoKeys)
                                                                 : command.keys;
        if (wanted.empty() && !now.empty()) PROFILESTRDEL(file, Section, command.setting);
        if (!wanted.empty() && wanted != now) PROFILESTRPUT(file, Section, command.setting, wanted);
        giveKeys(command);
    }
    STAMP();
}

}  // namespace tarn
