// SPDX-License-Identifier: GPL-3.0-or-later
//
// Adding a dialog of another resource file: where it goes, what it is called there, and what comes along.
#include "ide/program/members/adddialog.h"

#include "ide/designer/dlgedit.h"
#include "kernel/windows/resources.h"
#include "unit/ide/program/members/members_fixture.h"

namespace tarn {
namespace {

class AddDialog : public MembersTest {
protected:
    std::string source;

    void SetUp() override {
        MembersTest::SetUp();
        write("prog/main.rc", dialog("Ask"));
        source = write("far/a.rc", dialog("New") + dialog("ask") + dialog("main"));
        open({"main.cls", "main.rc", "shapes.cls"});
    }
    // Chooses the dialog of the file; the answers are for the questions that follow.
    void add(const std::string& file, const std::string& name, std::deque<std::string> more = {}) {
        answers = std::move(more);
        doings.push_back([file, name] {
            const Object list = part(OpenResourceDlg, "listbox1");
            SetText(part(OpenResourceDlg, "edit1"), file);
            platform::userChange(*platform::findControl(part(OpenResourceDlg, "edit1")));
            for (int row = 1; row <= GetListCount(list); ++row)
                if (GetList(list, row) == name) SetListIndex(list, row);
            press(OpenResourceDlg, "pushbutton1");
        });
        run([] { PROJECTADDDIALOG("Program-Add Dialog Window"); });
    }
    std::string rc() { return text("prog/main.rc"); }
    static std::string menuOf(const std::string& file, const std::string& name) {
        ObjectArray objects;
        EXPECT_EQ(ResourceRead(file, name, objects), "");
        const std::size_t at = objects[0].find("\nMENU=");
        return objects[0].substr(at + 6, objects[0].find('\n', at + 6) - at - 6);
    }
    bool scratchIsThere() {
        for (const char* folder : {"far", "prog"})
            for (const auto& entry : std::filesystem::directory_iterator(dir + folder))
                if (entry.path().extension() == ".tmp") return true;
        return false;
    }
};

TEST_F(AddDialog, GoesToTheResourceFileThatIsMeantWithItsFunction) {
    choose("Dialogs");
    add(source, "New");
    EXPECT_EQ(told(), std::vector<std::string>{"Added New from '" + source + "'"});
    EXPECT_EQ(asked.back().title, "Program-Add Dialog Window");
    EXPECT_TRUE(rc().starts_with(dialog("Ask"))) << rc();
    EXPECT_EQ(ResourceInfo(dir + "prog/main.rc", "DIALOG", "*").text, "Ask DIALOG\nNew DIALOG\n");
    EXPECT_NE(text("prog/main.cls").find("callback function New(in  anEvent : integer,\n"),
              std::string::npos);
    EXPECT_EQ(text("prog/main.cls").find('\r'), std::string::npos);
    EXPECT_FALSE(scratchIsThere());
    EXPECT_EQ(text("far/a.rc"), dialog("New") + dialog("ask") + dialog("main"));
}

TEST_F(AddDialog, CancelInTheChoiceChangesNothing) {
    choose("Dialogs");
    const std::string before = everything();
    doings.push_back([] { press(OpenResourceDlg, "pushbutton2"); });
    run([] { PROJECTADDDIALOG("Program-Add Dialog Window"); });
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(everything(), before);
}

TEST_F(AddDialog, AnErrorOfTheDialogComesBeforeAMissingTarget) {
    SetListIndex(rows(), 0);
    const std::string bad = write("far/bad.rc", "D DIALOG\n  Label 17\n    CAPTION=\"a\"\nEND\n");
    add(bad, "D");
    ASSERT_EQ(told().size(), 1U);
    EXPECT_TRUE(
        told()[0].starts_with("The following dialog:\n\n\tD in '" + bad +
                              "'\n\ncannot be added to the program, because of the following error:\n"))
        << told()[0];
    add(source, "New");
    EXPECT_EQ(told(),
              std::vector<std::string>{
                  "The following dialog:\n\n\tNew in '" + source +
                  "'\n\ncannot be added. You have not specified where the dialog is added to.\nChoose a "
                  "resource file in the program window and try again."});
}

TEST_F(AddDialog, ANameThatCannotBeIsAskedAboutUntilItCan) {
    choose("Dialogs");
    const std::string end = "Choose another name for the dialog being added.\n",
                      taken = "The following file (or its class file):\n\n\t'" + dir + "prog/main.rc'\n\n";
    add(source, "main", {"9to5", "my dialog", "\xC3\xA4", "a\xE4", "loop", "ASK", "Main", " Free "});
    const std::string invalid =
        " cannot be added, as the name is not a valid identifier.\nIt must start with a "
        "letter, and contain only letters, numbers or an underscore.\n" +
        end;
    const std::string reserved =
        " cannot be added, as the program already has a function called 'main'.\n" + end;
    EXPECT_EQ(told(), (std::vector<std::string>{
                          "Dialog main" + reserved, "Dialog 9to5" + invalid, "Dialog my dialog" + invalid,
                          "Dialog \xC3\xA4" + invalid, "Dialog a\xE4" + invalid, "Dialog loop" + invalid,
                          "Dialog ASK cannot be added. " + taken +
                              "already contains a dialog or function called "
                              "'ASK'. " +
                              end,
                          "Dialog Main" + reserved, "Added Free from '" + source + "'"}));
    EXPECT_EQ(ResourceInfo(dir + "prog/main.rc", "DIALOG", "*").text, "Ask DIALOG\nFree DIALOG\n");
    EXPECT_NE(SYMFINDFUNCTION("Free", 1, mainFile).bodyStart, 0);
}

TEST_F(AddDialog, ANumberedDialogIsListedAndRefusedWithItsLine) {
    const std::string file = write("far/numbered.rc", "\n" + dialog("7"));
    choose("Dialogs");
    const std::string before = everything();
    add(file, "7");
    EXPECT_EQ(told(), std::vector<std::string>{
                          "The following dialog:\n\n\t7 in '" + file +
                          "'\n\ncannot be added to the program, because of the following error:\n'" + file +
                          "', line 2: '7' is a number; give the window a name that begins with a letter."});
    EXPECT_EQ(everything(), before);
}

TEST_F(AddDialog, AnEmptyNameGivesUp) {
    choose("Dialogs");
    const std::string before = everything();
    for (const char* name : {"", "  "}) {
        add(source, "ask", {name});
        EXPECT_EQ(told().size(), 1U);
        EXPECT_EQ(asked.back().value, "ask");
        EXPECT_EQ(everything(), before);
    }
}

TEST_F(AddDialog, AFunctionOfTheClassTakesTheNameToo) {
    write("prog/main.cls", STRREPLACE(MainClass, "End class", "function NEW()\nend function\nEnd class"));
    choose("Dialogs");
    add(source, "New", {"Newer"});
    EXPECT_TRUE(told()[0].find("already contains a dialog or function called 'New'.") != std::string::npos);
    EXPECT_NE(SYMFINDFUNCTION("Newer", 1, mainFile).bodyStart, 0);
}

TEST_F(AddDialog, ANameInAnotherResourceFileOfTheProgramIsAskedAbout) {
    write("prog/shapes.rc", dialog("NEW") + "pic BITMAP \"x.bmp\"\n");
    open({"main.cls", "main.rc", "shapes.cls", "shapes.rc"});
    choose("Dialogs");
    add(source, "New", {"pic", "Free"});
    ASSERT_EQ(told().size(), 3U);
    EXPECT_EQ(told()[0], "Dialog New cannot be added. The following file (or its class file):\n\n\t'" + dir +
                             "prog/shapes.rc'\n\nalready contains a dialog or function called 'New'. Choose "
                             "another name for the dialog being added.\n");
    EXPECT_TRUE(told()[1].starts_with("Dialog pic cannot be added. ")) << told()[1];
    EXPECT_EQ(ResourceInfo(dir + "prog/main.rc", "DIALOG", "*").text, "Ask DIALOG\nFree DIALOG\n");
}

TEST_F(AddDialog, AFileThatDoesNotBelongToTheProgramHasItsOwnNames) {
    write("far/own.rc", dialog("X"));
    SetListIndex(rows(), 0);
    EDITWNDOPEN(SDIEdit, write("far/own.cls", classText("own")), false, 0);
    add(write("far/b.rc", dialog("Ask")), "Ask");
    EXPECT_EQ(ResourceInfo(dir + "far/own.rc", "DIALOG", "*").text, "X DIALOG\nAsk DIALOG\n") << lastText();
}

TEST_F(AddDialog, AClassInTheCodeWindowIsChangedThereAlone) {
    EDITWNDOPEN(SDIEdit, mainFile, false, 0);
    type("// mine\n");
    choose("Dialogs");
    add(source, "New");
    EXPECT_EQ(text("prog/main.cls"), MainClass);
    EXPECT_NE(SYMFINDFUNCTION("New", 0, GetText(SDIEdit)).bodyStart, 0);
    EXPECT_TRUE(GetModify(SDIEdit));
    Undo(SDIEdit);
    EXPECT_EQ(GetText(SDIEdit), MainClass + std::string("// mine\n"));
}

TEST_F(AddDialog, GoesToTheFileOfTheDialogThatIsOpen) {
    write("prog/shapes.rc", dialog("Round"));
    OPENDIALOG(dir + "prog/shapes.rc", "Round");
    choose("Dialogs");
    add(source, "New");
    EXPECT_EQ(rc(), dialog("Ask"));
    EXPECT_EQ(ResourceInfo(dir + "prog/shapes.rc", "DIALOG", "*").text, "Round DIALOG\nNew DIALOG\n");
    EXPECT_NE(SYMFINDFUNCTION("New", 1, dir + "prog/shapes.cls").bodyStart, 0);
    Unload(DialogDlg);
}

TEST_F(AddDialog, AMenuComesAlongUnderAFreeName) {
    const std::string menu = " MENU\n  Menuitem\n    POSITION=1\n    CAPTION=\"&File\"\nEND\n";
    write("prog/main.rc", dialog("Ask") + "Bar" + menu);
    const std::string file = write("far/menus.rc", "New DIALOG\n  POSITION=0 0 50 50\n  MENU=bar\nEND\nbar" +
                                                       menu + "Other DIALOG\n  MENU=bar\nEND\n");
    choose("Dialogs");
    add(file, "New");
    EXPECT_EQ(told(), std::vector<std::string>{"Added New from '" + file + "'"});
    EXPECT_EQ(ResourceInfo(dir + "prog/main.rc", "MENU", "*").text, "Bar MENU\nNew_Menu1 MENU\n");
    EXPECT_EQ(menuOf(dir + "prog/main.rc", "New"), "New_Menu1");
}

TEST_F(AddDialog, AnOwnerAndAPlaceOffTheScreenAreMended) {
    const std::string file = write("far/odd.rc", "Odd DIALOG\n  POSITION=9000 9000 50 50\n  OWNER=1\nEND\n");
    choose("Dialogs");
    add(file, "Odd");
    ASSERT_EQ(told().size(), 2U);
    EXPECT_TRUE(
        told()[0].starts_with("The window is off the edge of the screen (Position = 9000 9000 50 50)"));
    ObjectArray objects;
    EXPECT_EQ(ResourceRead(dir + "prog/main.rc", "Odd", objects), "");
    EXPECT_NE(objects[0].find("\nOWNER=0\n"), std::string::npos) << objects[0];
}

TEST_F(AddDialog, TheNameOfTestsIsANameLikeOthers) {
    const std::string file = write("far/t.rc", dialog("testdlg"));
    choose("Dialogs");
    add(file, "testdlg");
    EXPECT_EQ(told(), std::vector<std::string>{"Added testdlg from '" + file + "'"});
    EXPECT_FALSE(ResourceInfo(dir + "prog/main.rc", "DIALOG", "testdlg").text.empty());
}

TEST_F(AddDialog, LineEndsOfTheTargetAreKept) {
    write("prog/main.rc", "// mine\r\n" + STRNL2CRNL(dialog("Ask")));
    write("prog/main.cls", STRNL2CRNL(MainClass));
    choose("Dialogs");
    add(source, "New");
    for (const char* name : {"prog/main.rc", "prog/main.cls"})
        EXPECT_EQ(STRREPLACE(text(name), "\r\n", "").find('\n'), std::string::npos) << name << text(name);
    EXPECT_TRUE(rc().starts_with("// mine\r\n"));
}

TEST_F(AddDialog, ATargetThatWouldSwallowItStaysAsItWas) {
    write("prog/main.rc", "Ask DIALOG\n  CAPTION=\"\n");
    choose("Dialogs");
    const std::string before = everything();
    add(source, "New");
    const bool added = !ResourceInfo(dir + "prog/main.rc", "DIALOG", "New").text.empty();
    EXPECT_TRUE(added || everything() == before) << rc();
    EXPECT_EQ(told().size(), 1U);
}

TEST_F(AddDialog, AClassThatTakesNoFunctionIsToldAndNothingChanges) {
    write("prog/main.cls", "function main()\nend function\n");
    choose("Dialogs");
    const std::string before = everything();
    add(source, "New");
    ASSERT_EQ(told().size(), 1U);
    EXPECT_NE(told()[0].find("Could not add the window function for 'New'.\nClass syntax is wrong"),
              std::string::npos)
        << told()[0];
    EXPECT_EQ(everything(), before);
}

TEST_F(AddDialog, AResourceFileWithoutAClassTakesTheDialogAlone) {
    write("prog/alone.rc", dialog("Ask"));
    open({"alone.rc"});
    choose("Dialogs");
    add(source, "New");
    EXPECT_EQ(ResourceInfo(dir + "prog/alone.rc", "DIALOG", "*").text, "Ask DIALOG\nNew DIALOG\n");
    EXPECT_FALSE(there("prog/alone.cls"));
}

TEST_F(AddDialog, ATargetThatIsReadOnlyIsToldAndNothingChanges) {
    choose("Dialogs");
    std::filesystem::permissions(dir + "prog/main.rc", std::filesystem::perms(0444));
    const std::string before = everything();
    add(source, "New");
    ASSERT_EQ(told().size(), 1U);
    EXPECT_NE(told()[0].find("'" + dir + "prog/main.rc'"), std::string::npos) << told()[0];
    EXPECT_EQ(everything(), before);
}

TEST_F(AddDialog, PicturesThatTheProgramLacksAreTold) {
    write("far/p.rc",
          "pic BITMAP \"x.bmp\"\nhas BITMAP \"x.bmp\"\nbox DIALOG\n  POSITION=0 0 50 50\n  Image a 300\n"
          "  PICTURE=\"pic\"\n  Image b 301\n  PICTURE=\"has\"\n  Image c 302\n  PICTURE=\"y.bmp\"\n"
          "  Image d 303\n  PICTURE=\"z.bmp\"\nEND\n");
    write("prog/main.rc", dialog("Ask") + "has BITMAP \"h.bmp\"\n");
    write("prog/z.bmp", "picture");
    add(dir + "far/p.rc", "box");
    ASSERT_EQ(told().size(), 2U) << lastText();
    EXPECT_EQ(told()[0], "Added box from '" + dir + "far/p.rc'");
    EXPECT_EQ(told()[1], "Dialog box names the following picture(s), which the program does not "
                         "have:\n\n\tpic\n\ty.bmp\n\nAdd them with Program-Add File, or choose others in the "
                         "dialog editor.\n");
}

}  // namespace
}  // namespace tarn
