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

std::int64_t seconds(const std::string& text) {
    return std::atoll(text.c_str() + (text[0] == '+' ? 1 : 0));
}

}  // namespace

void UserDriver::act(const ScriptLine& line) {
    const auto& w = line.words;
    const std::string& what = w[0];
    if (what == "command")
        userCommand(*commanded(w));
    else if (what == "press")
        userCommand(*findControl(FindControl(Object(w[1]), w[2])));
    else if (what == "set")
        set(FindControl(Object(w[1]), w[2]), w[3]);
    else if (what == "edit")
        edit(w[1], w[2]);
    else if (what == "select")
        SetSelection(Object("SDIEdit"),
                     lineOf(GetText(Object("SDIEdit")).value, std::atoi(w[1].c_str())).start, 0);
    else if (what == "dblclick")
        doubleClick(w.size() == 3 ? Object(w[1]) : FindControl(Object(w[1]), w[2]),
                    std::atoi(w.back().c_str()));
    else if (what == "margin")
        userMarginClick(*findControl(Object("SDIEdit")), std::atoi(w[1].c_str()));
    else if (what == "close")
        userClose(*findWindow(Object(w[1])));
    else if (isAnswer(what)) {
        if (!view().answer(w[1])) at_--, fail("The open question takes no such answer.");
    } else if (what == "strike")
        strike(w);
    else if (what == "sheet")
        sheet(w[1], dir_ + w[2]);
    else if (what == "design")
        hands_.design(w[1], w[2]);
    else if (what == "point" || what == "drag")
        point(w);
    else if (what == "start")
        startSecond(line);
    else if (what == "tick")
        timerFired(*findControl(w.size() == 2 ? Object(w[1]) : FindControl(Object(w[1]), w[2])));
    else if (what == "activate" && view().asking() == nullptr)
        userReturn(*findWindow(Object(w[1])));
    else if (what == "clock")
        os::clock().sleep(seconds(w[1]) * 1'000'000'000);
    else if (what == "key" && !hands_.key(w[1]))
        at_--, fail("There is no such key.");
    else if (what == "type")
        hands_.type(w[1]);
    else if (what == "mouse")
        hands_.mouse(Object(w[1]), std::atoi(w[2].c_str()), std::atoi(w[3].c_str()), std::atoi(w[4].c_str()));
    else if (what == "click")
        hands_.click(FindControl(Object(w[1]), w[2]));
    else if (what == "maximise")
        hands_.maximise(Object(w[1]));
    else if (what == "screenshot")
        hands_.screenshot(w[1]);
    else if (what == "dump")
        std::printf("%s", dumpWindow(Object(w[1])).c_str());
    else if (what == "run") {
        std::string command = "cd '" + dir_ + "' &&";
        for (std::size_t i = 1; i < w.size(); i++) command += " " + w[i];
        if (std::system(command.c_str()) != 0) at_--, fail("The command failed.");
    }
}

bool isList(const Control& control) {
    return control.type == Type::Listbox || control.type == Type::Iconlist;
}

void UserDriver::set(const Object& object, const std::string& value) {
    Control& control = *findControl(object);
    const bool numbered = control.type == Type::Checkbox || control.type == Type::Radiobutton ||
                          control.type == Type::Scrollbar;
    if (numbered) return userValue(control, std::atoi(value.c_str()));
    if (isList(control)) return userRow(control, std::atoi(value.c_str()));
    if (control.text == nullptr) {
        at_--;
        return fail("Nothing can be set there.");
    }
    control.text->setText(value);
    userChange(control);
}

void UserDriver::edit(const std::string& from, const std::string& to) {
    const Object window("SDIEdit");
    const std::size_t at = GetText(window).value.find(from);
    if (at == std::string::npos) {
        at_--;
        return fail("The Code window does not hold that text.");
    }
    SetSelection(window, static_cast<int>(at) + 1, static_cast<int>(from.size()));
    SetSelText(window, to);
}

// On a line of an edit window, or on a row of a list: of that one, or of the first in a window.
void UserDriver::doubleClick(const Object& object, int number) {
    Control* list = findControl(object);
    if (object.isWindow())
        for (const auto& control : findWindow(object)->controls)
            if (isList(*control) && (list == nullptr || !isList(*list))) list = control.get();
    Control& target = *list;
    if (isList(target)) {
        userRow(target, number);
    } else {
        const Selection line = lineOf(GetText(object).value, number);
        SetSelection(object, line.start, line.length);
    }
    userDoubleClick(target, 0, 0);
}

bool UserDriver::canStrike(const std::vector<std::string>& words) {
    const Window* window = findWindow(Object(words[1]));
    lastSeen_ = "There is no such window.";
    return window != nullptr && window->shown &&
           (words[2] == "-" || findControl(FindControl(Object(words[1]), words[2])) != nullptr);
}

void UserDriver::strike(const std::vector<std::string>& words) {
    const int code = struckKey(words[3]);
    if (code == 0) {
        at_--;
        return fail("There is no such key.");
    }
    const Object window(words[1]);
    Control* const focus = words[2] == "-" ? nullptr : findControl(FindControl(window, words[2]));
    userKey(*findWindow(window), focus, code);
}

void UserDriver::point(const std::vector<std::string>& words) {
    const bool corner = words.size() > 4 && words[4] == "corner";
    const bool done = words[0] == "point" ? hands_.point(words[1], words.size() > 2 ? words[2] : "")
                                          : hands_.drag(words[1], corner, std::atoi(words[2].c_str()),
                                                        std::atoi(words[3].c_str()));
    if (!done) at_--, fail("The dialog has no such object.");
}

void UserDriver::sheet(const std::string& title, const std::string& file) {
    std::string rows, outcome;
    os::readFile(file, rows);
    if (!showSheet(title, rows, outcome)) {
        at_--;
        return fail("A row of the sheet is not of the form name|options|value.");
    }
    if (!os::saveFile(file + ".out", outcome, os::Durability::Unsynced).ok())
        fail("What the sheet gave could not be written.");
}

// The second copy is this program again, in the model mode and with nobody to answer it. It works in the
// case's folder, wherever this one has gone.
void UserDriver::startSecond(const ScriptLine& line) {
    std::string command = "cd '" + dir_ + "' && TARNWICK_SECOND='" + profile_ + "' TARNWICK_SECOND_LOG='" +
                          dir_ + line.words[1] + ".log' ";
    command += "'/proc/" + std::to_string(getpid()) + "/exe' second";
    for (std::size_t i = 2; i < line.words.size(); i++) command += " '" + line.words[i] + "'";
    command += " >/dev/null 2>&1 &";
    if (std::system(command.c_str()) != 0) at_--, fail("The second copy could not be started.");
}

}  // namespace tarn
