// SPDX-License-Identifier: Apache-2.0
//
// Values as bytes, as they stand in binary files and in the files of lists and tables. Numbers are
// big-endian, except reals, which stand as in memory:
//
//   kind                     bytes
//   boolean, enum            1
//   integer                  4
//   fixed, real              8
//   string, fixed capacity   4 of its length in characters, then its capacity of them, the tail zero
//   string, unbounded        its characters; only as the last of a record that is packed by itself
//   record, union            the fields in order
//   set                      its block
//   array                    the elements in storage order
//   list, fixed capacity     4 of its count, then its capacity of elements, those behind the count empty
//   list, unbounded          the elements; only as a whole value, and so a table
//
// Bytes are checked when they are unpacked: lengths and counts against capacities, bits against bounds.
//
// Cost: linear in the bytes.
#pragma once

#include "kernel/values/values.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::int32_t MostPackedBytes = 4096000;  // of one record of a file

// The bytes that every value of this shape packs to; 0 for a shape whose values differ in that, or that
// cannot be packed at all. (A set or array with bounds of its own packs by those that it has; inside another
// value it cannot be packed.) May be above MostPackedBytes. Sets no error.
std::int64_t PackedLength(const void* like, Kind kind);

// Appends the bytes of a value with a packed length.
void Pack(const void* value, Kind kind, std::string& bytes);
// Takes the bytes of a value with a packed length off the front. `value` has its shape. False when there are
// too few or damaged ones, and when memory is short (the error is then set); the value is of legal shape then
// too, and holds some of what was read.
bool Unpack(std::string_view& bytes, void* value, Kind kind);

}  // namespace tarn
