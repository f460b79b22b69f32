// SPDX-License-Identifier: Apache-2.0
//
// The commands of the debugger's window, and what else its user does there.
#include "kernel/debug/engine_internal.h"
#include "kernel/debug/showvalues.h"

namespace tarn {

namespace debug {

namespace {

void halt(DebugWindow&) {
    DebugEnd();
    Halt();
}

void stepInto(DebugWindow& window) {
    engine.stepFlag = true;
    Leave(window);
}

void stepOver(DebugWindow& window) {
    engine.stepDepth = FrameCount();
    Leave(window);
}

// Out of the bottom frame nothing is left to stop in: the program runs on.
void stepOut(DebugWindow& window) {
    engine.stepDepth = FrameCount() > 1 ? FrameCount() - 1 : 0;
    engine.outOf = FrameCount();
    Leave(window);
}

void showCurrentCode(DebugWindow& window) {
    ShowCode(window, {}, tarn_current_line);
}

// A command on the selected line of the values.
template <class Act>
void onValue(DebugWindow& window, Act act) {
    const int line = platform::DebugSelected(window);
    if (engine.mode != ListMode::Values || line < 1 || !act(line, ShowsIntegersInHex())) Beep();
}
template <ValuePage page>
void turnPage(DebugWindow& window) {
    onValue(window, [&](int line, bool hex) { return PageValue(window, engine.frame, line, page, hex); });
}
void showWhole(DebugWindow& window) {
    onValue(window, [&](int line, bool hex) { return ShowWholeValue(window, engine.frame, line, hex); });
}

void helpOnError(DebugWindow&) {
    HelpOnError();
}

struct Command {
    int number;
    void (*act)(DebugWindow& window);
};
constexpr Command commands[] = {{DEBUG_HALT, halt},
                                {DEBUG_RUN, Leave},
                                {DEBUG_STEP_INTO, stepInto},
                                {DEBUG_STEP_OVER, stepOver},
                                {DEBUG_TOGGLE, ToggleBreakpoint},
                                {DEBUG_STACK, ShowStack},
                                {DEBUG_VALUES, ShowFrameValues},
                                {DEBUG_CODE, showCurrentCode},
                                {DEBUG_CLASSES, ShowClasses},
                                {DEBUG_INFORMATION, ShowInformation},
                                {DEBUG_HELP, helpOnError},
                                {DEBUG_STEP_OUT, stepOut},
                                {DEBUG_RUN_TO, RunToSelected},
                                {DEBUG_WATCH, AskWatch},
                                {DEBUG_NEXT_PAGE, turnPage<ValuePage::Next>},
                                {DEBUG_PREVIOUS_PAGE, turnPage<ValuePage::Previous>},
                                {DEBUG_WHOLE, showWhole}};

void runCommand(DebugWindow& window, int number) {
    for (const Command& command : commands)
        if (command.number == number) return command.act(window);
}

// ---- a line of the list ----

void showFrame(DebugWindow& window, int line) {
    const std::int32_t frame = FrameOfStackLine(line);
    if (frame == 0) return Beep();
    engine.frame = frame;
    ShowCode(window, ClassOf(frame), LineOf(frame));
}

void showClass(DebugWindow& window, int line) {
    if (classTable == nullptr || line > classTable->count) return Beep();
    ShowCode(window, classTable->entries[line - 1].className, 1);
}

void doubleClick(DebugWindow& window, int line) {
    if (line < 1 || line > platform::DebugCount(window)) return Beep();
    switch (engine.mode) {
    case ListMode::Code: platform::DebugSelect(window, line, false); return ToggleBreakpoint(window);
    case ListMode::Stack: return showFrame(window, line);
    case ListMode::Classes: return showClass(window, line);
    case ListMode::Values: ExpandValue(window, engine.frame, line, ShowsIntegersInHex()); return;
    case ListMode::Watches: return RemoveWatch(window, line);
    case ListMode::Information:
    case ListMode::None: break;
    }
    Beep();
}

void editValue(DebugWindow& window, int line) {
    const std::string old = WholeValue(engine.frame, line, ShowsIntegersInHex());
    if (old.empty()) return Beep();
    const std::string text = "New value of " + NameOfValue(engine.frame, line) + ":";
    const std::string value = platform::InputBox(std::string(DebuggerTitle), text, old);
    if (value.empty() || value == old) return;
    const std::string refusal = ChangeValue(window, engine.frame, line, value);
    if (!refusal.empty()) static_cast<void>(Ask(refusal, "OK"));
}

void edit(DebugWindow& window, int line) {
    if (line < 1 || line > platform::DebugCount(window)) return Beep();
    if (engine.mode == ListMode::Values) return editValue(window, line);
    if (engine.mode == ListMode::Code) return EditRule(window, line);
    if (engine.mode == ListMode::Watches) return EditWatch(window, line);
    Beep();
}

void close(DebugWindow& window) {
    engine.leaves = true;
    Leave(window);
}

}  // namespace

void Leave(DebugWindow& window) {
    platform::LeaveDebug(window);
}

void Beep() {
    platform::Sound();
}

std::string Ask(const std::string& text, const std::string& buttons) {
    return platform::MsgBox(std::string(DebuggerTitle), text, buttons);
}

bool ShowsIntegersInHex() {
    return DebugSetting(engine.settingsFile, "Debugoptionsdlg", "DebugHexOn") == "1";
}

}  // namespace debug

void OnDebugEvent(platform::DebugWindow& window, const platform::DebugEvent& event) {
    using platform::DebugMessage;
    switch (event.message) {
    case DebugMessage::Command: return debug::runCommand(window, event.number);
    case DebugMessage::DoubleClick: return debug::doubleClick(window, event.number);
    case DebugMessage::Help: return debug::ShowHelp("Debugger");
    case DebugMessage::Edit: return debug::edit(window, event.number);
    case DebugMessage::Hover: return platform::SetDebugTip(window, debug::TipFor(event.text, event.number));
    case DebugMessage::Close: return debug::close(window);
    }
}

}  // namespace tarn
