// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_filestate.h"
#include "unit/kernel/index_file_fixture.h"

#include <array>

using namespace tarn;

namespace {

using os::FileCall;
using os::FileError;
using os::OpenMode;

class FileTrees : public IndexFiles {
protected:
    // A key, and the record that it is a view of.
    struct Key {
        explicit Key(const Cells& cells) : record(recordOf(cells)) { KeyOfRecord(record.get(), view); }
        RecordValue record;
        KeyView view;
    };
    bool open(FileTree& tree, OpenMode mode = OpenMode::ReadWrite) const {
        return tree.open(path, Key(shape).view, mode);
    }
    static FileTree::Ref insert(FileTree& tree, const Cells& cells, std::int32_t row) {
        const Key key(cells);
        FilePath way;
        if (!FindFileKey(tree, key.view, way) || way.found) return 0;
        const FileTree::Ref node = tree.add(key.view, row);
        if (node != 0) LinkAt(tree, way, node);
        return node;
    }
    static void remove(FileTree& tree, const Cells& cells) {
        const Key key(cells);
        FilePath way;
        ASSERT_TRUE(FindFileKey(tree, key.view, way) && way.found && PrepareUnlink(tree, way));
        const FileTree::Ref node = way.nodes[way.at];
        UnlinkAt(tree, way);
        tree.release(node);
    }
    static FileTree::Ref find(const FileTree& tree, const Cells& cells) {
        const Key key(cells);
        FileTree::Ref node = 0;
        return FindEqual(tree, key.view, node) ? node : -1;
    }
};

TEST_F(FileTrees, ATreeThatIsNotOpenIsEmptyAndRefuses) {
    make({integer(0)});
    FileTree tree;
    EXPECT_FALSE(tree.isOpen());
    EXPECT_EQ(tree.root(), 0);
    EXPECT_EQ(tree.records(), 0);
    EXPECT_EQ(tree.failure(), 661);
    EXPECT_TRUE(tree.close());
    EXPECT_TRUE(tree.revert());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(tree.add(Key({integer(1)}).view, 1), 0);
    EXPECT_FALSE(tree.commit());
    EXPECT_EQ(takeError(), 661);
    EXPECT_FALSE(tree.clear());
    EXPECT_EQ(takeError(), 661);
    EXPECT_FALSE(tree.open("/none", Key(shape).view, OpenMode::Read));
    EXPECT_EQ(takeError(), 653);
    EXPECT_EQ(tree.failure(), 653);
    EXPECT_EQ(tree.root(), 0);
    EXPECT_FALSE(tree.commit());
    EXPECT_EQ(takeError(), 653);
    EXPECT_FALSE(tree.open(path, Key({text("")}).view, OpenMode::Read));
    EXPECT_EQ(takeError(), 636);
    EXPECT_TRUE(open(tree));
    EXPECT_EQ(tree.failure(), 0);
}

TEST_F(FileTrees, NothingIsWrittenBeforeTheCommit) {
    makeIntegers({1, 2, 3});
    const std::string before = bytes();
    {
        FileTree tree;
        ASSERT_TRUE(open(tree));
        EXPECT_EQ(insert(tree, {integer(4)}, 40), 4);
        remove(tree, {integer(1)});
        EXPECT_EQ(tree.records(), 4);
        EXPECT_EQ(find(tree, {integer(4)}), 4);
        EXPECT_EQ(find(tree, {integer(1)}), 0);
        EXPECT_TRUE(bytes() == before);
    }
    EXPECT_TRUE(bytes() == before);
}

TEST_F(FileTrees, ACommitWithoutChangesWritesNothing) {
    makeIntegers({1, 2, 3});
    FileTree tree;
    ASSERT_TRUE(open(tree, OpenMode::Read));
    EXPECT_EQ(find(tree, {integer(3)}), 3);
    tree.setRow(3, 30);  // what it is
    disk.clearLog();
    EXPECT_TRUE(tree.commit());
    EXPECT_EQ(disk.calls(), 0);
}

TEST_F(FileTrees, ATreeThatIsOnlyReadCannotBeCommitted) {
    makeIntegers({1, 2, 3});
    const std::string before = bytes();
    FileTree tree;
    ASSERT_TRUE(open(tree, OpenMode::Read));
    EXPECT_EQ(insert(tree, {integer(4)}, 40), 4);
    EXPECT_FALSE(tree.commit());
    EXPECT_EQ(takeError(), 652);
    EXPECT_TRUE(bytes() == before);
}

TEST_F(FileTrees, RevertingBringsBackEveryByte) {
    makeIntegers({1, 2, 3, 4, 5, 6, 7, 8});
    for (const int key : {3, 6, 7}) IndexFiles::remove({integer(key)});
    const std::string before = bytes();
    const std::function<void(FileTree&)> changes[] = {
        [](FileTree& tree) { insert(tree, {integer(9)}, 9); },  // in a free record
        [](FileTree& tree) {
            for (int i = 10; i < 20; ++i) insert(tree, {integer(i)}, i);  // and behind the end
        },
        [](FileTree& tree) { remove(tree, {integer(8)}); },  // and two free records before it
        [](FileTree& tree) { remove(tree, {integer(2)}); },
        [](FileTree& tree) {
            for (const int i : {8, 5, 4, 2, 1}) remove(tree, {integer(i)});
        },
        [](FileTree& tree) {
            remove(tree, {integer(8)});
            insert(tree, {integer(30)}, 30);
            insert(tree, {integer(31)}, 31);
        },
        [](FileTree& tree) { tree.setRow(tree.root(), 99); },
    };
    for (const bool closed : {false, true}) {
        for (const auto& change : changes) {
            FileTree tree;
            ASSERT_TRUE(open(tree));
            change(tree);
            if (closed) {
                EXPECT_TRUE(tree.close());
            }
            EXPECT_TRUE(tree.commit());
            EXPECT_EQ(check(), "");
            EXPECT_FALSE(bytes() == before);
            EXPECT_TRUE(tree.revert());
            EXPECT_TRUE(bytes() == before);
            EXPECT_EQ(disk.openHandles(), closed ? 0 : 1);
            if (closed) continue;
            EXPECT_EQ(find(tree, {integer(8)}), 8);  // the tree is as the file
            EXPECT_EQ(find(tree, {integer(9)}), 0);
            EXPECT_TRUE(tree.revert());  // nothing more
            EXPECT_TRUE(bytes() == before);
        }
    }
}

TEST_F(FileTrees, AClosedTreeHasWhatItHasReadAndNoMore) {
    makeIntegers({4, 2, 6, 1, 3, 5, 7});
    const Key six({integer(6)});
    FileTree tree;
    FilePath way;
    ASSERT_TRUE(open(tree) && FindFileKey(tree, six.view, way));
    ASSERT_TRUE(tree.close());
    EXPECT_FALSE(tree.isOpen());
    EXPECT_EQ(disk.openHandles(), 0);
    EXPECT_EQ(find(tree, {integer(6)}), 3);
    EXPECT_EQ(tree.failure(), 0);
    EXPECT_EQ(tree.child(2, 0), 0);  // a node that was not read
    tree.setRow(way.nodes[way.at], 66);
    EXPECT_EQ(tree.failure(), 661);
    EXPECT_EQ(takeError(), 661);
    EXPECT_FALSE(tree.commit());
    EXPECT_EQ(takeError(), 661);
}

TEST_F(FileTrees, AClosedTreeIsOpenForItsCommitAlone) {
    makeIntegers({1, 2, 3});
    FileTree tree;
    ASSERT_TRUE(open(tree));
    insert(tree, {integer(4)}, 40);
    ASSERT_TRUE(tree.close());
    EXPECT_TRUE(tree.commit());
    EXPECT_EQ(disk.openHandles(), 0);
    EXPECT_EQ(check(), "");
    EXPECT_EQ(records(), 4);
}

TEST_F(FileTrees, AClosedTreeFindsThatItsFileHasChanged) {
    makeIntegers({1, 2, 3});
    const std::string before = bytes();
    for (const std::int32_t error : {653, 656}) {
        put(before);
        FileTree tree;
        ASSERT_TRUE(open(tree));
        insert(tree, {integer(4)}, 40);
        ASSERT_TRUE(tree.close());
        if (error == 656) put(before + std::string(28, 'x'));
        if (error == 653) disk.remove(path);
        EXPECT_FALSE(tree.commit());
        EXPECT_EQ(takeError(), error);
        EXPECT_EQ(tree.failure(), error);
    }
    put(before);
}

// As a table with several indexes changes them.
TEST_F(FileTrees, SeveralIndexesChangeInTurnOrNotAtAll) {
    makeIntegers({1, 2, 3});
    const std::string before = bytes();
    constexpr int trees = 5;
    const auto pathOf = [](int n) { return "/d/t.i" + std::to_string(n + 1); };
    for (int failing = 0; failing <= trees; ++failing) {
        for (int n = 0; n < trees; ++n) disk.put(pathOf(n), before);
        std::array<FileTree, trees> all;
        for (int n = 0; n < trees; ++n) {
            FileTree& tree = all[static_cast<std::size_t>(n)];
            ASSERT_TRUE(tree.open(pathOf(n), Key(shape).view, OpenMode::ReadWrite));
            insert(tree, {integer(10 + n)}, 4);
            ASSERT_TRUE(tree.close());
            EXPECT_EQ(disk.openHandles(), 0);
        }
        if (failing < trees) disk.put(pathOf(failing), before, 0444);
        int done = 0;
        while (done < trees && all[static_cast<std::size_t>(done)].commit()) ++done;
        EXPECT_EQ(done, failing);
        EXPECT_EQ(takeError(), failing < trees ? 652 : 0);
        if (done == trees) break;
        while (done-- > 0) EXPECT_TRUE(all[static_cast<std::size_t>(done)].revert());
        for (int n = 0; n < trees; ++n) {
            EXPECT_TRUE(disk.contents(pathOf(n)) == before);
            EXPECT_EQ(disk.remove(pathOf(n)), FileError::None);
        }
    }
}

TEST_F(FileTrees, ANewNodeThatIsReleasedAgainLeavesNoTrace) {
    makeIntegers({1, 2, 3});
    const std::string before = bytes();
    FileTree tree;
    ASSERT_TRUE(open(tree));
    tree.release(tree.add(Key({integer(9)}).view, 9));
    EXPECT_EQ(tree.records(), 3);
    EXPECT_TRUE(tree.commit());
    EXPECT_TRUE(bytes() == before);
    const FileTree::Ref first = tree.add(Key({integer(8)}).view, 8),
                        second = tree.add(Key({integer(9)}).view, 9);
    tree.release(first);  // free, before the one that stays
    EXPECT_EQ(tree.records(), 5);
    tree.release(second);
    EXPECT_EQ(tree.records(), 3);
    EXPECT_TRUE(tree.commit());
    EXPECT_TRUE(bytes() == before);
}

TEST_F(FileTrees, ARecordThatBecomesFreeIsTheNextNewNode) {
    makeIntegers({1, 2, 3});
    FileTree tree;
    ASSERT_TRUE(open(tree));
    remove(tree, {integer(1)});
    EXPECT_EQ(insert(tree, {integer(9)}, 90), 1);
    EXPECT_TRUE(tree.commit());
    EXPECT_EQ(check(), "");
    EXPECT_EQ(records(), 3);
    EXPECT_EQ(firstFree(), 0);
}

TEST_F(FileTrees, AKeyThatDoesNotFitIsNotAdded) {
    make({text("", 3), characters("", 2)});
    const Cells wrong[] = {{text("abcd", 9), characters("", 2)},
                           {text("abc", 3), characters("", 3)},
                           {text("abc", 3)},
                           {text("abc", 3), text("ab", 2)}};
    for (const Cells& key : wrong) {
        FileTree tree;
        ASSERT_TRUE(open(tree));
        EXPECT_EQ(tree.add(Key(key).view, 1), 0);
        EXPECT_EQ(takeError(), 636);
        EXPECT_EQ(tree.records(), 0);
    }
    FileTree tree;
    ASSERT_TRUE(open(tree));
    EXPECT_EQ(tree.add(Key({text("abc"), characters("", 2)}).view, 1), 1);  // an unbounded text that fits
}

TEST_F(FileTrees, KeysAreReadIntoRecordsOfTheirShapeAlone) {
    make({text("", 3), integer(0)});
    ASSERT_EQ(IndexFiles::insert({text("ab", 3), integer(258)}, 7), 0);
    FileTree tree;
    ASSERT_TRUE(open(tree, OpenMode::Read));
    std::string bytes;
    EXPECT_TRUE(tree.readKeyBytes(1, bytes));
    EXPECT_EQ(bytes, std::string("\0\0\0\2ab\0\0\0\1\2", 11));
    RecordValue key = recordOf(shape);
    EXPECT_TRUE(tree.readKey(1, *key.get()));
    EXPECT_TRUE(sameCells(cellsOf(key.get(), shape), {text("ab", 3), integer(258)}));
    for (const Cells& other : {Cells{text("", 4), integer(0)}, Cells{text(""), integer(0)},
                               Cells{integer(0), text("", 3)}, Cells{text("", 3)}}) {
        RecordValue wrong = recordOf(other);
        EXPECT_FALSE(tree.readKey(1, *wrong.get()));
        EXPECT_EQ(takeError(), 636);
    }
    EXPECT_EQ(tree.failure(), 0);
}

TEST_F(FileTrees, ATreeCanBeMovedAndUsedForAnotherFile) {
    makeIntegers({1, 2, 3});
    FileTree tree;
    ASSERT_TRUE(open(tree));
    insert(tree, {integer(4)}, 40);
    FileTree other(std::move(tree));
    EXPECT_TRUE(other.commit());
    EXPECT_EQ(check(), "");
    EXPECT_EQ(records(), 4);
    insert(other, {integer(5)}, 50);
    ASSERT_TRUE(open(other));  // drops what was not committed
    EXPECT_EQ(other.records(), 4);
    EXPECT_EQ(find(other, {integer(5)}), 0);
    tree = std::move(other);
    EXPECT_TRUE(tree.close());
}

TEST_F(FileTrees, ATreeThatOnlyReadsKeepsFewNodes) {
    make({integer(0)});
    constexpr int nodes = 2000;
    {
        FileTree tree;
        ASSERT_TRUE(open(tree));
        for (int i = 0; i < nodes; ++i) insert(tree, {integer(i)}, i);
        EXPECT_TRUE(tree.commit());
    }
    FileTree::State state;
    KeyLayout layout;
    ASSERT_TRUE(LayoutOfKey(Key(shape).view, layout) && state.open(path, layout, OpenMode::Read));
    for (int pass = 0; pass < 2; ++pass) {
        for (FileTree::Ref n = 1; n <= nodes; ++n) {
            ASSERT_NE(state.live(n), nullptr);
            ASSERT_LE(state.nodes.size(), FileTree::State::mostNodes);
            ASSERT_EQ(state.live(n)->now[WordRow], n - 1);
        }
    }
    ASSERT_TRUE(state.add(Key({integer(-1)}).view, 1) == nodes + 1);
    for (FileTree::Ref n = 1; n <= nodes + 1; ++n) ASSERT_NE(state.live(n), nullptr);
    EXPECT_EQ(state.nodes.size(), nodes + 1U);  // what has changed is not dropped
}

TEST_F(FileTrees, ManyChangesAreWrittenTogether) {
    make({integer(0), text("", 50)});
    FileTree tree;
    ASSERT_TRUE(open(tree));
    for (int i = 0; i < 3000; ++i) insert(tree, {integer(i * 7 % 3000), text("x", 50)}, i + 1);
    disk.clearLog();
    EXPECT_TRUE(tree.commit());
    EXPECT_LE(disk.calls(), 6);  // blocks of new records, the root
    EXPECT_EQ(check(3000), "");
    for (int i = 0; i < 3000; i += 2) remove(tree, {integer(i), text("x", 50)});
    EXPECT_TRUE(tree.commit());
    EXPECT_EQ(check(), "");
    EXPECT_TRUE(tree.clear());
    EXPECT_EQ(tree.records(), 0);
    EXPECT_EQ(bytes().size(), 1104U);
    EXPECT_TRUE(tree.revert());
    EXPECT_EQ(bytes().size(), 1104U);
    EXPECT_EQ(insert(tree, {integer(1), text("y", 50)}, 1), 1);
    EXPECT_TRUE(tree.commit());
    EXPECT_EQ(check(1), "");
}

TEST_F(FileTrees, AClosingThatFailsTakesTheCommitBack) {
    makeIntegers({1, 2, 3});
    const std::string before = bytes();
    for (const bool closed : {false, true}) {
        FileTree tree;
        ASSERT_TRUE(open(tree));
        insert(tree, {integer(4)}, 40);
        if (closed) {
            EXPECT_TRUE(tree.close());
        }
        disk.failAt(FileCall::Close, 1, FileError::DiskFull);
        EXPECT_NE(tree.commit(), closed);
        if (!closed) {
            EXPECT_FALSE(tree.close());
        }
        EXPECT_EQ(takeError(), 654);
        EXPECT_EQ(tree.failure(), 654);
        EXPECT_TRUE(bytes() == before);
        disk.stopFailing();
    }
}

TEST_F(FileTrees, DamageMakesANodeLookLikeALeaf) {
    makeIntegers({2, 1, 3});
    putWord(at(3, 1), 7);
    FileTree tree;
    ASSERT_TRUE(open(tree));
    EXPECT_TRUE(tree.reachable(3));
    EXPECT_EQ(tree.failure(), 0);
    EXPECT_FALSE(tree.sound(3));
    EXPECT_EQ(tree.failure(), 763);
    EXPECT_EQ(takeError(), 763);
    EXPECT_EQ(tree.child(3, 0), 0);
    EXPECT_EQ(tree.balance(3), 0);
    EXPECT_EQ(tree.row(3), 0);
    tree.setRow(3, 5);
    tree.setBalance(3, 1);
    tree.setChild(3, 1, 1);
    EXPECT_EQ(tree.add(Key({integer(9)}).view, 1), 0);
    EXPECT_FALSE(tree.commit());
    EXPECT_EQ(takeError(), 763);
    for (const FileTree::Ref none : {-1, 0, 4, INT32_MAX}) {
        EXPECT_FALSE(tree.reachable(none));
        EXPECT_FALSE(tree.sound(none));
        EXPECT_EQ(tree.child(none, 1), 0);
    }
    EXPECT_EQ(takeError(), 763);
}

}  // namespace
