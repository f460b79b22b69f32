// SPDX-License-Identifier: GPL-3.0-or-later
//
// Opening and saving dialogs: each message, each order, each byte.
#include "ide/designer/dlgdisk.h"
#include "support/dialog_editor_fixture.h"
#include "support/steerable.h"

namespace tarn {
namespace {

class DialogEditor : public DialogEditorTest {
protected:
    const std::string some =
        "// first\n#define IDX 7\n\n" +
        dialog("  // about it\n" + control("LABEL", "one", "8   8 42 17", "    CAPTION=\"A\" // why\n") +
               control("PUSHBUTTON", "ok", "40 20 60 20", "    DEFAULT=1\n")) +
        "\n// behind\nOther DIALOG\n\tPOSITION = 1 2 3 4\nEND\nstrange statement\n";
    static std::string first(const std::string& text, std::size_t length) { return text.substr(0, length); }
};

// Captions with every place that a "&" can have.
constexpr const char* Ampersands[] = {"&",     "&&",     "&&&",   "a&",     "a&&",      "a &", "&a&",
                                      "&&a&",  "&&&&x&", "a & b", "a && b", "&a && &b", "R&D", "&\xC3\xA4",
                                      "\xE4&", "& ",     " &",    "\"&\"",  "&&&&&&&&"};

std::string inFile(std::string text) {
    return STRREPLACE(STRREPLACE(text, "\\", "\\\\"), "\"", "\\\"");
}

TEST_F(DialogEditor, EveryAmpersandOfALabelComesBack) {
    std::string controls, items;
    int n = 0;
    for (const char* caption : Ampersands) {
        controls += control("LABEL", "L" + STR(++n), "8 8 40 8", "    CAPTION=\"" + inFile(caption) + "\"\n");
        items += "  MENUITEM m" + STR(n) + "\n    POSITION=1\n    CAPTION=\"" + inFile(caption) + "\"\n";
    }
    const std::string text = dialog(controls, "Dlg", "  MENU=M\n") + "\nM MENU\n" + items + "END\n";
    open(text);
    n = 0;
    for (const char* caption : Ampersands) {
        EXPECT_EQ(property(++n + 1, "CAPTION"), caption);
        EXPECT_EQ(GETPROPVALUE(GetList(DESIGNCONTROL("menulist"), n + 1), "CAPTION"), caption);
    }
    DIALOGSETMODIFY(true);
    DIALOGSAVE();
    EXPECT_EQ(read(file), text);
    click(15, 16);
    key(KEY_RIGHT);
    DIALOGSAVE();
    EXPECT_NE(read(file), text) << "a label has moved";
    open(read(file));
    n = 0;
    for (const char* caption : Ampersands) EXPECT_EQ(property(++n + 1, "CAPTION"), caption);
}

TEST_F(DialogEditor, EveryAmpersandThatIsTypedIsSaved) {
    for (const char* caption : Ampersands) {
        open(dialog(control("LABEL", "one", "8 8 40 8", "    CAPTION=\"A\"\n")));
        click(15, 16);
        edit({{"CAPTION", caption}});
        EXPECT_EQ(property(2, "CAPTION"), caption);
        DIALOGSAVE();
        open(read(file));
        EXPECT_EQ(property(2, "CAPTION"), caption);
    }
}

// ---- opening ----

TEST_F(DialogEditor, OpensADialogIntoItsLists) {
    open(some);
    ASSERT_TRUE(IsLoaded(DialogDlg));
    EXPECT_TRUE(GetVisible(DialogDlg));
    EXPECT_TRUE(TOOLBOXGETVISIBLE());
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg)");
    EXPECT_EQ(names(), "Dlg\none\nok\n");
    const std::pair<const char*, std::string> labels[] = {{"hilite1", "0"},
                                                          {"marginstr", "10 10 10 10"},
                                                          {"modestr", "2"},
                                                          {"gridstr", "4 4"},
                                                          {"linkstr", "1"},
                                                          {"resourcedir", GETRESOURCEDIR()},
                                                          {"compilerdir", GETCOMPILERDIR()},
                                                          {"rcfile", file},
                                                          {"dlgname", "Dlg"},
                                                          {"helpfile", GETHELPFILE()},
                                                          {"helpkey", "Dialog Editor"},
                                                          {"prophelpkey", "Properties"},
                                                          {"menuhelpkey", "Menu Editor"},
                                                          {"ctlprotectstr", "0"}};
    for (const auto& [label, text] : labels) EXPECT_EQ(DESIGNTEXT(label), text) << label;
    EXPECT_EQ(DIALOGGETFILENAME(), file);
    EXPECT_EQ(DIALOGGETDLGNAME(), "Dlg");
    EXPECT_FALSE(DIALOGGETMODIFY());
    EXPECT_TRUE(isEnabled("window_dialog"));
    EXPECT_TRUE(isEnabled("view_toolbox"));
}

TEST_F(DialogEditor, HasNothingToTellWhenItIsNotOpen) {
    EXPECT_EQ(DIALOGGETFILENAME(), "");
    EXPECT_EQ(DIALOGGETDLGNAME(), "");
    EXPECT_FALSE(DIALOGGETMODIFY());
    DIALOGSETMODIFY(true);
    DIALOGSAVE();
    EXPECT_TRUE(DIALOGSAVEIFMODIFIED());
    AUTOREFRESHPROJECT();
    EXPECT_TRUE(asked.empty());
}

TEST_F(DialogEditor, DoesNotOpenWithoutAFileOrAName) {
    OPENDIALOG("", "Dlg");
    OPENDIALOG(write("a.rc", some), "");
    EXPECT_FALSE(IsLoaded(DialogDlg));
    EXPECT_TRUE(asked.empty());
}

TEST_F(DialogEditor, TellsWhatCannotBeRead) {
    open(some, 0, "Nothing");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].text, "Can't load properties for 'Nothing' from file '" + file +
                                 "'.\n'Nothing' was not found in '" + file + "'.");
    EXPECT_FALSE(IsLoaded(DialogDlg));
    EXPECT_FALSE(IsLoaded(ToolboxDlg));
}

TEST_F(DialogEditor, ClosesWhenTheNextDialogIsNotThere) {
    open(some);
    OPENDIALOG(file, "Nothing");
    EXPECT_FALSE(IsLoaded(DialogDlg));
    EXPECT_FALSE(IsLoaded(ToolboxDlg));
}

TEST_F(DialogEditor, OpensWhatIsStrange) {
    std::string many, tooMany;
    for (int i = 1; i <= 256; ++i) {
        (i <= 255 ? many : tooMany) += control("LABEL", "L" + STR(i), "1 1 8 8");
    }
    const struct {
        const char* what;
        std::string text;
        bool opens;
    } cases[] = {
        {"255 controls", dialog(many), true},
        {"256 controls", dialog(many + tooMany), false},
        {"no control", dialog(""), true},
        {"nothing at all", "Dlg DIALOG\nEND\n", true},
        {"an unknown type", dialog(control("GADGET", "g", "1 1 8 8")), false},
        {"a font that nobody has",
         "Dlg DIALOG\n  POSITION=0 0 90 90\n  FONTNAME=\"No Such Font\"\n  FONTSIZE=1\nEND\n", true},
        {"no END", "Dlg DIALOG\n  POSITION=0 0 90 90\n", false},
    };
    for (const auto& one : cases) {
        asked.clear();
        open(one.text);
        EXPECT_EQ(IsLoaded(DialogDlg), one.opens) << one.what;
        EXPECT_EQ(asked.size(), one.opens ? 0U : 1U) << one.what << ": " << lastText();
        EXPECT_EQ(first(lastText(), 37), one.opens ? "" : "Can't load properties for 'Dlg' from ")
            << one.what;
        EXPECT_EQ(read(file), one.text);
        DIALOGSAVE();
        EXPECT_EQ(read(file), one.text) << one.what;
    }
}

TEST_F(DialogEditor, AsksWhetherToOpenADialogWithoutItsMenu) {
    answers = {"&Yes"};
    open(dialog("", "Dlg", "  MENU=Gone\n"));
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Error");
    EXPECT_EQ(asked[0].text, "An error occurred while loading the menu of 'Dlg' from file '" + file +
                                 "'.\n'Gone' was not found in '" + file +
                                 "'.\n\nDo you want to continue loading 'Dlg'?\n");
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"&Yes", "&No"}));
    EXPECT_TRUE(IsLoaded(DialogDlg));
    EXPECT_EQ(count("menulist"), 0);
    const std::string before = read(file);
    DIALOGSAVE();
    EXPECT_EQ(read(file), before);
    answers = {"&No"};
    OPENDIALOG(file, "Dlg");
    EXPECT_FALSE(IsLoaded(DialogDlg));
    EXPECT_FALSE(IsLoaded(ToolboxDlg));
}

TEST_F(DialogEditor, OpensAsChangedOrModallyWhenTold) {
    open(some, OPEN_AS_CHANGED);
    EXPECT_TRUE(DIALOGGETMODIFY());
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg) *");
    DIALOGSETMODIFY(false);
    doings = {[] {
        EXPECT_TRUE(IsModal(DialogDlg));
        EXPECT_EQ(names(), "Other\n");
        Unload(DialogDlg);
    }};
    Unload(ToolboxDlg);
    OPENDIALOG(file, "Other", OPEN_MODAL);
    EXPECT_FALSE(IsLoaded(DialogDlg));
    EXPECT_FALSE(IsLoaded(ToolboxDlg)) << "no Toolbox for a modal one";
}

TEST_F(DialogEditor, LimitsTheSizeOfItsWindow) {
    open(some);
    EXPECT_EQ(GetMinPosition(DialogDlg), (Rect{0, 0, 32, 32}));
    EXPECT_EQ(GetMaxPosition(DialogDlg), (Rect{0, 0, 1920 + 28, 1080 + 28}));
    open("Dlg DIALOG\n  BORDERSTYLE=0\nEND\n");
    EXPECT_EQ(GetMaxPosition(DialogDlg), (Rect{0, 0, 1920 + 20, 1080 + 20}));
}

TEST_F(DialogEditor, OpeningAnotherAsksAboutChanges) {
    open(some);
    for (const char* answer : {"&Cancel", "&No", "&Yes"}) {
        DIALOGSETMODIFY(true);
        asked.clear();
        answers = {answer};
        OPENDIALOG(file, "Other");
        ASSERT_EQ(asked.size(), 1U);
        EXPECT_EQ(asked[0].title, "Save Changes?");
        EXPECT_EQ(asked[0].text, file + "\nThis file has been changed. Do you want to save the changes?");
        EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"&Yes", "&No", "&Cancel"}));
        EXPECT_EQ(DIALOGGETDLGNAME(), std::string(answer) == "&Cancel" ? "Dlg" : "Other") << answer;
        EXPECT_EQ(DIALOGGETMODIFY(), std::string(answer) == "&Cancel") << answer;
    }
}

TEST_F(DialogEditor, TheChangedMarkStandsOnceAndNeedsADialogAndACheckbox) {
    open(some);
    const Object flag = DESIGNCONTROL("changedflag");
    for (int i = 0; i < 2; ++i) SETCHANGEDFLAG(DialogDlg, flag, true);
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg) *");
    EXPECT_EQ(GetValue(flag), 1);
    for (int i = 0; i < 2; ++i) SETCHANGEDFLAG(DialogDlg, flag, false);
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg)");
    EXPECT_EQ(GetValue(flag), 0);
    SETCHANGEDFLAG(DialogDlg, DESIGNCONTROL("hilite1"), true);
    SETCHANGEDFLAG(SDIEdit, flag, true);
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg)");
    EXPECT_EQ(GetValue(flag), 0);
}

// ---- saving ----

TEST_F(DialogEditor, AnUnchangedSaveWritesNoByte) {
    open(some);
    const auto before = os::infoOf(file).modified;
    DIALOGSETMODIFY(true);
    DIALOGSAVE();
    EXPECT_FALSE(DIALOGGETMODIFY());
    EXPECT_EQ(read(file), some);
    EXPECT_EQ(os::infoOf(file).modified, before) << "not even the same bytes";
}

TEST_F(DialogEditor, ASaveChangesTheLineOfThePropertyAlone) {
    open(some);
    SELECTOBJECT(2);
    edit({{"CAPTION", "B"}});
    DIALOGSAVE();
    EXPECT_EQ(read(file), STRREPLACE(some, "CAPTION=\"A\" // why", "CAPTION=\"B\" // why"));
    key(KEY_DELETE);
    DIALOGSAVE();
    EXPECT_EQ(read(file).find("one"), std::string::npos);
    EXPECT_NE(read(file).find("strange statement"), std::string::npos);
}

TEST_F(DialogEditor, SaveOfTheMenuAndOfTheWindowSaves) {
    open(some);
    SELECTOBJECT(2);
    key(KEY_RIGHT);
    pick("file_save");
    EXPECT_EQ(read(file), STRREPLACE(some, "8   8 42 17", "9 8 42 17"));
    EXPECT_FALSE(DIALOGGETMODIFY());
    pick("file_close");
    EXPECT_FALSE(IsLoaded(DialogDlg));
}

TEST_F(DialogEditor, EditWindowsShouldHaveNoControls) {
    for (const std::string type : {"Editwindow", "Richeditwindow"}) {
        open(some);
        SELECTOBJECT(1);
        edit({{"TYPEOF", type}});
        for (const char* answer : {"OK", "", "Ignore"}) {
            asked.clear();
            answers = {answer};
            DIALOGSAVE();
            ASSERT_EQ(asked.size(), 1U) << lastText();
            EXPECT_EQ(asked[0].title, "Dialog Editor");
            EXPECT_EQ(asked[0].text,
                      "Windows of type '" + type +
                          "' should not contain control objects.\nHowever the window being saved contains 2 "
                          "control(s).\nThese controls should be deleted before saving the window.\n");
            EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"OK", "Ignore"}));
            EXPECT_EQ(DIALOGGETMODIFY(), std::string(answer) != "Ignore");
        }
    }
}

TEST_F(DialogEditor, BadNamesAreToldAndIgnoreSaves) {
    open(some);
    SELECTOBJECT(2);
    edit({{"NAME", "Printer"}});
    SELECTOBJECT(0);
    asked.clear();
    answers = {"OK"};
    DIALOGSAVE();
    const std::string message =
        "The following control object:\n\n\tPrinter:Label\n\nshould be given a different name. Its current "
        "name (printer) "
        "conflicts with existing library objects.\n(The index of the invalid name = 2)";
    EXPECT_EQ(lastText(), message);
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"OK", "Ignore"}));
    EXPECT_TRUE(DIALOGGETMODIFY());
    EXPECT_EQ(SELECTEDOBJECT(), 2) << "the guilty one is selected";
    answers = {"Ignore"};
    DIALOGSAVE();
    EXPECT_FALSE(DIALOGGETMODIFY());
    EXPECT_NE(read(file).find("LABEL Printer"), std::string::npos);
}

TEST_F(DialogEditor, DuplicatesAreToldAndNotSaved) {
    open(some);
    SELECTOBJECT(2);
    edit({{"NAME", "OK"}});
    asked.clear();
    answers = {"OK"};
    DIALOGSAVE();
    EXPECT_EQ(
        lastText(),
        "All control objects in a dialog must be unique (ie have different names).\nHowever the following "
        "control object:\n\n\t'OK:Label'\n\nhas a duplicate of type:\n\n\t'Pushbutton'\n\nThe duplicate "
        "should be renamed to something else.\n(The index of the duplicate = 3)");
    EXPECT_TRUE(DIALOGGETMODIFY());
    EXPECT_EQ(read(file), some);
    EXPECT_EQ(SELECTEDOBJECT(), 3);
}

TEST_F(DialogEditor, ARenamedDialogIsRenamedInTheFile) {
    open(some + "Menu9 MENU\nEND\n");
    SELECTOBJECT(1);
    edit({{"NAME", "Fresh"}});
    DIALOGSAVE();
    EXPECT_EQ(read(file), STRREPLACE(some, "Dlg DIALOG", "Fresh DIALOG") + "Menu9 MENU\nEND\n") << lastText();
    EXPECT_EQ(DIALOGGETDLGNAME(), "Fresh");
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Fresh)");
    edit({{"NAME", "Other"}});
    asked.clear();
    DIALOGSAVE();
    EXPECT_EQ(lastText(), "'Other' is already a name in '" + file + "'.");
    EXPECT_TRUE(DIALOGGETMODIFY());
    EXPECT_EQ(DIALOGGETDLGNAME(), "Fresh");
}

TEST_F(DialogEditor, AnotherCaseIsNoRename) {
    open(some);
    SELECTOBJECT(1);
    edit({{"NAME", "DLG"}});
    asked.clear();
    DIALOGSAVE();
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(read(file), STRREPLACE(some, "Dlg DIALOG", "DLG DIALOG"));
    EXPECT_EQ(DIALOGGETDLGNAME(), "Dlg");
}

std::vector<std::string> heardByProgramWindow;

TEST_F(DialogEditor, ARenameTellsTheProgramWindowToRefresh) {
    RegisterWindow(ProjectEditorDlg, [](const Object&, int event, const Object& control, int) {
        if (event == COMMAND_EVENT) heardByProgramWindow.push_back(GetName(control));
        return true;
    });
    heardByProgramWindow.clear();
    open(some);
    SELECTOBJECT(1);
    edit({{"NAME", "Fresh"}});
    AUTOREFRESHPROJECT();
    EXPECT_TRUE(heardByProgramWindow.empty()) << "it is not there";
    Load(ProjectEditorDlg);
    DIALOGSAVE();
    EXPECT_EQ(heardByProgramWindow, (std::vector<std::string>{"bitmapbutton1"}));
    platform::DestroyAllWindows();
    REGISTERWINDOWS();
}

// ---- what others do to the file meanwhile ----

TEST_F(DialogEditor, ChangesElsewhereInTheFileAreKept) {
    open(some);
    SELECTOBJECT(2);
    edit({{"CAPTION", "B"}});
    const std::string outside = "// by another program\n" + some + "More DIALOG\nEND\n";
    write("a.rc", outside);
    DIALOGSAVE();
    EXPECT_TRUE(asked.empty()) << lastText();
    EXPECT_EQ(read(file), STRREPLACE(outside, "CAPTION=\"A\"", "CAPTION=\"B\""));
}

TEST_F(DialogEditor, AChangeOfTheDialogOutsideIsAskedAbout) {
    open(some);
    SELECTOBJECT(2);
    edit({{"CAPTION", "B"}});
    const std::string outside = STRREPLACE(some, "8   8 42 17", "1   1 42 17");
    write("a.rc", outside);
    answers = {"&Cancel"};
    DIALOGSAVE();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "File-Save");
    EXPECT_EQ(asked[0].text,
              "The following file was changed by another program after it was read here:\n\n\t" + file +
                  "\n\nIts dialog 'Dlg' is another one now. Everything else in the file stays as it is.");
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"&Save over it", "&Cancel"}));
    EXPECT_EQ(read(file), outside);
    EXPECT_TRUE(DIALOGGETMODIFY());
    answers = {"&Save over it"};
    DIALOGSAVE();
    EXPECT_EQ(read(file), STRREPLACE(some, "\"A\"", "\"B\""));
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(DialogEditor, AFileOrDialogThatHasGoneIsAskedAbout) {
    const struct {
        std::string left;  // in the file; "-": the file has gone
        const char* text;
    } cases[] = {{"-", "The following file was deleted or renamed by another program:\n\n\t"},
                 {"Other DIALOG\nEND\n",
                  "The following file was changed by another program after it was read here:\n\n\t"}};
    for (const auto& one : cases) {
        open(some);
        SELECTOBJECT(2);
        edit({{"CAPTION", "B"}});
        asked.clear();
        if (one.left == "-")
            std::filesystem::remove(file);
        else
            write("a.rc", one.left);
        answers = {"&Cancel"};
        DIALOGSAVE();
        ASSERT_EQ(asked.size(), 1U) << one.left;
        EXPECT_EQ(asked[0].text.find(one.text + file), 0U) << asked[0].text;
        EXPECT_EQ(read(file), one.left == "-" ? "" : one.left);
        answers = {"&Save"};
        DIALOGSAVE();
        EXPECT_FALSE(DIALOGGETMODIFY()) << lastText();
        EXPECT_EQ(read(file).find(one.left == "-" ? "Dlg DIALOG" : one.left), 0U) << read(file);
        EXPECT_NE(read(file).find("CAPTION=\"B\""), std::string::npos) << read(file);
    }
}

TEST_F(DialogEditor, AFailingDiskLeavesTheFileWholeAndTheDialogChanged) {
    const std::string after = STRREPLACE(some, "\"A\"", "\"B\"");
    for (const os::FileError error :
         {os::FileError::DiskFull, os::FileError::Denied, os::FileError::WriteFailed}) {
        int failures = 0;
        for (int n = 1; n < 60; ++n) {
            open(some);
            SELECTOBJECT(2);
            edit({{"CAPTION", "B"}});
            asked.clear();
            os::SteeredFiles disk;
            disk.put(file, some);
            disk.put(ini(), read(ini()));
            const os::Steered steered(disk);
            NOTEDIALOGSEEN(file, "Dlg");
            disk.clearLog();
            disk.failAt(n, error);
            DIALOGSAVE();
            disk.stopFailing();
            const std::string onDisk = disk.contents(file);
            EXPECT_TRUE(onDisk == some || onDisk == after) << "call " << n << ": " << onDisk;
            const bool changed = DIALOGGETMODIFY();
            DIALOGSETMODIFY(false);
            if (!changed) {
                EXPECT_EQ(onDisk, after);
                if (disk.calls() < n) break;
                continue;
            }
            ++failures;
            ASSERT_EQ(asked.size(), 1U) << "call " << n;
            EXPECT_EQ(lastText().find("'" + file + "' cannot be saved. "), 0U) << lastText();
        }
        EXPECT_GT(failures, 0);
    }
}

// ---- what an edit leaves ----

TEST_F(DialogEditor, OnlyOneDefaultButtonExists) {
    open(dialog(control("PUSHBUTTON", "a", "1 1 9 9", "    DEFAULT=1\n") +
                control("PUSHBUTTON", "b", "1 1 9 9") + control("CHECKBOX", "c", "1 1 9 9")));
    SELECTOBJECT(3);
    edit({{"DEFAULT", "1"}});
    EXPECT_EQ(property(2, "DEFAULT"), "0");
    EXPECT_EQ(property(3, "DEFAULT").substr(0, 1), "1");
}

TEST_F(DialogEditor, ASingleLineHasNoScrollBars) {
    open(dialog(control("EDIT", "e", "1 1 9 9", "    MULTILINE=1\n    SCROLLBARS=2\n")));
    SELECTOBJECT(2);
    edit({{"MULTILINE", "0"}});
    EXPECT_EQ(property(2, "SCROLLBARS"), "0");
}

TEST_F(DialogEditor, ADialogWithoutAFontIsWarnedAbout) {
    open(some);
    SELECTOBJECT(1);
    edit({{"FONTNAME", ""}});
    EXPECT_EQ(
        lastText(),
        "Warning - Invalid Fontname.\nThe dialog has no Fontname, because an empty string was entered.\nThe "
        "Fontname will be auomatically set to the default font (Microsoft Sans Serif).\n");
    EXPECT_NE(item(1).find("FONTNAME=\"Microsoft Sans Serif\"\n"), std::string::npos);
}

TEST_F(DialogEditor, NamesAreWarnedAboutAfterAnEdit) {
    open(some);
    SELECTOBJECT(2);
    edit({{"NAME", "Screen"}});
    EXPECT_EQ(
        lastText(),
        "Warning - Invalid Name\nThe following control object:\n\n\tScreen:Label\n\nshould be given a "
        "different "
        "name. Its current name (screen) conflicts with existing library objects.\nThe index of the invalid "
        "name = 2.");
    edit({{"NAME", "ok"}});
    EXPECT_EQ(lastText().substr(0, 25), "Warning - Duplicate Name\n");
    EXPECT_TRUE(lastText().ends_with("\nThe index of the duplicate = 3.")) << lastText();
}

TEST_F(DialogEditor, PicturesKeepTheirPlaceholders) {
    const std::string folder = GETRESOURCEDIR();
    open(dialog(control("IMAGE", "i", "1 1 9 9", "    PICTURE=\"<RESOURCEDIR>\\\\a.bmp\"\n")));
    const std::string before = item(2);
    SELECTOBJECT(2);
    doings = {[&] {
        EXPECT_EQ(GetText(sheetRow("PICTURE")).find('<'), std::string::npos) << "shown as it is here";
        pressOk();
    }};
    key(KEY_F2);
    EXPECT_EQ(item(2), before);
    EXPECT_FALSE(DIALOGGETMODIFY());
    edit({{"PICTURE", folder + "b.bmp"}});
    EXPECT_EQ(property(2, "PICTURE"), "<RESOURCEDIR>\\b.bmp");
}

TEST_F(DialogEditor, ACancelledSheetChangesNothing) {
    open(some);
    const std::string before = item(2);
    SELECTOBJECT(2);
    doings = {enter("CAPTION", "B"), pressCancel};
    key(KEY_F2);
    EXPECT_EQ(item(2), before);
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(DialogEditor, WhatTheTypeDoesNotKnowPassesTheSheet) {
    const std::string text =
        dialog(control("LABEL", "l", "1 1 9 9", "    CAPTION=\"A\"\n    FANCY=\"x y\"\n    DULL=3\n"));
    open(text);
    SELECTOBJECT(2);
    edit({{"CAPTION", "B"}});
    DIALOGSAVE();
    EXPECT_EQ(read(file), STRREPLACE(text, "\"A\"", "\"B\""));
}

}  // namespace
}  // namespace tarn
