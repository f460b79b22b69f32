// SPDX-License-Identifier: Apache-2.0
//
// Mirrors that stand for their trees: how the nodes go, and come again.
#include "kernel/index/index_mirror.h"

namespace tarn {

using Ref = MirrorView::Ref;

namespace {

Offset copyNodes(const MirrorView& tree, Ref row, KeyView& key, MemoryTree& made, bool& good) {
    if (row == 0) return 0;
    char fields[sizeof(std::uint64_t)];
    FieldsOfHead(tree.head(row), key, fields);
    const Offset node = MakeNode(key, static_cast<std::int32_t>(row));
    if (node == 0) return good = false, 0;
    made.setBalance(node, tree.balance(row));
    for (const int side : {0, 1}) made.setChild(node, side, 0);
    for (const int side : {0, 1}) {
        const Offset low = good ? copyNodes(tree, tree.child(row, side), key, made, good) : 0;
        if (low != 0) made.setChild(node, side, low);
    }
    return node;
}

}  // namespace

void DropNodes(const IndexTree& index, const KeyView& shape) {
    if (!HeadTellsKey(shape)) return;
    MirrorTree mirror(index);
    for (std::int32_t row = index.mirror->entryCount - 1; row > 0; --row) {
        const Offset node = mirror.node(static_cast<Ref>(row));
        if (node == 0) continue;
        FreeNode(node, index.root->kinds);
        mirror.setNode(static_cast<Ref>(row), 0);
    }
    *index.root = {0, TagRecord, 0, {}};
    index.mirror->nodeless = 1;
}

bool CopyNodes(const IndexMirror& mirror, const KeyView& shape, RecordDescriptor& root) {
    IndexMirror words = mirror;
    const MirrorView tree({&root, &words});
    KeyView key = shape;
    MemoryTree made(root, NodeKinds(shape), NodeHeadBytes + KeyBytes(shape), false);
    bool good = true;
    root = {0, TagRecord, 0, {}};
    made.setRoot(copyNodes(tree, tree.root(), key, made, good));
    if (!good) FreeTree(root);
    return good;
}

bool MakeNodes(const IndexTree& index, const KeyView& shape) {
    if (!CopyNodes(*index.mirror, shape, *index.root)) return false;
    MirrorTree mirror(index);
    const MemoryTree tree(*index.root);
    index.mirror->nodeless = 0;
    return WalkInOrder(tree, [&](Offset node) {
        mirror.setNode(static_cast<Ref>(NodeRow(node)), node);
        return true;
    });
}

}  // namespace tarn
