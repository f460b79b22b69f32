// SPDX-License-Identifier: Apache-2.0
//
// How index files are gone to: what is kept open, how much is read and written, and renaming.
#include "kernel/index/index_file.h"
#include "kernel/index/index_filedisk.h"
#include "support/tempfolder.h"
#include "unit/kernel/index_cases.h"
#include "unit/kernel/index_file_fixture.h"

#include <functional>

using namespace tarn;
using namespace tarn::indexcases;

namespace {

using os::FileCall;
using os::FileError;

// ---- keeping the file open ----

TEST_F(IndexFiles, IndexOpenKeepsTheFileOpenForWhatFollows) {
    makeIntegers({1, 2, 3});
    const RecordValue key = recordOf(shape);
    IndexOpen(&root, block, key.get());
    EXPECT_EQ(disk.openHandles(), 1);
    disk.failAlways(FileCall::OpenRead, FileError::Denied);
    EXPECT_EQ(find("EQ", {integer(2)}), 20);
    EXPECT_EQ(find("LAST", {integer(2)}), 30);
    disk.stopFailing();
    EXPECT_EQ(insert({integer(4)}, 40), 0);  // opens it for writing, and keeps that
    disk.failAlways(FileCall::OpenRead, FileError::Denied);
    disk.failAlways(FileCall::Open, FileError::Denied);
    EXPECT_EQ(insert({integer(5)}, 50), 0);
    EXPECT_EQ(find("EQ", {integer(5)}), 50);
    EXPECT_EQ(disk.openHandles(), 1);
    IndexClose(block);
    EXPECT_EQ(disk.openHandles(), 0);
    EXPECT_EQ(find("EQ", {integer(5)}), -1);
    EXPECT_EQ(takeError(), 651);
    disk.stopFailing();
    EXPECT_EQ(check(), "");
}

TEST_F(IndexFiles, OneFileIsKeptOpenAtATime) {
    makeIntegers({1, 2, 3});
    const RecordValue key = recordOf(shape);
    const IndexBlock first = block;
    disk.put("/d/t.i2", bytes());
    block.fileName = "/d/t.i2";
    IndexOpen(&root, first, key.get());
    EXPECT_EQ(find("EQ", {integer(2)}), 20);  // of another file
    EXPECT_EQ(disk.openHandles(), 0);
    IndexOpen(&root, first, key.get());
    IndexOpen(&root, block, key.get());
    EXPECT_EQ(disk.openHandles(), 1);
    IndexClose(first);
    EXPECT_EQ(disk.openHandles(), 1);
    IndexClose(block);
    EXPECT_EQ(disk.openHandles(), 0);
    IndexOpen(&root, first, key.get());
    EXPECT_TRUE(CreateIndexFile(path, "t.tab", ""));
    EXPECT_EQ(disk.openHandles(), 0);
    EXPECT_EQ(IndexCount(&root, first), 0);
    IndexClose(first);
}

TEST_F(IndexFiles, OpeningAnIndexInMemoryDoesNothing) {
    IndexOpen(nullptr, IndexBlock{}, nullptr);
    IndexClose(IndexBlock{});
}

// ---- memory and reading ----

TEST_F(IndexFiles, NoOperationNeedsMemoryForValues) {
    make({integer(0), text("", 9), characters("", 3)});
    const auto key = [](int i) { return Cells{integer(i), text("t", 9), characters("v", 3)}; };
    const RecordValue one = recordOf(key(1)), two = recordOf(key(2));
    RecordValue found = recordOf(key(0));
    FailAllocation(0);
    EXPECT_EQ(IndexInsert(&root, block, one.get(), 1), 0);
    EXPECT_EQ(IndexInsert(&root, block, two.get(), 2), 0);
    EXPECT_TRUE(IndexFind("GE", &root, block, one.get(), found.get()).found);
    IndexUpdateRow(&root, block, two.get(), 7);
    IndexDelete(&root, block, one.get());
    EXPECT_EQ(IndexCount(&root, block), 1);
    IndexClear(&root, block);
    FailAllocation(-1);
    EXPECT_EQ(takeError(), 0);
}

// The number of calls of a kind that an operation makes.
int callsOf(os::SteeredFiles& disk, FileCall kind, const std::function<void()>& operation) {
    int calls = 0;
    for (bool failed = true; failed; ++calls) {
        disk.failAt(kind, calls + 1, FileError::ReadFailed);
        ClearError();
        operation();
        failed = ErrorCell() != 0;
    }
    disk.stopFailing();
    ClearError();
    return calls - 1;
}

TEST_F(IndexFiles, ASearchReadsNoMoreThanItsWay) {
    make({integer(0)});
    KeyView view;
    const RecordValue like = recordOf(shape);
    KeyOfRecord(like.get(), view);
    FileTree tree;
    EXPECT_TRUE(tree.open(path, view, os::OpenMode::ReadWrite));
    constexpr int nodes = 4095;
    for (int i = 0; i < nodes; ++i) {
        const RecordValue record = recordOf({integer(i * 1663 % nodes)});  // neighbours stand far apart
        FilePath way;
        EXPECT_TRUE(KeyOfRecord(record.get(), view) && FindFileKey(tree, view, way));
        LinkAt(tree, way, tree.add(view, i));
    }
    EXPECT_TRUE(tree.commit() && tree.close());
    EXPECT_EQ(check(), "");
    const std::int32_t height = IndexHeight(&root, block).height;
    const RecordValue key = recordOf({integer(777)});
    const int reads = callsOf(disk, FileCall::Read, [&] { IndexFind("EQ", &root, block, key.get()); });
    EXPECT_LE(reads, height + 2);
    EXPECT_EQ(callsOf(disk, FileCall::OpenRead, [&] { IndexFind("EQ", &root, block, key.get()); }), 1);
}

TEST_F(IndexFiles, WhatChangesIsWrittenOnce) {
    makeIntegers({2, 1, 3, 4});
    disk.clearLog();
    EXPECT_EQ(insert({integer(5)}, 50), 0);  // 3 sinks, 4 rises, 5 is new
    const std::vector<std::string> expected = {
        "open /d/t.i1 change",         "write 28", "write 24", "write 24", "write 24",
        "setmodified of an open file", "close"};
    EXPECT_EQ(disk.log(), expected);
    disk.clearLog();
    EXPECT_EQ(insert({integer(5)}, 50), 635);
    EXPECT_EQ(disk.log(), (std::vector<std::string>{"open /d/t.i1 change", "close"}));
}

// ---- a file that is kept open ----

TEST_F(IndexFiles, AKeptFileIsTheOneThatItsNameStandsForNow) {
    disk.putFolder("/p");
    disk.putFolder("/q");
    const RecordValue key = recordOf({integer(5)});
    for (const char* folder : {"/p/", "/q/"})
        EXPECT_TRUE(CreateIndexFile(std::string(folder) + "a.i1", "a.tab", ""));
    const IndexBlock relative = IndexFileBlock("a.i1", key.get());
    const auto sizeIn = [&](const char* folder) {
        return disk.contents(std::string(folder) + "a.i1").size();
    };
    disk.setCurrentFolder("/p");
    IndexOpen(&root, relative, key.get());
    disk.setCurrentFolder("/q");
    EXPECT_EQ(IndexInsert(&root, relative, key.get(), 1), 0);
    EXPECT_EQ(sizeIn("/p/"), 1104U);
    EXPECT_EQ(sizeIn("/q/"), 1104U + 28);
    IndexOpen(&root, relative, key.get());
    disk.put("/q/n", disk.contents("/p/a.i1"));
    disk.rename("/q/n", "/q/a.i1");
    EXPECT_EQ(IndexInsert(&root, relative, key.get(), 1), 0);
    EXPECT_EQ(sizeIn("/q/"), 1104U + 28);
    EXPECT_EQ(IndexCount(&root, relative), 1);
    IndexClose(relative);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(disk.openHandles(), 0);
}

// ---- renaming ----

TEST_F(IndexFiles, RenamingWritesTheOtherTablesName) {
    makeIntegers({1, 2});
    const std::string before = bytes();
    EXPECT_TRUE(RenameIndexFile(path, "/d/other.i1", "/d/other.table"));
    EXPECT_FALSE(disk.has(path));
    std::string expected = before;
    expected.replace(8, 41, "other.table" + std::string(30, '\0'));
    EXPECT_TRUE(disk.contents("/d/other.i1") == expected);
}

TEST_F(IndexFiles, RenamingThatFailsLeavesBothFilesAsTheyWere) {
    makeIntegers({1, 2});
    const std::string before = bytes();
    disk.put("/d/other.i1", "old");
    int failures = 0;
    for (;; ++failures) {
        disk.failAt(failures + 1, FileError::WriteFailed);
        if (RenameIndexFile(path, "/d/other.i1", "other.tab")) break;
        EXPECT_EQ(takeError(), 652);
        EXPECT_TRUE(bytes() == before);
        EXPECT_EQ(disk.contents("/d/other.i1"), "old");
        EXPECT_EQ(disk.openHandles(), 0);
    }
    EXPECT_EQ(failures, 4);  // open, write, close, rename
    disk.stopFailing();
    EXPECT_FALSE(RenameIndexFile("/d/none", "/d/other.i1", "other.tab"));
    EXPECT_EQ(takeError(), 653);
    disk.put("/d/short", "x");
    EXPECT_FALSE(RenameIndexFile("/d/short", "/d/other.i1", "other.tab"));
    EXPECT_EQ(takeError(), 656);
}

TEST_F(IndexFiles, AFileThatCannotBeMadeIsNotThere) {
    disk.putFolder("/d");
    int failures = 0;
    for (;; ++failures) {
        disk.failAt(failures + 1, FileError::DiskFull);
        if (CreateIndexFile(path, "t.tab", "")) break;
        EXPECT_EQ(takeError(), 654);
        EXPECT_FALSE(disk.has(path));
        EXPECT_EQ(disk.openHandles(), 0);
    }
    EXPECT_EQ(failures, 3);  // open, write, close
    const std::string whole = bytes();
    disk.put(path, "old");
    for (failures = 0;; ++failures) {
        disk.failAt(failures + 1, FileError::DiskFull);
        if (CreateIndexFile(path, "t.tab", "")) break;
        EXPECT_EQ(takeError(), 654);
        EXPECT_EQ(bytes(), "old");
    }
    EXPECT_EQ(failures, 5);  // two opened, write, close, rename
    EXPECT_TRUE(bytes() == whole);
    EXPECT_EQ(disk.allFiles(), std::vector<std::string>{path});
    disk.stopFailing();
    EXPECT_FALSE(CreateIndexFile("/none/t.i1", "t.tab", ""));
    EXPECT_EQ(takeError(), 652);
    EXPECT_FALSE(CreateIndexFile("", "t.tab", ""));
    EXPECT_EQ(takeError(), 657);
}

TEST_F(IndexFiles, TheRealFileSystemServesAsWell) {
    const os::Steered real(os::realFiles());
    const TempFolder folder;
    block = IndexFileBlock(folder / "t.i1", recordOf({integer(0)}).get());
    EXPECT_TRUE(CreateIndexFile(block.fileName, "t.tab", ""));
    for (int i = 0; i < 500; ++i) EXPECT_EQ(insert({integer(i * 7 % 500)}, i), 0);
    for (int i = 0; i < 500; i += 2) remove({integer(i)});
    EXPECT_EQ(IndexCount(&root, block), 250);
    EXPECT_EQ(find("GE", {integer(250)}), 251 * 143 % 500);
    const RecordValue like = recordOf({integer(0)});
    KeyView view;
    EXPECT_TRUE(KeyOfRecord(like.get(), view));
    EXPECT_EQ(CheckIndexFile(block.fileName, view, -1), "");
    for (int i = 499; i >= 0; --i) remove({integer(i)});
    EXPECT_EQ(takeError(), 604);
    EXPECT_EQ(os::sizeOf(block.fileName), 1104);
}

}  // namespace
