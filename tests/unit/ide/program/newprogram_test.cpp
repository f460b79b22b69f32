// SPDX-License-Identifier: GPL-3.0-or-later
//
// New classes and programs: what is asked, what is written and opened, and what a user who declines keeps.
#include "ide/designer/dlgedit.h"
#include "ide/menus/filemenu.h"
#include "library/source/symbols.h"
#include "unit/ide/program/newprogram_fixture.h"

namespace tarn {
namespace {

// ---- a class ----

TEST_F(NewProgram, AClassIsWrittenNamedInTheMainClassAndShown) {
    write("work/a.cls", Main);
    openProgram({"work/a.cls"});
    fill({});
    newClass();
    EXPECT_TRUE(asked.empty()) << lastText();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "work/New1.cls");
    EXPECT_FALSE(GetModify(SDIEdit));
    EXPECT_EQ(SYMGETCLASSNAME(1, dir + "work/New1.cls", ProductWord), "New1");
    EXPECT_EQ(SYMGETUSES(1, dir + "work/a.cls"), "New1");
    EXPECT_EQ(text("work/a.cls"),
              "Tarnwick Class A\nUses New1\n\nfunction main()\nend function\n\nEnd class\n");
    EXPECT_FALSE(has("work/New1.rc"));
}

TEST_F(NewProgram, AClassGoesBesideTheMainFileOrIntoTheCurrentFolder) {
    fill({});
    newClass();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "work/New1.cls");
    write("a.cls", Main);
    openProgram({"a.cls"});
    fill({});
    newClass();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "New1.cls");
    fill({});
    newClass();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "New2.cls");
    EXPECT_EQ(SYMGETUSES(1, dir + "a.cls"), "New1 New2");
}

TEST_F(NewProgram, AClassWithTheNameAndFolderOfTheUser) {
    std::filesystem::create_directory(dir + "sp ace's \xC3\xA4");
    fill({{"Name", "Books"}, {"Directory", dir + "sp ace's \xC3\xA4"}});
    newClass();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "sp ace's \xC3\xA4/Books.cls");
    EXPECT_TRUE(has("sp ace's \xC3\xA4/Books.cls"));
}

TEST_F(NewProgram, AResourceFileThatIsOpenIsInTheWay) {
    write("a.rc", dialogText());
    openProgram({"a.rc"});
    newClass();
    EXPECT_EQ(lastText(), "Cannot create a new class. There is a resource file:\n\n\t'" + dir +
                              "a.rc'\n\nwhich is open in the Program Editor window. This file must be closed "
                              "first.");
    EXPECT_EQ(asked.back().title, "New Class");
}

TEST_F(NewProgram, CancelMakesNothing) {
    write("work/a.cls", Main);
    openProgram({"work/a.cls"});
    fill({{"Name", "Books"}}, false);
    newClass();
    EXPECT_FALSE(has("work/Books.cls"));
    EXPECT_EQ(text("work/a.cls"), Main);
    EXPECT_TRUE(asked.empty());
}

// ---- changes in the Code window ----

class NewProgramAsks : public NewProgram {
protected:
    std::string file;
    void SetUp() override {
        NewProgram::SetUp();
        file = write("work/A.cls", Main);
        EDITWNDOPEN(SDIEdit, file, false, 0);
        type("// mine\n");
    }
};

TEST_F(NewProgramAsks, YesSavesThem) {
    answers = {"&Yes"};
    fill({});
    newClass();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Save Changes?");
    EXPECT_EQ(asked[0].text, file + "\nThis file has been changed. Do you want to save the changes?");
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"&Yes", "&No", "&Cancel"}));
    EXPECT_EQ(read(file), Main + std::string("// mine\n"));
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "work/New1.cls");
}

TEST_F(NewProgramAsks, NoGivesThemUp) {
    answers = {"&No"};
    fill({});
    newClass();
    EXPECT_EQ(asked.size(), 1U) << lastText();
    EXPECT_EQ(read(file), Main);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "work/New1.cls");
    EXPECT_FALSE(GetModify(SDIEdit));
}

TEST_F(NewProgramAsks, NoAndThenNothingMadeKeepsThem) {
    answers = {"&No"};
    fill({}, false);
    newClass();
    EXPECT_TRUE(GetModify(SDIEdit));
    EXPECT_EQ(GetText(SDIEdit), Main + std::string("// mine\n"));
    EXPECT_EQ(GetCaption(SDIEdit), file + " *");
    answers = {"&No", "OK"};
    fill({{"Name", "A"}});
    newClass();
    EXPECT_TRUE(lastText().find("already exists") != std::string::npos) << lastText();
    EXPECT_TRUE(GetModify(SDIEdit));
}

TEST_F(NewProgramAsks, CancelAsksForNothingMore) {
    answers = {"&Cancel"};
    newClass();
    EXPECT_TRUE(GetModify(SDIEdit));
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), file);
    EXPECT_EQ(asked.size(), 1U);
}

TEST_F(NewProgramAsks, TheLabelHasTheNameOfTheFile) {
    answers = {"&Cancel"};
    SetCaption(MAINCONTROL("codelabel"), "other");
    newClass();
    EXPECT_EQ(GetCaption(MAINCONTROL("codelabel")), file);
}

// ---- a program ----

TEST_F(NewProgram, AProgramOpensItsClassItsWindowAndItsList) {
    makeTool({"work/App1.cls", "work/App1.rc"});
    fill({});
    newProgram(true);
    EXPECT_TRUE(asked.empty()) << lastText();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "work/App1.cls");
    EXPECT_TRUE(ISMAINCLASS(dir + "work/App1.cls"));
    EXPECT_EQ(text("work/App1.rc"), dialogText());
    EXPECT_EQ(DIALOGGETFILENAME(), dir + "work/App1.rc");
    EXPECT_EQ(DIALOGGETDLGNAME(), "Main");
    EXPECT_EQ(GetCaption(FINDCONTROL(DialogDlg, "gridstr")), "4 4");
    EXPECT_EQ(PROJECTGETMAINFILE(), dir + "work/App1.cls");
    EXPECT_EQ(GetCaption(ProjectEditorDlg), "Program Window");
    EXPECT_EQ(PROFILESTRGET(ini(), "MRU", "1"), dir + "work/App1.cls");
}

TEST_F(NewProgram, AProgramWithoutAWindowIsAClassAlone) {
    makeTool({"work/App1.cls"});
    fill({{"Program Type", "0"}});
    newProgram(true);
    EXPECT_TRUE(asked.empty()) << lastText();
    EXPECT_FALSE(has("work/App1.rc"));
    EXPECT_EQ(DIALOGGETFILENAME(), "");
    EXPECT_NE(text("work/App1.cls").find("function main()"), std::string::npos);
}

TEST_F(NewProgram, TheIconIsNamedFromTheResourceFolder) {
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit5", dir + "pics/");
    makeTool({"work/App1.cls"});
    std::filesystem::create_directory(dir + "pics");
    write("pics/a.ico", "icon");
    fill({{"Program Icon", dir + "pics/a.ico"}});
    newProgram(true);
    EXPECT_NE(text("work/App1.rc").find("\nProgramIcon ICON \"<RESOURCEDIR>\\\\a.ico\"\n"), std::string::npos)
        << text("work/App1.rc");
}

TEST_F(NewProgram, AnIconMayHaveAnyName) {
    std::filesystem::create_directory(dir + "work/a");
    for (const char* const name : {"a (1).ico", "\xC3\xA4.ico", "#1 $x$.ico", "a'b.ico", ").ico", "a/b.ico"})
        write("work/" + std::string(name), "icon");
    makeTool({"work/App1.cls"});
    for (const char* const name :
         {"a (1).ico", "\xC3\xA4.ico", "#1 $x$.ico", "a'b.ico", ").ico", "a\\b.ico"}) {
        fill({{"Program Icon", dir + "work/" + name}});
        newProgram(true);
        EXPECT_TRUE(asked.empty()) << lastText();
        EXPECT_EQ(RESOURCEGETFILENAME(dir + "work/App1.rc", "ICON", "ProgramIcon"),
                  "<RESOURCEDIR>\\work/" + std::string(name))
            << text("work/App1.rc");
        PROJECTCLOSE(ProjectEditorDlg);
        for (const char* const file : {"App1.cls", "App1.rc"}) std::filesystem::remove(dir + "work/" + file);
    }
}

TEST_F(NewProgram, AProgramElsewhereBecomesTheCurrentFolder) {
    std::filesystem::create_directory(dir + "elsewhere");
    makeTool({"elsewhere/Books.cls"});
    fill({{"Name", "Books"}, {"Directory", dir + "elsewhere"}});
    newProgram(true);
    EXPECT_EQ(GETCURDIR(), dir + "elsewhere");
    EXPECT_TRUE(has("elsewhere/Books.rc"));
}

TEST_F(NewProgram, AFreeNameHasNeitherClassNorResources) {
    write("work/App2.rc", "");
    write("work/app1.cls", "");
    write("work/App3.cls", "");
    write("work/App4.rc", "");
    makeTool({"work/App5.cls"});
    newProgram(false);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "work/App5.cls");
}

TEST_F(NewProgram, AFreeNameIsFreeInAnyCase) {
    write("work/APP1.CLS", "");
    write("work/app2.RC", "");
    newProgram(false);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "work/App3.cls");
}

TEST_F(NewProgram, AFolderWithoutARootIsOneOfTheCurrentFolder) {
    std::filesystem::create_directory(dir + "work/sub");
    fill({{"Name", "Books"}, {"Directory", "sub"}});
    newClass();
    EXPECT_TRUE(asked.empty()) << lastText();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "work/sub/Books.cls");
}

TEST_F(NewProgram, AMainClassThatHasGoneGetsNoNewClass) {
    write("work/a.cls", Main);
    openProgram({"work/a.cls"});
    std::filesystem::remove(dir + "work/a.cls");
    fill({});
    newClass();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "New Class");
    EXPECT_EQ(lastText(), "The new class cannot be added to the Uses clause of '" + dir +
                              "work/a.cls'.\nThe file was not found.");
    EXPECT_FALSE(has("work/New1.cls"));
}

TEST_F(NewProgram, WithoutAskingAnUntouchedProgramServesOnceMore) {
    makeTool({"work/App1.cls"});
    newProgram(false);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "work/App1.cls");
    newProgram(false);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "work/App1.cls");
    EXPECT_FALSE(has("work/App2.cls"));
    const std::string classText = text("work/App1.cls");
    const struct {
        const char *file, *text;
    } touched[] = {{"work/App1.rc", "Other DIALOG\nEND\n"}, {"work/App1.cls", "mine\n"}};
    for (const auto& [file, changed] : touched) {
        write("work/App1.cls", classText);
        write("work/App1.rc", dialogText());
        write(file, changed);
        makeTool({"work/App2.cls"});
        newProgram(false);
        EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "work/App2.cls") << file;
        EXPECT_EQ(text(file), changed);
        EXPECT_TRUE(CLOSEALL());
        std::filesystem::remove(dir + "work/App2.cls");
        std::filesystem::remove(dir + "work/App2.rc");
    }
}

TEST_F(NewProgram, WhoDeclinesToCloseKeepsEverything) {
    EDITWNDOPEN(SDIEdit, write("work/mine.cls", Main), false, 0);
    type("// mine\n");
    answers = {"&Cancel"};
    newProgram(true);
    EXPECT_EQ(asked.size(), 1U);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "work/mine.cls");
    EXPECT_TRUE(GetModify(SDIEdit));
    EXPECT_FALSE(has("work/App1.cls"));
}

TEST_F(NewProgram, AFolderThatCannotBeWrittenIsTold) {
    std::filesystem::permissions(dir + "work", std::filesystem::perms(0555));
    std::filesystem::current_path("/proc/self");  // nobody may write there, whoever it is
    newProgram(false);
    EXPECT_TRUE(lastText().find("could not be written: ") != std::string::npos) << lastText();
    EXPECT_TRUE(lastText().ends_with("Nothing was changed. Try again when the cause is gone.")) << lastText();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), "");
    EXPECT_FALSE(IsLoaded(ProjectEditorDlg));
    std::filesystem::current_path(dir);
    std::filesystem::permissions(dir + "work", std::filesystem::perms(0755));
}

// ---- a class in another folder ----

TEST_F(NewProgram, TheFolderOfAClassElsewhereIsAskedAbout) {
    write("work/a.cls", Main);
    std::filesystem::create_directory(dir + "far");
    openProgram({"work/a.cls"});
    const std::string question =
        "'" + dir +
        "far/' should be added to the inherited class path.\nDo you want to add it now?\nIf not, you "
        "should add it later using the Tools-Options-Paths command.";
    for (const char* const answer : {"No", "Yes"}) {
        asked.clear();
        answers = {answer};
        fill({{"Name", "Books" + std::string(answer)}, {"Directory", dir + "far/"}});
        newClass();
        ASSERT_EQ(asked.size(), 1U) << answer;
        EXPECT_EQ(asked[0].title, "New Class");
        EXPECT_EQ(asked[0].text, question);
        EXPECT_EQ(PROFILESTRGET(ini(), "PathsOptionsDlg", "Edit1"),
                  dir + "lib" + (std::string(answer) == "Yes" ? ";" + dir + "far/" : ""));
    }
    EXPECT_EQ(SYMGETUSES(1, dir + "work/a.cls"), "BooksNo BooksYes");
    asked.clear();
    fill({{"Name", "Third"}, {"Directory", dir + "far/"}});
    newClass();
    EXPECT_TRUE(asked.empty()) << "the folder is an inherited one by now";
}

TEST_F(NewProgram, WithoutAProgramNoFolderIsAskedAbout) {
    std::filesystem::create_directory(dir + "far");
    fill({{"Name", "Books"}, {"Directory", dir + "far/"}});
    newClass();
    EXPECT_TRUE(asked.empty()) << lastText();
}

}  // namespace
}  // namespace tarn
