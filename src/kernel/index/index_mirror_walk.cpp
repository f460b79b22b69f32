// SPDX-License-Identifier: Apache-2.0
//
// The walk along a mirrored tree, from row to row.
#include "kernel/index/index_mirror.h"

namespace tarn {

namespace {

using Ref = MirrorView::Ref;

// Goes on from the path's node to the last one on this side. False: too deep.
bool goDown(const MirrorView& tree, IndexPath& path, int side) {
    std::int32_t depth = path.depth;
    for (Ref next = tree.child(path.nodes[depth], side); next != 0; next = tree.child(next, side)) {
        path.sides[depth] = static_cast<std::uint8_t>(side);
        if (++depth == MaxTreeDepth) return false;
        path.nodes[depth] = next;
    }
    path.depth = depth;
    return true;
}

// From the path's node to its neighbour; `row` is 0 when it has none, and the path then of no use.
bool goOn(const MirrorView& tree, IndexPath& path, int side, Ref& row) {
    row = 0;
    if (const Ref child = tree.child(path.nodes[path.depth], side); child != 0) {
        path.sides[path.depth] = static_cast<std::uint8_t>(side);
        if (++path.depth == MaxTreeDepth) return false;
        path.nodes[path.depth] = child;
        if (!goDown(tree, path, 1 - side)) return false;
    } else {
        while (path.depth > 0 && path.sides[path.depth - 1] == side) --path.depth;
        if (path.depth-- == 0) return true;
    }
    row = path.nodes[path.depth];
    return true;
}

// The way to the nearest key from the root.
bool findNearest(const MirrorView& tree, IndexPath& path, const TreeSeek& seek, const MirrorView::Key& key) {
    std::int32_t hit = -1;
    path.depth = 0;
    for (Ref node = tree.root(); node != 0;) {
        if (path.depth == MaxTreeDepth) return false;
        path.nodes[path.depth] = node;
        const int order = tree.order(key, node);
        const bool equal = order == 0 && seek.equal;
        const int side = order != 0 ? order > 0 : seek.nearest > 0;
        if (equal || SignOf(side) != seek.nearest) hit = path.depth;
        if (equal) break;
        path.sides[path.depth++] = static_cast<std::uint8_t>(side);
        node = tree.child(node, side);
    }
    path.depth = hit;
    return true;
}

bool findEnd(const MirrorView& tree, IndexPath& path, int side) {
    path.depth = tree.root() != 0 ? 0 : -1;
    path.nodes[0] = tree.root();
    return path.depth < 0 || goDown(tree, path, side);
}

// A new walk, to the node of its path, which has a depth below 0 for none.
void start(TreeWalk& walk, int side) {
    walk.known = walk.path.depth < 0 ? 0 : 1;
    walk.at = 0;
    walk.side = side;
    if (walk.known != 0) walk.row(0) = walk.path.nodes[walk.path.depth];
}

// The walk goes on by one row, and looks as far ahead as it can when it knows few.
bool proceed(const MirrorView& tree, TreeWalk& walk) {
    walk.step();
    if (walk.known > TreeWalk::fewRows) return true;
    // A path that is at its end stays there: 0 follows, which ends the walk when its turn comes.
    while (walk.known < TreeWalk::mostRows && (walk.known == 0 || walk.row(walk.known - 1) != 0)) {
        if (!goOn(tree, walk.path, walk.side, walk.row(walk.known))) return false;
        ++walk.known;
    }
    return true;
}

}  // namespace

bool SeekOnWalk(const MirrorView& tree, TreeWalk& walk, const TreeSeek& seek, const MirrorView::Key& key,
                Ref& row) {
    row = 0;
    const int side = seek.end != 0 ? seek.end < 0 : seek.nearest > 0;
    const bool goesOn = seek.end == 0 && !seek.equal && walk.known != 0 && walk.side == side &&
                        walk.row(0) != 0 && tree.order(key, walk.row(0)) == 0;
    if (goesOn) {
        if (!proceed(tree, walk)) return walk.known = 0, false;
        row = walk.row(0);
        if (row == 0) walk.known = 0;
        return true;
    }
    walk.known = 0;
    if (!(seek.end != 0 ? findEnd(tree, walk.path, 1 - side) : findNearest(tree, walk.path, seek, key)))
        return false;
    start(walk, side);
    row = walk.known != 0 ? walk.row(0) : 0;
    return true;
}

}  // namespace tarn
