// SPDX-License-Identifier: Apache-2.0
//
// The shape of index files: how insertions and deletions turn the tree, which records serve again, and its picture.
#include "kernel/index/index_file.h"
#include "unit/kernel/index_cases.h"
#include "unit/kernel/index_file_fixture.h"

using namespace tarn;
using namespace tarn::indexcases;

namespace {

using os::FileError;

// ---- shape ----

TEST_F(IndexFiles, AHeaderAloneIsAnEmptyTree) {
    make({integer(0)});
    EXPECT_FALSE(IndexFind("FIRST", &root, block, nullptr).found);
    EXPECT_FALSE(IndexFind("LAST", &root, block, nullptr).found);
    EXPECT_EQ(find("EQ", {integer(1)}), -1);
    EXPECT_EQ(find("GE", {integer(1)}), -1);
    EXPECT_EQ(IndexCount(&root, block), 0);
    EXPECT_EQ(IndexHeight(&root, block).height, 0);
    EXPECT_EQ(picture(), "Index is empty.");
    EXPECT_EQ(check(0), "");
}

TEST_F(IndexFiles, InsertingTurnsAsTheBalancesSay) {
    for (const Insertion& c : insertions) {
        makeIntegers(c.keys);
        EXPECT_EQ(form(), c.form);
        EXPECT_EQ(check(), "");
        EXPECT_EQ(IndexHeight(&root, block).bad, 0U);
    }
}

TEST_F(IndexFiles, DeletingTurnsAsTheBalancesSay) {
    for (const Deletion& c : deletions) {
        SCOPED_TRACE(c.what);
        makeIntegers(c.keys);
        remove({integer(c.gone)});
        EXPECT_EQ(form(), c.form);
        EXPECT_EQ(check(), "");
        EXPECT_EQ(IndexCount(&root, block), static_cast<std::int32_t>(c.keys.size()) - 1);
    }
}

TEST_F(IndexFiles, DeletingTheOnlyKeyLeavesTheHeader) {
    makeIntegers({1});
    EXPECT_EQ(bytes().size(), 1132U);
    remove({integer(1)});
    EXPECT_EQ(bytes().size(), 1104U);
    EXPECT_EQ(rootRecord(), 0);
}

TEST_F(IndexFiles, AFreedRecordIsUsedBeforeTheFileGrows) {
    makeIntegers({1, 2, 3, 4, 5});
    remove({integer(2)});
    remove({integer(3)});
    EXPECT_EQ(firstFree(), 3);
    EXPECT_EQ(insert({integer(8)}, 80), 0);
    EXPECT_EQ(firstFree(), 2);
    EXPECT_EQ(word(at(2, 4)), 0);  // none before it now
    EXPECT_EQ(word(at(3) + 24), 8);
    EXPECT_EQ(insert({integer(9)}, 90), 0);
    EXPECT_EQ(firstFree(), 0);
    EXPECT_EQ(records(), 5);
    EXPECT_EQ(insert({integer(10)}, 100), 0);
    EXPECT_EQ(records(), 6);
    EXPECT_EQ(check(), "");
}

TEST_F(IndexFiles, TheLastRecordGoesWithTheFreeOnesBeforeIt) {
    makeIntegers({1, 2, 3, 4, 5, 6});
    for (const int key : {5, 2, 4}) remove({integer(key)});
    EXPECT_EQ(records(), 6);
    EXPECT_EQ(firstFree(), 4);
    remove({integer(6)});  // 4 was the first of the list, 5 the last
    EXPECT_EQ(records(), 3);
    EXPECT_EQ(firstFree(), 2);
    EXPECT_EQ(check(), "");
    remove({integer(3)});
    EXPECT_EQ(records(), 1);
    EXPECT_EQ(firstFree(), 0);
    EXPECT_EQ(check(), "");
}

TEST_F(IndexFiles, ARecordInTheMiddleOfTheFreeListCanBeCutOff) {
    makeIntegers({1, 2, 3, 4, 5, 6, 7});
    for (const int key : {2, 6, 4}) remove({integer(key)});  // 4, 6, 2 in the list
    remove({integer(7)});
    EXPECT_EQ(records(), 5);
    EXPECT_EQ(firstFree(), 4);
    EXPECT_EQ(word(at(4, 5)), 2);
    EXPECT_EQ(word(at(2, 4)), 4);
    EXPECT_EQ(check(), "");
}

// ---- height, picture, clearing ----

TEST_F(IndexFiles, HeightNamesTheFirstBadBalance) {
    makeIntegers({4, 2, 6, 1, 3, 5, 7, 8});
    EXPECT_EQ(IndexCount(&root, block), 8);
    EXPECT_EQ(IndexHeight(&root, block).height, 4);
    EXPECT_EQ(IndexHeight(&root, block).bad, 0U);
    for (const std::int32_t wrong : {-1, 0, 5, -999}) {
        putWord(at(3, 1), wrong);  // of the node with key 6
        EXPECT_EQ(IndexHeight(&root, block).height, 4);
        EXPECT_EQ(IndexHeight(&root, block).bad, 3U);
    }
}

TEST_F(IndexFiles, PrintDrawsTheTree) {
    makeIntegers({2, 1, 4, 3, 6, 5, 7});
    EXPECT_EQ(picture(), "  |-[1 0]\n"
                         "|-[2 0]\n"
                         "| |-[3 0]\n"
                         "[4 0]\n"
                         "| |-[5 0]\n"
                         "|-[6 0]\n"
                         "  |-[7 0]");
}

TEST_F(IndexFiles, PrintShowsKeysOfSeveralFieldsOnOneLine) {
    make({flag(false), ordinal(0), fixedNumber(0), text("", 5)});
    EXPECT_EQ(insert({flag(true), ordinal(3), fixedNumber(12500), text("a\nb", 5)}, 1), 0);
    EXPECT_EQ(picture(), "[True,3,1.2500,a.b 0]");
    make({real(0), characters("", 3)});
    EXPECT_EQ(insert({real(-0.5), characters("xy", 3)}, 1), 0);
    EXPECT_EQ(picture(), "[-5.0000000000000000E-0001,xy  0]");
}

TEST_F(IndexFiles, PrintRefusesMoreThan32Nodes) {
    make({integer(0)});
    for (int i = 1; i <= 32; ++i) EXPECT_EQ(insert({integer(i)}, i), 0);
    EXPECT_NE(picture().find("[32 0]"), std::string::npos);
    EXPECT_EQ(insert({integer(33)}, 33), 0);
    EXPECT_EQ(picture(), "Cannot print, too many nodes (maximum is 32).");
}

TEST_F(IndexFiles, PrintOfADamagedTreeIsAnError) {
    makeIntegers({2, 1, 3});
    putWord(at(1, 5), 1);  // the root's right child is the root
    EXPECT_EQ(picture(), "");
    EXPECT_EQ(takeError(), 763);
}

TEST_F(IndexFiles, PrintThatCannotOpenTheFileLeavesAnErrorThatIsThere) {
    make({integer(0)});
    EXPECT_EQ(disk.remove(path), FileError::None);
    SetError(604);
    EXPECT_EQ(picture(), "Cannot open table index.");
    EXPECT_EQ(takeError(), 604);
}

TEST_F(IndexFiles, ClearingLeavesTheHeader) {
    makeIntegers({1, 2, 3, 4});
    const std::string text = bytes().substr(0, 1080);
    remove({integer(2)});
    IndexClear(&root, block);
    EXPECT_TRUE(bytes() == text + std::string(24, '\0'));
    IndexClear(&root, block);
    EXPECT_EQ(bytes().size(), 1104U);
    EXPECT_EQ(insert({integer(1)}, 1), 0);
    EXPECT_EQ(check(1), "");
}

}  // namespace
