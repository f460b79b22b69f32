// SPDX-License-Identifier: Apache-2.0
#include "support/user_script.h"

#include "os/clock.h"
#include "os/files.h"
#include "os/text/initext.h"
#include "platform/model/linemarks.h"
#include "support/sheet_rows.h"

#include <algorithm>
#include <cstdlib>
#include <glob.h>
#include <map>
#include <set>
#include <thread>
#include <unistd.h>

namespace tarn {

using namespace platform;

// ---- reading ----

namespace {

// What each line may be: the least number of words behind its name, and whether it needs real input.
struct LineForm {
    std::size_t least;
    bool realInput = false;
};
const std::map<std::string, LineForm> forms = {
    {"command", {1}},     {"press", {2}},       {"set", {3}},       {"edit", {2}},
    {"select", {1}},      {"dblclick", {2}},    {"close", {1}},     {"answer", {1}},
    {"choose-file", {1}}, {"input", {1}},       {"pick", {1}},      {"start", {1}},
    {"stop-tool", {0}},   {"clock", {1}},       {"key", {1, true}}, {"type", {1, true}},
    {"click", {2, true}}, {"mouse", {4, true}}, {"maximise", {1}},  {"screenshot", {1}},
    {"dump", {1}},        {"wait", {1}},        {"expect", {1}},    {"run", {1}},
    {"strike", {3}},      {"sheet", {2}},       {"restart", {0}},   {"tick", {1}},
    {"activate", {1}},    {"design", {2}},      {"point", {1}},     {"drag", {3}},
    {"margin", {1}},      {"front", {1, true}}};

const std::set<std::string> answerLines = {"answer", "choose-file", "input", "pick"};

char unescape(char c) {
    return c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c == 'b' ? '\2' : c;
}

// Splits a line into its words; false when a quote stays open.
bool splitWords(const std::string& line, std::vector<std::string>& words) {
    std::size_t at = 0;
    while (true) {
        while (at < line.size() && (line[at] == ' ' || line[at] == '\t')) at++;
        if (at == line.size()) return true;
        std::string word;
        if (line[at] != '"') {
            while (at < line.size() && line[at] != ' ' && line[at] != '\t') word += line[at++];
        } else {
            for (at++; at < line.size() && line[at] != '"'; at++)
                word += line[at] == '\\' && at + 1 < line.size() ? unescape(line[++at]) : line[at];
            if (at++ == line.size()) return false;
        }
        words.push_back(word);
    }
}

void substitute(std::string& text, const std::string& mark, const std::string& value) {
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += value.size())
        text.replace(at, mark.size(), value);
}

// Of "REAL or MEANING" keeps the one that this mode does.
void chooseAlternative(std::vector<std::string>& words, bool realInput) {
    const auto middle = std::find(words.begin(), words.end(), "or");
    if (middle == words.end()) return;
    if (realInput)
        words.erase(middle, words.end());
    else
        words.erase(words.begin(), middle + 1);
}

// What other programs than this one show.
bool isOfOthers(const std::vector<std::string>& words) {
    return words[0] == "front" || (words[0] == "expect" && (words[1] == "front" || words[1] == "clipboard"));
}

std::string lineFault(const std::vector<std::string>& words) {
    const auto form = forms.find(words[0]);
    if (form == forms.end()) return "there is no '" + words[0] + "'";
    if (words.size() <= form->second.least) return "'" + words[0] + "' lacks a word";
    return {};
}

}  // namespace

Script parseScript(const std::string& text, const std::string& dir, const std::string& profile,
                   bool realInput) {
    Script script;
    int number = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        ScriptLine line{++number, {}};
        const bool whole = splitWords(text.substr(at, end - at), line.words);
        at = end + 1;
        if (line.words.empty() || line.words[0][0] == '#') continue;
        chooseAlternative(line.words, realInput);
        for (std::string& word : line.words) {
            substitute(word, "{dir}", dir);
            substitute(word, "{profile}", profile);
        }
        if (line.words[0] == "args") {
            script.arguments.assign(line.words.begin() + 1, line.words.end());
            continue;
        }
        if (line.words[0] == "setting" && line.words.size() == 4) {
            script.settings.push_back({line.words[1], line.words[2], line.words[3]});
            continue;
        }
        if (line.words[0] == "needs-screen" || line.words[0] == "hide-screen") {
            (line.words[0] == "needs-screen" ? script.needsScreen : script.hidesScreen) = true;
            continue;
        }
        const std::string fault = whole ? lineFault(line.words) : "a quote stays open";
        if (!fault.empty() && script.error.empty())
            script.error = "line " + std::to_string(number) + ": " + fault;
        if (fault.empty()) script.needsRealInput |= forms.at(line.words[0]).realInput;
        if (fault.empty()) script.needsScreen |= isOfOthers(line.words);
        script.lines.push_back(line);
    }
    return script;
}

// ---- what is on screen ----

std::string dumpWindow(const Object& object) {
    const Window* window = findWindow(object);
    if (window == nullptr) return "(" + object.window() + " is not loaded)\n";
    std::string text = window->name + " '" + window->caption + "'" + (window->shown ? "" : " hidden") + "\n";
    const auto show = [&](const Control& control) {
        text += "  " + std::string(typeName(control.type)) + " " + control.name + " '" + control.caption +
                "'" + (control.enabled ? "" : " disabled") + (control.visible ? "" : " hidden") +
                (control.checked ? " checked" : "") + "\n";
    };
    for (const auto& control : window->controls) show(*control);
    for (const auto& item : window->menuItems) show(*item);
    return text;
}

std::string UserDriver::onScreen() const {
    std::string text;
    if (const Question* question = view().asking()) {
        text += "question '" + question->title + "': " + question->text + "\n";
        for (const std::string& button : question->buttons) text += "  button '" + button + "'\n";
    }
    for (const auto& window : windows()) {
        if (window->shown) text += "window " + window->name + " '" + window->caption + "'\n";
    }
    return text;
}

// ---- the walk ----

UserDriver::UserDriver(Script script, std::string dir, std::string profile, Hands& hands)
    : script_(std::move(script)), dir_(std::move(dir)), profile_(std::move(profile)), hands_(hands),
      since_(std::chrono::steady_clock::now()) {}

void UserDriver::fail(const std::string& why) {
    std::string line;
    if (!finished()) {
        line = "line " + std::to_string(script_.lines[at_].number) + ":";
        for (const std::string& word : script_.lines[at_].words) line += " " + word;
    }
    failure_ = line + "\n" + why + "\n" + onScreen();
}

void UserDriver::idle() {
    if (failed() || finished()) return;
    hands_.endSplash();
    const ScriptLine line = script_.lines[at_];
    const Outcome outcome = ready(line);
    if (outcome == Outcome::Failed) return;
    if (outcome == Outcome::NotYet) {
        if (std::chrono::steady_clock::now() - since_ > std::chrono::seconds(20))
            fail("What the line waits for did not come. " + lastSeen_);
        else
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        return;
    }
    at_++;
    since_ = std::chrono::steady_clock::now();
    lastSeen_.clear();
    act(line);
}

void UserDriver::programEnded() {
    ended_ = true;
    for (; !failed() && !finished() && !restarts(); at_++) {
        const ScriptLine& line = script_.lines[at_];
        if (line.words[0] == "run")
            act(line);
        else if (line.words[0] != "expect" || !expect(line))
            fail("The program had ended. " + lastSeen_);
        if (failed()) return;
    }
}

namespace {

// The item of Main that a line names: a control, or that element of its array.
Object itemOf(const std::string& name, const std::string& place) {
    const Object item = FindControl(Object("Main"), name);
    return place.empty() ? item : ControlElement(item, std::atoi(place.c_str()));
}

// What the user does with windows that take input: while a tool runs, they take none.
const std::set<std::string> needsRest = {"command",  "press", "set",    "click",  "mouse", "type", "edit",
                                         "dblclick", "close", "select", "strike", "point", "drag", "margin"};

Control* commanded(const std::vector<std::string>& words) {
    return findControl(itemOf(words[1], words.size() > 2 ? words[2] : ""));
}

}  // namespace

UserDriver::Outcome UserDriver::ready(const ScriptLine& line) {
    const auto& w = line.words;
    const bool open = view().asking() != nullptr;
    const bool answers = answerLines.count(w[0]) != 0;
    const bool looks = w[0] == "expect" || w[0] == "screenshot" || w[0] == "key" || w[0] == "run" ||
                       w[0] == "activate" || w[0] == "front";  // what is asked then may be open already
    if (open && !answers && !looks) {
        fail("A question is open that nobody expects.");
        return Outcome::Failed;
    }
    if (answers) return open ? Outcome::Done : Outcome::NotYet;
    if (w[0] == "expect") return expect(line) ? Outcome::Done : Outcome::NotYet;
    const auto waited = std::chrono::steady_clock::now() - since_;
    if (hands_.holdsButton()) return Outcome::NotYet;
    const bool pointing = w[0] == "point" || w[0] == "drag";
    if ((forms.at(w[0]).realInput || pointing) && waited < std::chrono::milliseconds(hands_.patience()))
        return Outcome::NotYet;
    const auto shown = [](const Object& object) {
        const Window* window = findWindow(object);
        return window != nullptr && window->shown;
    };
    if (busy() && needsRest.count(w[0]) != 0) return Outcome::NotYet;
    if (w[0] == "command") {
        const Control* item = commanded(w);
        lastSeen_ = item == nullptr ? "There is no such control." : "It is disabled.";
        return item != nullptr && item->enabled && shown(Object("Main")) ? Outcome::Done : Outcome::NotYet;
    }
    if (w[0] == "press" || w[0] == "set" || w[0] == "click") {
        const Control* control = findControl(FindControl(Object(w[1]), w[2]));
        return shown(Object(w[1])) && control != nullptr && control->enabled ? Outcome::Done
                                                                             : Outcome::NotYet;
    }
    if (w[0] == "front") return hands_.bringForward(w[1]) ? Outcome::Done : Outcome::NotYet;
    if (pointing) return shown(Object("DialogDlg")) ? Outcome::Done : Outcome::NotYet;
    if (w[0] == "tick") return findWindow(Object(w[1])) != nullptr ? Outcome::Done : Outcome::NotYet;
    if (w[0] == "activate" || w[0] == "dblclick" || w[0] == "close" || w[0] == "maximise" || w[0] == "wait" ||
        w[0] == "mouse")
        return shown(Object(w[1])) ? Outcome::Done : Outcome::NotYet;
    if (w[0] == "edit" || w[0] == "select" || w[0] == "margin")
        return shown(Object("SDIEdit")) ? Outcome::Done : Outcome::NotYet;
    if (w[0] == "stop-tool") return hands_.stopTool() ? Outcome::Done : Outcome::NotYet;
    if (w[0] == "strike") return canStrike(w) ? Outcome::Done : Outcome::NotYet;
    if (w[0] == "restart") return Outcome::NotYet;  // the program still runs
    return shown(Object("Main")) ? Outcome::Done : Outcome::NotYet;
}

// ---- doing ----

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
    else if (answerLines.count(what) != 0) {
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

namespace {

bool isList(const Control& control) {
    return control.type == Type::Listbox || control.type == Type::Iconlist;
}

}  // namespace

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

// ---- expecting ----

namespace {

std::string shownRows(const Control& control) {
    std::string text;
    for (const Row& row : control.rows) text += row.text + "\n";
    return text;
}

std::string flag(bool on) {
    return on ? "1" : "0";
}

const std::map<std::string, std::string (*)(const Control&)> properties = {
    {"caption", [](const Control& c) { return c.caption; }},
    {"text", [](const Control& c) { return c.text ? c.text->text() : std::string(); }},
    {"value", [](const Control& c) { return std::to_string(isList(c) ? c.listIndex : c.value); }},
    {"enabled", [](const Control& c) { return flag(c.enabled); }},
    {"visible", [](const Control& c) { return flag(c.visible); }},
    {"checked", [](const Control& c) { return flag(c.checked); }},
    {"rows", shownRows},
    {"text-has", [](const Control& c) { return c.text ? c.text->text() : std::string(); }},
};

}  // namespace

bool UserDriver::expectControl(const ScriptLine& line) {
    const auto& w = line.words;
    const bool ofWindow = w.size() == 4;
    const Object object = ofWindow        ? Object(w[2])
                          : w.size() == 6 ? itemOf(w[3], w[4])
                                          : FindControl(Object(w[2]), w[3]);
    const Control* control = findControl(object);
    lastSeen_ = "There is no such control.";
    if (control == nullptr) return false;
    const std::string seen = properties.at(w[1])(*control);
    lastSeen_ = "Seen: " + seen;
    return w[1] == "text-has" ? seen.find(w.back()) != std::string::npos : seen == w.back();
}

namespace {

// The first file whose name fits a pattern with "*"; the name itself if there is none.
std::string matching(const std::string& name) {
    glob_t found{};
    if (name.find('*') == std::string::npos || os::infoOf(name).exists) return name;
    std::string first = name;
    if (::glob(name.c_str(), 0, nullptr, &found) == 0 && found.gl_pathc > 0) first = found.gl_pathv[0];
    ::globfree(&found);
    return first;
}

}  // namespace

bool UserDriver::expectFile(const ScriptLine& line) {
    const auto& w = line.words;
    std::string bytes;
    const bool exists = os::readFile(matching(w[2]), bytes) == os::FileError::None;
    lastSeen_ = exists ? "Seen: " + bytes.substr(0, 2000) : "There is no such file.";
    if (w[1] == "no-file") return !exists;
    if (w[1] == "file-has") return exists && bytes.find(w[3]) != std::string::npos;
    return exists && bytes == w[3];
}

namespace {

const std::set<std::string> seenThings = {"on-screen", "below", "status", "menu",
                                          "help",      "page",  "front",  "clipboard"};

std::string rectText(const Rect& r) {
    return std::to_string(r.x) + " " + std::to_string(r.y) + " " + std::to_string(r.w) + " " +
           std::to_string(r.h);
}

bool holds(const Rect& outer, const Rect& inner) {
    return inner.w > 0 && inner.x >= outer.x && inner.y >= outer.y &&
           inner.x + inner.w <= outer.x + outer.w && inner.y + inner.h <= outer.y + outer.h;
}

}  // namespace

bool Hands::design(const std::string&, const std::string&) {
    return false;
}
bool Hands::point(const std::string&, const std::string&) {
    return false;
}
bool Hands::drag(const std::string&, bool, int, int) {
    return false;
}

bool Hands::bringForward(const std::string&) {
    return false;
}

void Hands::maximise(const Object& window) {
    static_cast<void>(SetWindowState(window, 2));
}

Rect Hands::frameOf(const Object& window) {
    const Window* const found = findWindow(window);
    return found != nullptr && found->shown ? found->position : Rect{};
}

// What a user sees: frames on the screen and texts as they are drawn.
bool UserDriver::expectSeen(const ScriptLine& line) {
    const auto& w = line.words;
    if (w[1] == "on-screen" || w[1] == "below") {
        const Rect frame = w[2] == "box"    ? hands_.boxFrame()
                           : w[2] == "stop" ? hands_.stopFrame()
                                            : hands_.frameOf(Object(w[2]));
        const Rect other = w[1] == "below" ? hands_.frameOf(Object(w[3])) : view().screen();
        lastSeen_ = "Seen: " + rectText(frame) + ", to be held against " + rectText(other);
        return w[1] == "below" ? frame.w > 0 && frame.y >= other.y + other.h : holds(other, frame);
    }
    std::string text;
    const Control* const item = w[1] == "menu" ? findControl(FindControl(Object("Main"), w[2])) : nullptr;
    if (w[1] == "menu" && item == nullptr) return false;
    const bool there = item != nullptr       ? hands_.menuText(*item, text)
                       : w[1] == "help"      ? hands_.helpTopic(text)
                       : w[1] == "page"      ? hands_.helpPage(text)
                       : w[1] == "front"     ? hands_.frontTitle(text)
                       : w[1] == "clipboard" ? hands_.clipboardText(text)
                                             : hands_.statusText(text);
    if (!there) return true;
    lastSeen_ = "Seen: " + text;
    if (w[1] == "clipboard") return text.find(w[2]) != std::string::npos;
    if (w[1] == "front") return text == w[2];
    return item != nullptr ? text == w[3] : w[1] == "help" ? text == w[2] : text.starts_with(w[2]);
}

bool UserDriver::expect(const ScriptLine& line) {
    const auto& w = line.words;
    const std::string& what = w[1];
    if (what == "ini") {
        std::string text;
        os::readFile(profile_ + "ide.ini", text);
        const std::string_view value = ini::get(text, w[2], w[3]);
        lastSeen_ = "Seen: " + std::string(value);
        return value == w[4];
    }
    if (what == "file" || what == "no-file" || what == "file-has") return expectFile(line);
    if (ended_) return false;
    if (what == "message") {
        const Question* question = view().asking();
        lastSeen_ = question ? "Seen: '" + question->title + "' " + question->text : "No question is open.";
        return question != nullptr && question->title == w[2] && question->text.starts_with(w[3]);
    }
    if (what == "active") {
        lastSeen_ = "Active: " + ActiveWindow().window();
        return ActiveWindow() == Object(w[2]);
    }
    if (what == "hidden") {
        const Window* window = findWindow(Object(w[2]));
        return window == nullptr || !window->shown;
    }
    if (what == "line") {
        const std::string text = GetText(Object("SDIEdit")).value;
        const int start = GetSelection(Object("SDIEdit")).value.start;
        const auto here =
            1 + std::count(text.begin(), text.begin() + std::min<std::ptrdiff_t>(start - 1, std::ssize(text)),
                           '\n');
        lastSeen_ = "Line " + std::to_string(here);
        return std::to_string(here) == w[2];
    }
    if (seenThings.count(what) != 0) return expectSeen(line);
    if (properties.count(what) != 0) return expectControl(line);
    fail("There is no such expectation.");
    return false;
}

}  // namespace tarn
