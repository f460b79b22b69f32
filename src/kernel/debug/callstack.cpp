// SPDX-License-Identifier: Apache-2.0
//
// The frames of the program as the debugger sees them, and the list of them. Of a deep recursion the outermost frames are
// known and the innermost ones, which tell why it does not end; those between are one line.
#include "kernel/debug/engine_internal.h"

namespace tarn::debug {

namespace {

constexpr std::ptrdiff_t MostShown = MaxFrames, MostInner = MaxDeepFrames;

// The known frames from the top down, at most MostShown: where there are more, MostInner inner ones and outer ones.
std::vector<std::int32_t> knownFrames() {
    std::vector<std::int32_t> frames;
    for (std::int32_t frame = FrameCount(); frame >= 1; --frame)
        if (FrameAtDepth(frame) != nullptr) frames.push_back(frame);
    const auto more = static_cast<std::ptrdiff_t>(frames.size()) - MostShown;
    if (more > 0) frames.erase(frames.begin() + MostInner, frames.begin() + MostInner + more);
    return frames;
}

std::string lineFor(std::int32_t frame) {
    return ClassOf(frame) + "(" + std::to_string(LineOf(frame)) + "):" + FunctionOf(frame) + "()\n";
}

}  // namespace

std::int32_t LineOf(std::int32_t frame) {
    const FrameRecord* const record = FrameAtDepth(frame);
    if (record == nullptr) return 0;
    return frame == FrameCount() ? tarn_current_line : record->savedLine;
}

std::string ClassOf(std::int32_t frame) {
    const FrameRecord* const record = FrameAtDepth(frame);
    return record != nullptr ? record->className() : "";
}

std::string FunctionOf(std::int32_t frame) {
    const FrameRecord* const record = FrameAtDepth(frame);
    return record != nullptr ? record->functionName() : "";
}

void ShowStack(DebugWindow& window) {
    std::string text;
    std::vector<std::int32_t> lines;
    std::int32_t expected = FrameCount();
    for (const std::int32_t frame : knownFrames()) {
        if (frame != expected) {
            text += "(" + std::to_string(expected - frame) + " calls are left out here)\n";
            lines.push_back(0);
        }
        text += lineFor(frame);
        lines.push_back(frame);
        expected = frame - 1;
    }
    FillList(window, ListMode::Stack, text);
    engine.stackFrames = std::move(lines);
}

std::int32_t FrameOfStackLine(int line) {
    const bool there = line >= 1 && static_cast<std::size_t>(line) <= engine.stackFrames.size();
    return there ? engine.stackFrames[static_cast<std::size_t>(line) - 1] : 0;
}

}  // namespace tarn::debug
