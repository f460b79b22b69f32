// SPDX-License-Identifier: GPL-3.0-or-later
//
// Cut, copy, paste and duplicate in the dialog editor, on the object model.
#include "ide/designer/objects/dlgclip.h"

#include "ide/designer/dlghistory.h"
#include "ide/designer/objects/cliptext.h"
#include "ide/designer/objects/dlgpaste.h"
#include "kernel/windows/resources.h"
#include "support/dialog_editor_fixture.h"

#include <random>

namespace tarn {
namespace {

class DialogClip : public DialogEditorTest {
protected:
    void openThree(const std::string& more = "") {
        open(dialog(control("LABEL", "one", "8 8 42 17") + control("EDIT", "two", "40 20 60 20") +
                    control("PUSHBUTTON", "three", "100 60 40 12", "    DEFAULT=1\n") + more));
    }
    static std::string hint() {
        EXPECT_EQ(GetHint(DialogDlg), GetCaption(MAINCONTROL("lblstatus")));
        return GetHint(DialogDlg);
    }
    static std::string clip() { return GetText(clipboard); }
    static std::string clipOf(const std::string& controls) {
        return std::string(ClipHead) + "\nCopied DIALOG\n" + controls + "END\n";
    }
    // What DIALOGSAVE tells, empty if it has saved.
    std::string saved() {
        asked.clear();
        answers.clear();
        DIALOGSETMODIFY(true);
        DIALOGSAVE();
        return DIALOGGETMODIFY() ? "not saved: " + lastText() : lastText();
    }
    void expectFileHasTheLists() {
        ObjectArray objects;
        EXPECT_EQ(ResourceRead(file, DIALOGGETDLGNAME(), objects), "");
        for (int index = 1; index <= count(); ++index)
            EXPECT_EQ(objects[static_cast<std::size_t>(index - 1)], item(index));
    }
};

// ---- copy ----

TEST_F(DialogClip, CopiesReadableText) {
    openThree();
    SELECTOBJECTS({4, 2});
    pick("edit_copy");
    EXPECT_EQ(clip(), "// Controls of a dialog, for the dialog editor\r\n"
                      "Copied DIALOG\r\n"
                      "  Label one 101\r\n"
                      "    POSITION=8 8 42 17\r\n"
                      "  Pushbutton three 102\r\n"
                      "    POSITION=100 60 40 12\r\n"
                      "    DEFAULT=1\r\n"
                      "END\r\n");
    EXPECT_FALSE(DIALOGGETMODIFY());
    EXPECT_FALSE(DIALOGCANUNDO());
}

TEST_F(DialogClip, TheDialogTheMenuAndNothingAreNotCopied) {
    openThree();
    for (const int index : {0, 1, -1}) {
        SetText(clipboard, "before");
        SELECTOBJECT(index);
        for (const char* command : {"edit_copy", "edit_cut", "edit_dialog_duplicate"}) {
            EXPECT_TRUE(beeps([=] { pick(command); })) << command << index;
            EXPECT_EQ(hint(), "No control is selected.") << command << index;
        }
        EXPECT_EQ(clip(), "before");
    }
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(DialogClip, AControlThatNoResourceFileCanHoldIsNotCopied) {
    openThree();
    SELECTOBJECT(2);
    edit({{"NAME", "no name"}});
    SetText(clipboard, "before");
    EXPECT_TRUE(beeps([] { pick("edit_copy"); }));
    EXPECT_EQ(clip(), "before");
    EXPECT_EQ(hint(), "A control that a resource file cannot hold is not copied.");
}

// ---- paste ----

TEST_F(DialogClip, PasteGivesFreeNamesAndMovesByAStepOfTheGrid) {
    openThree();
    SetCaption(DESIGNCONTROL("gridstr"), "5 3");
    SELECTOBJECTS({2, 3});
    pick("edit_copy");
    pick("edit_paste");
    EXPECT_EQ(names(), "Dlg\none\ntwo\nthree\none1\ntwo1\n");
    EXPECT_EQ(property(5, "POSITION"), "13 11 42 17");
    EXPECT_EQ(property(6, "POSITION"), "45 23 60 20");
    EXPECT_EQ(SELECTEDOBJECTS(), (std::vector<int>{5, 6}));
    EXPECT_TRUE(DIALOGGETMODIFY());
    pick("edit_paste");
    EXPECT_EQ(property(7, "NAME"), "one2");
    EXPECT_EQ(property(7, "POSITION"), "18 14 42 17");
    pick("edit_undo_typing");
    pick("edit_undo_typing");
    EXPECT_EQ(names(), "Dlg\none\ntwo\nthree\n");
    EXPECT_FALSE(DIALOGGETMODIFY());
    EXPECT_EQ(saved(), "");
}

TEST_F(DialogClip, AGridThatIsNoneCountsAsFour) {
    for (const char* grid : {"", "0 0", "x y", "-3 -3"}) {
        openThree();
        SetCaption(DESIGNCONTROL("gridstr"), grid);
        SELECTOBJECT(2);
        pick("edit_dialog_duplicate");
        EXPECT_EQ(property(5, "POSITION"), "12 12 42 17") << grid;
        DIALOGSETMODIFY(false);
    }
}

TEST_F(DialogClip, CutAndPasteBringsTheControlBackAsItWas) {
    openThree();
    SELECTOBJECT(3);
    const std::string before = item(3);
    pick("edit_cut");
    EXPECT_EQ(names(), "Dlg\none\nthree\n");
    EXPECT_EQ(SELECTEDOBJECT(), 0);
    pick("edit_paste");
    EXPECT_EQ(item(4), before);
    pick("edit_undo_typing");
    pick("edit_undo_typing");
    EXPECT_EQ(names(), "Dlg\none\ntwo\nthree\n");
    EXPECT_EQ(SELECTEDOBJECT(), 3);
}

TEST_F(DialogClip, CutTakesAllThatAreSelectedInOneStep) {
    openThree();
    SELECTOBJECTS({4, 2});
    pick("edit_cut");
    EXPECT_EQ(names(), "Dlg\ntwo\n");
    pick("edit_undo_typing");
    EXPECT_EQ(names(), "Dlg\none\ntwo\nthree\n");
    EXPECT_EQ(SELECTEDOBJECTS(), (std::vector<int>{4, 2}));
    EXPECT_FALSE(DIALOGCANUNDO());
}

TEST_F(DialogClip, PastesIntoAnotherDialog) {
    openThree();
    SELECTOBJECTS({2, 4});
    pick("edit_copy");
    open(dialog("", "Other"), 0, "Other");
    pick("edit_paste");
    EXPECT_EQ(names(), "Other\none\nthree\n");
    EXPECT_EQ(property(3, "POSITION"), "100 60 40 12");
    EXPECT_EQ(property(3, "DEFAULT"), "1");
    EXPECT_EQ(saved(), "");
    expectFileHasTheLists();
}

TEST_F(DialogClip, OneDefaultButtonStays) {
    openThree();
    SELECTOBJECT(4);
    pick("edit_copy");
    pick("edit_paste");
    EXPECT_EQ(property(4, "DEFAULT") + property(5, "DEFAULT"), "10");
}

TEST_F(DialogClip, MembersFollowTheNameOfTheirArray) {
    open(dialog(control("RADIOBUTTON", "pick", "1 1 40 12", "    ARRAY=pick\n") +
                control("RADIOBUTTON", "other", "1 20 40 12", "    ARRAY=pick\n")));
    SELECTOBJECTS({2, 3});
    pick("edit_dialog_duplicate");
    EXPECT_EQ(property(4, "NAME") + " " + property(4, "ARRAY"), "pick1 pick1");
    EXPECT_EQ(property(5, "NAME") + " " + property(5, "ARRAY"), "other1 pick1");
    SELECTOBJECT(3);
    pick("edit_dialog_duplicate");
    EXPECT_EQ(property(6, "NAME") + " " + property(6, "ARRAY"), "other2 pick") << "it joins the array";
}

TEST_F(DialogClip, EveryByteOfACaptionComesBack) {
    openThree();
    std::string caption;
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '\n') caption += static_cast<char>(byte);
    std::string list = item(2);
    SETPROPVALUE("CAPTION", "\"" + caption + "\\n\\0\"", list);
    DESIGNSTEP([&] { SETDESIGNITEM(DATALIST(), 2, list); });
    SELECTOBJECT(2);
    pick("edit_cut");
    pick("edit_paste");
    EXPECT_EQ(item(4), list);
    EXPECT_EQ(saved(), "");
}

TEST_F(DialogClip, StaysInsideTheDialog) {
    openThree();
    const struct {
        const char *copied, *pasted;
    } cases[] = {
        {"190 95 20 20", "180 80 20 20"},
        {"-5 -32768 20 20", "0 0 20 20"},
        {"2147483647 -2147483648 8 8", "192 0 8 8"},
        {"7 7 300 300", "0 0 300 300"},
        {"1 1 0 0", "1 1 0 0"},
        {"1 1 -5 -5", "1 1 0 0"},
        {"3 3 99999 2147483647", "0 0 32767 32767"},
    };
    for (const auto& one : cases) {
        SetText(clipboard, clipOf(control("LABEL", "x", one.copied)));
        pick("edit_paste");
        EXPECT_EQ(property(5, "POSITION"), one.pasted) << one.copied;
        EXPECT_EQ(saved(), "") << one.copied;
        expectFileHasTheLists();
        key(KEY_DELETE);
    }
}

TEST_F(DialogClip, AGroupThatFitsKeepsItsDistances) {
    openThree();
    SetText(clipboard,
            clipOf(control("LABEL", "x", "500 500 20 10") + control("LABEL", "y", "530 520 20 10")));
    pick("edit_paste");
    EXPECT_EQ(property(5, "POSITION"), "150 70 20 10");
    EXPECT_EQ(property(6, "POSITION"), "180 90 20 10");
}

TEST_F(DialogClip, WhereTheSlopeEndsTheLastPlaceIsTaken) {
    open(dialog(control("LABEL", "a", "192 92 8 8")));
    SELECTOBJECT(2);
    pick("edit_dialog_duplicate");
    EXPECT_EQ(property(3, "POSITION"), "192 92 8 8");
}

TEST_F(DialogClip, WithTheMostControlsNothingIsPasted) {
    std::string controls;
    for (int n = 1; n <= 254; ++n) controls += control("LABEL", "L" + STR(n), STR(n % 100) + " 1 8 8");
    open(dialog(controls));
    SELECTOBJECTS({2, 3});
    pick("edit_copy");
    const std::string most =
        "Cannot add a control object, this dialog has too many control objects.\nThe maximum "
        "number allowed is 255.\n";
    pick("edit_paste");
    EXPECT_EQ(lastText(), most);
    EXPECT_EQ(count(), 255);
    EXPECT_FALSE(DIALOGGETMODIFY());
    SELECTOBJECT(2);
    pick("edit_dialog_duplicate");
    EXPECT_EQ(count(), 256) << "the last one";
    EXPECT_EQ(saved(), "");
    asked.clear();
    pick("edit_dialog_duplicate");
    EXPECT_EQ(lastText(), most);
    std::string tooMany;
    for (int n = 1; n <= 300; ++n) tooMany += control("LABEL", "M" + STR(n), "1 1 8 8");
    open(dialog("", "Empty"), 0, "Empty");
    SetText(clipboard, clipOf(tooMany));
    asked.clear();
    pick("edit_paste");
    EXPECT_EQ(lastText(), most);
}

TEST_F(DialogClip, AWindowThatTakesNoControlsTakesNone) {
    file = write("a.rc", "Wnd EDITWINDOW\n  POSITION=0 0 200 100\n  CAPTION=\"W\"\nEND\n");
    OPENDIALOG(file, "Wnd");
    SetText(clipboard, clipOf(control("LABEL", "x", "1 1 8 8")));
    pick("edit_paste");
    EXPECT_EQ(lastText(),
              "Cannot add a control object, controls can only be added to Dialogs.\nThe type of the current "
              "window is Editwindow.");
}

TEST_F(DialogClip, WithLockedDeletionNothingIsCut) {
    open(dialog(control("LABEL", "one", "8 8 42 17")), OPEN_LOCK_DELETION);
    SELECTOBJECT(2);
    SetText(clipboard, "before");
    EXPECT_TRUE(beeps([] { pick("edit_cut"); }));
    EXPECT_EQ(clip() + names(), "beforeDlg\none\n");
}

// ---- names ----

TEST_F(DialogClip, TakenAndBadNamesBecomeFreeOnes) {
    const struct {
        const char *there, *copied, *pasted;
    } cases[] = {
        {"a", "b", "b"},
        {"a", "A", "A1"},
        {"Label1", "label1", "label2"},
        {"Label7", "Label3", "Label3"},
        {"lbl_1", "lbl_1", "lbl_2"},
        {"my_btn", "my_btn", "my_btn1"},
        {"a2147483647", "a2147483647", "a2147483648"},
        {"a99999999999", "a99999999999", "a1"},
        {"17", "17", "Label1"},
        {"17", "18", "18"},
        {"x", "-1", "-1"},
        {"-1", "-1", "Label1"},
        {"x", "", "Label1"},
        {"x", "Printer", "Label1"},
        {"x", "clipboard", "Label1"},
        {"x", "two words", "Label1"},
        {"x", "3rd", "Label1"},
        {"x", "Einkaufswagenkontrollkaestchenbeschriftung", "Label1"},
        {"Label_ab_ab_ab_ab_ab_ab_ab_ab_ab_abc", "Label_ab_ab_ab_ab_ab_ab_ab_ab_ab_abc",
         "Label_ab_ab_ab_ab_ab_ab_ab_ab_1"},
    };
    for (const auto& one : cases) {
        const PasteTarget target{{"NAME=Dlg\nTYPEOF=Dialog\nPOSITION=0 0 100 100\n",
                                  "NAME=" + std::string(one.there) + "\nTYPEOF=Label\nPOSITION=50 50 1 1\n"},
                                 {},
                                 "4 4"};
        const auto fitted = FITTEDCONTROLS(
            {"NAME=" + std::string(one.copied) + "\nTYPEOF=LABEL\nPOSITION=0 0 8 8\n"}, target);
        ASSERT_EQ(fitted.size(), 1U);
        EXPECT_EQ(GETPROPVALUE(fitted[0], "NAME"), one.pasted) << one.copied;
    }
}

TEST_F(DialogClip, NamesOfMenuItemsAreTakenToo) {
    open(dialog("", "Dlg", "  MENU=Menu1\n") +
         "Menu1 MENU\n  Menuitem a 9\n    POSITION=1\n    CAPTION=\"A\"\nEND\n");
    SetText(clipboard, clipOf(control("LABEL", "a", "1 1 8 8") + control("LABEL", "A", "1 1 8 8") +
                              control("LABEL", "dlg", "1 1 8 8")));
    pick("edit_paste");
    EXPECT_EQ(names(), "Dlg\na1\nA2\ndlg1\n");
    EXPECT_EQ(saved(), "");
}

// ---- what else may be on a clipboard ----

TEST_F(DialogClip, ForeignAndBrokenTextsAreNotPasted) {
    const std::string foreign = "There are no controls on the clipboard.",
                      broken = "The controls on the clipboard cannot be read.",
                      good = control("LABEL", "x", "1 1 8 8");
    const std::string head = std::string(ClipHead) + "\n";
    const struct {
        std::string text, hint;
    } cases[] = {
        {"", foreign},
        {"some words", foreign},
        {"Copied DIALOG\n" + good + "END\n", foreign},
        {" " + clipOf(good), foreign},
        {head.substr(0, 20), foreign},
        {std::string(std::size_t{1} << 20U, 'x'), foreign},
        {std::string(std::size_t{17} << 20U, '\n'), foreign},
        {head, broken},
        {head + std::string(std::size_t{1} << 20U, 'x'), broken},
        {head + std::string(std::size_t{1} << 20U, '\0'), broken},
        {head + "Copied DIALOG\nEND\n", broken},
        {head + "Copied DIALOG\n" + good, broken},
        {head + "Other DIALOG\n" + good + "END\n", broken},
        {clipOf(good) + "More DIALOG\nEND\n", broken},
        {clipOf(good) + "and this\n", broken},
        {head + "Copied MENU\n  Menuitem x 9\n    POSITION=1\nEND\n", broken},
        {clipOf("  MENUITEM x\n    POSITION=1\n"), broken},
        {clipOf("  DIALOG x\n    POSITION=1 1 8 8\n"), broken},
        {clipOf("  WIDGET x\n    POSITION=1 1 8 8\n"), broken},
        {clipOf("  LABEL two words more\n    POSITION=1 1 8 8\n"), broken},
        {clipOf("  LABEL x\n    CAPTION=\"open\n"), broken},
    };
    openThree();
    for (const auto& one : cases) {
        SetText(clipboard, one.text);
        EXPECT_TRUE(beeps([] { pick("edit_paste"); })) << one.text.substr(0, 200);
        EXPECT_EQ(hint(), one.hint) << one.text.substr(0, 200);
        EXPECT_EQ(count(), 4);
    }
    EXPECT_FALSE(DIALOGGETMODIFY());
    EXPECT_TRUE(asked.empty());
}

TEST_F(DialogClip, UnknownPropertiesAndHugeValuesStayAndCanBeSaved) {
    openThree();
    SetText(clipboard, clipOf("  LABEL x\n    FLAVOUR=7\n    CAPTION=\"" +
                              std::string(std::size_t{1} << 19U, 'c') + "\"\n    FORECOLOUR=none\n"));
    pick("edit_paste");
    EXPECT_EQ(property(5, "FLAVOUR"), "7");
    EXPECT_EQ(saved(), "");
    expectFileHasTheLists();
}

// Whatever a text holds, what is pasted from it can be saved.
TEST_F(DialogClip, DamagedTextsNeverMakeADialogThatCannotBeSaved) {
    std::mt19937 random(7);
    const auto below = [&](std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most - 1)(random);
    };
    const std::string bits[] = {"\"",
                                "\n",
                                "\r\n",
                                "END\n",
                                "LABEL",
                                " -1 ",
                                "POSITION=",
                                "NAME=a\n",
                                "TYPEOF=Dialog\n",
                                "#define x 3\n",
                                "/*",
                                "//",
                                std::string(1, '\0'),
                                "\xff",
                                "99999999999",
                                "ARRAY=\"",
                                "one",
                                "MENU",
                                "EDIT two\n",
                                "=",
                                "\\"};
    openThree();
    SELECTOBJECTS({2, 3, 4});
    pick("edit_copy");
    const std::string good = clip();
    int pasted = 0;
    for (int round = 0; round < 400; ++round) {
        std::string text = good;
        for (std::size_t n = 1 + below(3); n > 0; --n) {
            const std::size_t at = ClipHead.size() + below(text.size() - ClipHead.size());
            text.replace(at, below(6), bits[below(std::size(bits))]);
        }
        SetText(clipboard, text);
        pick("edit_paste");
        ASSERT_TRUE(asked.empty()) << text << lastText();
        if (count() == 4) continue;
        ++pasted;
        ASSERT_EQ(saved(), "") << text;
        expectFileHasTheLists();
        pick("edit_undo_typing");
        ASSERT_EQ(count(), 4);
    }
    EXPECT_GT(pasted, 20);
}

// ---- select all ----

TEST_F(DialogClip, SelectAllTakesAllControls) {
    openThree();
    SELECTOBJECT(3);
    pick("edit_select_all");
    EXPECT_EQ(SELECTEDOBJECTS(), (std::vector<int>{2, 3, 4}));
    EXPECT_FALSE(DIALOGGETMODIFY());
    SELECTOBJECT(1);
    key(0x1000 + 'A');
    EXPECT_EQ(SELECTEDOBJECTS(), (std::vector<int>{2, 3, 4}));
    open(dialog("", "Empty"), 0, "Empty");
    EXPECT_TRUE(beeps([] { pick("edit_select_all"); }));
}

TEST_F(DialogClip, InTheCodeWindowTheCommandsAreThoseOfTheText) {
    openThree();
    SELECTOBJECT(2);
    Show(SDIEdit, false);
    type("text");
    pick("edit_select_all");
    pick("edit_copy");
    EXPECT_EQ(clip(), "text");
    pick("edit_paste");
    EXPECT_EQ(GetText(SDIEdit), "text");
    pick("edit_select_all");
    pick("edit_cut");
    EXPECT_EQ(GetText(SDIEdit), "");
    EXPECT_EQ(count(), 4);
}

TEST_F(DialogClip, WithoutTheEditorTheCommandsBeep) {
    for (void (*command)() : {DIALOGCUT, DIALOGCOPY, DIALOGPASTE, DIALOGDUPLICATE})
        EXPECT_TRUE(beeps(command));
}

}  // namespace
}  // namespace tarn
