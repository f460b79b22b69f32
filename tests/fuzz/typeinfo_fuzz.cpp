// SPDX-License-Identifier: Apache-2.0
// Type information text: any two texts merge, build values that are whole, or nothing, and leak nothing. What a value
// was built from fits it. Any line of them, as a value of a data file, gives one line of its own. The two are parted by
// a line that holds a "%" alone.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/value_line.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace tarn;

void require(bool holds) {
    if (!holds) std::abort();
}

// The same lines with a blank at the end of each: one and the same declaration, but another text, so that a
// merge must walk through both.
std::string spaced(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        const std::string_view line = text.substr(0, end);
        const std::size_t shown = line.find_last_not_of("\r\n") + 1;
        result.append(line.substr(0, shown)).append(" ").append(line.substr(shown));
        text.remove_prefix(end);
    }
    return result;
}

void repairNames(const std::string& text) {
    const std::string once = TypeInfoFixNames(text, 40);
    require(TypeInfoFixNames(once, 60) == once || text.find_first_of("\"[") != std::string::npos);
    TypeInfoFixNames(text, "_");
    TypeInfoFixNames(text, 3, true);
}

void useLines(std::string text) {
    std::size_t position = 0;
    for (std::int32_t line = 1; position < text.size() && line <= 40; ++line) {
        const TypeInfoElement element = TypeInfoParseLine(text, line);
        require(TypeInfoName(text, line) == element.name);
        std::string copy = text;
        TypeInfoFormatLine(copy, MaxTypeInfo, line, element.name, element.typeName, element.bounds);
        TypeInfoSkipLine(text, position);
    }
    const std::string before = text;
    TypeInfoChangeIndent(1, text, INT32_MAX);
    TypeInfoChangeIndent(-1, text, INT32_MAX);
    require(before.substr(0, text.size()) == text);
    TypeInfoDeleteLine(text, 1);
    TypeInfoFieldList(text);
    TypeInfoGuessValue(text, "NULL");
    TypeInfoIdentifier(text, 40, "_");
    require(ErrorCell() == 0 || ErrorCell() >= 600);
}

// What a data file may hold is one line, which says what the guess says.
void declareLines(std::string_view text) {
    for (int lines = 0; !text.empty() && lines < 40; ++lines) {
        const std::string_view value = text.substr(0, text.find('\n'));
        for (const std::string& line : {TypeInfoValueLine(value, "x", "NULL", "x : Any"),
                                        DataValueLine(value, "x", "NULL", "x : Any")}) {
            require(line.starts_with("x : ") && line.find('\n') == line.size() - 1);
            require(TypeInfoParseLine(line, 1).name == "x");
        }
        text.remove_prefix(std::min(value.size() + 1, text.size()));
    }
}

void compareTexts(const std::string& a, const std::string& b) {
    const InsertedLines inserted = TypeInfoFindInserted(a, b);
    require(inserted.inA >= 0 && inserted.inB >= 0);
    std::string stripped = a;
    TypeInfoStripOuter(stripped, MaxTypeInfo);
    require(stripped.size() <= a.size());
    const TypeInfoElement element = TypeInfoParseLine(a, 1);
    const std::int32_t found = TypeInfoFindElement(a, element.name, element.indent);
    require(found <= static_cast<std::int32_t>(std::count(a.begin(), a.end(), '\n')) + 1);
    TypeInfoCountElements(a, 0);
    TypeInfoIsPath(a, b.substr(0, 60));
}

// A record is what its text says, and has the keys that the text has by itself.
void useRecord(const std::string& text, const RecordDescriptor* record) {
    const std::string said = TypeInfoFromValue(record, KindRecord, TypeInfoFieldList(text).names);
    require(said.empty() || TypeInfoMatchesValue(said, record) >= 0);
    TypeInfoDefaultKeys(record, TypeInfoFieldList(text).names, false);
}

void buildValues(const std::string& text) {
    ClearError();
    const String source(text);
    RecordValue record;
    ListValue list;
    TableValue table;
    TypeInfoToRecord(source.get(), record.get());
    require((ErrorCell() == 0) == (KindOf(record.get()) == KindRecord));
    ClearError();
    TypeInfoToList(source.get(), list.get());
    require((ErrorCell() == 0) == (list.get()->tag != 0));
    ClearError();
    TypeInfoToTable(source.get(), table.get());
    require((ErrorCell() == 0) == (KindOf(table.get()) == KindTable));
    ClearError();
    if (record.get()->tag != 0) require(AdtCheck(record.get(), KindRecord).empty());
    if (list.get()->tag != 0) require(AdtCheck(list.get(), KindList).empty());
    if (table.get()->tag != 0) require(AdtCheck(table.get(), KindTable).empty());
    TypeInfoMatchesValue(text, record.get());
    TypeInfoFromValue(record.get(), KindRecord, text);
    if (record.get()->tag != 0) useRecord(text, record.get());
    for (std::int32_t index = 1; index <= MaxIndexes; ++index) TypeInfoIndexText(table.get(), index);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::size_t mark = text.find("\n%\n");
    const std::string a = text.substr(0, mark == std::string::npos ? mark : mark + 1);
    const std::string b = mark == std::string::npos ? a : text.substr(mark + 3);
    std::string report, again;
    const std::string merged = TypeInfoMerge(a, b, 2 * MaxTypeInfo, report);
    require(merged.size() < 2 * MaxTypeInfo);
    require(TypeInfoMerge(merged, spaced(merged), INT32_MAX, again) == merged && again.empty());
    require(merged.empty() || merged.back() == '\n');
    useLines(a);
    repairNames(a);
    declareLines(a);
    compareTexts(a, b);
    for (const std::string& each : {a, b, merged}) buildValues(each);
    require(LiveBlocks() == 0);
    return 0;
}
