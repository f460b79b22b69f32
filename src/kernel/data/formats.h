// SPDX-License-Identifier: Apache-2.0
//
// How data files of each format are told, described, loaded and saved: a row a format. format.h has what is
// known of a format without doing anything, and tells how to add one. datafile.h is the door for all others;
// only it uses this.
//
// Cost: a format is found by looking through the rows.
#pragma once

#include "kernel/data/datafile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

struct LoadRequest {
    const std::string& filename;
    const DataOptions& options;
    void* value;
    Kind kind;
    std::string& message;  // empty; gets that of an XML or Xbase file
};
struct SaveRequest {
    const std::string& filename;
    const DataOptions& options;
    std::int32_t flags;  // those of xml.h
    const void* value;
    Kind kind;
    std::string_view names;
};

struct FormatOperations {
    DataFormat format;
    // Whether a file that begins with these bytes, up to four behind a byte order mark, is one. Null for a
    // format that the description of another tells.
    bool (*begins)(std::string_view start);
    // Fills in what the file is, or why it cannot be used.
    void (*describe)(const std::string& filename, const DataOptions* options, DataFileInfo& info);
    DataResult (*load)(const LoadRequest& request);
    DataResult (*save)(const SaveRequest& request);
};

// Null for a number that is no format.
const FormatOperations* OperationsOf(DataFormat format);
// The format of a file that begins so; null when it is none.
const FormatOperations* FormatThatBegins(std::string_view start);

DataResult LoadXmlRows(const std::string& filename, XmlRows::Form form, TableDescriptor* table,
                       std::string& message);

inline constexpr std::size_t FormatHeadBytes = 4;
inline constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";  // of UTF-8
// How messages name a file.
inline std::string FileWord(const std::string& filename) {
    return "File '" + filename + "' ";
}

}  // namespace tarn
