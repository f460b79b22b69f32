// SPDX-License-Identifier: Apache-2.0
//
// The indexes of tables: AVL trees of unique keys, each with the number of its row.
//
// A link is a record descriptor; an empty one has the tag of a record and no data. A node in memory is a
// record of the field kinds integer, integer, integer, integer, record, record and then up to four key
// fields:
//
//   offset size  node
//        0    4  row
//        4    4  balance: height of the right subtree less that of the left, -1 to 1
//        8    8  two reserved integers, 0
//       16   36  left link
//       52   36  right link
//       88    n  the key fields: kinds 1 to 5, strings, arrays of characters
//
// A key record holds the key fields alone, in key order. So what a search gives is never taken for a tree.
// Fields are compared in key order, the first difference decides: booleans and enums as unsigned bytes,
// numbers by value (NaN above all numbers and equal to itself, so that the order is total), strings by their
// unsigned characters and then the shorter first, arrays of characters by their bytes.
//
// Errors: 763 for a root that is no link, and for a node that is damaged (with memory checking on every node
// that is touched is checked; the depth is bounded always); 636 for a key record that is missing or whose
// kinds are not those of the tree's keys. On any error, and when memory is short, the tree is as it was.
//
// Cost: logarithmic; one node of memory an entry; recursion at most 1.44 log2(n) deep.
#pragma once

#include "kernel/values/strings.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::int32_t MaxIndexes = 5;  // of one table

inline constexpr std::int32_t MaxKeyFields = 4, NodeHeadBytes = 88, MaxPrintedNodes = 32;

// A key field as it stands in a file.
struct IndexKeyField {
    Kind kind = KindNone;
    std::int32_t bytes = 0;  // of a string: its capacity, without the length
};

// How an index is held. Record size 0: in memory. Otherwise in the index file of that name (index_file.h);
// its root is then the file's, and the record that is given as root is not looked into.
struct IndexBlock {
    std::int32_t headerSize = 0, recordSize = 0;
    std::string fileName;
    IndexKeyField fields[MaxKeyFields];  // of the key; of kind 0 behind the last
};

struct IndexHit {
    std::int32_t row = 0;
    bool found = false;
};
struct IndexShape {
    std::int32_t height = 0;
    // Of the first node whose balance is not that of its subtrees: its data, or in a file its record number;
    // 0 for none.
    Offset bad = 0;
};

void IndexInit(RecordDescriptor* root);  // the empty tree; `root` need not hold anything valid

// How the index file of a table with keys like `key` is held.
IndexBlock IndexFileBlock(std::string_view fileName, const RecordDescriptor* key);
// Checks an index that is held in a file: 763 a null root; 636 a key record that is missing, or whose size is
// not that of the nodes; 653 no such file; 656 a file of the wrong size; 651 to 654. The file then stays open
// until IndexClose or the next operation on another index: one file is open at a time. Nothing for an index
// in memory. Every operation below opens its file itself when it must, and closes it again.
void IndexOpen(const RecordDescriptor* root, const IndexBlock& block, const RecordDescriptor* key);
void IndexClose(const IndexBlock& block);

std::int32_t IndexInsert(RecordDescriptor* root, const IndexBlock& block, const RecordDescriptor* key,
                         std::int32_t row);  // 0, or 635 for a key that is there (not set in the cell)
void IndexDelete(RecordDescriptor* root, const IndexBlock& block,
                 const RecordDescriptor* key);  // 604: absent
void IndexUpdateRow(RecordDescriptor* root, const IndexBlock& block, const RecordDescriptor* key,
                    std::int32_t row);  // 604: absent
// `op`, in any case, from at most 10 characters: EQ EQUALS, FIRST, LAST, GE (the lowest key at or above), LE
// (the highest at or below), GT NEXT, LT PREVIOUS; another is 636. FIRST and LAST take no key (null will do).
// `foundKey`, unless null, gets the fields of the key that was found: it must be a key record of the tree's
// kinds (636), and may be `key`. It is cleared, and nothing found, when memory is short; when there is no
// such key it stays as it was.
IndexHit IndexFind(std::string_view op, const RecordDescriptor* root, const IndexBlock& block,
                   const RecordDescriptor* key, RecordDescriptor* foundKey = nullptr);

std::int32_t IndexCount(const RecordDescriptor* root, const IndexBlock& block);
IndexShape IndexHeight(const RecordDescriptor* root, const IndexBlock& block);
// A picture for debugging, one node a line, "[" key " " balance "]": the lowest key first, deeper nodes
// further right, joined by "|" and "-". "Index is empty." for none.
void IndexPrint(const RecordDescriptor* root, const IndexBlock& block, StringDescriptor* text);

void IndexClear(RecordDescriptor* root, const IndexBlock& block);  // frees all nodes

}  // namespace tarn
