// SPDX-License-Identifier: Apache-2.0
//
// What the lines of a script do.
#include "support/user_script.h"

#include "os/clock.h"
#include "os/files.h"
#include "platform/model/linemarks.h"
#include "support/sheet_rows.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <unistd.h>

namespace tarn {

using namespace platform;

namespace {

constexpr int Ctrl = 0x1000, Shift = 0x2000;
const std::map<std::string, int> struckKeys = {{"Tab", 9},
                                               {"Ctrl+Plus", Ctrl + 187},
                                               {"Ctrl+Minus", Ctrl + 189},
                                               {"Shift+Tab", Shift + 9},
                                               {"F2", KEY_F2},
                                               {"F3", KEY_F3},
                                               {"F6", 117},
                                               {"Del", KEY_DELETE},
                                               {"Ctrl+Left", Ctrl + KEY_LEFT},
                                               {"Ctrl+Right", Ctrl + KEY_RIGHT},
                                               {"Ctrl+Up", Ctrl + KEY_UP},
                                               {"Ctrl+Down", Ctrl + KEY_DOWN},
                                               {"Up", KEY_UP},
                                               {"Down", KEY_DOWN},
                                               {"F1", KEY_F1},
                                               {"F4", KEY_F4},
                                               {"Esc", KEY_ESCAPE},
                                               {"Left", KEY_LEFT},
                                               {"Return", KEY_RETURN},
                                               {"Right", KEY_RIGHT}};

// By its name, or Ctrl and a letter; 0 if there is none.
int struckKey(const std::string& name) {
    constexpr std::string_view control = "Ctrl+";
    const auto code = struckKeys.find(name);
    if (code != struckKeys.end()) return code->second;
    const bool letter = name.size() == control.size() + 1 && name.back() >= 'A' && name.back() <= 'Z';
    return letter && name.starts_with(control) ? Ctrl + name.back() : 0;
}

// The 1-based position of a line's start and its length without the line end; start 0 if there is no such
// line.
Selection lineOf(const std::string& text, int number) {
    std::size_t at = 0;
    for (int i = 1; i < number; i++) {
        at = text.find('\n', at);
        if (at == std::string::npos) return {0, 0};
        at++;
    }
    const std::size_t end = std::min(text.find_first_of("\r\n", at), text.size());
    return {static_cast<int>(at) + 1, static_cast<int>(end - at)};
}

int number(const std::string& text) {
    return std::atoi(text.c_str());
}

std::int64_t seconds(const std::string& text) {
    return std::atoll(text.c_str() + (text[0] == '+' ? 1 : 0));
}

const Object CodeWindow("SDIEdit");

void putCaret(int line) {
    SetSelection(CodeWindow, lineOf(GetText(CodeWindow).value, line).start, 0);
}

// A window, when the line has that many words; with more, a control in it.
Object targetOf(const ScriptWords& words, std::size_t ofWindow) {
    return words.size() == ofWindow ? Object(words[1]) : FindControl(Object(words[1]), words[2]);
}

}  // namespace

// What each line does. The others only wait, or are done by the time they can be.
const std::map<std::string, UserDriver::Deed>& UserDriver::deeds() {
    using User = UserDriver;
    static const std::map<std::string, Deed> all = {
        {"activate", &User::activate},
        {"answer", &User::answer},
        {"choose-file", &User::answer},
        {"click",
         [](User& user, const ScriptWords& w) { user.hands_.click(FindControl(Object(w[1]), w[2])); }},
        {"clock", [](User&, const ScriptWords& w) { os::clock().sleep(seconds(w[1]) * 1'000'000'000); }},
        {"close", [](User&, const ScriptWords& w) { userClose(*findWindow(Object(w[1]))); }},
        {"command", [](User&, const ScriptWords& w) { userCommand(*commanded(w)); }},
        {"dblclick", [](User&, const ScriptWords& w) { doubleClick(targetOf(w, 3), number(w.back())); }},
        {"design", [](User& user, const ScriptWords& w) { user.hands_.design(w[1], w[2]); }},
        {"drag", &User::point},
        {"dump", [](User&, const ScriptWords& w) { std::printf("%s", dumpWindow(Object(w[1])).c_str()); }},
        {"edit", [](User& user, const ScriptWords& w) { user.edit(w[1], w[2]); }},
        {"input", &User::answer},
        {"key", &User::key},
        {"margin",
         [](User&, const ScriptWords& w) { userMarginClick(*findControl(CodeWindow), number(w[1])); }},
        {"maximise", [](User& user, const ScriptWords& w) { user.hands_.maximise(Object(w[1])); }},
        {"mouse", &User::mouse},
        {"pick", &User::answer},
        {"point", &User::point},
        {"press",
         [](User&, const ScriptWords& w) { userCommand(*findControl(FindControl(Object(w[1]), w[2]))); }},
        {"run", &User::run},
        {"screenshot", [](User& user, const ScriptWords& w) { user.hands_.screenshot(w[1]); }},
        {"select", [](User&, const ScriptWords& w) { putCaret(number(w[1])); }},
        {"set", [](User& user, const ScriptWords& w) { user.set(FindControl(Object(w[1]), w[2]), w[3]); }},
        {"sheet", [](User& user, const ScriptWords& w) { user.sheet(w[1], user.dir_ + w[2]); }},
        {"start", &User::startSecond},
        {"strike", &User::strike},
        {"tick", [](User&, const ScriptWords& w) { timerFired(*findControl(targetOf(w, 2))); }},
        {"type", [](User& user, const ScriptWords& w) { user.hands_.type(w[1]); }},
    };
    return all;
}

void UserDriver::act(const ScriptLine& line) {
    const auto deed = deeds().find(line.words[0]);
    if (deed != deeds().end()) deed->second(*this, line.words);
}

void UserDriver::refuse(const std::string& why) {
    at_--;
    fail(why);
}

void UserDriver::activate(const ScriptWords& words) {
    if (view().asking() == nullptr) userReturn(*findWindow(Object(words[1])));
}

void UserDriver::answer(const ScriptWords& words) {
    if (!view().answer(words[1])) refuse("The open question takes no such answer.");
}

void UserDriver::key(const ScriptWords& words) {
    if (!hands_.key(words[1])) refuse("There is no such key.");
}

void UserDriver::mouse(const ScriptWords& words) {
    hands_.mouse(Object(words[1]), number(words[2]), number(words[3]), number(words[4]));
}

void UserDriver::run(const ScriptWords& words) {
    std::string command = "cd '" + dir_ + "' &&";
    for (std::size_t i = 1; i < words.size(); i++) command += " " + words[i];
    if (std::system(command.c_str()) != 0) refuse("The command failed.");
}

bool isList(const Control& control) {
    return control.type == Type::Listbox || control.type == Type::Iconlist;
}

void UserDriver::set(const Object& object, const std::string& value) {
    Control& control = *findControl(object);
    const bool numbered = control.type == Type::Checkbox || control.type == Type::Radiobutton ||
                          control.type == Type::Scrollbar;
    if (numbered) return userValue(control, number(value));
    if (isList(control)) return userRow(control, number(value));
    if (control.text == nullptr) return refuse("Nothing can be set there.");
    control.text->setText(value);
    userChange(control);
}

void UserDriver::edit(const std::string& from, const std::string& to) {
    const std::size_t at = GetText(CodeWindow).value.find(from);
    if (at == std::string::npos) return refuse("The Code window does not hold that text.");
    SetSelection(CodeWindow, static_cast<int>(at) + 1, static_cast<int>(from.size()));
    SetSelText(CodeWindow, to);
}

// On a line of an edit window, or on a row of a list: of that one, or of the first in a window.
void UserDriver::doubleClick(const Object& object, int place) {
    Control* list = findControl(object);
    if (object.isWindow())
        for (const auto& control : findWindow(object)->controls)
            if (isList(*control) && (list == nullptr || !isList(*list))) list = control.get();
    Control& target = *list;
    if (isList(target)) {
        userRow(target, place);
    } else {
        const Selection line = lineOf(GetText(object).value, place);
        SetSelection(object, line.start, line.length);
    }
    userDoubleClick(target, 0, 0);
}

void UserDriver::strike(const ScriptWords& words) {
    const int code = struckKey(words[3]);
    if (code == 0) return refuse("There is no such key.");
    const Object window(words[1]);
    Control* const focus = words[2] == "-" ? nullptr : findControl(FindControl(window, words[2]));
    userKey(*findWindow(window), focus, code);
}

void UserDriver::point(const ScriptWords& words) {
    const bool corner = words.size() > 4 && words[4] == "corner";
    const bool done = words[0] == "point" ? hands_.point(words[1], words.size() > 2 ? words[2] : "")
                                          : hands_.drag(words[1], corner, number(words[2]), number(words[3]));
    if (!done) refuse("The dialog has no such object.");
}

void UserDriver::sheet(const std::string& title, const std::string& file) {
    std::string rows, outcome;
    os::readFile(file, rows);
    if (!showSheet(title, rows, outcome))
        return refuse("A row of the sheet is not of the form name|options|value.");
    if (!os::saveFile(file + ".out", outcome, os::Durability::Unsynced).ok())
        fail("What the sheet gave could not be written.");
}

// The second copy is this program again, in the model mode and with nobody to answer it. It works in the
// case's folder, wherever this one has gone.
void UserDriver::startSecond(const ScriptWords& words) {
    std::string command = "cd '" + dir_ + "' && TARNWICK_SECOND='" + profile_ + "' TARNWICK_SECOND_LOG='" +
                          dir_ + words[1] + ".log' ";
    command += "'/proc/" + std::to_string(getpid()) + "/exe' second";
    for (std::size_t i = 2; i < words.size(); i++) command += " '" + words[i] + "'";
    command += " >/dev/null 2>&1 &";
    if (std::system(command.c_str()) != 0) refuse("The second copy could not be started.");
}

}  // namespace tarn
