// SPDX-License-Identifier: Apache-2.0
//
// List controls as grids, on the object model without a screen.
#include "library/data/dbutil_grid.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/lists/lists.h"
#include "kernel/tables/filevalues.h"
#include "kernel/values/owned.h"
#include "kernel/values/records.h"
#include "library/data/dbutil_windows.h"
#include "library/system/longwork.h"
#include "library/system/system.h"
#include "os/files.h"
#include "platform/model/view.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* Resources = "GridDlg DIALOG\n"
                                  "    POSITION=10 10 200 100\n"
                                  "    Iconlist list\n"
                                  "        USETABSTOPS=1\n"
                                  "    Edit number\n"
                                  "END\n";

class Grid : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        before = platform::useView(platform::makeHeadlessView());
        ASSERT_TRUE(os::saveFile(folder / "x.rc", Resources).ok());
        ASSERT_EQ(Load(dialog, folder / "x.rc", "GridDlg"), "");
        list = FINDCONTROL(dialog, "list");
    }
    void TearDown() override {
        platform::DestroyAllWindows();
        platform::useView(std::move(before));
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    Lines rows() const {
        Lines lines;
        for (int row = 1; row <= GetListCount(list); ++row) lines.push_back(GetList(list, row));
        return lines;
    }
    // A table of the fields with one row for each list of texts.
    static void make(TableValue& table, const std::string& fields, const std::vector<Lines>& texts) {
        std::string lines;
        for (std::string_view rest = fields; !rest.empty();) {
            const std::size_t end = rest.find('\n');
            lines.append("\t\t").append(rest.substr(0, end)) += '\n';
            rest.remove_prefix(end + 1);
        }
        const String text("T : table\n\tT : record\n" + lines + "\tend record\nend table\n");
        TypeInfoToTable(text.get(), table.get());
        for (const Lines& row : texts) add(table, row);
    }
    static void add(TableValue& table, const Lines& texts) {
        RecordValue row;
        const ListDescriptor* shape = TableRows(table.get());
        RecordCopy(reinterpret_cast<const RecordDescriptor*>(At(shape->prototype)), row.get());
        for (int n = 1; n <= static_cast<int>(texts.size()); ++n) {
            const std::string& text = texts[static_cast<std::size_t>(n - 1)];
            const String value(text);
            if (FieldKindAt(row.get()->kinds, n) == KindString)
                StringAssignView(static_cast<StringDescriptor*>(RecordFieldAddress(row.get(), n)), text);
            else
                RecordPutFromText(n, value.get(), row.get());
        }
        TableAdd(table.get(), TableIndexCount(table.get()) > 0 ? 1 : 0, row.get());
    }

    TempFolder folder;
    const Object dialog{"GridDlg"};
    Object list;
    std::unique_ptr<platform::View> before;
};

constexpr const char* People = "name : string[20]\nage : integer\n";

TEST_F(Grid, ShowsTheRowsInTheOrderOfTheIndex) {
    TableValue table;
    make(table, People, {{"Cid", "7"}, {"Ann", "31"}, {"Bob", "-4"}});
    ASSERT_EQ(TableIndexCount(table.get()), 1);
    AddItem(list, "an old row");
    EXPECT_TRUE(FILLLISTBOX(list, false, 1, "", table.get()));
    EXPECT_EQ(rows(), (Lines{"Ann\t31", "Bob\t-4", "Cid\t7"}));
    EXPECT_EQ(GetCaption(list), "name\tage");
}

TEST_F(Grid, ShowsTheRowsInTheirOwnOrderWithoutAnIndex) {
    TableValue indexed, table;
    make(indexed, People, {});
    const auto* shape = reinterpret_cast<const RecordDescriptor*>(At(TableRows(indexed.get())->prototype));
    TableInit(table.get(), UNBOUNDED, shape, KeyMaps{}, People, false);
    for (const Lines& row : {Lines{"Cid", "7"}, Lines{"Ann", "31"}, Lines{"Cid", "7"}}) add(table, row);
    EXPECT_TRUE(FILLLISTBOX(list, false, 1, "", table.get()));
    EXPECT_EQ(rows(), (Lines{"Cid\t7", "Ann\t31", "Cid\t7"}));
}

TEST_F(Grid, ShowsTheRowsOfAFile) {
    TableValue memory, table;
    const std::string fields = "name : string[20]\nage : integer\n";
    make(memory, fields, {});
    const auto* shape = reinterpret_cast<const RecordDescriptor*>(At(TableRows(memory.get())->prototype));
    TableInit(table.get(), UNBOUNDED, shape, KeyMaps{}, fields, true);
    FileOpen(table.get(), KindTable, folder / "rows.tab");
    for (const Lines& row : {Lines{"Cid", "7"}, Lines{"Ann", "31"}}) add(table, row);
    EXPECT_TRUE(FILLLISTBOX(list, false, 1, "", table.get()));
    EXPECT_EQ(rows(), (Lines{"Cid\t7", "Ann\t31"}));
}

TEST_F(Grid, CharactersOfOneAreShownAsSuch) {
    TableValue table;
    make(table, "delete_flag : Tchar\nname : string[20]\nkind : enum\n",
         {{"42", "Ann", "42"}, {"32", "Bob", "7"}});
    FILLLISTBOX(list, false, 1, "", table.get());
    EXPECT_EQ(rows(), (Lines{"*\tAnn\t42", " \tBob\t7"}));
}

TEST_F(Grid, AnEmptyTableHasTitlesAndNoRows) {
    TableValue table;
    make(table, People, {});
    EXPECT_TRUE(FILLLISTBOX(list, false, 1, "", table.get()));
    EXPECT_EQ(rows(), Lines{});
    EXPECT_EQ(GetCaption(list), "name\tage");
}

TEST_F(Grid, LeavesOutTheFieldsBeforeTheFirst) {
    TableValue table;
    make(table, "flag : integer\nname : string[20]\nage : integer\n", {{"1", "Ann", "31"}});
    FILLLISTBOX(list, true, 1, "", table.get());
    EXPECT_EQ(GetCaption(list), "name\tage");
    EXPECT_EQ(rows(), Lines{"Ann\t31"});
    FILLLISTBOX(list, true, 3, "", table.get());
    EXPECT_EQ(GetCaption(list), "age");
    EXPECT_EQ(rows(), Lines{"31"});
    FILLLISTBOX(list, false, 2, "Who\tHow old", table.get());
    EXPECT_EQ(GetCaption(list), "Who\tHow old");
    EXPECT_EQ(rows(), Lines{"Ann\t31"});
    FILLLISTBOX(list, false, 9, "", table.get());
    EXPECT_EQ(GetCaption(list), "");
    EXPECT_EQ(rows(), Lines{""});
}

TEST_F(Grid, EveryKindOfCellHasItsText) {
    TableValue table;
    make(table, "yes : boolean\nprice : fixed\nsize : real\nname : string[20]\nmany : set of integer[1:9]\n",
         {{"Yes", "12.5", "0.1", "a\tb\nc"}});
    ASSERT_EQ(TableCount(table.get()), 1);
    FILLLISTBOX(list, false, 1, "", table.get());
    EXPECT_EQ(GetList(list, 1), "True\t12.5000\t0.1\ta b c\t[]");
}

TEST_F(Grid, FieldsWithoutANameAreCounted) {
    TableValue plain, table;
    make(plain, People, {});
    const auto* shape = reinterpret_cast<const RecordDescriptor*>(At(TableRows(plain.get())->prototype));
    TableInit(table.get(), UNBOUNDED, shape, KeyMaps{}, "name : string[20]\n", false);
    EXPECT_EQ(TABLEFIELDNAMES(table.get()), (Lines{"name", "FIELD2"}));
}

TEST_F(Grid, WhatIsNoTableShowsNothing) {
    TableDescriptor none{};
    AddItem(list, "an old row");
    EXPECT_TRUE(FILLLISTBOX(list, false, 1, "", &none));
    EXPECT_EQ(rows(), Lines{});
    EXPECT_EQ(ErrorCell(), 762);
    ClearError();
}

TEST_F(Grid, FindsColumnsByTheTitleLine) {
    const struct {
        const char* titles;
        Lines columns;
    } cases[] = {{"", {}},
                 {"\t", {}},
                 {"name", {"name"}},
                 {"name\tage", {"name", "age"}},
                 {"\tname\tage\t", {"name", "age"}},
                 {"\t\tage\t", {"", "age"}},
                 {"name  \t age", {"name", "age"}}};
    for (const auto& one : cases) {
        SetCaption(list, one.titles);
        EXPECT_EQ(GETCOLUMNPOSITIONS(list), one.columns) << one.titles;
    }
    SetCaption(list, "\tname\tage\t");
    EXPECT_EQ(GETCOLUMNPOSITION(list, "name"), 1);
    EXPECT_EQ(GETCOLUMNPOSITION(list, " AGE "), 2);
    EXPECT_EQ(GETCOLUMNPOSITION(list, "size"), 0);
    EXPECT_EQ(GETCOLUMNPOSITION(list, ""), 0);
}

TEST_F(Grid, GivesCells) {
    SetCaption(list, "name\tage\tcity");
    AddItem(list, "Ann\t31\tOslo");
    AddItem(list, "Bob");
    AddItem(list, "");
    EXPECT_EQ(GETLISTCOLUMNVALUE(list, 1, "age"), "31");
    EXPECT_EQ(GETLISTCOLUMNVALUE(list, 1, "CITY"), "Oslo");
    EXPECT_EQ(GETLISTCOLUMNVALUE(list, 2, "age"), "");
    for (const int row : {-1, 0, 4}) EXPECT_EQ(GETLISTCOLUMNVALUE(list, row, "name"), "") << row;
    EXPECT_EQ(GETLISTCOLUMNVALUE(list, 1, ""), "");
    EXPECT_EQ(GETLISTCOLUMNVALUE(list, 1, "size"), "");
    EXPECT_EQ(GETLISTCOLUMNVALUES(list, "name"), (Lines{"Ann", "Bob", ""}));
    EXPECT_EQ(GETLISTCOLUMNVALUES(list, "city"), (Lines{"Oslo", "", ""}));
    EXPECT_EQ(GETLISTCOLUMNVALUES(list, ""), Lines{});
    SetCaption(list, "");
    EXPECT_EQ(GETLISTCOLUMNVALUE(list, 1, "name"), "");
}

TEST_F(Grid, ChangesOneCell) {
    SetCaption(list, "name\tage\tcity");
    AddItem(list, "Ann\t31\tOslo");
    AddItem(list, "Bob");
    SETLISTCOLUMNVALUE(list, 1, "age", "32");
    EXPECT_EQ(GetList(list, 1), "Ann\t32\tOslo");
    SETLISTCOLUMNVALUE(list, 2, "city", "Rome");
    EXPECT_EQ(GetList(list, 2), "Bob\t\tRome") << "a row that is too short gets cells";
    SETLISTCOLUMNVALUE(list, 1, "name", "A\tB");
    EXPECT_EQ(GetList(list, 1), "A B\t32\tOslo") << "a value stays one cell";
    const Lines before = rows();
    for (const int row : {-1, 0, 3}) SETLISTCOLUMNVALUE(list, row, "name", "x");
    SETLISTCOLUMNVALUE(list, 1, "", "x");
    SETLISTCOLUMNVALUE(list, 1, "size", "x");
    EXPECT_EQ(rows(), before);
}

TEST_F(Grid, NumbersOfFieldsAreChecked) {
    const Object field = FINDCONTROL(dialog, "number");
    const struct {
        const char* text;
        bool good;
    } cases[] = {{"0", true}, {"2", true},  {" 1 ", true}, {"-1", false},  {"3", false},
                 {"", false}, {"x", false}, {"1x", false}, {"1 2", false}, {"99999999999", false}};
    for (const auto& one : cases) {
        SetText(field, one.text);
        EXPECT_EQ(DLGCHECKINTFIELD(field, "Header rows", 0, 2),
                  one.good ? "" : "Header rows should be between 0 and 2.")
            << one.text;
    }
}

// ---- long work ----

// A clock on which each look takes a while.
class SlowClock : public os::SteeredClock {
public:
    std::int64_t steady() override {
        advance(step);
        return SteeredClock::steady();
    }
    std::int64_t step = 50'000'000;
};

class Long : public Grid {
protected:
    void SetUp() override {
        Grid::SetUp();
        clockBefore = os::useClock(&clock);
    }
    void TearDown() override {
        os::useClock(clockBefore);
        Grid::TearDown();
    }
    SlowClock clock;
    os::Clock* clockBefore = nullptr;
};

TEST_F(Long, WorkIsStoppedByItsUser) {
    LongWork work("Working");
    int steps = 0;
    platform::view().setIdle([&] {
        if (steps > 60) platform::pressToolStop();
    });
    while (steps < 10000 && work.go()) ++steps;
    platform::view().setIdle({});
    EXPECT_TRUE(work.stopped());
    EXPECT_GT(steps, 60);
    EXPECT_LT(steps, 70);
    EXPECT_FALSE(Progress(1, 2)) << "readers are told too";
}

TEST_F(Long, ShortWorkShowsNothingToStop) {
    clock.step = 1000;
    LongWork work("Working");
    for (int i = 0; i < 1000; ++i) EXPECT_TRUE(work.go());
    EXPECT_FALSE(platform::pressToolStop());
}

TEST_F(Long, AStopOfInnerWorkEndsTheOuterToo) {
    LongWork outer("Outer");
    {
        LongWork inner("Inner");
        platform::view().setIdle([] { platform::pressToolStop(); });
        while (inner.go()) {}
        platform::view().setIdle({});
    }
    EXPECT_TRUE(outer.stopped());
    EXPECT_FALSE(outer.go());
}

TEST_F(Long, AFillThatIsStoppedKeepsItsRows) {
    TableValue table;
    make(table, "n : integer\n", {});
    for (int i = 1; i <= 500; ++i) add(table, {std::to_string(i)});
    platform::view().setIdle([] { platform::pressToolStop(); });
    EXPECT_FALSE(FILLLISTBOX(list, false, 1, "", table.get()));
    platform::view().setIdle({});
    EXPECT_GT(GetListCount(list), 1);
    EXPECT_LT(GetListCount(list), 500);
    EXPECT_FALSE(platform::pressToolStop()) << "the progress is gone";
}

}  // namespace
}  // namespace tarn
