// SPDX-License-Identifier: Apache-2.0
//
// Index files in a file system that a test steers: made, filled and looked at, with keys of plain values.
#pragma once

#include "kernel/index/index_file.h"
#include "kernel/index/index_filecheck.h"
#include "kernel/index/index_filelayout.h"
#include "kernel/index/index_filetree.h"
#include "kernel/index/indexes.h"
#include "kernel/run/errors.h"
#include "support/errorcell.h"
#include "support/steerable.h"
#include "unit/kernel/runtime_fixture.h"
#include "unit/kernel/table_rows.h"

#include <functional>
#include <string>
#include <vector>

namespace tarn {

class IndexFiles : public Runtime {
protected:
    void TearDown() override {
        FailAllocation(-1);
        disk.revive();
        disk.stopFailing();
        IndexClose(block);
        EXPECT_EQ(disk.openHandles(), 0);
        EXPECT_EQ(takeError(), 0);
        Runtime::TearDown();
    }

    // An empty index for keys like `like`.
    void make(const Cells& like) {
        shape = like;
        block = IndexFileBlock(path, recordOf(like).get());
        disk.putFolder("/d");
        EXPECT_TRUE(CreateIndexFile(path, "/d/t.tab", "Index1 : record\nend record\n"));
    }
    void makeIntegers(std::initializer_list<int> keys) {
        make({integer(0)});
        for (const int key : keys) EXPECT_EQ(insert({integer(key)}, key * 10), 0);
    }
    std::int32_t insert(const Cells& key, std::int32_t row) {
        return IndexInsert(&root, block, recordOf(key).get(), row);
    }
    void remove(const Cells& key) { IndexDelete(&root, block, recordOf(key).get()); }
    std::int32_t find(std::string_view op, const Cells& key) const {
        const IndexHit hit = IndexFind(op, &root, block, recordOf(key).get());
        return hit.found ? hit.row : -1;
    }
    [[nodiscard]] std::string picture() const {
        String text;
        IndexPrint(&root, block, text.get());
        return std::string(text.view());
    }
    std::string check(std::int32_t rows = -1) const {
        const RecordValue key = recordOf(shape);
        KeyView view;
        EXPECT_TRUE(KeyOfRecord(key.get(), view));
        return CheckIndexFile(path, view, rows);
    }

    [[nodiscard]] std::string bytes() const { return disk.contents(path); }
    void put(const std::string& content) { disk.put(path, content); }
    [[nodiscard]] std::int32_t word(std::int64_t at) const { return WordAt(bytes().data() + at); }
    void putWord(std::int64_t at, std::int32_t value) {
        std::string all = bytes();
        PutWord(all.data() + at, value);
        put(all);
    }
    [[nodiscard]] std::int64_t at(std::int32_t record, std::int32_t wordNumber = 0) const {
        return IndexRecordAt(record, block.recordSize) + wordNumber * WordBytes;
    }
    [[nodiscard]] std::int32_t records() const {
        return IndexRecordsOf(static_cast<std::int64_t>(bytes().size()), block.recordSize);
    }
    [[nodiscard]] std::int32_t rootRecord() const { return word(1088); }
    // The tree of an index of single integers, as index_cases.h pictures it.
    [[nodiscard]] std::string form() const { return form(rootRecord()); }
    [[nodiscard]] std::string form(std::int32_t record) const {
        constexpr int balanceWord = 1, leftWord = 4, rightWord = 5, keyWord = 6;
        if (record == 0) return ".";
        const std::int32_t balance = word(at(record, balanceWord));
        const std::string key = std::to_string(word(at(record, keyWord)));
        const std::string node = (balance == 0 ? "" : balance < 0 ? "-" : "+") + key;
        const std::string left = form(word(at(record, leftWord)));
        const std::string right = form(word(at(record, rightWord)));
        return left == "." && right == "." ? node : "(" + left + " " + node + " " + right + ")";
    }
    [[nodiscard]] std::int32_t firstFree() const { return word(1092); }

    const std::string path = "/d/t.i1";
    os::SteeredFiles disk;
    os::Steered steered{disk};
    IndexBlock block;
    Cells shape;
    RecordDescriptor root{};
};

}  // namespace tarn
