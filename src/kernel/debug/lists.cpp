// SPDX-License-Identifier: Apache-2.0
//
// What the debugger's list shows beside sources and the call stack: the classes, information, values and watches.
#include "kernel/debug/engine_internal.h"
#include "kernel/debug/expression.h"
#include "kernel/debug/showvalues.h"
#include "kernel/run/errorcell.h"
#include "kernel/text/systeminfo.h"
#include "os/files.h"

namespace tarn::debug {

namespace {

std::string leftOutText() {
    std::string names;
    for (const std::string& name : engine.leftOut) names += (names.empty() ? "" : ", ") + name;
    if (names.empty()) return {};
    return "(Only " + std::to_string(MaxClasses) + " classes can have breakpoints. These cannot: " + names +
           ")\n";
}

std::string classesText() {
    std::string text;
    for (std::int32_t i = 0; classTable != nullptr && i < classTable->count; ++i) {
        const ClassEntry& entry = classTable->entries[i];
        const std::string path = entry.sourcePath;
        const std::int64_t size = os::sizeOf(os::native(path));
        text += entry.className;
        if (size >= 0)
            text += " " + path + " (" + std::to_string(size) + (size == 1 ? " byte)" : " bytes)");
        else
            text += " ---not found, should be in: " + path + "---";
        text += "\n";
    }
    return text + leftOutText();
}

std::string informationText() {
    const std::int32_t code = ErrorCell();
    const std::string number = std::to_string(code);
    const std::string error = code != 0 ? number + ", " + ErrorMessage(code) : "None";
    return "Current exception = " + error + " (Error " + number +
           ").\nDebugger INI file = " + engine.settingsFile + "\n\n" + SystemInformation();
}

std::string watchesText() {
    std::string text;
    for (const std::string& watch : engine.watches) {
        std::string error;
        const auto expression = DebugExpression::compile(watch, error);
        const std::string value =
            expression != nullptr ? expression->text(engine.frame, ShowsIntegersInHex()) : "(" + error + ")";
        text += watch + " = " + value + "\n";
    }
    return text;
}

}  // namespace

void FillList(DebugWindow& window, ListMode mode, const std::string& text) {
    platform::DebugAddstrings(window, text);
    platform::DebugExtent(window);
    engine.mode = mode;
    engine.shownClass.clear();
    engine.highlighted = 0;
}

void ShowClasses(DebugWindow& window) {
    FillList(window, ListMode::Classes, classesText());
}

void ShowInformation(DebugWindow& window) {
    FillList(window, ListMode::Information, informationText());
}

void ShowFrameValues(DebugWindow& window) {
    FillList(window, ListMode::Values, {});
    ShowValues(window, engine.frame, ShowsIntegersInHex());
    platform::DebugExtent(window);
    platform::DebugRepaint(window);
}

void ShowWatches(DebugWindow& window) {
    const ErrorCellAside aside;
    FillList(window, ListMode::Watches, watchesText());
}

}  // namespace tarn::debug
