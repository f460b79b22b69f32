// SPDX-License-Identifier: Apache-2.0
//
// What the modules of packed values share. Only they include this.
#pragma once

#include "kernel/lists/packing.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

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
    char big[sizeof(Number)];
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        big[i] = static_cast<char>(
            static_cast<std::make_unsigned_t<Number>>(value) >> (8 * (sizeof(Number) - 1 - i)) & 255U);
    bytes.append(big, sizeof big);
}

template <class Number>
bool takeNumber(std::string_view& bytes, Number& value) {
    if (bytes.size() < sizeof(Number)) return false;
    std::make_unsigned_t<Number> read = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        read = static_cast<std::make_unsigned_t<Number>>(read << 8U | static_cast<unsigned char>(bytes[i]));
    bytes.remove_prefix(sizeof(Number));
    value = static_cast<Number>(read);
    return true;
}

}  // namespace tarn::packing

#pragma GCC visibility pop
