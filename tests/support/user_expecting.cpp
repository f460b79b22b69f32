// SPDX-License-Identifier: Apache-2.0
//
// What the lines of a script expect to be seen.
#include "support/user_script.h"

#include "os/files.h"
#include "os/text/initext.h"

#include <algorithm>
#include <glob.h>
#include <map>
#include <set>

namespace tarn {

using namespace platform;

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

bool UserDriver::expectControl(const ScriptWords& w) {
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

bool UserDriver::expectFile(const ScriptWords& w) {
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

// What a user sees: frames on the screen and texts as they are drawn.
bool UserDriver::expectSeen(const ScriptWords& w) {
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

bool UserDriver::expect(const ScriptWords& w) {
    const std::string& what = w[1];
    if (what == "ini") {
        std::string text;
        os::readFile(profile_ + "ide.ini", text);
        const std::string_view value = ini::get(text, w[2], w[3]);
        lastSeen_ = "Seen: " + std::string(value);
        return value == w[4];
    }
    if (what == "file" || what == "no-file" || what == "file-has") return expectFile(w);
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
    if (seenThings.count(what) != 0) return expectSeen(w);
    if (properties.count(what) != 0) return expectControl(w);
    fail("There is no such expectation.");
    return false;
}

}  // namespace tarn
