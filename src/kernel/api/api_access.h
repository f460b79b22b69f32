// SPDX-License-Identifier: Apache-2.0
//
// How arguments of the C interface become those of the kernel. Only the modules of that interface, here
// and in the library, include this.
#pragma once

#include "kernel/api/api.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/string_text.h"
#include "kernel/values/strings.h"
#include "kernel/values/values.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tarn::api {

// The kernel's type of each of the interface's.
template <class Api>
struct Twin;
template <>
struct Twin<tarn_string> {
    using Type = StringDescriptor;
};
template <>
struct Twin<tarn_record> {
    using Type = RecordDescriptor;
};
template <>
struct Twin<tarn_set> {
    using Type = SetDescriptor;
};
template <>
struct Twin<tarn_array> {
    using Type = ArrayDescriptor;
};
template <>
struct Twin<tarn_list> {
    using Type = ListDescriptor;
};
template <>
struct Twin<tarn_table> {
    using Type = TableDescriptor;
};

template <class Api>
typename Twin<Api>::Type* in(Api* value) {
    return reinterpret_cast<typename Twin<Api>::Type*>(value);
}
template <class Api>
const typename Twin<Api>::Type* in(const Api* value) {
    return reinterpret_cast<const typename Twin<Api>::Type*>(value);
}

inline Kind kindOf(int32_t kind) {
    return static_cast<Kind>(kind);
}
inline std::string_view text(const char* chars) {
    return chars != nullptr ? chars : "";
}
inline void give(std::string_view bytes, tarn_string* dest) {
    StringAssignView(in(dest), bytes);
}

// Whether the caller's string is one; 756 when it is not.
inline bool isString(const tarn_string* s) {
    const bool is = KindOf(s) == KindString;
    if (!is) SetError(ERR_STRING_TYPE);
    return is;
}
// Its text, "" with 756 when it is none.
inline NarrowText text(const tarn_string* s) {
    isString(s);
    return NarrowText(in(s));
}
// Whether the caller's place for a result is there; 610 when it is not.
inline bool given(const void* place) {
    if (place == nullptr) SetError(ERR_COMPONENT_INVALID);
    return place != nullptr;
}

// A caller's array of words; null reads as `instead`.
template <std::size_t count>
std::array<int32_t, count> wordsAt(const int32_t* words, std::array<int32_t, count> instead) {
    if (words != nullptr) std::memcpy(instead.data(), words, sizeof instead);
    return instead;
}

}  // namespace tarn::api
