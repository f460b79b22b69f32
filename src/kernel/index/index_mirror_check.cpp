// SPDX-License-Identifier: Apache-2.0
//
// What can be wrong with a mirror, for tests and tools.
#include "kernel/index/index_mirror.h"
#include "kernel/index/index_shortcuts_internal.h"

namespace tarn {

using Ref = MirrorView::Ref;

namespace {

// "" or what is wrong with the shortcuts of a mirror that is right.
std::string checkShortcuts(const IndexTree& index, const MirrorView& tree) {
    const IndexMirror& mirror = *index.mirror;
    if (mirror.shortcuts == 0) return {};
    for (std::int32_t i = 0; i < mirror.lineCount * SlotsOfLine; ++i) {
        const ShortcutLine& line = LinesOf(mirror)[i / SlotsOfLine];
        const Ref row = line.rows[i % SlotsOfLine] & MostMirroredRow;
        if (line.tags[i % SlotsOfLine] == 0) continue;
        if (row == 0 || row >= static_cast<Ref>(mirror.entryCount) || !tree.has(row))
            return "a shortcut leads nowhere";
        if (!Shortcuts(mirror, HashOfRow(index, tree, row)).isSlotOfHash(line, i % SlotsOfLine))
            return "a shortcut leads to the row of another key";
    }
    return {};
}

// "" or what is wrong with the tree that a mirror stands for.
std::string checkNodeless(const IndexTree& index, const MirrorView& mirror, std::int32_t entries) {
    if (index.root->data != 0) return "a mirror stands for a tree that has nodes";
    std::int64_t left = entries;
    std::int32_t nodes = 0, height = 0;
    Ref before = 0, bad = 0;
    const bool ordered = WalkInOrder(mirror, mirror.root(), left, 0, [&](Ref row) {
        const bool follows = before == 0 || mirror.head(before) < mirror.head(row);
        before = row;
        ++nodes;
        return follows && mirror.node(row) == 0;
    });
    if (!ordered || nodes != entries) return "the mirror is no tree of its keys";
    left = entries;
    if (!MeasureHeight(mirror, mirror.root(), left, 0, height, bad) || bad != 0)
        return "a balance of the mirror is not that of its subtrees";
    return {};
}

// "" or where the mirror and its tree differ.
std::string checkMirrored(const IndexTree& index, const MirrorView& mirror, std::int32_t entries) {
    const MemoryTree tree(*index.root);
    std::int32_t nodes = 0;
    if (mirror.node(mirror.root()) != tree.root()) return "the mirror has another root";
    const bool same = WalkInOrder(tree, [&](Offset node) {
        const auto row = static_cast<Ref>(NodeRow(node));
        const KeyView key = KeyOfNode(NodeKey(node), tree.kinds());
        if (++nodes > entries || row >= static_cast<Ref>(index.mirror->entryCount)) return false;
        return mirror.node(row) == node && mirror.balance(row) == tree.balance(node) &&
               mirror.order(MirrorKeyOf(key), row) == 0 && mirror.head(row) == HeadOfKey(key).bits &&
               mirror.node(mirror.child(row, 0)) == tree.child(node, 0) &&
               mirror.node(mirror.child(row, 1)) == tree.child(node, 1);
    });
    return same && nodes == entries ? "" : "the mirror shows another tree";
}

}  // namespace

std::string CheckMirror(const IndexTree& index) {
    const MirrorView mirror(index);
    if (mirror.has(0)) return "the mirror has an entry without a row";
    std::int32_t entries = 0;
    for (Ref row = 1; row < static_cast<Ref>(index.mirror->entryCount); ++row)
        entries += mirror.has(row) ? 1 : 0;
    const std::string wrong =
        index.isNodeless() ? checkNodeless(index, mirror, entries) : checkMirrored(index, mirror, entries);
    return wrong.empty() ? checkShortcuts(index, mirror) : wrong;
}

}  // namespace tarn
