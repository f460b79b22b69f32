// SPDX-License-Identifier: Apache-2.0
//
// Index files: which error comes when several things are wrong, and that each operation finds a file that is gone or
// damaged.
#include "kernel/index/index_file.h"
#include "unit/kernel/index_cases.h"
#include "unit/kernel/index_file_fixture.h"

#include <functional>

using namespace tarn;
using namespace tarn::indexcases;

namespace {

using os::FileError;

// ---- errors ----

using Call = std::function<void()>;

TEST_F(IndexFiles, ANullRootComesBeforeAllElse) {
    const IndexBlock nowhere = IndexFileBlock("/d/none", nullptr);
    String text;
    const Call calls[] = {
        [&] { IndexOpen(nullptr, nowhere, nullptr); },
        [&] { IndexInsert(nullptr, nowhere, nullptr, 1); },
        [&] { IndexDelete(nullptr, nowhere, nullptr); },
        [&] { IndexUpdateRow(nullptr, nowhere, nullptr, 1); },
        [&] { EXPECT_FALSE(IndexFind("XX", nullptr, nowhere, nullptr).found); },
        [&] { EXPECT_EQ(IndexCount(nullptr, nowhere), 0); },
        [&] { EXPECT_EQ(IndexHeight(nullptr, nowhere).height, 0); },
        [&] { IndexPrint(nullptr, nowhere, text.get()); },
        [&] { IndexClear(nullptr, nowhere); },
    };
    for (const Call& call : calls) {
        call();
        EXPECT_EQ(takeError(), 763);
    }
}

TEST_F(IndexFiles, AWrongKeyComesBeforeTheFile) {
    make({integer(0)});
    disk.putFolder("/d");
    EXPECT_EQ(disk.remove(path), FileError::None);
    IndexFind("XX", &root, block, nullptr);
    EXPECT_EQ(takeError(), 636);
    const Cells wrong[] = {
        {text("a", 4)}, {fixedNumber(1)}, {integer(1), integer(2)}, {text("a")}, {real(1)}};
    for (const Cells& key : wrong) {
        RecordValue record = recordOf(key);
        const Call calls[] = {
            [&] { IndexOpen(&root, block, record.get()); },
            [&] { IndexInsert(&root, block, record.get(), 1); },
            [&] { IndexDelete(&root, block, record.get()); },
            [&] { IndexUpdateRow(&root, block, record.get(), 1); },
            [&] { IndexFind("EQ", &root, block, record.get()); },
            [&] { IndexFind("FIRST", &root, block, nullptr, record.get()); },
        };
        for (const Call& call : calls) {
            call();
            EXPECT_EQ(takeError(), 636);
        }
    }
    IndexOpen(&root, block, nullptr);
    EXPECT_EQ(takeError(), 636);
    IndexFind("EQ", &root, block, nullptr);
    EXPECT_EQ(takeError(), 636);
}

// A key of the same size and another kind: the kinds are part of the block.
TEST_F(IndexFiles, AKeyOfTheSameSizeAndAnotherKindIsAnError) {
    make({fixedNumber(0)});
    EXPECT_EQ(insert({real(1)}, 1), 0);
    EXPECT_EQ(takeError(), 636);
    make({text("", 3), text("", 5)});
    EXPECT_EQ(insert({text("", 5), text("", 3)}, 1), 0);
    EXPECT_EQ(takeError(), 636);
}

class EachOperation : public IndexFiles {
protected:
    // Runs every operation that opens the file, with the error that it must give.
    void expectAll(std::int32_t error) {
        const RecordValue key = recordOf(shape);
        const Call calls[] = {
            [&] { IndexOpen(&root, block, key.get()); },
            [&] { IndexInsert(&root, block, key.get(), 1); },
            [&] { IndexDelete(&root, block, key.get()); },
            [&] { IndexUpdateRow(&root, block, key.get(), 1); },
            [&] { EXPECT_FALSE(IndexFind("EQ", &root, block, key.get()).found); },
            [&] { EXPECT_FALSE(IndexFind("FIRST", &root, block, nullptr).found); },
            [&] { EXPECT_EQ(IndexCount(&root, block), 0); },
            [&] { EXPECT_EQ(IndexHeight(&root, block).height, 0); },
            [&] { IndexClear(&root, block); },
        };
        for (const Call& call : calls) {
            call();
            EXPECT_EQ(takeError(), error);
            EXPECT_EQ(disk.openHandles(), 0);
        }
        EXPECT_EQ(picture(), "Cannot open table index.");
        EXPECT_EQ(takeError(), 0);
        EXPECT_NE(check(), "");
    }
};

TEST_F(EachOperation, FindsThatTheFileIsGone) {
    make({integer(0)});
    EXPECT_EQ(disk.remove(path), FileError::None);
    expectAll(653);
    block.fileName = "/none/t.i1";
    expectAll(653);
}

TEST_F(EachOperation, FindsASizeThatIsNotThatOfWholeNodes) {
    makeIntegers({1, 2, 3});
    const std::string whole = bytes();
    for (const std::size_t size : {0U, 1U, 1103U, 1105U, 1131U, 1104U + 3 * 28 - 1}) {
        put(whole.substr(0, size));
        expectAll(656);
    }
    put(whole + "x");
    expectAll(656);
}

TEST_F(EachOperation, FindsADamagedHeader) {
    makeIntegers({1, 2, 3});
    const std::string whole = bytes();
    struct Damage {
        std::int64_t at;
        std::int32_t value;
    };
    constexpr Damage damages[] = {{0, 1105}, {0, 0}, {1088, 4}, {1088, -1}, {1092, 4}, {1092, -1}};
    for (const Damage& damage : damages) {
        putWord(damage.at, damage.value);
        expectAll(763);
        put(whole);
    }
}

TEST_F(IndexFiles, AFileThatCannotBeReadOrWrittenIsAnError) {
    makeIntegers({1, 2});
    disk.put(path, bytes(), 0444);
    EXPECT_EQ(find("EQ", {integer(1)}), 10);
    EXPECT_EQ(insert({integer(3)}, 30), 0);
    EXPECT_EQ(takeError(), 652);
    disk.put(path, bytes(), 0);
    EXPECT_EQ(find("EQ", {integer(1)}), -1);
    EXPECT_EQ(takeError(), 651);
    disk.put(path, bytes(), 0644);
    block.fileName = "/d";
    EXPECT_EQ(find("EQ", {integer(1)}), -1);
    EXPECT_EQ(takeError(), 651);
    block.fileName = "";
    EXPECT_EQ(find("EQ", {integer(1)}), -1);
    EXPECT_EQ(takeError(), 657);
    block.fileName = path;
}

}  // namespace
