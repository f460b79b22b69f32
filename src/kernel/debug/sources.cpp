// SPDX-License-Identifier: Apache-2.0
//
// The source of a class in the debugger's list, with its breakpoints and the current line.
#include "kernel/debug/engine_internal.h"
#include "os/files.h"
#include "os/process.h"
#include "os/text/ascii.h"

#include <algorithm>

namespace tarn::debug {

namespace {

const ClassEntry* classNamed(std::string_view className) {
    if (classTable == nullptr) return nullptr;
    for (std::int32_t i = 0; i < classTable->count; ++i)
        if (ascii::equal(classTable->entries[i].className, className)) return &classTable->entries[i];
    return nullptr;
}

// Where the source of the class may stand, in the order in which it is sought.
std::vector<std::string> placesOf(std::string_view className) {
    std::vector<std::string> places;
    const ClassEntry* const entry = classNamed(className);
    if (entry != nullptr && entry->sourcePath[0] != 0) places.emplace_back(entry->sourcePath);
    places.push_back(os::executableFolder() + std::string(className) + ".cls");
    return places;
}

std::string withPlainLineEnds(std::string_view source) {
    std::string text;
    text.reserve(source.size() + 1);
    while (!source.empty()) text.append(ascii::withoutLineEnd(ascii::takeLine(source))) += '\n';
    return text;
}

bool fills(const std::string& className) {
    return engine.mode == ListMode::Code && ascii::equal(engine.shownClass, className);
}

void unmark(DebugWindow& window) {
    const int line = engine.highlighted;
    platform::SetDebugFlags(window, line, platform::DebugFlags(window, line) & ~platform::DEBUG_CURRENT);
    engine.highlighted = 0;
}

// Breakpoints that came from the settings may stand at lines that have no code any more: they go.
void markBreakpoints(DebugWindow& window, const std::string& className) {
    if (engine.breakpoints == nullptr) return;
    bool dropped = false;
    for (std::int32_t i = engine.breakpoints->count; i >= 1; --i) {
        const BreakpointEntry entry = engine.breakpoints->entries[i - 1];
        if (!ascii::equal(entry.className, className)) continue;
        if (LineHasCode(className, entry.line)) {
            platform::SetDebugFlags(window, entry.line, LineFlags(className, entry.line));
        } else {
            BreakpointSet(engine.breakpoints, className, entry.line, false);
            dropped = true;
        }
    }
    if (dropped) ArmPoints();
}

}  // namespace

std::string LoadSource(std::string_view className) {
    const std::vector<std::string> places = placesOf(className);
    for (const std::string& place : places) {
        std::string source;
        if (os::sizeOf(os::native(place)) < 0) continue;
        if (os::readFile(os::native(place), source) == os::FileError::None) return withPlainLineEnds(source);
        break;  // only the first one that is there is tried
    }
    std::string text = "(Cannot load \"" + std::string(className) +
                       "\")\n(Its source code was searched for in the following places:)\n";
    for (const std::string& place : places) text += place + "\n";
    return text;
}

int LineFlags(std::string_view className, std::int32_t line) {
    if (BreakpointFind(engine.breakpoints, className, line) == 0) return 0;
    const bool ruled = FindDebugRule(engine.rules, className, line) != nullptr;
    return platform::DEBUG_BREAKPOINT | (ruled ? platform::DEBUG_RULE : 0);
}

void ShowCode(DebugWindow& window, std::string_view className, std::int32_t line) {
    const std::string top = ClassOf(FrameCount());
    const std::string name = className.empty() ? top : std::string(className);
    if (fills(name)) {
        unmark(window);
    } else {
        platform::DebugAddstrings(window, LoadSource(name));
        platform::SetDebugNumbers(window, true);
        platform::DebugExtent(window);
        engine.highlighted = 0;
        markBreakpoints(window, name);
    }
    engine.mode = ListMode::Code;
    engine.shownClass = name;
    platform::DebugSelect(window, line, true);
    const bool here = ascii::equal(name, top) && tarn_current_line >= 1 &&
                      tarn_current_line <= platform::DebugCount(window);
    if (!here) return;
    engine.highlighted = tarn_current_line;
    platform::SetDebugFlags(window, tarn_current_line,
                            platform::DebugFlags(window, tarn_current_line) | platform::DEBUG_CURRENT);
}

}  // namespace tarn::debug
