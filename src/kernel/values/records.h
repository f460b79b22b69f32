// SPDX-License-Identifier: Apache-2.0
//
// Records and unions (the layout is in values.h): at most 48 fields, numbered from 1, one behind another in
// `data` without gaps. A union is held as a record with storage for every variant; only its tag differs.
//
// Field access is checked in this order: 764 null or a tag other than 14 and 15; 610 a null value, a kind
// outside 1 to 12 or a malformed descriptor; 757 (record) or 758 (union) a field that does not exist; 611 a
// value of another kind than the field. The first that is wrong is reported; nothing is written then, and a
// reading clears its output.
//
// Cost: a field is found by walking the kinds before it.
#pragma once

#include "kernel/values/strings.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <initializer_list>

namespace tarn {

// The kinds of the fields in order; at most 48.
FieldKinds MakeFieldKinds(std::initializer_list<Kind> kinds);
inline Kind FieldKindAt(const FieldKinds& kinds, std::int32_t n) {  // n from 1; KindNone outside
    if (n < 1 || n > MaxFields) return KindNone;
    const std::uint32_t pair = kinds.nibbles[(n - 1) / 2];
    return static_cast<Kind>(n % 2 != 0 ? pair >> 4U : pair & 15U);
}
void SetFieldKindAt(FieldKinds& kinds, std::int32_t n, Kind kind);
std::int32_t FieldCountOf(const FieldKinds& kinds);
std::int32_t FieldBytesOf(const FieldKinds& kinds);  // the sum of the fields' sizes

// `tag` TagRecord or TagUnion (764). All fields are zero: the caller initialises those of kinds 6 to 12 in
// place. No fields: an empty record without a block, to be grown by RecordAppend. A kind above 12, or one
// behind a gap, is 757 or 758. On failure the descriptor is zero.
void RecordInit(RecordDescriptor* r, std::int32_t tag, const FieldKinds& kinds);

std::int32_t RecordFieldCount(const RecordDescriptor* r);  // 0 and 764 for no record, as below
Kind RecordFieldKind(const RecordDescriptor* r, std::int32_t n);
// Null, without an error, when there is no field n. Valid until the record is freed or grown.
void* RecordFieldAddress(RecordDescriptor* r, std::int32_t n);
const void* RecordFieldAddress(const RecordDescriptor* r, std::int32_t n);

void RecordPut(RecordDescriptor* r, std::int32_t n, const void* v, Kind kind);
void RecordGet(const RecordDescriptor* r, std::int32_t n, void* v, Kind kind);

// Grows by one field at the end that holds a copy of `v`. A 49th field is 757 (758 for a union); the value is
// checked as above. On failure the record is as it was.
void RecordAppend(RecordDescriptor* r, const void* v, Kind kind);

// A field as text, by the conversions of AdtConvert, booleans and enums also from text. A character array
// stands in double quotes, those inside doubled; reading takes them off again, fills up with blanks and cuts
// what is too long (617 is not set). Sets as SetToText with dots. Fields of other kinds, and texts that are
// no value of the field, give the conversion error of the kind (981 to 992) and change nothing; the text of a
// field that has none is empty.
void RecordGetAsText(const RecordDescriptor* r, std::int32_t n, StringDescriptor* text);
void RecordPutFromText(std::int32_t n, const StringDescriptor* text, RecordDescriptor* r);

// AdtCopy and AdtFree by the tag; what is neither a record nor a union is 757.
void RecordCopy(const RecordDescriptor* source, RecordDescriptor* target);
void RecordFree(RecordDescriptor* r);

}  // namespace tarn
