// SPDX-License-Identifier: Apache-2.0
//
// Whole numbers in the byte order of files: the highest byte first, at any address. Number is one of 1, 2, 4
// or 8 bytes, signed or not.
//
// Cost: an instruction or two, always in place: rows are packed field by field.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

namespace tarn::bigendian {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);

template <class Number>
[[gnu::always_inline]] constexpr Number turned(Number value) {
    static_assert(std::is_integral_v<Number>);
    if constexpr (sizeof(Number) == 8)
        return static_cast<Number>(__builtin_bswap64(static_cast<std::uint64_t>(value)));
    if constexpr (sizeof(Number) == 4)
        return static_cast<Number>(__builtin_bswap32(static_cast<std::uint32_t>(value)));
    if constexpr (sizeof(Number) == 2)
        return static_cast<Number>(__builtin_bswap16(static_cast<std::uint16_t>(value)));
    return value;
}

template <class Number>
[[gnu::always_inline]] inline Number at(const char* bytes) {
    Number value;
    std::memcpy(&value, bytes, sizeof value);
    return turned(value);
}

template <class Number>
[[gnu::always_inline]] inline void put(char* bytes, Number value) {
    value = turned(value);
    std::memcpy(bytes, &value, sizeof value);
}

template <class Number>
[[gnu::always_inline]] inline void append(std::string& bytes, Number value) {
    char stored[sizeof value];
    put(stored, value);
    bytes.append(stored, sizeof stored);
}

}  // namespace tarn::bigendian
