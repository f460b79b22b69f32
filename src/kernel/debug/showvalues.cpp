// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/showvalues.h"

#include "kernel/debug/framevariables.h"
#include "kernel/debug/showvalues_internal.h"
#include "kernel/debug/valueelements_internal.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/strings.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <utility>
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
        return " (Only the first " + std::to_string(MaxFrames) + " calls have their values here: this one is number " +
               std::to_string(frame) + ".)\n";
    return " (The table of values is full: it holds " + std::to_string(MaxVariables) +
           ", and those of this call may be missing.)\n";
}

struct Shown {
    std::int32_t frame = 0;
    std::uint64_t function = 0;  // another function at the same depth is another frame
    bool hex = false;
    std::vector<ShownLine> lines;
    std::vector<ShownVariable> variables;
};
Shown shown, noted;

// What the user has asked for, by the addresses of the variables.
std::map<const void*, HowShown> asked;

std::uint64_t functionOf(std::int32_t frame) {
    const FrameRecord& record = frameStack->frames[frame - 1];
    return std::hash<std::string>()(std::string(record.className()) + ':' + record.functionName());
}

HowShown howShown(const VariableEntry& entry) {
    const auto found = asked.find(entry.address);
    return found != asked.end() ? found->second : HowShown();
}

// ---- what has changed ----

const ShownVariable* notedVariable(const ShownVariable& variable) {
    if (noted.frame != shown.frame || noted.function != shown.function) return nullptr;
    const auto found =
        std::find_if(noted.variables.begin(), noted.variables.end(),
                     [&](const ShownVariable& one) { return one.address == variable.address; });
    return found != noted.variables.end() ? &*found : nullptr;
}

bool headChanged(const ShownVariable& before, const ShownVariable& now) {
    return before.head != now.head || (before.value != 0 && now.value != 0 && before.value != now.value);
}

bool elementChanged(const ShownVariable& before, const ShownVariable& now, std::int32_t element) {
    const std::int32_t was = element - before.firstElement, is = element - now.firstElement;
    if (was < 0 || was >= static_cast<std::int32_t>(before.elements.size())) return false;
    return before.elements[static_cast<std::size_t>(was)] != now.elements[static_cast<std::size_t>(is)];
}

bool lineChanged(const ShownLine& line, const ShownVariable* before) {
    if (before == nullptr || line.element == ShownLine::NoValue) return false;
    const ShownVariable& now = shown.variables[static_cast<std::size_t>(line.variable)];
    return line.element == ShownLine::NoElement ? headChanged(*before, now)
                                                : elementChanged(*before, now, line.element);
}

// ---- the list ----

void markLines(platform::DebugWindow& window, const FrameVariables& variables) {
    std::vector<const ShownVariable*> before;
    for (const ShownVariable& variable : shown.variables) before.push_back(notedVariable(variable));
    for (std::size_t i = 0; i < shown.lines.size(); ++i) {
        const ShownLine& line = shown.lines[i];
        const int number = static_cast<int>(i) + 1;
        if (lineChanged(line, before[static_cast<std::size_t>(line.variable)]))
            platform::SetDebugFlags(window, number, platform::types::DEBUG_CHANGED);
        if (line.element != ShownLine::NoElement || line.continues) continue;
        const VariableEntry& entry = variables.first[line.variable];
        if (IsExpandable(static_cast<Kind>(entry.kind)))
            platform::SetDebugMarker(window, number,
                                     entry.expanded ? platform::types::DebugMarker::Collapse
                                                    : platform::types::DebugMarker::Expand);
    }
}

ValueDump dumpOf(const FrameVariables& variables, bool hex) {
    ValueDump dump(hex, MaxShownText);
    for (const VariableEntry& entry : variables) dump.add(entry, howShown(entry));
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
                       functionOf(frame) == shown.function && line >= 1 &&
                       static_cast<std::size_t>(line) <= shown.lines.size();
    if (!known) return {};
    const ShownLine& at = shown.lines[static_cast<std::size_t>(line) - 1];
    if (at.variable >= variables.count) return {};
    return {&variables.first[at.variable], at.element};
}

void ShowValues(platform::DebugWindow& window, std::int32_t frame, bool hex) {
    const FrameVariables variables = VariablesOf(frame);
    ValueDump dump = dumpOf(variables, hex);
    shown = {};
    if (dump.text().empty()) {
        platform::DebugAddstrings(window, std::string(nothingInScope) + withoutRoom(frame));
    } else {
        shown = {frame, functionOf(frame), hex, dump.lines(), std::move(dump.variables())};
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
    const bool tellsPage = at.variable != nullptr && !at.isValue() && howShown(*at.variable).page >= 0;
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
    const std::int32_t now = howShown(entry).page,
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

void NoteShownValues() {
    noted = shown;
}

void ForgetShownValues() {
    shown = noted = {};
    asked.clear();
}

}  // namespace tarn
