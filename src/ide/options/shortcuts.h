// SPDX-License-Identifier: GPL-3.0-or-later
//
// The keys of menu commands. Each command has usual keys, those of the resource file, and may get others, or none, from
// the user. Only what differs stands in the settings, in the section "Shortcuts": the name of the menu item, with its
// window and a full stop in front of it unless that is Main, and the name of the keys, or "none". A setting that names no
// keys, or keys that cannot be used, or that would give keys of one window to two commands, is ignored: the command keeps
// its usual keys. Keys of Main hold in every window, but a window's own come first.
//
// The recent files and the backups of the menu are no commands here: what they stand for changes.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct CommandKeys {
    Object item;
    std::string setting;      // its key in the settings
    std::string title;        // "File-Save As"
    std::string usual, keys;  // by the resource file, and now; empty for none
};
// The commands of the loaded windows in the order of their menus, Main's first.
std::vector<CommandKeys> COMMANDKEYS();
// Why no command can have the keys; empty if one can.
std::string SHORTCUTFAULT(std::string_view keys);
// The one of `commands` in the window of `of`, other than `of`, that has the keys; null if none has.
const CommandKeys* COMMANDWITHKEYS(const std::vector<CommandKeys>& commands, const Object& of,
                                   std::string_view keys);

// Gives the commands of a window their keys, as the settings have them. To be called when a window with a menu has been
// loaded.
void APPLYSHORTCUTS(const Object& window);
// Gives all commands the keys that stand in `commands`, and stores those that differ from the usual ones.
void SAVESHORTCUTS(const std::vector<CommandKeys>& commands);

}  // namespace tarn
