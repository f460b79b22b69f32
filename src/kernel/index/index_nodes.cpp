// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_nodes.h"

#include "kernel/index/indexes.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/records.h"

#include <algorithm>
#include <cstring>

namespace tarn {

namespace {

constexpr std::uint8_t headKinds[] = {0x33, 0x33, 0x77};  // four integers, two records

bool damaged() {
    SetError(ERR_INDEX_TYPE);
    return false;
}

// A tree that is only read.
MemoryTree readTree(const RecordDescriptor& root) {
    return MemoryTree(const_cast<RecordDescriptor&>(root));
}

constexpr std::int32_t chainAt = 8;     // a reserved word of a node
constexpr std::int32_t visited = -999;  // a balance that no node of a tree has

// Takes the nodes of a tree apart into a chain, so that each is freed once whatever the links say. False for
// a damaged tree.
bool chainSubtree(MemoryTree& tree, Offset node, std::int32_t depth, Offset& chain) {
    if (node == 0) return true;
    if (depth == MaxTreeDepth || !tree.reachable(node)) return false;
    if (tree.balance(node) < -1 || tree.balance(node) > 1) return false;
    tree.setBalance(node, visited);
    WriteAt(At(node) + chainAt, chain);
    chain = node;
    const Offset left = tree.child(node, 0), right = tree.child(node, 1);
    tree.prefetch(right);
    return chainSubtree(tree, left, depth + 1, chain) && chainSubtree(tree, right, depth + 1, chain);
}

Offset copySubtree(MemoryTree& tree, Offset node, std::int32_t depth, std::int64_t& left) {
    if (node == 0) return 0;
    if (depth == MaxTreeDepth || --left < 0 || !tree.reachable(node)) {
        left = -1;
        damaged();
        return 0;
    }
    const Offset copy = MakeNode(KeyOfNode(NodeKey(node), tree.kinds()), NodeRow(node));
    if (copy == 0) {
        left = -1;
        return 0;
    }
    tree.setBalance(copy, tree.balance(node));
    for (const int side : {0, 1}) {
        tree.setChild(copy, side, 0);
        if (left >= 0) tree.setChild(copy, side, copySubtree(tree, tree.child(node, side), depth + 1, left));
    }
    return copy;
}

}  // namespace

// ---- nodes ----

Offset MakeNode(const KeyView& key, std::int32_t row) {
    Offset node = 0;
    const std::int32_t bytes = NodeHeadBytes + KeyBytes(key);
    Allocate(node, bytes);
    if (node == 0) return 0;
    std::memset(At(node), 0, NodeHeadBytes);
    SetNodeRow(node, row);
    if (!CopyKeyFields(key, At(node) + NodeHeadBytes)) Free(node, bytes);
    return node;
}

void FreeNode(Offset node, const FieldKinds& kinds) {
    if (node == 0) return;
    constexpr std::int32_t firstKeyField = 7;
    FreeKeyFields(kinds, firstKeyField, At(node) + NodeHeadBytes);
    Free(node, FieldBytesOf(kinds));
}

// ---- the tree ----

bool MemoryTree::reachable(Offset node) const {
    return OffsetOf(tarn_heap_base + node) != 0 &&
           OffsetOf(tarn_heap_base + node + static_cast<Offset>(link_.size) - 1) != 0;
}

bool MemoryTree::isLink(Offset node, int side) const {
    const auto link = ReadAt<RecordDescriptor>(linkAt(node, side));
    return link.tag == TagRecord && link.size == (link.data != 0 ? link_.size : 0);
}

bool MemoryTree::sound(Offset node) const {
    if (!reachable(node) || !isLink(node, 0) || !isLink(node, 1)) return false;
    const int lean = balance(node);
    return lean == 0 || ((lean == -1 || lean == 1) && child(node, lean > 0) != 0);
}

bool AcceptRoot(const RecordDescriptor* root) {
    if (root == nullptr || root->tag != TagRecord) return damaged();
    if (root->data == 0) return root->size == 0 || damaged();
    const bool good = std::equal(std::begin(headKinds), std::end(headKinds), root->kinds.nibbles) &&
                      root->size > NodeHeadBytes &&
                      (!MemoryChecking() || root->size == FieldBytesOf(root->kinds));
    return good || damaged();
}

// ---- the steps of a change ----

bool FindKey(const RecordDescriptor& root, const KeyView& key, IndexPath& path) {
    const MemoryTree tree = readTree(root);
    const bool whole = WithKey(key, [&](const auto& fields) { return FindPath(tree, fields, path); });
    return (whole && (path.found || PrepareLink(tree, path))) || damaged();
}

bool FindKeys(const KeySearch* searches, std::int32_t count) {
    Offset next[MaxIndexes] = {};
    for (std::int32_t i = 0; i < count; ++i) {
        IndexPath& path = *searches[i].path;
        path.depth = 0;
        path.found = false;
        next[i] = searches[i].root->data;
    }
    for (bool going = true; going;) {
        going = false;
        for (std::int32_t i = 0; i < count; ++i) {
            if (next[i] == 0) continue;
            const MemoryTree tree = readTree(*searches[i].root);
            if (!StepDown(tree, AnyKey(*searches[i].key), *searches[i].path, next[i])) return damaged();
            if (next[i] == 0) continue;
            tree.prefetch(next[i]);
            going = true;
        }
    }
    return std::all_of(searches, searches + count, [](const KeySearch& search) {
        return search.path->found || PrepareLink(readTree(*search.root), *search.path) || damaged();
    });
}

bool PrepareUnlinkNode(const RecordDescriptor& root, IndexPath& path) {
    return PrepareUnlink(readTree(root), path) || damaged();
}

void LinkNode(RecordDescriptor& root, const IndexPath& path, const KeyView& key, Offset node) {
    MemoryTree tree(root, NodeKinds(key), NodeHeadBytes + KeyBytes(key));
    LinkAt(tree, path, node);
}

void UnlinkNode(RecordDescriptor& root, IndexPath& path) {
    MemoryTree tree(root);
    UnlinkAt(tree, path);
}

// ---- whole trees ----

namespace {

// A word of at most 8 letters as a number, in capitals; what is no such word is 0.
constexpr std::uint64_t wordNumber(std::string_view word) {
    std::uint64_t number = 0;
    if (word.size() > sizeof number || word.find('\0') != std::string_view::npos) return 0;
    for (const char c : word)
        number = number << 8U | static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    return number;
}

}  // namespace

bool ReadOperator(std::string_view op, TreeSeek& seek) {
    struct Operator {
        std::uint64_t name;
        TreeSeek seek;
    };
    static constexpr Operator operators[] = {
        {wordNumber("EQ"), {0, true, 0}},     {wordNumber("EQUALS"), {0, true, 0}},
        {wordNumber("FIRST"), {-1, true, 0}}, {wordNumber("LAST"), {1, true, 0}},
        {wordNumber("GE"), {0, true, 1}},     {wordNumber("LE"), {0, true, -1}},
        {wordNumber("GT"), {0, false, 1}},    {wordNumber("NEXT"), {0, false, 1}},
        {wordNumber("LT"), {0, false, -1}},   {wordNumber("PREVIOUS"), {0, false, -1}},
    };
    const std::uint64_t name = wordNumber(op);
    if (name == 0) return false;
    for (const Operator& known : operators) {
        if (known.name != name) continue;
        seek = known.seek;
        return true;
    }
    return false;
}

bool SeekNode(const RecordDescriptor& root, const TreeSeek& seek, const KeyView& key, Offset& node) {
    const MemoryTree tree = readTree(root);
    if (seek.end != 0) return FindEnd(tree, seek.end > 0, node) || damaged();
    return WithKey(key,
                   [&](const auto& fields) {
                       return seek.nearest == 0 ? FindEqual(tree, fields, node)
                                                : FindNearest(tree, seek, fields, node);
                   }) ||
           damaged();
}

// A damaged tree is left to leak: freeing what may still be linked would do more harm.
void FreeTree(RecordDescriptor& root) {
    MemoryTree tree(root);
    Offset chain = 0;
    const bool whole = chainSubtree(tree, root.data, 0, chain) || damaged();
    while (whole && chain != 0) {
        const Offset next = ReadAt<Offset>(At(chain) + chainAt);
        FreeNode(chain, root.kinds);
        chain = next;
    }
    root = {0, TagRecord, 0, {}};
}

bool CopyTree(const RecordDescriptor& source, RecordDescriptor& target) {
    MemoryTree tree(target, source.kinds, source.size);
    std::int64_t left = tree.most();
    tree.setRoot(copySubtree(tree, source.data, 0, left));
    if (left < 0) FreeTree(target);
    return left >= 0;
}

}  // namespace tarn
