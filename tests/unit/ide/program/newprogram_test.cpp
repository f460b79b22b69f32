// SPDX-License-Identifier: GPL-3.0-or-later
//
// New classes and programs: what is asked, each refusal by its words and in its order, what is written and opened, and
// what is left when a disk or a user stands in the way.
#include "ide/program/newprogram.h"

#include "ide/designer/dlgedit.h"
#include "ide/menus/filemenu.h"
#include "ide/program/changes.h"
#include "ide/program/newclass.h"
#include "ide/program/projwindow.h"
#include "library/designer/propedit_sheet.h"
#include "library/source/symbols.h"
#include "support/doings_fixture.h"
#include "support/steerable.h"

#include <filesystem>

namespace tarn {
namespace {

constexpr const char* Main = "Tarnwick Class A\n\nfunction main()\nend function\n\nEnd class\n";

std::string dialogText() {
    return "Main DIALOG\n    POSITION=20 20 240 160\n    CAPTION=\"Main\"\n    BORDERSTYLE=2\nEND\n";
}

class NewProgram : public DoingsTest {
protected:
    void SetUp() override {
        DoingsTest::SetUp();
        start();
        asked.clear();
        std::filesystem::create_directory(dir + "work");
        std::filesystem::current_path(dir + "work");
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit1", dir + "lib");
        std::filesystem::create_directory(dir + "lib");
    }
    // A make tool that says what a program consists of: its main class and what lies beside it.
    void makeTool(const std::vector<std::string>& files) {
        std::string list;
        for (const std::string& file : files) list += dir + file + "\\n";
        const std::string tool =
            write("ordo.exe", "#!/bin/sh\nprintf '" + list + "' >\"" + dir + "ordo.err\"\n");
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
    }
    void openProgram(const std::vector<std::string>& files) {
        makeTool(files);
        PROJECTOPEN(ProjectEditorDlg, "Program Window", dir + files[0]);
        ASSERT_TRUE(IsLoaded(ProjectEditorDlg)) << lastText();
        asked.clear();
    }
    static Object row(const std::string& name) {
        const Object labels = FINDCONTROL(PropertiesDlg, "lblname1");
        for (int i = ControlLbound(labels); i <= ControlUbound(labels); ++i)
            if (GetCaption(ControlElement(labels, i)) == name)
                return ControlElement(FINDCONTROL(PropertiesDlg, "edtvalue1"), i);
        ADD_FAILURE() << name;
        return {};
    }
    // Fills the sheet when it is up, and leaves it.
    void fill(const std::vector<std::pair<std::string, std::string>>& values, bool ok = true) {
        doings.emplace_back([values, ok] {
            ASSERT_TRUE(IsLoaded(PropertiesDlg));
            for (const auto& [name, value] : values) SetText(row(name), value);
            platform::userCommand(
                *platform::findControl(FINDCONTROL(PropertiesDlg, ok ? "idok" : "idcancel")));
        });
    }
    void newClass() {
        PROJECTNEWNONMAIN(MAINCONTROL("codelabel"), "New Class");
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
    void newProgram(bool ask) {
        PROJECTNEWMAIN(ProjectEditorDlg, MAINCONTROL("codelabel"), "New Program", ask);
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
    std::string text(const std::string& name) { return read(dir + name); }
    bool has(const std::string& name) { return std::filesystem::exists(dir + name); }
};

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

// ---- refusals ----

class NewProgramRefused : public NewProgram {
protected:
    std::string path() { return dir + "work/Books"; }
    // A new program Books with a window in the folder work.
    void tryBooks(const std::string& folder = "work") {
        asked.clear();
        fill({{"Name", "Books"}, {"Directory", dir + folder}});
        // The folder of the sheet must exist when it is left.
        static_cast<void>(folder);
        const NewClass made =
            NEWCLASSDIALOG(MAINCONTROL("codelabel"), "New Program", dir + "work/App1.cls", false, WithWindow);
        Stamp(0, ReportErrors, DefaultErrorHandler);
        EXPECT_TRUE(made.empty());
        ASSERT_EQ(asked.size(), 1U);
        EXPECT_EQ(asked[0].title, "New Program");
    }
    std::string libraryWords() {
        return "The new class cannot be created, it conflicts with a library file of the same name.\n"
               "The existing library file is: " +
               dir + "lib/Books.cls\nChoose a different name for the new class.\n";
    }
};

constexpr const char *ClassThere = "The new class cannot be created, this class file already exists.\n"
                                   "Choose a different name, or rename the existing file.\n",
                     *DialogThere = "The new class cannot be created, this dialog file already exists.\n"
                                    "Choose a different name, or rename the existing file.\n";

TEST_F(NewProgramRefused, EachByItsWordsAndInTheirOrder) {
    write("work/Books.rc", "");
    tryBooks();
    EXPECT_EQ(lastText(), "'" + path() + ".rc'\n" + DialogThere);
    write("work/Books.cls", "");
    tryBooks();
    EXPECT_EQ(lastText(), "'" + path() + ".cls'\n" + ClassThere);
    write("lib/bOOKS.CLS", "");
    tryBooks();
    EXPECT_EQ(lastText(), "'" + path() + ".cls'\n" + libraryWords());
}

TEST_F(NewProgramRefused, ANameThatIsThereInAnotherCase) {
    write("work/bookS.rc", "");
    tryBooks();
    EXPECT_EQ(lastText(), "'" + path() + ".rc'\n" + DialogThere);
    write("work/BOOKS.cls", "");
    tryBooks();
    EXPECT_EQ(lastText(), "'" + path() + ".cls'\n" + ClassThere);
    EXPECT_FALSE(has("work/Books.cls"));
}

TEST_F(NewProgramRefused, AWordOfTheLanguage) {
    fill({{"Name", "Function"}});
    newClass();
    EXPECT_EQ(lastText(),
              "'" + dir +
                  "work/Function.cls'\nThe new class cannot be created, its name is a word of the "
                  "language.\nChoose a different name for the new class.\n");
    EXPECT_FALSE(has("work/Function.cls"));
}

TEST_F(NewProgramRefused, ANameOfTheCoreOfTheLibrary) {
    for (const std::string name : {"Lib", "SYSTEM", "system", "lIB"}) {
        fill({{"Name", name}});
        newClass();
        EXPECT_EQ(lastText(),
                  "'" + dir + "work/" + name +
                      ".cls'\nThe new class cannot be created, its name is that of a core run time library "
                      "class.\nChoose a different name for the new class.\n");
        fill({{"Name", name}});
        newProgram(true);
        EXPECT_TRUE(lastText().find("core run time library class") != std::string::npos) << lastText();
    }
    EXPECT_TRUE(std::filesystem::is_empty(dir + "work"));
    fill({{"Name", "Library"}});
    newClass();
    EXPECT_TRUE(has("work/Library.cls"));
}

TEST_F(NewProgramRefused, AFolderThatGoesMeanwhile) {
    std::filesystem::create_directory(dir + "gone");
    doings.emplace_back([this] {
        SetText(row("Name"), "Books");
        SetText(row("Directory"), dir + "gone/");
        platform::userCommand(*platform::findControl(FINDCONTROL(PropertiesDlg, "idok")));
        std::filesystem::remove(dir + "gone");
    });
    const NewClass made = NEWCLASSDIALOG({}, "New Program", dir + "work/App1.cls", false, WithWindow);
    EXPECT_TRUE(made.empty());
    EXPECT_EQ(lastText(), "'" + dir +
                              "gone/Books.cls'\nThe new class cannot be created, this directory does not "
                              "exist.\nChoose a directory that exists.\n");
}

TEST_F(NewProgramRefused, ATemplateThatIsMissingIsToldWithoutTheSheet) {
    write("lib/App1.cls", "");  // a fault behind it is not reached
    const auto message = [&](const char* what, const char* name) {
        return "'" + dir + "work/App1.cls'\nCannot create new " + what + ".\nCannot create Template." + name +
               ".cls, it was not in \"" + ini() + "\".\n";
    };
    PROFILESTRDEL(ini(), "Template.NewDialog.cls", "");
    newProgram(true);
    EXPECT_EQ(lastText(), message("dialog", "NewDialog"));
    newProgram(false);
    EXPECT_EQ(lastText(), message("dialog", "NewDialog"));
    PROFILESTRDEL(ini(), "Template.NewMainClass.cls", "");
    newProgram(true);
    EXPECT_EQ(lastText(), message("class", "NewMainClass"));
    newProgram(false);
    EXPECT_EQ(lastText(), message("class", "NewMainClass"));
    EXPECT_FALSE(has("work/App1.cls"));
}

TEST_F(NewProgramRefused, WithoutAskingALibraryNameIsRefusedToo) {
    write("lib/app1.cls", "");
    newProgram(false);
    EXPECT_EQ(lastText(),
              "'" + dir +
                  "work/App1.cls'\nThe new class cannot be created, it conflicts with a library file of "
                  "the same name.\nThe existing library file is: " +
                  dir + "lib/App1.cls\nChoose a different name for the new class.\n");
}

TEST_F(NewProgramRefused, APlainClassNeedsNoResourceFile) {
    write("work/Books.rc", "");
    fill({{"Name", "Books"}});
    newClass();
    EXPECT_TRUE(asked.empty()) << lastText();
    EXPECT_TRUE(has("work/Books.cls"));
}

TEST_F(NewProgramRefused, ANameThatIsNoneStaysInTheSheet) {
    for (const std::string& name :
         {std::string(), std::string("two words"), std::string("1a"), std::string("a/b"), std::string("a\"b"),
          std::string("\xC3\xA4"), std::string("a\xE4"), std::string("a\xFF"), std::string(" a"),
          std::string("a "), std::string("a\tb"), std::string("_a"), std::string("a-b"), std::string("a.b"),
          std::string("a&b"), std::string(41, 'a')}) {
        asked.clear();
        doings.emplace_back([this, name] {
            SetText(row("Name"), name);
            platform::userCommand(*platform::findControl(FINDCONTROL(PropertiesDlg, "idok")));
            ASSERT_EQ(asked.size(), 1U) << name;
            EXPECT_EQ(lastText(),
                      "There is a problem with the 'Name' property.\nA name should be used.\n(consisting of "
                      "letters, numbers, or '_' with length of 1 to 40)\n")
                << name;
            platform::userCommand(*platform::findControl(FINDCONTROL(PropertiesDlg, "idcancel")));
        });
        newClass();
    }
    EXPECT_TRUE(std::filesystem::is_empty(dir + "work"));
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

// ---- disks and processes that end ----

class NewProgramOnBadDisk : public NewProgram {
protected:
    os::SteeredFiles disk;
    void SetUp() override {
        NewProgram::SetUp();
        const std::string settings = read(ini()), resources = read(dir + "ide.rcx");
        makeTool({"none"});
        disk.put(ini(), settings);
        disk.put(dir + "ide.rcx", resources);
        disk.putFolder(dir + "state", 0777);
        disk.putOwner(dir + "state", 1000, 1000);
        begin();
        os::useFiles(&disk);
    }
    void TearDown() override {
        os::useFiles(nullptr);
        NewProgram::TearDown();
    }
    void begin() {
        for (const char* const file : {"/w/New1.cls", "/w/App1.cls", "/w/App1.rc"}) {
            disk.put(file, "");
            disk.remove(file);
        }
        disk.put("/w/a.cls", Main);
        asked.clear();
    }
    // The program of a.cls, whose list nobody can make: the window is not asked for one here.
    void openMain() {
        if (!IsLoaded(ProjectEditorDlg)) Load(ProjectEditorDlg);
        SetCaption(FINDCONTROL(ProjectEditorDlg, "Mainfile"), "/w/a.cls");
    }
    [[nodiscard]] bool classOld() { return !disk.has("/w/New1.cls") && disk.contents("/w/a.cls") == Main; }
    [[nodiscard]] bool classNew() {
        return disk.contents("/w/New1.cls").starts_with("Tarnwick Class New1\n") &&
               disk.contents("/w/a.cls").find("\nUses New1\n") != std::string::npos;
    }
};

TEST_F(NewProgramOnBadDisk, AFullDiskLeavesNoHalfClass) {
    for (std::int64_t room = 0; room < 1500; room += 40) {
        begin();
        openMain();
        disk.setFreeBytes(room);
        fill({});
        newClass();
        disk.setFreeBytes(1000000);
        const bool pending = lastText().find("The next start") != std::string::npos;
        static_cast<void>(FINISHCHANGES());
        EXPECT_TRUE(classOld() || classNew()) << room;
        EXPECT_TRUE(!pending || classNew()) << room;
        EXPECT_TRUE(classNew() || !asked.empty()) << room;
        INITFILE(SDIEdit);
    }
}

TEST_F(NewProgramOnBadDisk, AFailureAtAnyCallLeavesNoHalfClass) {
    for (int call = 1; call < 200; ++call) {
        begin();
        openMain();
        disk.failAt(call, os::FileError::WriteFailed);
        fill({});
        newClass();
        const int calls = disk.calls();
        disk.stopFailing();
        static_cast<void>(FINISHCHANGES());
        EXPECT_TRUE(classOld() || classNew()) << call;
        EXPECT_TRUE(classNew() || !asked.empty()) << call;
        INITFILE(SDIEdit);
        if (calls < call) return;
    }
    FAIL() << "no end";
}

TEST_F(NewProgramOnBadDisk, AKillAtAnyCallLeavesNoHalfClassAtTheNextStart) {
    for (const bool midway : {false, true}) {
        bool died = true;
        for (int call = 1; died && call < 200; ++call) {
            begin();
            openMain();
            fill({});
            died = false;
            disk.dieAt(call, midway);
            try {
                PROJECTNEWNONMAIN(MAINCONTROL("codelabel"), "New Class");
            } catch (const os::ProcessDeath&) {
                died = true;
            }
            disk.revive();
            ClearError();
            static_cast<void>(FINISHCHANGES());
            EXPECT_TRUE(classOld() || classNew()) << call;
            INITFILE(SDIEdit);
        }
        EXPECT_FALSE(died);
        EXPECT_TRUE(classNew());
    }
}

// A whole new program, with the class and the dialog that are opened then, by the menu (`asks`) and as the start makes it.
class NewMainOnBadDisk : public NewProgramOnBadDisk {
protected:
    std::string stem;
    void SetUp() override {
        NewProgramOnBadDisk::SetUp();
        disk.putFolder(dir + "work", 0777);
        disk.putOwner(dir + "work", 1000, 1000);
        stem = dir + "work/App1";
    }
    void begin(bool asks) {
        ClearError();
        disk.setFreeBytes(1'000'000);
        closeAll();
        SETCURDIR(dir + "work");
        for (const std::string& file : disk.allFiles())
            if (file.starts_with(dir + "work/") || file.find("/changes/") != std::string::npos)
                disk.remove(file);
        asked.clear();
        doings.clear();
        if (asks) fill({});
    }
    static void closeAll() {
        for (const Object& window : {DialogDlg, ProjectEditorDlg, PropertiesDlg})
            if (IsLoaded(window)) {
                if (window == DialogDlg) DIALOGSETMODIFY(false);
                Unload(window);
            }
        INITFILE(SDIEdit);
    }
    // Neither file, or both with all that is in them.
    [[nodiscard]] bool nothing() { return !disk.has(stem + ".cls") && !disk.has(stem + ".rc"); }
    [[nodiscard]] bool everything() {
        return disk.contents(stem + ".cls").starts_with("Tarnwick Class App1\n") &&
               disk.contents(stem + ".cls").ends_with("End class\n") &&
               disk.contents(stem + ".rc") == dialogText();
    }
};

TEST_F(NewMainOnBadDisk, AFailureAtAnyCallLeavesAllOfTheProgramOrNothing) {
    for (const bool asks : {false, true})
        for (const os::FileError error : {os::FileError::WriteFailed, os::FileError::DiskFull}) {
            bool reached = true;
            for (int call = 1; reached && call < 400; ++call) {
                begin(asks);
                disk.failAt(call, error);
                newProgram(asks);
                reached = disk.calls() >= call;
                disk.stopFailing();
                static_cast<void>(FINISHCHANGES());
                EXPECT_TRUE(nothing() || everything()) << asks << " " << call;
                EXPECT_TRUE(everything() || !asked.empty()) << asks << " " << call;
            }
            EXPECT_FALSE(reached);
            EXPECT_TRUE(everything()) << lastText() << GETCURDIR();
        }
    closeAll();
}

TEST_F(NewMainOnBadDisk, AFullDiskLeavesAllOfTheProgramOrNothing) {
    for (std::int64_t room = 0; room < 2400; room += 60) {
        begin(false);
        disk.setFreeBytes(room);
        newProgram(false);
        disk.setFreeBytes(1'000'000);
        static_cast<void>(FINISHCHANGES());
        EXPECT_TRUE(nothing() || everything()) << room;
        EXPECT_TRUE(everything() || !asked.empty()) << room;
    }
    closeAll();
}

TEST_F(NewMainOnBadDisk, AKillAtAnyCallLeavesAllOfTheProgramOrNothingAtTheNextStart) {
    for (const bool asks : {false, true})
        for (const bool midway : {false, true}) {
            bool died = true;
            int deaths = 0;
            for (int call = 1; died && call < 400; ++call) {
                platform::DestroyAllWindows();  // a new process
                start();
                begin(asks);
                died = false;
                disk.dieAt(call, midway);
                try {
                    PROJECTNEWMAIN(ProjectEditorDlg, MAINCONTROL("codelabel"), "New Program", asks);
                } catch (const os::ProcessDeath&) {
                    died = true;
                }
                disk.revive();
                ClearError();
                static_cast<void>(FINISHCHANGES());
                EXPECT_TRUE(nothing() || everything()) << asks << " " << call;
                deaths += died ? 1 : 0;
            }
            EXPECT_FALSE(died);
            EXPECT_GT(deaths, 10);
            EXPECT_TRUE(everything()) << lastText();
        }
    closeAll();
}

TEST_F(NewProgramOnBadDisk, AnUnfinishedChangeIsToldAtTheNextStart) {
    const std::string folder = dir + "state/tarnwick/changes/";
    disk.failAlways(os::FileCall::Remove, os::FileError::Denied);
    EXPECT_EQ(CHANGEFILES({{"/w/a.cls", "x"}, {"/w/b.cls", "y", os::FileChange::Kind::Create}}), "");
    disk.failAlways(os::FileCall::Remove, os::FileError::None);
    disk.put("/w/a.cls", Main);
    EXPECT_TRUE(FINISHCHANGES());
    EXPECT_EQ(asked.back().title, "Unfinished Changes");
    EXPECT_EQ(lastText(),
              "The environment was stopped while it changed several files that belong together.\n\n"
              "These files got the contents that they were to have:\n\t'/w/a.cls'");
    EXPECT_EQ(disk.contents("/w/a.cls"), "x");
    EXPECT_FALSE(FINISHCHANGES());
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

// ---- icons that cannot be ----

TEST_F(NewProgramRefused, IconsThatAreNotThere) {
    write("work/empty.ico", "");
    write("work/q\"q.ico", "icon");
    const std::string begin =
                          "'" + dir + "work/Books.cls'\nThe new class cannot be created, its program icon '",
                      end = "Choose another icon, or none.\n";
    const std::pair<std::string, const char*> cases[] = {
        {dir + "work/gone.ico", "does not exist or is empty.\n"},
        {"gone.ico", "does not exist or is empty.\n"},
        {dir + "work/empty.ico", "does not exist or is empty.\n"},
        {dir + "work/q\"q.ico", "has a quote or a line end in its path.\n"}};
    for (const auto& [icon, reason] : cases) {
        asked.clear();
        fill({{"Name", "Books"}, {"Directory", dir + "work"}, {"Program Icon", icon}});
        const NewClass made = NEWCLASSDIALOG({}, "New Program", dir + "work/App1.cls", false, WithWindow);
        EXPECT_TRUE(made.empty());
        EXPECT_EQ(lastText(), begin + icon + "' " + reason + end);
    }
    write("work/there.ico", "icon");
    fill({{"Name", "Books"}, {"Directory", dir + "work"}, {"Program Icon", "there.ico"}});
    EXPECT_FALSE(NEWCLASSDIALOG({}, "New Program", dir + "work/App1.cls", false, WithWindow).empty())
        << "a path without a root starts from the folder of the class";
}

}  // namespace
}  // namespace tarn
