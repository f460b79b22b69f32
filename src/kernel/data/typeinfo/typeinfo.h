// SPDX-License-Identifier: Apache-2.0
//
// Type information text: the one neutral description of data, a line for each element:
//
//   indent (tabs) name : type [lb1:ub1,lb2:ub2,lb3:ub3]
//
// Names are runs of letters, digits, '_', '-', '.' and ':', or stand in double quotes. "record", "union",
// "list" and "table" open a block whose lines stand one tab deeper, closed by "end record" and so on. An
// absent bound is TypeInfoNoValue. docs/formats/typeinfo.md has the whole form.
//
// Operations on lines never fail: a missing line or text is empty and leaves the results in their initial
// state. Lines count from 1 and end with a line feed.
//
// Cost: linear in the text; a line is found by counting.
#pragma once

#include "kernel/tables/tables.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "kernel/values/values.h"
#include "os/text/ascii.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

inline constexpr std::int32_t TypeInfoNoValue = -999999;
inline constexpr std::int32_t MaxTypeInfo = 32768, MaxTypeInfoName = 1024, MaxTypeName = 40;
inline constexpr std::int32_t KindAnyAdt = 13;  // the type "adt": no value

struct TypeBounds {
    std::int32_t lb1 = TypeInfoNoValue, ub1 = TypeInfoNoValue, lb2 = TypeInfoNoValue, ub2 = TypeInfoNoValue,
                 lb3 = TypeInfoNoValue, ub3 = TypeInfoNoValue;
    bool operator==(const TypeBounds&) const = default;
};

struct TypeInfoElement {
    std::int32_t indent = 0;
    std::string name, typeName;
    TypeBounds bounds;
    [[nodiscard]] bool isEnd() const;  // closes a block: the name is "end", in any case
};

// ---- lines ----

// What a name may hold without quotes; one of these that is not "end" and neither begins nor ends with ':' is
// read again as it stands.
constexpr bool IsTypeInfoNameChar(char c) {
    return ascii::isSymbol(c) || c == '-' || c == '.' || c == ':';
}

TypeInfoElement TypeInfoParseLine(std::string_view text, std::int32_t line);
std::string TypeInfoLine(std::string_view text, std::int32_t line);  // with its line feed
std::string TypeInfoName(std::string_view text, std::int32_t line);
// The type name with its bracket text, if a '[' follows at once.
std::string TypeInfoTypeText(std::string_view text, std::int32_t line);
std::int32_t TypeInfoIndent(std::string_view text, std::int32_t line);
void TypeInfoDeleteLine(std::string& text, std::int32_t line);  // one without a line feed stays
// Adds `delta` tabs to each line, or removes up to that many. The text is cut to `size` - 1 characters; a
// last line without a line feed is lost.
void TypeInfoChangeIndent(std::int32_t delta, std::string& text, std::int32_t size);
std::int32_t TypeInfoCountElements(std::string_view text, std::int32_t indent);  // without "end" lines
// The last line at that indent with the name, in any case; -1 for none.
std::int32_t TypeInfoFindElement(std::string_view text, std::string_view name, std::int32_t indent);
void TypeInfoSkipLine(std::string_view text, std::size_t& position);  // `position` from 0
// Rewrites a line, keeping its indent and its end. The text is cut to `size` - 1 characters.
void TypeInfoFormatLine(std::string& text, std::int32_t size, std::int32_t line, std::string_view name,
                        std::string_view typeName, const TypeBounds& bounds);
void TypeInfoAppendLine(std::string& buffer, std::int32_t size, std::string_view name,
                        std::string_view typeName, const TypeBounds& bounds);
void TypeInfoAppendLineToString(StringDescriptor* text, std::string_view name, std::string_view typeName,
                                const TypeBounds& bounds);
// The kind that a type name stands for, in any case: KindNone for what is none, KindAnyAdt for "adt".
std::int32_t TypeInfoKind(std::string_view typeName);
// See STRTOIDENTIFIER in the language for what repair means.
// The first form: at most `maxLength` characters.
// The second: '_' and the length are kept.
std::string TypeInfoIdentifier(std::string_view text, std::int32_t maxLength, std::string_view replacement);
std::string TypeInfoIdentifier(std::string_view text, std::string_view firstSet,
                               std::string_view replacement);
// A text whose names are identifiers that are no reserved words; see TYPEINFOFIXIDENTIFIERS in the language.
std::string TypeInfoFixNames(std::string_view text, std::int32_t maxLength, bool dropDeleteFlag = false);
std::string TypeInfoFixNames(std::string_view text, std::string_view replacement);
// Whether the line closes a block and is no column that only bears the name of closing lines: "end" and
// "end record" do, "end : record" declares a column.
bool TypeInfoIsClosing(std::string_view text, std::int32_t line);

// ---- guessing and merging ----

enum class ValueClass : char {
    Blank = ' ',
    Boolean = 'B',
    Integer = 'I',
    Fixed = 'F',
    Real = 'R',
    Date = 'D',
    Set = ':',
    String = 'S',
};
struct ValueGuess {
    ValueClass kind = ValueClass::Blank;
    std::int32_t lower = TypeInfoNoValue, upper = TypeInfoNoValue;  // set: its members; string: length, none
};
ValueGuess TypeInfoGuessValue(std::string_view value, std::string_view nullWord);
// The line of a value of that class; `defaultLine` for a blank one.
std::string TypeInfoValueLine(std::string_view value, std::string_view name, std::string_view nullWord,
                              std::string_view defaultLine);

struct InsertedLines {
    std::int32_t inA = 0, inB = 0;  // lines to skip in each to stand at equal elements again
    bool found = false;
};
InsertedLines TypeInfoFindInserted(std::string_view a, std::string_view b);
// One declaration that fits what both fit. `report` is "" or says why the walk stopped; what was merged until
// then is the result.
// Of lines that do not fit into `outSize` - 1 characters the result has none, and none of those behind them.
std::string TypeInfoMerge(std::string_view a, std::string_view b, std::int32_t outSize, std::string& report);

// ---- values ----

// Reads the element at `position` (from 0) and, unless `value` is null, builds an empty value there (raw
// bytes of at least the kind's size). Gives the kind; KindNone and KindAnyAdt build nothing. Blocks more than
// 100 levels deep have kind 0. On failure nothing stays allocated, the error is set and the kind is KindNone.
std::int32_t TypeInfoToValue(std::string_view text, std::size_t& position, void* value);
// 756 for a text that is no string; 757, 761, 762 for a target of another kind (zero will do): nothing has
// changed then. The old value is freed; the same errors, or that of a part (601, 760, 804, 821), for a text
// that does not say such a value, and the target is zero. 32767 characters of the text are read. An outer
// pair of "list" and "table" lines, in any order, is taken off first: what it held is the element of the
// list, unless that is a list itself, or the row of the table.
void TypeInfoToRecord(const StringDescriptor* text, RecordDescriptor* value);
void TypeInfoToList(const StringDescriptor* text, ListDescriptor* value);
void TypeInfoToTable(const StringDescriptor* text, TableDescriptor* value);
// A list or a table that is held in a file; the type of the first line must say the same.
void TypeInfoToFileVar(const StringDescriptor* text, void* value, Kind kind);
// `names`: one per line, for TypeInfoDefaultName. "" for kinds above 8 that are no array.
std::string TypeInfoFromValue(const void* value, Kind kind, std::string_view names = {});
// At most 40 characters; a name in double quotes has both of them.
std::string TypeInfoDefaultName(std::string_view names, std::int32_t number);
// 0, or the number of the first element that differs.
std::int32_t TypeInfoMatchesValue(std::string_view text, const RecordDescriptor* value);
bool TypeInfoIsPath(std::string_view text, std::string_view path);
std::string TypeInfoIndexText(const TableDescriptor* table, std::int32_t index);

struct DefaultKeys {
    std::int32_t map = 0;  // a key map of tables.h
    std::string names;     // separated by ","
};
DefaultKeys TypeInfoDefaultKeys(const RecordDescriptor* record, std::string_view names, bool skipFirst);
// A first field "delete_flag : Tchar" is not in `names`, and no key field; the key map does count it.
struct FieldList {
    std::string names;  // one per line
    DefaultKeys keys;
};
FieldList TypeInfoFieldList(std::string_view tableTypeText);

// Whether the element is a block of others: a record, union, list or table.
bool TypeInfoIsNested(const TypeInfoElement& element);
// Removes an outer "list" or "table" pair and then an outer "record" pair of lines, moving the rest to the
// left. Cut to `size` - 1 characters.
void TypeInfoStripOuter(std::string& text, std::int32_t size);

}  // namespace tarn
