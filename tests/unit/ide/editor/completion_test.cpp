// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/completion.h"

#include "ide/editor/declaration.h"
#include "ide/editor/editlooks.h"
#include "ide/editor/names.h"
#include "support/ide_fixture.h"

#include <cstdio>
#include <ctime>

namespace tarn {
namespace {

constexpr std::string_view Other = "Tarnwick Class other\n"
                                   "public const WIDEST = 3\n"
                                   "public function WIDEN(text : string, count : integer) return string\n"
                                   "end function\n"
                                   "private function WIRED()\n"
                                   "end function\n"
                                   "End class\n";
constexpr std::string_view Own = "Tarnwick Class own\n"
                                 "Uses other\n"
                                 "private var windy : integer\n"
                                 "function main()\n"
                                 "   var wish : integer\n"
                                 "   \n"
                                 "end function\n"
                                 "function AGAIN(wing : integer)\n"
                                 "end function\n"
                                 "End class\n";

class Completion : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        loadWindows();
        other = write("other.cls", Other);
        own = write("own.cls", Own);
        EDITWNDOPEN(SDIEdit, own, false, 0);
    }
    // Puts a text into the empty line of main, where the caret then stands behind it.
    void put(const std::string& text) {
        const auto at = static_cast<int>(GetText(SDIEdit).find("   \nend")) + 4;
        SetSelection(SDIEdit, at, 0);
        goOn(text);
    }
    static void goOn(const std::string& text) {
        for (const char c : text) SetSelText(SDIEdit, std::string(1, c));
    }
    // The words that are offered, separated by blanks.
    static std::string offered() {
        std::string words;
        for (int n = 1; n <= STRLINES(GetChoices(SDIEdit)); ++n)
            words += STRTOKEN(STRLINE(GetChoices(SDIEdit), n), 1) + " ";
        return words;
    }
    std::string atCaret() {
        return GetTextRange(SDIEdit, GetSelection(SDIEdit).start, GetSelection(SDIEdit).length);
    }
    void caretAt(const std::string& text) {
        SetSelection(SDIEdit, static_cast<int>(GetText(SDIEdit).find(text)) + 1, 0);
    }
    std::string other, own;
};

TEST_F(Completion, OffersWhatThePlaceKnowsInAnyCaseSorted) {
    put("WI");
    COMPLETEWORD(SDIEdit, false);
    const std::string words = offered();
    EXPECT_EQ(words.substr(0, 6), "WIDEN ");
    for (const char* word : {"WIDEN ", "WIDEST ", "windy ", "wish ", "with "})
        EXPECT_NE(words.find(word), std::string::npos) << word << "in " << words;
    for (const char* word : {"WIRED ", "wing "}) EXPECT_EQ(words.find(word), std::string::npos) << word;
    EXPECT_NE(words.find("WindowList "), std::string::npos) << "of the library: " << words;
    EXPECT_NE(GetChoices(SDIEdit).find("WIDEST\tsymconst\n"), std::string::npos);
    EXPECT_NE(GetChoices(SDIEdit).find("wish\tsymobject\n"), std::string::npos);
    EXPECT_NE(GetChoices(SDIEdit).find("with\tsymother\n"), std::string::npos);
}

TEST_F(Completion, ComesByItselfAtTheThirdLetterOnly) {
    put("wi");
    EXPECT_EQ(GetChoices(SDIEdit), "");
    goOn("s");
    EXPECT_EQ(offered(), "wish ");
}

TEST_F(Completion, DoesNotComeByItselfWhereItWouldBeInTheWay) {
    for (const char* text : {"// wis", "\"wis", "1is", "wish"}) {
        EDITWNDCLOSE(SDIEdit, false);
        answers = {"&No"};
        EDITWNDOPEN(SDIEdit, own, true, 0);
        ShowChoices(SDIEdit, "", 0);
        put(text);
        if (std::string(text) == "wish") ShowChoices(SDIEdit, "", 0), COMPLETEWORD(SDIEdit, true);
        EXPECT_EQ(GetChoices(SDIEdit), "") << text;
        SetModify(SDIEdit, false);
    }
}

TEST_F(Completion, DoesNotComeByItselfInTheMiddleOfAWord) {
    put("ABCDEF");
    ShowChoices(SDIEdit, "", 0);
    caretAt("DEF\n");
    COMPLETEWORD(SDIEdit, true);
    EXPECT_EQ(GetChoices(SDIEdit), "");
}

TEST_F(Completion, ComesInAVeryLongTextOnlyWhenAskedFor) {
    SetText(SDIEdit, GetText(SDIEdit) + std::string(500'000, '\n'));
    put("wis");
    EXPECT_EQ(GetChoices(SDIEdit), "");
    COMPLETEWORD(SDIEdit, false);
    EXPECT_EQ(offered(), "wish ");
}

TEST_F(Completion, DoesNotComeByItselfAtAChangeFromAnotherWindow) {
    Load(StartupDlg);
    Show(StartupDlg, false);
    put("wis");
    EXPECT_EQ(GetChoices(SDIEdit), "");
}

TEST_F(Completion, IsSwitchedByASetting) {
    SWITCHLOOK(SDIEdit, "ChoicesOn");
    put("wis");
    EXPECT_EQ(GetChoices(SDIEdit), "");
    EXPECT_EQ(PROFILESTRGET(ini(), "EditorOptionsDlg", "ChoicesOn"), "0");
    COMPLETEWORD(SDIEdit, false);
    EXPECT_EQ(offered(), "wish ");
}

TEST_F(Completion, HasNothingForOtherTexts) {
    EDITWNDOPEN(SDIEdit, write("a.txt", "function main()\nfun"), false, 0);
    type("c");
    EXPECT_EQ(GetChoices(SDIEdit), "");
    EXPECT_EQ(GetBlocks(SDIEdit), "");
}

TEST_F(Completion, OffersOnlyTheNamesOfAClassBehindItsName) {
    put("other.w");
    COMPLETEWORD(SDIEdit, false);
    EXPECT_EQ(offered(), "WIDEN WIDEST ");
}

TEST_F(Completion, SeesAChangeOfAUsedClass) {
    put("WID");
    EXPECT_EQ(offered(), "WIDEN WIDEST ");
    write("other.cls", "Tarnwick Class other\npublic const WIDENED = 1\nEnd class\n");
    COMPLETEWORD(SDIEdit, false);
    EXPECT_EQ(offered(), "WIDENED ");
}

TEST_F(Completion, ReadsTheSymbolFileOfAClassWithoutSource) {
    std::filesystem::remove(other);
    write(
        "other.sym",
        "\"WIDELY\",1,\"WIDELY(a : integer)\",\"function\",7,8,0,\"other\",0,0,0,0,0,0,\"\",\"\",0,0,\"\"\n");
    put("WID");
    EXPECT_EQ(offered(), "WIDELY ");
}

TEST_F(Completion, FindsClassesOnTheInheritedPath) {
    std::filesystem::create_directory(dir + "lib");
    std::filesystem::rename(other, dir + "lib/other.cls");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit1", dir + "lib");
    put("WID");
    EXPECT_EQ(offered(), "WIDEN WIDEST ");
}

TEST_F(Completion, ShowsTheHeadOfACallWithItsArgument) {
    put("WIDEN(");
    const std::string head = "WIDEN(text : string, count : integer) return string";
    EXPECT_EQ(GetCallTip(SDIEdit), head);
    ShowCallTip(SDIEdit, 1, "", 0, 0);
    goOn("a,");
    EXPECT_EQ(GetCallTip(SDIEdit), head);
    goOn("b)");
    EXPECT_EQ(GetCallTip(SDIEdit), "");
    goOn(" NOTHING(");
    EXPECT_EQ(GetCallTip(SDIEdit), "");
}

TEST_F(Completion, ShowsAllFormsOfALibraryFunction) {
    put("STR(");
    EXPECT_EQ(GetCallTip(SDIEdit).substr(0, 36), "STR(value : integer) return string\nS");
}

TEST_F(Completion, OfFiftyClassesOfTwoHundredLinesComesAtOnce) {
    std::string uses;
    for (int n = 0; n < 50; ++n) {
        const std::string name = "class" + STR(n);
        std::string text = "Tarnwick Class " + name + "\n";
        for (int i = 0; i < 20; ++i)
            text +=
                "// What it does.\npublic function WISE" + STR(n) + "X" + STR(i) +
                "(text : string, count : integer) return string\n   var i : integer\n   if count > 0 then\n" +
                "      i := count\n   end if\n   return text\nend function\n\n\n";
        write(name + ".cls", text + "End class\n");
        uses += " " + name;
    }
    write("own.cls", "Tarnwick Class own\nUses" + uses + "\nfunction main()\n   \nend function\nEnd class\n");
    SetModify(SDIEdit, false);
    EDITWNDCLOSE(SDIEdit, false);
    EDITWNDOPEN(SDIEdit, own, true, 0);
    double first = 0, next = 0;
    for (double* time : {&first, &next}) {
        const std::clock_t start = std::clock();
        put("wis");
        *time = static_cast<double>(std::clock() - start) * 1000 / CLOCKS_PER_SEC;
        EXPECT_GE(STRLINES(GetChoices(SDIEdit)), 1000);
        SetText(SDIEdit, STRREPLACE(GetText(SDIEdit), "   wis", "   "));
    }
    std::printf("list of 1,000 names of 50 classes: first %.1f ms, then %.1f ms\n", first, next);
    EXPECT_LT(next, 100);
}

// ---- the way to a declaration ----

TEST_F(Completion, GoesToADeclarationOfTheClassAndBack) {
    put("AGAIN");
    const Selection before = GetSelection(SDIEdit);
    EXPECT_TRUE(GOTODECLARATION(SDIEdit, false));
    EXPECT_EQ(atCaret(), "AGAIN");
    EXPECT_EQ(GetTextRange(SDIEdit, GetSelection(SDIEdit).start - 9, 9), "function ");
    GOBACK(SDIEdit);
    EXPECT_EQ(GetSelection(SDIEdit).start, before.start);
    GOBACK(SDIEdit);
    EXPECT_EQ(GetStatus(SDIEdit, StatusKind::Passes), "no place to go back to");
}

TEST_F(Completion, GoesToAUsedClassAndBack) {
    put("WIDEN");
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_TRUE(GOTODECLARATION(SDIEdit, false));
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), other);
    EXPECT_EQ(atCaret(), "WIDEN");
    GOBACK(SDIEdit);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), own);
}

TEST_F(Completion, AsksAboutChangesOnTheWay) {
    put("WIDEN");
    answers = {"&Cancel"};
    GOTODECLARATION(SDIEdit, false);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), own);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].title, "Save Changes?");
    GOBACK(SDIEdit);
    EXPECT_EQ(GetStatus(SDIEdit, StatusKind::Passes), "no place to go back to");
}

TEST_F(Completion, KnowsLocalNamesFirst) {
    put("wish");
    GOTODECLARATION(SDIEdit, false);
    EXPECT_EQ(atCaret(), "wish");
    EXPECT_LT(GetSelection(SDIEdit).start, static_cast<int>(GetText(SDIEdit).rfind("wish")));
    GOBACK(SDIEdit);
}

TEST_F(Completion, TellsThatThereIsNoDeclaration) {
    put("unknown");
    EXPECT_FALSE(GOTODECLARATION(SDIEdit, false));
    EXPECT_EQ(GetStatus(SDIEdit, StatusKind::Passes), "no declaration found");
}

TEST_F(Completion, KeepsAtLeastTwentyPlaces) {
    put("AGAIN");
    std::vector<int> starts;
    for (int i = 0; i < 25; ++i) {
        SetSelection(SDIEdit, static_cast<int>(GetText(SDIEdit).find("AGAIN")) + 1 + i % 5, 0);
        starts.push_back(GetSelection(SDIEdit).start);
        ASSERT_TRUE(GOTODECLARATION(SDIEdit, false));
    }
    for (; !starts.empty(); starts.pop_back()) {
        GOBACK(SDIEdit);
        EXPECT_EQ(GetSelection(SDIEdit).start, starts.back());
    }
}

// ---- looks ----

TEST_F(Completion, LooksFollowTheSettings) {
    EXPECT_EQ(GetLooks(SDIEdit), LOOK_LINE | LOOK_BRACKETS | LOOK_FOLDS | LOOK_CHANGES | LOOK_CHOICES);
    SWITCHLOOK(SDIEdit, "BlanksOn");
    SWITCHLOOK(SDIEdit, "FoldsOn");
    EXPECT_EQ(GetLooks(SDIEdit), LOOK_LINE | LOOK_BRACKETS | LOOK_BLANKS | LOOK_CHANGES | LOOK_CHOICES);
    CHOOSETABWIDTH(SDIEdit, 8);
    ZOOMBY(SDIEdit, 2);
    EDITWNDAPPLYLOOKS(SDIEdit);
    EXPECT_EQ(GetTabWidth(SDIEdit), 8);
    EXPECT_EQ(GetZoom(SDIEdit), 2);
    ZOOMBY(SDIEdit, 0);
    EXPECT_EQ(PROFILESTRGET(ini(), "EditorOptionsDlg", "Zoom"), "0");
}

TEST_F(Completion, LineEndsAreConvertedAndMarkTheText) {
    EDITWNDOPEN(SDIEdit, write("ends.txt", "a\nb\r\nc"), false, 0);
    EXPECT_EQ(GetLineEnds(SDIEdit), ENDS_MIXED);
    CHOOSELINEENDS(SDIEdit, ENDS_CRLF);
    EXPECT_EQ(GetText(SDIEdit), "a\r\nb\r\nc");
    EXPECT_TRUE(GetModify(SDIEdit));
    EXPECT_TRUE(GETMODIFYPRIVATE(SDIEdit));
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_EQ(read(dir + "ends.txt"), "a\r\nb\r\nc");
    CHOOSELINEENDS(SDIEdit, ENDS_CRLF);
    EXPECT_FALSE(GetModify(SDIEdit)) << "they are so already";
}

TEST_F(Completion, LineEndsForWhichThereIsNoRoomStayAndTheStatusBarSaysSo) {
    const std::string ends = "\nb\nc\r\nd\re\n\n";  // five of them grow by one
    const std::string text = std::string(4'000'000 - ends.size() - 5, 'a') + ends;
    EDITWNDOPEN(SDIEdit, write("full.txt", "a" + text), false, 0);
    CHOOSELINEENDS(SDIEdit, ENDS_CRLF);
    EXPECT_EQ(GetText(SDIEdit), "a" + text);
    EXPECT_EQ(GetStatus(SDIEdit, StatusKind::Passes), "No room: a text has at most 4000000 bytes");
    EXPECT_FALSE(GetModify(SDIEdit));
    EDITWNDOPEN(SDIEdit, write("room.txt", text), false, 0);
    CHOOSELINEENDS(SDIEdit, ENDS_CRLF);
    EXPECT_EQ(GetTextLength(SDIEdit), 4'000'000);
    EXPECT_EQ(GetStatus(SDIEdit, StatusKind::Passes), "");
    Undo(SDIEdit);
    EXPECT_EQ(GetText(SDIEdit), text) << "one step";
    EXPECT_FALSE(GetModify(SDIEdit));
}

}  // namespace
}  // namespace tarn
