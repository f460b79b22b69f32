// SPDX-License-Identifier: Apache-2.0
//
// What the file of a list looks like from outside: its name, its format, the bytes of a row. Only the modules
// of lists and tables in files include this.
#pragma once

#include "kernel/lists/list_access.h"
#include "kernel/lists/rowfile.h"

#include <cstdint>
#include <new>
#include <string>
#include <string_view>

namespace tarn {

// ---- names ----

// Stores a name of less than FileNameBytes characters; "" closes the list.
void SetRowFileName(ListDescriptor& l, std::string_view name);
// 661 for an empty name, 657 for one that is too long, holds a NUL or has no file part ("C:").
bool AcceptFileName(std::string_view name);
// A file that the library made beside a data file: its extension begins with '~'.
bool IsScratchName(std::string_view name);

// ---- formats ----

enum RowFormat : std::int32_t { RowsPlain = 3, RowsFixed = 4, RowsXbase = 5 };
RowFormat RowFormatOf(std::string_view name, std::int32_t maxlength);
constexpr bool StoresCount(RowFormat format) {
    return format != RowsPlain;
}
inline constexpr std::int32_t FixedHeaderBytes = 4;
// The count as it stands in a header, and where.
struct StoredCount {
    std::int64_t offset = 0;
    char bytes[4] = {};
};
StoredCount EncodeCount(RowFormat format, std::int32_t count);
std::int64_t DecodeCount(RowFormat format, const char* bytes);  // below 0 for one that no list has

// The bytes that every element of the list packs to; 0, and 660, when it cannot be held in a file.
std::int32_t PackedRowBytes(const ListDescriptor& l);

// ---- memory ----

// What stands in a file is moved through memory of the library; a lack of it is 802.
template <class Work>
bool WithMemory(Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return Refuse(ERR_OUT_OF_MEMORY);
    }
}

}  // namespace tarn
