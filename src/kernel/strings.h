// SPDX-License-Identifier: Apache-2.0
//
// Values held through descriptors: the kinds, the sentinels, and strings.
//
//   offset size  string descriptor (24 bytes)
//        0    4  size: bytes allocated at data
//        4    4  tag = 29
//        8    4  data: heap offset, 0 for none
//       12    4  maxlength: UNBOUNDED or the fixed capacity in characters
//       16    4  length in characters
//       20    4  reserved, 0
//
// All operations report through the error cell (756 for a null or wrong descriptor) and never trap.
// Cost: linear in the characters moved.
#pragma once

#include "kernel/heap.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::int32_t UNBOUNDED = -1000000;
inline constexpr std::int32_t DYNAMIC_BOUNDS = -1000001;
inline constexpr std::int32_t NO_DIMENSION = -999999;

enum Kind : std::int32_t {
    KindNone, KindBoolean, KindEnum, KindInteger, KindFixed, KindReal, KindString,
    KindRecord, KindUnion, KindSet, KindArray, KindList, KindTable,
};
inline constexpr std::int32_t KindSize[13] = {0, 1, 1, 4, 8, 8, 24, 36, 36, 44, 44, 24, 24};

inline constexpr std::int32_t TagString = 29;
extern std::int32_t CharacterWidth;           // 1 "ASCII", 2 "WCHAR"

struct StringDescriptor {
    std::int32_t size, tag;
    Offset data;
    std::int32_t maxlength, length, reserved;
};
static_assert(sizeof(StringDescriptor) == 24);

void StringInit(StringDescriptor* s, std::int32_t maxlength);
void StringFree(StringDescriptor* s);
void StringAssign(StringDescriptor* dest, const StringDescriptor* src);
void StringAssignText(StringDescriptor* dest, const char* text);  // NUL-ended
void StringAssignView(StringDescriptor* dest, std::string_view bytes);
void StringConcat(const StringDescriptor* a, const StringDescriptor* b, StringDescriptor* dest);
void StringAppend(StringDescriptor* dest, const StringDescriptor* src);  // fixed strings only
void StringClear(StringDescriptor* s);
void StringCompare(const StringDescriptor* a, const StringDescriptor* b, bool ignoreCase, std::int32_t& result);
std::int32_t StringCompareOp(std::string_view op, const StringDescriptor* a, const StringDescriptor* b);
std::int32_t StringGetChar(const StringDescriptor* s, std::int32_t position);
void StringPutChar(StringDescriptor* s, std::int32_t position, std::int32_t c);
std::int32_t StringLength(const StringDescriptor* s);
std::int32_t StringMaxLength(const StringDescriptor* s);
std::string_view StringView(const StringDescriptor* s);  // valid until the string changes

}  // namespace tarn
