// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/results.h"

namespace tarn {
namespace {

// By the number of the frame. A function that tells nothing leaves what was told by one before at that depth; the line of
// its head and its place among the variables tell the two apart.
struct Told {
    ResultPlace place;
    std::int32_t firstLine, firstVariable;
};
Told told[MaxFrames];

}  // namespace

void RegisterResult(std::int32_t kind, void* address) {
    const FrameRecord* const top = TopFrame();
    if (top == nullptr || variableTable == nullptr) return;
    const bool whole = kind >= 1 && kind <= 12 && address != nullptr;
    told[frameStack->count - 1] = {whole ? ResultPlace{kind, address} : ResultPlace(), top->firstLine,
                                   top->firstVariable};
}

ResultPlace ResultOf(std::int32_t frame) {
    if (frameStack == nullptr || variableTable == nullptr || frame < 1 || frame > frameStack->count ||
        frame > MaxFrames)
        return {};
    const FrameRecord& record = frameStack->frames[frame - 1];
    const Told& one = told[frame - 1];
    const bool same = one.firstLine == record.firstLine && one.firstVariable == record.firstVariable;
    return same ? one.place : ResultPlace();
}

}  // namespace tarn
