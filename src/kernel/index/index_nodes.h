// SPDX-License-Identifier: Apache-2.0
//
// The nodes of an index in memory (their layout is in indexes.h), and the steps that changes of a table are
// made of: all places are found and all nodes made before the first tree changes, and from there on nothing
// allocates. Functions that give false have set the error and changed nothing.
#pragma once

#include "kernel/index/index_keys.h"
#include "kernel/index/index_tree.h"

#include <string_view>

namespace tarn {

// ---- nodes, named by the offset of their data ----

inline std::int32_t NodeRow(Offset node) {
    return ReadAt<std::int32_t>(At(node));
}
inline void SetNodeRow(Offset node, std::int32_t row) {
    WriteAt(At(node), row);
}
inline const char* NodeKey(Offset node) {
    return At(node) + NodeHeadBytes;
}

// A node with copies of the key's fields and no links; 0 when memory is short.
Offset MakeNode(const KeyView& key, std::int32_t row);
void FreeNode(Offset node, const FieldKinds& kinds);  // `kinds` are those of the node

// ---- the tree ----

class MemoryTree {
public:
    explicit MemoryTree(RecordDescriptor& root) : root_(root), link_(root), checking_(MemoryChecking()) {}
    // For a tree that may be empty: how its links will look.
    MemoryTree(RecordDescriptor& root, const FieldKinds& nodeKinds, std::int32_t nodeBytes)
        : root_(root), link_{nodeBytes, TagRecord, 0, nodeKinds}, checking_(MemoryChecking()) {}

    // For one that is not checked, whatever the heap does.
    MemoryTree(RecordDescriptor& root, const FieldKinds& nodeKinds, std::int32_t nodeBytes, bool checking)
        : root_(root), link_{nodeBytes, TagRecord, 0, nodeKinds}, checking_(checking) {}

    [[nodiscard]] Offset root() const { return root_.data; }
    void setRoot(Offset node) { root_ = linkTo(node); }
    [[nodiscard]] Offset child(Offset node, int side) const {
        return ReadAt<Offset>(linkAt(node, side) + offsetof(RecordDescriptor, data));
    }
    void setChild(Offset node, int side, Offset child) { relink(node, side, child, false); }
    // The same. `led`: the link is known to lead somewhere, and then needs no more than another end, for the
    // links of a tree that do differ in nothing else.
    void relink(Offset node, int side, Offset child, bool led) {
        char* const link = linkAt(node, side);
        static constexpr RecordDescriptor nowhere{0, TagRecord, 0, {}};
        if (child == 0)
            std::memcpy(link, &nowhere, sizeof nowhere);
        else if (!led)
            std::memcpy(link, &link_, sizeof link_);
        WriteAt(link + offsetof(RecordDescriptor, data), child);
    }
    [[nodiscard]] int balance(Offset node) const { return ReadAt<std::int32_t>(At(node) + balanceAt); }
    void setBalance(Offset node, int balance) { WriteAt(At(node) + balanceAt, std::int32_t{balance}); }
    template <class Key>
    [[nodiscard]] int order(const Key& key, Offset node) const {
        return key(NodeKey(node));
    }
    [[nodiscard]] bool checking() const { return checking_; }
    [[nodiscard]] static bool dropsChanges() { return false; }
    [[nodiscard]] bool reachable(Offset node) const;
    [[nodiscard]] bool sound(Offset node) const;
    // Starts to fetch the parts of a node that a search reads: the links and the head of the key.
    void prefetch(Offset node) const {
        __builtin_prefetch(linkAt(node, 0) + offsetof(RecordDescriptor, data));
        __builtin_prefetch(NodeKey(node));
    }
    static void prefetchToChange(Offset node, int side) {
        __builtin_prefetch(At(node) + balanceAt, 1);
        __builtin_prefetch(linkAt(node, side), 1);
    }
    // Each node is a block of its own.
    [[nodiscard]] std::int64_t most() const { return LiveBlocks(); }

    [[nodiscard]] const FieldKinds& kinds() const { return link_.kinds; }

private:
    static constexpr std::int32_t balanceAt = 4, leftAt = 16, rightAt = 52;
    static_assert(rightAt + std::int32_t{sizeof(RecordDescriptor)} == NodeHeadBytes);

    static char* linkAt(Offset node, int side) {
        return tarn_heap_base + node + (side != 0 ? std::uint32_t{rightAt} : std::uint32_t{leftAt});
    }
    [[nodiscard]] RecordDescriptor linkTo(Offset node) const {
        if (node == 0) return {0, TagRecord, 0, {}};
        return {link_.size, TagRecord, node, link_.kinds};
    }
    [[nodiscard]] bool isLink(Offset node, int side) const;

    RecordDescriptor& root_;
    RecordDescriptor link_;
    bool checking_;
};

// A link that leads nowhere or to a node; else 763.
bool AcceptRoot(const RecordDescriptor* root);

// ---- the steps of a change ----

using IndexPath = TreePath<Offset>;

// FindKey gives the path to a key or to its place. A path that found nothing serves LinkNode, one that found
// the key PrepareUnlinkNode and then UnlinkNode, as long as the tree has not changed.
bool FindKey(const RecordDescriptor& root, const KeyView& key, IndexPath& path);  // 763
// The same in up to five trees, a step in each in turn, so that their waits for memory overlap.
struct KeySearch {
    const RecordDescriptor* root = nullptr;
    const KeyView* key = nullptr;
    IndexPath* path = nullptr;
};
bool FindKeys(const KeySearch* searches, std::int32_t count);           // 763
bool PrepareUnlinkNode(const RecordDescriptor& root, IndexPath& path);  // 763
void LinkNode(RecordDescriptor& root, const IndexPath& path, const KeyView& key, Offset node);
void UnlinkNode(RecordDescriptor& root, IndexPath& path);

// How often a tree was changed as such, and not as one of a table: what stands beside the trees of tables is
// then void.
inline std::uint64_t PlainTreeChanges = 0;

// ---- whole trees ----

// False for a word that is no operator.
bool ReadOperator(std::string_view op, TreeSeek& seek);
bool SeekNode(const RecordDescriptor& root, const TreeSeek& seek, const KeyView& key, Offset& node);
void FreeTree(RecordDescriptor& root);
// A copy of the tree, node for node; `target` need not hold anything valid, and is empty on failure.
bool CopyTree(const RecordDescriptor& source, RecordDescriptor& target);

}  // namespace tarn
