// SPDX-License-Identifier: Apache-2.0
//
// Tables from declarations: the description of the row that a table keeps, its default key, and the
// declarations of its indexes. The description is the lines inside of the row's record, without their
// indents; its elements that can hold a value are the fields in their order.
#include "kernel/data/typeinfo/typeinfo_text_internal.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"

#include <cstring>

namespace tarn {

using namespace typeinfo;

namespace {

constexpr std::int32_t longestKeyString = 1024;

// ---- the description of a row ----

// The lines between the first and the closing line of the record that a text begins with, with blanks for
// tabs and trimmed.
std::string descriptionOf(std::string_view text) {
    std::size_t end = 0;
    TypeInfoToValue(text, end, nullptr);
    std::string_view rest = text.substr(0, end);
    ascii::takeLine(rest);
    std::string description;
    while (!rest.empty()) {
        const std::string_view line = ascii::takeLine(rest);
        if (rest.empty() && readLine(line).isEnd()) break;
        std::string shown(ascii::withoutLineEnd(line));
        std::replace(shown.begin(), shown.end(), '\t', ' ');
        description.append(trimmed(shown)) += '\n';
    }
    return description;
}

// Calls `visit` with the first line of each field.
template <class Visit>
void eachField(std::string_view description, Visit visit) {
    std::size_t position = 0;
    for (std::int32_t fields = 0; position < description.size() && fields < MaxFields;) {
        const std::size_t start = position;
        if (!IsValueKind(TypeInfoToValue(description, position, nullptr))) continue;
        visit(readLine(lineOf(description.substr(start), 1)));
        ++fields;
    }
}

std::string namesOf(std::string_view description) {
    std::string names;
    eachField(description, [&](const Line& line) { names.append(line.name) += '\n'; });
    return names;
}

// The mark of a deleted row, in tables that come from files with such marks.
bool beginsWithDeleteFlag(std::string_view description) {
    const Line first = readLine(lineOf(description, 1));
    return ascii::equal(first.name, "delete_flag") && ascii::equal(first.typeName, "Tchar");
}

// ---- keys ----

bool canBeDefaultKey(const void* field, Kind kind) {
    if (kind == KindString) {
        const std::int32_t capacity = ReadAt<StringDescriptor>(field).maxlength;
        return capacity >= 2 && capacity <= longestKeyString;
    }
    if (kind == KindArray) return ArrayIsCharacters(static_cast<const ArrayDescriptor*>(field));
    return kind >= KindEnum && kind <= KindReal;
}

// ---- building ----

struct Row {
    std::string description;
    RecordValue record;
    bool built = false;
};

Row buildRow(std::string_view text) {
    Row row;
    std::size_t position = 0;
    char built[LargestKind] = {};
    const std::int32_t kind = TypeInfoToValue(text, position, built);
    row.built = kind == KindRecord;
    if (row.built) {
        std::memcpy(row.record.get(), built, sizeof(RecordDescriptor));
        row.description = descriptionOf(text);
    } else if (IsValueKind(kind)) {
        AdtFree(built, static_cast<Kind>(kind));
    }
    return row;
}

DefaultKeys keysOf(const Row& row) {
    return TypeInfoDefaultKeys(row.record.get(), namesOf(row.description),
                               beginsWithDeleteFlag(row.description));
}

bool buildTable(std::string_view text, TableDescriptor& value, bool inFile) {
    const Row row = buildRow(text);
    if (!row.built) return false;
    KeyMaps maps{};
    maps[0] = keysOf(row).map;
    TableInit(&value, UNBOUNDED, row.record.get(), maps, row.description, inFile);
    return value.tag != 0;
}

// In the form that every reader takes, however it was written.
std::string typeTextOf(const Line& line) {
    std::string text(line.typeName);
    if (!text.empty() && text.front() == 't') text.front() = 'T';
    return text + boundsText(line.bounds);
}

}  // namespace

void TypeInfoToTable(const StringDescriptor* text, TableDescriptor* value) {
    std::string taken;
    if (!takeText(text, taken)) return;
    if (!freeTarget(value, KindTable) || !buildTable(sourceOf(taken).text, *value, false))
        SetError(ERR_TABLE_TYPE);
}

void TypeInfoToFileVar(const StringDescriptor* text, void* value, Kind kind) {
    std::string taken;
    if (!takeText(text, taken)) return;
    if (kind != KindList && kind != KindTable) return SetError(ERR_UNIDENTIFIABLE);
    const Source source = sourceOf(taken);
    bool good = freeTarget(value, kind) && source.outer == kind;
    if (good && kind == KindList) good = buildList(source, *static_cast<ListDescriptor*>(value), true);
    if (good && kind == KindTable)
        good = buildTable(source.text, *static_cast<TableDescriptor*>(value), true);
    if (!good) SetError(AdtTypeError(kind));
}

DefaultKeys TypeInfoDefaultKeys(const RecordDescriptor* record, std::string_view names, bool skipFirst) {
    DefaultKeys keys;
    if (KindOf(record) != KindRecord) return keys;
    std::int32_t chosen[4] = {}, count = 0;
    for (std::int32_t n = skipFirst ? 2 : 1; n <= FieldCountOf(record->kinds) && count < 4; ++n) {
        if (!canBeDefaultKey(RecordFieldAddress(record, n), FieldKindAt(record->kinds, n))) continue;
        if (count > 0) keys.names += ',';
        keys.names += TypeInfoDefaultName(names, n);
        chosen[count++] = n;
    }
    keys.map = MakeKeyMap(chosen[0], chosen[1], chosen[2], chosen[3]);
    return keys;
}

FieldList TypeInfoFieldList(std::string_view tableTypeText) {
    FieldList list;
    const Row row = buildRow(sourceOf(tableTypeText).text);
    if (!row.built) return list;
    std::string_view names;
    const std::string all = namesOf(row.description);
    names = all;
    if (beginsWithDeleteFlag(row.description)) ascii::takeLine(names);
    list.names = names;
    list.keys = keysOf(row);
    return list;
}

std::string TypeInfoIndexText(const TableDescriptor* table, std::int32_t index) {
    const auto map = static_cast<std::uint32_t>(TableKeyMap(table, index));
    std::string description, fields;
    if (map == 0 || !takeText(TableTypeInfo(table), description)) return {};
    for (std::int32_t shift = 24; shift >= 0; shift -= 8) {
        const std::uint32_t wanted = map >> static_cast<std::uint32_t>(shift) & 255U;
        std::uint32_t number = 0;
        eachField(description, [&](const Line& line) {
            if (++number == wanted && !line.name.empty())
                fields.append("\t").append(line.name).append(" : ").append(typeTextOf(line)) += '\n';
        });
    }
    if (fields.empty()) return {};
    return "Index" + std::to_string(index) + " : record\n" + fields + "end record\n";
}

}  // namespace tarn
