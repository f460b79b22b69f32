// SPDX-License-Identifier: Apache-2.0
//
// The generic operations on values of any kind. A value is given by the address of its first byte and its
// kind; kinds 1 to 5 are numbers, 6 to 12 descriptors. No address needs alignment.
//
// Errors go to the error cell. 764 for a kind that is not 1 to 12, and for a descriptor that is not of the
// kind it is said to be where no error of that kind fits better. An operation that fails leaves its target as
// it was, unless it says otherwise. The source may be the target itself.
//
// Cost: linear in the bytes and in the blocks of the value.
#pragma once

#include "kernel/values/owned.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// Makes `target`, whose old bytes mean nothing, an empty value of the shape of `like`: strings of its
// capacity, records of its fields, sets and fixed arrays of its bounds with all members out and all elements
// empty, lists and tables without rows. A dynamic array keeps element kind and prototype but no bounds; a
// dynamic set gets the bounds 1..1. Kinds 1 to 5 become 0. On failure `target` is all zero.
void AdtInit(void* target, const void* like, Kind kind);

// Deep copy. A target without a shape (all zero) first takes the source's, except a string (756). One that is
// bounded must hold what comes: 615 (the text is cut), 616 (the members that fit), 617, 618, 619 (nothing
// changes). Records, and elements, of another shape are 611, tables of another row type 762. With memory
// checking on and `flag` 0 the result is compared with the source; a difference is 827.
// When memory is short (802, 804) a record or a fixed array of numbers, strings and sets may be copied in
// part: each of its fields then holds either its old value or its new one, an unbounded string nothing.
void AdtCopy(const void* source, void* target, Kind kind, std::int32_t flag = 0);

// Frees all below the value and makes its bytes zero. Null, kinds 1 to 5 and a value that is all zero:
// nothing.
void AdtFree(void* value, Kind kind);

// EQ and NE, in any case, by content: records and unions field by field, arrays of equal shape element by
// element, lists and tables of equal counts row by row, reals by value (NaN equals the same NaN). GT, LT, GE,
// LE and all else are false: values as a whole have no order. Descriptors of another kind than `kind` set
// that kind's error, and a file-held value that has not been opened, on any level, 661; both EQ and NE are
// then false.
bool AdtCompare(std::string_view op, const void* a, const void* b, Kind kind);

// Makes a value empty but keeps its shape, as AdtInit tells; an array or list keeps the kind of its elements.
// Needs no memory.
void AdtClear(void* value, Kind kind);

// True when two values have one shape, so that elements of one array may hold either: the same capacities,
// bounds, field and element kinds, all the way down. Content and counts do not matter.
bool AdtSameShape(const void* a, const void* b, Kind kind);

// The error that says that something is wrong with a value of this kind: 751 to 762; 764 for no kind.
std::int32_t AdtTypeError(Kind kind);
// The error of a text that is no value of this kind: 981 to 992; 764 for no kind.
std::int32_t AdtConversionError(Kind kind);

// Walks the whole value and says what is wrong with it: sizes against counts, blocks, kinds, tree order and
// balance. Empty when all is well. For tests and tools.
std::string AdtCheck(const void* value, Kind kind);

}  // namespace tarn
