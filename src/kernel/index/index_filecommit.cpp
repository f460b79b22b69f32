// SPDX-License-Identifier: Apache-2.0
//
// Writing what has changed, in an order that lets a process die between any two writes. Links lead to nodes
// at every moment: a free record leaves the list before it becomes a node, new nodes are written before any
// link to them, and nodes become free when no link leads to them any more.
//
// Where a tree is turned, the node that rises is written first, then the link to it, then those that sink
// below it. So a search that meets the half of a change comes to its key or walks in a circle, which it
// notices (763): it never misses a key that is there.
#include "kernel/index/index_filestate.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>

namespace tarn {

namespace {

void putWords(char* at, const std::int32_t (&words)[IndexNodeWords]) {
    for (std::int32_t i = 0; i < IndexNodeWords; ++i) PutWord(at + i * WordBytes, words[i]);
}

}  // namespace

std::int32_t FileTree::State::writeControl(Ref newRoot, Ref newFirstFree) {
    if (newRoot == rootInFile && newFirstFree == firstFreeInFile) return 0;
    char before[IndexControlWords * WordBytes], bytes[IndexControlWords * WordBytes];
    PutControl(before, rootInFile, firstFreeInFile);
    PutControl(bytes, newRoot, newFirstFree);
    rootInFile = newRoot;
    firstFreeInFile = newFirstFree;
    return disk.write(IndexControlAt, {bytes, sizeof bytes}, {before, sizeof before});
}

// Records that are not in the file yet, or are there as something else. Those that stand side by side are
// written together.
std::int32_t FileTree::State::writeFresh() {
    constexpr std::size_t mostTogether = 65536;
    toWrite.clear();
    for (const FileNode& node : nodes) {
        if (node.fresh != 0 && node.number <= records) toWrite.push_back(node.number);
    }
    std::sort(toWrite.begin(), toWrite.end());
    std::string run;
    std::int32_t code = 0;
    for (std::size_t i = 0; i < toWrite.size() && code == 0; ++i) {
        const FileNode& node = *inMemory(toWrite[i]);
        std::string& record = fresh[node.fresh - 1];
        putWords(record.data(), node.now);
        run += record;
        const bool goesOn = i + 1 < toWrite.size() && toWrite[i + 1] == node.number + 1;
        if (goesOn && run.size() < mostTogether) continue;
        const std::int64_t end = IndexRecordAt(node.number + 1, layout.recordSize);
        code = disk.write(end - static_cast<std::int64_t>(run.size()), run);
        run.clear();
    }
    return code;
}

std::int32_t FileTree::State::writeHead(const FileNode& node) {
    char before[IndexNodeHeadBytes], bytes[IndexNodeHeadBytes];
    putWords(before, node.was);
    putWords(bytes, node.now);
    return disk.write(IndexRecordAt(node.number, layout.recordSize), {bytes, sizeof bytes},
                      {before, sizeof before});
}

// Whether a node gets below one that was below it. A new node that rises stood at the end of the way.
bool FileTree::State::sinks(const FileNode& node, const FileNode& parent) {
    if (parent.fresh != 0) return true;
    const auto wasLinked = [&](const FileNode& to) {
        return to.was[WordLeft] == parent.number || to.was[WordRight] == parent.number;
    };
    if (wasLinked(node)) return true;
    for (const std::int32_t word : {WordLeft, WordRight}) {
        const FileNode* const child = inMemory(node.was[word]);
        if (child != nullptr && child->fresh == 0 && wasLinked(*child)) return true;
    }
    return false;
}

// The new link to a node, and those above it.
void FileTree::State::orderLinkTo(Ref number, std::int32_t depth) {
    for (std::int32_t level = 0; level < MaxTreeDepth && number != 0; ++level) {
        if (number == root) orderRoot(depth);
        const FileNode* const node = inMemory(number);
        number = node != nullptr ? node->parent : 0;
        orderNode(number, depth);
    }
}

// What must come before comes first: before a link, the node that it leads to; before a node that stays or
// sinks loses a child, the new link to that. Many changes that are written together can stand in each other's
// way: then any order will do.
void FileTree::State::orderNode(Ref number, std::int32_t depth) {
    FileNode* const node = inMemory(number);
    if (node == nullptr || !node->pending || depth > 2 * MaxTreeDepth) return;
    node->pending = false;
    const FileNode* const parent = inMemory(node->parent);
    const bool rises = number == root || (parent != nullptr && !sinks(*node, *parent));
    for (const std::int32_t word : {WordLeft, WordRight}) {
        const Ref child = node->was[word];
        const bool lost = child != node->now[WordLeft] && child != node->now[WordRight];
        if (lost && !rises) orderLinkTo(child, depth + 1);
    }
    for (const std::int32_t word : {WordLeft, WordRight}) {
        const FileNode* const child = inMemory(node->now[word]);
        if (child != nullptr && child->parent == number && !sinks(*child, *node))
            orderNode(child->number, depth + 1);
    }
    toWrite.push_back(number);
}

void FileTree::State::orderRoot(std::int32_t depth) {
    if (!rootPending) return;
    rootPending = false;
    orderNode(root, depth);
    toWrite.push_back(0);
}

void FileTree::State::orderNodes() {
    toWrite.clear();
    rootPending = true;
    for (FileNode& node : nodes) {
        const bool inTree = node.number <= records && !node.isFree();
        node.pending = inTree && node.fresh == 0 && node.differs();
        if (!inTree || !(node.pending || node.fresh != 0)) continue;
        for (const std::int32_t word : {WordLeft, WordRight}) {
            const Ref child = node.now[word];
            const bool isNew =
                node.fresh != 0 || (child != node.was[WordLeft] && child != node.was[WordRight]);
            FileNode* const linked = isNew ? inMemory(child) : nullptr;
            if (linked != nullptr) linked->parent = node.number;
        }
    }
    for (const FileNode& node : nodes) orderNode(node.number, 0);
    orderRoot(0);
    for (const FileNode& node : nodes) {
        if (node.pending) toWrite.push_back(node.number);
    }
}

// The heads of nodes that have changed, and the root at its time.
std::int32_t FileTree::State::writeNodes() {
    orderNodes();
    for (const Ref number : toWrite) {
        const std::int32_t code =
            number == 0 ? writeControl(root, firstFreeInFile) : writeHead(*inMemory(number));
        if (code != 0) return code;
    }
    return 0;
}

std::int32_t FileTree::State::writeFree() {
    for (const FileNode& node : nodes) {
        if (node.fresh != 0 || node.number > records || !node.isFree() || !node.differs()) continue;
        if (const std::int32_t code = writeHead(node); code != 0) return code;
    }
    return 0;
}

std::int32_t FileTree::State::writeChanges() {
    bool reuses = false, frees = false;
    for (const FileNode& node : nodes) {
        if (node.number > records) continue;
        reuses = reuses || (node.fresh != 0 && node.number <= recordsInFile);
        frees = frees || (node.fresh == 0 && node.isFree() && node.differs());
    }
    std::int32_t code = 0;
    // Where records become free as well, the list is not whole before they are: it is empty for a moment.
    if (reuses && firstFree != firstFreeInFile) code = writeControl(rootInFile, frees ? 0 : firstFree);
    if (code == 0) code = writeFresh();
    if (code == 0) code = writeNodes();
    if (code == 0) code = writeFree();
    if (code == 0) code = writeControl(root, firstFree);
    if (code == 0 && records < recordsInFile) code = disk.cut(IndexRecordAt(records + 1, layout.recordSize));
    return code;
}

// What was written is now what stands in the file.
void FileTree::State::settle() {
    if (records < recordsInFile) forgetNodes();
    for (FileNode& node : nodes) {
        std::copy(std::begin(node.now), std::end(node.now), std::begin(node.was));
        node.fresh = 0;
        node.parent = 0;
    }
    fresh.clear();
    recordsInFile = records;
    changed = false;
    committed = true;
}

// A file that was opened for the writing is closed again, which can fail, too.
std::int32_t FileTree::State::finishCommit(bool wasOpen, std::int32_t code) {
    if (code == 0 && !wasOpen) code = disk.close();
    if (code == 0) return 0;
    if (disk.isOpen() || disk.reopen() == 0) disk.takeBack();
    if (!wasOpen) disk.close();
    rootInFile = rootBefore;
    firstFreeInFile = firstFreeBefore;
    return code;
}

bool FileTree::State::commit() {
    if (failure != 0) return fail(failure);
    committed = false;
    if (!changed) return true;
    const bool wasOpen = disk.isOpen();
    if (const std::int32_t code = wasOpen ? 0 : disk.reopen(); code != 0) return fail(code);
    rootBefore = rootInFile;
    firstFreeBefore = firstFreeInFile;
    disk.begin();
    std::int32_t code = 0;
    try {
        code = writeChanges();
    } catch (const std::bad_alloc&) {
        code = ERR_OUT_OF_MEMORY;
    }
    code = finishCommit(wasOpen, code);
    if (code != 0) return fail(code);
    settle();
    return true;
}

bool FileTree::State::revert() {
    const bool wasOpen = disk.isOpen();
    std::int32_t code = !committed || wasOpen ? 0 : disk.reopen();
    if (committed && code == 0) {
        code = disk.takeBack();
        rootInFile = rootBefore;
        firstFreeInFile = firstFreeBefore;
        recordsInFile = IndexRecordsOf(disk.size(), layout.recordSize);
        if (!wasOpen && code == 0) code = disk.close();
    }
    forgetNodes();
    fresh.clear();
    records = recordsInFile;
    root = rootInFile;
    firstFree = firstFreeInFile;
    changed = committed = false;
    return code == 0 || fail(code);
}

bool FileTree::State::clear() {
    if (failure != 0) return fail(failure);
    if (!disk.isOpen()) return fail(ERR_FILE_NOT_OPEN);
    rootBefore = rootInFile;
    firstFreeBefore = firstFreeInFile;
    disk.begin();
    std::int32_t code = writeControl(0, 0);
    if (code == 0 && recordsInFile != 0) code = disk.cutForGood(IndexHeaderBytes);
    if (code != 0) return finishCommit(true, code), fail(code);
    committed = false;
    recordsInFile = rootInFile = firstFreeInFile = 0;
    return revert();
}

}  // namespace tarn
