// SPDX-License-Identifier: Apache-2.0
//
// Index files: the nodes of an index on disk. All integers are big-endian:
//
//   offset  size  field
//        0     4  size of this header, 1104
//        4     4  reserved, 0
//        8    41  the table file's name without its folder, NUL-terminated, at most 40 characters
//       49  1025  a "record" type information text of the key fields, NUL-terminated
//     1074     6  unused, 0
//     1080    24  six words: 0, 0, the root's record number, the first free record, 0, 0
//     1104     n  node records; number k stands at 1104 + (k - 1) * record size
//
//   a node     6 words (row, balance, 0, 0, left, right; a record number, or 0 for none), then the key fields
//   a key      boolean, enum 1; integer 4; fixed 8; real 8, as in memory; string 4 of its length and its
//              capacity of characters, the tail zero; array of characters its bytes
//   a free     balance -999; left is the free record before it, right the one behind it
//
// This header has the files as such: their names, and files without nodes. index_filetree.h has the nodes,
// index_filecheck.h tells what is wrong with a file.
#pragma once

#include "kernel/index/index_keys.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::int32_t IndexHeaderBytes = 1104, IndexNodeHeadBytes = 24, MaxIndexTableName = 40,
                              MaxIndexText = 1024, FreeNodeBalance = -999;

inline constexpr std::int32_t IndexTableNameAt = 8, IndexTextAt = 49;

// The texts of a header as they stand there, with what fills them up: they end at their first NUL.
struct IndexHeaderTexts {
    std::string_view tableName, keyText;
};
// Of the first bytes of a file; both empty when these are not all of a header, or of another kind of file.
IndexHeaderTexts TextsOfIndexHeader(std::string_view bytes);

// "folder/orders.tab" and 2: "folder/orders.i2". A name without an extension gets one. The number of a
// scratch file, whose extension begins with '~', stands behind that: "orders.~sv2", since orders.tab may have
// indexes.
std::string IndexFileName(std::string_view tableFile, std::int32_t index);
// A file beside an index: "~n" and "orders.i2" give "orders.~n2", and "orders.~sv2" gives "orders.~sv~n2". A
// name that would be longer than a disk takes is shortened, and told from others by a checksum.
std::string MarkedIndexName(std::string_view indexFile, std::string_view mark);
// The bytes of a node record with a key of this shape; 0 for one that cannot stand in a file: a string
// without a capacity, or more than MostPackedBytes (lists/packing.h).
std::int32_t IndexRecordSize(const KeyView& key);

// Makes an empty index file, which takes the place of one that may be there: whole, and not written through
// a link. It gets the permissions of the table file, and its owner where this user can give it away. False,
// with the error set (652, 654, 657), when that failed: what stood there is as it was. Names and texts that
// are too long are cut, a text behind a line.
bool CreateIndexFile(const std::string& path, std::string_view tableFile, std::string_view keyText);
// Whether a file is such as CreateIndexFile makes.
bool IsEmptyIndexFile(const std::string& path, std::string_view tableFile, std::string_view keyText);
// Whether an index can be emptied where it stands: it begins as one, may be written and has no second name.
bool CanEmptyIndexFile(const std::string& path);
// Empties one. Needs neither a folder that may be written nor room on the disk. Sets no error: what fails may
// be half done, and a new file can take its place.
bool EmptyIndexFile(const std::string& path, std::string_view tableFile, std::string_view keyText);
// Moves an index to the name that belongs to another table file, and writes that file's name into it.
bool RenameIndexFile(const std::string& from, const std::string& to, std::string_view tableFile);
// The name at offset 8; empty when the file is no index file.
std::string IndexTableName(const std::string& path);

}  // namespace tarn
