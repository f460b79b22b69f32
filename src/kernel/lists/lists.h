// SPDX-License-Identifier: Apache-2.0
//
// Lists: ordered values of one kind, at positions 1 to count (the layout is in values.h).
//
// In memory a fixed list has all its slots from the start, each of the shape of the prototype, and its first
// slot serves as the prototype. An unbounded list has exactly `count` slots (size is count times the
// element's size) and its prototype in a block of its own; appending moves them only when the class of the
// block changes, so n appends are near linear. The untyped list (kind 0) takes kind and shape from its first
// value.
//
// A list that is held in a file has the element kind + 16 as its tag, and as data a block of 255 bytes with
// the name of its file; it answers 661 to every use until it is opened (filevalues.h). Every operation opens
// the file and closes it again (a RowBatch of rowfile.h spares that where there are many), and may fail with
// 653 (the file is gone), 651, 652, 654, or 655 when it has not the rows that are counted: a change looks at all,
// reading at its row (651 when that is not all there). The list is then as it was. Elements fit the prototype.
//
// Every access is checked, in this order: 761 null or no list; 661 held in a file and not open; 610 a null
// value, a kind outside 1 to 12 or a malformed descriptor; 611 a value of another kind; 603 a position
// outside the list. The first that is wrong is reported; nothing is written then, and a reading clears its
// output. When memory is short the list is as it was.
//
// A value may be an element of the list itself.
#pragma once

#include "kernel/values/strings.h"
#include "kernel/values/values.h"

#include <cstdint>

namespace tarn {

inline constexpr std::int32_t FileNameBytes =
    255;  // the block that holds the name of a file-held value's file

// `l` need not hold anything valid. `maxlength` UNBOUNDED or a capacity of 1 or more. Kind 0 only for the
// untyped list: no prototype, UNBOUNDED, in memory. Kinds 6 to 12 need a prototype, which is copied; kinds 1
// to 5 do not look at it. Otherwise 761; 804 and 802 as Allocate. On failure the descriptor is zero.
void ListInit(ListDescriptor* l, std::int32_t maxlength, const void* prototype, Kind kind, bool inFile);

std::int32_t ListCount(const ListDescriptor* l);  // 0 and 761 for no list
Kind ListElementKind(const ListDescriptor* l);    // KindNone for the untyped list, and with 761 for no list
bool ListIsInFile(const ListDescriptor* l);
// The address of an element of a list in memory (761); null and 603 for a position outside. Valid until the
// list changes.
void* ListRef(ListDescriptor* l, std::int32_t position);
const void* ListRef(const ListDescriptor* l, std::int32_t position);

void ListGet(const ListDescriptor* l, std::int32_t position, void* v, Kind kind);
void ListPut(const void* v, Kind kind, std::int32_t position, ListDescriptor* l);
void ListAppend(const void* v, Kind kind, ListDescriptor* l);  // 618 when a fixed list is full
// Appends an empty element of the list's shape, to be filled in place, and gives its address, valid until the
// list changes. Null on failure: 618 as above, 761 for the untyped list and one that is held in a file.
void* ListAppendEmpty(ListDescriptor* l);
// Lists of strings in memory (761 for others). A position of count + 1 appends; 618 when a fixed list is
// full.
void ListInsert(std::int32_t position, const StringDescriptor* v, ListDescriptor* l);
// Removes n elements from `position` on, fewer at the end. 603 for a position outside the list; n below 1:
// nothing. In a file: linear in all rows, which are written anew unless the last ones go.
void ListDelete(std::int32_t position, std::int32_t n, ListDescriptor* l);
void ListRemoveLast(ListDescriptor* l);  // 603 when there is none
void ListClear(ListDescriptor* l);       // keeps kind, capacity and prototype
// Sets the number of records of a file-held list; those that are new are copies of `fill`, which is not
// looked at when there are none. 761 for a list in memory; 603 for a number below 0, 610 and 611 for the
// fill, 618 for more than the capacity.
void ListResize(std::int32_t n, const void* fill, ListDescriptor* l);

// Lists of strings (761 for others), in the order of StringCompare; equal texts keep no certain order. The
// texts of a file are sorted in memory, and take the place of the old ones at once.
void ListSort(ListDescriptor* l, bool ascending, bool ignoreCase);
// The first position that holds `text`; 0 for none.
std::int32_t ListStringFind(const ListDescriptor* l, const StringDescriptor* text, bool ignoreCase);

}  // namespace tarn
