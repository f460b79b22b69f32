// SPDX-License-Identifier: Apache-2.0
//
// A change is made in memory and written at the end, so that whatever fails before has changed nothing.
#include "kernel/index/index_fileops_internal.h"

#include "kernel/index/index_filelayout.h"
#include "kernel/index/index_nodes.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt_kinds.h"

namespace tarn {

namespace {

// Whether a key has the fields of the block.
bool acceptKey(const IndexBlock& block, const RecordDescriptor* key, KeyView& view, KeyLayout& layout) {
    const KeyLayout own = LayoutOfBlock(block);
    const bool good = KeyOfRecord(key, view) && LayoutOfKey(view, layout) &&
                      layout.recordSize == block.recordSize && (own.count == 0 || SameKeyLayout(layout, own));
    return good || Refuse(ERR_INDEX_VALUE);
}

bool openFor(const IndexBlock& block, const RecordDescriptor* key, KeyView& view, FileTree& tree,
             os::OpenMode mode) {
    KeyLayout layout;
    return acceptKey(block, key, view, layout) && tree.open(block.fileName, layout, mode);
}

// The path to a key that must be there.
bool findPresent(const IndexBlock& block, const RecordDescriptor* key, FileTree& tree, FilePath& path) {
    KeyView view;
    if (!openFor(block, key, view, tree, os::OpenMode::ReadWrite)) return false;
    return FindFileKey(tree, view, path) && (path.found || Refuse(ERR_TABLE_NOT_FOUND));
}

bool seekNode(const FileTree& tree, const TreeSeek& seek, const KeyView& key, FileTree::Ref& node) {
    const bool whole = seek.end != 0       ? FindEnd(tree, seek.end > 0, node)
                       : seek.nearest == 0 ? FindEqual(tree, key, node)
                                           : FindNearest(tree, seek, key, node);
    return (whole && tree.failure() == 0) || Refuse(ERR_INDEX_TYPE);
}

void finish(FileTree& tree) {
    if (tree.commit()) tree.close();
}

}  // namespace

bool OpenIndexOf(const IndexBlock& block, FileTree& tree) {
    return tree.open(block.fileName, LayoutOfBlock(block), os::OpenMode::Read);
}

void FileIndexOpen(const IndexBlock& block, const RecordDescriptor* key) {
    FileTree tree;
    KeyView view;
    if (openFor(block, key, view, tree, os::OpenMode::Read)) tree.leaveOpen();
}

std::int32_t FileIndexInsert(const IndexBlock& block, const RecordDescriptor* key, std::int32_t row) {
    FileTree tree;
    KeyView view;
    FilePath path;
    if (!openFor(block, key, view, tree, os::OpenMode::ReadWrite) || !FindFileKey(tree, view, path)) return 0;
    if (path.found) return ERR_DUPLICATE_FIELDS;
    const FileTree::Ref node = tree.add(view, row);
    if (node == 0) return 0;
    LinkAt(tree, path, node);
    finish(tree);
    return 0;
}

void FileIndexDelete(const IndexBlock& block, const RecordDescriptor* key) {
    FileTree tree;
    FilePath path;
    if (!findPresent(block, key, tree, path)) return;
    if (!PrepareUnlink(tree, path)) return SetError(ERR_INDEX_TYPE);
    const FileTree::Ref node = path.nodes[path.at];
    UnlinkAt(tree, path);
    tree.release(node);
    finish(tree);
}

void FileIndexUpdateRow(const IndexBlock& block, const RecordDescriptor* key, std::int32_t row) {
    FileTree tree;
    FilePath path;
    if (!findPresent(block, key, tree, path)) return;
    tree.setRow(path.nodes[path.at], row);
    finish(tree);
}

IndexHit FileIndexFind(const TreeSeek& seek, const IndexBlock& block, const RecordDescriptor* key,
                       RecordDescriptor* foundKey) {
    FileTree tree;
    KeyView view, found;
    KeyLayout layout = LayoutOfBlock(block), foundLayout;
    if (seek.end == 0 && !acceptKey(block, key, view, layout)) return {};
    if (foundKey != nullptr) {
        if (!acceptKey(block, foundKey, found, foundLayout)) return {};
        layout = foundLayout;
    }
    FileTree::Ref node = 0;
    if (!tree.open(block.fileName, layout, os::OpenMode::Read) || !seekNode(tree, seek, view, node))
        return {};
    if (node == 0) return {};
    if (foundKey != nullptr && !tree.readKey(node, *foundKey))
        return ClearOutput(foundKey, KindRecord), IndexHit{};
    return {tree.row(node), true};
}

std::int32_t FileIndexCount(const IndexBlock& block) {
    FileTree tree;
    std::int32_t count = 0;
    if (!OpenIndexOf(block, tree)) return 0;
    const bool whole = WalkInOrder(tree, [&](FileTree::Ref) { return ++count > 0; });
    return whole && tree.failure() == 0 ? count : (SetError(ERR_INDEX_TYPE), 0);
}

IndexShape FileIndexHeight(const IndexBlock& block) {
    FileTree tree;
    IndexShape shape;
    if (!OpenIndexOf(block, tree)) return {};
    tree.takeAnyBalance();
    FileTree::Ref bad = 0;
    std::int64_t left = tree.most();
    const bool whole = MeasureHeight(tree, tree.root(), left, 0, shape.height, bad);
    shape.bad = static_cast<Offset>(bad);
    return whole && tree.failure() == 0 ? shape : (SetError(ERR_INDEX_TYPE), IndexShape{});
}

void FileIndexClear(const IndexBlock& block) {
    FileTree tree;
    if (tree.open(block.fileName, LayoutOfBlock(block), os::OpenMode::ReadWrite) && tree.clear())
        tree.close();
}

}  // namespace tarn
