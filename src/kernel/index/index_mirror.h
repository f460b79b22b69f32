// SPDX-License-Identifier: Apache-2.0
//
// The mirror of a tree in memory: its links, its balances and the heads of its keys once more, close together,
// so that a search seldom waits for memory. A table keeps one beside each of its trees; the tree has
// everything without it, and a table does as well without (table_mirrors.h says when there is one).
//
// A mirror whose heads tell the keys (index_heads.h) can also stand for its tree: the tree has no nodes then, and gets
// them when somebody asks for it. Such a mirror is called nodeless; its root leads nowhere.
//
// An entry stands at the number of its node's row, entry 0 is empty:
//
//   bits of `links`   0-16  number of the left child, 0 for none
//                    17-33  of the right child
//                    34-35  balance + 1
//                    36-63  node: its offset / 16; 0 for an empty entry, and for all of a nodeless mirror
//
// Shortcuts lead from the hash of a key to its row (index_shortcuts_internal.h). They are made when searches for whole
// keys ask for them.
//
// Cost: 16 to 20 bytes a row, shortcuts 13 to 21 more; a search by a shortcut is constant. A mirror that cannot get
// its memory is dropped without an error, unless it is nodeless.
#pragma once

#include "kernel/index/index_heads.h"
#include "kernel/index/index_nodes.h"
#include "kernel/values/heap.h"

#include <cstdint>
#include <string>

namespace tarn {

inline constexpr std::uint32_t MirroredRowBits = 17;
inline constexpr std::int32_t MostMirroredRow = (1 << MirroredRowBits) - 1;
// Every list of records fits.
static_assert(MaxBlock / std::int32_t{sizeof(RecordDescriptor)} <= MostMirroredRow);

struct MirrorEntry {
    std::uint64_t head, links;
};

// Where the last search for a neighbour, or for an end, got to, and the rows that come next on its way: a walk
// through the keys goes from node to node, and the rows can be fetched before they are wanted. Any change of the
// tree ends it.
struct TreeWalk {
    static constexpr std::uint32_t mostRows = 8, fewRows = 4;  // where few are known, it looks ahead again
    std::uint32_t
        known;         // rows from the one that was found on, behind the last of the tree a 0; none: no walk
    std::uint32_t at;  // where the one that was found stands in `rows`, a ring
    int side;          // 1 upwards
    std::uint32_t rows[mostRows];
    IndexPath path;  // to the last of them

    [[nodiscard]] std::uint32_t& row(std::uint32_t ahead) { return rows[(at + ahead) % mostRows]; }
    [[nodiscard]] std::uint32_t row(std::uint32_t ahead) const { return rows[(at + ahead) % mostRows]; }
    void step() {
        at = (at + 1) % mostRows;
        --known;
    }
};

// Plain words, which stand in a block of the heap; all zero for a tree without one.
struct IndexMirror {
    Offset entries, shortcuts;  // blocks
    std::int32_t entryCount, lineCount;
    std::uint32_t root;     // its row
    std::int32_t missed;    // searches that wanted a shortcut since there are none
    std::int32_t nodeless;  // 1: it stands for the tree
    std::int32_t integers;  // 1: each key is one integer
    std::int32_t keyAt;     // then: where it stands in the content of a row
    TreeWalk walk;
};

// A tree as the operations of a table see it. `mirror` is null when there is none. What changes the tree by
// other functions than these leaves the mirror behind: IndexInsert, IndexDelete, IndexUpdateRow and IndexClear
// count themselves in `PlainTreeChanges`.
struct IndexTree {
    RecordDescriptor* root = nullptr;
    IndexMirror* mirror = nullptr;
    const ListDescriptor* rows = nullptr;  // of the table, where their content stands; for speed alone

    [[nodiscard]] bool isNodeless() const { return mirror != nullptr && mirror->nodeless != 0; }
};

// The tree for searches, which names a node by its row.
class MirrorView {
public:
    using Ref = std::uint32_t;
    struct Key {
        KeyHead head;
        const KeyView* view = nullptr;
    };

    MirrorView() = default;  // of nothing
    explicit MirrorView(const IndexTree& index) : MirrorView(*index.mirror) {}
    explicit MirrorView(IndexMirror& mirror)
        : mirror_(&mirror), entries_(reinterpret_cast<MirrorEntry*>(At(mirror.entries))) {}

    [[nodiscard]] Ref root() const { return mirror_->root; }
    [[nodiscard]] Ref child(Ref row, int side) const { return linkOf(entries_[row].links, side); }
    [[nodiscard]] int balance(Ref row) const {
        return static_cast<int>(entries_[row].links >> balanceAt & balanceMask) - 1;
    }
    [[nodiscard]] Offset node(Ref row) const { return nodeOf(entries_[row].links); }
    [[nodiscard]] std::uint64_t head(Ref row) const { return entries_[row].head; }
    [[nodiscard]] bool has(Ref row) const { return entries_[row].links != 0; }
    [[nodiscard]] int order(const Key& key, Ref row) const {
        const std::uint64_t head = entries_[row].head;
        if (key.head.bits != head) return key.head.bits < head ? -1 : 1;
        return key.head.whole ? 0 : AnyKey(*key.view)(NodeKey(node(row)));
    }
    // A step of a search that notes its way, without a jump that depends on what the keys are. 0 at its end.
    [[nodiscard]] Ref stepDown(const Key& key, IndexPath& path, Ref row) const {
        const MirrorEntry& entry = entries_[row];
        int side = key.head.bits > entry.head;
        path.nodes[path.depth] = row;
        if (key.head.bits == entry.head) [[unlikely]] {
            const int order = this->order(key, row);
            side = order > 0;
            if (order == 0) {
                path.found = true;
                path.at = path.depth;
                return 0;
            }
        }
        path.sides[path.depth++] = static_cast<std::uint8_t>(side);
        return linkOf(entry.links, side);
    }
    [[nodiscard]] static bool checking() { return false; }  // with memory checking on there is no mirror
    [[nodiscard]] static bool dropsChanges() { return false; }
    [[nodiscard]] static bool sound(Ref) { return true; }
    [[nodiscard]] static bool reachable(Ref) { return true; }

    void prefetchNode(Ref row) const {
        const Offset at = node(row);
        if (at == 0) return;
        __builtin_prefetch(tarn_heap_base + at);
        __builtin_prefetch(NodeKey(at));
    }
    // What linking a node at the end of a path writes to most often: the two nodes above it.
    void prefetchEnd(const IndexPath& path) const {
        if (mirror_->nodeless != 0) return;
        for (std::int32_t i = path.depth - 1; i >= 0 && i >= path.depth - 2; --i)
            MemoryTree::prefetchToChange(node(path.nodes[i]), path.sides[i]);
    }

protected:
    static constexpr std::uint32_t balanceAt = 2 * MirroredRowBits, nodeAt = balanceAt + 2, nodeStep = 16;
    static constexpr std::uint64_t rowMask = MostMirroredRow, balanceMask = 3;

    static constexpr std::uint32_t placeOf(int side) {
        return static_cast<std::uint32_t>(side) * MirroredRowBits;
    }
    static Ref linkOf(std::uint64_t links, int side) {
        return static_cast<Ref>(links >> placeOf(side) & rowMask);
    }
    static Offset nodeOf(std::uint64_t links) { return static_cast<Offset>(links >> nodeAt) * nodeStep; }

    IndexMirror* mirror_ = nullptr;
    MirrorEntry* entries_ = nullptr;
};

// The same for changes, which go to the nodes too.
class MirrorTree : public MirrorView {
public:
    explicit MirrorTree(const IndexTree& index) : MirrorTree(index, index.root->kinds, index.root->size) {}
    MirrorTree(const IndexTree& index, const FieldKinds& nodeKinds, std::int32_t nodeBytes)
        : MirrorView(index), tree_(*index.root, nodeKinds, nodeBytes, false),
          nodeless_(index.mirror->nodeless != 0) {}

    void setRoot(Ref row) {
        mirror_->root = row;
        if (!nodeless_) tree_.setRoot(node(row));
    }
    void setChild(Ref row, int side, Ref child) {
        std::uint64_t& links = entries_[row].links;
        const std::uint32_t at = placeOf(side);
        // What the node's own link holds is not read: the node may be far.
        if (!nodeless_) tree_.relink(nodeOf(links), side, node(child), linkOf(links, side) != 0);
        links = (links & ~(rowMask << at)) | std::uint64_t{child} << at;
    }
    void setBalance(Ref row, int balance) {
        std::uint64_t& links = entries_[row].links;
        links = (links & ~(balanceMask << balanceAt)) | static_cast<std::uint64_t>(balance + 1) << balanceAt;
        if (!nodeless_) tree_.setBalance(node(row), balance);
    }

    // Entries alone.
    void enter(Ref row, std::uint64_t head, Offset node) {
        entries_[row] = {head, std::uint64_t{node / nodeStep} << nodeAt | std::uint64_t{1} << balanceAt};
    }
    void leave(Ref row) { entries_[row] = {}; }
    // Of an entry that was just made, for a node that stands in the tree already.
    void note(Ref row, Ref left, Ref right, int balance) {
        entries_[row].links |= std::uint64_t{left} | std::uint64_t{right} << MirroredRowBits;
        entries_[row].links += static_cast<std::uint64_t>(balance) << balanceAt;
    }
    void setNode(Ref row, Offset node) {
        constexpr std::uint64_t others = (std::uint64_t{1} << nodeAt) - 1;
        entries_[row].links = (entries_[row].links & others) | std::uint64_t{node / nodeStep} << nodeAt;
    }

private:
    MemoryTree tree_;
    bool nodeless_;
};

// ---- the mirror's own life; none of these sets an error ----

// True when there is an entry for each row up to this. False: out of memory, as before.
bool ReserveMirror(IndexMirror& mirror, std::int32_t mostRow);
void DropMirror(IndexMirror& mirror);   // of any tree, also of one that is gone
void ClearMirror(IndexMirror& mirror);  // of a tree that is now empty
// Fills a mirror, which is empty and has room, with what stands in the tree. False for a tree that cannot be
// mirrored: the mirror is then of no use.
bool FillMirror(const IndexTree& index);
// Whether some node has this row's number already.
inline bool MirrorHas(const IndexMirror& mirror, std::int32_t row) {
    return reinterpret_cast<const MirrorEntry*>(At(mirror.entries))[row].links != 0;
}
// "" or what is wrong.
std::string CheckMirror(const IndexTree& index);

// ---- mirrors that stand for their trees; `shape` has the kinds of the keys ----

// Lets a mirror that shows its whole tree stand for it, and frees the nodes. Nothing when heads do not tell such keys.
void DropNodes(const IndexTree& index, const KeyView& shape);
// Makes the tree that a nodeless mirror stands for below `root`, which need not hold anything valid. False, with `root`
// empty: 802.
bool CopyNodes(const IndexMirror& mirror, const KeyView& shape, RecordDescriptor& root);
// Gives a nodeless mirror's own tree its nodes again: it then is a mirror like others. False: 802, and as before.
bool MakeNodes(const IndexTree& index, const KeyView& shape);

// ---- searches and the steps of a change, as in index_nodes.h; all keep the mirror ----

bool FindKey(const IndexTree& index, const KeyView& key, IndexPath& path);  // 763
// The places of whole keys, given by their heads, in nodeless mirrors; false, without an error, when one of them is
// there or a tree is damaged.
bool FindPlaces(IndexMirror* mirrors, const std::uint64_t* heads, IndexPath* paths, std::int32_t count);
void LinkPlace(const IndexTree& index, const IndexPath& path, std::uint64_t head, std::int32_t row);
// The row of a whole key of which there is a shortcut; 0 for none.
std::uint32_t FollowShortcut(const IndexTree& index, std::uint64_t head);
struct TreeSearch {
    IndexTree index;
    const KeyView* key = nullptr;
    IndexPath* path = nullptr;
};
bool FindKeys(const TreeSearch* searches, std::int32_t count);    // 763
bool PrepareUnlinkNode(const IndexTree& index, IndexPath& path);  // 763
// Of a path that has found; 0 for the node of a nodeless mirror.
Offset FoundNode(const IndexTree& index, const IndexPath& path);
std::int32_t FoundRow(const IndexTree& index, const IndexPath& path);
// `row` is that of the node, which is 0 for a nodeless mirror.
void LinkNode(const IndexTree& index, const IndexPath& path, const KeyView& key, Offset node,
              std::int32_t row);
void UnlinkNode(const IndexTree& index, IndexPath& path, const KeyView& key);
// The row of the node that is sought; 0 for none. False: 763.
bool SeekRow(const IndexTree& index, const TreeSeek& seek, const KeyView& key, std::int32_t& row);
// All trees of a table, row by row from the last one on: what is made next gets the same blocks in the order of
// their addresses.
void FreeTrees(const IndexTree* indexes, std::int32_t count);

// ---- walks (index_mirror_walk.cpp) ----

// A search for an end or for a neighbour; 0 for none. False: 763.
bool SeekOnWalk(const MirrorView& tree, TreeWalk& walk, const TreeSeek& seek, const MirrorView::Key& key,
                MirrorView::Ref& row);
// The neighbour above a whole key at which a walk upwards stands, if it knows enough rows; 0: nothing has changed.
inline MirrorView::Ref StepOnWalk(const MirrorView& tree, TreeWalk& walk, std::uint64_t head) {
    if (walk.known <= TreeWalk::fewRows + 1 || walk.side != 1 || tree.head(walk.row(0)) != head) return 0;
    walk.step();
    return walk.row(0);
}

}  // namespace tarn
