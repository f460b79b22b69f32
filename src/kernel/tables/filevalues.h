// SPDX-License-Identifier: Apache-2.0
//
// Lists and tables whose rows stand in a file. The value holds the name of the file; every operation opens
// it, acts and closes it again (but for a table that a program holds, tables.h), and no lock is held: a file is
// for one process at a time. The operations on elements and rows are those of lists.h and tables.h.
//
//   number  format  chosen by                            header            count of rows
//        3  plain   an UNBOUNDED capacity                none              the size by the record length
//        4  fixed   a capacity                           4, big-endian     the header; a new file has records
//                                                                          up to the capacity, one that was
//                                                                          cleared or copied only its rows
//        5  Xbase   extension .dbf or .xbf, in any case  that of the file  the word at offset 4
//
// Records behind the count are nobody's, and empty as far as they were written.
//
// A name stays as it was given, so that programs find again what they said: a relative one is looked for in
// the folder that is current at each operation. Both '/' and '\\' separate. A file is made where a link
// leads, and what takes its place later does so there.
//
// Records of plain and fixed files are packed values (lists/packing.h), those of Xbase files fields of
// characters (data/xbase.h).
//
// A row is committed when its operation has returned, as far as the death of the process goes; FileClose
// brings the file to the disk, against the death of the machine. After a death in the middle of an operation
// the rows are whole, but for a torn last one or a note of one that was being written over (655 on opening),
// or a last one that stands twice, while an index may be behind: RebuildTableFile (tables_file_mend.h) mends all
// of that.
#pragma once

#include "kernel/lists/rowformat.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// Opens the file of a list or table that is held in a file, or makes it, with empty indexes. In this order:
// 660 for a value that is held in memory or is no list or table; 764 for one that is open; 661 for an empty
// name; 657 for one of 255 characters or more, with a NUL or without a file part; 762 for a type text that is
// not that of the rows (an empty one is not looked at); 658 for rows that an Xbase file cannot hold; 660 for
// rows that pack to nothing or to more than MostPackedBytes, or an index whose key cannot be held in a file;
// 657 for a folder or a device, or a name that belongs to one of the table's own indexes; 655 for a size that
// is not that of a header and whole rows, or does not hold the count; 658 for a file that is no Xbase file or
// has other fields; 619 for more rows than the capacity; 657 for an index that is a device or a pipe; 656
// for an index that is missing or too short, unless there are no rows, or belongs to another table file; 651
// to 654. On any error the value is not open, and a file that was being made is gone.
//
// A file that may only be read opens all the same. A byte 26 at the end of an Xbase file is cut off in the
// end where that is allowed; rows are written over one that comes later. A new Xbase file has the names and
// types of a table's type text; a list's fields of characters are FIELD1 and so on.
void FileOpen(void* value, Kind kind, std::string_view fileName);
// Brings the files to the disk and blanks the name, also when the former fails (651 to 654). Nothing for a
// value that is not open. (AdtFree does the same, without an error when the file is gone; it deletes a
// scratch file, whose extension begins with '~', and its indexes.)
void FileClose(void* value, Kind kind);
// Whether a name is there. False for values in memory.
bool FileExists(const void* value, Kind kind);
std::string FileNameOf(const void* value, Kind kind);  // "" when not open

// 0, and 660, for a value that is not held in a file or whose rows cannot be. The header of an Xbase file is
// read: 653, 651, 655, 658.
std::int32_t FileRecordLength(const void* value, Kind kind);
std::int32_t FileHeaderSize(const void* value, Kind kind);
// By the name and the capacity. 0, and 661, for a value that is not open.
std::int32_t FileFormat(const void* value, Kind kind);
// Writes the count into the header of a file of format 4 or 5; nothing for others. 655 for a count below 0;
// 652 to 654.
void FileKeepCount(std::string_view fileName, std::int32_t format, std::int32_t count);

}  // namespace tarn
