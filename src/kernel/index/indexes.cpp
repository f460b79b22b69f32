// SPDX-License-Identifier: Apache-2.0
//
// In memory each operation reads the key as a view, finds its place in the tree, gets what it needs (a node)
// and then changes links: the only step that can run out of memory comes before the first change.
#include "kernel/index/indexes.h"

#include "kernel/index/index_filedisk.h"
#include "kernel/index/index_filelayout.h"
#include "kernel/index/index_fileops_internal.h"
#include "kernel/index/index_nodes.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt_kinds.h"

#include <algorithm>

namespace tarn {

namespace {

bool isInFile(const IndexBlock& block) {
    return block.recordSize != 0;
}

// Of an index in a file the root is not looked into.
bool acceptTree(const RecordDescriptor* root, const IndexBlock& block) {
    if (!isInFile(block)) return AcceptRoot(root);
    return root != nullptr || Refuse(ERR_INDEX_TYPE);
}

KeyView keyOfRoot(const RecordDescriptor& root) {
    return KeyOfNode(NodeKey(root.data), root.kinds);
}

bool acceptKey(const RecordDescriptor& root, const RecordDescriptor* key, KeyView& view) {
    const bool good = KeyOfRecord(key, view) && (root.data == 0 || SameKeyKinds(view, keyOfRoot(root)));
    return good || Refuse(ERR_INDEX_VALUE);
}

// The path to a key that must be there.
bool findPresent(const RecordDescriptor& root, const RecordDescriptor* key, IndexPath& path) {
    KeyView view;
    if (!acceptKey(root, key, view) || !FindKey(root, view, path)) return false;
    return path.found || Refuse(ERR_TABLE_NOT_FOUND);
}

bool copyKey(const KeyView& found, RecordDescriptor& into) {
    char* field = At(into.data);
    for (std::int32_t i = 0; i < found.count; ++i) {
        if (!CopyValue(found.parts[i].field, field, found.parts[i].kind)) return false;
        field += KindSize[found.parts[i].kind];
    }
    return true;
}

}  // namespace

void IndexInit(RecordDescriptor* root) {
    if (root == nullptr) return SetError(ERR_INDEX_TYPE);
    *root = {0, TagRecord, 0, {}};
}

IndexBlock IndexFileBlock(std::string_view fileName, const RecordDescriptor* key) {
    constexpr std::int32_t ofNoKey = -1;  // no key has it, and no file
    KeyView view;
    KeyLayout layout;
    IndexBlock block{IndexHeaderBytes, ofNoKey, std::string(fileName), {}};
    if (!KeyOfRecord(key, view) || !LayoutOfKey(view, layout)) return block;
    block.recordSize = layout.recordSize;
    std::copy(layout.fields, layout.fields + layout.count, block.fields);
    return block;
}

void IndexOpen(const RecordDescriptor* root, const IndexBlock& block, const RecordDescriptor* key) {
    if (isInFile(block) && acceptTree(root, block)) FileIndexOpen(block, key);
}

void IndexClose(const IndexBlock& block) {
    if (isInFile(block)) LetGoOfIndex(block.fileName);
}

void IndexClear(RecordDescriptor* root, const IndexBlock& block) {
    if (!acceptTree(root, block)) return;
    if (isInFile(block)) return FileIndexClear(block);
    ++PlainTreeChanges;
    FreeTree(*root);
}

std::int32_t IndexInsert(RecordDescriptor* root, const IndexBlock& block, const RecordDescriptor* key,
                         std::int32_t row) {
    KeyView view;
    IndexPath path;
    if (!acceptTree(root, block)) return 0;
    if (isInFile(block)) return FileIndexInsert(block, key, row);
    ++PlainTreeChanges;
    if (!acceptKey(*root, key, view) || !FindKey(*root, view, path)) return 0;
    if (path.found) return ERR_DUPLICATE_FIELDS;
    const Offset node = MakeNode(view, row);
    if (node != 0) LinkNode(*root, path, view, node);
    return 0;
}

void IndexDelete(RecordDescriptor* root, const IndexBlock& block, const RecordDescriptor* key) {
    IndexPath path;
    if (!acceptTree(root, block)) return;
    if (isInFile(block)) return FileIndexDelete(block, key);
    ++PlainTreeChanges;
    if (!findPresent(*root, key, path) || !PrepareUnlinkNode(*root, path)) return;
    const FieldKinds kinds = root->kinds;
    const Offset node = path.nodes[path.at];
    UnlinkNode(*root, path);
    FreeNode(node, kinds);
}

void IndexUpdateRow(RecordDescriptor* root, const IndexBlock& block, const RecordDescriptor* key,
                    std::int32_t row) {
    IndexPath path;
    if (!acceptTree(root, block)) return;
    if (isInFile(block)) return FileIndexUpdateRow(block, key, row);
    ++PlainTreeChanges;
    if (findPresent(*root, key, path)) SetNodeRow(path.nodes[path.at], row);
}

IndexHit IndexFind(std::string_view op, const RecordDescriptor* root, const IndexBlock& block,
                   const RecordDescriptor* key, RecordDescriptor* foundKey) {
    TreeSeek seek;
    KeyView view, found;
    Offset node = 0;
    if (!acceptTree(root, block)) return {};
    if (!ReadOperator(op, seek)) return Refuse(ERR_INDEX_VALUE), IndexHit{};
    if (isInFile(block)) return FileIndexFind(seek, block, key, foundKey);
    if (seek.end == 0 && !acceptKey(*root, key, view)) return {};
    if (foundKey != nullptr && !acceptKey(*root, foundKey, found)) return {};
    if (!SeekNode(*root, seek, view, node) || node == 0) return {};
    if (foundKey != nullptr && !copyKey(KeyOfNode(NodeKey(node), root->kinds), *foundKey)) {
        ClearOutput(foundKey, KindRecord);
        return {};
    }
    return {NodeRow(node), true};
}

std::int32_t IndexCount(const RecordDescriptor* root, const IndexBlock& block) {
    if (!acceptTree(root, block)) return 0;
    if (isInFile(block)) return FileIndexCount(block);
    const MemoryTree tree(const_cast<RecordDescriptor&>(*root));
    std::int32_t count = 0;
    const bool whole = WalkInOrder(tree, [&](Offset) { return ++count > 0; });
    return whole ? count : (SetError(ERR_INDEX_TYPE), 0);
}

IndexShape IndexHeight(const RecordDescriptor* root, const IndexBlock& block) {
    if (!acceptTree(root, block)) return {};
    if (isInFile(block)) return FileIndexHeight(block);
    const MemoryTree tree(const_cast<RecordDescriptor&>(*root));
    IndexShape shape;
    std::int64_t left = tree.most();
    if (MeasureHeight(tree, tree.root(), left, 0, shape.height, shape.bad)) return shape;
    SetError(ERR_INDEX_TYPE);
    return {};
}

}  // namespace tarn
