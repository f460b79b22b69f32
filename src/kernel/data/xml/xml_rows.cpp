// SPDX-License-Identifier: Apache-2.0
//
// A single record becomes a row; rows and values in a list go to the table as they are read.
#include "kernel/data/xml/xml_rows.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xml/xml_reader_internal.h"
#include "kernel/lists/lists.h"
#include "kernel/values/records.h"

#include <utility>

namespace tarn {

namespace {

void note(XmlResult& result, std::int32_t code) {
    if (result.error.code == 0 && code != 0) result.error = XmlFailure(code);
}

// An empty row of the table.
class Row {
public:
    explicit Row(const TableDescriptor* table) {
        const ListDescriptor* const rows = TableRows(table);
        if (rows != nullptr) AdtInit(record_.get(), At(rows->prototype), KindRecord);
    }
    [[nodiscard]] RecordDescriptor* get() { return record_.get(); }
    [[nodiscard]] Kind kind() const { return RecordFieldKind(record_.get(), 1); }
    [[nodiscard]] void* field() { return RecordFieldAddress(record_.get(), 1); }
    void addTo(TableDescriptor* table, XmlResult& result) {
        TableAdd(table, 0, record_.get());
        note(result, TakeError());
        result.count = TableCount(table);
    }

private:
    RecordValue record_;
};

XmlResult resultOf(XmlReadResult&& read) {
    XmlResult result;
    result.error = std::move(read.error);
    result.stopped = read.stopped;
    if (result.error.code == 0) result.error = std::move(read.lost);
    return result;
}

// Values that stand in attributes are records of one field to the reader.
XmlResult loadValues(const std::string& filename, TableDescriptor* table) {
    XmlReadResult read = XmlReading{XmlReaderOfOperations(), filename, nullptr, 0, XmlTableForm::Values}.read(
        table, KindTable);
    if (read.lost.code != 0) return XmlLoad(filename, table, KindTable);
    XmlResult result = resultOf(std::move(read));
    if (!result.stopped) result.count = TableCount(table);
    return result;
}

// The outermost element has fields, or is the value of the only one.
XmlResult loadSingle(const std::string& filename, TableDescriptor* table) {
    XmlResult result;
    Row row(table);
    note(result, TakeError());
    if (result.error.code != 0) return result;
    XmlReader& reader = XmlReaderOfOperations();
    XmlReadResult read = reader.read(filename, row.get(), KindRecord, nullptr, 0);
    if (read.lost.code != 0 && FieldCountOf(row.get()->kinds) == 1)
        read = reader.read(filename, row.field(), row.kind(), nullptr, 0);
    result = resultOf(std::move(read));
    if (!result.stopped) row.addTo(table, result);
    return result;
}

}  // namespace

XmlRows XmlRowsOf(std::string_view structure) {
    using Form = XmlRows::Form;
    const std::int32_t kind = TypeInfoKind(TypeInfoParseLine(structure, 2).typeName);
    const bool list = TypeInfoIsPath(structure, "/list") || TypeInfoIsPath(structure, "/table");
    if (list) return {kind == KindRecord || kind == KindList ? Form::Rows : Form::Values, 2};
    const bool inner =
        TypeInfoIsPath(structure, "/record/list/record") || TypeInfoIsPath(structure, "/record/table/record");
    return inner ? XmlRows{Form::Rows, 3} : XmlRows{Form::Single, 1};
}

XmlResult XmlLoadRows(const std::string& filename, XmlRows::Form form, TableDescriptor* table) {
    const ErrorCellAside aside;
    switch (form) {
    case XmlRows::Form::Values: return loadValues(filename, table);
    case XmlRows::Form::Single: return loadSingle(filename, table);
    default: return XmlLoad(filename, table, KindTable);
    }
}

}  // namespace tarn
