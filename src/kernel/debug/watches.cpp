// SPDX-License-Identifier: Apache-2.0
//
// The list of watched expressions.
#include "kernel/debug/engine_internal.h"
#include "kernel/debug/expression.h"

#include <algorithm>

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

// They have changed, and this line is to be seen; one behind the last is the last.
void showChanged(DebugWindow& window, std::size_t line) {
    engine.watchesChanged = true;
    ShowWatches(window);
    platform::DebugSelect(window, static_cast<int>(std::min(line, engine.watches.size())), true);
}

bool isWatch(int line) {
    return line >= 1 && line <= static_cast<int>(engine.watches.size());
}

}  // namespace

void AskWatch(DebugWindow& window) {
    const std::string text = askExpression({});
    if (text.empty()) return ShowWatches(window);
    engine.watches.push_back(text);
    showChanged(window, engine.watches.size());
}

void EditWatch(DebugWindow& window, int line) {
    if (!isWatch(line)) return Beep();
    std::string& watch = engine.watches[static_cast<std::size_t>(line - 1)];
    const std::string text = askExpression(watch);
    if (text.empty() || text == watch) return;
    watch = text;
    showChanged(window, static_cast<std::size_t>(line));
}

void RemoveWatch(DebugWindow& window, int line) {
    if (!isWatch(line)) return Beep();
    const auto at = engine.watches.begin() + (line - 1);
    if (Ask("Do you want to watch '" + *at + "' no more?", "Yes\nNo") != "Yes") return;
    engine.watches.erase(at);
    showChanged(window, static_cast<std::size_t>(line));
}

}  // namespace tarn::debug
