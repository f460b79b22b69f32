// SPDX-License-Identifier: Apache-2.0
//
// An element is made complete beside the list (shaped, copied) and then moved into its slot byte by byte, as
// all that is below a descriptor stays where it is. So the value may stand in the list, whose block may move
// meanwhile, and a lack of memory is found before the list has changed.
//
// All slots of a block hold shaped elements, those behind `count` in a fixed list too; a slot there may still
// have the content of a deleted element, which goes when the slot is used again. Removing never needs memory,
// save where the heap has none for the smaller block: the spare slots are then zero until the next change.
#include "kernel/lists.h"

#include "kernel/adt_kinds.h"
#include "kernel/list_access.h"

#include <algorithm>
#include <cstring>

namespace tarn {

bool IsList(const ListDescriptor* l) {
    if (!IsWellFormed(l) || KindOf(l) != KindList || l->count < 0) return false;
    if (IsFixedList(*l) && l->maxlength < 1) return false;
    return IsHeldInFile(*l) || std::int64_t{l->count} * ElementSize(*l) <= l->size;
}

bool AcceptList(const ListDescriptor* l) {
    if (!IsList(l)) return RefuseList(ERR_LIST_TYPE);
    return !IsHeldInFile(*l) || RefuseList(ERR_FILE_NOT_OPEN);
}

bool AcceptStringList(const ListDescriptor* l) {
    if (!AcceptList(l)) return false;
    return IsUntyped(*l) || l->tag == KindString || RefuseList(ERR_LIST_TYPE);
}

bool AcceptElement(const ListDescriptor& l, const void* v, Kind kind) {
    if (!AcceptValue(v, kind)) return false;
    const bool fits = IsUntyped(l) || ElementKindOf(l) == kind;
    return (fits && (!IsAdtKind(kind) || KindOf(v) == kind)) || RefuseList(ERR_COMPONENT_TYPE);
}

namespace {

// The bytes of one element of any kind.
struct Element {
    char bytes[sizeof(ArrayDescriptor)];
};
static_assert(sizeof(Element) >= sizeof(SetDescriptor) && sizeof(Element) >= sizeof(RecordDescriptor));

std::size_t bytesOf(std::int32_t elements, Kind kind) {
    return static_cast<std::size_t>(elements) * static_cast<std::size_t>(KindSize[kind]);
}

// All that have a shape, those behind `count` too.
std::int32_t slotsOf(const ListDescriptor& l) {
    return IsUntyped(l) || IsHeldInFile(l) ? 0 : l.size / ElementSize(l);
}

const ListDescriptor& listAt(const void* value) {
    return *static_cast<const ListDescriptor*>(value);
}

bool holds(const ListDescriptor& l, std::int32_t position) {
    return (position >= 1 && position <= l.count) || RefuseList(ERR_LIST_BOUNDS);
}

bool hasRoom(const ListDescriptor& l) {
    return !IsFixedList(l) || l.count < l.maxlength || RefuseList(ERR_FIXED_LIST);
}

// ---- elements beside the list ----

bool makeElement(char* element, const void* like, const void* v, Kind kind) {
    if (!InitValue(element, like, kind)) return false;
    if (CopyValue(v, element, kind)) return true;
    FreeValue(element, kind);
    return false;
}

// Puts what `makeElement` made into a slot that holds another.
void replaceElement(char* slot, const char* element, Kind kind) {
    FreeValue(slot, kind);
    std::memcpy(slot, element, bytesOf(1, kind));
}

void freeElements(char* slots, std::int32_t count, Kind kind) {
    if (!IsAdtKind(kind)) return;
    for (std::int32_t i = 0; i < count; ++i) FreeValue(slots + bytesOf(i, kind), kind);
}

// ---- life ----

void freeList(void* value) {
    auto& l = *static_cast<ListDescriptor*>(value);
    const Kind kind = ElementKindOf(l);
    const bool ownsPrototype = l.prototype != l.data;
    if (l.data != 0) freeElements(At(l.data), slotsOf(l), kind);
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
        if (InitValue(slots + bytesOf(i, kind), prototype, kind)) continue;
        freeElements(slots, i, kind);
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

// An empty list; all zero when memory is short.
bool shapeList(ListDescriptor& l, std::int32_t maxlength, const void* prototype, Kind kind, bool inFile) {
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

bool initList(void* target, const void* like) {
    const ListDescriptor from = listAt(like);
    ListDescriptor made{};
    const bool good =
        shapeList(made, from.maxlength, At(from.prototype), ElementKindOf(from), IsHeldInFile(from));
    std::memcpy(target, &made, sizeof made);
    return good;
}

// ---- copying ----

// Copies of all elements in a block of their own, each of the shape of `like`; 0 for no elements. Nothing
// stays allocated on failure.
bool copyElements(const ListDescriptor& from, const void* like, Offset& block) {
    const Kind kind = ElementKindOf(from);
    const auto size = static_cast<std::int32_t>(bytesOf(from.count, kind));
    block = 0;
    if (size == 0) return true;
    Allocate(block, size);
    if (block == 0) return false;
    if (!IsAdtKind(kind)) {
        std::memcpy(At(block), At(from.data), static_cast<std::size_t>(size));
        return true;
    }
    for (std::int32_t i = 0; i < from.count; ++i) {
        if (makeElement(At(block) + bytesOf(i, kind), like, SlotAt(from, i), kind)) continue;
        freeElements(At(block), i, kind);
        Free(block, size);
        return false;
    }
    return true;
}

// Takes over the copies in `block`, which is freed if the list has a block that stays.
void takeElements(ListDescriptor& to, Offset block, std::int32_t count) {
    const Kind kind = ElementKindOf(to);
    const auto size = static_cast<std::int32_t>(bytesOf(count, kind));
    if (!IsFixedList(to)) {
        if (to.data != 0) freeElements(At(to.data), slotsOf(to), kind);
        FreeData(to);
        to.data = block;
        to.size = size;
    } else if (count != 0) {
        freeElements(At(to.data), count, kind);
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

bool copyList(const void* source, void* target) {
    const ListDescriptor& from = listAt(source);
    auto& to = *static_cast<ListDescriptor*>(target);
    if (!AcceptList(&from)) return false;
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
        ListClear(&to);
        return true;
    }
    if (!IsUntyped(to) && to.tag != from.tag) return RefuseList(ERR_COMPONENT_TYPE);
    if (IsFixedList(to) && from.count > to.maxlength) return RefuseList(ERR_FIXED_LIST);
    return copyInto(from, to);
}

// ---- comparing and checking ----

bool equalLists(const void* a, const void* b) {
    const ListDescriptor &left = listAt(a), &right = listAt(b);
    if (!AcceptList(&left) || !AcceptList(&right) || left.count != right.count) return false;
    if (left.count != 0 && left.tag != right.tag) return false;
    for (std::int32_t i = 0; i < left.count; ++i) {
        if (!EqualValues(SlotAt(left, i), SlotAt(right, i), ElementKindOf(left))) return false;
    }
    return true;
}

bool sameListShape(const void* a, const void* b) {
    const ListDescriptor &left = listAt(a), &right = listAt(b);
    if (left.maxlength != right.maxlength || left.tag != right.tag) return false;
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

std::string checkList(const void* value) {
    const ListDescriptor& l = listAt(value);
    std::string wrong = checkWords(l);
    if (!wrong.empty()) return wrong;
    const Kind kind = ElementKindOf(l);
    if (l.prototype != 0) wrong = CheckValue(At(l.prototype), kind);
    if (!wrong.empty()) return "list prototype: " + wrong;
    for (std::int32_t i = 0; IsAdtKind(kind) && i < slotsOf(l); ++i) {
        wrong = KindOf(SlotAt(l, i)) == kind ? CheckValue(SlotAt(l, i), kind) : "no shape";
        if (!wrong.empty()) return "list element " + std::to_string(i + 1) + ": " + wrong;
    }
    return {};
}

// ---- growing and shrinking ----

// Opens a slot at `index` and moves the element in, or frees it when memory is short. The list has room and
// is not untyped.
void insertElement(ListDescriptor& l, std::int32_t index, char* element) {
    const Kind kind = ElementKindOf(l);
    if (!IsFixedList(l) && !ResizeData(l, static_cast<std::int32_t>(bytesOf(l.count + 1, kind)))) {
        FreeValue(element, kind);
        return;
    }
    if (IsFixedList(l)) FreeValue(SlotAt(l, l.count), kind);
    char* slot = SlotAt(l, index);
    std::memmove(slot + bytesOf(1, kind), slot, bytesOf(l.count - index, kind));
    std::memcpy(slot, element, bytesOf(1, kind));
    ++l.count;
}

// The first element of an untyped list, which takes its kind and shape.
void appendFirst(ListDescriptor& l, const void* v, Kind kind) {
    ListDescriptor made{};
    if (!shapeList(made, UNBOUNDED, v, kind, false)) return;
    Element element;
    if (makeElement(element.bytes, v, v, kind)) insertElement(made, 0, element.bytes);
    if (made.count == 1)
        l = made;
    else
        freeList(&made);
}

// At `index` from 0 to `count`; the value is one that the list accepts.
void insertCopy(ListDescriptor& l, std::int32_t index, const void* v, Kind kind) {
    if (!hasRoom(l)) return;
    if (IsUntyped(l)) return appendFirst(l, v, kind);
    Element element;
    if (makeElement(element.bytes, At(l.prototype), v, kind)) insertElement(l, index, element.bytes);
}

// Removes elements that are there. A fixed list keeps what it needs for later elements: the slots.
void removeElements(ListDescriptor& l, std::int32_t index, std::int32_t n) {
    const Kind kind = ElementKindOf(l);
    char *gap = SlotAt(l, index), *behind = SlotAt(l, index + n), *end = SlotAt(l, l.count);
    l.count -= n;
    if (IsFixedList(l) && IsAdtKind(kind)) {
        std::rotate(gap, behind, end);
        return;
    }
    freeElements(gap, n, kind);
    std::memmove(gap, behind, static_cast<std::size_t>(end - behind));
    if (IsFixedList(l)) return;
    std::memset(SlotAt(l, l.count), 0, bytesOf(n, kind));
    ResizeData(l, static_cast<std::int32_t>(bytesOf(l.count, kind)));
}

bool acceptInit(std::int32_t maxlength, const void* prototype, Kind kind, bool inFile) {
    if (kind == KindNone) return prototype == nullptr && maxlength == UNBOUNDED && !inFile;
    if (!IsValueKind(kind) || (maxlength != UNBOUNDED && maxlength < 1)) return false;
    return IsAdtKind(kind) ? IsWellFormed(prototype) && KindOf(prototype) == kind : prototype == nullptr;
}

// An empty value that is all zero takes the shape of what is read.
bool acceptOutput(const ListDescriptor& l, const void* v, Kind kind) {
    static constexpr Element zero{};
    const bool shapeless = v != nullptr && kind > KindString && IsValueKind(kind) &&
                           std::memcmp(v, zero.bytes, bytesOf(1, kind)) == 0;
    if (!shapeless) return AcceptElement(l, v, kind);
    return IsUntyped(l) || ElementKindOf(l) == kind || RefuseList(ERR_COMPONENT_TYPE);
}

}  // namespace

const KindOperations ListOperations = {initList, copyList, freeList, equalLists, sameListShape, checkList};

// ---- life ----

void ListInit(ListDescriptor* l, std::int32_t maxlength, const void* prototype, Kind kind, bool inFile) {
    if (l == nullptr) return SetError(ERR_LIST_TYPE);
    ListDescriptor made{};  // the prototype may be the list itself
    if (acceptInit(maxlength, prototype, kind, inFile))
        shapeList(made, maxlength, prototype, kind, inFile);
    else
        SetError(ERR_LIST_TYPE);
    *l = made;
}

void ListClear(ListDescriptor* l) {
    if (!AcceptList(l)) return;
    if (!IsFixedList(*l)) {
        if (l->data != 0) freeElements(At(l->data), slotsOf(*l), ElementKindOf(*l));
        FreeData(*l);
    }
    l->count = 0;
}

// ---- looking ----

std::int32_t ListCount(const ListDescriptor* l) {
    return AcceptList(l) ? l->count : 0;
}

Kind ListElementKind(const ListDescriptor* l) {
    if (IsList(l)) return ElementKindOf(*l);
    SetError(ERR_LIST_TYPE);
    return KindNone;
}

bool ListIsInFile(const ListDescriptor* l) {
    return IsList(l) ? IsHeldInFile(*l) : RefuseList(ERR_LIST_TYPE);
}

const void* ListRef(const ListDescriptor* l, std::int32_t position) {
    return AcceptList(l) && holds(*l, position) ? SlotAt(*l, position - 1) : nullptr;
}

void* ListRef(ListDescriptor* l, std::int32_t position) {
    return const_cast<void*>(ListRef(const_cast<const ListDescriptor*>(l), position));
}

// ---- elements ----

void ListGet(const ListDescriptor* l, std::int32_t position, void* v, Kind kind) {
    const bool good = AcceptList(l) && acceptOutput(*l, v, kind) && holds(*l, position) &&
                      CopyValue(SlotAt(*l, position - 1), v, kind);
    if (!good) ClearOutput(v, kind);
}

void ListPut(const void* v, Kind kind, std::int32_t position, ListDescriptor* l) {
    if (!AcceptList(l) || !AcceptElement(*l, v, kind) || !holds(*l, position)) return;
    char* slot = SlotAt(*l, position - 1);
    Element element;
    if (makeElement(element.bytes, slot, v, kind)) replaceElement(slot, element.bytes, kind);
}

void ListAppend(const void* v, Kind kind, ListDescriptor* l) {
    if (AcceptList(l) && AcceptElement(*l, v, kind)) insertCopy(*l, l->count, v, kind);
}

void ListInsert(std::int32_t position, const StringDescriptor* v, ListDescriptor* l) {
    if (!AcceptStringList(l) || !AcceptElement(*l, v, KindString)) return;
    if (position != l->count + 1 && !holds(*l, position)) return;
    insertCopy(*l, position - 1, v, KindString);
}

void ListDelete(std::int32_t position, std::int32_t n, ListDescriptor* l) {
    if (!AcceptList(l) || !holds(*l, position) || n < 1) return;
    removeElements(*l, position - 1, std::min(n, l->count - position + 1));
}

void ListRemoveLast(ListDescriptor* l) {
    if (AcceptList(l) && holds(*l, l->count)) removeElements(*l, l->count - 1, 1);
}

void ListResize(std::int32_t, const void*, ListDescriptor* l) {
    if (AcceptList(l)) SetError(ERR_LIST_TYPE);
}

}  // namespace tarn
