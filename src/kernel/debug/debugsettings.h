// SPDX-License-Identifier: Apache-2.0
//
// The section "debug" of the settings file, through which the environment and the programs under the debugger tell each
// other what to do: the keys, and the forms of their values that both sides read and write. docs/formats/debug.md
// describes them. What is read of the running program's own table stands in breakpoints.h.
//
// A rule refines one breakpoint, which stands in the value of `breakpoints` as any other; without it the rule rests. A
// program that knows no rules takes it as a plain breakpoint.
//
// Reading never fails: what does not fit the form is left out. No disk but where a file is named; cost: linear in the text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

inline constexpr std::string_view DebugSection = "debug";
inline constexpr std::string_view BreakpointsKey = "breakpoints", DebugPositionKey = "_Position",
                                  TraceProgramKey = "TraceProgram", SingleStepKey = "SingleStep";
// Keys of the debugger's additions.
inline constexpr std::string_view DebugRulesKey = "Rules", StopCodesKey = "StopCodes", WatchesKey = "Watches",
                                  DebugBesideKey = "Beside";

// ---- rules of breakpoints ----

// When a breakpoint stops, or what it writes in place of a stop. The parts hold together: a condition that does not hold
// is no hit, and what is no hit of those that count neither stops nor writes.
struct DebugRule {
    std::string className;  // as it was written
    std::int32_t line = 0;  // of the breakpoint
    std::string condition;  // an expression (expression.h); empty: it holds always
    std::int32_t hits = 0;  // the first hit that counts, and all behind it count; 0 and 1: every one
    std::string log;        // with {expression} in it; not empty: it is written, and the program goes on
    [[nodiscard]] bool plain() const { return condition.empty() && hits <= 1 && log.empty(); }
    friend bool operator==(const DebugRule&, const DebugRule&) = default;
};

// The value of `Rules`: `IDE 10 if "x > 3" hits 5 ; TEXTEDIT 7 log "x is {x}" ;`. Of two rules of one line the later one
// counts; one without any part is left out.
std::vector<DebugRule> ParseDebugRules(std::string_view value);
std::string FormatDebugRules(const std::vector<DebugRule>& rules);

// The parts alone, as a user types them: "if x > 3 hits 5 log x is {x}". Each may be missing; `log` is the last, and its
// text runs to the end. A text may stand in double quotes, with those inside doubled; it must where it holds the word of
// a part. Gives why the text is none, in words for the user; `rule` is as it was then. Empty: its parts are those told.
[[nodiscard]] std::string ParseRuleParts(std::string_view text, DebugRule& rule);
std::string FormatRuleParts(const DebugRule& rule);

// The rule of a breakpoint; null if it has none. Class names compare without regard to case.
const DebugRule* FindDebugRule(const std::vector<DebugRule>& rules, std::string_view className,
                               std::int32_t line);
// Puts the rule in the place of the one of its breakpoint, or takes that away if it is plain.
void PutDebugRule(std::vector<DebugRule>& rules, const DebugRule& rule);

// ---- errors that stop ----

// With none every error stops, and no `onerror` is called. With some those stop, and all errors do what they do without the
// debugger: they go to their `onerror`, those that stop behind the stop. One that no `onerror` takes stops always.
struct CodeRange {
    std::int32_t first = 0, last = 0;
    friend bool operator==(const CodeRange&, const CodeRange&) = default;
};
// The value of `StopCodes`: "601 901-909", blanks or commas between.
std::vector<CodeRange> ParseStopCodes(std::string_view value);
// The same; `refused` has the words that are neither, with blanks between.
std::vector<CodeRange> ParseStopCodes(std::string_view value, std::string& refused);
std::string FormatStopCodes(const std::vector<CodeRange>& codes);
bool IsStopCode(const std::vector<CodeRange>& codes,
                std::int32_t code);  // true for every code if there are none

// ---- watches ----

// The value of `Watches`: expressions, " ;" behind each.
std::vector<std::string> ParseWatches(std::string_view value);
std::string FormatWatches(const std::vector<std::string>& watches);

// ---- the file ----

// The settings file of the environment that made a program: beside the path that the registry has for the product, else
// beside the one of ide.exe. Empty if neither is known.
std::string FindSettingsFile(std::string_view product, std::string_view version, std::string_view build);

// One value of the file; empty for a key that is not there, or a file that cannot be read.
std::string DebugSetting(std::string_view file, std::string_view section, std::string_view key);

struct DebugChange {
    std::string_view key;
    std::string value;
};
// Writes all values of the section in one save of the whole file, and nothing if they are there already. A file that is
// missing is not made, since it would be taken for whole settings: that is a failure, too. Gives what failed, in words;
// empty on success.
[[nodiscard]] std::string SaveDebugSettings(std::string_view file, const std::vector<DebugChange>& changes);

}  // namespace tarn
