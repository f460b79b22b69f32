// SPDX-License-Identifier: Apache-2.0
//
// The one debugger's window of the process, and the rest of the program while it is stopped.
#include "platform/model/debugger/debugwindow.h"

#include "platform/model/debugger/userbreak.h"
#include "platform/operations/life.h"
#include "platform/operations/system.h"

#include <algorithm>
#include <utility>

namespace tarn::platform {

namespace {

std::shared_ptr<DebugWindow>& current() {
    static std::shared_ptr<DebugWindow> one;
    return one;
}

int resting = 0;  // ProgramRests that live
std::vector<Object>& resized() {
    static std::vector<Object> windows;
    return windows;
}

std::vector<std::string> linesOf(std::string_view text) {
    DebugLines lines;
    lines.fill(std::string(text));
    std::vector<std::string> all;
    for (int line = 1; line <= lines.count(); ++line) all.emplace_back(lines.text(line));
    return all;
}

// Tells the view if `field` is another now.
template <class T>
void change(DebugWindow& window, T& field, T value, DebugPart part) {
    if (field == value) return;
    field = std::move(value);
    view().debugChanged(window, part);
}

void handle(DebugWindow& window, const DebugEvent& event) {
    const bool ofSelected = event.message == DebugMessage::Edit || event.message == DebugMessage::DoubleClick;
    const bool atSelected = ofSelected && event.number == 0;
    if (atSelected && window.selected == 0) return;
    window.handling = true;
    window.handler(window, atSelected ? DebugEvent{event.message, window.selected, event.text} : event);
    window.handling = false;
}

constexpr std::size_t MostEarly = 1000;  // nobody types so far ahead

bool isTyped(const DebugEvent& event) {
    switch (event.message) {
    case DebugMessage::Command:
    case DebugMessage::Help: return true;
    case DebugMessage::Edit:
    case DebugMessage::DoubleClick: return event.number == 0;
    default: return false;
    }
}

}  // namespace

const DebugCommand* debugCommand(int number) {
    const auto place = std::find_if(debugCommands.begin(), debugCommands.end(),
                                    [=](const DebugCommand& command) { return command.number == number; });
    return place == debugCommands.end() ? nullptr : &*place;
}

DebugWindow* debugWindow() {
    return current().get();
}

// ---- what the user does ----

void userDebug(DebugWindow& window, const DebugEvent& event) {
    const auto alive = window.shared_from_this();
    const bool ends = event.message == DebugMessage::Command && event.number == DEBUG_STOP;
    if (!window.handler || window.handling) return;
    if (hearsDebug(window) || (ends && !window.stopped))
        handle(window, event);
    else if (isTyped(event) && window.early.size() < MostEarly)
        window.early.push_back(event);
}

bool hearsDebug(const DebugWindow& window) {
    return window.stopped && !window.left;
}

void forgetTyped(DebugWindow& window) {
    window.early.clear();
}

void userDebugBreak(DebugWindow& window) {
    forgetTyped(window);
    SetUserBreak(1);
}

void userDebugClose(DebugWindow& window) {
    if (window.stopped)
        userDebug(window, {DebugMessage::Close, 0, ""});
    else
        userDebugBreak(window);
}

// ---- rest ----

ProgramRest::ProgramRest() {
    ++resting;
}
ProgramRest::~ProgramRest() {
    if (--resting > 0) return;
    for (const Object& window : std::exchange(resized(), {}))
        static_cast<void>(PostMessage(window, RESIZE_EVENT, 0));
    noteUserHeard();
}

bool programRests() {
    return resting > 0;
}

void noteRested(const Object& window, int event) {
    std::vector<Object>& all = resized();
    if (event == RESIZE_EVENT && std::find(all.begin(), all.end(), window) == all.end())
        all.push_back(window);
}

// ---- the window ----

DebugWindow* StartDebug(const Object&, std::string_view caption, std::string_view bitmapNames,
                        std::string_view iconName, DebugHandler handler, const DebugPlace& place,
                        const DebugPlace& beside) {
    if (current() != nullptr) return nullptr;
    auto window = std::make_shared<DebugWindow>();
    window->caption = caption;
    window->pictures = linesOf(bitmapNames);
    window->icon = iconName;
    window->handler = std::move(handler);
    window->wanted = place;
    window->beside = beside;
    current() = window;
    watchUserBreak(true);
    view().debugChanged(*window, DebugPart::Made);
    return window.get();
}

void EndDebug(DebugWindow* window) {
    if (window == nullptr || window != current().get()) return;
    const std::shared_ptr<DebugWindow> alive = std::exchange(current(), nullptr);
    alive->left = true;
    alive->early.clear();
    watchUserBreak(false);
    view().debugChanged(*alive, DebugPart::Gone);
}

void ActivateDebug(DebugWindow& window) {
    if (window.stopped || current().get() != &window) return;
    const std::shared_ptr<DebugWindow> alive = window.shared_from_this();
    const ProgramRest rest;
    window.stopped = true;
    window.left = false;
    for (std::deque<DebugEvent> early = std::exchange(window.early, {}); !early.empty(); early.pop_front())
        userDebug(window, early.front());
    if (!window.left) view().debugChanged(window, DebugPart::Running);
    if (!window.left) view().debugLoop(window, [alive] { return alive->left; });
    window.stopped = false;
    if (current() == alive) view().debugChanged(window, DebugPart::Running);
}

void LeaveDebug(DebugWindow& window) {
    window.left = true;
}

void SetDebugCaption(DebugWindow& window, std::string_view caption) {
    change(window, window.caption, std::string(caption), DebugPart::Caption);
}
std::string GetDebugCaption(const DebugWindow& window) {
    return window.caption;
}
void SetDebugStatus(DebugWindow& window, std::string_view text) {
    change(window, window.status, std::string(text), DebugPart::Status);
}
std::string GetDebugStatus(const DebugWindow& window) {
    return window.status;
}
DebugPlace GetDebugPlace(const DebugWindow& window) {
    return window.place;
}
void SetDebugTip(DebugWindow& window, std::string_view text) {
    window.tip = text;
    view().debugChanged(window, DebugPart::Tip);
}

// ---- the list ----

void DebugAddstrings(DebugWindow& window, std::string_view text) {
    window.lines.fill(std::string(text));
    window.selected = 0;
    window.top = 1;
    window.scrolls = window.extent = window.numbers = false;
    view().debugChanged(window, DebugPart::Lines);
}

int DebugCount(const DebugWindow& window) {
    return window.lines.count();
}
std::string DebugLine(const DebugWindow& window, int line) {
    return std::string(window.lines.text(line));
}
int DebugFlags(const DebugWindow& window, int line) {
    return window.lines.flags(line);
}
void SetDebugFlags(DebugWindow& window, int line, int flags) {
    if (window.lines.setFlags(line, flags)) view().debugChanged(window, DebugPart::Marks);
}
DebugMarker GetDebugMarker(const DebugWindow& window, int line) {
    return window.lines.marker(line);
}
void SetDebugMarker(DebugWindow& window, int line, DebugMarker marker) {
    if (window.lines.setMarker(line, marker)) view().debugChanged(window, DebugPart::Marks);
}

int DebugSelected(const DebugWindow& window) {
    return window.selected;
}

void DebugSelect(DebugWindow& window, int line, bool scroll) {
    if (line != 0 && !window.lines.has(line)) return;
    window.selected = line;
    window.scrolls = scroll && line != 0;
    view().debugChanged(window, DebugPart::Selection);
}

int DebugTop(const DebugWindow& window) {
    if (debugWindow() == &window) view().debugChanged(*debugWindow(), DebugPart::Shown);
    return window.top;
}
void SetDebugTop(DebugWindow& window, int line) {
    if (!window.lines.has(line)) return;
    window.top = line;
    window.scrolls = false;
    view().debugChanged(window, DebugPart::Top);
}
void SetDebugNumbers(DebugWindow& window, bool on) {
    change(window, window.numbers, on, DebugPart::Extent);
}
void DebugExtent(DebugWindow& window) {
    window.extent = true;
    view().debugChanged(window, DebugPart::Extent);
}
void DebugRepaint(DebugWindow& window) {
    view().debugChanged(window, DebugPart::Marks);
}

}  // namespace tarn::platform
