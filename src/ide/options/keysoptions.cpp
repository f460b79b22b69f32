// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/options/keysoptions.h"

#include "ide/options/shortcuts.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("toolmenu")

namespace tarn {
namespace {

// The keys as the user has chosen them so far, in the order of the rows.
std::vector<CommandKeys> chosen;

Object in(const Object& window, std::string_view control) {
    return FINDCONTROL(window, control);
}

// The selected command; null if there is none.
CommandKeys* selected(const Object& window) {
    const int row = GetListIndex(in(window, "iconlist1"));
    return row > 0 && row <= static_cast<int>(chosen.size()) ? &chosen[static_cast<std::size_t>(row - 1)]
                                                             : nullptr;
}

std::string rowOf(const CommandKeys& command) {
    return command.title + "\t" + command.keys + "\t" + command.usual;
}

void refreshRow(const Object& window, const CommandKeys& command) {
    SetList(in(window, "iconlist1"), static_cast<int>(&command - chosen.data()) + 1, rowOf(command));
}

// The command of another window that has the keys too; null if none has.
const CommandKeys* elsewhere(const CommandKeys& command, const std::string& keys) {
    for (const CommandKeys& other : chosen)
        if (!keys.empty() && other.keys == keys && other.item.window() != command.item.window())
            return &other;
    return nullptr;
}

// What there is to say about the keys in the field.
std::string remark(const CommandKeys& command, const std::string& keys) {
    if (keys.empty()) return "";
    if (const std::string fault = SHORTCUTFAULT(keys); !fault.empty()) return fault;
    if (keys == command.keys) return command.title + " has " + keys + ".";
    if (const CommandKeys* other = COMMANDWITHKEYS(chosen, command.item, keys); other != nullptr)
        return keys + " is used by " + other->title + ".";
    if (const CommandKeys* other = elsewhere(command, keys); other != nullptr)
        return keys + " is also " + other->title + " in another window.";
    return keys + " is free.";
}

void bringUpToDate(const Object& window) {
    const CommandKeys* command = selected(window);
    const std::string keys = GetText(in(window, "edtkeys"));
    const bool usable = command != nullptr && !keys.empty() && SHORTCUTFAULT(keys).empty();
    SetCaption(in(window, "lblremark"), command == nullptr ? "" : remark(*command, keys));
    SetEnabled(in(window, "btnassign"), usable && keys != command->keys);
    SetEnabled(in(window, "btnremove"), command != nullptr && !command->keys.empty());
    SetEnabled(in(window, "btnusual"), command != nullptr && command->keys != command->usual);
    const bool changed = std::any_of(chosen.begin(), chosen.end(),
                                     [](const CommandKeys& one) { return one.keys != one.usual; });
    SetEnabled(in(window, "btnallusual"), changed);
}

void give(const Object& window, CommandKeys& command, const std::string& keys) {
    command.keys = keys;
    refreshRow(window, command);
    SetText(in(window, "edtkeys"), "");
    bringUpToDate(window);
}

// Takes the keys away from the command of the same window that has them, if the user agrees; false if not.
bool freeKeys(const Object& window, const CommandKeys& command, const std::string& keys) {
    const CommandKeys* other = COMMANDWITHKEYS(chosen, command.item, keys);
    if (other == nullptr) return true;
    const std::string answer = MsgBox(GetCaption(window),
                                      keys + " is used by " + other->title + ".\nDo you want " +
                                          command.title + " to have it instead?",
                                      "&Yes\n&No", BoxIcon::Question);
    if (answer != "&Yes") return false;
    CommandKeys& loser = chosen[static_cast<std::size_t>(other - chosen.data())];
    loser.keys.clear();
    refreshRow(window, loser);
    return true;
}

void assign(const Object& window) {
    CommandKeys* command = selected(window);
    const std::string keys = GetText(in(window, "edtkeys"));
    if (command == nullptr || !SHORTCUTFAULT(keys).empty()) return Sound();
    if (keys != command->keys && freeKeys(window, *command, keys)) give(window, *command, keys);
}

void remove(const Object& window) {
    if (CommandKeys* command = selected(window); command != nullptr) give(window, *command, "");
}

void restore(const Object& window) {
    CommandKeys* command = selected(window);
    if (command != nullptr && freeKeys(window, *command, command->usual))
        give(window, *command, command->usual);
}

void restoreAll(const Object& window) {
    for (CommandKeys& command : chosen) {
        if (command.keys == command.usual) continue;
        command.keys = command.usual;
        refreshRow(window, command);
    }
    SetText(in(window, "edtkeys"), "");
    bringUpToDate(window);
}

void load(const Object& window) {
    chosen = COMMANDKEYS();
    const Object list = in(window, "iconlist1");
    SetCaption(list, "Command\tKeys\tUsual keys");
    for (const CommandKeys& command : chosen) AddItem(list, rowOf(command));
    SetListIndex(list, 1);
    SetFlags(in(window, "edtkeys"), KEYFIELD);
    bringUpToDate(window);
}

constexpr DialogButton buttons[] = {
    {"btnassign", assign}, {"btnremove", remove}, {"btnusual", restore}, {"btnallusual", restoreAll}};
constexpr DialogShape shape{.showHelp = SHOWWINDOWHELP,
                            .load = load,
                            .accept = [](const Object&) { SAVESHORTCUTS(chosen); },
                            .buttons = buttons};
const RegisteredWindow registered("KeysOptionsDlg", KEYSOPTIONSDLG);

// Return in the field assigns what is in it.
bool isAssigning(const Object& window, int event, const Object& control, int parameter) {
    return event == KEYPRESS_EVENT && parameter == KEY_RETURN && GetName(control) == "edtkeys" &&
           GetEnabled(in(window, "btnassign"));
}

bool handle(const Object& window, int event, const Object& control, int parameter) {
    if (isAssigning(window, event, control, parameter)) return assign(window), true;
    if (event == CHANGE_EVENT) return bringUpToDate(window), true;
    return DIALOGSHAPEEVENT(shape, window, event, control, parameter);
}

}  // namespace

bool KEYSOPTIONSDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(KEYSOPTIONSDLG);
    STAMP();
    const bool result = handle(window, event, control, parameter);
    STAMP();
    return result;
}

void KEYSOPTIONSDIALOG() {
    FRAME(KEYSOPTIONSDIALOG);
    STAMP();
    Load(KeysOptionsDlg);
    STAMP();
    Show(KeysOptionsDlg, true);
    STAMP();
}

}  // namespace tarn
