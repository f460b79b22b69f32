// SPDX-License-Identifier: Apache-2.0
//
// What each format of data files is, and how such files are told, described, loaded and saved: a row a
// format. format.h tells how to add one. datafile.h is the door for all others; only it uses this.
//
// Cost: a format is found by looking through the rows.
#pragma once

#include "kernel/data/datafile.h"
#include "kernel/data/textfit.h"

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
    // Of a table of the columns that were found in the file: which of its elements are the rows.
    const XmlRows::Form* rows = nullptr;
};
struct SaveRequest {
    const std::string& filename;
    const DataOptions& options;
    std::int32_t flags;  // those of xml.h
    const void* value;
    Kind kind;
    std::string_view names;
};

struct FormatRow {
    FormatFacts facts;
    // Whether a file that begins with these bytes, up to four behind a byte order mark, is one. Null for a
    // format that the description of another tells.
    bool (*begins)(std::string_view start);
    // Fills in what the file is, or why it cannot be used.
    void (*describe)(const std::string& filename, const DataOptions* options, DataFileInfo& info);
    DataResult (*load)(const LoadRequest& request);
    DataResult (*save)(const SaveRequest& request);
    // What of a text such a file cannot hold, from a byte on. Null where nothing is said of single texts.
    TextMisfit (*misfit)(const DataOptions& options, std::string_view text, std::size_t from);
};

// Null for a number that is no format.
const FormatRow* RowOf(DataFormat format);
// The format of a file that begins so; null when it is none.
const FormatRow* FormatThatBegins(std::string_view start);

inline constexpr std::size_t FormatHeadBytes = 4;
inline constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";  // of UTF-8
// How messages name a file.
inline std::string FileWord(const std::string& filename) {
    return "File '" + filename + "' ";
}

}  // namespace tarn
