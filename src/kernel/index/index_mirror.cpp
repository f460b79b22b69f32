// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_mirror.h"

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

MirrorView::Key mirrorKey(const KeyView& key) {
    return {HeadOfKey(key), &key};
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

constexpr std::int32_t slotsOfLine = 16, lineBytes = slotsOfLine * std::int32_t{sizeof(std::uint32_t)};
// Rows of a line when the shortcuts are made, and the most before they are made anew with more lines.
constexpr std::int32_t rowsOfNewLine = 8, rowsOfLine = 12;
constexpr std::int32_t searchesOfRow = 8;  // what making a row's shortcut costs, in searches that it spares

class Shortcuts {
public:
    Shortcuts(const IndexMirror& mirror, const KeyView& key)
        : Shortcuts(mirror, HashOfKey(key, HeadOfKey(key))) {}
    Shortcuts(const IndexMirror& mirror, std::uint32_t hash)
        : line_(reinterpret_cast<std::uint32_t*>(At(mirror.shortcuts)) + lineOf(mirror, hash)),
          mark_(hash << MirroredRowBits), first_(hash >> (32 - MirroredRowBits) & (slotsOfLine - 1)) {}

    // The row with this key; 0 for one that has no shortcut.
    [[nodiscard]] Ref find(const MirrorView& tree, const MirrorView::Key& key) const {
        for (std::uint32_t i = 0; i < slotsOfLine; ++i) {
            const std::uint32_t differs = line_[slot(i)] ^ mark_;
            if (differs <= MostMirroredRow && differs != 0 && tree.order(key, differs) == 0) return differs;
        }
        return 0;
    }
    void put(Ref row) {
        std::uint32_t into = first_;
        for (std::uint32_t i = 0; i < slotsOfLine; ++i) {
            if (line_[slot(i)] != 0) continue;
            into = slot(i);
            break;
        }
        line_[into] = mark_ | row;
    }
    void forget(Ref row) { std::replace(line_, line_ + slotsOfLine, mark_ | row, std::uint32_t{0}); }

private:
    static std::size_t lineOf(const IndexMirror& mirror, std::uint32_t hash) {
        const auto line = std::uint64_t{hash} * static_cast<std::uint32_t>(mirror.lineCount) >> 32U;
        return static_cast<std::size_t>(line) * slotsOfLine;
    }
    [[nodiscard]] std::uint32_t slot(std::uint32_t i) const { return (first_ + i) % slotsOfLine; }

    std::uint32_t* line_;
    std::uint32_t mark_, first_;
};

void dropShortcuts(IndexMirror& mirror) {
    freeBlock(mirror.shortcuts, mirror.lineCount * lineBytes);
    mirror.lineCount = mirror.missed = 0;
}

void makeShortcuts(const IndexTree& index, const MirrorView& tree) {
    IndexMirror& mirror = *index.mirror;
    mirror.missed = 0;
    const std::int32_t lines = mirror.entryCount / rowsOfNewLine + 1;
    mirror.shortcuts = allocateQuietly(lines * lineBytes);
    if (mirror.shortcuts == 0) return;
    mirror.lineCount = lines;
    const FieldKinds& kinds = index.root->kinds;
    for (Ref row = 1; row < static_cast<Ref>(mirror.entryCount); ++row) {
        if (tree.has(row)) Shortcuts(mirror, KeyOfNode(NodeKey(tree.node(row)), kinds)).put(row);
    }
}

bool findEqual(const IndexTree& index, const MirrorView& tree, const KeyView& view, Ref& found) {
    IndexMirror& mirror = *index.mirror;
    const MirrorView::Key key = mirrorKey(view);
    if (mirror.shortcuts == 0) {
        if (++mirror.missed >= mirror.entryCount / searchesOfRow) makeShortcuts(index, tree);
        return FindEqual(tree, key, found);
    }
    Shortcuts line(mirror, HashOfKey(view, key.head));
    found = line.find(tree, key);
    if (found != 0) return true;
    if (!FindEqual(tree, key, found)) return false;
    if (found != 0) line.put(found);
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
    mirror.walk.count = 0;
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

bool MirrorHas(const IndexMirror& mirror, std::int32_t row) {
    return reinterpret_cast<const MirrorEntry*>(At(mirror.entries))[row].links != 0;
}

std::string CheckMirror(const IndexTree& index) {
    const MirrorView mirror(index);
    const MemoryTree tree(*index.root);
    if (mirror.node(mirror.root()) != tree.root()) return "the mirror has another root";
    if (mirror.has(0)) return "the mirror has an entry without a row";
    std::int32_t entries = 0, nodes = 0;
    for (Ref row = 1; row < static_cast<Ref>(index.mirror->entryCount); ++row)
        entries += mirror.has(row) ? 1 : 0;
    const bool same = WalkInOrder(tree, [&](Offset node) {
        const auto row = static_cast<Ref>(NodeRow(node));
        const KeyView key = KeyOfNode(NodeKey(node), tree.kinds());
        if (++nodes > entries || row >= static_cast<Ref>(index.mirror->entryCount)) return false;
        return mirror.node(row) == node && mirror.balance(row) == tree.balance(node) &&
               mirror.order(mirrorKey(key), row) == 0 && mirror.head(row) == HeadOfKey(key).bits &&
               mirror.node(mirror.child(row, 0)) == tree.child(node, 0) &&
               mirror.node(mirror.child(row, 1)) == tree.child(node, 1);
    });
    if (!same || nodes != entries) return "the mirror shows another tree";
    const auto* slots = reinterpret_cast<const std::uint32_t*>(At(index.mirror->shortcuts));
    const std::int32_t slotCount = index.mirror->lineCount * slotsOfLine;
    for (std::int32_t i = 0; i < slotCount; ++i) {
        const Ref row = slots[i] & MostMirroredRow;
        if (slots[i] == 0) continue;
        if (row >= static_cast<Ref>(index.mirror->entryCount) || !mirror.has(row))
            return "a shortcut leads nowhere";
        const KeyView key = KeyOfNode(NodeKey(mirror.node(row)), tree.kinds());
        if (Shortcuts(*index.mirror, key).find(mirror, mirrorKey(key)) != row) return "a shortcut is lost";
    }
    return {};
}

// ---- searches ----

namespace {

// Where a search in a mirrored tree stands.
struct Descent {
    MirrorView tree;
    MirrorView::Key key;
    IndexPath* path = nullptr;
    Ref next = 0;

    void start(const IndexTree& index, const KeyView& view, IndexPath& way) {
        tree = MirrorView(index);
        key = mirrorKey(view);
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
    [[nodiscard]] bool isPrepared() const { return path->found || PrepareLink(tree, *path); }
};

}  // namespace

bool FindKey(const IndexTree& index, const KeyView& key, IndexPath& path) {
    if (index.mirror == nullptr) return FindKey(*index.root, key, path);
    Descent descent;
    descent.start(index, key, path);
    while (descent.next != 0) {
        if (!descent.step()) return damaged();
    }
    return descent.isPrepared() || damaged();
}

namespace {

// A step in each tree in turn, so that their waits for memory overlap.
bool findMirrored(const TreeSearch* searches, std::int32_t count) {
    Descent descents[MaxIndexes];
    for (std::int32_t i = 0; i < count; ++i)
        descents[i].start(searches[i].index, *searches[i].key, *searches[i].path);
    for (bool going = true; going;) {
        going = false;
        for (std::int32_t i = 0; i < count; ++i) {
            Descent& descent = descents[i];
            if (descent.next == 0) continue;
            if (!descent.step()) return damaged();
            going = true;
        }
    }
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

void LinkNode(const IndexTree& index, const IndexPath& path, const KeyView& key, Offset node) {
    if (index.mirror == nullptr) return LinkNode(*index.root, path, key, node);
    MirrorTree tree = index.root->data != 0
                          ? MirrorTree(index)
                          : MirrorTree(index, NodeKinds(key), NodeHeadBytes + KeyBytes(key));
    const KeyHead head = HeadOfKey(key);
    const auto row = static_cast<Ref>(NodeRow(node));
    tree.enter(row, head.bits, node);
    LinkAt(tree, path, row);
    IndexMirror& mirror = *index.mirror;
    mirror.walk.count = 0;
    if (mirror.shortcuts == 0) return;
    if (NodeRow(node) > mirror.lineCount * rowsOfLine) return dropShortcuts(mirror);
    Shortcuts(mirror, HashOfKey(key, head)).put(row);
}

void UnlinkNode(const IndexTree& index, IndexPath& path, const KeyView& key) {
    if (index.mirror == nullptr) return UnlinkNode(*index.root, path);
    MirrorTree tree(index);
    const Ref row = path.nodes[path.at];
    if (index.mirror->shortcuts != 0) Shortcuts(*index.mirror, key).forget(row);
    UnlinkAt(tree, path);
    tree.leave(row);
    index.mirror->walk.count = 0;
}

void FreeTrees(const IndexTree* indexes, std::int32_t count) {
    constexpr std::int32_t ahead = 6;
    std::int32_t rows = 0;
    for (std::int32_t i = 0; i < count; ++i)
        rows = std::max(rows, indexes[i].mirror != nullptr ? indexes[i].mirror->entryCount : 0);
    for (std::int32_t row = rows - 1; row > 0; --row) {
        for (std::int32_t i = count - 1; i >= 0; --i) {
            if (indexes[i].mirror == nullptr || row >= indexes[i].mirror->entryCount) continue;
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
