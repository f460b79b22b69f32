// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/valuedump_internal.h"

#include "kernel/debug/showvalues.h"
#include "kernel/debug/valueelements_internal.h"
#include "kernel/debug/valuetext.h"
#include "kernel/debug/valuewriter_internal.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/tables.h"
#include "kernel/values/adt_kinds.h"

#include <algorithm>

namespace tarn {

namespace {

constexpr std::string_view tooBig = "{...too big...}", tooBigLine = "  {...too big...}\n",
                           unreadable = "{...cannot be read...}", damaged = "{...no value...}",
                           cutMark = "...", indent = "   ";
constexpr std::size_t WholeLine = 100;
constexpr std::string_view typeWords[KindCount] = {"",      "Boolean", "Enum",   "Integer", "Fixed",
                                                   "Real",  "String",  "Record", "Union",   "Set",
                                                   "Array", "List",    "Table"};

std::string boundsText(const ArrayDescriptor& array) {
    std::string text;
    for (std::int32_t i = 0; i < DimensionCount(array); ++i) {
        const ArrayBounds bounds = array.bounds[i];
        text += (i > 0 ? "," : "") + std::to_string(bounds.lower) + ":" + std::to_string(bounds.upper);
    }
    return text.empty() ? "*:*" : text;
}

// "(Length=3)" and the file of a list or table.
std::string rowsText(const void* value, Kind kind) {
    const ListDescriptor* const rows = ElementList(value, kind);
    std::string text = " (Length=" + std::to_string(rows != nullptr ? rows->count : 0) + ")";
    if (rows != nullptr && rows->tag > TagInFile) text += " (external=\"" + FileNameOf(value, kind) + "\")";
    return text;
}

// What stands between the name and the value.
std::string typeText(const void* value, Kind kind) {
    std::string text(typeWords[kind]);
    if (!IsAdtKind(kind) || (!IsZeroValue(value, kind) && !IsOfKind(value, kind))) return text;
    if (kind == KindString) {
        const std::int32_t capacity = ReadAt<StringDescriptor>(value).maxlength;
        if (capacity > 0) text += "[" + std::to_string(capacity) + "]";
    } else if (kind == KindArray) {
        const bool shaped = !IsZeroValue(value, kind);
        text += " (Bounds=" + (shaped ? boundsText(ReadAt<ArrayDescriptor>(value)) : "*:*") + ")";
    } else if (kind == KindList || kind == KindTable) {
        text += IsZeroValue(value, kind) ? " (Length=0)" : rowsText(value, kind);
    }
    return text;
}

// Of a value in one line: whether there is more of it.
bool isTooBig(std::string_view shown) {
    return shown == tooBig ||
           (shown.size() == MaxShownCharacters + cutMark.size() && shown.ends_with(cutMark));
}

}  // namespace

bool HoldsValue(const void* at, Kind kind) {
    return !IsAdtKind(kind) || IsZeroValue(at, kind) || IsOfKind(at, kind);
}

std::string VariableHead(const VariableEntry& entry) {
    return std::string(entry.name) + " : " + typeText(entry.address, static_cast<Kind>(entry.kind));
}

std::uint32_t OneLineFlags(bool hex) {
    return VALUE_BRACES | VALUE_BLANKS | VALUE_CHARACTERS | VALUE_TO_NUL | (hex ? VALUE_HEX : 0U);
}

void AppendOneLine(std::string& text, const void* at, Kind kind, bool hex) {
    if (!HoldsValue(at, kind)) {
        text += damaged;
        return;
    }
    const std::size_t start = text.size();
    const bool characters = IsCharacterArray(at, kind);
    const std::size_t limit = characters ? MaxShownCharacters : MaxShownValue - 1;
    switch (ValueWriter(text, OneLineFlags(hex)).append(at, kind, limit)) {
    case ValueWriter::Result::Whole: return;
    case ValueWriter::Result::Unreadable: text.replace(start, std::string::npos, unreadable); return;
    case ValueWriter::Result::Cut: break;
    }
    if (characters)
        text += cutMark;
    else
        text.replace(start, std::string::npos, tooBig);
}

void ValueDump::add(const VariableEntry& entry, const HowShown& how) {
    const auto kind = static_cast<Kind>(entry.kind);
    if (!IsValueKind(kind) || entry.address == nullptr || full()) return;
    ++variables_;
    const std::size_t line = lines_.size();
    text_ += VariableHead(entry) + " = ";
    const bool expanded = entry.expanded && IsExpandable(kind) && HoldsValue(entry.address, kind);
    if (!expanded) variable(entry.address, kind, how.whole.contains(ShownLine::NoElement));
    endLine(ShownLine::NoElement, lines_.size() > line);
    if (expanded && !full() && !IsZeroValue(entry.address, kind)) elements(entry.address, kind, how);
    if (text_.size() > capacity_) text_.resize(capacity_);
}

// The value of one that is not expanded.
void ValueDump::variable(const void* at, Kind kind, bool whole) {
    const std::string shown = OneLineValue(at, kind, hex_);
    if (whole && isTooBig(shown))
        wholeValue(at, kind, ShownLine::NoElement, {});
    else
        text_ += shown;
}

// A value without its limits, in lines of WholeLine characters; the last one is not ended.
void ValueDump::wholeValue(const void* at, Kind kind, std::int32_t element, std::string_view indentOfLine) {
    std::string all;
    ValueWriter(all, OneLineFlags(hex_)).append(at, kind, MaxShownText);
    std::string_view rest = all;
    for (bool continues = false;; continues = true) {
        if (continues) text_.append(indentOfLine).append(indent);
        text_.append(rest.substr(0, WholeLine));
        rest.remove_prefix(std::min(rest.size(), WholeLine));
        if (rest.empty() || full()) return;
        endLine(element, continues);
    }
}

ShownLine ValueDump::lineOf(std::int32_t element, bool continues) const {
    return {variables_ - 1, element, continues};
}

void ValueDump::endLine(std::int32_t element, bool continues) {
    text_ += '\n';
    lines_.push_back(lineOf(element, continues));
}

void ValueDump::elements(const void* at, Kind kind, const HowShown& how) {
    ValueElements all(at, kind);
    std::int32_t first = 0, behind = all.count();
    if (how.page >= 0) {
        first = std::min(how.page, behind);
        behind = std::min(behind, first + PageElements);
        text_ += std::string(indent) + "{...elements " + std::to_string(first + 1) + " to " +
                 std::to_string(behind) + " of " + std::to_string(all.count()) + "...}";
        endLine(ShownLine::NoValue);
    }
    for (std::int32_t i = first; i < behind; ++i) {
        const void* const one = all.at(i);
        const bool shown = element(one, all.kind(i), i, how.whole.contains(i), i + 1 == all.count());
        if (!shown || one == nullptr) return;
    }
}

// False: it found no place.
bool ValueDump::element(const void* at, Kind kind, std::int32_t index, bool whole, bool last) {
    const std::size_t start = text_.size(), line = lines_.size();
    text_ += indent;
    if (at != nullptr)
        AppendOneLine(text_, at, kind, hex_);
    else
        text_ += unreadable;
    const std::string_view shown = std::string_view(text_).substr(start + indent.size());
    if (whole && isTooBig(shown)) {
        text_.resize(start + indent.size());
        wholeValue(at, kind, index, indent);
    }
    if (!last && at != nullptr) text_ += ',';
    endLine(index, lines_.size() > line);
    if (text_.size() <= capacity_) return true;
    text_.resize(start);
    lines_.resize(line);
    dropLinesFor(tooBigLine.size());
    text_ += tooBigLine;
    lines_.push_back(lineOf(ShownLine::NoValue));
    return false;
}

// Takes elements off the end until so many characters have a place.
void ValueDump::dropLinesFor(std::size_t size) {
    while (text_.size() + size > capacity_ && lines_.back().element >= 0) {
        text_.resize(text_.rfind('\n', text_.size() - 2) + 1);
        lines_.pop_back();
    }
}

}  // namespace tarn
