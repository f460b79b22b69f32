// SPDX-License-Identifier: Apache-2.0
//
// The frames of the program as the debugger sees them, and the list of them. Of a deep recursion the outermost frames are
// known and the innermost ones, which tell why it does not end; those between are one line. The list has no more lines than
// the table of frames has entries.
#include "kernel/debug/engine_internal.h"

#include <algorithm>

namespace tarn::debug {

namespace {

constexpr std::ptrdiff_t MostLines = MaxFrames, MostInner = MaxDeepFrames;

// The known frames from the top down, as many as have room. Where some are left out, one line tells of them all: of the
// inner ones at most MostInner stand above it, and the outermost ones below.
std::vector<std::int32_t> shownFrames() {
    std::vector<std::int32_t> frames;
    for (std::int32_t frame = FrameCount(); frame >= 1; --frame)
        if (FrameAtDepth(frame) != nullptr) frames.push_back(frame);
    if (FrameCount() <= MostLines) return frames;
    const auto known = static_cast<std::ptrdiff_t>(frames.size()), more = known - (MostLines - 1);
    std::ptrdiff_t inner = 0;  // up to those that are forgotten
    while (inner < std::min(known, MostInner) &&
           frames[static_cast<std::size_t>(inner)] == FrameCount() - inner)
        ++inner;
    if (more > 0) frames.erase(frames.begin() + inner, frames.begin() + inner + more);
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
    for (const std::int32_t frame : shownFrames()) {
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
