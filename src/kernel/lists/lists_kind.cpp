// SPDX-License-Identifier: Apache-2.0
//
// Lists as a kind of value: their shape, copies, comparison and end, and the elements beside a list that all
// changes are made with.
#include "kernel/lists/list_access.h"
#include "kernel/values/adt_kinds.h"

#include <algorithm>
#include <cstring>

namespace tarn {

// ---- checks ----

bool IsList(const ListDescriptor* l) {
    if (!IsWellFormed(l) || KindOf(l) != KindList || l->count < 0) return false;
    if (IsFixedList(*l) && l->maxlength < 1) return false;
    return IsHeldInFile(*l) || std::int64_t{l->count} * ElementSize(*l) <= l->size;
}

bool AcceptList(const ListDescriptor* l) {
    if (!IsList(l)) return Refuse(ERR_LIST_TYPE);
    return !IsHeldInFile(*l) || !RowFileName(*l).empty() || Refuse(ERR_FILE_NOT_OPEN);
}

bool AcceptListInMemory(const ListDescriptor* l) {
    return AcceptList(l) && (!IsHeldInFile(*l) || Refuse(ERR_LIST_TYPE));
}

bool AcceptStringList(const ListDescriptor* l) {
    if (!AcceptList(l)) return false;
    return IsUntyped(*l) || ElementKindOf(*l) == KindString || Refuse(ERR_LIST_TYPE);
}

bool AcceptElement(const ListDescriptor& l, const void* v, Kind kind) {
    if (!AcceptValue(v, kind)) return false;
    const bool fits = IsUntyped(l) || ElementKindOf(l) == kind;
    return (fits && (!IsAdtKind(kind) || KindOf(v) == kind)) || Refuse(ERR_COMPONENT_TYPE);
}

// ---- elements ----

bool MakeElement(char* element, const void* like, const void* v, Kind kind) {
    if (!InitValue(element, like, kind)) return false;
    if (CopyValue(v, element, kind)) return true;
    FreeValue(element, kind);
    return false;
}

ShapedElement::ShapedElement(const ListDescriptor& l, const void* v, Kind kind) : at_(v) {
    const void* const like = At(l.prototype);
    if (!IsAdtKind(kind) || SameShape(v, like, kind)) return;
    made_.emplace(like, kind);
    at_ = made_->good() && CopyValue(v, made_->at(), kind) ? made_->at() : nullptr;
}

ListReader::ListReader(const ListDescriptor& l) : list_(l), batch_(l) {
    if (IsHeldInFile(l)) element_.emplace(At(l.prototype), ElementKindOf(l));
}

const void* ListReader::at(std::int32_t index) {
    if (!element_) return SlotAt(list_, index);
    return element_->good() && ReadRow(list_, index + 1, element_->at()) ? element_->at() : nullptr;
}

void FreeElements(char* slots, std::int32_t count, Kind kind) {
    if (!IsAdtKind(kind)) return;
    for (std::int32_t i = 0; i < count; ++i) FreeValue(slots + ElementBytes(i, kind), kind);
}

// ---- shape ----

namespace {

const ListDescriptor& listAt(const void* value) {
    return *static_cast<const ListDescriptor*>(value);
}

void freeList(void* value) {
    auto& l = *static_cast<ListDescriptor*>(value);
    const Kind kind = ElementKindOf(l);
    const bool ownsPrototype = l.prototype != l.data;
    ReleaseRows(l);
    if (l.data != 0) FreeElements(At(l.data), SlotCount(l), kind);
    FreeData(l);
    Offset prototype = l.prototype;
    if (ownsPrototype) FreePrototype(prototype, kind);
    l.prototype = 0;
}

bool shapeSlots(ListDescriptor& l, const void* prototype, Kind kind) {
    const std::int64_t size = std::int64_t{l.maxlength} * KindSize[kind];
    if (!AllocateData(l, static_cast<std::int32_t>(std::min<std::int64_t>(size, std::int64_t{MaxBlock} + 1))))
        return false;
    char* slots = At(l.data);
    if (!IsAdtKind(kind)) {
        std::memset(slots, 0, static_cast<std::size_t>(l.size));
        return true;
    }
    for (std::int32_t i = 0; i < l.maxlength; ++i) {
        if (InitValue(slots + ElementBytes(i, kind), prototype, kind)) continue;
        FreeElements(slots, i, kind);
        FreeData(l);
        return false;
    }
    l.prototype = l.data;
    return true;
}

bool nameBlock(ListDescriptor& l) {
    if (!AllocateData(l, FileNameBytes)) return false;
    std::memset(At(l.data), 0, std::size_t{FileNameBytes});
    return true;
}

}  // namespace

void EmptyList(ListDescriptor& l) {
    if (!IsFixedList(l)) {
        if (l.data != 0) FreeElements(At(l.data), SlotCount(l), ElementKindOf(l));
        FreeData(l);
    }
    l.count = 0;
}

bool ShapeList(ListDescriptor& l, std::int32_t maxlength, const void* prototype, Kind kind, bool inFile) {
    l = {0, inFile ? kind + TagInFile : kind, 0, maxlength, 0, 0};
    bool good = true;
    if (IsFixedList(l) && !inFile) {
        good = shapeSlots(l, prototype, kind);
    } else {
        l.prototype = NewPrototype(prototype, kind, good);
        if (good && inFile) good = nameBlock(l);
    }
    if (good) return true;
    freeList(&l);
    l = {};
    return false;
}

namespace {

bool initList(void* target, const void* like) {
    const ListDescriptor from = listAt(like);
    ListDescriptor made{};
    const bool good =
        ShapeList(made, from.maxlength, At(from.prototype), ElementKindOf(from), IsHeldInFile(from));
    std::memcpy(target, &made, sizeof made);
    return good;
}

// ---- copying ----

// Copies of all elements in a block of their own, each of the shape of `like`; 0 for no elements. Nothing
// stays allocated on failure.
bool copyElements(const ListDescriptor& from, const void* like, Offset& block) {
    const Kind kind = ElementKindOf(from);
    const std::int64_t size = std::int64_t{from.count} * KindSize[kind];
    block = 0;
    if (size == 0) return true;
    const auto bytes = static_cast<std::int32_t>(std::min<std::int64_t>(size, std::int64_t{MaxBlock} + 1));
    Allocate(block, bytes);
    if (block == 0) return false;
    if (!IsAdtKind(kind) && !IsHeldInFile(from)) {
        std::memcpy(At(block), At(from.data), static_cast<std::size_t>(size));
        return true;
    }
    ListReader elements(from);
    for (std::int32_t i = 0; i < from.count; ++i) {
        const void* const element = elements.at(i);
        if (element != nullptr && MakeElement(At(block) + ElementBytes(i, kind), like, element, kind))
            continue;
        FreeElements(At(block), i, kind);
        Free(block, bytes);
        return false;
    }
    return true;
}

// Takes over the copies in `block`, which is freed if the list has a block that stays.
void takeElements(ListDescriptor& to, Offset block, std::int32_t count) {
    const Kind kind = ElementKindOf(to);
    const auto size = static_cast<std::int32_t>(ElementBytes(count, kind));
    if (!IsFixedList(to)) {
        if (to.data != 0) FreeElements(At(to.data), SlotCount(to), kind);
        FreeData(to);
        to.data = block;
        to.size = size;
    } else if (count != 0) {
        FreeElements(At(to.data), count, kind);
        std::memcpy(At(to.data), At(block), static_cast<std::size_t>(size));
        Free(block, size);
    }
    to.count = count;
}

// `to` has the kind of `from` or is untyped.
bool copyInto(const ListDescriptor& from, ListDescriptor& to) {
    const Kind kind = ElementKindOf(from);
    bool good = true;
    const Offset prototype = IsUntyped(to) ? NewPrototype(At(from.prototype), kind, good) : to.prototype;
    Offset block = 0;
    good = good && copyElements(from, At(prototype), block);
    if (!good) {
        Offset unused = IsUntyped(to) ? prototype : 0;
        FreePrototype(unused, kind);
        return false;
    }
    const std::int32_t count = from.count;  // `from` may be an element of `to`
    to.tag = kind;
    to.prototype = prototype;
    takeElements(to, block, count);
    return true;
}

// Held in a file that has not been opened: such a value has no content to copy.
bool isUnopened(const ListDescriptor& l) {
    return IsList(&l) && IsHeldInFile(l) && RowFileName(l).empty();
}

// The old rows stay until all are written.
bool copyToFile(const ListDescriptor& from, ListDescriptor& to) {
    if (IsHeldInFile(from) && IsSameFile(from, to)) return TakeRowCount(from, to);
    RowsBeside beside(to);
    if (!beside.make()) return false;
    const Kind kind = ElementKindOf(to);
    ListReader elements(from);
    for (std::int32_t i = 0; i < from.count; ++i) {
        const void* const element = elements.at(i);
        if (element == nullptr) return false;
        const ShapedElement shaped(to, element, kind);
        if (!shaped.good() || !AppendRow(beside.rows(), shaped.at())) return false;
    }
    return beside.takePlace();
}

bool copyList(const void* source, void* target) {
    const ListDescriptor& from = listAt(source);
    auto& to = *static_cast<ListDescriptor*>(target);
    if (isUnopened(from) && isUnopened(to)) return true;
    if (!AcceptList(&from) || (IsHeldInFile(from) && !AcceptRows(from))) return false;
    if (KindOf(&to) == KindNone) {
        ListDescriptor made{};
        if (!initList(&made, &from)) return false;
        if (!copyInto(from, made)) {
            freeList(&made);
            return false;
        }
        to = made;
        return true;
    }
    if (!AcceptList(&to)) return false;
    if (IsUntyped(from)) {
        if (IsHeldInFile(to)) return ClearRows(to);
        EmptyList(to);
        return true;
    }
    if (!IsUntyped(to) && ElementKindOf(to) != ElementKindOf(from)) return Refuse(ERR_COMPONENT_TYPE);
    if (IsFixedList(to) && from.count > to.maxlength) return Refuse(ERR_FIXED_LIST);
    return IsHeldInFile(to) ? copyToFile(from, to) : copyInto(from, to);
}

// ---- comparing and checking ----

bool equalLists(const void* a, const void* b) {
    const ListDescriptor &left = listAt(a), &right = listAt(b);
    if (!AcceptList(&left) || !AcceptList(&right) || left.count != right.count) return false;
    const Kind kind = ElementKindOf(left);
    if (left.count != 0 && kind != ElementKindOf(right)) return false;
    ListReader ofLeft(left), ofRight(right);
    for (std::int32_t i = 0; i < left.count; ++i) {
        const void *const x = ofLeft.at(i), *const y = ofRight.at(i);
        if (x == nullptr || y == nullptr || !EqualValues(x, y, kind)) return false;
    }
    return true;
}

bool sameListShape(const void* a, const void* b) {
    const ListDescriptor &left = listAt(a), &right = listAt(b);
    if (left.maxlength != right.maxlength || IsHeldInFile(left) != IsHeldInFile(right)) return false;
    // The kind that an untyped list has taken belongs to its content.
    if (!IsFixedList(left) && !IsHeldInFile(left) && (IsUntyped(left) || IsUntyped(right))) return true;
    if (left.tag != right.tag) return false;
    return left.prototype == 0 || right.prototype == 0
               ? left.prototype == right.prototype
               : SameShape(At(left.prototype), At(right.prototype), ElementKindOf(left));
}

std::string checkWords(const ListDescriptor& l) {
    if (IsFixedList(l) && l.maxlength < 1) return "list: no such capacity";
    if (l.count < 0 || (IsFixedList(l) && l.count > l.maxlength)) return "list: count out of range";
    if ((l.size == 0) != (l.data == 0)) return "list: size without data or data without size";
    if (IsUntyped(l) && (l.count != 0 || l.prototype != 0)) return "list: elements of no kind";
    if (IsAdtKind(ElementKindOf(l)) != (l.prototype != 0)) return "list: prototype does not match the kind";
    if (IsHeldInFile(l))
        return l.size == FileNameBytes ? "" : "list: the block of the file name has the wrong size";
    const std::int32_t slots = IsFixedList(l) ? l.maxlength : l.count;
    if (l.size != std::int64_t{slots} * ElementSize(l)) return "list: size is not that of its elements";
    if (l.prototype != 0 && (l.prototype == l.data) != IsFixedList(l))
        return "list: the prototype stands in the wrong place";
    return {};
}

std::string checkFile(const ListDescriptor& l) {
    if (At(l.data)[FileNameBytes - 1] != 0) return "list: the file name has no end";
    if (RowFileName(l).empty()) return l.count == 0 ? "" : "list: rows without a file";
    return CheckRows(l);
}

std::string checkList(const void* value) {
    const ListDescriptor& l = listAt(value);
    std::string wrong = checkWords(l);
    if (!wrong.empty()) return wrong;
    const Kind kind = ElementKindOf(l);
    if (l.prototype != 0) wrong = CheckValue(At(l.prototype), kind);
    if (!wrong.empty()) return "list prototype: " + wrong;
    if (IsHeldInFile(l)) return checkFile(l);
    for (std::int32_t i = 0; IsAdtKind(kind) && i < SlotCount(l); ++i) {
        wrong = KindOf(SlotAt(l, i)) == kind ? CheckValue(SlotAt(l, i), kind) : "no shape";
        if (!wrong.empty()) return "list element " + std::to_string(i + 1) + ": " + wrong;
    }
    return {};
}

// A list that is held in a file is not touched: its rows are not here.
void emptyList(void* value) {
    auto& l = *static_cast<ListDescriptor*>(value);
    if (!IsList(&l) || IsHeldInFile(l)) return;
    for (std::int32_t i = 0; IsFixedList(l) && i < SlotCount(l); ++i)
        EmptyValue(SlotAt(l, i), ElementKindOf(l));
    EmptyList(l);
}

}  // namespace

const KindOperations ListOperations = {initList,      copyList,  freeList, equalLists,
                                       sameListShape, checkList, emptyList};

}  // namespace tarn
