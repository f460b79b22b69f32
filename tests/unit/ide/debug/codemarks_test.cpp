// SPDX-License-Identifier: GPL-3.0-or-later
//
// Breakpoints in the margin of the Code window.
#include "ide/debug/codemarks.h"

#include "kernel/windows/linemarks.h"
#include "platform/model/linemarks.h"
#include "support/ide_fixture.h"

#include <chrono>

namespace tarn {
namespace {

class CodeMarks : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        start();
        file = write("sums.cls", "Tarnwick Class Sums\nfunction main()\nPRINT(\"1\")\nPRINT(\"2\")\n"
                                 "PRINT(\"3\")\nend function\nEnd class\n");
    }
    void open() { EDITWNDOPEN(SDIEdit, file, false, 0); }
    std::string stored() { return PROFILESTRGET(ini(), "debug", "breakpoints"); }
    static std::string marks() {
        std::string text;
        for (const LineMark& mark : GetLineMarks(SDIEdit))
            text += std::to_string(mark.line) + (mark.kinds == LINEMARK_CURRENT ? "! " : " ");
        return text;
    }
    void store(const std::string& value) { PROFILESTRPUT(ini(), "debug", "breakpoints", value); }
    static void edit(std::string_view part, std::string_view text) {
        const std::size_t at = GetText(SDIEdit).find(part);
        ASSERT_NE(at, std::string::npos) << part;
        SetSelection(SDIEdit, static_cast<int>(at) + 1, static_cast<int>(part.size()));
        SetSelText(SDIEdit, text);
    }
    std::string file;
};

TEST_F(CodeMarks, AreThoseOfTheClassInTheWindow) {
    store("SUMS 3 5 other 4");
    open();
    EXPECT_TRUE(GetMarkMargin(SDIEdit));
    EXPECT_EQ(marks(), "3 5 ");
}

TEST_F(CodeMarks, HaveNoMarginBesideOtherTexts) {
    store("note 1");
    EDITWNDOPEN(SDIEdit, write("note.txt", "text\n"), false, 0);
    EXPECT_FALSE(GetMarkMargin(SDIEdit));
    open();
    EXPECT_TRUE(GetMarkMargin(SDIEdit));
    EDITWNDCLOSE(SDIEdit, false);
    EXPECT_FALSE(GetMarkMargin(SDIEdit));
}

TEST_F(CodeMarks, AreSetAndRemoved) {
    open();
    TOGGLEBREAKPOINT(SDIEdit, 4);
    TOGGLEBREAKPOINT(SDIEdit, 3);
    EXPECT_EQ(stored(), "Sums 3 4");
    EXPECT_EQ(marks(), "3 4 ");
    TOGGLEBREAKPOINT(SDIEdit, 4);
    EXPECT_EQ(stored(), "Sums 3");
    TOGGLEBREAKPOINT(SDIEdit, 3);
    EXPECT_EQ(stored(), "");
}

TEST_F(CodeMarks, StandAmongThoseOfOtherClasses) {
    store("alpha 1 sums 3 omega 2");
    open();
    TOGGLEBREAKPOINT(SDIEdit, 5);
    EXPECT_EQ(stored(), "alpha 1 Sums 3 5 omega 2");
}

TEST_F(CodeMarks, AreSetByAClickInTheMargin) {
    open();
    platform::userMarginClick(*platform::findControl(SDIEdit), 4);
    EXPECT_EQ(stored(), "Sums 4");
    platform::userMarginClick(*platform::findControl(SDIEdit), 4);
    EXPECT_EQ(stored(), "");
}

TEST_F(CodeMarks, MoveWithTheTextAndAreStoredWhenItIsSaved) {
    store("Sums 3 5");
    open();
    edit("PRINT(\"1\")", "// a comment\nPRINT(\"1\")");
    EXPECT_EQ(marks(), "4 6 ");
    EXPECT_EQ(stored(), "Sums 3 5");
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_EQ(stored(), "Sums 4 6");
    EXPECT_EQ(marks(), "4 6 ");
}

TEST_F(CodeMarks, OfDeletedLinesGoWithTheSave) {
    store("Sums 3 5");
    open();
    edit("PRINT(\"1\")\n", "");
    EXPECT_EQ(marks(), "0 4 ");
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_EQ(stored(), "Sums 4");
}

TEST_F(CodeMarks, AreToggledWhereTheTextHasTakenThem) {
    store("Sums 5");
    open();
    edit("function main()\n", "function main()\n\n\n");
    EXPECT_EQ(marks(), "7 ");
    TOGGLEBREAKPOINT(SDIEdit, 6);
    EXPECT_EQ(stored(), "Sums 6 7");
    TOGGLEBREAKPOINT(SDIEdit, 7);
    EXPECT_EQ(stored(), "Sums 6");
}

TEST_F(CodeMarks, FollowTheClassToItsNewName) {
    store("Sums 3 other 1");
    open();
    edit("Class Sums", "Class Totals");
    answers = {"&No"};  // the class keeps it
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_EQ(stored(), "Totals 3 other 1");
}

TEST_F(CodeMarks, OfTheSettingsComeInWhileTheTextIsChanged) {
    store("Sums 5");
    open();
    edit("function main()\n", "function main()\n\n");
    store("Sums 5 4");  // what a program has left
    SHOWBREAKPOINTS(SDIEdit);
    EXPECT_EQ(marks(), "6 4 ") << "what is known stays with its line";
}

TEST_F(CodeMarks, AreRefusedWhereThereIsNoClass) {
    const int beeps = platform::headlessBeeps();
    TOGGLEBREAKPOINT(SDIEdit, 1);
    EDITWNDOPEN(SDIEdit, write("note.txt", "text\n"), false, 0);
    TOGGLEBREAKPOINT(SDIEdit, 1);
    EXPECT_EQ(platform::headlessBeeps(), beeps + 2);
    EXPECT_EQ(stored(), "");
    EXPECT_EQ(GetCaption(MAINCONTROL("lblstatus")), "Breakpoints are set in classes.");
}

TEST_F(CodeMarks, AreRefusedWhereAProgramWouldNotTakeThem) {
    std::string value = "A";
    for (int i = 1; i <= 200; i++) value += " " + std::to_string(i);
    store(value);
    open();
    TOGGLEBREAKPOINT(SDIEdit, 3);
    EXPECT_EQ(stored(), value);
    EXPECT_EQ(marks(), "");
    EXPECT_EQ(GetCaption(MAINCONTROL("lblstatus")), "A program takes at most 200 breakpoints.");
}

TEST_F(CodeMarks, OfTooManyEachCanBeTakenAway) {
    std::string value = "other";
    for (int i = 1; i <= 10000; i++) value += " " + STR(i);
    store(value + " SUMS 3 4");
    open();
    EXPECT_EQ(marks(), "3 4 ");
    const auto before = std::chrono::steady_clock::now();
    TOGGLEBREAKPOINT(SDIEdit, 3);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(1));
    EXPECT_EQ(marks(), "4 ");
    EXPECT_TRUE(stored() == value + " Sums 4");
    TOGGLEBREAKPOINT(SDIEdit, 3);
    EXPECT_EQ(marks(), "4 ") << "one more has no room";
    EXPECT_EQ(GetCaption(MAINCONTROL("lblstatus")), "A program takes at most 200 breakpoints.");
}

TEST_F(CodeMarks, EachChangeThatIsLostIsToldOnce) {
    open();
    std::filesystem::permissions(ini(), std::filesystem::perms(0444));
    for (int change = 1; change <= 3; change++) {
        asked.clear();
        answers = {"OK"};
        platform::userMarginClick(*platform::findControl(SDIEdit), 3);
        EXPECT_EQ(asked.size(), 1U) << change;
        EXPECT_EQ(marks(), "");
    }
    std::filesystem::permissions(ini(), std::filesystem::perms(0644));
    platform::userMarginClick(*platform::findControl(SDIEdit), 3);
    EXPECT_EQ(marks(), "3 ");
}

TEST_F(CodeMarks, OfSettingsThatCannotBeWrittenAreToldAndNotShown) {
    open();
    std::filesystem::permissions(ini(), std::filesystem::perms(0444));
    answers = {"OK", "OK", "OK"};
    TOGGLEBREAKPOINT(SDIEdit, 4);
    EXPECT_FALSE(asked.empty());
    EXPECT_EQ(marks(), "");
    std::filesystem::permissions(ini(), std::filesystem::perms(0644));
    TOGGLEBREAKPOINT(SDIEdit, 4);
    EXPECT_EQ(marks(), "4 ");
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(CodeMarks, OfAnOddValueAreWhatCanBeRead) {
    store("  9 9 sums sums 3 sums x 4");
    open();
    EXPECT_EQ(marks(), "3 ");
    store("Sums 99999999 3");
    SHOWBREAKPOINTS(SDIEdit);
    EXPECT_EQ(marks(), "0 3 ") << "a line that is not there";
}

class CompiledCodeMarks : public CodeMarks {
protected:
    // Lines 3 and 5 have code.
    void SetUp() override {
        CodeMarks::SetUp();
        std::string row = "\"debug\",2,\"\",\"debug\",0,0,0,\"a\",0,0,0,0,0,0,\"\",\"\",0,0,\"\\x14";
        for (int i = 1; i < 1000; i++) row += "\\x00";
        write("sums.sym", row + "\"\n");
        open();
    }
    static std::string status() { return GetCaption(MAINCONTROL("lblstatus")); }
};

TEST_F(CompiledCodeMarks, TakeTheNextLineThatHasCode) {
    TOGGLEBREAKPOINT(SDIEdit, 4);
    EXPECT_EQ(stored(), "Sums 5");
    EXPECT_EQ(status(), "No code was generated at line 4: line 5 is taken.");
    TOGGLEBREAKPOINT(SDIEdit, 4);
    EXPECT_EQ(stored(), "") << "as a click on that line would";
    TOGGLEBREAKPOINT(SDIEdit, 3);
    EXPECT_EQ(stored(), "Sums 3");
    EXPECT_EQ(status(), "");
}

TEST_F(CompiledCodeMarks, AreRefusedBehindTheLastLineThatHasCode) {
    TOGGLEBREAKPOINT(SDIEdit, 6);
    EXPECT_EQ(stored(), "");
    EXPECT_EQ(status(), "No code was generated at line 6.");
}

TEST_F(CompiledCodeMarks, TakeAnyLineOfATextThatIsChanged) {
    type("\n");
    TOGGLEBREAKPOINT(SDIEdit, 4);
    EXPECT_EQ(stored(), "Sums 4");
}

TEST_F(CodeMarks, TheCurrentLineIsMarkedBesideThem) {
    store("Sums 3");
    open();
    MARKCURRENTLINE(SDIEdit, 4);
    EXPECT_EQ(marks(), "3 4! ");
    TOGGLEBREAKPOINT(SDIEdit, 5);
    EXPECT_EQ(marks(), "3 5 4! ");
    MARKCURRENTLINE(SDIEdit, 0);
    EXPECT_EQ(marks(), "3 5 ");
}

TEST_F(CodeMarks, TheCurrentLineMovesWithTheText) {
    store("Sums 3");
    open();
    MARKCURRENTLINE(SDIEdit, 5);
    edit("function main()\n", "function main()\n\n");
    EXPECT_EQ(marks(), "4 6! ");
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_EQ(marks(), "4 6! ");
}

TEST_F(CodeMarks, TheCurrentLineGoesWithTheText) {
    open();
    MARKCURRENTLINE(SDIEdit, 4);
    EDITWNDOPEN(SDIEdit, write("two.cls", "Tarnwick Class Two\nEnd class\n"), false, 0);
    EXPECT_EQ(marks(), "");
}

TEST_F(CodeMarks, TheClassAndTheLineOfTheCaretAreTold) {
    open();
    EXPECT_EQ(CLASSINWINDOW(SDIEdit), "Sums");
    EDITWNDSELECTLINE(SDIEdit, 4);
    EXPECT_EQ(CARETLINE(SDIEdit), 4);
    EDITWNDOPEN(SDIEdit, write("odd.cls", "nothing\n"), false, 0);
    EXPECT_EQ(CLASSINWINDOW(SDIEdit), "odd");
    EXPECT_EQ(CARETLINE(SDIEdit), 1);
}

}  // namespace
}  // namespace tarn
