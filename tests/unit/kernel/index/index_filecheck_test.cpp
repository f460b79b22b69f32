// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_filecheck.h"
#include "unit/kernel/index_file_fixture.h"

using namespace tarn;

namespace {

class IndexFileCheck : public IndexFiles {};

TEST_F(IndexFileCheck, TellsOfAFileThatIsNoIndex) {
    make({integer(0)});
    block.fileName = path;
    disk.remove(path);
    EXPECT_EQ(check(), "There is no such file.");
    put("");
    EXPECT_EQ(check(), "The file has 0 bytes, fewer than its header (1104).");
    put(std::string(1103, '\0'));
    EXPECT_EQ(check(), "The file has 1103 bytes, fewer than its header (1104).");
    put(std::string(1104 + 59, '\0'));
    EXPECT_EQ(check(), "The file has 3 bytes too many for records of 28.");
    put(std::string(1104, '\0'));
    EXPECT_EQ(check(), "The header says that it has 0 bytes, not 1104.");
    disk.put(path, bytes(), 0);
    EXPECT_EQ(check(), "The file cannot be read: Cannot read from file.");
    disk.put(path, bytes(), 0644);
    shape = {text("")};
    EXPECT_EQ(check(), "The key cannot stand in a file.");
    EXPECT_EQ(takeError(), 0);
}

struct Damage {
    const char* what;
    std::int64_t at;
    std::int32_t value;
    const char* message;
};

// Nodes 1 to 7 with the keys 4 2 6 1 3 5 7 and those keys as rows; then 8 and 9, which are free: 8 is before
// 9 in the list; and 10 with key 10.
class DamagedIndex : public IndexFileCheck {
protected:
    void SetUp() override {
        IndexFileCheck::SetUp();
        make({integer(0)});
        for (const int key : {40, 20, 60, 10, 30, 50, 70, 35, 45, 5})
            EXPECT_EQ(insert({integer(key)}, key), 0);
        remove({integer(45)});
        remove({integer(35)});
        EXPECT_EQ(check(), "");
        whole = bytes();
        EXPECT_EQ(firstFree(), 8);
    }
    std::string whole;
};

TEST_F(DamagedIndex, EachFaultIsToldWithItsPlace) {
    const Damage damages[] = {
        {"reserved word of the header", 4, 1, "The reserved word of the header is not 0."},
        {"unused bytes", 1074, 1, "The unused bytes of the header are not 0."},
        {"first word of the control record", 1080, 1, "Word 1 of the tree control record is not 0."},
        {"last word of the control record", 1100, 1, "Word 6 of the tree control record is not 0."},
        {"root", 1088, 11, "The root is record 11 of 10."},
        {"root", 1088, -1, "The root is record -1 of 10."},
        {"no root", 1088, 0, "Record 1 is neither linked nor free."},
        {"first free record", 1092, 11, "The first free record is 11 of 10."},
        {"free list is lost", 1092, 0, "Record 8 is neither linked nor free."},
        {"free list begins late", 1092, 9, "Free record 9 stands behind record 0, not 8."},
        {"node in the free list", 1092, 3, "Node 3 is in the list of free records."},
        {"balance", at(3, 1), 3, "Node 3 has balance 3."},
        {"balance", at(3, 1), -1, "Node 3 has balance -1, but its subtrees are 1 and 1 high."},
        {"balance", at(3, 1), -999, "Node 3 is linked and free."},
        {"reserved word", at(3, 2), 1, "The reserved words of node 3 are not 0."},
        {"reserved word", at(3, 3), 1, "The reserved words of node 3 are not 0."},
        {"left link", at(3, 4), 11, "Node 3 is linked to record 11 of 10."},
        {"right link", at(3, 5), -5, "Node 3 is linked to record -5 of 10."},
        {"lost subtree", at(2, 4), 0, "Node 2 has balance -1, but its subtrees are 0 and 1 high."},
        {"two ways", at(3, 4), 4, "More than one link leads to node 4."},
        {"a circle", at(3, 4), 1, "More than one link leads to node 1."},
        {"a free child", at(3, 4), 8, "Node 8 is linked and free."},
        {"key", at(5) + 24, 1, "The key of node 5 does not come behind that of node 2."},
        {"key", at(5) + 24, 40, "The key of node 1 does not come behind that of node 5."},
        {"free record that is none", at(9, 1), 0, "Free record 9 has balance 0."},
        {"free list, back", at(9, 4), 7, "Free record 9 stands behind record 8, not 7."},
        {"free list, on", at(9, 5), 11, "Free record 9 is linked to record 11 of 10."},
        {"free list, a circle", at(9, 5), 8, "The list of free records comes back to record 8."},
        {"free list, a node", at(9, 5), 2, "Node 2 is in the list of free records."},
    };
    for (const Damage& damage : damages) {
        SCOPED_TRACE(damage.what);
        putWord(damage.at, damage.value);
        EXPECT_EQ(check(), damage.message);
        put(whole);
    }
}

TEST_F(DamagedIndex, TextsWithoutAnEndAreTold) {
    whole.replace(8, 41, std::string(41, 'n'));
    put(whole);
    EXPECT_EQ(check(), "The name of the table file has no end.");
    whole.replace(8, 41, std::string(41, '\0'));
    whole.replace(49, 1025, std::string(1025, 't'));
    put(whole);
    EXPECT_EQ(check(), "The text of the key has no end.");
}

TEST_F(DamagedIndex, AFileThatIsTooShortIsTold) {
    put(whole.substr(0, whole.size() - 28));
    EXPECT_EQ(check(), "Node 4 is linked to record 10 of 9.");
    putWord(at(4, 4), 0);
    EXPECT_EQ(check(), "Node 4 has balance -1, but its subtrees are 0 and 0 high.");
}

TEST_F(IndexFileCheck, TheRowsAreOnesOfTheTable) {
    make({integer(0)});
    for (const int row : {1, 2, 3}) EXPECT_EQ(insert({integer(row)}, row), 0);
    EXPECT_EQ(check(3), "");
    EXPECT_EQ(check(4), "Row 4 has no node.");
    EXPECT_EQ(check(2), "Node 3 has row 3 of 2.");
    EXPECT_EQ(check(0), "Node 1 has row 1 of 0.");
    IndexUpdateRow(&root, block, recordOf({integer(2)}).get(), 1);
    EXPECT_EQ(check(3), "Row 1 has more than one node.");
    IndexUpdateRow(&root, block, recordOf({integer(2)}).get(), 0);
    EXPECT_EQ(check(3), "Node 2 has row 0 of 3.");
    EXPECT_EQ(check(), "");
}

TEST_F(IndexFileCheck, AFreeRecordAtTheEndIsTold) {
    make({integer(0)});
    EXPECT_EQ(insert({integer(1)}, 1), 0);
    std::string file = bytes();
    file.append(28, '\0');
    put(file);
    putWord(1092, 2);
    putWord(at(2, 1), -999);
    EXPECT_EQ(check(), "The last record, 2, is free.");
}

TEST_F(IndexFileCheck, StringsFitAndEndInZeros) {
    make({integer(0), text("", 4)});
    EXPECT_EQ(insert({integer(1), text("ab", 4)}, 1), 0);
    const std::string whole = bytes();
    for (const std::int32_t length : {-1, 5, INT32_MAX}) {
        putWord(at(1) + 28, length);
        EXPECT_EQ(check(), "Key field 2 of node 1 has " + std::to_string(length) + " characters of 4.");
        put(whole);
    }
    putWord(at(1) + 28, 1);
    EXPECT_EQ(check(), "Key field 2 of node 1 is not 0 behind its text.");
}

TEST_F(IndexFileCheck, ATreeThatIsTooHighIsTold) {
    make({integer(0)});
    constexpr int nodes = 70;
    std::string file = bytes();
    file.append(std::size_t{nodes} * 28, '\0');
    PutWord(file.data() + 1088, 1);
    for (int n = 1; n < nodes; ++n) PutWord(file.data() + at(n, 5), n + 1);
    for (int n = 1; n <= nodes; ++n) PutWord(file.data() + at(n) + 24, n);
    put(file);
    EXPECT_EQ(check(), "The tree is more than 64 nodes high.");
}

TEST_F(IndexFileCheck, WhoLooksOnSeesEveryNodeInOrderAndCanObject) {
    make({text("", 2)});
    for (const char* key : {"c", "a", "b"}) EXPECT_EQ(insert({text(key, 2)}, key[0]), 0);
    const RecordValue like = recordOf(shape);
    KeyView view;
    EXPECT_TRUE(KeyOfRecord(like.get(), view));
    std::string seen;
    const auto look = [&](std::int32_t row, std::string_view key) {
        seen += static_cast<char>(row);
        seen += key;
        return seen.size() > 20 ? std::string("Enough.") : std::string();
    };
    EXPECT_EQ(CheckIndexFile(path, view, -1, look), "Enough.");
    EXPECT_EQ(seen, std::string("a\0\0\0\1a\0b\0\0\0\1b\0c\0\0\0\1c\0", 21));
}

}  // namespace
