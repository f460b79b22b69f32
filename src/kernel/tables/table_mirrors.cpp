// SPDX-License-Identifier: Apache-2.0
#include "kernel/tables/table_mirrors.h"

#include "kernel/run/errorcell.h"
#include "kernel/values/heap.h"

#include <algorithm>
#include <cstring>

namespace tarn {

// A block of the heap.
struct TableMirrors {
    Offset header;               // of the table: tells this block from a word that names nothing
    std::int32_t operations;     // since a mirror was last made or looked for in vain
    std::uint64_t plainChanges;  // PlainTreeChanges when they were last true
    IndexMirror indexes[MaxIndexes];
};

namespace {

constexpr std::int32_t leastRows = 32;         // a smaller tree is in the processor's cache
constexpr std::int32_t rowsOfAnOperation = 8;  // how many rows are mirrored for each operation without

TableMirrors* mirrorsOf(const TableHeader& header) {
    const auto at = static_cast<Offset>(header.typeInfo.reserved);
    if (at == 0) return nullptr;
    auto* const mirrors = reinterpret_cast<TableMirrors*>(At(at));
    return OffsetOf(mirrors) != 0 && mirrors->header == OffsetOf(&header) ? mirrors : nullptr;
}

TableMirrors* makeBlock(TableHeader& header) {
    const ErrorCellAside aside;
    Offset block = 0;
    Allocate(block, sizeof(TableMirrors));
    if (block == 0) return nullptr;
    auto* const mirrors = reinterpret_cast<TableMirrors*>(At(block));
    *mirrors = {OffsetOf(&header), 0, PlainTreeChanges, {}};
    header.typeInfo.reserved = static_cast<std::int32_t>(block);
    return mirrors;
}

void dropAll(TableMirrors& mirrors) {
    for (IndexMirror& mirror : mirrors.indexes) DropMirror(mirror);
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
                          FillMirror({&header.roots[i], &mirror});
        if (!made) DropMirror(mirror);
    }
}

TableMirrors* readyMirrors(TableHeader& header, std::int32_t mostRow, bool atOnce) {
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
        dropAll(*mirrors);
        mirrors->plainChanges = PlainTreeChanges;
    }
    complete(*mirrors, header, mostRow, atOnce);
    for (IndexMirror& mirror : mirrors->indexes) {
        if (mirror.entries != 0 && !ReserveMirror(mirror, mostRow)) DropMirror(mirror);
    }
    return mirrors;
}

}  // namespace

TableTrees::TableTrees(TableHeader& header, std::int32_t mostRow, bool atOnce)
    : header_(header), mirrors_(readyMirrors(header, mostRow, atOnce)) {}

IndexTree TableTrees::at(std::int32_t index) const {
    IndexMirror* const mirror = mirrors_ != nullptr ? &mirrors_->indexes[index] : nullptr;
    return {&header_.roots[index], mirror != nullptr && mirror->entries != 0 ? mirror : nullptr};
}

void TableTrees::makeWayFor(std::int32_t index, std::int32_t row) {
    const IndexTree tree = at(index);
    if (tree.mirror != nullptr && MirrorHas(*tree.mirror, row)) DropMirror(*tree.mirror);
}

// Of the row that comes next the content: its descriptor was asked for a step before.
void TableTrees::prefetchWalk(std::int32_t index) const {
    if (mirrors_ == nullptr) return;
    const TreeWalk& walk = mirrors_->indexes[index].walk;
    const auto numberOf = [&](std::int32_t i) {
        const auto number = i < walk.count ? static_cast<std::int32_t>(walk.rows[i]) : 0;
        return HasRow(header_, number) ? number : 0;
    };
    if (const std::int32_t number = numberOf(3); number != 0) __builtin_prefetch(&RowAt(header_, number));
    if (const std::int32_t number = numberOf(1); number != 0)
        __builtin_prefetch(tarn_heap_base + RowAt(header_, number).data);
}

void FreeTableTrees(TableHeader& header) {
    TableMirrors* const mirrors = mirrorsOf(header);
    const bool areTrue = mirrors != nullptr && mirrors->plainChanges == PlainTreeChanges;
    IndexTree trees[MaxIndexes];
    for (std::int32_t i = 0; i < MaxIndexes; ++i) {
        const bool mirrored = areTrue && mirrors->indexes[i].entries != 0;
        trees[i] = {&header.roots[i], mirrored ? &mirrors->indexes[i] : nullptr};
    }
    FreeTrees(trees, MaxIndexes);
    DropTableMirrors(header);
}

void DropTableMirrors(TableHeader& header) {
    TableMirrors* const mirrors = mirrorsOf(header);
    auto block = static_cast<Offset>(header.typeInfo.reserved);
    header.typeInfo.reserved = 0;
    if (mirrors == nullptr) return;
    dropAll(*mirrors);
    Free(block, sizeof(TableMirrors));
}

bool IsMirrored(const TableHeader& header, std::int32_t index) {
    const TableMirrors* const mirrors = mirrorsOf(header);
    return mirrors != nullptr && mirrors->plainChanges == PlainTreeChanges &&
           mirrors->indexes[index].entries != 0;
}

std::string CheckTableMirrors(TableHeader& header) {
    TableMirrors* const mirrors = mirrorsOf(header);
    if (mirrors == nullptr || mirrors->plainChanges != PlainTreeChanges) return {};
    for (std::int32_t i = 0; i < MaxIndexes; ++i) {
        if (mirrors->indexes[i].entries == 0) continue;
        const std::string wrong = CheckMirror({&header.roots[i], &mirrors->indexes[i]});
        if (!wrong.empty()) return "table index " + std::to_string(i + 1) + ": " + wrong;
    }
    return {};
}

}  // namespace tarn
