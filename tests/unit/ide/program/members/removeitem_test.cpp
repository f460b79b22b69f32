// SPDX-License-Identifier: GPL-3.0-or-later
//
// Removing what a row stands for: what is refused, in which order, what the question offers, and what goes with each of its
// answers.
#include "ide/program/members/removeitem.h"

#include "ide/designer/dlgedit.h"
#include "kernel/windows/resources.h"
#include "unit/ide/program/members/members_fixture.h"

namespace tarn {
namespace {

constexpr const char* WithFunctions = "Tarnwick Class Main\nUses Shapes\n\nfunction main()\nend "
                                      "function\n\ncallback function Ask(in anEvent : integer)\n"
                                      "end function\n\nfunction Tell()\nend function\n\nEnd class\n";

class RemoveItem : public MembersTest {
protected:
    struct Offer {
        std::string title, text;
        bool canRemove = false, canDelete = false;
    };
    std::vector<Offer> offers;

    void SetUp() override {
        MembersTest::SetUp();
        write("prog/main.cls", WithFunctions);
        write("prog/main.rc",
              dialog("Ask") + dialog("Tell") +
                  "about VERSIONINFO\nBEGIN\nEND\nlast VERSIONINFO\nBEGIN\nEND\n" +
                  "note INCFILE \"note.txt\"\npic BITMAP \"pic.bmp\"\ndata INCFILE \"data.xml\"\n");
        for (const char* name : {"note.txt", "pic.bmp", "data.xml"}) write("prog/" + std::string(name), "x");
        write("prog/shapes.rc", "");
        open({"main.cls", "main.rc", "shapes.cls", "shapes.rc"});
    }
    // The user ticks what is wanted and presses a button; nothing else may ask.
    void answerWith(const std::string& button, bool alsoRemove = false, bool alsoDelete = false) {
        doings.push_back([this, button, alsoRemove, alsoDelete] {
            ASSERT_TRUE(IsLoaded(ConfirmRemoveDlg));
            const auto box = [](const char* name) { return part(ConfirmRemoveDlg, name); };
            EXPECT_EQ(GetValue(box("checkbox1")) + GetValue(box("checkbox2")), 0);
            offers.push_back({GetCaption(box("label1")), GetCaption(box("label2")),
                              GetEnabled(box("checkbox1")), GetEnabled(box("checkbox2"))});
            if (alsoRemove) SetValue(box("checkbox1"), 1);
            if (alsoDelete) SetValue(box("checkbox2"), 1);
            press(ConfirmRemoveDlg, button == "Remove" ? "pushbutton1" : "pushbutton2");
        });
    }
    void remove() {
        run([] { PROJECTITEMDELETE(ProjectEditorDlg); });
        EXPECT_FALSE(IsLoaded(ConfirmRemoveDlg));
    }
    std::string refusal(const std::string& headline, const std::string& file, const std::string& reason) {
        return headline + "\n\n\t'" + file + "'\n\n" + reason;
    }
    void expectRefused(const std::string& headline, const std::string& file, const std::string& reason) {
        const std::string before = everything();
        remove();
        EXPECT_EQ(told(), std::vector<std::string>{refusal(headline, file, reason)});
        EXPECT_EQ(everything(), before);
    }
    std::string rc() { return text("prog/main.rc"); }
    std::string rcFile() const { return dir + "prog/main.rc"; }
    bool has(const std::string& kind, const std::string& name) {
        return !ResourceInfo(rcFile(), kind, name).text.empty();
    }
    static constexpr const char *Delete = "Cannot delete from the following file:",
                                *Remove = "Cannot remove the following file:";
};

// ---- what is refused ----

TEST_F(RemoveItem, WithoutARowItBeeps) {
    const int before = platform::headlessBeeps();
    SetListIndex(rows(), 0);
    remove();
    EXPECT_TRUE(asked.empty());
    Unload(ProjectEditorDlg);
    remove();
    EXPECT_EQ(platform::headlessBeeps(), before + 2);
}

TEST_F(RemoveItem, AGroupWhoseFileIsNowhere) {
    UPDATEPROJECTWINDOW(ProjectEditorDlg, mainFile, "1 \"x\" \"BITMAP\" \"x\" \"" + dir + "prog/gone.bmp\"\n",
                        {});
    SetListIndex(FINDCONTROL(ProjectEditorDlg, "Iconlist1"), 1);
    expectRefused(Remove, dir + "prog/gone.bmp",
                  "The file is not a full path, or it does not exist, or it cannot be found.");
}

TEST_F(RemoveItem, AMemberWhoseFileHasGoneLeavesItsResourceFile) {
    choose("BITMAP pic", "Included bitmaps");
    std::filesystem::remove(dir + "prog/pic.bmp");
    answerWith("Remove");
    remove();
    EXPECT_EQ(told(), std::vector<std::string>{"Removed pic from '" + rcFile() + "'\n"});
    EXPECT_FALSE(has("BITMAP", "pic"));
}

TEST_F(RemoveItem, AReadOnlyFileBeforeAnythingElse) {
    const std::string reason = "The file or disk is read-only and it cannot be modified.\n";
    const struct {
        std::string title, group, file, headline;
    } cases[] = {{"Main Class Main", "", "prog/main.cls", Remove},
                 {"Class Shapes", "", "prog/shapes.cls", Remove},
                 {"Dialogs", "", "prog/main.rc", Delete},
                 {"DIALOG Ask", "Dialogs", "prog/main.rc", Delete},
                 {"VERSIONINFO about", "", "prog/main.rc", Delete},
                 {"INCFILE note", "Included files", "prog/main.rc", Delete},
                 {"BITMAP pic", "Included bitmaps", "prog/main.rc", Delete},
                 {"INCFILE data", "Included files", "prog/data.xml", Remove}};
    for (const auto& c : cases) {
        choose(c.title, c.group);
        std::filesystem::permissions(dir + c.file, std::filesystem::perms(0444));
        expectRefused(c.headline, dir + c.file, reason);
        std::filesystem::permissions(dir + c.file, std::filesystem::perms(0644));
    }
}

TEST_F(RemoveItem, AReadOnlyFileThatIsNotChangedItself) {
    choose("INCFILE note", "Included files");
    std::filesystem::permissions(dir + "prog/note.txt", std::filesystem::perms(0444));
    answerWith("Remove");
    remove();
    EXPECT_EQ(told(), std::vector<std::string>{"Removed note from '" + rcFile() + "'\n"});
    EXPECT_TRUE(there("prog/note.txt"));
}

TEST_F(RemoveItem, TheMainFile) {
    EDITWNDOPEN(SDIEdit, mainFile, false, 0);  // which is also open in an editor
    choose("Main Class Main");
    expectRefused(Remove, mainFile, "This is the main file in the Program Windows and cannot be deleted.");
}

TEST_F(RemoveItem, TheMainFileOfAProgramOfResources) {
    open({"main.rc"});
    choose("Dialogs");
    expectRefused(Delete, rcFile(), "This is the main file in the Program Windows and cannot be deleted.");
    choose("VERSIONINFO about");
    answerWith("Remove");
    remove();
    EXPECT_FALSE(has("VERSIONINFO", "about"));
}

TEST_F(RemoveItem, TheCoreOfTheLibrary) {
    for (const char* name : {"LIB.cls", "system.cls"}) {
        write(std::string("prog/") + name, classText("X"));
        open({"main.cls", name});
        choose(name[0] == 'L' ? "Class Lib" : "Class System");
        EDITWNDOPEN(SDIEdit, dir + "prog/" + name, false, 0);
        expectRefused(Remove, dir + "prog/" + name,
                      "This is the core run time library file which is required by all programs.\n");
    }
}

TEST_F(RemoveItem, AFileThatIsOpenInAnEditor) {
    const std::string reason =
        "The file is currently open in an editor.\nPlease close the editor window, then try again.";
    EDITWNDOPEN(SDIEdit, dir + "prog/shapes.cls", false, 0);
    choose("Class Shapes");
    expectRefused(Remove, dir + "prog/shapes.cls", reason);
    EDITWNDOPEN(SDIEdit, rcFile(), false, 0);
    for (const char* title : {"Dialogs", "VERSIONINFO about"}) {
        choose(title);
        expectRefused(Delete, rcFile(), reason);
    }
    EDITWNDCLOSE(SDIEdit, true);
    OPENDIALOG(rcFile(), "Ask");
    ASSERT_TRUE(IsLoaded(DialogDlg));
    choose("Included files");
    expectRefused(Delete, rcFile(), reason);
    Unload(DialogDlg);
}

TEST_F(RemoveItem, AResourceFileThatHoldsDialogs) {
    for (const char* title : {"Dialogs", "Included files", "Included bitmaps"}) {
        choose(title);
        expectRefused(Delete, rcFile(),
                      "It contains one or more dialog objects, which must be removed first.\n");
    }
}

TEST_F(RemoveItem, ADataSource) {
    choose("INCFILE data", "Included files");
    const std::string before = everything();
    remove();
    EXPECT_EQ(told(),
              std::vector<std::string>{
                  "This is a Data Source which cannot be removed:\n\n\t'" + dir +
                  "prog/data.xml'\n\nTo remove the Data Source from the project, remove the parent\nclass "
                  "instead. The parent class is '" +
                  mainFile + "'."});
    EXPECT_EQ(everything(), before);
}

TEST_F(RemoveItem, WhatIsOfNoKnownType) {
    UPDATEPROJECTWINDOW(ProjectEditorDlg, mainFile, "1 \"x\" \"ODD\" \"x\" \"" + dir + "prog/note.txt\"\n",
                        {});
    expectRefused(Remove, dir + "prog/note.txt", "The file is of an unknown type.");
}

// ---- what the question offers, and what comes of it ----

TEST_F(RemoveItem, CancelChangesNothing) {
    const std::pair<const char*, const char*> all[] = {{"DIALOG Ask", "Dialogs"},
                                                       {"VERSIONINFO about", ""},
                                                       {"Class Shapes", ""},
                                                       {"INCFILE note", "Included files"}};
    const std::string before = everything();
    for (const auto& [title, group] : all) {
        choose(title, group);
        answerWith("Cancel", true, true);
        remove();
        EXPECT_TRUE(asked.empty()) << lastText();
        EXPECT_EQ(everything(), before) << title;
    }
}

TEST_F(RemoveItem, ADialogAlone) {
    choose("DIALOG Ask", "Dialogs");
    answerWith("Remove");
    remove();
    EXPECT_EQ(offers[0].title, "Dialog 'Ask'");
    EXPECT_TRUE(offers[0].canRemove);
    EXPECT_FALSE(offers[0].canDelete);
    EXPECT_EQ(told(), std::vector<std::string>{"Removed Ask from '" + rcFile() + "'\n"});
    EXPECT_FALSE(has("DIALOG", "Ask"));
    EXPECT_TRUE(has("DIALOG", "Tell"));
    EXPECT_EQ(text("prog/main.cls"), WithFunctions);
}

TEST_F(RemoveItem, ADialogWithItsFunction) {
    choose("DIALOG Ask", "Dialogs");
    answerWith("Remove", true);
    remove();
    EXPECT_EQ(told(),
              std::vector<std::string>{"Removed Ask from '" + rcFile() +
                                       "'\nRemoved callback function Ask() from '" + mainFile + "'\n"});
    EXPECT_EQ(SYMFINDFUNCTION("Ask", 1, mainFile).bodyStart, 0);
    EXPECT_NE(SYMFINDFUNCTION("Tell", 1, mainFile).bodyStart, 0);
}

TEST_F(RemoveItem, AFunctionThatIsNoCallbackStays) {
    choose("DIALOG Tell", "Dialogs");
    answerWith("Remove", true);
    remove();
    EXPECT_EQ(told(), std::vector<std::string>{"Removed Tell from '" + rcFile() + "'\n"});
    EXPECT_EQ(text("prog/main.cls"), WithFunctions);
}

TEST_F(RemoveItem, AFunctionInTheCodeWindowGoesThere) {
    EDITWNDOPEN(SDIEdit, mainFile, false, 0);
    choose("DIALOG Ask", "Dialogs");
    answerWith("Remove", true);
    remove();
    EXPECT_EQ(told(), std::vector<std::string>{"Removed Ask from '" + rcFile() +
                                               "'\nRemoved callback function Ask() from '" + mainFile +
                                               "' (in editor)\n"});
    EXPECT_EQ(text("prog/main.cls"), WithFunctions);
    EXPECT_EQ(SYMFINDFUNCTION("Ask", 0, GetText(SDIEdit)).bodyStart, 0);
    EXPECT_TRUE(GetModify(SDIEdit));
    Undo(SDIEdit);
    EXPECT_EQ(GetText(SDIEdit), WithFunctions);
}

TEST_F(RemoveItem, AProgramOfResourcesHasNoFunctionToRemove) {
    open({"main.rc"});
    choose("DIALOG Ask", "Dialogs");
    answerWith("Remove", true);  // the box is not enabled, and its tick does not count
    remove();
    EXPECT_FALSE(offers[0].canRemove);
    EXPECT_FALSE(has("DIALOG", "Ask"));
    EXPECT_EQ(text("prog/main.cls"), WithFunctions);
}

TEST_F(RemoveItem, AVersionBlockAndNothingElseOfItsName) {
    write("prog/main.rc", "about DIALOG\nEND\nabout VERSIONINFO\nBEGIN\nEND\nlast VERSIONINFO\nBEGIN\nEND\n");
    PROJECTREFRESH(ProjectEditorDlg);
    choose("VERSIONINFO about");
    answerWith("Remove", true, true);
    remove();
    EXPECT_EQ(offers[0].title, "VersionInfo 'about'");
    EXPECT_FALSE(offers[0].canRemove || offers[0].canDelete);
    EXPECT_EQ(told(), std::vector<std::string>{"Removed about from '" + rcFile() + "'\n"});
    EXPECT_EQ(rc(), "about DIALOG\nEND\nlast VERSIONINFO\nBEGIN\nEND\n");
}

TEST_F(RemoveItem, AResourceFileWithoutDialogs) {
    write("prog/shapes.rc", "note INCFILE \"note.txt\"\n");
    PROJECTREFRESH(ProjectEditorDlg);
    choose("Dialogs");
    SetListIndex(rows(), GetListCount(rows()));  // the last group: the files of shapes.rc
    answerWith("Remove");
    remove();
    EXPECT_EQ(offers[0].title, "File '" + dir + "prog/shapes.rc'");
    EXPECT_EQ(offers[0].text,
              "Warning: if you select the 'Also delete file(s)' checkbox, this will permanently "
              "delete the file.");
    EXPECT_TRUE(offers[0].canDelete);
    EXPECT_EQ(told(), std::vector<std::string>{"File '" + dir + "prog/shapes.rc' was not deleted.\n"});
    EXPECT_TRUE(there("prog/shapes.rc"));
    answerWith("Remove", false, true);
    list({"main.cls", "main.rc", "shapes.cls"});
    remove();
    EXPECT_EQ(told(), std::vector<std::string>{"Deleted file '" + dir + "prog/shapes.rc'\n"});
    EXPECT_FALSE(there("prog/shapes.rc"));
}

TEST_F(RemoveItem, AnIncludedFileWithAndWithoutItself) {
    choose("INCFILE note", "Included files");
    answerWith("Remove");
    remove();
    EXPECT_EQ(offers[0].title, "File '" + dir + "prog/note.txt'");
    EXPECT_EQ(told(), std::vector<std::string>{"Removed note from '" + rcFile() + "'\n"});
    EXPECT_TRUE(there("prog/note.txt"));
    EXPECT_FALSE(has("INCFILE", "note"));
    choose("BITMAP pic", "Included bitmaps");
    answerWith("Remove", false, true);
    remove();
    EXPECT_EQ(told(), std::vector<std::string>{"Removed pic from '" + rcFile() + "'\nDeleted file '" + dir +
                                               "prog/pic.bmp'\n"});
    EXPECT_FALSE(there("prog/pic.bmp"));
    EXPECT_FALSE(has("BITMAP", "pic"));
    EXPECT_TRUE(has("INCFILE", "data"));
}

// ---- classes ----

TEST_F(RemoveItem, AClassLeavesAllClausesAndItsFileStays) {
    write("prog/other.cls", "Tarnwick Class Other\nUses SHAPES Main\nEnd class\n");
    open({"main.cls", "main.rc", "other.cls", "shapes.cls"});
    choose("Class Shapes");
    answerWith("Remove");
    remove();
    EXPECT_EQ(offers[0].title, "Class 'Shapes'");
    EXPECT_EQ(offers[0].text,
              "Warning: if you select the 'Also delete file(s)' checkbox, the class file and dialog "
              "file will be permanently deleted.");
    EXPECT_FALSE(offers[0].canRemove);
    EXPECT_TRUE(offers[0].canDelete);
    EXPECT_EQ(told(), std::vector<std::string>{"Removed class 'Shapes' from Uses clause of '" + mainFile +
                                               "'\nRemoved class 'Shapes' from Uses clause of '" + dir +
                                               "prog/other.cls'\n"});
    EXPECT_EQ(uses("prog/main.cls"), "");
    EXPECT_EQ(uses("prog/other.cls"), "Main");
    EXPECT_TRUE(there("prog/shapes.cls"));
    EXPECT_TRUE(there("prog/shapes.rc"));
}

TEST_F(RemoveItem, AClassWithItsFiles) {
    choose("Class Shapes");
    answerWith("Remove", false, true);
    list({"main.cls", "main.rc"});
    remove();
    EXPECT_EQ(told(), std::vector<std::string>{
                          "Removed class 'Shapes' from Uses clause of '" + mainFile + "'\nDeleted file '" +
                          dir + "prog/shapes.cls'\nDeleted file '" + dir + "prog/shapes.rc'\n"});
    EXPECT_FALSE(there("prog/shapes.cls"));
    EXPECT_FALSE(there("prog/shapes.rc"));
}

TEST_F(RemoveItem, AClassWhoseFileHasGone) {
    write("prog/main.cls", "Tarnwick Class Main\nfunction main()\nend function\nEnd class\n");
    choose("Class Shapes");
    std::filesystem::remove(dir + "prog/shapes.cls");
    std::filesystem::remove(dir + "prog/shapes.rc");
    answerWith("Remove", false, true);
    list({"main.cls", "main.rc"});
    remove();
    EXPECT_EQ(told(), std::vector<std::string>{
                          "Class 'Shapes' is not in the Uses clause of any other classes.\nFile '" + dir +
                          "prog/shapes.cls' was not deleted as it does not exist.\nFile '" + dir +
                          "prog/shapes.rc' was not deleted as it does not exist.\n"});
}

TEST_F(RemoveItem, AClassOfTheLibraryCannotBeDeleted) {
    write("lib/lists.cls", classText("Lists"));
    write("prog/main.cls", STRREPLACE(WithFunctions, "Uses Shapes", "Uses Shapes Lists"));
    PROFILESTRPUT(ini(), "GenOptionsDlg", "ShowClasses", "1");
    open({"main.cls", dir + "lib/lists.cls", "shapes.cls"});
    std::filesystem::permissions(dir + "lib/lists.cls", std::filesystem::perms(0444));
    choose("Class Lists");
    answerWith("Remove", false, true);
    remove();
    EXPECT_EQ(offers[0].text,
              "This file is part of the run time library. Although you can remove it from the "
              "program, the actual file will not be deleted.");
    EXPECT_FALSE(offers[0].canDelete);
    EXPECT_EQ(uses("prog/main.cls"), "Shapes");
    EXPECT_TRUE(there("lib/lists.cls"));
}

TEST_F(RemoveItem, AMainClassInTheCodeWindowIsChangedThereAndSaved) {
    EDITWNDOPEN(SDIEdit, mainFile, false, 0);
    choose("Class Shapes");
    answerWith("Remove");
    remove();
    EXPECT_EQ(SYMGETUSES(0, GetText(SDIEdit)), "");
    EXPECT_EQ(GetText(SDIEdit), text("prog/main.cls"));
    EXPECT_FALSE(GetModify(SDIEdit));
}

TEST_F(RemoveItem, FilesThatAreOpenAreNotDeleted) {
    write("prog/shapes.rc", dialog("D"));
    OPENDIALOG(dir + "prog/shapes.rc", "D");
    choose("Class Shapes");
    const std::string before = everything();
    answerWith("Remove", false, true);
    remove();
    EXPECT_EQ(
        told(),
        std::vector<std::string>{refusal(
            Remove, dir + "prog/shapes.cls",
            "The file is currently open in an editor.\nPlease close the editor window, then try again.")});
    EXPECT_EQ(everything(), before);
    Unload(DialogDlg);
}

TEST_F(RemoveItem, AClauseThatCannotBeWrittenLeavesAllAsItWas) {
    write("prog/other.cls", "Tarnwick Class Other\nUses Shapes\nEnd class\n");
    open({"main.cls", "main.rc", "other.cls", "shapes.cls"});
    std::filesystem::permissions(dir + "prog/other.cls", std::filesystem::perms(0444));
    choose("Class Shapes");
    const std::string before = everything();
    answerWith("Remove", false, true);
    remove();
    ASSERT_EQ(told().size(), 1U);
    EXPECT_NE(told()[0].find("'" + dir + "prog/other.cls'"), std::string::npos) << told()[0];
    EXPECT_EQ(everything(), before);
}

TEST_F(RemoveItem, AReportOfManyClassesIsCut) {
    std::vector<std::string> files = {"main.cls", "shapes.cls"};
    for (int n = 1; n <= 300; ++n) {
        files.push_back("c" + STR(n) + ".cls");
        write("prog/" + files.back(), "Tarnwick Class C" + STR(n) + "\nUses Shapes\nEnd class\n");
    }
    open(files);
    choose("Class Shapes");
    answerWith("Remove");
    remove();
    EXPECT_EQ(STRLINES(told()[0]), 40);
    EXPECT_TRUE(STRRTRIMCRLF(told()[0]).ends_with("...(more)..."));
    EXPECT_EQ(uses("prog/c300.cls"), "");
}

// ---- the question ----

TEST_F(RemoveItem, OnlyRemoveKeepsThePlaceOfTheQuestion) {
    for (const char* button : {"Cancel", "Remove"}) {
        choose("VERSIONINFO about");
        doings.push_back([&] { SetPosition(ConfirmRemoveDlg, WINDOW_UNIT, Rect{33, 44, 500, 300}); });
        answerWith(button);
        remove();
        const std::string kept = PROFILESTRGET(ini(), "Confirmremovedlg", "_Position");
        EXPECT_EQ(kept.starts_with("33 44 "), std::string(button) == "Remove") << kept;
    }
}

TEST_F(RemoveItem, TheCrossAndEscapeAreCancel) {
    const std::string before = everything();
    const std::function<void()> ways[] = {
        [] { Unload(ConfirmRemoveDlg); },
        [] { platform::userKey(*platform::findWindow(ConfirmRemoveDlg), nullptr, KEY_ESCAPE); }};
    for (const auto& way : ways) {
        choose("DIALOG Ask", "Dialogs");
        doings.push_back(way);
        remove();
        EXPECT_EQ(everything(), before);
        EXPECT_TRUE(asked.empty());
    }
}

TEST_F(RemoveItem, ButtonAndKeyOfTheProgramWindowRemove) {
    choose("Main Class Main");
    press(ProjectEditorDlg, "bitmapbutton2");
    EXPECT_TRUE(lastText().starts_with(Remove)) << lastText();
    asked.clear();
    EXPECT_TRUE(PROJECTEDITORDLG(ProjectEditorDlg, KEYPRESS_EVENT, rows(), KEY_DELETE));
    EXPECT_TRUE(lastText().starts_with(Remove)) << lastText();
    const Object button = part(ProjectEditorDlg, "bitmapbutton2");
    EXPECT_FALSE(PROJECTEDITORDLG(ProjectEditorDlg, KEYPRESS_EVENT, button, KEY_DELETE));
}

}  // namespace
}  // namespace tarn
