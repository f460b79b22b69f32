// SPDX-License-Identifier: Apache-2.0
//
// Which cells of a row belong to which parts of a value: one for each field, those of records and unions
// inside a record in their place. Strings, numbers, sets and arrays of characters stand in one cell.
//
// Only the modules of delimited text include this.
#pragma once

#include "kernel/values/values.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct TabField {
    Kind kind = KindNone;
    std::int32_t offset = 0;       // from the first field of the record that it stands in
    std::vector<TabField> fields;  // of a record or union
};
// False when a value of this shape has no cells: one that has lists, tables or other arrays somewhere in it,
// or no fields. `row` is then of no use.
bool MakeTabField(const void* value, Kind kind, TabField& row);
std::int32_t CountTabCells(const TabField& field);

// What stands between rows and a whole value.
struct TabTarget {
    std::int32_t code = 0;  // why the value cannot be read or written as rows
    TabField row;           // of an element, of a row, or of the value itself
};
// 764 and 751 to 762 for what is no such value, 661 for one that is held in a file and not open, 757 for
// options whose separator is none, 658 for a kind or element without cells and, when no separator is given,
// for one that has more than one.
TabTarget MakeTabTarget(const void* value, Kind kind, std::int32_t separator);

// A string with one byte for each character, '?' for those that no byte can be.
std::string NarrowTabText(const StringDescriptor* s);

// Reads rows into values of one shape.
class TabRowReader {
public:
    TabRowReader(const TabField& row, std::int32_t separator) : row_(row), separator_(separator) {}
    // Every cell is assigned: what lies behind a failed one, or behind the end of the row, becomes empty. 0,
    // the code of the first failure, or 802 and 804. Leaves the error cell clear.
    std::int32_t read(std::string_view row, void* value);

private:
    class Row;
    const TabField& row_;
    std::int32_t separator_;
    std::string scratch_;
};

}  // namespace tarn
