// SPDX-License-Identifier: GPL-3.0-or-later
//
// Names added to a Uses clause and taken out: in texts, in files, and in the Code window.
#include "ide/program/usesclause.h"

#include "library/source/symbols.h"
#include "support/ide_fixture.h"

#include <filesystem>

namespace tarn {
namespace {

std::string classWith(const std::string& uses) {
    return "Tarnwick Class A\n" + (uses.empty() ? "" : "Uses " + uses + "\n") +
           "function main()\nend function\nEnd class\n";
}

TEST(UsesClause, NamesAreAddedAndTakenOut) {
    const struct {
        const char *uses, *operation, *name, *result;
        bool changed;
    } table[] = {
        {"", "ADD", "B", "B", true},
        {"B", "add", "C", "B C", true},
        {"B C", "Add", "b", "B C", false},
        {"Dbutils", "ADD", "Dbutil", "Dbutils Dbutil", true},
        {"Dbutils", "DEL", "Dbutil", "Dbutils", false},
        {"Dbutil", "del", "DBUTIL", "", true},
        {"A B C", "DEL", "B", "A C", true},
        {"A B C", "DEL", "a", "B C", true},
        {"A B C", "DEL", "C", "A B", true},
        {"A B A", "DEL", "A", "B A", true},
        {"", "DEL", "A", "", false},
        {"A", "ADD", "", "A", false},
        {"A", "NEITHER", "B", "A", false},
        {"A\n     B\n  C", "DEL", "B", "A C", true},
    };
    for (const auto& row : table) {
        const UsesChange change = CHANGEUSESCLAUSE(classWith(row.uses), row.operation, row.name);
        EXPECT_EQ(change.changed, row.changed) << row.uses << " " << row.operation << " " << row.name;
        EXPECT_EQ(SYMGETUSES(0, change.text), row.changed ? row.result : SYMGETUSES(0, classWith(row.uses)));
        EXPECT_EQ(change.error, "");
        EXPECT_EQ(change.text, classWith(row.changed ? row.result : row.uses)) << row.uses << " " << row.name;
    }
}

TEST(UsesClause, LineEndsStayAsTheyAre) {
    const std::string text = STRNL2CRNL(classWith("B"));
    EXPECT_EQ(CHANGEUSESCLAUSE(text, "ADD", "C").text, STRNL2CRNL(classWith("B C")));
}

TEST(UsesClause, WhatIsNoClassIsRefused) {
    const UsesChange change = CHANGEUSESCLAUSE("no text of that kind\n", "ADD", "B");
    EXPECT_EQ(change.error, "It does not contain a class.");
    EXPECT_FALSE(change.changed);
    std::string large = classWith("");
    for (int i = 0; i < 8000; ++i) large += "\n";
    EXPECT_TRUE(CHANGEUSESCLAUSE(large, "ADD", "B").error.starts_with("Class has too many lines"));
}

class UsesClauseFile : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        loadWindows();
    }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }
};

TEST_F(UsesClauseFile, AFileIsRewritten) {
    const std::string file = write("a.cls", classWith("B"));
    EXPECT_TRUE(UPDATEUSESCLAUSE(file, "ADD", "C"));
    EXPECT_EQ(read(file), classWith("B C"));
    EXPECT_FALSE(UPDATEUSESCLAUSE(file, "ADD", "c"));
    EXPECT_TRUE(UPDATEUSESCLAUSE(file, "DEL", "c"));
    EXPECT_EQ(read(file), classWith("B"));
    EXPECT_TRUE(asked.empty());
}

TEST_F(UsesClauseFile, TheTextOfTheCodeWindowIsChangedAndSaved) {
    const std::string file = write("a.cls", classWith("B"));
    EDITWNDOPEN(SDIEdit, file, false, 0);
    type("// mine\n");
    EXPECT_TRUE(UPDATEUSESCLAUSE(file, "ADD", "C"));
    EXPECT_EQ(GetText(SDIEdit), classWith("B C") + "// mine\n");
    EXPECT_EQ(read(file), classWith("B C") + "// mine\n");
    EXPECT_FALSE(GetModify(SDIEdit));
}

TEST_F(UsesClauseFile, OnlyClassesAreChanged) {
    const std::string file = write("a.txt", classWith("B"));
    EXPECT_FALSE(UPDATEUSESCLAUSE(file, "ADD", "C"));
    EXPECT_EQ(read(file), classWith("B"));
    EXPECT_FALSE(UPDATEUSESCLAUSE("", "ADD", "C"));
    EXPECT_TRUE(asked.empty());
    EXPECT_TRUE(UPDATEUSESCLAUSE(write("a.CLS", classWith("B")), "ADD", "C"));
}

TEST_F(UsesClauseFile, AFileThatCannotBeReadIsTold) {
    EXPECT_FALSE(UPDATEUSESCLAUSE(dir + "none.cls", "ADD", "C"));
    Stamp(0, ReportErrors, DefaultErrorHandler);
    EXPECT_TRUE(lastText().ends_with("The Uses clause was not changed. Check that you may read the class."))
        << lastText();
}

TEST_F(UsesClauseFile, WhatCannotBeChangedIsTold) {
    const std::string file = write("a.cls", "nothing\n");
    EXPECT_FALSE(UPDATEUSESCLAUSE(file, "ADD", "C"));
    EXPECT_EQ(lastText(), "The Uses clause of the following class could not be changed:\n\n\t'" + file +
                              "'\n\nIt does not contain a class.");
    const std::string closed = write("b.cls", classWith("B"));
    std::filesystem::permissions(closed, std::filesystem::perms(0444));
    EXPECT_FALSE(UPDATEUSESCLAUSE(closed, "ADD", "C"));
    EXPECT_TRUE(lastText().starts_with("The Uses clause of the following class could not be changed:\n\n\t'" +
                                       closed + "'\n\n'" + closed + "'\ncould not be written: "))
        << lastText();
    EXPECT_EQ(read(closed), classWith("B"));
}

}  // namespace
}  // namespace tarn
