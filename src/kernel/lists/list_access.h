// SPDX-License-Identifier: Apache-2.0
//
// What the modules of lists share: the checks, the addresses of elements, the making of elements and lists.
// Only those modules, and those of tables and data files, include this.
#pragma once

#include "kernel/lists/lists.h"
#include "kernel/lists/rowfile.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt_kinds.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

namespace tarn {

inline bool IsHeldInFile(const ListDescriptor& l) {
    return l.tag > TagInFile;
}
inline Kind ElementKindOf(const ListDescriptor& l) {
    return static_cast<Kind>(IsHeldInFile(l) ? l.tag - TagInFile : l.tag);
}
// A list that has not got its element kind yet.
inline bool IsUntyped(const ListDescriptor& l) {
    return l.tag == 0;
}
inline bool IsFixedList(const ListDescriptor& l) {
    return l.maxlength != UNBOUNDED;
}
inline std::int32_t ElementSize(const ListDescriptor& l) {
    return KindSize[ElementKindOf(l)];
}
// `index` from 0; a list in memory that has a block.
inline char* SlotAt(const ListDescriptor& l, std::int32_t index) {
    return At(l.data) + std::int64_t{index} * ElementSize(l);
}

// All slots that have a shape, those behind `count` too.
inline std::int32_t SlotCount(const ListDescriptor& l) {
    return IsUntyped(l) || IsHeldInFile(l) ? 0 : l.size / ElementSize(l);
}
inline std::size_t ElementBytes(std::int32_t elements, Kind kind) {
    return static_cast<std::size_t>(elements) * static_cast<std::size_t>(KindSize[kind]);
}
// The bytes of one element of any kind.
struct Element {
    char bytes[sizeof(ArrayDescriptor)];
};
static_assert(sizeof(Element) >= sizeof(SetDescriptor) && sizeof(Element) >= sizeof(RecordDescriptor));

// A list whose words fit each other.
bool IsList(const ListDescriptor* l);

// True when the elements of the list can be reached; 761, and 661 for one that is held in a file and not
// open. This is the one place that looks for that.
bool AcceptList(const ListDescriptor* l);
// The same for a list whose elements stand in memory; 761 for others.
bool AcceptListInMemory(const ListDescriptor* l);
// The same for a list of strings (761). The untyped list counts as one that is empty.
bool AcceptStringList(const ListDescriptor* l);
// 610 and 611 for a value that shall go into the list.
bool AcceptElement(const ListDescriptor& l, const void* v, Kind kind);

// An element beside a list, empty at first; freed at the end.
class ElementBeside {
public:
    ElementBeside(const void* like, Kind kind) : kind_(kind), good_(InitValue(bytes_, like, kind)) {}
    ~ElementBeside() { FreeValue(bytes_, kind_); }
    ElementBeside(const ElementBeside&) = delete;
    ElementBeside& operator=(const ElementBeside&) = delete;
    [[nodiscard]] bool good() const { return good_; }  // false: 802, 804
    [[nodiscard]] char* at() { return bytes_; }
    // Moves it to another place, which is raw bytes.
    void moveTo(void* place) {
        std::memcpy(place, bytes_, ElementBytes(1, kind_));
        kind_ = KindNone;
    }

private:
    char bytes_[sizeof(ArrayDescriptor)] = {};
    Kind kind_;
    bool good_;
};

// A value in the shape of a list's elements: itself, or a copy. Not good when it cannot have that shape.
class ShapedElement {
public:
    ShapedElement(const ListDescriptor& l, const void* v, Kind kind);
    [[nodiscard]] bool good() const { return at_ != nullptr; }
    [[nodiscard]] const void* at() const { return at_; }

private:
    const void* at_;
    std::optional<ElementBeside> made_;
};

// The elements of a list, one after another, wherever they stand. Null, with the error set, for one that
// cannot be read. An element of a file is valid until the next is asked for.
class ListReader {
public:
    explicit ListReader(const ListDescriptor& l);
    const void* at(std::int32_t index);  // from 0

private:
    const ListDescriptor& list_;
    RowBatch batch_;
    std::optional<ElementBeside> element_;
};

// A copy of `v` with the shape of `like`, to be moved into a slot. False, and nothing allocated, on failure.
bool MakeElement(char* element, const void* like, const void* v, Kind kind);
// Moves such a copy behind the last element of a list in memory that has room for it and is not untyped; frees
// it, with the result false, when memory is short.
bool AppendElement(ListDescriptor& l, char* element);
void FreeElements(char* slots, std::int32_t count, Kind kind);  // what is below them
// A list in memory without its elements; a fixed one keeps them in its slots until those are used again.
void EmptyList(ListDescriptor& l);
// An empty list, of what ListInit takes; all zero when memory is short, with the result false.
bool ShapeList(ListDescriptor& l, std::int32_t maxlength, const void* prototype, Kind kind, bool inFile);

}  // namespace tarn
