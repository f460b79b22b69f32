// SPDX-License-Identifier: Apache-2.0
//
// Files of tables with damage at any byte: an error or values of legal shape, and a check that finds it.
#include "kernel/tables/tables_file_check.h"
#include "unit/kernel/mendedtables_fixture.h"

namespace tarn {
namespace {

// ---- damage ----

// Uses a table that may be damaged in any way: nothing crashes or hangs, and values keep their shape.
class DamagedTables : public MendedTables {
protected:
    void use() {
        RecordValue out;
        bool found = false;
        for (const char* op : {"FIRST", "LAST", "EQ", "GE", "NEXT", "PREVIOUS"}) {
            for (const int index : {1, 2}) {
                const Cells key = index == 1 ? Cells{integer(3)} : Cells{text("n3", 8)};
                TableFind(op, t(), index, recordOf(key).get(), out.get(), found);
                const std::int32_t error = takeError();
                EXPECT_TRUE(!found || error == 0);
                EXPECT_TRUE(error == 0 || error == 763 || error == 656 || error == 651 || error == 653)
                    << error;
                EXPECT_EQ(AdtCheck(out.get(), KindRecord), "");
            }
        }
        for (std::int32_t n = 1; n <= TableCount(t()); ++n) {
            TableRow(t(), n, out.get());
            takeError();
            EXPECT_EQ(AdtCheck(out.get(), KindRecord), "");
        }
        change();
    }
    void change() {
        const std::int32_t before = TableCount(t());
        const bool whole = CheckTableFile(*t()).empty();
        const std::int32_t added = add(row(50, "fifty"));
        EXPECT_TRUE(added == 0 || !whole) << added;
        EXPECT_EQ(TableCount(t()), before + (added == 0 ? 1 : 0));
        const std::int32_t updated = update(1, {integer(2)}, row(60, "sixty"));
        const std::int32_t removed = remove(1, {integer(3)});
        EXPECT_TRUE(!whole || (updated == 0 || updated == 604)) << updated;
        EXPECT_TRUE(!whole || (removed == 0 || removed == 604)) << removed;
        if (whole) {
            EXPECT_EQ(CheckTableFile(*t()), "");
        }
    }
    // The files of a closed table as they were, with one of them changed.
    void tryFile(const std::string& name, const std::string& content) {
        newDisk();
        for (const auto& [file, bytes] : whole_) put(file, bytes);
        put(name, content);
        table = closedTable({byNumber, byName});
        if (open() == 0) use();
        files().stopFailing();
        if (FileExists(t(), KindTable)) abandon();
        const RebuiltTable result = mend();
        if (name != "a.tab") {
            EXPECT_EQ(result.error, 0);
        }
        if (result.error == 0) {
            ASSERT_EQ(open(), 0);
            expectWhole();
            abandon();
        }
    }
    void remember() {
        whole_.clear();
        for (const std::string& name : names()) whole_.emplace_back(name, bytes(name));
    }
    std::vector<std::pair<std::string, std::string>> whole_;
};

TEST_F(DamagedTables, EachByteFlippedGivesAnErrorOrValuesOfLegalShape) {
    closedWith(5);
    remember();
    const auto files = whole_;
    for (const auto& [name, content] : files) {
        for (std::size_t at = 0; at < content.size() && !HasFailure(); ++at) {
            // Of the texts in the header of an index, which nobody reads, some bytes do.
            if (name != "a.tab" && at > 60 && at < 1070 && at % 100 != 0) continue;
            SCOPED_TRACE(name + ", byte " + std::to_string(at));
            std::string flipped = content;
            flipped[at] = static_cast<char>(flipped[at] ^ (1 << at % 8));
            tryFile(name, flipped);
        }
    }
}

TEST_F(DamagedTables, EachTruncationGivesAnErrorOrValuesOfLegalShape) {
    closedWith(5);
    remember();
    const auto files = whole_;
    for (const auto& [name, content] : files) {
        for (std::size_t size = 0; size < content.size() && !HasFailure(); ++size) {
            if (name != "a.tab" && size > 60 && size < 1070 && size % 100 != 0) continue;
            SCOPED_TRACE(name + ", size " + std::to_string(size));
            tryFile(name, content.substr(0, size));
        }
    }
}

TEST_F(DamagedTables, ABrokenHeaderLinkBalanceOrSizeIsFound) {
    closedWith(5, {byNumber});
    remember();
    const std::string index = bytes("a.i1");
    const auto node = [](int record, int word) {
        return static_cast<std::size_t>(1104 + (record - 1) * 28 + word * 4 + 3);
    };
    struct Case {
        const char* what;
        std::size_t at;
        char value;
    };
    const Case cases[] = {
        {"the header's size", 3, 'x'},       {"the root", 1080 + 11, 1},
        {"no root", 1080 + 11, 0},           {"the free list", 1080 + 15, 3},
        {"a row's number", node(3, 0), 1},   {"a balance", node(2, 1), 0},
        {"a link left", node(2, 4), 3},      {"a link right", node(2, 5), 0},
        {"a link to itself", node(4, 4), 4}, {"a link nowhere", node(4, 5), 9},
        {"a reserved word", node(1, 2), 1},  {"a key", node(5, 6), 9},
    };
    for (const Case& c : cases) {
        std::string broken = index;
        ASSERT_NE(broken[c.at], c.value) << c.what;
        broken[c.at] = c.value;
        put("a.i1", broken);
        if (open() == 0) {
            EXPECT_NE(CheckTableFile(*t()), "") << c.what;
            abandon();
        }
    }
    put("a.i1", index);
    ASSERT_EQ(open(), 0);
    expectWhole();
}

}  // namespace
}  // namespace tarn
