// SPDX-License-Identifier: Apache-2.0
//
// The AVL tree of an index, whatever holds its nodes. A `Tree` names a node by a Ref (0 for none) and gives
//
//   Ref root()                        void setRoot(Ref)
//   Ref child(Ref, side)              void setChild(Ref, side, Ref)
//   int balance(Ref)                  void setBalance(Ref, int)
//   int order(const Key&, Ref)        below 0, 0 or above 0, as the key comes before the node's, is it, ...
//   bool checking()                   true: each node that is touched is checked
//   bool dropsChanges()               true: changes that met damage half-way are dropped by the tree itself
//   bool reachable(Ref)               whether a node can stand there
//   bool sound(Ref)                   whether a node that can be one stands there
//   int64 most()                      how many nodes there can be
// `reachable` and `most` only where `checking` can be true.
//
// Sides are 0 (left, lower keys) and 1 (right). Functions that give a bool have changed nothing, and found
// damage (763) when it is false. A change goes in two steps, so that what it needs can be got ready in
// between: a search and a Prepare function note the way in a TreePath, LinkAt and UnlinkAt follow it back.
// Those two neither allocate nor fail.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn {

// A tree of this height has more than 2 to the 44 nodes: whatever is deeper is damaged.
inline constexpr std::int32_t MaxTreeDepth = 64;

// The way to a node or to where it would be: nodes[0..depth-1] were passed on the side sides[i]. When
// `found`, nodes[at] is the node; prepared for its removal, the path goes on from there to nodes[depth], the
// node that leaves its place for it.
template <class Ref>
struct TreePath {
    std::int32_t depth = 0, at = 0;
    bool found = false;
    Ref nodes[MaxTreeDepth];
    std::uint8_t sides[MaxTreeDepth];
};

// What a search looks for.
struct TreeSeek {
    std::int32_t end = 0;      // -1 the lowest, 1 the highest, 0 by key
    bool equal = true;         // the key itself counts
    std::int32_t nearest = 0;  // else the nearest key below (-1) or above (1)
};

constexpr int SignOf(int side) {
    return side != 0 ? 1 : -1;
}

// ---- searching ----

// One step of a search that notes its way: `node` becomes the child to go on with, or 0 at the end.
template <class Tree, class Key, class Path, class Ref>
bool StepDown(const Tree& tree, const Key& key, Path& path, Ref& node) {
    if (path.depth == MaxTreeDepth || (tree.checking() && !tree.sound(node))) return false;
    const Ref left = tree.child(node, 0), right = tree.child(node, 1);  // as FindEqual does
    const int order = tree.order(key, node);
    path.nodes[path.depth] = node;
    if (order == 0) {
        path.found = true;
        path.at = path.depth;
        node = 0;
        return true;
    }
    path.sides[path.depth++] = order > 0;
    node = order > 0 ? right : left;
    return true;
}

template <class Tree, class Key, class Path>
bool FindPath(const Tree& tree, const Key& key, Path& path) {
    path.depth = 0;
    path.found = false;
    for (auto node = tree.root(); node != 0;) {
        if (!StepDown(tree, key, path, node)) return false;
    }
    return true;
}

// The node with this key, or 0.
template <class Tree, class Key, class Ref>
bool FindEqual(const Tree& tree, const Key& key, Ref& hit) {
    const bool checking = tree.checking();
    Ref node = tree.root();
    for (std::int32_t depth = 0; node != 0; ++depth) {
        if (depth == MaxTreeDepth || (checking && !tree.sound(node))) return false;
        // Both links are read before the order is known, so that the reads wait for memory together.
        const Ref left = tree.child(node, 0), right = tree.child(node, 1);
        const int order = tree.order(key, node);
        if (order == 0) break;
        node = order > 0 ? right : left;
    }
    hit = node;
    return true;
}

template <class Tree, class Key, class Ref>
bool FindNearest(const Tree& tree, const TreeSeek& seek, const Key& key, Ref& hit) {
    hit = 0;
    const bool checking = tree.checking();
    Ref node = tree.root();
    for (std::int32_t depth = 0; node != 0; ++depth) {
        if (depth == MaxTreeDepth || (checking && !tree.sound(node))) return false;
        const int order = tree.order(key, node);
        if (order == 0 && seek.equal) {
            hit = node;
            return true;
        }
        const int side = order != 0 ? order > 0 : seek.nearest > 0;
        if (SignOf(side) != seek.nearest) hit = node;  // what is passed on this side is the best so far
        node = tree.child(node, side);
    }
    if (seek.nearest == 0) hit = 0;
    return true;
}

template <class Tree, class Ref>
bool FindEnd(const Tree& tree, int side, Ref& hit) {
    hit = tree.root();
    if (hit == 0) return true;
    const bool checking = tree.checking();
    for (std::int32_t depth = 0; depth < MaxTreeDepth; ++depth) {
        if (checking && !tree.sound(hit)) return false;
        const Ref next = tree.child(hit, side);
        if (next == 0) return true;
        hit = next;
    }
    return false;
}

// ---- turning ----

// The child on the heavy side takes the place of `top`, which becomes its child. Balances stay.
template <class Tree, class Ref>
Ref TurnOnce(Tree& tree, Ref top, int heavy) {
    const Ref up = tree.child(top, heavy);
    tree.setChild(top, heavy, tree.child(up, 1 - heavy));
    tree.setChild(up, 1 - heavy, top);
    return up;
}

// The inner grandchild of the heavy side takes the place of `top` and splits its two subtrees among the other
// two.
template <class Tree, class Ref>
Ref TurnTwice(Tree& tree, Ref top, int heavy) {
    const Ref low = tree.child(top, heavy), up = tree.child(low, 1 - heavy);
    const int sign = SignOf(heavy), lean = tree.balance(up);
    tree.setChild(low, 1 - heavy, tree.child(up, heavy));
    tree.setChild(up, heavy, low);
    tree.setChild(top, heavy, tree.child(up, 1 - heavy));
    tree.setChild(up, 1 - heavy, top);
    tree.setBalance(top, lean == sign ? -sign : 0);
    tree.setBalance(low, lean == -sign ? sign : 0);
    tree.setBalance(up, 0);
    return up;
}

// Lets `node` stand where the path's node number `index` is linked.
template <class Tree, class Path, class Ref>
void Hang(Tree& tree, const Path& path, std::int32_t index, Ref node) {
    if (index == 0)
        tree.setRoot(node);
    else
        tree.setChild(path.nodes[index - 1], path.sides[index - 1], node);
}

// With checking on: the nodes of the path and all that turning them can touch. A tree that can drop its
// changes looks at those when they are touched.
template <class Tree, class Path>
bool SoundAround(const Tree& tree, const Path& path) {
    if (!tree.checking() || tree.dropsChanges()) return true;
    for (std::int32_t i = 0; i < path.depth; ++i) {
        for (const int side : {0, 1}) {
            const auto low = tree.child(path.nodes[i], side);
            if (low == 0) continue;
            if (!tree.sound(low)) return false;
            const auto inner = tree.child(low, 1 - side);
            if (inner != 0 && !tree.sound(inner)) return false;
        }
    }
    return true;
}

// ---- inserting ----

// One side of the path's node number `index` has grown too far.
template <class Tree, class Path>
void TurnGrown(Tree& tree, const Path& path, std::int32_t index) {
    const auto top = path.nodes[index];
    const int heavy = path.sides[index];
    const auto low = tree.child(top, heavy);
    if (tree.balance(low) != SignOf(heavy)) return Hang(tree, path, index, TurnTwice(tree, top, heavy));
    const auto up = TurnOnce(tree, top, heavy);
    tree.setBalance(top, 0);
    tree.setBalance(up, 0);
    Hang(tree, path, index, up);
}

template <class Tree, class Path>
bool PrepareLink(const Tree& tree, const Path& path) {
    return path.depth < MaxTreeDepth && SoundAround(tree, path);
}

// Links a node at the end of the path that its key, which was not found, was searched by.
template <class Tree, class Path, class Ref>
void LinkAt(Tree& tree, const Path& path, Ref node) {
    tree.setChild(node, 0, Ref{0});
    tree.setChild(node, 1, Ref{0});
    tree.setBalance(node, 0);
    Hang(tree, path, path.depth, node);
    for (std::int32_t i = path.depth - 1; i >= 0; --i) {
        const int sign = SignOf(path.sides[i]), balance = tree.balance(path.nodes[i]);
        if (balance == sign) return TurnGrown(tree, path, i);
        tree.setBalance(path.nodes[i], balance + sign);
        if (balance != 0) return;
    }
}

// ---- deleting ----

// The side of the path's node number `index` that it does not go has become too high. True when the whole is
// now lower than before.
template <class Tree, class Path>
bool TurnShrunk(Tree& tree, const Path& path, std::int32_t index) {
    const auto top = path.nodes[index];
    const int heavy = 1 - path.sides[index], sign = SignOf(heavy);
    const int lean = tree.balance(tree.child(top, heavy));
    if (lean == -sign) {
        Hang(tree, path, index, TurnTwice(tree, top, heavy));
        return true;
    }
    const auto up = TurnOnce(tree, top, heavy);
    tree.setBalance(top, lean == 0 ? sign : 0);
    tree.setBalance(up, lean == 0 ? -sign : 0);
    Hang(tree, path, index, up);
    return lean != 0;
}

// A found node with two children leaves its place to the highest one of its left subtree.
template <class Tree, class Path>
bool PrepareUnlink(const Tree& tree, Path& path) {
    auto node = tree.child(path.nodes[path.at], 0);
    if (tree.child(path.nodes[path.at], 1) == 0) node = 0;
    for (int side = 0; node != 0; side = 1) {
        path.sides[path.depth] = static_cast<std::uint8_t>(side);
        if (++path.depth == MaxTreeDepth || (tree.checking() && !tree.sound(node))) return false;
        path.nodes[path.depth] = node;
        node = tree.child(node, 1);
    }
    return SoundAround(tree, path);
}

// Cuts the last node of the path out, which has one child at most, and puts it in the place of the found one
// if it is another.
template <class Tree, class Path>
void CutOut(Tree& tree, Path& path) {
    const auto node = path.nodes[path.at], heir = path.nodes[path.depth];
    const auto left = tree.child(heir, 0);
    Hang(tree, path, path.depth, left != 0 ? left : tree.child(heir, 1));
    if (heir == node) return;
    tree.setBalance(heir, tree.balance(node));
    for (const int side : {0, 1}) tree.setChild(heir, side, tree.child(node, side));
    path.nodes[path.at] = heir;
    Hang(tree, path, path.at, heir);
}

// Unlinks the found node, which keeps its bytes, for the caller to free or to link again. The path is of no
// use afterwards.
template <class Tree, class Path>
void UnlinkAt(Tree& tree, Path& path) {
    CutOut(tree, path);
    for (std::int32_t i = path.depth - 1; i >= 0; --i) {
        const int sign = SignOf(path.sides[i]), balance = tree.balance(path.nodes[i]);
        if (balance == -sign) {
            if (!TurnShrunk(tree, path, i)) return;
            continue;
        }
        tree.setBalance(path.nodes[i], balance - sign);
        if (balance == 0) return;
    }
}

// ---- walking ----

// Calls `visit` with each node, the lowest key first, until it gives false; false then too.
template <class Tree, class Ref, class Visit>
bool WalkInOrder(const Tree& tree, Ref node, std::int64_t& left, std::int32_t depth, const Visit& visit) {
    if (node == 0) return true;
    if (depth == MaxTreeDepth || --left < 0 || (tree.checking() && !tree.sound(node))) return false;
    return WalkInOrder(tree, tree.child(node, 0), left, depth + 1, visit) && visit(node) &&
           WalkInOrder(tree, tree.child(node, 1), left, depth + 1, visit);
}
template <class Tree, class Visit>
bool WalkInOrder(const Tree& tree, const Visit& visit) {
    std::int64_t left = tree.most();
    return WalkInOrder(tree, tree.root(), left, 0, visit);
}

// The height of the tree at `node`; `bad` becomes the first node, subtrees before their top and left before
// right, whose balance is not that of its subtrees.
template <class Tree, class Ref>
bool MeasureHeight(const Tree& tree, Ref node, std::int64_t& left, std::int32_t depth, std::int32_t& height,
                   Ref& bad) {
    height = 0;
    if (node == 0) return true;
    if (depth == MaxTreeDepth || --left < 0 || (tree.checking() && !tree.reachable(node))) return false;
    std::int32_t heights[2] = {0, 0};
    for (const int side : {0, 1}) {
        if (!MeasureHeight(tree, tree.child(node, side), left, depth + 1, heights[side], bad)) return false;
    }
    if (bad == 0 && tree.balance(node) != heights[1] - heights[0]) bad = node;
    height = 1 + (heights[0] > heights[1] ? heights[0] : heights[1]);
    return true;
}

}  // namespace tarn
