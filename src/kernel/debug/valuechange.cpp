// SPDX-License-Identifier: Apache-2.0
//
// Values of the debugger's list one by one: shown as a whole, and changed.
#include "kernel/debug/fieldnames.h"
#include "kernel/debug/showvalues.h"
#include "kernel/debug/showvalues_internal.h"
#include "kernel/debug/valueelements_internal.h"
#include "kernel/debug/valuetext.h"
#include "kernel/debug/valuewriter_internal.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables.h"
#include "kernel/values/adt.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/owned.h"

namespace tarn {

namespace {

constexpr std::string_view wanted[KindCount] = {
    "",
    "True or False",
    "",  // by how many names it has
    "an integer, in decimal or as 0x and up to eight hexadecimal digits",
    "a number with a point, such as 1.25",
    "a number such as 1.25 or 1.25E10",
    "a text in double quotes",
    "the fields between { and }, with commas",
    "the fields between { and }, with commas",
    "the members between [ and ], such as [1, 5..9]",
    "the elements between { and }, with commas",
    "the elements between { and }, with commas",
    "the rows between { and }, with commas, no two with one key"};

constexpr std::string_view unchanged = "The value was not changed: ";

std::string failure() {
    if (ErrorCell() == 0) return {};
    return std::string(unchanged) + ErrorMessage(ErrorCell()) + ".";
}

std::string wantedText(const ValueMisfit& misfit) {
    if (misfit.kind == KindEnum) return "a number from 0 to " + std::to_string(misfit.highest);
    return std::string(wanted[misfit.kind]);
}

// What is wrong with a text that was refused, in words for the user.
std::string refusal(const ValueMisfit& misfit) {
    if (ErrorCell() != 0) return failure();
    const std::string place = "at character " + std::to_string(misfit.position);
    if (!misfit.kept.empty())
        return std::string(unchanged) + "of the number " + place + ", " + misfit.kept + " would be kept.";
    if (!misfit.why.empty()) return std::string(unchanged) + place + ' ' + misfit.why + '.';
    std::string text = std::string(unchanged) + place + " it takes " + wantedText(misfit);
    if (misfit.capacity != 0) text += ", of at most " + std::to_string(misfit.capacity) + " characters";
    return text + ".";
}

std::string changed(std::string_view text, void* at, Kind kind, std::string_view names) {
    ValueMisfit misfit;
    return ValueFromWholeText(text, at, kind, misfit, names) ? std::string() : refusal(misfit);
}

// An element that stands in a file is read beside, changed, and put back.
std::string changeInFile(std::string_view text, ListDescriptor* list, std::int32_t position,
                         std::string_view names) {
    const Kind kind = ListElementKind(list);
    ElementBeside element(At(list->prototype), kind);
    ListGet(list, position, element.at(), kind);
    if (ErrorCell() != 0) return failure();
    const std::string why = changed(text, element.at(), kind, names);
    if (!why.empty()) return why;
    ListPut(element.at(), kind, position, list);
    return failure();
}

// The indexes follow a row that is changed.
std::string changeRow(std::string_view text, TableDescriptor* table, std::int32_t number,
                      std::string_view names) {
    ListDescriptor* const rows = TableRows(table);
    RecordValue row, key;
    AdtInit(row.get(), At(rows->prototype), KindRecord);
    TableRow(table, number, row.get());
    const bool hasIndex = TableIndexCount(table) > 0;
    if (hasIndex) TableKeyFromRow(table, 1, row.get(), key.get());
    if (ErrorCell() != 0) return failure();
    const std::string why = changed(text, row.get(), KindRecord, names);
    if (!why.empty()) return why;
    if (hasIndex)
        TableUpdate(row.get(), 1, key.get(), table);
    else
        ListPut(row.get(), KindRecord, number, rows);
    return failure();
}

std::string changeElement(std::string_view text, const VariableEntry& entry, std::int32_t index) {
    const std::string_view names = ElementNames(FieldNames(entry));
    if (entry.kind == KindTable)
        return changeRow(text, static_cast<TableDescriptor*>(entry.address), index + 1, names);
    const auto kind = static_cast<Kind>(entry.kind);
    const bool inFile = ReadAt<DescriptorHead>(entry.address).tag > TagInFile;
    if (inFile) return changeInFile(text, static_cast<ListDescriptor*>(entry.address), index + 1, names);
    ValueElements all(entry.address, kind);
    if (index >= all.count()) return std::string(unchanged) + "the element is there no more.";
    const bool isRecord = entry.kind == KindRecord || entry.kind == KindUnion;
    return changed(text, const_cast<void*>(all.at(index)), all.kind(index),
                   isRecord ? FieldNamesAt(FieldNames(entry), index + 1) : names);
}

}  // namespace

std::string ChangeValue(platform::DebugWindow& window, std::int32_t frame, int line, std::string_view text) {
    const LineValue at = ValueOfLine(frame, line);
    if (!at.isValue()) return "There is no value in this line.";
    const auto kind = static_cast<Kind>(at.variable->kind);
    constexpr char in = 'I';
    if (at.variable->role == in && IsAdtKind(kind))
        return "A parameter of mode in is the value of the caller, and cannot be changed here.";
    const ErrorCellAside aside;
    std::string why = at.element != ShownLine::NoElement
                          ? changeElement(text, *at.variable, at.element)
                          : changed(text, at.variable->address, kind, FieldNames(*at.variable));
    if (why.empty()) ShowValuesAgain(window, frame, ShownInHex());
    return why;
}

std::string NameOfValue(std::int32_t frame, int line) {
    const LineValue at = ValueOfLine(frame, line);
    if (!at.isValue()) return {};
    if (at.element == ShownLine::NoElement) return VariableHead(*at.variable);
    return "element " + std::to_string(at.element + 1) + " of " + at.variable->name;
}

std::string WholeValue(std::int32_t frame, int line, bool hex) {
    const LineValue at = ValueOfLine(frame, line);
    if (!at.isValue()) return {};
    const void* value = at.variable->address;
    auto kind = static_cast<Kind>(at.variable->kind);
    std::string text;
    if (IsAdtKind(kind) && !IsOfKind(value, kind)) return text;
    if (at.element == ShownLine::NoElement) {
        ValueWriter(text, OneLineFlags(hex)).append(value, kind, MaxShownText);
        return text;
    }
    ValueElements all(value, kind);
    if (at.element >= all.count()) return text;
    value = all.at(at.element);
    kind = all.kind(at.element);
    if (value != nullptr) ValueWriter(text, OneLineFlags(hex)).append(value, kind, MaxShownText);
    return text;
}

}  // namespace tarn
