// SPDX-License-Identifier: Apache-2.0
//
// The walk through a script: which line comes next, and when it can be done.
#include "support/user_script.h"

#include "os/clock.h"

#include <cstdlib>
#include <set>
#include <thread>
#include <unistd.h>

namespace tarn {

using namespace platform;

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
    while (!failed() && !finished() && !restarts()) {
        const ScriptLine& line = script_.lines[at_];
        const bool runs = line.words[0] == "run";
        if (!runs && (line.words[0] != "expect" || !expect(line.words)))
            return fail("The program had ended. " + lastSeen_);
        at_++;
        if (runs) act(line);
    }
}

namespace {

const std::set<std::string> needsRest = {"command",  "press", "set",    "click",  "mouse", "type", "edit",
                                         "dblclick", "close", "select", "strike", "point", "drag", "margin"};
// What may be done while a question is open without an answer to it: what it asks may have been answered already.
const std::set<std::string> besideAQuestion = {"expect",   "screenshot", "key",  "run",
                                               "activate", "front",      "start"};

bool isShown(const Object& object) {
    const Window* const window = findWindow(object);
    return window != nullptr && window->shown;
}

bool enabledIn(const ScriptWords& words) {
    const Control* const control = findControl(FindControl(Object(words[1]), words[2]));
    return isShown(Object(words[1])) && control != nullptr && control->enabled;
}

}  // namespace

Object UserDriver::itemOf(const std::string& name, const std::string& place) {
    const Object item = FindControl(Object("Main"), name);
    return place.empty() ? item : ControlElement(item, std::atoi(place.c_str()));
}

Control* UserDriver::commanded(const ScriptWords& words) {
    return findControl(itemOf(words[1], words.size() > 2 ? words[2] : ""));
}

bool UserDriver::canCommand(const ScriptWords& words) {
    const Control* const item = commanded(words);
    lastSeen_ = item == nullptr ? "There is no such control." : "It is disabled.";
    return item != nullptr && item->enabled && isShown(Object("Main"));
}

bool UserDriver::canStrike(const ScriptWords& words) {
    lastSeen_ = "There is no such window.";
    return isShown(Object(words[1])) &&
           (words[2] == "-" || findControl(FindControl(Object(words[1]), words[2])) != nullptr);
}

// What is not here waits for Main.
const std::map<std::string, UserDriver::Condition>& UserDriver::conditions() {
    using User = UserDriver;
    const auto windowShown = [](User&, const ScriptWords& w) { return isShown(Object(w[1])); };
    const auto windowLoaded = [](User&, const ScriptWords& w) { return findWindow(Object(w[1])) != nullptr; };
    const auto controlEnabled = [](User&, const ScriptWords& w) { return enabledIn(w); };
    const auto codeShown = [](User&, const ScriptWords&) { return isShown(Object("SDIEdit")); };
    const auto designShown = [](User&, const ScriptWords&) { return isShown(Object("DialogDlg")); };
    static const std::map<std::string, Condition> all = {
        {"activate", windowShown},
        {"click", controlEnabled},
        {"close", windowShown},
        {"command", &User::canCommand},
        {"dblclick", windowShown},
        {"drag", designShown},
        {"edit", codeShown},
        {"expect", &User::expect},
        {"front", [](User& user, const ScriptWords& w) { return user.hands_.bringForward(w[1]); }},
        {"margin", codeShown},
        {"maximise", windowShown},
        {"mouse", windowShown},
        {"point", designShown},
        {"press", controlEnabled},
        {"restart", [](User&, const ScriptWords&) { return false; }},  // the program still runs
        {"select", codeShown},
        {"set", controlEnabled},
        {"stop-tool", [](User& user, const ScriptWords&) { return user.hands_.stopTool(); }},
        {"strike", &User::canStrike},
        {"tick", windowLoaded},
        {"wait", windowShown},
    };
    return all;
}

bool UserDriver::possible(const ScriptWords& words) {
    const auto condition = conditions().find(words[0]);
    return condition != conditions().end() ? condition->second(*this, words) : isShown(Object("Main"));
}

// Whether the user would do it now, whatever is there to do it with.
bool UserDriver::rested(const std::string& what) const {
    const auto waited = std::chrono::steady_clock::now() - since_;
    const bool real = needsRealInput(what) || what == "point" || what == "drag";
    return !hands_.holdsButton() && !(real && waited < std::chrono::milliseconds(hands_.patience())) &&
           !(busy() && needsRest.count(what) != 0);
}

UserDriver::Outcome UserDriver::ready(const ScriptLine& line) {
    const std::string& what = line.words[0];
    const bool open = view().asking() != nullptr;
    if (isAnswer(what)) return open ? Outcome::Done : Outcome::NotYet;
    if (open && besideAQuestion.count(what) == 0) {
        fail("A question is open that nobody expects.");
        return Outcome::Failed;
    }
    if (what != "expect" && !rested(what)) return Outcome::NotYet;
    return possible(line.words) ? Outcome::Done : Outcome::NotYet;
}

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

}  // namespace tarn
