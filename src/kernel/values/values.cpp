// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/values.h"

namespace tarn {

namespace {

constexpr std::int32_t highestTag = TagString;

bool isElementTag(std::int32_t tag) {
    return IsValueKind(tag) || (tag > TagInFile && IsValueKind(tag - TagInFile));
}

// A list in memory or in a file, or an array.
Kind sequenceKind(const DescriptorHead& head) {
    return head.maxlength == DYNAMIC_BOUNDS || head.maxlength == 0 ? KindArray : KindList;
}

Kind unboundKind(const DescriptorHead& head) {
    if (head.size != 0 || head.data != 0) return KindNone;
    if (head.maxlength == DYNAMIC_BOUNDS) return KindArray;
    return head.maxlength == UNBOUNDED ? KindList : KindNone;
}

Kind kindOf(const DescriptorHead& head) {
    switch (head.tag) {
    case TagRecord: return KindRecord;
    case TagUnion: return KindUnion;
    case TagTable: return KindTable;
    case TagString: return head.maxlength == UNBOUNDED || head.maxlength >= 1 ? KindString : KindSet;
    case 0: return unboundKind(head);
    default: return isElementTag(head.tag) ? sequenceKind(head) : KindNone;
    }
}

}  // namespace

bool IsWellFormed(const void* descriptor) {
    if (descriptor == nullptr) return false;
    const auto head = ReadAt<DescriptorHead>(descriptor);
    return head.tag >= 0 && head.tag <= highestTag && head.size >= 0;
}

Kind KindOf(const void* descriptor) {
    return descriptor != nullptr ? kindOf(ReadAt<DescriptorHead>(descriptor)) : KindNone;
}

Kind KindOf(const void* block, std::int32_t bytes) {
    if (block == nullptr || bytes < std::int32_t{sizeof(DescriptorHead)}) return KindNone;
    const Kind kind = KindOf(block);
    return bytes >= KindSize[kind] ? kind : KindNone;
}

}  // namespace tarn
