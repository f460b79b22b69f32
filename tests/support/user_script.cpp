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

const std::set<std::string> needsRest = {"command",  "press", "set",    "click",  "mouse", "type", "edit",
                                         "dblclick", "close", "select", "strike", "point", "drag", "margin"};

}  // namespace

Object UserDriver::itemOf(const std::string& name, const std::string& place) {
    const Object item = FindControl(Object("Main"), name);
    return place.empty() ? item : ControlElement(item, std::atoi(place.c_str()));
}

Control* UserDriver::commanded(const std::vector<std::string>& words) {
    return findControl(itemOf(words[1], words.size() > 2 ? words[2] : ""));
}

UserDriver::Outcome UserDriver::ready(const ScriptLine& line) {
    const auto& w = line.words;
    const bool open = view().asking() != nullptr;
    const bool answers = isAnswer(w[0]);
    const bool looks = w[0] == "expect" || w[0] == "screenshot" || w[0] == "key" || w[0] == "run" ||
                       w[0] == "activate" || w[0] == "front" ||
                       w[0] == "start";  // what is asked then may be open already
    if (open && !answers && !looks) {
        fail("A question is open that nobody expects.");
        return Outcome::Failed;
    }
    if (answers) return open ? Outcome::Done : Outcome::NotYet;
    if (w[0] == "expect") return expect(line) ? Outcome::Done : Outcome::NotYet;
    const auto waited = std::chrono::steady_clock::now() - since_;
    if (hands_.holdsButton()) return Outcome::NotYet;
    const bool pointing = w[0] == "point" || w[0] == "drag";
    if ((needsRealInput(w[0]) || pointing) && waited < std::chrono::milliseconds(hands_.patience()))
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
