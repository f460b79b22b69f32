// SPDX-License-Identifier: Apache-2.0
//
// XML data files: one pass discovers the structure of a file as type information text and binds its data to a
// value. The reader does not validate and treats bytes as characters; it is meant for data, not documents.
// docs/formats/xml.md has the limits and what the writer writes.
//
// The operations here have one reader, so only one of them reads a file at a time; readers that one makes for
// oneself (xml_reader.h) are free of that.
//
// What goes wrong is told in an error record (the first failure, with line and position), never in the error
// cell, and the read goes on to the end of the file: codes 671 to 674, 981 to 989, 602, 618, 619, 635 and 637
// as the message says. 651 to 654 when the file cannot be read or written.
//
// Cost: linear in the file; a work buffer for each level of the tree.
#pragma once

#include "kernel/data/scanner/scanner.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::int32_t XmlTypeAttributes = 0x01000000;   // always on when writing
inline constexpr std::int32_t XmlFieldAttributes = 0x02000000;  // flat records as attributes of an empty tag

// `value` and `typeText` may each be null. With `value` (of `kind`, 1 to 12) the data is bound, after the
// value was cleared; with `typeText` the structure becomes its text, of less than `typeTextSize` characters.
// An empty name does nothing.
ErrorRecord XmlRead(const std::string& filename, std::int32_t options, void* value, Kind kind,
                    std::string* typeText, std::int32_t typeTextSize);

// The structure alone.
struct XmlStructure {
    std::string typeText;
    ErrorRecord error;
    bool stopped = false;  // by progress.h: nothing was found
};
XmlStructure XmlDiscover(const std::string& filename, std::int32_t typeTextSize);

struct XmlResult {
    std::int32_t count = 0;  // top-level items
    bool stopped = false;    // by progress.h: the value, or the file, is as it was
    ErrorRecord error;
    std::string rescueCopy;  // where the new bytes stand if a save damaged the file; else empty
};
// Replaces the file by the value as the element "data"; on failure the old file stays. `names`: of the fields
// of records, one per line, where the value itself does not have them (a table does). 764 in the error cell
// for an empty name or a kind outside 1 to 12, 660 for what is held in a file. 671 and 673 for texts that
// XmlRead would not take as they are.
XmlResult XmlSave(const std::string& filename, std::int32_t options, const void* value, Kind kind,
                  std::string_view names = {});
// XmlRead into a value. A table takes its rows also from a list of records inside the outermost element, or
// one row from a single record of its fields' kinds; rows that it refuses are counted, and reported as 637. A
// table stays as it was, with 673, when the file holds data that no form has a place for. When the reading
// was stopped (progress.h) the value is as it was. 764 for no value.
XmlResult XmlLoad(const std::string& filename, void* value, Kind kind);

std::string XmlEscape(std::string_view text);
// "Any" leaves become string[1024].
std::string TypeInfoFixAny(std::string_view typeText);

}  // namespace tarn
