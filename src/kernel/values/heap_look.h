// SPDX-License-Identifier: Apache-2.0
//
// What stands at an offset of the heap, be it in a block or not: for those who meet offsets that may be anything, and tell
// by what they find. All bytes of the value must lie in the used range.
#pragma once

#include "kernel/values/asan.h"
#include "kernel/values/heap.h"

#include <cstddef>
#include <cstring>

namespace tarn {

#ifdef TARN_ASAN
template <class Value>
__attribute__((no_sanitize_address)) Value LookAt(Offset at) {
    Value copy;
    const volatile char* from = tarn_heap_base + at;
    for (std::size_t i = 0; i < sizeof copy; ++i) reinterpret_cast<char*>(&copy)[i] = from[i];
    return copy;
}
#else
template <class Value>
Value LookAt(Offset at) {
    Value value;
    std::memcpy(&value, tarn_heap_base + at, sizeof value);
    return value;
}
#endif

}  // namespace tarn
