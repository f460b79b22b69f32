// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/base/rowtype.h"

#include "kernel/data/datafile.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xbase/xbase.h"
#include "kernel/lists/packing.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables.h"
#include "kernel/values/records.h"
#include "os/files.h"
#include "os/text/ascii.h"
#include "tarn_data/base/files.h"

#include <algorithm>

namespace tarn::datatool {

RowType::RowType() : capacity(UNBOUNDED) {}

bool makeRow(std::string_view columns, RecordValue& row) {
    std::string text(columns);
    TypeInfoChangeIndent(1, text, MaxTypeInfo);
    text = "T : record\n" + text + "end record\n";
    std::size_t position = 0;
    row = RecordValue();
    const bool made = TypeInfoToValue(text, position, row.get()) == KindRecord;
    return made && ErrorCell() == 0;
}

namespace {

constexpr const char* whatIsWanted =
    "It must hold the type information text of a record, or of a table that holds one; what 'tarn-data info' "
    "prints will do.";

std::int32_t linesOf(std::string_view text) {
    return static_cast<std::int32_t>(std::count(text.begin(), text.end(), '\n'));
}

// What `info` prints ends with the declaration.
std::string declarationIn(std::string text) {
    constexpr std::string_view heading = "declaration:\n";
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    const std::size_t at = text.starts_with(heading) ? 0 : text.find("\n" + std::string(heading));
    if (at != std::string::npos) text.erase(0, text.find(heading, at) + heading.size());
    text.erase(0, std::min(text.find_first_not_of('\n'), text.size()));
    while (text.ends_with("\n\n")) text.pop_back();
    if (!text.empty() && text.back() != '\n') text += '\n';
    // The outermost block needs no name.
    for (const char* word : {"record\n", "list\n", "table\n"}) {
        if (text.starts_with(word)) text.insert(0, "T : ");
    }
    return text;
}

// A line that declares nothing would be passed over, and the rows would be others than was meant.
Problem checkLines(const std::string& file, std::string_view text) {
    for (std::int32_t n = 1; n <= linesOf(text); ++n) {
        const TypeInfoElement element = TypeInfoParseLine(text, n);
        const bool table = n == 1 && ascii::equal(element.typeName, "table");
        if (element.isEnd() || table || IsValueKind(TypeInfoKind(element.typeName))) continue;
        return {fileWord(file) + "declares nothing in line " + std::to_string(n) + ": '" +
                    std::string(ascii::withoutLineEnd(TypeInfoLine(text, n))) + "'.",
                "A line is: name : type; docs/formats/typeinfo.md tells the types."};
    }
    return {};
}

// Unbounded strings and lists, dynamic sets and arrays: fields whose rows would differ in length.
Problem checkStorable(const std::string& file, const RowType& type) {
    const RecordDescriptor* const row = type.row.get();
    if (PackedLength(row, KindRecord) >= 1 && PackedLength(row, KindRecord) <= MostPackedBytes) return {};
    for (std::int32_t n = 1; n <= FieldCountOf(row->kinds); ++n) {
        if (PackedLength(RecordFieldAddress(row, n), FieldKindAt(row->kinds, n)) > 0) continue;
        return {fileWord(file) + "declares rows that cannot stand in a file: the length of field " +
                    std::to_string(n) + " is not fixed.",
                "Give strings a length (string[40]), sets and arrays bounds, and lists a capacity."};
    }
    return {fileWord(file) + "declares rows of more than " + std::to_string(MostPackedBytes) + " bytes.",
            "A row in a file has at most so many."};
}

}  // namespace

Problem readRowType(const std::string& file, RowType& type) {
    std::string text;
    Problem problem = problemOfName(file);
    if (problem.any()) return problem;
    const os::FileError error = os::readFile(os::native(file), text);
    if (error != os::FileError::None) return unreadable(file, error);
    if (text.size() >= std::size_t{MaxTypeInfo} || text.find('\0') != std::string::npos)
        return {fileWord(file) + "holds no declaration.", whatIsWanted};
    text = declarationIn(text);
    problem = checkLines(file, text);
    if (problem.any()) return problem;
    const TypeInfoElement first = TypeInfoParseLine(text, 1);
    const bool table = ascii::equal(first.typeName, "table") || ascii::equal(first.typeName, "list");
    if (table && first.bounds.lb1 != TypeInfoNoValue) type.capacity = first.bounds.lb1;
    std::string columns = text;
    TypeInfoStripOuter(columns, MaxTypeInfo);
    const bool record = columns != text && linesOf(columns) == linesOf(text) - (table ? 4 : 2);
    if (!record || !makeRow(columns, type.row) || FieldCountOf(type.row.get()->kinds) == 0) {
        ClearError();
        return {fileWord(file) + "declares no record.", whatIsWanted};
    }
    if (table && first.bounds.lb1 != TypeInfoNoValue && type.capacity < 1)
        return {fileWord(file) + "declares a table for no rows.", "The capacity must be 1 or more."};
    type.columns = columns;
    return checkStorable(file, type);
}

namespace {

// The type of the first field that has no declaration; 0 for none.
char firstOtherType(const std::string& file) {
    XbaseHeader header;
    const bool read = XbaseReadHeader(os::native(file), header).empty();
    ClearError();
    for (std::int32_t n = 0; read && n < header.fieldCount; ++n) {
        if (std::string_view("CDLN").find(header.type[n]) == std::string_view::npos) return header.type[n];
    }
    return 0;
}

}  // namespace

Problem xbaseRowType(const std::string& file, RowType& type) {
    std::string message;
    std::string text = XbaseTypeInfo(os::native(file), message);
    ClearError();
    TypeInfoStripOuter(text, MaxTypeInfo);
    if (message.empty() && makeRow(text, type.row)) {
        type.columns = text;
        return {};
    }
    ClearError();
    if (message.empty()) message = "Xbase file has no fields";
    const char other = firstOtherType(file);
    return {fileWord(file) + "cannot be read: " + message + ".",
            other == 'M'
                ? "Memos stand in a file of their own, which is not read; save the table without them first."
            : other != 0 ? "Known are the types C, D, L and N; write the others as one of these first."
                         : "'tarn-data check' looks at the rest of it; a header is not mended."};
}

std::int32_t rowBytes(const RowType& type) {
    return static_cast<std::int32_t>(PackedLength(type.row.get(), KindRecord));
}

bool makeFileTable(const RowType& type, const std::vector<std::int32_t>& keyMaps, TableValue& table) {
    KeyMaps maps{};
    std::copy_n(keyMaps.begin(), std::min(keyMaps.size(), maps.size()), maps.begin());
    table = TableValue();
    TableInit(table.get(), type.capacity, type.row.get(), maps, type.columns, true);
    return table.get()->tag != 0 && ErrorCell() == 0;
}

}  // namespace tarn::datatool
