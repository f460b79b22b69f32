// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/breakpoints.h"

#include "os/files.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>

namespace tarn {
namespace {

class BreakpointStore : public ::testing::Test {
protected:
    std::unique_ptr<BreakpointTable> own_ = std::make_unique<BreakpointTable>();
    BreakpointTable* table = own_.get();
    TempFolder folder;

    std::string text() const {
        std::string all;
        for (int i = 0; i < table->count; ++i)
            all +=
                std::string(table->entries[i].className) + " " + std::to_string(table->entries[i].line) + " ";
        return all;
    }
    DebugSettings load(const std::string& entries) {
        const std::string file = folder / "ide.ini";
        EXPECT_TRUE(os::saveFile(file, "[debug]\n" + entries + "\n", os::Durability::Unsynced).ok());
        return LoadDebugSettings(file, "debug", table);
    }
};

TEST_F(BreakpointStore, AreFoundByTheirNumberInAnyCase) {
    EXPECT_EQ(BreakpointFind(nullptr, "a", 1), 0);
    EXPECT_EQ(BreakpointFind(table, "a", 1), 0);
    BreakpointSet(table, "Ide", 10, true);
    BreakpointSet(table, "ide", 20, true);
    EXPECT_EQ(BreakpointFind(table, "IDE", 10), 1);
    EXPECT_EQ(BreakpointFind(table, "iDe", 20), 2);
    EXPECT_EQ(BreakpointFind(table, "ide", 30), 0);
    EXPECT_EQ(BreakpointFind(table, "ides", 10), 0);
}

TEST_F(BreakpointStore, StandInTheOrderInWhichTheyCame) {
    BreakpointSet(table, "b", 2, true);
    BreakpointSet(table, "a", 9, true);
    BreakpointSet(table, "b", 1, true);
    EXPECT_EQ(text(), "B 2 A 9 B 1 ");
    BreakpointSet(table, "a", 9, false);
    EXPECT_EQ(text(), "B 2 B 1 ");
    EXPECT_EQ(table->entries[2].line, 0);
    EXPECT_STREQ(table->entries[2].className, "");
}

TEST_F(BreakpointStore, OnlyAChangeIsOne) {
    BreakpointSet(table, "a", 1, false);
    EXPECT_FALSE(BreakpointsChanged(table));
    BreakpointSet(table, "a", 1, true);
    EXPECT_TRUE(BreakpointsChanged(table));
    BreakpointsSetChanged(table, false);
    BreakpointSet(table, "A", 1, true);
    EXPECT_FALSE(BreakpointsChanged(table));
    BreakpointSet(table, "a", 1, false);
    EXPECT_TRUE(BreakpointsChanged(table));
}

TEST_F(BreakpointStore, ANullTableHoldsNothing) {
    BreakpointSet(nullptr, "a", 1, true);
    BreakpointsSetChanged(nullptr, true);
    EXPECT_FALSE(BreakpointsChanged(nullptr));
    EXPECT_EQ(BreakpointsText(nullptr, nullptr), "");
    EXPECT_EQ(LoadDebugSettings(folder / "none", "debug", nullptr).traceMode, 0);
}

TEST_F(BreakpointStore, TheTwoHundredAndFirstIsRefused) {
    for (int line = 1; line <= 201; ++line) BreakpointSet(table, "a", line, true);
    EXPECT_EQ(table->count, 200);
    EXPECT_EQ(BreakpointFind(table, "a", 201), 0);
    BreakpointSet(table, "a", 200, false);
    BreakpointSet(table, "a", 201, true);
    EXPECT_EQ(BreakpointFind(table, "a", 201), 200);
}

TEST_F(BreakpointStore, NamesAreCutAtForty) {
    const std::string forty(40, 'n');
    BreakpointSet(table, forty + "xyz", 1, true);
    EXPECT_EQ(BreakpointFind(table, forty, 1), 1);
    EXPECT_EQ(BreakpointFind(table, forty + "ab", 1), 1);
}

struct Value {
    std::string text, breakpoints;
};

TEST_F(BreakpointStore, AreReadFromTheirValue) {
    const Value values[] = {
        {"ide 10 20 textedit 5", "IDE 10 IDE 20 TEXTEDIT 5 "},
        {"10 20", ""},
        {"", ""},
        {"   ide   10  ", "IDE 10 "},
        {"\tide\t10", "IDE 10 "},
        {"ide 10 10 Ide 10", "IDE 10 "},
        {"ide", ""},
        {"ide textedit 5", "TEXTEDIT 5 "},
        {"_x 1 a_2 2", "_X 1 A_2 2 "},
        {"ide 10x 20", "IDE 20 "},
        {"a-b 1 c 2", "C 2 "},
        {"ide 10 -5 c 2", "IDE 10 "},
        {"ide 10 ! c 2", "IDE 10 "},
        {"ide 99999999999 3", "IDE 3 "},
        {"ide 2147483647", "IDE 2147483647 "},
        {"ide 0", "IDE 0 "},
        {std::string(41, 'n') + " 1 b 2", "B 2 "},
        {"\xC4x 1", ""},
    };
    for (const Value& value : values) {
        load("breakpoints=" + value.text);
        EXPECT_EQ(text(), value.breakpoints) << value.text;
    }
}

TEST_F(BreakpointStore, OfALongValueTheFirst1024CharactersCount) {
    std::string value = "c";
    for (int line = 10000; line < 10170; ++line) value += " " + std::to_string(line);
    load("breakpoints=" + value + " 99999");
    EXPECT_EQ(table->count, 171);
    EXPECT_EQ(table->entries[170].line, 99) << "the cut goes through a number";
}

TEST_F(BreakpointStore, LoadingEmptiesTheTable) {
    BreakpointSet(table, "a", 1, true);
    EXPECT_EQ(LoadDebugSettings("", "debug", table).left, 0);
    EXPECT_EQ(table->count, 0);
    load("breakpoints=a 1");
    LoadDebugSettings(folder / "ide.ini", "", table);
    EXPECT_EQ(table->count, 0);
}

struct Position {
    std::string text;
    int left, top, right, bottom;
};

TEST_F(BreakpointStore, ThePositionIsFourNumbers) {
    const Position positions[] = {
        {"10 20 300 400", 10, 20, 310, 420},
        {"10 20 300", 10, 20, 310, 20},
        {"", 0, 0, 0, 0},
        {"10 x 300 400", 10, 0, 310, 400},
        {"-5 20 300 400", 0, 20, 300, 420},
        {"1 2 3 4 5", 1, 2, 4, 6},
        {"2147483647 2147483647 2147483647 1", INT_MAX, INT_MAX, INT_MAX, INT_MAX},
        {"99999999999 1 2 3", 0, 1, 2, 4},
    };
    for (const Position& row : positions) {
        const DebugSettings settings = load("_Position=" + row.text);
        EXPECT_EQ(settings.left, row.left) << row.text;
        EXPECT_EQ(settings.top, row.top) << row.text;
        EXPECT_EQ(settings.right, row.right) << row.text;
        EXPECT_EQ(settings.bottom, row.bottom) << row.text;
    }
}

TEST_F(BreakpointStore, TraceAndStepAreNoneUnlessTheyAreTold) {
    EXPECT_EQ(load("").traceMode, 0);
    EXPECT_FALSE(load("").singleStep);
    EXPECT_EQ(load("TraceProgram=2\nSingleStep=1").traceMode, 2);
    EXPECT_TRUE(load("TraceProgram=2\nSingleStep=1").singleStep);
    EXPECT_EQ(load("TraceProgram=much\nSingleStep=yes").traceMode, 0);
    EXPECT_FALSE(load("TraceProgram=much\nSingleStep=yes").singleStep);
    EXPECT_FALSE(load("SingleStep=0").singleStep);
}

// ---- saving ----

class SavedBreakpoints : public BreakpointStore {
protected:
    std::unique_ptr<ClassTable> classes_ = std::make_unique<ClassTable>();
    void addClass(const std::string& name) {
        ClassEntry& entry = classes_->entries[classes_->count++];
        entry.className[name.copy(entry.className, MaxName)] = 0;
    }
    std::string saved() const { return BreakpointsText(table, classes_.get()); }
};

TEST_F(SavedBreakpoints, AreThoseOfTheProgramsClassesByClass) {
    for (const char* name : {"Ide", "empty", "textedit"}) addClass(name);
    BreakpointSet(table, "TEXTEDIT", 5, true);
    BreakpointSet(table, "gone", 7, true);
    BreakpointSet(table, "ide", 20, true);
    BreakpointSet(table, "ide", 10, true);
    EXPECT_EQ(saved(), "Ide 20 10 textedit 5 ");
}

TEST_F(SavedBreakpoints, OfALongListTheEndIsLost) {
    addClass("a");
    addClass("b");
    for (int line = 10000; line < 10200; ++line) BreakpointSet(table, "a", line, true);
    const std::string value = saved();
    EXPECT_LE(value.size(), 1024U);
    EXPECT_GT(value.size(), 1018U);
    EXPECT_TRUE(value.starts_with("a 10000 10001 "));
    EXPECT_EQ(value.back(), ' ');
    load("breakpoints=" + value);
    EXPECT_EQ(table->count, 170);
}

}  // namespace
}  // namespace tarn
