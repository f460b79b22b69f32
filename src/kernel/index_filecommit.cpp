// SPDX-License-Identifier: Apache-2.0
//
// Writing what has changed, in an order that lets a process die between any two writes. Links lead to nodes
// at every moment: a free record leaves the list before it becomes a node, new nodes are written before any
// link to them, and nodes become free when no link leads to them any more.
//
// Where a tree is turned, the node that rises is written first, then the link to it, then those that sink. So
// a search that meets the half of a turn comes to its key or walks in a circle, which it notices (763); it
// never misses a key that is there. A node that rises is the one that was linked last.
#include "kernel/errors.h"
#include "kernel/index_filestate.h"
#include "kernel/runtime.h"

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
    for (std::uint32_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i].fresh != 0 && nodes[i].number <= records) toWrite.push_back(i);
    }
    std::sort(toWrite.begin(), toWrite.end(),
              [&](std::uint32_t a, std::uint32_t b) { return nodes[a].number < nodes[b].number; });
    std::string run;
    std::int32_t code = 0;
    for (std::size_t i = 0; i < toWrite.size() && code == 0; ++i) {
        const FileNode& node = nodes[toWrite[i]];
        std::string& record = fresh[node.fresh - 1];
        putWords(record.data(), node.now);
        run += record;
        const bool goesOn = i + 1 < toWrite.size() && nodes[toWrite[i + 1]].number == node.number + 1;
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

// The heads of nodes that have changed, and the root at its time.
std::int32_t FileTree::State::writeNodes() {
    toWrite.clear();
    for (std::uint32_t i = 0; i < nodes.size(); ++i) {
        const FileNode& node = nodes[i];
        if (node.fresh == 0 && node.number <= records && !node.isFree() && node.differs())
            toWrite.push_back(i);
    }
    std::sort(toWrite.begin(), toWrite.end(),
              [&](std::uint32_t a, std::uint32_t b) { return nodes[a].moved > nodes[b].moved; });
    std::int32_t code = 0;
    for (const std::uint32_t i : toWrite) {
        if (nodes[i].moved < rootMoved) code = writeControl(root, firstFreeInFile);
        if (code == 0) code = writeHead(nodes[i]);
        if (code != 0) return code;
    }
    return writeControl(root, firstFreeInFile);
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
        node.fresh = node.moved = 0;
    }
    fresh.clear();
    moves = rootMoved = 0;
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
    moves = rootMoved = 0;
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
