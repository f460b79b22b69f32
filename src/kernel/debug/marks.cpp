// SPDX-License-Identifier: Apache-2.0
//
// Breakpoints and their rules, and the line to run to, as the user sets them in the debugger's list.
#include "kernel/debug/engine_internal.h"
#include "kernel/debug/expression.h"

namespace tarn::debug {

namespace {

// The word for a breakpoint without a rule.
constexpr std::string_view Always = "always";

std::string noCode(std::int32_t line) {
    return "No code was generated at line " + std::to_string(line) + " in " + engine.shownClass + ".\n";
}

// The selected line if it has code, else the next one if the user wants that; 0: none.
std::int32_t lineForBreakpoint(DebugWindow& window, std::int32_t line) {
    if (LineHasCode(engine.shownClass, line)) return line;
    const std::int32_t next = NextCodeLine(engine.shownClass, line);
    if (next == 0) {
        Beep();
        static_cast<void>(Ask(noCode(line) + "A breakpoint cannot be put here.", "OK"));
        return 0;
    }
    const std::string question =
        "Would you like to toggle a breakpoint at line " + std::to_string(next) + " instead?";
    if (Ask(noCode(line) + question, "Yes\nNo") != "Yes") return 0;
    platform::DebugSelect(window, next, true);
    return next;
}

bool isSet(std::int32_t line) {
    return BreakpointFind(engine.breakpoints, engine.shownClass, line) != 0;
}

// A breakpoint's own flags anew; the others of the line stay.
void mark(DebugWindow& window, std::int32_t line) {
    constexpr int own = platform::DEBUG_BREAKPOINT | platform::DEBUG_RULE;
    platform::SetDebugFlags(window, line,
                            (platform::DebugFlags(window, line) & ~own) | LineFlags(engine.shownClass, line));
    platform::DebugRepaint(window);
    ArmPoints();
}

// What is wrong with the rule, in words; the empty text if it can be used.
std::string faultOf(const DebugRule& rule) {
    if (rule.condition.empty()) return {};
    std::string error;
    if (DebugExpression::compile(rule.condition, error) != nullptr) return {};
    return "The condition '" + rule.condition + "' cannot be tested. " + error;
}

std::string askRule(std::int32_t line, const std::string& parts) {
    return platform::InputBox(std::string(DebuggerTitle),
                              "When does the breakpoint at line " + std::to_string(line) + " of " +
                                  engine.shownClass +
                                  " stop?\n(always, or: if CONDITION hits NUMBER log TEXT)",
                              parts.empty() ? std::string(Always) : parts);
}

}  // namespace

void ToggleBreakpoint(DebugWindow& window) {
    const int selected = platform::DebugSelected(window);
    if (engine.mode != ListMode::Code || selected == 0) return Beep();
    const std::int32_t line = lineForBreakpoint(window, selected);
    if (line == 0) return;
    const bool on = !isSet(line);
    BreakpointSet(engine.breakpoints, engine.shownClass, line, on);
    if (isSet(line) != on) return Beep();  // the table is full
    if (!on && FindDebugRule(engine.rules, engine.shownClass, line) != nullptr) {
        PutDebugRule(engine.rules, {engine.shownClass, line, {}, 0, {}});
        engine.rulesChanged = true;
    }
    mark(window, line);
}

void EditRule(DebugWindow& window, int line) {
    if (!LineHasCode(engine.shownClass, line)) return Beep();
    const DebugRule* const old = FindDebugRule(engine.rules, engine.shownClass, line);
    DebugRule rule = old != nullptr ? *old : DebugRule{engine.shownClass, line, {}, 0, {}};
    const std::string text = askRule(line, FormatRuleParts(rule));
    if (text.empty()) return;
    std::string refusal = ParseRuleParts(text == Always ? std::string() : text, rule);
    if (refusal.empty()) refusal = faultOf(rule);
    if (!refusal.empty()) {
        static_cast<void>(Ask(refusal, "OK"));
        return;
    }
    BreakpointSet(engine.breakpoints, engine.shownClass, line, true);
    if (!isSet(line)) return Beep();
    PutDebugRule(engine.rules, rule);
    engine.rulesChanged = true;
    mark(window, line);
}

void RunToSelected(DebugWindow& window) {
    const int selected = platform::DebugSelected(window);
    if (engine.mode != ListMode::Code || selected == 0) return Beep();
    const std::int32_t line =
        LineHasCode(engine.shownClass, selected) ? selected : NextCodeLine(engine.shownClass, selected);
    if (line == 0) return Beep();
    RunTo(engine.shownClass, line);
    Leave(window);
}

}  // namespace tarn::debug
