// SPDX-License-Identifier: Apache-2.0
//
// Data files of any format: what is in one that was never seen, and the one door by which whole values enter
// and leave files.
#pragma once

#include "kernel/data/format.h"
#include "kernel/data/scanner/scanner.h"
#include "kernel/data/tab/tabular.h"
#include "kernel/data/textfit.h"
#include "kernel/data/xml/xml_rows.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// What kind of thing a message tells.
enum class DataFileFault {
    None,
    Locked,   // the file is there, and may not be read
    Nothing,  // it is not there, or holds nothing
    Unknown,  // it begins as no known format does
    Content,  // what it holds
};

struct DataFileInfo {
    DataFormat format = FormatUnknown;
    std::string typeText;  // the columns, one per line; "" when there is a message
    std::string message;   // "" or why the file cannot be used
    DataFileFault fault = DataFileFault::None;
    std::string keys;     // of the default key: the repaired names of its columns with "," between, or ""
    DataOptions options;  // how a delimited file was read
    std::int32_t rowsSeen = 0;     // of a delimited file, as TabDiscover tells them
    std::int32_t columnsSeen = 0;  // as many as the file has; no more than 48 of them are read
    bool stopped = false;          // by progress.h: there are no columns then, and no message
    XmlRows xmlRows{};             // which elements of an XML file are the rows
};
// Looks at the first bytes, then at the content. `options`: for delimited text; null for the defaults and at
// most 100 rows.
DataFileInfo GetDataFileInfo(const std::string& filename, const DataOptions* options);
// The same for the language: all arguments are strings (otherwise nothing happens); `options` is an options
// record or null.
void GetDataFileInfo(const StringDescriptor* filename, const RecordDescriptor* options,
                     StringDescriptor* optionsOut, StringDescriptor* typeText, StringDescriptor* message);

// Whole values. `flags` are those of xml.h. A format that is not known, or that cannot hold the kind: 658.
// The file that holds the rows of the value itself can only be saved in its own format: 652, and it stays.
// Of the options an Xbase file takes `maxdatarows` alone. `message` is that of an XML or Xbase file.
DataResult LoadValue(const std::string& filename, DataFormat format, const DataOptions& options, void* value,
                     Kind kind, std::string& message);
// Into a table of the columns that GetDataFileInfo found, which has no index.
DataResult LoadRows(const std::string& filename, DataFormat format, const DataOptions& options,
                    XmlRows::Form form, TableDescriptor* table, std::string& message);
// What of a text from a byte on a file of the format cannot hold, by these options.
TextMisfit FindMisfit(DataFormat format, const DataOptions& options, std::string_view text, std::size_t from);
DataResult SaveValue(const std::string& filename, DataFormat format, const DataOptions& options,
                     std::int32_t flags, const void* value, Kind kind, std::string_view names = {});

}  // namespace tarn
