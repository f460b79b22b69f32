// SPDX-License-Identifier: Apache-2.0
//
// Loading whole values. A table takes its rows from more forms than one: as they stand in the outermost
// element, from a list of records inside of it, or one row from a single record. The first form is read
// without looking for the structure; only when it does not fit, the structure decides.
#include "kernel/data/fresh.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xml/xml_reader_internal.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/tables/tables.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"

#include <utility>

namespace tarn {

namespace {

constexpr std::int32_t longestName = 40;

std::int32_t itemsOf(const void* value, Kind kind) {
    switch (kind) {
    case KindRecord:
    case KindUnion: return FieldCountOf(static_cast<const RecordDescriptor*>(value)->kinds);
    case KindArray: return ArrayElementCount(static_cast<const ArrayDescriptor*>(value));
    case KindList: return ListCount(static_cast<const ListDescriptor*>(value));
    case KindTable: return TableCount(static_cast<const TableDescriptor*>(value));
    default: return IsValueKind(kind) ? 1 : 0;
    }
}

const RecordDescriptor* rowShape(const TableDescriptor* table) {
    const ListDescriptor* const rows = TableRows(table);
    return rows != nullptr ? reinterpret_cast<const RecordDescriptor*>(At(rows->prototype)) : nullptr;
}

void note(ErrorRecord& error, std::int32_t code) {
    if (error.code == 0 && code != 0) error = XmlFailure(code);
}

// A table of the same shape that takes the other's place once its rows are there.
class Refill {
public:
    explicit Refill(TableDescriptor* table) : fresh_(table, KindTable) {}
    void add(const RecordDescriptor* row, ErrorRecord& error) {
        auto* const table = static_cast<TableDescriptor*>(fresh_.get());
        TableAdd(table, TableIndexCount(table) > 0 ? 1 : 0, row);
        note(error, TakeError());
    }
    void takePlace(ErrorRecord& error) {
        const bool whole = KindOf(fresh_.get()) == KindTable && !IsFileFailure(error.code);
        if (whole && !fresh_.replaceTarget()) error = XmlFailure(TakeError());
    }

private:
    FreshValue fresh_;
};

// The lines between the first and the last, one level up.
std::string fieldsOf(std::string text) {
    TypeInfoDeleteLine(text, 1);
    const std::size_t last = text.rfind('\n', text.size() < 2 ? 0 : text.size() - 2);
    text.resize(last == std::string::npos ? 0 : last + 1);
    TypeInfoChangeIndent(-1, text, MaxTypeInfo);
    return text;
}

XmlReadResult loadSingleRecord(XmlReader& reader, const std::string& filename, TableDescriptor* table) {
    RecordValue row;
    XmlReadResult result;
    AdtInit(row.get(), rowShape(table), KindRecord);
    note(result.error, TakeError());
    if (result.error.code != 0) return result;
    result = reader.read(filename, row.get(), KindRecord, nullptr, 0);
    if (result.stopped) return result;
    Refill refill(table);
    refill.add(row.get(), result.error);
    refill.takePlace(result.error);
    return result;
}

// What the table could not take as it stands, by its structure.
XmlReadResult loadOtherForm(XmlReader& reader, const std::string& filename, TableDescriptor* table,
                            XmlReadResult direct) {
    std::string text;
    XmlReadResult found = reader.read(filename, nullptr, KindNone, &text, MaxTypeInfo);
    if (found.stopped) return found;
    if (TypeInfoIsPath(text, "/record/list/record") || TypeInfoIsPath(text, "/record/table/record"))
        return XmlReading{reader, filename, nullptr, 0, XmlTableForm::RowsInFirst}.read(table, KindTable);
    const bool single = TypeInfoIsPath(text, "/record") && !TypeInfoIsPath(text, "/record/list") &&
                        !TypeInfoIsPath(text, "/record/table");
    // Names need only be good enough to be repaired: fields are bound in their order.
    if (single && TypeInfoMatchesValue(TypeInfoFixNames(fieldsOf(text), longestName), rowShape(table)) == 0)
        return loadSingleRecord(reader, filename, table);
    return direct;
}

// Binds into a copy of the table's shape first: the direct form may not be the one, and a later read may be
// stopped.
XmlReadResult loadTable(XmlReader& reader, const std::string& filename, TableDescriptor* table) {
    FreshValue made(table, KindTable);
    auto* const fresh = static_cast<TableDescriptor*>(made.get());
    XmlReadResult result;
    note(result.error, TakeError());
    if (result.error.code != 0) return result;
    result = reader.read(filename, fresh, KindTable, nullptr, 0);
    if (IsFileFailure(result.error.code) || result.stopped) return result;
    const bool fits = result.error.code == 0 && result.lost.code == 0;
    if (!fits && !IsMemoryError(result.error.code))
        result = loadOtherForm(reader, filename, fresh, std::move(result));
    // Rows that came out empty collide, which is not what is wrong.
    const bool nothingElse = result.error.code == 0 || result.error.code == ERR_DUPLICATE_FIELDS;
    if (result.lost.code != 0 && nothingElse) result.error = result.lost;
    const bool failed = IsFileFailure(result.error.code) || IsMemoryError(result.error.code);
    if (!failed && !result.stopped && result.lost.code == 0 && !made.replaceTarget())
        result.error = XmlFailure(TakeError());
    if (result.error.code == ERR_DUPLICATE_FIELDS) {
        result.error.code = ERR_UNIQUE_INDEX;
        result.error.message = ErrorText(ERR_UNIQUE_INDEX);
    }
    return result;
}

}  // namespace

XmlResult XmlReader::load(const std::string& filename, void* value, Kind kind) {
    XmlResult result;
    if (filename.empty()) return result;
    if (value == nullptr) {
        result.error = XmlFailure(ERR_UNIDENTIFIABLE);
        return result;
    }
    const ErrorCellAside aside;
    const bool table = kind == KindTable && KindOf(value) == kind && !XmlIsUnopened(value, kind);
    XmlReadResult read = table ? loadTable(*this, filename, static_cast<TableDescriptor*>(value))
                               : this->read(filename, value, kind, nullptr, 0);
    result.error = std::move(read.error);
    result.stopped = read.stopped;
    const bool whole = IsValueKind(kind) && (!IsAdtKind(kind) || KindOf(value) == kind);
    if (whole) result.count = itemsOf(value, kind);
    return result;
}

XmlResult XmlLoad(const std::string& filename, void* value, Kind kind) {
    return XmlReaderOfOperations().load(filename, value, kind);
}

}  // namespace tarn
