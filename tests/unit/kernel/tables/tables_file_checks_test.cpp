// SPDX-License-Identifier: Apache-2.0
//
// Tables whose rows stand in a file: which error comes when several things are wrong.
#include "kernel/tables/tables_file_check.h"
#include "unit/kernel/tablesinfiles_fixture.h"

#include <functional>

namespace tarn {
namespace {

// ---- the order of checks ----

TEST_F(TablesInFiles, ATableThatIsNotOpenAnswers661BeforeAllElse) {
    table = closedTable({byNumber});
    RecordValue out;
    bool found = false;
    const std::function<void()> uses[] = {
        [&] { TableAdd(t(), 9, nullptr); },
        [&] { TableRead(t(), 9, nullptr, nullptr); },
        [&] { TableFind("XX", t(), 9, nullptr, nullptr, found); },
        [&] { TableUpdate(nullptr, 9, nullptr, t()); },
        [&] { TableDelete(t(), 9, nullptr); },
        [&] { TableClear(t()); },
        [&] { TableRebuild(t()); },
        [&] { TableRow(t(), 9, nullptr); },
        [&] { TableCount(t()); },
    };
    for (const auto& use : uses) {
        use();
        EXPECT_EQ(takeError(), 661);
    }
    EXPECT_EQ(TableIndexCount(t()), 1);
    EXPECT_EQ(takeError(), 0);
    EXPECT_NE(CheckTableFile(*t()), "");
}

TEST_F(TablesInFiles, TheFirstThatIsWrongIsReported) {
    make({byNumber}, 2);
    fill(2);
    const RecordValue other = recordOf({integer(1)}), good = recordOf(row(9, "z")),
                      key = recordOf({integer(1)}), wrongKey = recordOf({text("x")});
    RecordDescriptor broken = *good.get();
    broken.size = 3;
    RecordValue out;
    bool found = false;
    struct Case {
        const char* what;
        std::function<void()> use;
        std::int32_t error;
    };
    const Case cases[] = {
        {"a row that is missing", [&] { TableAdd(t(), 6, nullptr); }, 610},
        {"a malformed row", [&] { TableAdd(t(), 6, &broken); }, 610},
        {"a row of another shape", [&] { TableAdd(t(), 6, other.get()); }, 611},
        {"a full table before the index", [&] { TableAdd(t(), 6, good.get()); }, 619},
        {"an output of another shape",
         [&] { TableRead(t(), 6, nullptr, const_cast<RecordDescriptor*>(other.get())); }, 611},
        {"index 6", [&] { TableRead(t(), 6, key.get(), out.get()); }, 636},
        {"index 0", [&] { TableFind("EQ", t(), 0, key.get(), out.get(), found); }, 636},
        {"an unknown operator", [&] { TableFind("ABOVE", t(), 1, key.get(), out.get(), found); }, 636},
        {"a key that does not fit", [&] { TableDelete(t(), 1, wrongKey.get()); }, 636},
        {"no key", [&] { TableDelete(t(), 1, nullptr); }, 636},
        {"a row before the key", [&] { TableUpdate(other.get(), 1, wrongKey.get(), t()); }, 611},
        {"a key before the search", [&] { TableUpdate(good.get(), 6, key.get(), t()); }, 636},
    };
    for (const Case& c : cases) {
        c.use();
        EXPECT_EQ(takeError(), c.error) << c.what;
    }
    EXPECT_EQ(numbers(), (Numbers{1, 2}));
    expectWhole();
}

TEST_F(TablesInFiles, AnOlderErrorStaysAndTheOperationWorks) {
    make();
    fill(3);
    SetError(601);
    TableAdd(t(), 1, recordOf(row(4, "d")).get());
    TableDelete(t(), 1, recordOf({integer(1)}).get());
    TableAdd(t(), 1, recordOf(row(4, "d")).get());
    EXPECT_EQ(takeError(), 601);
    EXPECT_EQ(numbers(), (Numbers{4, 2, 3}));
    expectWhole();
}

TEST_F(TablesInFiles, FilesThatAreGoneAre653) {
    make({byNumber});
    fill(3);
    const std::string rows = bytes("a.tab");
    (void)files().remove("/d/a.tab");
    EXPECT_EQ(add(row(4, "d")), 653);
    EXPECT_EQ(find("FIRST", 1, {integer(0)}), -1);
    EXPECT_EQ(takeError(), 653);
    files().put("/d/a.tab", rows + "x");
    EXPECT_EQ(add(row(4, "d")), 655);
    files().put("/d/a.tab", rows);
    EXPECT_EQ(add(row(4, "d")), 0);
    expectWhole();
}

}  // namespace
}  // namespace tarn
