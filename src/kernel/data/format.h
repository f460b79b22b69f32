// SPDX-License-Identifier: Apache-2.0
//
// What all formats of data files have in common: their numbers, what is known of each, how a file is laid
// out, how a load or a save ended.
//
// To add a format: give it a number here, write how it is described, loaded and saved, and give it a row in
// formats.cpp. Whoever handles data files goes by these rows; a format is named elsewhere only where it has a
// way of its own.
#pragma once

#include "kernel/values/values.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tarn {

// The numbers stand in programs.
enum DataFormat : std::int32_t {
    FormatUnknown = 0,
    FormatText = 1,    // lines
    FormatComma = 2,   // delimited by commas
    FormatBinary = 3,  // packed values
    FormatXbase = 5,
    FormatXml = 6,
    FormatTab = 7,  // delimited by tabs, or any other separator
};
// By the extension, in any case; FormatUnknown for one that is not known.
DataFormat DataFormatOf(std::string_view filename);

// How a file is laid out. As a record: four integers in this order.
struct DataOptions {
    std::int32_t numheaderrows = 0;   // 0 none, 1 column names, 2 column names and a line of dashes
    std::int32_t numfooterrows = 0;   // rows behind the data
    std::int32_t separatorchar = 44;  // character code; -1: none, every line is one cell as it stands
    std::int32_t maxdatarows = -1;    // rows to read; -1 for all
    // Not of the record: a byte order mark of UTF-8 ahead of delimited text is none of it. For those who show
    // files to the user.
    bool skipMark = false;
};

// How rows stand in a file.
enum class RowForm {
    Lines,    // a line is a row of one text
    Cells,    // a line is a row of cells; the file may have header and footer rows
    Marked,   // texts between marks, which name them
    Records,  // bytes of one length, on which tables work where they stand
};

// What is known of a format.
struct FormatFacts {
    DataFormat format;
    std::string_view word;           // as messages call such a file
    std::string_view extensions[2];  // in lower case, with the point; empty ones are none
    RowForm rows;
    bool declared;  // the file does not tell its columns: a declaration must
    DataOptions defaults;
};
// Those of FormatUnknown for a number that is no format.
const FormatFacts& FactsOf(std::int32_t format);
// The numbers of all formats, without FormatUnknown.
std::span<const DataFormat> DataFormats();
inline bool IsDelimited(DataFormat format) {
    return FactsOf(format).rows == RowForm::Cells;
}
inline bool RowsAreLines(DataFormat format) {
    return IsDelimited(format) || FactsOf(format).rows == RowForm::Lines;
}
// The first extension of each format without its point: "xml, dbf, csv, tab, txt LAST bin".
std::string DataFormatNames(std::string_view last);
// A pattern for each extension of the formats that tell their columns: "*.xml;*.dbf".
std::string DataFilePatterns();

// The defaults of a format.
DataOptions DefaultDataOptions(std::int32_t format);
// From an options record; the defaults for null and for an empty one, 764 and 757 for what is no such record.
DataOptions DataOptionsOf(const RecordDescriptor* options, std::int32_t format);
// The same, for callers that report by a result: gives the code instead of setting it; 0 when all is well.
[[nodiscard]] std::int32_t ReadDataOptions(const RecordDescriptor* record, std::int32_t format,
                                           DataOptions& options);

// How a load or a save ended. `code` 0: well; else the first failure: 981 to 986, 989 for a cell (the load
// goes on with the next row), 618, 619, 635 for a row that the value refused, 651 to 655 and 657 for the
// file, or for that of the value, 658 for a value that such a file cannot hold, 661 for one that is held in a
// file and not open, 757 for a separator that cannot be, 764 for what is no value, 802 and 804.
struct DataResult {
    std::int32_t code = 0;
    std::int32_t row = 0;   // of the first failure, from 1
    std::int32_t rows = 0;  // read or written; 0 where the value, or the file, is as it was
    bool stopped = false;   // by progress.h: the value is as it was
    std::int32_t line = 0;  // of the first failure, from 1, where `row` cannot tell it (XML)
    // Of a save that failed:
    std::string message{};     // more than its code says; else empty
    std::string rescueCopy{};  // where the new bytes stand if the file may be damaged; else empty
};

}  // namespace tarn
