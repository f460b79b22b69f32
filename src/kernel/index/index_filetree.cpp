// SPDX-License-Identifier: Apache-2.0
//
// What the state of an operation (index_filestate.h) looks like to those who walk and change the tree.
#include "kernel/index/index_filetree.h"

#include "kernel/index/index_file.h"

#include "kernel/index/index_filestate.h"
#include "kernel/lists/packing.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"

#include <new>

namespace tarn {

FileTree::FileTree() = default;
FileTree::~FileTree() = default;
FileTree::FileTree(FileTree&&) noexcept = default;
FileTree& FileTree::operator=(FileTree&&) noexcept = default;

bool FileTree::open(const std::string& path, const KeyLayout& layout, os::OpenMode mode) {
    try {
        if (state_ == nullptr) state_.reset(new State);
        if (state_->open(path, layout, mode)) return true;
    } catch (const std::bad_alloc&) {
        if (state_ == nullptr) return SetError(ERR_OUT_OF_MEMORY), false;
        state_->fail(ERR_OUT_OF_MEMORY);
    }
    state_->records = state_->root = 0;
    state_->disk.close();
    return false;
}

bool FileTree::open(const std::string& path, const KeyView& shape, os::OpenMode mode) {
    KeyLayout layout;
    if (!LayoutOfKey(shape, layout)) layout.recordSize = 0;
    return open(path, layout, mode);
}

bool FileTree::close() {
    if (state_ == nullptr || !state_->disk.isOpen()) return true;
    const std::int32_t code = state_->disk.close();
    if (code == 0) return true;
    state_->fail(code);
    state_->revert();
    return false;
}

void FileTree::leaveOpen() {
    if (isOpen()) state_->disk.leaveOpen();
}

bool FileTree::isOpen() const {
    return state_ != nullptr && state_->disk.isOpen();
}

std::int32_t FileTree::failure() const {
    return state_ != nullptr ? state_->failure : std::int32_t{ERR_FILE_NOT_OPEN};
}

void FileTree::takeAnyBalance() {
    if (state_ != nullptr) state_->anyBalance = true;
}

FileTree::Ref FileTree::root() const {
    return state_ != nullptr ? state_->root : 0;
}

void FileTree::setRoot(Ref node) {
    if (state_->root == node) return;
    state_->root = node;
    state_->changed = true;
}

FileTree::Ref FileTree::child(Ref node, int side) const {
    const FileNode* const found = state_->live(node);
    return found != nullptr ? found->now[side != 0 ? WordRight : WordLeft] : 0;
}

void FileTree::setChild(Ref node, int side, Ref child) {
    FileNode* const found = state_->live(node);
    if (found != nullptr) state_->change(*found, side != 0 ? WordRight : WordLeft, child);
}

int FileTree::balance(Ref node) const {
    const FileNode* const found = state_->live(node);
    return found != nullptr ? found->now[WordBalance] : 0;
}

void FileTree::setBalance(Ref node, int balance) {
    FileNode* const found = state_->live(node);
    if (found != nullptr) state_->change(*found, WordBalance, balance);
}

int FileTree::order(const KeyView& key, Ref node) const {
    return state_->order(key, node);
}

bool FileTree::reachable(Ref node) const {
    const FileNode* const found = state_->load(node);
    return found != nullptr && (found->linksFit || state_->fail(ERR_INDEX_TYPE));
}

bool FileTree::sound(Ref node) const {
    return state_->live(node) != nullptr;
}

std::int64_t FileTree::most() const {
    return records();
}

std::int32_t FileTree::row(Ref node) const {
    const FileNode* const found = state_->live(node);
    return found != nullptr ? found->now[WordRow] : 0;
}

void FileTree::setRow(Ref node, std::int32_t row) {
    FileNode* const found = state_->live(node);
    if (found != nullptr) state_->change(*found, WordRow, row);
}

bool FileTree::readKeyBytes(Ref node, std::string& bytes) const {
    return state_->keyBytes(node, bytes);
}

bool FileTree::readKey(Ref node, RecordDescriptor& key) const {
    KeyView view;
    KeyLayout layout;
    const bool fits =
        KeyOfRecord(&key, view) && LayoutOfKey(view, layout) && SameKeyLayout(layout, state_->layout);
    if (!fits) return SetError(ERR_INDEX_VALUE), false;
    std::string bytes;
    if (!readKeyBytes(node, bytes)) return false;
    std::string_view left = bytes;
    char* field = At(key.data);
    for (std::int32_t i = 0; i < layout.count; ++i) {
        const Kind kind = layout.fields[i].kind;
        const bool hasRoom = !IsAdtKind(kind) || ReadAt<DescriptorHead>(field).size >= layout.fields[i].bytes;
        if (!hasRoom) return SetError(ERR_OUT_OF_MEMORY), false;
        if (!Unpack(left, field, kind)) return state_->fail(ERR_INDEX_TYPE);
        field += KindSize[kind];
    }
    return true;
}

FileTree::Ref FileTree::add(const KeyView& key, std::int32_t row) {
    return state_ != nullptr ? state_->add(key, row) : 0;
}

void FileTree::release(Ref node) {
    if (state_ != nullptr) state_->release(node);
}

std::int32_t FileTree::records() const {
    return state_ != nullptr ? state_->records : 0;
}

bool FileTree::commit() {
    return state_ != nullptr ? state_->commit() : (SetError(ERR_FILE_NOT_OPEN), false);
}

bool FileTree::revert() {
    return state_ == nullptr || state_->revert();
}

bool FileTree::clear() {
    return state_ != nullptr ? state_->clear() : (SetError(ERR_FILE_NOT_OPEN), false);
}

bool FindFileKey(const FileTree& tree, const KeyView& key, FilePath& path) {
    const bool whole = FindPath(tree, key, path) && (path.found || PrepareLink(tree, path));
    if (whole && tree.failure() == 0) return true;
    SetError(tree.failure() != 0 ? tree.failure() : std::int32_t{ERR_INDEX_TYPE});
    return false;
}

}  // namespace tarn
