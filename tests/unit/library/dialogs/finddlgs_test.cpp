// SPDX-License-Identifier: Apache-2.0
//
// The dialogs of finding, replacing and going to a line, without a screen: what they offer, what leaves them, and what
// they do to a window and to an edit control.
#include "library/dialogs/finddlgs.h"

#include "kernel/run/runtime.h"
#include "library/system/system.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/resources.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>

namespace tarn {
namespace {

std::string dialogText(const std::string& name, const std::string& more) {
    std::string text = name + " DIALOG\n  POSITION=0 0 200 100\n";
    int number = 101;
    for (const char* control : {"Label lblhelpfile", "Label lblhelptopic", "Edit edit1",
                                "Pushbutton pushbutton1", "Pushbutton pushbutton2", "Pushbutton pushbutton3"})
        text += "  " + std::string(control) + " " + STR(number++) + "\n    POSITION=1 1 9 9\n";
    return text + more + "END\n\n";
}

constexpr const char* boxes = R"(  Checkbox check1 121
    POSITION=1 1 9 9
  Checkbox check2 122
    POSITION=1 1 9 9
  Radiobutton radio1 123
    POSITION=1 1 9 9
    ARRAY=radio1
  Radiobutton radio2 124
    POSITION=1 1 9 9
    ARRAY=radio1
)";
constexpr const char* replaceControls = R"(  Edit edit2 131
    POSITION=1 1 9 9
  Checkbox check3 132
    POSITION=1 1 9 9
  Checkbox replaceall 133
    POSITION=1 1 9 9
    VISIBLE=0
  Pushbutton pushbutton4 134
    POSITION=1 1 9 9
)";
constexpr const char* windows = R"(TextWnd EDITWINDOW
  POSITION=0 0 100 100
END

FormDlg DIALOG
  POSITION=0 0 100 100
  Edit line 101
    POSITION=1 1 50 12
  Edit shown 102
    POSITION=1 20 50 12
    READONLY=1
  Edit short 103
    POSITION=1 40 50 12
    MAXLENGTH=5
END
)";

const Object Text("TextWnd"), Form("FormDlg");

class FindDialogs : public ::testing::Test {
protected:
    void SetUp() override {
        const std::string resources = dialogText("FindDlg", boxes) +
                                      dialogText("ReplaceDlg", std::string(boxes) + replaceControls) +
                                      dialogText("GotoLineDlg", "") + windows;
        ASSERT_EQ(useResources(folder_, resources), "");
        before_ = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            asked.push_back(question.title + ": " + question.text);
            seen.push_back(GetSelection(Text));
            if (answers.empty()) return std::string();
            const std::string answer = answers.front();
            answers.pop_front();
            return answer;
        }));
        ClearError();
        Load(Text);
        Load(Form);
        ASSERT_TRUE(IsLoaded(Text) && IsLoaded(Form)) << ErrorDetails();
    }
    void TearDown() override {
        USESEARCHEXTRAS({});
        platform::DestroyAllWindows();
        platform::useView(std::move(before_));
        SetApplicationResources("");
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        ClearError();
    }

    static void put(const std::string& text, int start = 1, int length = 0) {
        SetText(Text, text);
        SetSelection(Text, start, length);
    }
    static std::string selected() {
        const Selection selection = GetSelection(Text);
        return STR(selection.start) + "+" + STR(selection.length);
    }
    // Acts in turn, one step whenever the program waits for the user.
    static void play(std::deque<std::function<void()>> steps) {
        platform::view().setIdle([steps = std::move(steps)]() mutable {
            if (steps.empty()) return platform::DestroyAllWindows();
            const auto step = steps.front();
            steps.pop_front();
            step();
        });
    }
    static Object in(const Object& dialog, const char* name) { return FINDCONTROL(dialog, name); }
    static void press(const Object& dialog, const char* button) {
        platform::userCommand(*platform::findControl(in(dialog, button)));
    }
    static bool key(const Object& dialog, int code) {
        return platform::userKey(*platform::findWindow(dialog), nullptr, code);
    }
    static std::function<void()> pressing(const Object& dialog, const char* button) {
        return [=] { press(dialog, button); };
    }
    std::string lastAsked() const { return asked.empty() ? "" : asked.back(); }

    TempFolder folder_;
    std::vector<std::string> asked;
    std::vector<Selection> seen;  // at each question
    std::deque<std::string> answers;
    std::unique_ptr<platform::View> before_;
};

// ---- finding ----

TEST_F(FindDialogs, NextIsBehindTheSelectionAndFirstFromTheStart) {
    put("foo foo foo", 5, 3);
    FINDNEXT(Text, "foo", false, true, false);
    EXPECT_EQ(selected(), "9+3");
    FINDNEXT(Text, "foo", false, true, true);
    EXPECT_EQ(selected(), "1+3");
    EXPECT_TRUE(asked.empty());
}

TEST_F(FindDialogs, BehindTheLastHitTheMissIsToldAndNothingGoesRound) {
    put("foo bar", 1, 3);
    FINDNEXT(Text, "Foo", false, false, false);
    EXPECT_EQ(lastAsked(), "Find: Cannot find search string:\n'Foo'");
    EXPECT_EQ(selected(), "1+3");
}

TEST_F(FindDialogs, AnEmptyTextIsNotLookedFor) {
    put("foo", 2, 1);
    FINDNEXT(Text, "", false, false, true);
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(selected(), "2+1");
}

TEST_F(FindDialogs, WorkOnAnEditControl) {
    const Object line = in(Form, "line");
    SetText(line, "one two one");
    SetSelection(line, 2, 0);
    FINDNEXT(line, "one", true, true, false);
    EXPECT_EQ(GetSelection(line).start, 9);
    REPLACENEXT(line, "one", "three", false, true, false, true, true);
    EXPECT_EQ(GetText(line), "three two three");
    EXPECT_EQ(GETWORDATCURSOR(line), "three");
}

TEST_F(FindDialogs, TheWordAtTheCursor) {
    struct Case {
        const char* text;
        int start;
        const char* word;
    };
    for (const Case& c : {Case{"one two", 1, "one"},
                          {"one two", 3, "one"},
                          {"one two", 4, "one"},
                          {"one two", 5, "two"},
                          {"one  two", 5, ""},
                          {"", 1, ""},
                          {"a_1.b", 4, "a_1"},
                          {"one", 4, "one"},
                          {"(x", 1, ""},
                          {"(x", 2, "x"}}) {
        put(c.text, c.start);
        EXPECT_EQ(GETWORDATCURSOR(Text), c.word) << c.text << " " << c.start;
    }
    put("one two", 5, 3);
    EXPECT_EQ(GETWORDATCURSOR(Text), "two");
}

TEST_F(FindDialogs, AreFilledWithTheWordAtTheCursorAndTheChoices) {
    put("first second", 8);
    FindChoice choice{"stored", true, false, true};
    play({[&] {
              EXPECT_EQ(GetCaption(FindDlg), "Edit-Find");
              EXPECT_EQ(GetCaption(in(FindDlg, "lblhelpfile")), "a.htm");
              EXPECT_EQ(GetCaption(in(FindDlg, "lblhelptopic")), "a topic");
              EXPECT_EQ(GetText(in(FindDlg, "edit1")), "second");
              EXPECT_EQ(GetSelection(in(FindDlg, "edit1")).length, 6);
              EXPECT_EQ(GetValue(in(FindDlg, "check1")), 1);
              EXPECT_EQ(GetValue(in(FindDlg, "check2")), 0);
              EXPECT_EQ(GetValue(in(FindDlg, "radio1")), 1);
              EXPECT_TRUE(GetVisible(in(FindDlg, "pushbutton3")));
              EXPECT_TRUE(IsModal(FindDlg));
          },
          pressing(FindDlg, "pushbutton1")});
    FINDDIALOG("Edit-Find", Text, "a.htm", "a topic", choice);
    EXPECT_EQ(selected(), "7+6");
    EXPECT_FALSE(IsLoaded(FindDlg));
    EXPECT_EQ(choice.text, "second");
    EXPECT_TRUE(choice.matchWord && !choice.matchCase && choice.fromStart);
}

TEST_F(FindDialogs, WithoutAWordTheStoredTextIsOffered) {
    put("  stored", 1);
    FindChoice choice{"stored", false, true, false};
    play({[&] {
              EXPECT_EQ(GetText(in(FindDlg, "edit1")), "stored");
              EXPECT_EQ(GetValue(in(FindDlg, "check2")), 1);
              EXPECT_EQ(GetValue(in(FindDlg, "radio2")), 1);
          },
          pressing(FindDlg, "pushbutton1")});
    FINDDIALOG("Find", Text, "", "", choice);
    EXPECT_EQ(selected(), "3+6");
}

TEST_F(FindDialogs, WithNothingToOfferTheBoxesAreReset) {
    put("", 1);
    FindChoice choice{"", true, true, true};
    play({[] {
              EXPECT_EQ(GetValue(in(FindDlg, "check1")) + GetValue(in(FindDlg, "check2")), 0);
              EXPECT_EQ(GetValue(in(FindDlg, "radio2")), 1);
          },
          pressing(FindDlg, "pushbutton2")});
    FINDDIALOG("Find", Text, "", "", choice);
    EXPECT_FALSE(choice.matchWord || choice.matchCase || choice.fromStart);

    ReplaceChoice replace{"", "new", true, true, false, true};
    play({pressing(ReplaceDlg, "pushbutton2")});
    REPLACEDIALOG("Replace", Text, "", "", replace);
    EXPECT_FALSE(replace.matchWord || replace.matchCase || replace.fromStart);
    EXPECT_TRUE(replace.confirmEach);
    EXPECT_EQ(replace.newText, "new");
}

TEST_F(FindDialogs, OkStaysWithoutATextToFind) {
    put("a b", 1);
    FindChoice choice;
    play({[] {
        SetText(in(FindDlg, "edit1"), "");
        press(FindDlg, "pushbutton1");
        EXPECT_TRUE(IsLoaded(FindDlg) && GetVisible(FindDlg));
        SetText(in(FindDlg, "edit1"), "b");
        SetValue(in(FindDlg, "check1"), 1);
        press(FindDlg, "pushbutton1");
    }});
    FINDDIALOG("Find", Text, "", "", choice);
    EXPECT_EQ(selected(), "3+1");
    EXPECT_EQ(choice.text, "b");
    EXPECT_TRUE(choice.matchWord);
    ReplaceChoice replace;
    play({[] {
              for (const char* button : {"pushbutton1", "pushbutton4"}) {
                  SetText(in(ReplaceDlg, "edit1"), "");
                  press(ReplaceDlg, button);
                  EXPECT_TRUE(IsLoaded(ReplaceDlg) && GetVisible(ReplaceDlg));
                  EXPECT_EQ(GetValue(in(ReplaceDlg, "replaceall")), 0);
              }
          },
          pressing(ReplaceDlg, "pushbutton2")});
    REPLACEDIALOG("Replace", Text, "", "", replace);
    EXPECT_TRUE(asked.empty());
}

TEST_F(FindDialogs, CancelEscAndTheCloseButtonFindNothing) {
    for (int way = 0; way < 3; ++way) {
        put("one two", 1);
        FindChoice choice{"two", true, false, false};
        play({[way] {
            SetText(in(FindDlg, "edit1"), "typed");
            if (way == 0) press(FindDlg, "pushbutton2");
            if (way == 1) key(FindDlg, KEY_ESCAPE);
            if (way == 2) platform::userClose(*platform::findWindow(FindDlg));
        }});
        FINDDIALOG("Find", Text, "", "", choice);
        EXPECT_FALSE(IsLoaded(FindDlg));
        EXPECT_EQ(selected(), "1+0");
        EXPECT_EQ(choice.text, "one");  // what was offered
    }
}

TEST_F(FindDialogs, HelpIsThereWithAHelpFileOnly) {
    for (const char* file : {"", "  ", "missing.htm"}) {
        put("one", 1);
        FindChoice choice;
        const bool there = std::string(file) == "missing.htm";
        asked.clear();
        play({[&] {
                  EXPECT_EQ(GetVisible(in(FindDlg, "pushbutton3")), there);
                  EXPECT_TRUE(key(FindDlg, KEY_F1));
              },
              pressing(FindDlg, "pushbutton2")});
        FINDDIALOG("Find", Text, file, "topic", choice);
        EXPECT_EQ(asked.size(), there ? 1U : 0U) << file;
    }
    EXPECT_EQ(lastAsked(), "MultiHelp: Help file 'missing.htm' was empty or not found.");
}

TEST_F(FindDialogs, AMissIsToldWhileTheDialogIsStillLoaded) {
    put("one", 1);
    FindChoice choice;
    play({[] {
        SetText(in(FindDlg, "edit1"), "none");
        press(FindDlg, "pushbutton1");
    }});
    FINDDIALOG("Find", Text, "", "", choice);
    EXPECT_EQ(lastAsked(), "Find: Cannot find search string:\n'none'");
    EXPECT_EQ(choice.text, "none");
    EXPECT_FALSE(IsLoaded(FindDlg));
}

// ---- replacing ----

TEST_F(FindDialogs, WithoutAskingOneHitIsReplacedOrAll) {
    put("foo foo foo", 1);
    REPLACENEXT(Text, "foo", "x", false, true, false, false, false);
    EXPECT_EQ(GetText(Text), "x foo foo");
    EXPECT_EQ(lastAsked(), "Replace: 1 replacement was made.");
    EXPECT_TRUE(GetModify(Text));
    REPLACENEXT(Text, "foo", "foofoo", false, true, false, false, true);
    EXPECT_EQ(GetText(Text), "x foofoo foofoo");
    EXPECT_EQ(lastAsked(), "Replace: 2 replacements were made.");
    REPLACENEXT(Text, "FOO", "", false, true, false, true, true);
    EXPECT_EQ(lastAsked(), "Replace: 0 replacements were made.");
}

TEST_F(FindDialogs, ATextWithoutAHitStaysUnmarked) {
    put("foo", 1);
    REPLACENEXT(Text, "x", "y", false, true, false, true, true);
    EXPECT_FALSE(GetModify(Text));
    EXPECT_EQ(GetText(Text), "foo");
}

TEST_F(FindDialogs, FromTheCursorWhatStandsInFrontStays) {
    put("foo foo foo", 2, 3);
    REPLACENEXT(Text, "foo", "x", false, true, false, false, true);
    EXPECT_EQ(GetText(Text), "foo x x");
    put("foo foo foo", 2, 3);
    REPLACENEXT(Text, "foo", "x", false, true, false, true, true);
    EXPECT_EQ(GetText(Text), "x x x");
}

TEST_F(FindDialogs, AnEmptyOldTextReplacesNothing) {
    put("foo", 1);
    REPLACENEXT(Text, "", "x", false, true, false, true, true);
    REPLACENEXT(Text, "", "x", false, true, true, true, true);
    EXPECT_EQ(GetText(Text), "foo");
    EXPECT_TRUE(asked.empty());
}

TEST_F(FindDialogs, EachHitIsShownAndAskedFor) {
    put("foo bar foo foo", 1);
    answers = {"&Yes", "&No", "&Yes", "OK"};
    REPLACENEXT(Text, "foo", "foo!", false, true, true, true, true);
    EXPECT_EQ(GetText(Text), "foo! bar foo foo!");
    ASSERT_EQ(asked.size(), 4U);
    EXPECT_EQ(asked[0], "Replace: Replace this occurrence of 'foo'?");
    EXPECT_EQ(seen[0].start, 1);
    EXPECT_EQ(seen[0].length, 3);
    EXPECT_EQ(seen[1].start, 10);
    EXPECT_EQ(seen[2].start, 14);
    EXPECT_EQ(asked[3], "Replace: 2 replacements were made.");
}

TEST_F(FindDialogs, CancelAtTheThirdKeepsTwoAndTellsNoCount) {
    for (const char* leave : {"&Cancel", ""}) {
        put("foo foo foo foo", 1);
        asked.clear();
        answers = {"&Yes", "&Yes", leave};
        REPLACENEXT(Text, "foo", "x", false, true, true, true, true);
        EXPECT_EQ(GetText(Text), "x x foo foo");
        EXPECT_EQ(asked.size(), 3U);
        EXPECT_EQ(lastAsked(), "Replace: Replace this occurrence of 'foo'?");
        EXPECT_EQ(GetSelText(Text), "foo");
    }
}

TEST_F(FindDialogs, WithoutReplaceAllOneAnswerEndsIt) {
    put("foo foo", 1);
    answers = {"&No", "OK"};
    REPLACENEXT(Text, "foo", "x", false, true, true, true, false);
    EXPECT_EQ(GetText(Text), "foo foo");
    EXPECT_EQ(lastAsked(), "Replace: 0 replacements were made.");
    answers = {"&Yes", "OK"};
    REPLACENEXT(Text, "foo", "x", false, true, true, true, false);
    EXPECT_EQ(GetText(Text), "x foo");
    EXPECT_EQ(lastAsked(), "Replace: 1 replacement was made.");
    asked.clear();
    REPLACENEXT(Text, "none", "x", false, true, true, true, false);
    EXPECT_EQ(asked, std::vector<std::string>{"Replace: 0 replacements were made."});
}

TEST_F(FindDialogs, WhatIsShownOnlyIsNotChanged) {
    const Object shown = in(Form, "shown");
    SetText(shown, "foo foo");
    for (const bool each : {false, true}) REPLACENEXT(shown, "foo", "x", false, true, each, true, true);
    EXPECT_EQ(GetText(shown), "foo foo");
    EXPECT_TRUE(asked.empty());
    FINDNEXT(shown, "foo", false, true, true);
    EXPECT_EQ(GetSelText(shown), "foo");
}

TEST_F(FindDialogs, ATextThatWouldBeTooLongStays) {
    const Object line = in(Form, "short");
    SetText(line, "a.a");
    REPLACENEXT(line, "a", "xxx", false, true, false, true, true);
    EXPECT_EQ(GetText(line), "a.a");
    REPLACENEXT(line, "a", "xx", false, true, false, true, true);
    EXPECT_EQ(GetText(line), "xx.xx");
    put(std::string(10'000, 'a'), 1);
    REPLACENEXT(Text, "a", std::string(1'000'000, 'b'), false, true, false, true, true);
    EXPECT_EQ(GetTextLength(Text), 10'000);
}

TEST_F(FindDialogs, OfReplacingGiveAllChoicesBack) {
    put("one two one", 1);
    ReplaceChoice choice{"stored", "new", false, false, false, false};
    play({[] {
        EXPECT_EQ(GetText(in(ReplaceDlg, "edit1")), "one");
        EXPECT_EQ(GetText(in(ReplaceDlg, "edit2")), "new");
        EXPECT_EQ(GetValue(in(ReplaceDlg, "replaceall")), 0);
        SetText(in(ReplaceDlg, "edit2"), "3");
        SetValue(in(ReplaceDlg, "check1"), 1);
        SetValue(in(ReplaceDlg, "check2"), 1);
        SetValue(in(ReplaceDlg, "radio1"), 1);
        press(ReplaceDlg, "pushbutton4");
    }});
    REPLACEDIALOG("Edit-Replace", Text, "", "", choice);
    EXPECT_EQ(GetText(Text), "3 two 3");
    EXPECT_EQ(lastAsked(), "Replace: 2 replacements were made.");
    EXPECT_FALSE(IsLoaded(ReplaceDlg));
    EXPECT_EQ(choice.oldText + choice.newText, "one3");
    EXPECT_TRUE(choice.matchWord && choice.matchCase && choice.fromStart && !choice.confirmEach);
}

TEST_F(FindDialogs, OkOfReplacingMeansOneHit) {
    put("one two one", 4);
    ReplaceChoice choice{"", "x", false, false, false, true};
    play({pressing(ReplaceDlg, "pushbutton1")});
    REPLACEDIALOG("Edit-Replace", Text, "", "", choice);
    EXPECT_EQ(GetText(Text), "x two one");
}

// ---- going to a line ----

class GoToLine : public FindDialogs {
protected:
    // The selection after the user has entered that.
    std::string go(const std::string& entered, const char* button = "pushbutton1") {
        play({[&] {
            offered = GetText(in(GotoLineDlg, "edit1"));
            SetText(in(GotoLineDlg, "edit1"), entered);
            press(GotoLineDlg, button);
        }});
        GOTOLINEDIALOG("View-Line", Text, "", "View_Line");
        EXPECT_FALSE(IsLoaded(GotoLineDlg));
        return selected();
    }
    std::string offered;
};

TEST_F(GoToLine, SelectsItsStart) {
    struct Case {
        const char *entered, *place;
    };
    for (const Case& c : {Case{"1", "1+0"},
                          {"2", "5+0"},
                          {" 3 ", "8+0"},
                          {"4", "12+0"},
                          // no line of the text, or no number
                          {"5", "6+1"},
                          {"0", "6+1"},
                          {"-1", "6+1"},
                          {"x", "6+1"},
                          {"", "6+1"},
                          {"2x", "6+1"},
                          {"99999999999", "6+1"},
                          {" ", "6+1"}}) {
        put("one\n2\r\nend\n", 6, 1);
        EXPECT_EQ(go(c.entered), c.place) << c.entered;
    }
    EXPECT_TRUE(asked.empty());
}

TEST_F(GoToLine, OffersTheLineOfAWindowThatIsShown) {
    put("one\ntwo\nthree", 6);
    go("", "pushbutton2");
    EXPECT_EQ(offered, "");
    Show(Text, false);
    go("3", "pushbutton2");
    EXPECT_EQ(offered, "2");
    EXPECT_EQ(selected(), "6+0");
}

TEST_F(GoToLine, ShowsTheWindow) {
    put("one\ntwo", 1);
    Hide(Text);
    go("9");
    EXPECT_FALSE(GetVisible(Text));
    go("2");
    EXPECT_TRUE(GetVisible(Text));
}

TEST_F(GoToLine, EscLeaves) {
    put("one\ntwo", 1);
    play({[] {
        SetText(in(GotoLineDlg, "edit1"), "2");
        EXPECT_TRUE(key(GotoLineDlg, KEY_ESCAPE));
    }});
    GOTOLINEDIALOG("View-Line", Text, "", "View_Line");
    EXPECT_EQ(selected(), "1+0");
    EXPECT_FALSE(IsLoaded(GotoLineDlg));
}

TEST_F(GoToLine, AnEmptyTextHasOneLine) {
    put("");
    EXPECT_EQ(go("1"), "1+0");
    EXPECT_EQ(go("2"), "1+0");
}

// ---- additions of a program ----

TEST_F(FindDialogs, AProblemOfTheProgramIsToldAndTheDialogStays) {
    put("a b", 1);
    USESEARCHEXTRAS({.problem = [](const Object& dialog) {
        return GetText(in(dialog, "edit1")) == "(" ? std::string("Not so.") : std::string();
    }});
    FindChoice choice;
    play({[] {
        SetText(in(FindDlg, "edit1"), "(");
        press(FindDlg, "pushbutton1");
        EXPECT_TRUE(IsLoaded(FindDlg) && GetVisible(FindDlg));
        SetText(in(FindDlg, "edit1"), "b");
        press(FindDlg, "pushbutton1");
    }});
    FINDDIALOG("Edit-Find", Text, "", "", choice);
    EXPECT_EQ(asked, std::vector<std::string>{"Edit-Find: Not so."});
    EXPECT_EQ(selected(), "3+1");
}

}  // namespace
}  // namespace tarn
