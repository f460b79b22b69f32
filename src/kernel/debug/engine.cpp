// SPDX-License-Identifier: Apache-2.0
//
// Start and end of the debugger, and what it keeps in the settings file between them.
#include "kernel/debug/engine.h"

#include "kernel/debug/codelines.h"
#include "kernel/debug/declaredconstants.h"
#include "kernel/debug/engine_internal.h"
#include "kernel/debug/runto.h"
#include "kernel/debug/showvalues.h"
#include "kernel/debug/stop.h"
#include "kernel/debug/stopnotice.h"
#include "kernel/run/debughooks.h"
#include "kernel/run/report.h"
#include "os/process.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <cstdlib>
#include <span>

namespace tarn {

namespace debug {

Engine engine;

namespace {

constexpr std::string_view Buttons =
    "stop\nrun\nfeet1\nfeet2\nstop2\n\ncode3\nspecs\npapers2\ncode2\ninfo\nquest2";
constexpr std::string_view Icon = "BUG";

template <class Table>
void allocate(Table*& table) {
    if (table == nullptr) table = static_cast<Table*>(std::calloc(1, sizeof(Table)));
}
template <class Table>
void release(Table*& table) {
    std::free(table);
    table = nullptr;
}

platform::DebugPlace placeOf(const DebugSettings& settings) {
    return {settings.left, settings.top, settings.right - settings.left, settings.bottom - settings.top};
}

// The Code window of the environment, of which the window shall hide nothing.
platform::DebugPlace besidePlace() {
    return placeOf(ParseDebugPosition(DebugSetting(engine.settingsFile, DebugSection, DebugBesideKey)));
}

void loadAdditions() {
    const auto value = [](std::string_view key) {
        return DebugSetting(engine.settingsFile, DebugSection, key);
    };
    engine.rules = ParseDebugRules(value(DebugRulesKey));
    engine.stopCodes = ParseStopCodes(value(StopCodesKey));
    engine.watches = ParseWatches(value(WatchesKey));
}

void start(std::string_view product, std::string_view version, std::string_view build,
           std::string_view mainSource) {
    if (engine.window != nullptr) return;
    engine = {};
    engine.product = product;
    allocate(engine.breakpoints);
    allocate(codeLineTable);
    engine.settingsFile = FindSettingsFile(product, version, build).substr(0, MaxSourcePath);
    const DebugSettings settings = LoadDebugSettings(engine.settingsFile, DebugSection, engine.breakpoints);
    loadAdditions();
    BreakpointsSetChanged(engine.breakpoints, false);
    SetTraceMode(settings.traceMode);
    engine.stepFlag = settings.singleStep;
    const RunToPlace first = TakeRunTo(engine.settingsFile);
    engine.window = platform::StartDebug({}, InactiveDebuggerTitle, Buttons, Icon, OnDebugEvent,
                                         placeOf(settings), besidePlace());
    tarn_debugger_window = engine.window;
    if (engine.window == nullptr) return;
    DebugStop = StopIfAsked;
    ArmPoints();
    RunTo(first.className, first.line);
    NoteRunning(mainSource);
}

// A class of the program whose breakpoints are all here.
bool isOwnClass(std::string_view name) {
    if (classTable == nullptr) return false;
    const std::span own(classTable->entries, static_cast<std::size_t>(classTable->count));
    return std::any_of(own.begin(), own.end(),
                       [name](const ClassEntry& entry) { return ascii::equal(entry.className, name); });
}

// Rules go with the breakpoints of the program's classes; those of other classes stay as they were.
std::string rulesText() {
    std::vector<DebugRule> kept = engine.rules;
    std::erase_if(kept, [](const DebugRule& rule) {
        return isOwnClass(rule.className) &&
               BreakpointFind(engine.breakpoints, rule.className, rule.line) == 0;
    });
    return FormatDebugRules(kept);
}

void addPosition(std::vector<DebugChange>& changes) {
    const platform::DebugPlace place = platform::GetDebugPlace(*engine.window);
    if (place.width <= 0 || place.height <= 0) return;  // it was never seen
    std::string text;
    for (const int number : {place.left, place.top, place.width, place.height})
        text += (text.empty() ? "" : " ") + std::to_string(number);
    changes.push_back({DebugPositionKey, text});
}

void saveSettings() {
    if (engine.settingsFile.empty()) return;
    std::vector<DebugChange> changes;
    addPosition(changes);
    const bool breakpoints = BreakpointsChanged(engine.breakpoints);
    if (breakpoints) changes.push_back({BreakpointsKey, BreakpointsText(engine.breakpoints, classTable)});
    if (breakpoints || engine.rulesChanged)
        if (!engine.rules.empty() || engine.rulesChanged) changes.push_back({DebugRulesKey, rulesText()});
    if (engine.watchesChanged) changes.push_back({WatchesKey, FormatWatches(engine.watches)});
    changes.push_back({SingleStepKey, "0"});
    const std::string failure = SaveDebugSettings(engine.settingsFile, changes);
    // The end of a program waits for nobody: who looks at its output can read what was lost.
    if (!failure.empty() && (breakpoints || engine.rulesChanged || engine.watchesChanged))
        os::debugOutput("The breakpoints were not saved in '" + engine.settingsFile + "'. " + failure + "\n");
}

void classAdded(std::string_view sourcePath, std::string_view className) {
    if (engine.window == nullptr) return;
    AddCodeLines(className, sourcePath);
    SettleRunTo(className);
}

bool hasBreakpoints(std::string_view className) {
    if (engine.breakpoints == nullptr) return false;
    const std::span all(engine.breakpoints->entries, static_cast<std::size_t>(engine.breakpoints->count));
    return std::any_of(all.begin(), all.end(), [className](const BreakpointEntry& entry) {
        return ascii::equal(entry.className, className.substr(0, MaxName));
    });
}

// The user has to know why nothing stops there.
void classLeftOut(std::string_view className) {
    if (engine.window == nullptr) return;
    engine.leftOut.emplace_back(className.substr(0, MaxName));
    if (!hasBreakpoints(className)) return;
    os::debugOutput("Breakpoints of " + engine.leftOut.back() + " do not stop: the debugger takes " +
                    std::to_string(MaxClasses) + " classes.\n");
    ArmPoints();
}

// Chosen errors are looked at on their way to the handler; without any choice no handler is called.
ErrorWay wayOf(std::int32_t code) {
    if (engine.stopCodes.empty()) return ErrorWay::Stop;
    return IsStopCode(engine.stopCodes, code) ? ErrorWay::StopThenHandler : ErrorWay::Handler;
}

}  // namespace

void CloseDebugger() {
    if (engine.window != nullptr) {
        saveSettings();
        EndStopNotice();
        platform::EndDebug(engine.window);
    }
    tarn_debugger_window = nullptr;
    DebugStop = nullptr;
    DropPoints();
    release(engine.breakpoints);
    release(codeLineTable);
    engine = {};
    ForgetShownValues();
    ForgetDeclaredConstants();
}

}  // namespace debug

void EndDebugger() {
    debug::CloseDebugger();
}

void UseDebugger() {
    UseDebuggerHooks({debug::start, debug::CloseDebugger, debug::classAdded, debug::classLeftOut, debug::wayOf,
                      debug::NoteResult});
}

}  // namespace tarn
