// SPDX-License-Identifier: Apache-2.0
//
// The list of watched expressions.
#include "kernel/debug/engine_internal.h"
#include "kernel/debug/expression.h"

namespace tarn::debug {

namespace {

// An expression that the user has typed; empty if there is none, or it does not fit.
std::string askExpression(const std::string& old) {
    const std::string text = platform::InputBox(std::string(DebuggerTitle), "Expression to watch:", old);
    std::string error;
    if (text.empty() || DebugExpression::compile(text, error) != nullptr) return text;
    static_cast<void>(Ask(error, "OK"));
    return {};
}

void change(DebugWindow& window) {
    engine.watchesChanged = true;
    ShowWatches(window);
}

bool isWatch(int line) {
    return line >= 1 && line <= static_cast<int>(engine.watches.size());
}

}  // namespace

void AskWatch(DebugWindow& window) {
    const std::string text = askExpression({});
    if (!text.empty()) engine.watches.push_back(text);
    if (!text.empty()) engine.watchesChanged = true;
    ShowWatches(window);
}

void EditWatch(DebugWindow& window, int line) {
    if (!isWatch(line)) return Beep();
    std::string& watch = engine.watches[static_cast<std::size_t>(line - 1)];
    const std::string text = askExpression(watch);
    if (text.empty() || text == watch) return;
    watch = text;
    change(window);
}

void RemoveWatch(DebugWindow& window, int line) {
    if (!isWatch(line)) return Beep();
    const auto at = engine.watches.begin() + (line - 1);
    if (Ask("Do you want to watch '" + *at + "' no more?", "Yes\nNo") != "Yes") return;
    engine.watches.erase(at);
    change(window);
}

}  // namespace tarn::debug
