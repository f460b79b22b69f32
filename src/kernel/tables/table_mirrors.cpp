// SPDX-License-Identifier: Apache-2.0
#include "kernel/tables/table_mirrors.h"

#include "kernel/lists/list_quick.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/fewbytes.h"
#include "kernel/values/heap_look.h"
#include "kernel/values/heap_quick.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace tarn {

// A block of the heap.
struct TableMirrors {
    Offset header;               // of the table: tells this block from a word that names nothing
    std::int32_t operations;     // since a mirror was last made or looked for in vain
    std::uint64_t plainChanges;  // PlainTreeChanges when they were last true
    bool numbers;                // the rows hold nothing else
    IndexMirror indexes[MaxIndexes];
};

namespace {

constexpr std::int32_t leastRows = 32;         // a smaller tree is in the processor's cache
constexpr std::int32_t rowsOfAnOperation = 8;  // how many rows are mirrored for each operation without

constexpr Offset wasAskedFor = 1;  // in the word that names the block

bool isAskedFor(const TableHeader& header) {
    return (static_cast<Offset>(header.typeInfo.reserved) & wasAskedFor) != 0;
}

void nameBlock(TableHeader& header, Offset block) {
    const auto kept = static_cast<Offset>(header.typeInfo.reserved) & wasAskedFor;
    header.typeInfo.reserved = static_cast<std::int32_t>(block | kept);
}

// A header stands in the heap, whatever else is wrong with it.
Offset placeOf(const TableHeader& header) {
    return static_cast<Offset>(reinterpret_cast<const char*>(&header) - tarn_heap_base);
}

TableMirrors* mirrorsOf(const TableHeader& header) {
    constexpr Offset blockStep = 16;
    const Offset at = static_cast<Offset>(header.typeInfo.reserved) & ~wasAskedFor;
    if (at == 0 || at % blockStep != 0 || std::uint64_t{at} + sizeof(TableMirrors) > HeapTop) return nullptr;
    // What programs have written there may name a block that was freed.
    const bool own = LookAt<Offset>(at + offsetof(TableMirrors, header)) == placeOf(header);
    return own ? reinterpret_cast<TableMirrors*>(At(at)) : nullptr;
}

TableMirrors* makeBlock(TableHeader& header) {
    const ErrorCellAside aside;
    Offset block = 0;
    Allocate(block, sizeof(TableMirrors));
    if (block == 0) return nullptr;
    auto* const mirrors = reinterpret_cast<TableMirrors*>(At(block));
    *mirrors = {placeOf(header), 0, PlainTreeChanges, HoldsNumbersOnly(RowShape(header).kinds), {}};
    nameBlock(header, block);
    return mirrors;
}

// All that lose nothing with their mirror.
void dropMirrors(TableMirrors& mirrors) {
    for (IndexMirror& mirror : mirrors.indexes) {
        if (mirror.nodeless == 0) DropMirror(mirror);
    }
}

KeyView keyShape(const TableHeader& header, std::int32_t index) {
    KeyView shape;
    KeyOfRow(RowShape(header), header.keyMaps[index], shape);
    return shape;
}

IndexTree treeOf(TableHeader& header, TableMirrors& mirrors, std::int32_t index) {
    return {&header.roots[index], &mirrors.indexes[index], &header.rows};
}

bool isMirrored(const TableMirrors& mirrors, std::int32_t indexes) {
    return std::all_of(mirrors.indexes, mirrors.indexes + indexes,
                       [](const IndexMirror& mirror) { return mirror.entries != 0; });
}

// What is missing, when the time has come.
void complete(TableMirrors& mirrors, TableHeader& header, std::int32_t mostRow, bool atOnce) {
    const std::int32_t indexes = IndexesOf(header);
    if (isMirrored(mirrors, indexes)) return;
    if (++mirrors.operations < header.rows.count / rowsOfAnOperation && !atOnce) return;
    mirrors.operations = 0;
    for (std::int32_t i = 0; i < indexes; ++i) {
        IndexMirror& mirror = mirrors.indexes[i];
        if (mirror.entries != 0) continue;
        const bool made = ReserveMirror(mirror, std::max(mostRow, header.rows.count)) &&
                          FillMirror(treeOf(header, mirrors, i));
        if (!made) {
            DropMirror(mirror);
            continue;
        }
        const KeyView shape = keyShape(header, i);
        mirror.integers = shape.count == 1 && shape.parts[0].kind == KindInteger ? 1 : 0;
        mirror.keyAt = static_cast<std::int32_t>(shape.parts[0].at - At(RowShape(header).data));
        if (!isAskedFor(header)) DropNodes(treeOf(header, mirrors, i), shape);
    }
}

// `good` becomes false, with 802 set, when a mirror that the table cannot do without has no room for the row.
TableMirrors* readyMirrors(TableHeader& header, std::int32_t mostRow, bool atOnce, bool& good) {
    TableMirrors* mirrors = mirrorsOf(header);
    if (mirrors == nullptr) {
        if (header.rows.count < leastRows || MemoryChecking()) return nullptr;
        mirrors = makeBlock(header);
        if (mirrors == nullptr) return nullptr;
    }
    const std::int32_t indexes = IndexesOf(header);
    const bool current = mirrors->plainChanges == PlainTreeChanges;
    const auto reaches = [=](const IndexMirror& mirror) { return mirror.entryCount > mostRow; };
    if (current && std::all_of(mirrors->indexes, mirrors->indexes + indexes, reaches)) return mirrors;
    if (!current) {
        dropMirrors(*mirrors);
        mirrors->plainChanges = PlainTreeChanges;
    }
    complete(*mirrors, header, mostRow, atOnce);
    for (IndexMirror& mirror : mirrors->indexes) {
        if (mirror.entries == 0 || ReserveMirror(mirror, mostRow)) continue;
        if (mirror.nodeless == 0)
            DropMirror(mirror);
        else
            good = Refuse(ERR_OUT_OF_MEMORY);
    }
    return mirrors;
}

}  // namespace

TableTrees::TableTrees(TableHeader& header, std::int32_t mostRow, bool atOnce)
    : header_(header), mirrors_(readyMirrors(header, mostRow, atOnce, good_)) {}

IndexTree TableTrees::at(std::int32_t index) const {
    IndexMirror* const mirror = mirrors_ != nullptr ? &mirrors_->indexes[index] : nullptr;
    return {&header_.roots[index], mirror != nullptr && mirror->entries != 0 ? mirror : nullptr,
            &header_.rows};
}

bool TableTrees::makeWayFor(std::int32_t index, std::int32_t row) {
    const IndexTree tree = at(index);
    if (tree.mirror == nullptr) return true;
    // Rows that lists have appended behind the table have numbers for which no entry was ever asked.
    if (ReserveMirror(*tree.mirror, row) && !MirrorHas(*tree.mirror, row)) return true;
    if (tree.isNodeless() && !MakeNodes(tree, keyShape(header_, index))) return false;
    DropMirror(*tree.mirror);
    return true;
}

namespace {

// A function that does nothing else is otherwise taken for one that does nothing, and left out.
void fetchSoon(const void* at) {
    __builtin_prefetch(at);
    asm volatile("");
}

// Of the row that comes next the content: its descriptor was asked for some steps before.
constexpr std::uint32_t contentAhead = 1, descriptorAhead = TreeWalk::fewRows - 1;
static_assert(contentAhead < descriptorAhead);
void prefetchRows(const TableHeader& header, const TreeWalk& walk) {
    // What is not known is some number, and fetching what is not there does nothing.
    const Offset ahead =
        header.rows.data + (walk.row(descriptorAhead) - 1) * Offset{sizeof(RecordDescriptor)};
    fetchSoon(tarn_heap_base + ahead);
    const auto number = static_cast<std::int32_t>(walk.row(contentAhead));
    if (HasRow(header, number)) fetchSoon(tarn_heap_base + RowAt(header, number).data);
}

}  // namespace

void TableTrees::prefetchWalk(std::int32_t index) const {
    if (mirrors_ != nullptr) prefetchRows(header_, mirrors_->indexes[index].walk);
}

// ---- the shortest way ----

namespace {

bool isLike(const RecordDescriptor* record, std::int32_t size, const FieldKinds& kinds) {
    return record != nullptr && record->tag == TagRecord && record->size == size && record->data != 0 &&
           std::memcmp(&record->kinds, &kinds, sizeof kinds) == 0;
}

// The mirror that a search can go to at once; null: there is none, or its arguments need a look.
IndexMirror* quickMirror(TableHeader& header, std::int32_t indexNumber, const RecordDescriptor* key,
                         const RecordDescriptor* row) {
    static constexpr FieldKinds oneInteger = {{KindInteger << 4}};
    TableMirrors* const mirrors = mirrorsOf(header);
    if (mirrors == nullptr || !mirrors->numbers || indexNumber < 1 || indexNumber > MaxIndexes)
        return nullptr;
    IndexMirror& mirror = mirrors->indexes[indexNumber - 1];
    if (mirror.integers == 0 || (mirror.nodeless == 0 && mirrors->plainChanges != PlainTreeChanges))
        return nullptr;
    const RecordDescriptor& shape = RowShape(header);
    return isLike(key, KindSize[KindInteger], oneInteger) && isLike(row, shape.size, shape.kinds) ? &mirror
                                                                                                  : nullptr;
}

std::uint64_t headOf(const RecordDescriptor& record, std::int32_t at) {
    return HeadOfInteger(ReadAt<std::int32_t>(tarn_heap_base + record.data + at));
}

bool copyNumbers(const TableHeader& header, std::uint32_t number, RecordDescriptor& row) {
    if (!HasRow(header, static_cast<std::int32_t>(number))) return false;
    const RecordDescriptor& from = RowAt(header, static_cast<std::int32_t>(number));
    if (from.size != row.size || from.data == 0) return false;
    MoveBytes(tarn_heap_base + row.data, tarn_heap_base + from.data, static_cast<std::size_t>(row.size));
    return true;
}

}  // namespace

bool ReadQuickly(TableHeader& header, std::int32_t indexNumber, const RecordDescriptor* key,
                 RecordDescriptor* row) {
    IndexMirror* const mirror = quickMirror(header, indexNumber, key, row);
    if (mirror == nullptr) return false;
    const IndexTree tree{&header.roots[indexNumber - 1], mirror, &header.rows};
    return copyNumbers(header, FollowShortcut(tree, headOf(*key, 0)), *row);
}

bool ReadNextQuickly(TableHeader& header, std::int32_t indexNumber, const RecordDescriptor* key,
                     RecordDescriptor* row) {
    IndexMirror* const mirror = quickMirror(header, indexNumber, key, row);
    if (mirror == nullptr || mirror->walk.known == 0) return false;
    const MirrorView tree(*mirror);
    const std::uint64_t head = headOf(*key, 0);
    std::uint32_t number = StepOnWalk(tree, mirror->walk, head);
    if (number == 0 && !SeekOnWalk(tree, mirror->walk, {0, false, 1}, {{head, true}, nullptr}, number))
        return false;
    prefetchRows(header, mirror->walk);
    return copyNumbers(header, number, *row);
}

namespace {

// Whether a mirror alone holds the tree, and has room for this row, which is none of its.
bool canTake(const IndexMirror& mirror, std::int32_t number) {
    return mirror.integers != 0 && mirror.nodeless != 0 && mirror.entryCount > number &&
           !MirrorHas(mirror, number);
}

// A row of numbers behind the others, in the block of the list; false: 802.
bool appendNumbers(ListDescriptor& rows, const RecordDescriptor& shape, const RecordDescriptor& row) {
    Offset content = 0;
    Allocate(content, shape.size);
    if (content == 0) return false;
    MoveBytes(tarn_heap_base + content, tarn_heap_base + row.data, static_cast<std::size_t>(shape.size));
    // Made where it stands, because a descriptor that is written in parts waits before it can be copied whole.
    auto& made = *reinterpret_cast<RecordDescriptor*>(TakeRoomBehind(rows, KindRecord));
    made = shape;
    made.data = content;
    return true;
}

}  // namespace

bool AddQuickly(TableDescriptor& t, TableHeader& header, std::int32_t indexNumber,
                const RecordDescriptor* row) {
    TableMirrors* const mirrors = mirrorsOf(header);
    const RecordDescriptor& shape = RowShape(header);
    if (mirrors == nullptr || !mirrors->numbers || !isLike(row, shape.size, shape.kinds)) return false;
    ListDescriptor& rows = header.rows;
    const std::int32_t count = IndexesOf(header), number = rows.count + 1;
    if (indexNumber < 1 || indexNumber > count || t.maxlength != UNBOUNDED ||
        !HasRoomBehind(rows, KindRecord))
        return false;
    std::uint64_t heads[MaxIndexes];
    IndexPath paths[MaxIndexes];
    for (std::int32_t i = 0; i < count; ++i) {
        if (!canTake(mirrors->indexes[i], number)) return false;
        heads[i] = headOf(*row, mirrors->indexes[i].keyAt);
    }
    if (!FindPlaces(mirrors->indexes, heads, paths, count)) return false;
    if (!appendNumbers(rows, shape, *row)) return true;
    for (std::int32_t i = 0; i < count; ++i)
        LinkPlace(treeOf(header, *mirrors, i), paths[i], heads[i], number);
    t.count = rows.count;
    return true;
}

void FreeTableTrees(TableHeader& header) {
    TableMirrors* const mirrors = mirrorsOf(header);
    const bool areTrue = mirrors != nullptr && mirrors->plainChanges == PlainTreeChanges;
    IndexTree trees[MaxIndexes];
    for (std::int32_t i = 0; i < MaxIndexes; ++i) {
        const bool mirrored = mirrors != nullptr && mirrors->indexes[i].entries != 0 &&
                              (areTrue || mirrors->indexes[i].nodeless != 0);
        trees[i] = {&header.roots[i], mirrored ? &mirrors->indexes[i] : nullptr};
    }
    FreeTrees(trees, MaxIndexes);
    DropTableMirrors(header);
}

bool DropTableMirrors(TableHeader& header) {
    TableMirrors* const mirrors = mirrorsOf(header);
    for (std::int32_t i = 0; mirrors != nullptr && i < MaxIndexes; ++i) {
        IndexMirror& mirror = mirrors->indexes[i];
        if (mirror.nodeless != 0 && !MakeNodes(treeOf(header, *mirrors, i), keyShape(header, i)))
            return false;
        DropMirror(mirror);
    }
    nameBlock(header, 0);
    if (mirrors == nullptr) return true;
    Offset block = OffsetOf(mirrors);
    Free(block, sizeof(TableMirrors));
    return true;
}

bool IsNodeless(const TableHeader& header, std::int32_t index) {
    const TableMirrors* const mirrors = mirrorsOf(header);
    return mirrors != nullptr && mirrors->indexes[index].nodeless != 0;
}

bool ShowTableTree(TableHeader& header, std::int32_t index) {
    header.typeInfo.reserved |= static_cast<std::int32_t>(wasAskedFor);
    if (!IsNodeless(header, index)) return true;
    return MakeNodes(treeOf(header, *mirrorsOf(header), index), keyShape(header, index));
}

bool HideTableTrees(TableHeader& header) {
    if (!isAskedFor(header)) return false;
    header.typeInfo.reserved &= ~static_cast<std::int32_t>(wasAskedFor);
    return true;
}

bool CopyTableTree(const TableHeader& header, std::int32_t index, RecordDescriptor& root) {
    if (!IsNodeless(header, index)) return CopyTree(header.roots[index], root);
    return CopyNodes(mirrorsOf(header)->indexes[index], keyShape(header, index), root);
}

bool IsMirrored(const TableHeader& header, std::int32_t index) {
    const TableMirrors* const mirrors = mirrorsOf(header);
    return mirrors != nullptr && mirrors->indexes[index].entries != 0 &&
           (mirrors->plainChanges == PlainTreeChanges || mirrors->indexes[index].nodeless != 0);
}

std::string CheckTableMirrors(TableHeader& header) {
    TableMirrors* const mirrors = mirrorsOf(header);
    for (std::int32_t i = 0; mirrors != nullptr && i < MaxIndexes; ++i) {
        if (!IsMirrored(header, i)) continue;
        const std::string wrong = CheckMirror(treeOf(header, *mirrors, i));
        if (!wrong.empty()) return "table index " + std::to_string(i + 1) + ": " + wrong;
    }
    return {};
}

}  // namespace tarn
