// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_mirror.h"

#include "kernel/index/index_shortcuts_internal.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"

#include <algorithm>
#include <cstring>

namespace tarn {

namespace {

using Ref = MirrorView::Ref;

bool damaged() {
    SetError(ERR_INDEX_TYPE);
    return false;
}

// ---- blocks ----

constexpr std::int32_t entryBytes = sizeof(MirrorEntry);

// The heap's errors are not those of a table.
Offset allocateQuietly(std::int32_t bytes) {
    const ErrorCellAside aside;
    Offset block = 0;
    Allocate(block, bytes);
    if (block != 0) std::memset(At(block), 0, static_cast<std::size_t>(bytes));
    return block;
}

void freeBlock(Offset& block, std::int32_t bytes) {
    if (block != 0) Free(block, bytes);
    block = 0;
}

// ---- shortcuts ----

// Rows for each line when the shortcuts are made, and the most before they are made anew with more lines.
constexpr std::int32_t rowsOfNewLine = 3, rowsOfLine = 5;
constexpr std::int32_t searchesOfRow = 8;  // what making a row's shortcut costs, in searches that it spares

std::int32_t blockOfLines(const IndexMirror& mirror) {
    return BytesOfLines(mirror.lineCount);
}

void dropShortcuts(IndexMirror& mirror) {
    freeBlock(mirror.shortcuts, blockOfLines(mirror));
    mirror.lineCount = mirror.missed = 0;
}

// Where the content of a row stands; 0 when that is not known.
Offset placeOfRow(const IndexTree& index, Ref row) {
    if (index.rows == nullptr || row > static_cast<Ref>(index.rows->count)) return 0;
    return reinterpret_cast<const RecordDescriptor*>(At(index.rows->data))[row - 1].data;
}

void makeShortcuts(const IndexTree& index, const MirrorView& tree) {
    IndexMirror& mirror = *index.mirror;
    mirror.missed = 0;
    const std::int32_t lines = mirror.entryCount / rowsOfNewLine + 1;
    mirror.shortcuts = allocateQuietly(BytesOfLines(lines));
    if (mirror.shortcuts == 0) return;
    mirror.lineCount = lines;
    for (Ref row = 1; row < static_cast<Ref>(mirror.entryCount); ++row) {
        if (tree.has(row)) Shortcuts(mirror, HashOfRow(index, tree, row)).put(row, placeOfRow(index, row));
    }
}

// All that the row is read by starts on its way at once: its entry, its descriptor, its content.
bool followShortcut(const IndexTree& index, const MirrorView& tree, Shortcuts& line,
                    const MirrorView::Key& key, Ref& found) {
    return line.eachSlot([&](std::int32_t slot) {
        const Ref row = line.row(slot);
        const Offset place = line.place(slot);
        __builtin_prefetch(tarn_heap_base + place);
        const Offset stands = placeOfRow(index, row);
        if (!tree.has(row) || tree.order(key, row) != 0) return false;
        if (stands != place) line.set(slot, row, stands);
        found = row;
        return true;
    });
}

bool findEqual(const IndexTree& index, const MirrorView& tree, const KeyView& view, Ref& found) {
    IndexMirror& mirror = *index.mirror;
    const MirrorView::Key key = MirrorKeyOf(view);
    if (mirror.shortcuts == 0) {
        if (++mirror.missed >= mirror.entryCount / searchesOfRow) makeShortcuts(index, tree);
        return FindEqual(tree, key, found);
    }
    Shortcuts line(mirror, HashOfKey(view, key.head));
    if (followShortcut(index, tree, line, key, found)) return true;
    if (!FindEqual(tree, key, found)) return false;
    if (found != 0) line.put(found, placeOfRow(index, found));
    return true;
}

}  // namespace

// ---- life ----

bool ReserveMirror(IndexMirror& mirror, std::int32_t mostRow) {
    if (mostRow < mirror.entryCount) return true;
    if (mostRow > MostMirroredRow) return false;
    const std::int32_t count = std::max(mostRow + 1, mirror.entryCount + mirror.entryCount / 4);
    const Offset block = allocateQuietly(count * entryBytes);
    if (block == 0) return false;
    if (mirror.entries != 0)
        std::memcpy(At(block), At(mirror.entries), static_cast<std::size_t>(mirror.entryCount * entryBytes));
    freeBlock(mirror.entries, mirror.entryCount * entryBytes);
    mirror.entries = block;
    mirror.entryCount = count;
    return true;
}

void DropMirror(IndexMirror& mirror) {
    dropShortcuts(mirror);
    freeBlock(mirror.entries, mirror.entryCount * entryBytes);
    mirror = {};
}

void ClearMirror(IndexMirror& mirror) {
    dropShortcuts(mirror);
    std::memset(At(mirror.entries), 0, static_cast<std::size_t>(mirror.entryCount * entryBytes));
    mirror.root = 0;
    mirror.walk.known = 0;
}

namespace {

// Enters the subtree at `node`; `row` becomes the number of its top. False for what no mirror can show.
bool fillFrom(const MemoryTree& tree, MirrorTree& mirror, const IndexMirror& words, Offset node,
              std::int32_t depth, Ref& row) {
    row = 0;
    if (node == 0) return true;
    if (depth == MaxTreeDepth || !tree.reachable(node)) return false;
    const std::int32_t number = NodeRow(node), balance = tree.balance(node);
    if (number < 1 || number >= words.entryCount || balance < -1 || balance > 1) return false;
    row = static_cast<Ref>(number);
    if (mirror.has(row)) return false;
    mirror.enter(row, HeadOfKey(KeyOfNode(NodeKey(node), tree.kinds())).bits, node);
    Ref low[2] = {};
    for (const int side : {0, 1}) {
        if (!fillFrom(tree, mirror, words, tree.child(node, side), depth + 1, low[side])) return false;
    }
    mirror.note(row, low[0], low[1], balance);
    return true;
}

}  // namespace

bool FillMirror(const IndexTree& index) {
    MirrorTree mirror(index);
    return fillFrom(MemoryTree(*index.root), mirror, *index.mirror, index.root->data, 0, index.mirror->root);
}

// ---- searches ----

namespace {

// Where a search in a mirrored tree stands.
struct Descent {
    MirrorView tree;
    MirrorView::Key key;
    IndexPath* path = nullptr;
    Ref next = 0;

    void start(IndexMirror& mirror, const MirrorView::Key& sought, IndexPath& way) {
        tree = MirrorView(mirror);
        key = sought;
        path = &way;
        next = tree.root();
        way.depth = 0;
        way.found = false;
    }
    // False for a tree that is too deep.
    bool step() {
        if (path->depth == MaxTreeDepth) return false;
        next = tree.stepDown(key, *path, next);
        if (next == 0) tree.prefetchEnd(*path);
        return true;
    }
    bool finish() {
        while (next != 0) {
            if (!step()) return false;
        }
        return true;
    }
    [[nodiscard]] bool isPrepared() const { return path->found || PrepareLink(tree, *path); }
};

}  // namespace

std::uint32_t FollowShortcut(const IndexTree& index, std::uint64_t head) {
    if (index.mirror->shortcuts == 0) return 0;
    Shortcuts line(*index.mirror, HashOfWhole(head));
    Ref found = 0;
    followShortcut(index, MirrorView(index), line, {{head, true}, nullptr}, found);
    return found;
}

bool FindKey(const IndexTree& index, const KeyView& key, IndexPath& path) {
    if (index.mirror == nullptr) return FindKey(*index.root, key, path);
    Descent descent;
    descent.start(*index.mirror, MirrorKeyOf(key), path);
    return (descent.finish() && descent.isPrepared()) || damaged();
}

namespace {

// A step in each tree in turn, so that their waits for memory overlap. False for one that is too deep.
bool descend(Descent* descents, std::int32_t count) {
    for (bool going = true; going;) {
        going = false;
        for (std::int32_t i = 0; i < count; ++i) {
            Descent& descent = descents[i];
            if (descent.next == 0) continue;
            if (!descent.step()) return false;
            going = true;
        }
    }
    return true;
}

bool findMirrored(const TreeSearch* searches, std::int32_t count) {
    Descent descents[MaxIndexes];
    for (std::int32_t i = 0; i < count; ++i)
        descents[i].start(*searches[i].index.mirror, MirrorKeyOf(*searches[i].key), *searches[i].path);
    if (!descend(descents, count)) return damaged();
    return std::all_of(descents, descents + count,
                       [](const Descent& descent) { return descent.isPrepared() || damaged(); });
}

}  // namespace

bool FindKeys(const TreeSearch* searches, std::int32_t count) {
    const auto mirrored = [](const TreeSearch& search) { return search.index.mirror != nullptr; };
    if (count == 1) return FindKey(searches[0].index, *searches[0].key, *searches[0].path);
    if (std::all_of(searches, searches + count, mirrored)) return findMirrored(searches, count);
    if (std::none_of(searches, searches + count, mirrored)) {
        KeySearch plain[MaxIndexes];
        for (std::int32_t i = 0; i < count; ++i)
            plain[i] = {searches[i].index.root, searches[i].key, searches[i].path};
        return FindKeys(plain, count);
    }
    return std::all_of(searches, searches + count, [](const TreeSearch& search) {
        return FindKey(search.index, *search.key, *search.path);
    });
}

bool FindPlaces(IndexMirror* mirrors, const std::uint64_t* heads, IndexPath* paths, std::int32_t count) {
    const auto isPlace = [](const Descent& descent) { return !descent.path->found && descent.isPrepared(); };
    if (count == 1) {
        Descent only;
        only.start(mirrors[0], {{heads[0], true}, nullptr}, paths[0]);
        return only.finish() && isPlace(only);
    }
    Descent descents[MaxIndexes];
    for (std::int32_t i = 0; i < count; ++i)
        descents[i].start(mirrors[i], {{heads[i], true}, nullptr}, paths[i]);
    return descend(descents, count) && std::all_of(descents, descents + count, isPlace);
}

bool SeekRow(const IndexTree& index, const TreeSeek& seek, const KeyView& key, std::int32_t& row) {
    row = 0;
    if (index.mirror == nullptr) {
        Offset node = 0;
        if (!SeekNode(*index.root, seek, key, node)) return false;
        row = node != 0 ? NodeRow(node) : 0;
        return true;
    }
    const MirrorView tree(index);
    Ref found = 0;
    bool whole = false;
    if (seek.end != 0 || seek.nearest != 0)
        whole = SeekOnWalk(tree, index.mirror->walk, seek, {seek.end != 0 ? KeyHead() : HeadOfKey(key), &key},
                           found);
    else
        whole = findEqual(index, tree, key, found);
    row = static_cast<std::int32_t>(found);
    return whole || damaged();
}

// ---- changes ----

bool PrepareUnlinkNode(const IndexTree& index, IndexPath& path) {
    if (index.mirror == nullptr) return PrepareUnlinkNode(*index.root, path);
    return PrepareUnlink(MirrorView(index), path) || damaged();
}

Offset FoundNode(const IndexTree& index, const IndexPath& path) {
    const Ref found = path.nodes[path.at];
    return index.mirror == nullptr ? found : MirrorView(index).node(found);
}

std::int32_t FoundRow(const IndexTree& index, const IndexPath& path) {
    const Ref found = path.nodes[path.at];
    return index.mirror == nullptr ? NodeRow(found) : static_cast<std::int32_t>(found);
}

namespace {

// What stands beside the tree when a row has been linked.
template <class Hash>
void noteLinked(const IndexTree& index, Ref row, const Hash& hash) {
    IndexMirror& mirror = *index.mirror;
    mirror.walk.known = 0;
    if (mirror.shortcuts == 0) return;
    if (static_cast<std::int32_t>(row) > mirror.lineCount * rowsOfLine) return dropShortcuts(mirror);
    Shortcuts(mirror, hash()).put(row, placeOfRow(index, row));
}

}  // namespace

void LinkNode(const IndexTree& index, const IndexPath& path, const KeyView& key, Offset node,
              std::int32_t row) {
    if (index.mirror == nullptr) return LinkNode(*index.root, path, key, node);
    MirrorTree tree = index.root->data != 0 || index.isNodeless()
                          ? MirrorTree(index)
                          : MirrorTree(index, NodeKinds(key), NodeHeadBytes + KeyBytes(key));
    const KeyHead head = HeadOfKey(key);
    const auto entry = static_cast<Ref>(row);
    tree.enter(entry, head.bits, node);
    LinkAt(tree, path, entry);
    noteLinked(index, entry, [&] { return HashOfKey(key, head); });
}

void LinkPlace(const IndexTree& index, const IndexPath& path, std::uint64_t head, std::int32_t row) {
    MirrorTree tree(index);
    const auto entry = static_cast<Ref>(row);
    tree.enter(entry, head, 0);
    LinkAt(tree, path, entry);
    noteLinked(index, entry, [&] { return HashOfWhole(head); });
}

void UnlinkNode(const IndexTree& index, IndexPath& path, const KeyView& key) {
    if (index.mirror == nullptr) return UnlinkNode(*index.root, path);
    MirrorTree tree(index);
    const Ref row = path.nodes[path.at];
    if (index.mirror->shortcuts != 0) Shortcuts(*index.mirror, HashOfKey(key, HeadOfKey(key))).forget(row);
    UnlinkAt(tree, path);
    tree.leave(row);
    index.mirror->walk.known = 0;
}

void FreeTrees(const IndexTree* indexes, std::int32_t count) {
    const auto hasNodes = [](const IndexTree& index) {
        return index.mirror != nullptr && !index.isNodeless();
    };
    constexpr std::int32_t ahead = 6;
    std::int32_t rows = 0;
    for (std::int32_t i = 0; i < count; ++i)
        rows = std::max(rows, hasNodes(indexes[i]) ? indexes[i].mirror->entryCount : 0);
    for (std::int32_t row = rows - 1; row > 0; --row) {
        for (std::int32_t i = count - 1; i >= 0; --i) {
            if (!hasNodes(indexes[i]) || row >= indexes[i].mirror->entryCount) continue;
            const MirrorView tree(indexes[i]);
            tree.prefetchNode(static_cast<Ref>(std::max(row - ahead, 0)));
            FreeNode(tree.node(static_cast<Ref>(row)), indexes[i].root->kinds);
        }
    }
    for (std::int32_t i = 0; i < count; ++i) {
        if (indexes[i].mirror == nullptr) {
            FreeTree(*indexes[i].root);
        } else {
            ClearMirror(*indexes[i].mirror);
            *indexes[i].root = {0, TagRecord, 0, {}};
        }
    }
}

}  // namespace tarn
