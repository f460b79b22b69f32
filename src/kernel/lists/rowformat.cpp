// SPDX-License-Identifier: Apache-2.0
#include "kernel/lists/rowformat.h"

#include "kernel/lists/packing.h"
#include "os/paths.h"
#include "os/text/ascii.h"
#include "os/text/bigendian.h"

#include <cstring>

namespace tarn {

// ---- names ----

std::string_view RowFileName(const ListDescriptor& l) {
    if (!IsHeldInFile(l) || l.data == 0 || l.size != FileNameBytes) return {};
    const char* name = At(l.data);
    return {name, ::strnlen(name, std::size_t{FileNameBytes} - 1)};
}

void SetRowFileName(ListDescriptor& l, std::string_view name) {
    char* const block = At(l.data);
    std::memset(block, 0, std::size_t{FileNameBytes});
    name.copy(block, std::size_t{FileNameBytes} - 1);
}

bool AcceptFileName(std::string_view name) {
    if (name.empty()) return Refuse(ERR_FILE_NOT_OPEN);
    const std::string_view file = paths::fileName(name);
    const bool drive = name.size() == 2 && name[1] == ':' && ascii::isLetter(name[0]);
    const bool good = !drive && name.size() < std::size_t{FileNameBytes} &&
                      name.find('\0') == std::string_view::npos && !file.empty() && file != "." &&
                      file != "..";
    return good || Refuse(ERR_FILE_NAME);
}

bool IsScratchName(std::string_view name) {
    return paths::extension(name).substr(0, 2) == ".~";
}

// ---- formats ----

RowFormat RowFormatOf(std::string_view name, std::int32_t maxlength) {
    const std::string_view extension = paths::extension(name);
    if (ascii::equal(extension, ".dbf") || ascii::equal(extension, ".xbf")) return RowsXbase;
    return maxlength == UNBOUNDED ? RowsPlain : RowsFixed;
}

StoredCount EncodeCount(RowFormat format, std::int32_t count) {
    constexpr std::int64_t xbaseOffset = 4;
    StoredCount stored;
    stored.offset = format == RowsXbase ? xbaseOffset : 0;
    if (format == RowsXbase)
        std::memcpy(stored.bytes, &count, sizeof count);
    else
        bigendian::put(stored.bytes, count);
    return stored;
}

std::int64_t DecodeCount(RowFormat format, const char* bytes) {
    return format == RowsXbase ? ReadAt<std::int32_t>(bytes) : bigendian::at<std::int32_t>(bytes);
}

std::int32_t PackedRowBytes(const ListDescriptor& l) {
    const Kind kind = ElementKindOf(l);
    const void* const like = At(l.prototype);
    // Elements with bounds of their own would differ in length.
    const bool ownBounds = (kind == KindArray || kind == KindSet) && like != nullptr &&
                           ReadAt<DescriptorHead>(like).maxlength == DYNAMIC_BOUNDS;
    const std::int64_t bytes = ownBounds ? 0 : PackedLength(like, kind);
    if (bytes >= 1 && bytes <= MostPackedBytes) return static_cast<std::int32_t>(bytes);
    return Refuse(ERR_TYPE_NOT_STORABLE), 0;
}

}  // namespace tarn
