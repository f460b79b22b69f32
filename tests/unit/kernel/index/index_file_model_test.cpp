// SPDX-License-Identifier: Apache-2.0
//
// Indexes in files against an ordered map, and against the same index in memory: both must have one shape.
#include "kernel/index/index_filecheck.h"
#include "unit/kernel/index_file_fixture.h"
#include "unit/kernel/index_model.h"

#include <map>
#include <random>

using namespace tarn;

namespace {

class IndexFileModel : public IndexFiles, public ::testing::WithParamInterface<std::size_t> {
protected:
    void SetUp() override {
        IndexFiles::SetUp();
        random.seed(seed());
        IndexInit(&twin);
    }
    void TearDown() override {
        IndexClear(&twin, memory);
        IndexFiles::TearDown();
    }
    [[nodiscard]] static const KeyShape& kinds() { return keyShapes[GetParam()]; }
    [[nodiscard]] static unsigned seed() { return 2000 + static_cast<unsigned>(GetParam()); }

    void insertOne(const Cells& key, int step) {
        const bool full = model.size() >= mostNodes && model.count(key) == 0;
        if (full) return;
        const bool fresh = model.emplace(key, step).second;
        EXPECT_EQ(insert(key, step), fresh ? 0 : 635);
        EXPECT_EQ(IndexInsert(&twin, memory, recordOf(key).get(), step), fresh ? 0 : 635);
    }
    void removeOne(const Cells& key) {
        remove(key);
        const std::int32_t error = takeError();
        EXPECT_EQ(error, model.erase(key) != 0 ? 0 : 604);
        IndexDelete(&twin, memory, recordOf(key).get());
        EXPECT_EQ(takeError(), error);
    }
    void updateOne(const Cells& key, int step) {
        IndexUpdateRow(&root, block, recordOf(key).get(), -step);
        EXPECT_EQ(takeError(), model.count(key) != 0 ? 0 : 604);
        if (model.count(key) != 0) model[key] = -step;
    }
    void findOne(const Cells& key) {
        static const char* const operators[] = {"EQ", "FIRST", "LAST", "GE", "GT", "LE", "LT"};
        const char* op = operators[random() % 7];
        RecordValue found = recordOf(shape);
        const IndexHit hit = IndexFind(op, &root, block, recordOf(key).get(), found.get());
        const IndexHit right = expectedHit(model, op, key);
        EXPECT_EQ(hit.found, right.found) << op;
        EXPECT_EQ(hit.row, right.row) << op;
        if (!hit.found) return;
        const auto node = model.find(cellsOf(found.get(), shape));
        EXPECT_TRUE(node != model.end() && node->second == hit.row) << op;
    }
    void checkAll() {
        EXPECT_EQ(check(), "");
        const IndexShape measured = IndexHeight(&root, block);
        EXPECT_EQ(measured.bad, 0U);
        EXPECT_EQ(measured.height, IndexHeight(&twin, memory).height);
        EXPECT_EQ(IndexCount(&root, block), static_cast<std::int32_t>(model.size()));
        EXPECT_LE(static_cast<std::size_t>(records()), model.empty() ? 0 : mostNodes);
    }

    static constexpr std::size_t mostNodes = 300;
    const IndexBlock memory;
    std::mt19937 random;
    IndexModelMap model;
    RecordDescriptor twin{};
};

TEST_P(IndexFileModel, TheFileDoesAsAnOrderedMapDoes) {
    constexpr int stepsOfRun = 13000;
    SCOPED_TRACE(kinds().name + std::string(", seed ") + std::to_string(seed()));
    make(randomKey(kinds(), random));
    for (int step = 0; step < stepsOfRun && !HasFailure(); ++step) {
        const bool growing = step / 1000 % 2 == 0;
        const Cells key = randomKey(kinds(), random);
        const auto choice = static_cast<unsigned>(random() % 10);
        if (choice < (growing ? 5U : 1U)) {
            insertOne(key, step);
        } else if (choice < 6) {
            removeOne(key);
        } else if (choice == 6) {
            updateOne(key, step);
        } else {
            findOne(key);
        }
        if (step % 32 == 0) checkAll();
    }
    while (!model.empty() && !HasFailure()) removeOne(Cells(model.begin()->first));
    checkAll();
    EXPECT_EQ(takeError(), 0);
}

INSTANTIATE_TEST_SUITE_P(KeyShapes, IndexFileModel, ::testing::Range<std::size_t>(0, std::size(keyShapes)));

// ---- several changes together ----

class FileTreeModel : public IndexFiles {
protected:
    // Some changes in a tree and in a copy of the model.
    void changeSome(FileTree& tree, std::map<int, int>& model) {
        const int changes = 1 + static_cast<int>(random() % 12);
        for (int i = 0; i < changes; ++i) {
            const int number = static_cast<int>(random() % 120);
            const RecordValue record = recordOf({integer(number)});
            KeyView key;
            FilePath way;
            ASSERT_TRUE(KeyOfRecord(record.get(), key) && FindFileKey(tree, key, way));
            ASSERT_EQ(way.found, model.count(number) != 0);
            if (!way.found) {
                LinkAt(tree, way, tree.add(key, number * 2));
                model[number] = number * 2;
            } else if (random() % 4 == 0) {
                tree.setRow(way.nodes[way.at], -number);
                model[number] = -number;
            } else {
                ASSERT_TRUE(PrepareUnlink(tree, way));
                const FileTree::Ref node = way.nodes[way.at];
                UnlinkAt(tree, way);
                tree.release(node);
                model.erase(number);
            }
        }
    }
    void expectSame(const std::map<int, int>& model) {
        std::map<int, int> found;
        const RecordValue record = recordOf({integer(0)});
        KeyView key;
        KeyOfRecord(record.get(), key);
        EXPECT_EQ(CheckIndexFile(path, key, -1,
                                 [&](std::int32_t row, std::string_view bytes) {
                                     found[WordAt(bytes.data())] = row;
                                     return std::string();
                                 }),
                  "");
        EXPECT_EQ(found, model);
    }
    std::mt19937 random;
};

TEST_F(FileTreeModel, ChangesAreCommittedDroppedOrTakenBackTogether) {
    constexpr unsigned seed = 77;
    constexpr int batches = 3000;
    SCOPED_TRACE(seed);
    random.seed(seed);
    make({integer(0)});
    const RecordValue record = recordOf({integer(0)});
    KeyView key;
    KeyOfRecord(record.get(), key);
    std::map<int, int> model;
    for (int batch = 0; batch < batches && !HasFailure(); ++batch) {
        FileTree tree;
        ASSERT_TRUE(tree.open(path, key, os::OpenMode::ReadWrite));
        std::map<int, int> changed = model;
        const std::string before = bytes();
        changeSome(tree, changed);
        const auto choice = static_cast<unsigned>(random() % 8);
        if (choice == 0) {  // dropped
            ASSERT_TRUE(tree.close());
            EXPECT_TRUE(bytes() == before);
            continue;
        }
        if (choice >= 4) {
            ASSERT_TRUE(tree.close());
        }
        EXPECT_TRUE(tree.commit());
        if (choice == 1 || choice == 4) {
            EXPECT_TRUE(tree.revert());
            EXPECT_TRUE(bytes() == before);
            continue;
        }
        model = changed;
        if (choice == 2) {  // a second time in the same tree
            changeSome(tree, model);
            EXPECT_TRUE(tree.commit());
        }
        if (batch % 4 == 0) expectSame(model);
    }
    expectSame(model);
}

}  // namespace
