// SPDX-License-Identifier: Apache-2.0
//
// Xbase files (dBASE III tables): fields of characters of fixed width. All integers little-endian:
//
//   offset  size  header
//        0     1  signature: 3 when written; 3, 4, 5, 48, 131 or 139 when read
//        1     3  date of the last change: year less 1900 (two digits), month, day
//        4     4  number of records, unsigned
//        8     2  size of this header: 32 * (fields + 1) + 1, at least 33
//       10     2  size of a record: the fields' lengths and 1
//       12    20  reserved, 0
//       32  32*n  a descriptor for each field, ended by byte 13 (a byte 0 may stand behind it)
//
//   offset  size  field descriptor
//        0    11  name, padded with 0
//       11     1  type: C characters, D date, L logical, N number; read: 0-9 and A-Z
//       12     4  reserved, 0
//       16     1  length
//       17     1  decimals
//       18    14  reserved, 0
//
// A record is the delete flag (blank for a live row, '*' for a deleted one) and the fields without
// separators. The flag is data: it is the first field of rows that can be the backing of a table, and of
// those that are declared with `delete_flag : Tchar` first. A byte 26 may end the file. docs/formats/xbase.md
// has the rules and an example.
//
// Cost: linear in the bytes; a row allocates only what unbounded strings need.
#pragma once

#include "kernel/data/tab/tabular.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::int32_t MaxXbaseFields = 48, MaxXbaseFieldName = 11, MaxXbaseFieldLength = 255;
inline constexpr char XbaseFileEnd = 26;  // may stand behind the last record

struct XbaseHeader {
    std::int32_t headerSize = 0, recordSize = 0, fieldCount = 0;
    std::uint32_t records = 0;
    char name[MaxXbaseFields][MaxXbaseFieldName + 1] = {};  // NUL-terminated
    char type[MaxXbaseFields] = {};
    std::uint8_t length[MaxXbaseFields] = {}, decimals[MaxXbaseFields] = {};
};

// "" or what is wrong with the header, which is then all zero. `bytes` are those that the file begins with,
// as many as the header has, or fewer when the file ends.
std::string XbaseDecodeHeader(std::string_view bytes, XbaseHeader& header);
// The same for a file. A file that cannot be opened also sets the run-time error.
std::string XbaseReadHeader(const std::string& filename, XbaseHeader& header);
bool XbaseFileName(std::string_view name);  // extension .dbf or .xbf, in any case
// The declaration of a file, a record; "" with a message when that is not possible, and "" for a file without
// fields. Names that a declaration cannot hold, or holds already, are changed. A failure to open also sets
// the run-time error.
std::string XbaseTypeInfo(const std::string& filename, std::string& message);

// The declaration's descriptors for a value: 0, or 658. `typeText` gives the names, a line for each field; it
// must not be empty. Nested records are flattened; a list or a table stands for its row. The deletion mark
// has no descriptor; a row of the mark alone has none at all, which is 658.
std::int32_t XbaseBuildDescriptors(const void* value, Kind kind, std::string_view typeText,
                                   XbaseHeader& header);
// The header of a file of these fields as bytes, dated today, with `records` in it; "" and 658 in `errorCode`
// for a value that has none.
std::string XbaseHeaderBytes(const void* value, Kind kind, std::string_view typeText, std::uint32_t records,
                             std::int32_t& errorCode);
// The date of today as it stands in a header before the count: year of the century, month, day.
std::string XbaseDateToday();
void XbaseSetRecords(std::string& headerBytes, std::uint32_t records);
// A row that was not written yet: blanks behind a '*' for an Xbase name, bytes 0 for another.
void XbaseEmptyRow(std::string_view filename, char* buffer, std::size_t size);
// 0 when the record has the fields of the file, the number of the first that does not fit, or 1 for anything
// wrong with the file. The second form has the header already.
std::int32_t XbaseCheckValue(const std::string& filename, Kind kind, const void* value);
std::int32_t XbaseCheckValue(const XbaseHeader& header, Kind kind, const void* value);
// A row that can be the backing of rows in a file: a record of an enum and arrays of characters, lower bound
// 1, of at most 255 each; or of the enum alone.
bool TypeInfoIsXbaseRecord(const RecordDescriptor* row);
// Whether the first field of a row is the deletion mark and none of the file: an enum at the head of a record
// whose declaration begins with "delete_flag : Tchar", or of one that can be the backing of rows (an enum
// alone is no mark where a declaration calls it something else). The number of fields tells nothing: a row
// that lacks a field would be taken for one that has the mark.
bool XbaseHoldsMark(const void* row, Kind kind, std::string_view typeText = {});

// What was wrong with the first value that could not be carried over; errorCode 0: nothing, 658, or 802,
// which is in the error cell too. The field is that of the header, from 1.
struct XbaseFault {
    std::int32_t errorField = 0, errorCode = 0;
};
// One value at `position` (from 0) of a row, which goes on behind what was used, as `fieldNumber` (from 1) of
// the header does; at position 0 and field 1 the delete flag is passed over, or written as a blank. Records
// go field by field. The rest is read after a failure. What fails is zero, empty or a text that is cut; in a
// row it is blank. The row is header.recordSize bytes; with memory checking on the run-time error is 828 when
// its last field ends elsewhere.
void XbaseFromRow(std::string_view rowBytes, std::size_t& position, const XbaseHeader& header,
                  std::int32_t& fieldNumber, void* value, Kind kind, XbaseFault& fault);
void XbaseToRow(const void* value, Kind kind, const XbaseHeader& header, std::int32_t& fieldNumber,
                std::string& rowBytes, std::size_t& position, XbaseFault& fault);
// A whole row, with the delete flag: in the first field of a record that holds it (`marked`; without that, as
// XbaseHoldsMark tells without a declaration), otherwise not kept, and written as a blank, as a flag of 0 is.
// Arrays of characters as long as their fields, and other flags, come back as they were, whatever their
// bytes. 658 with the first field that only one of both has for a record of another number of fields; another
// value is the first field alone.
XbaseFault XbaseReadRow(std::string_view rowBytes, const XbaseHeader& header, void* value, Kind kind,
                        bool marked);
XbaseFault XbaseWriteRow(const void* value, Kind kind, const XbaseHeader& header, std::string& rowBytes,
                         bool marked);
XbaseFault XbaseReadRow(std::string_view rowBytes, const XbaseHeader& header, void* value, Kind kind);
XbaseFault XbaseWriteRow(const void* value, Kind kind, const XbaseHeader& header, std::string& rowBytes);

// Whole files, as TabLoad and TabSave. A string takes or gives the first field of each row in a line, a set
// its number (a blank is none), a list, a record or a table the fields. Rows are read to the end of the file,
// deleted ones too, whatever the header counts; -1 for all of them.
//
// Codes: 661 with a message for what is no Xbase file; 655 for one that ends in its header; 651 to 654, 657;
// 658 without a row for a value that has no rows of fields, with one for the first row that does not fit. A
// load goes on behind such a row, what did not fit is empty or cut; a save leaves the old file. A file's end
// is marked by a byte 26.
//
// `typeText` tells what the rows of a list or a record are declared as, for the deletion mark; a table has
// its own declaration.
DataResult XbaseLoad(const std::string& filename, void* value, Kind kind, std::string& message,
                     std::int32_t mostRows = -1, std::string_view typeText = {});
// A table gives its own names; names and types that `typeText` lacks are FIELD1 and so on, and Tchars.
DataResult XbaseSave(const std::string& filename, const void* value, Kind kind, std::string_view typeText);

}  // namespace tarn
