// SPDX-License-Identifier: Apache-2.0
//
// What the modules of packed values share. Only they include this.
#pragma once

#include "kernel/lists/packing.h"
#include "os/text/bigendian.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Not to be seen outside of the library, so that the compiler can put them in place: rows are packed field by
// field.
#pragma GCC visibility push(hidden)

namespace tarn::packing {

inline constexpr std::int64_t countBytes = 4;

// As PackedLength, for what stands inside another value; of all fields, 0 when one has none.
std::int64_t lengthInside(const void* like, Kind kind);
std::int64_t lengthOfFields(const RecordDescriptor& record);

// The first fields of a record.
void packFields(const RecordDescriptor& record, std::string& bytes, std::int32_t count);
bool unpackFields(std::string_view& bytes, const RecordDescriptor& record, std::int32_t count);
// What a list has no elements for of its fixed capacity.
void packEmpty(const ListDescriptor& list, std::string& bytes);

template <class Number>
void putNumber(Number value, std::string& bytes) {
    bigendian::append(bytes, value);
}

template <class Number>
bool takeNumber(std::string_view& bytes, Number& value) {
    if (bytes.size() < sizeof(Number)) return false;
    value = bigendian::at<Number>(bytes.data());
    bytes.remove_prefix(sizeof(Number));
    return true;
}

}  // namespace tarn::packing

#pragma GCC visibility pop
