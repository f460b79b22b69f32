// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/showvalues.h"

#include "kernel/debug/framevariables.h"
#include "kernel/debug/showvalues_internal.h"
#include "kernel/debug/valueelements_internal.h"
#include "kernel/debug/valuenotes_internal.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/strings.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <vector>

namespace tarn {

namespace {

constexpr std::string_view nothingInScope = " Either there are no values in scope here,\n"
                                            " or the file was compiled without debug information.\n"
                                            " (To enable debug information, use Tools-Options-Compiler,\n"
                                            "  select Full Debugging, then recompile the file).\n";

// What there is to say if the frame may have more variables than the table of them could take.
std::string withoutRoom(std::int32_t frame) {
    if (variablesEndAt == 0 || frame < variablesEndAt) return {};
    if (frame > MaxFrames)
        return " (Only the first " + std::to_string(MaxFrames) +
               " calls have their values here: this one is number " + std::to_string(frame) + ".)\n";
    return " (The table of values is full: it holds " + std::to_string(MaxVariables) +
           ", and those of this call may be missing.)\n";
}

struct Shown {
    std::int32_t frame = 0;
    std::uint64_t function = 0;  // another function at the same depth is another frame
    bool hex = false;
    std::vector<ShownLine> lines;
};
Shown shown;

// What the user has asked for, by the addresses of the variables.
std::map<const void*, HowShown> asked;

// ---- the list ----

void mark(platform::DebugWindow& window, std::size_t index) {
    platform::SetDebugFlags(window, static_cast<int>(index) + 1, platform::types::DEBUG_CHANGED);
}

// The lines from `first` on, before `behind`, are the variable's. Of an expanded one the elements tell what has changed; its
// own line does where none of them can.
void markChanged(platform::DebugWindow& window, const VariableEntry& entry, std::size_t first,
                 std::size_t behind) {
    const ValueNote* const before = NotedValue(shown.frame, entry);
    if (before == nullptr) return;
    std::size_t text = 0;
    const ValueNote now = NoteOf(entry, HowItIsShown(entry), text);
    bool inElement = false;
    for (std::size_t i = first; i < behind; ++i) {
        const std::int32_t element = shown.lines[i].element;
        if (element < 0 || !IsOtherElement(*before, now, element)) continue;
        mark(window, i);
        inElement = true;
    }
    if (before->type == now.type && (inElement || before->value == now.value)) return;
    for (std::size_t i = first; i < behind; ++i)
        if (shown.lines[i].element == ShownLine::NoElement) mark(window, i);
}

void markExpandable(platform::DebugWindow& window, const VariableEntry& entry, std::size_t line) {
    if (!IsExpandable(static_cast<Kind>(entry.kind))) return;
    platform::SetDebugMarker(window, static_cast<int>(line) + 1,
                             entry.expanded ? platform::types::DebugMarker::Collapse
                                            : platform::types::DebugMarker::Expand);
}

void markLines(platform::DebugWindow& window, const FrameVariables& variables) {
    const ErrorCellAside aside;
    for (std::size_t first = 0, behind = 0; first < shown.lines.size(); first = behind) {
        const std::int32_t variable = shown.lines[first].variable;
        while (behind < shown.lines.size() && shown.lines[behind].variable == variable) ++behind;
        markExpandable(window, variables.first[variable], first);
        markChanged(window, variables.first[variable], first, behind);
    }
}

ValueDump dumpOf(const FrameVariables& variables, bool hex) {
    ValueDump dump(hex, MaxShownText);
    for (const VariableEntry& entry : variables) dump.add(entry, HowItIsShown(entry));
    return dump;
}

// The first word of a line, if it can be a name.
std::string_view nameIn(std::string_view text) {
    if (text.size() > MaxShownValue) return {};
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    if (text.empty() || !(ascii::isLetter(text[0]) || text[0] == '_')) return {};
    const auto end = std::find_if_not(text.begin(), text.end(), ascii::isSymbol);
    return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

// What a line names; of two variables with one name the one that it shows.
VariableEntry* expandableOf(std::string_view text, std::int32_t frame, int line) {
    const std::string_view name = nameIn(text);
    const VariableEntry* const own = ValueOfLine(frame, line).variable;
    const bool isOwn = own != nullptr && ascii::equal(own->name, name);
    VariableEntry* const entry =
        isOwn ? const_cast<VariableEntry*>(own) : FindVariable(VariablesOf(frame), name);
    return entry != nullptr && IsExpandable(static_cast<Kind>(entry->kind)) ? entry : nullptr;
}

}  // namespace

std::uint64_t FunctionOfFrame(std::int32_t frame) {
    const FrameRecord& record = frameStack->frames[frame - 1];
    return std::hash<std::string>()(std::string(record.className()) + ':' + record.functionName());
}

HowShown HowItIsShown(const VariableEntry& entry) {
    const auto found = asked.find(entry.address);
    return found != asked.end() ? found->second : HowShown();
}

void ShowValuesAgain(platform::DebugWindow& window, std::int32_t frame, bool hex) {
    const int selected = platform::DebugSelected(window), top = platform::DebugTop(window);
    ShowValues(window, frame, hex);
    platform::DebugSelect(window, std::min(selected, platform::DebugCount(window)), false);
    platform::SetDebugTop(window, top);
}

bool ShownInHex() {
    return shown.hex;
}

LineValue ValueOfLine(std::int32_t frame, int line) {
    const FrameVariables variables = VariablesOf(frame);
    const bool known = frame == shown.frame && variables.first != nullptr &&
                       FunctionOfFrame(frame) == shown.function && line >= 1 &&
                       static_cast<std::size_t>(line) <= shown.lines.size();
    if (!known) return {};
    const ShownLine& at = shown.lines[static_cast<std::size_t>(line) - 1];
    if (at.variable >= variables.count) return {};
    return {&variables.first[at.variable], at.element};
}

void ShowValues(platform::DebugWindow& window, std::int32_t frame, bool hex) {
    const FrameVariables variables = VariablesOf(frame);
    const ValueDump dump = dumpOf(variables, hex);
    shown = {};
    if (dump.text().empty()) {
        platform::DebugAddstrings(window, std::string(nothingInScope) + withoutRoom(frame));
    } else {
        shown = {frame, FunctionOfFrame(frame), hex, dump.lines()};
        platform::DebugAddstrings(window, dump.text() + withoutRoom(frame));
        markLines(window, variables);
    }
    platform::DebugExtent(window);
    platform::DebugRepaint(window);
}

std::string DumpVariable(const VariableEntry& entry, bool hex, std::size_t capacity) {
    ValueDump dump(hex, capacity);
    dump.add(entry);
    return dump.text();
}

void DumpVariable(const VariableEntry& entry, bool hex, void* dest) {
    if (KindOf(dest) != KindString) return SetError(ERR_STRING_TYPE);
    if (entry.address == nullptr || !IsValueKind(entry.kind)) return SetError(ERR_UNIDENTIFIABLE);
    auto* const string = static_cast<StringDescriptor*>(dest);
    const bool unbounded = string->maxlength == UNBOUNDED;
    const std::size_t capacity = unbounded ? MaxShownText : static_cast<std::size_t>(string->maxlength);
    StringAssignView(string, DumpVariable(entry, hex, capacity));
}

bool ExpandValue(platform::DebugWindow& window, std::int32_t frame, int line, bool hex) {
    const LineValue at = ValueOfLine(frame, line);
    const bool tellsPage = at.variable != nullptr && !at.isValue() && HowItIsShown(*at.variable).page >= 0;
    if (tellsPage) return PageValue(window, frame, line, ValuePage::Next, hex);
    VariableEntry* const entry = expandableOf(platform::DebugLine(window, line), frame, line);
    if (entry == nullptr) return false;
    entry->expanded = !entry->expanded;
    if (!entry->expanded) asked.erase(entry->address);
    ShowValuesAgain(window, frame, hex);
    return true;
}

bool PageValue(platform::DebugWindow& window, std::int32_t frame, int line, ValuePage page, bool hex) {
    const LineValue at = ValueOfLine(frame, line);
    if (at.variable == nullptr || !IsExpandable(static_cast<Kind>(at.variable->kind))) return false;
    VariableEntry& entry = *const_cast<VariableEntry*>(at.variable);
    const std::int32_t now = HowItIsShown(entry).page,
                       count = ValueElements(entry.address, static_cast<Kind>(entry.kind)).count();
    const std::int32_t first =
        page == ValuePage::Next ? (now < 0 ? 0 : now + PageElements) : now - PageElements;
    if (first < 0 || first >= count) return false;
    entry.expanded = true;
    asked[entry.address].page = first;
    ShowValuesAgain(window, frame, hex);
    return true;
}

bool ShowWholeValue(platform::DebugWindow& window, std::int32_t frame, int line, bool hex) {
    const LineValue at = ValueOfLine(frame, line);
    if (!at.isValue()) return false;
    const bool expanded = at.variable->expanded && IsExpandable(static_cast<Kind>(at.variable->kind));
    if (expanded && at.element == ShownLine::NoElement) return false;
    std::set<std::int32_t>& whole = asked[at.variable->address].whole;
    if (whole.erase(at.element) == 0) whole.insert(at.element);
    const int before = platform::DebugCount(window);
    ShowValuesAgain(window, frame, hex);
    if (platform::DebugCount(window) != before) return true;
    whole.erase(at.element);
    return false;
}

void NoteValues() {
    NoteCalls();
}

void ForgetShownValues() {
    shown = {};
    asked.clear();
    ForgetCalls();
}

}  // namespace tarn
