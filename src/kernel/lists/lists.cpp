// SPDX-License-Identifier: Apache-2.0
//
// An element is made complete beside the list (shaped, copied) and then moved into its slot byte by byte, as
// all that is below a descriptor stays where it is. So the value may stand in the list, whose block may move
// meanwhile, and a lack of memory is found before the list has changed.
//
// All slots of a block hold shaped elements, those behind `count` in a fixed list too; a slot there may still
// have the content of a deleted element, which goes when the slot is used again. Removing never needs memory,
// save where the heap has none for the smaller block: the spare slots are then zero until the next change.
#include "kernel/lists/lists.h"

#include "kernel/lists/list_access.h"
#include "kernel/lists/list_quick.h"
#include "kernel/lists/rowformat.h"
#include "kernel/values/adt_kinds.h"

#include <algorithm>
#include <cstring>

namespace tarn {

namespace {

bool holds(const ListDescriptor& l, std::int32_t position) {
    return (position >= 1 && position <= l.count) || Refuse(ERR_LIST_BOUNDS);
}

bool hasRoomFor(const ListDescriptor& l, std::int32_t count) {
    return !IsFixedList(l) || count <= l.maxlength || Refuse(ERR_FIXED_LIST);
}
bool hasRoom(const ListDescriptor& l) {
    return !IsFixedList(l) || l.count < l.maxlength || Refuse(ERR_FIXED_LIST);
}

// Puts what `MakeElement` made into a slot that holds another.
void replaceElement(char* slot, const char* element, Kind kind) {
    FreeValue(slot, kind);
    std::memcpy(slot, element, ElementBytes(1, kind));
}

// ---- growing and shrinking ----

// Opens a slot at `index` and moves the element in, or frees it when memory is short. The list has room and
// is not untyped.
void insertElement(ListDescriptor& l, std::int32_t index, char* element) {
    const Kind kind = ElementKindOf(l);
    if (!IsFixedList(l) && !ResizeData(l, static_cast<std::int32_t>(ElementBytes(l.count + 1, kind)))) {
        FreeValue(element, kind);
        return;
    }
    if (IsFixedList(l)) FreeValue(SlotAt(l, l.count), kind);
    char* slot = SlotAt(l, index);
    std::memmove(slot + ElementBytes(1, kind), slot, ElementBytes(l.count - index, kind));
    std::memcpy(slot, element, ElementBytes(1, kind));
    ++l.count;
}

// The first element of an untyped list, which takes its kind and shape.
void appendFirst(ListDescriptor& l, const void* v, Kind kind) {
    ListDescriptor made{};
    if (!ShapeList(made, UNBOUNDED, v, kind, false)) return;
    Element element;
    if (MakeElement(element.bytes, v, v, kind)) insertElement(made, 0, element.bytes);
    if (made.count == 1)
        l = made;
    else
        FreeValue(&made, KindList);
}

// At `index` from 0 to `count`; the value is one that the list accepts.
void insertCopy(ListDescriptor& l, std::int32_t index, const void* v, Kind kind) {
    if (!hasRoom(l)) return;
    if (IsUntyped(l)) return appendFirst(l, v, kind);
    Element element;
    if (MakeElement(element.bytes, At(l.prototype), v, kind)) insertElement(l, index, element.bytes);
}

// A number behind others, in the block that they stand in: what most appends are. False, with nothing changed, for
// the rest.
bool appendQuickly(const void* v, Kind kind, ListDescriptor* l) {
    if (l == nullptr || v == nullptr || l->tag != kind || kind < KindBoolean || kind > KindReal) return false;
    if (!HasRoomBehind(*l, kind)) return false;
    CopyNumber(v, TakeRoomBehind(*l, kind), kind);
    return true;
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
    FreeElements(gap, n, kind);
    std::memmove(gap, behind, static_cast<std::size_t>(end - behind));
    if (IsFixedList(l)) return;
    std::memset(SlotAt(l, l.count), 0, ElementBytes(n, kind));
    ResizeData(l, static_cast<std::int32_t>(ElementBytes(l.count, kind)));
}

bool acceptInit(std::int32_t maxlength, const void* prototype, Kind kind, bool inFile) {
    if (kind == KindNone) return prototype == nullptr && maxlength == UNBOUNDED && !inFile;
    if (!IsValueKind(kind) || (maxlength != UNBOUNDED && maxlength < 1)) return false;
    return !IsAdtKind(kind) || (IsWellFormed(prototype) && KindOf(prototype) == kind);
}

// An empty value that is all zero takes the shape of what is read.
bool acceptOutput(const ListDescriptor& l, const void* v, Kind kind) {
    static constexpr Element zero{};
    const bool shapeless = v != nullptr && kind > KindString && IsValueKind(kind) &&
                           std::memcmp(v, zero.bytes, ElementBytes(1, kind)) == 0;
    if (!shapeless) return AcceptElement(l, v, kind);
    return IsUntyped(l) || ElementKindOf(l) == kind || Refuse(ERR_COMPONENT_TYPE);
}

// From a file. An output of the list's shape takes the row as it stands.
bool readElement(const ListDescriptor& l, std::int32_t position, void* v, Kind kind) {
    const void* const like = At(l.prototype);
    const bool shapeless = kind > KindString && IsZeroValue(v, kind);
    if (!IsAdtKind(kind) || (!shapeless && SameShape(v, like, kind))) return ReadRow(l, position, v);
    ElementBeside element(like, kind);
    if (!element.good() || !ReadRow(l, position, element.at())) return false;
    if (!shapeless) return CopyValue(element.at(), v, kind);
    element.moveTo(v);
    return true;
}

// From a file. The rows that stay are written beside it and take its place at once, so that the old rows or
// the new ones are there whatever happens; a stretch at the end is cut off.
bool deleteRows(ListDescriptor& l, std::int32_t index, std::int32_t n) {
    if (index + n == l.count) return n == 1 ? RemoveLastRow(l) : ResizeRows(l, index, nullptr);
    return WithMemory([&] {
        RowsBeside beside(l);
        if (!AcceptRows(l) || !beside.make()) return false;
        ListReader rows(l);
        const std::int32_t count = l.count;
        for (std::int32_t i = 0; i < count; ++i) {
            if (i >= index && i - index < n) continue;
            const void* const row = rows.at(i);
            if (row == nullptr || !AppendRow(beside.rows(), row)) return false;
        }
        return beside.takePlace();
    });
}

[[gnu::noinline]] void appendAny(const void* v, Kind kind, ListDescriptor* l) {
    if (!AcceptList(l) || !AcceptElement(*l, v, kind)) return;
    if (!IsHeldInFile(*l)) return insertCopy(*l, l->count, v, kind);
    if (!hasRoom(*l)) return;
    const ShapedElement shaped(*l, v, kind);
    if (shaped.good()) AppendRow(*l, shaped.at());
}

}  // namespace

bool AppendElement(ListDescriptor& l, char* element) {
    const std::int32_t count = l.count;
    insertElement(l, count, element);
    return l.count > count;
}

// ---- life ----

void ListInit(ListDescriptor* l, std::int32_t maxlength, const void* prototype, Kind kind, bool inFile) {
    if (l == nullptr) return SetError(ERR_LIST_TYPE);
    ListDescriptor made{};  // the prototype may be the list itself
    if (acceptInit(maxlength, prototype, kind, inFile))
        ShapeList(made, maxlength, prototype, kind, inFile);
    else
        SetError(ERR_LIST_TYPE);
    *l = made;
}

void ListClear(ListDescriptor* l) {
    if (!AcceptList(l)) return;
    if (IsHeldInFile(*l))
        ClearRows(*l);
    else
        EmptyList(*l);
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
    return IsList(l) ? IsHeldInFile(*l) : Refuse(ERR_LIST_TYPE);
}

const void* ListRef(const ListDescriptor* l, std::int32_t position) {
    return AcceptListInMemory(l) && holds(*l, position) ? SlotAt(*l, position - 1) : nullptr;
}

void* ListRef(ListDescriptor* l, std::int32_t position) {
    return const_cast<void*>(ListRef(const_cast<const ListDescriptor*>(l), position));
}

// ---- elements ----

void ListGet(const ListDescriptor* l, std::int32_t position, void* v, Kind kind) {
    const bool good = AcceptList(l) && acceptOutput(*l, v, kind) && holds(*l, position) &&
                      (IsHeldInFile(*l) ? readElement(*l, position, v, kind)
                                        : CopyValue(SlotAt(*l, position - 1), v, kind));
    if (!good) ClearOutput(v, kind);
}

void ListPut(const void* v, Kind kind, std::int32_t position, ListDescriptor* l) {
    if (!AcceptList(l) || !AcceptElement(*l, v, kind) || !holds(*l, position)) return;
    if (IsHeldInFile(*l)) {
        const ShapedElement shaped(*l, v, kind);
        if (shaped.good()) ReplaceRow(*l, position, shaped.at());
        return;
    }
    char* slot = SlotAt(*l, position - 1);
    Element element;
    if (MakeElement(element.bytes, slot, v, kind)) replaceElement(slot, element.bytes, kind);
}

void ListAppend(const void* v, Kind kind, ListDescriptor* l) {
    if (!appendQuickly(v, kind, l)) appendAny(v, kind, l);
}

void* ListAppendEmpty(ListDescriptor* l) {
    if (!AcceptListInMemory(l) || (IsUntyped(*l) && !Refuse(ERR_LIST_TYPE)) || !hasRoom(*l)) return nullptr;
    const std::int32_t count = l->count;
    Element element;
    if (!InitValue(element.bytes, At(l->prototype), ElementKindOf(*l))) return nullptr;
    insertElement(*l, count, element.bytes);
    return l->count > count ? SlotAt(*l, count) : nullptr;
}

void ListInsert(std::int32_t position, const StringDescriptor* v, ListDescriptor* l) {
    if (!AcceptListInMemory(l) || !AcceptStringList(l) || !AcceptElement(*l, v, KindString)) return;
    if (position != l->count + 1 && !holds(*l, position)) return;
    insertCopy(*l, position - 1, v, KindString);
}

void ListDelete(std::int32_t position, std::int32_t n, ListDescriptor* l) {
    if (!AcceptList(l) || !holds(*l, position) || n < 1) return;
    n = std::min(n, l->count - position + 1);
    if (IsHeldInFile(*l))
        deleteRows(*l, position - 1, n);
    else
        removeElements(*l, position - 1, n);
}

void ListRemoveLast(ListDescriptor* l) {
    if (!AcceptList(l) || !holds(*l, l->count)) return;
    if (IsHeldInFile(*l))
        RemoveLastRow(*l);
    else
        removeElements(*l, l->count - 1, 1);
}

void ListResize(std::int32_t n, const void* fill, ListDescriptor* l) {
    if (!AcceptList(l)) return;
    if (!IsHeldInFile(*l)) return SetError(ERR_LIST_TYPE);
    const Kind kind = ElementKindOf(*l);
    if (n <= l->count) {
        ResizeRows(*l, n, nullptr);
    } else if (AcceptElement(*l, fill, kind) && hasRoomFor(*l, n)) {
        const ShapedElement shaped(*l, fill, kind);
        if (shaped.good()) ResizeRows(*l, n, shaped.at());
    }
}

}  // namespace tarn
