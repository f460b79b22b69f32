// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/valuenotes_internal.h"

#include "kernel/debug/framevariables.h"
#include "kernel/debug/showvalues.h"
#include "kernel/debug/showvalues_internal.h"
#include "kernel/debug/valueelements_internal.h"
#include "kernel/debug/valuetext.h"
#include "kernel/debug/valuewriter_internal.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/runtime.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace tarn {

namespace {

constexpr std::size_t MostOfCallers = 256 * 1024;  // characters

std::uint64_t fingerprint(std::string_view text) {
    return std::hash<std::string_view>()(text);
}

// `buffer` is used anew, so that thousands of elements need one.
std::uint64_t fingerprint(const void* at, Kind kind, std::string& buffer) {
    buffer.clear();
    if (HoldsValue(at, kind)) ValueWriter(buffer, OneLineFlags(false)).append(at, kind, MaxValueText);
    return fingerprint(buffer);
}

// By its name, since what ends can leave its place to another.
struct NotedVariable {
    const void* address = nullptr;
    std::uint64_t name = 0;
    std::shared_ptr<const ValueNote> note;
};
struct NotedCall {
    std::int32_t frame = 0;
    std::uint64_t function = 0;
    std::vector<NotedVariable> variables;
};
std::vector<NotedCall> noted;

using Notes = std::map<std::pair<const void*, std::int32_t>, std::shared_ptr<const ValueNote>>;

std::shared_ptr<const ValueNote> sharedNote(const VariableEntry& entry, Notes& notes, std::size_t& text) {
    std::shared_ptr<const ValueNote>& note = notes[{entry.address, entry.kind}];
    if (note == nullptr) note = std::make_shared<const ValueNote>(NoteOf(entry, HowItIsShown(entry), text));
    return note;
}

void noteCall(std::int32_t frame, std::size_t most, Notes& notes, std::size_t& text) {
    NotedCall call{frame, FunctionOfFrame(frame), {}};
    for (const VariableEntry& entry : VariablesOf(frame)) {
        if (text >= most) break;
        if (!IsValueKind(entry.kind) || entry.address == nullptr) continue;
        call.variables.push_back({entry.address, fingerprint(entry.name), sharedNote(entry, notes, text)});
    }
    if (!call.variables.empty()) noted.push_back(std::move(call));
}

}  // namespace

ValueNote NoteOf(const VariableEntry& entry, const HowShown& how, std::size_t& text) {
    const auto kind = static_cast<Kind>(entry.kind);
    std::string buffer;
    ValueNote note;
    note.type = fingerprint(std::string_view(VariableHead(entry)).substr(std::strlen(entry.name)));
    note.value = fingerprint(entry.address, kind, buffer);
    text += buffer.size();
    if (!IsExpandable(kind) || !HoldsValue(entry.address, kind)) return note;
    ValueElements all(entry.address, kind);
    // The page before is a key away.
    note.firstElement = std::max(how.page - PageElements, 0);
    const std::size_t most = entry.expanded && how.page < 0 ? MaxShownText : MaxValueText;
    std::size_t seen = 0;
    for (std::int32_t i = note.firstElement; i < all.count() && seen < most; ++i) {
        const void* const one = all.at(i);
        if (one == nullptr) break;
        note.elements.push_back(fingerprint(one, all.kind(i), buffer));
        seen += buffer.size() + 1;
    }
    text += seen;
    return note;
}

bool IsOtherElement(const ValueNote& before, const ValueNote& now, std::int32_t element) {
    const auto at = [element](const ValueNote& note) -> const std::uint64_t* {
        const std::int32_t i = element - note.firstElement;
        return i >= 0 && i < static_cast<std::int32_t>(note.elements.size())
                   ? &note.elements[static_cast<std::size_t>(i)]
                   : nullptr;
    };
    const std::uint64_t *const was = at(before), *const is = at(now);
    return was != nullptr && is != nullptr && *was != *is;
}

void NoteCalls() {
    const ErrorCellAside aside;
    noted.clear();
    Notes notes;
    std::size_t text = 0;
    const std::int32_t top = std::min(FrameCount(), MaxFrames);
    for (std::int32_t frame = top; frame >= 1 && (frame == top || text < MostOfCallers); --frame)
        noteCall(frame, frame == top ? SIZE_MAX : MostOfCallers, notes, text);
}

void ForgetCalls() {
    noted.clear();
}

const ValueNote* NotedValue(std::int32_t frame, const VariableEntry& entry) {
    const auto call = std::find_if(noted.begin(), noted.end(),
                                   [frame](const NotedCall& one) { return one.frame == frame; });
    if (call == noted.end() || call->function != FunctionOfFrame(frame)) return nullptr;
    const std::uint64_t name = fingerprint(entry.name);
    const auto found =
        std::find_if(call->variables.begin(), call->variables.end(), [&](const NotedVariable& one) {
            return one.address == entry.address && one.name == name;
        });
    return found != call->variables.end() ? found->note.get() : nullptr;
}

}  // namespace tarn
