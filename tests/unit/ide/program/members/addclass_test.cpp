// SPDX-License-Identifier: GPL-3.0-or-later
//
// Adding a class: what is refused, in which order, and what the three answers change.
#include "ide/program/members/addclass.h"

#include "unit/ide/program/members/members_fixture.h"

namespace tarn {
namespace {

class AddClass : public MembersTest {
protected:
    void add(const std::string& file, std::deque<std::string> more = {}) {
        answers = std::move(more);
        answers.push_front(file);
        run([] { PROJECTADDCLASS("Program-Add Class"); });
        answers.clear();
    }
    std::string form(const std::string& path, const std::string& reason) {
        return "The following file:\n\n\t'" + path + "'\n\n" + reason;
    }
    std::string question(const std::string& file) {
        return "The class being added (" + FILEGETFNAME(file) +
               ") is not currently in one of the inherited folders.\nYou can update the inherited folder "
               "list to "
               "include the new path (" +
               FILEGETDIR(file) +
               ")\nOr you can copy the class file (and resource file) to the main program folder (" + dir +
               "prog/)\nWhat do you want to do?\n";
    }
    void expectBadName(const std::string& name, const std::string& fault) {
        const std::string file = write("far/" + name + ".cls", classText("X")), before = everything();
        add(file);
        EXPECT_EQ(told(),
                  std::vector<std::string>{form(
                      file, "cannot be added to the program, as its filename is not a valid class name.\n" +
                                fault + "\nMake a copy of the file with another name and try again.\n")})
            << name;
        EXPECT_EQ(everything(), before);
    }
    static inline const std::string NameRule =
        "A name has the letters A to Z, digits and underscores, and begins with a letter.";
    static constexpr const char* SameName = "cannot be added, because a file with the same name already "
                                            "exists.\nThe existing file is in an inherited "
                                            "folder, or in the folder containing the main program.\nChoose a "
                                            "different class or rename the existing "
                                            "file.";
};

TEST_F(AddClass, AsksForAClass) {
    open();
    add("");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].kind, platform::Question::Kind::OpenFile);
    EXPECT_EQ(asked[0].title, "Program-Add Class");
    EXPECT_EQ(asked[0].value, "*.cls");
}

TEST_F(AddClass, BeepsWithoutAMainClass) {
    const int before = platform::headlessBeeps();
    add(write("far/a.cls", classText("A")));
    EXPECT_TRUE(asked.empty());
    write("prog/only.rc", dialog("D"));
    open({"only.rc"});
    add(dir + "far/a.cls");
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(platform::headlessBeeps(), before + 2);
}

// Each file has the fault of its row and all those below it.
TEST_F(AddClass, ChecksInItsOrder) {
    open();
    const std::string mainText = STRREPLACE(MainClass, "Main", "Shapes", false);
    const struct {
        std::string name, contents, path, reason;
    } cases[] = {
        {"far/shapes.txt", "function main()\n", dir + "far/shapes.txt",
         "cannot be added because it is not a class.\nThe Add Class command only works with classes."},
        {"far/shapes.cls", "function main()\nend function\n", dir + "far/shapes.cls",
         "cannot be added because it is not a class.\nThe Add Class command only works with classes."},
        {"far/shapes.cls", mainText, dir + "far/shapes.cls",
         "is a main class and cannot be added.\nThe program already has a main class called '" + mainFile +
             "'."},
        {"far/SHAPES.cls", classText("Shapes"), "SHAPES.cls",
         "is already part of the program. It cannot be added twice."},
        {"far/my class.cls", classText("My"), "my class.cls", SameName},
        {"far/your class.cls", classText("Your"), dir + "far/your class.cls",
         "cannot be added to the program, as its filename is not a valid class name.\n" +
             std::string("It holds a space. " + NameRule) +
             "\nMake a copy of the file with another name and try again.\n"},
        {"far/loop.cls", classText("Loop"), dir + "far/loop.cls",
         "cannot be added to the program, as its filename is not a valid class name.\n" +
             std::string("'loop' is a word of the language.") +
             "\nMake a copy of the file with another name and try again.\n"},
        {"far/missing.cls", "", dir + "far/missing.cls",
         "cannot be added because it is not a class.\nThe Add Class command only works with classes."},
    };
    write("lib/my class.cls", classText("My"));
    for (const auto& c : cases) {
        if (!c.contents.empty()) write(c.name, c.contents);
        const std::string before = everything();
        add(dir + c.name);
        EXPECT_EQ(told(), std::vector<std::string>{form(c.path, c.reason)}) << c.name;
        EXPECT_EQ(everything(), before) << c.name;
    }
}

TEST_F(AddClass, ANameOfTheCoreOfTheLibraryIsThatOfTheLibraryAlone) {
    open();
    for (const char* name : {"far/Lib.cls", "far/SYSTEM.cls", "prog/system.cls"}) {
        const std::string file = write(name, classText("X")), before = everything();
        add(file);
        EXPECT_EQ(
            told(),
            std::vector<std::string>{form(
                file,
                "cannot be added, because its name is that of a core run time library class.\nMake a copy "
                "of the file with another name and try again.\n")});
        EXPECT_EQ(everything(), before);
    }
    std::filesystem::remove(dir + "prog/system.cls");
    add(write("lib/Lib.cls", classText("Lib")));
    EXPECT_EQ(told(), std::vector<std::string>{});
    EXPECT_EQ(uses("prog/main.cls"), "Shapes Lib");
}

TEST_F(AddClass, NamesThatNoClauseCanHoldAreRefused) {
    open();
    const std::pair<const char*, const char*> names[] = {{"my class", "a space"},
                                                         {" a", "a space"},
                                                         {"a ", "a space"},
                                                         {"B\xC3\xBC\x63her", "'\xC3\xBC'"},
                                                         {"a\xE4", "'\xE4'"},
                                                         {"a\xFF", "'\xFF'"},
                                                         {"\xE2\x82\xAC", "'\xE2\x82\xAC'"},
                                                         {"\xC3", "'\xC3'"},
                                                         {"a\"b", "'\"'"},
                                                         {"a'b", "'\''"},
                                                         {"a&b", "'&'"},
                                                         {"a.b", "'.'"},
                                                         {"a-b", "'-'"},
                                                         {"a\tb", "a control character"}};
    for (const auto& [name, sign] : names)
        expectBadName(name, "It holds " + std::string(sign) + ". " + NameRule);
    expectBadName("1a", "It begins with '1'. " + NameRule);
    expectBadName("_a", "It begins with '_'. " + NameRule);
    expectBadName(std::string(41, 'x'), "It is longer than 40 characters.");
    expectBadName("table", "'table' is a word of the language.");
}

TEST_F(AddClass, TheMainClassItselfIsRefusedAsAMainClass) {
    open();
    add(mainFile);
    EXPECT_EQ(told(),
              std::vector<std::string>{
                  form(mainFile, "is a main class and cannot be added.\nThe program already has a main class "
                                 "called '" +
                                     mainFile + "'.")});
}

TEST_F(AddClass, OneOfTheFoldersOfTheProgramNeedsNoQuestion) {
    open();
    for (const char* name : {"prog/near.cls", "lib/Lists.cls"}) {
        const std::string stem = FILEBASENAME(name);
        add(write(name, classText(stem)));
        EXPECT_TRUE(told().empty()) << lastText();
        EXPECT_TRUE(uses("prog/main.cls").ends_with(" " + stem)) << uses("prog/main.cls");
    }
    EXPECT_EQ(uses("prog/main.cls"), "Shapes near Lists");
    EXPECT_EQ(inherited(), dir + "lib");
}

TEST_F(AddClass, AClassInTwoFoldersOfTheProgramIsRefused) {
    open();
    write("prog/two.cls", classText("Two"));
    add(write("lib/two.cls", classText("Two")));
    EXPECT_EQ(told(), std::vector<std::string>{form("two.cls", SameName)});
}

TEST_F(AddClass, AFolderByAnotherNameIsThatFolder) {
    open();
    write("lib/near.cls", classText("Near"));
    std::filesystem::create_symlink(dir + "lib", dir + "link");
    add(dir + "link/near.cls");
    EXPECT_TRUE(told().empty()) << lastText();
    EXPECT_EQ(uses("prog/main.cls"), "Shapes near");
}

TEST_F(AddClass, CancelChangesNothing) {
    open();
    const std::string file = write("far/round.cls", classText("Round"));
    write("far/round.rc", dialog("D"));
    const std::string before = everything();
    for (const char* answer : {"Cancel", ""}) {
        add(file, {answer});
        EXPECT_EQ(told(), std::vector<std::string>{question(file)});
        EXPECT_EQ(asked.back().buttons, (std::vector<std::string>{"Update folders", "Copy file", "Cancel"}));
        EXPECT_EQ(everything(), before);
    }
}

TEST_F(AddClass, UpdateFoldersAddsTheFolder) {
    open();
    add(write("far/round.cls", classText("Round")), {"Update folders"});
    EXPECT_EQ(told().size(), 1U);
    EXPECT_EQ(uses("prog/main.cls"), "Shapes round");
    EXPECT_EQ(inherited(), dir + "lib;" + dir + "far/");
    EXPECT_NE(PROFILESTRGET(ini(), "ordo", "CLS").find(dir + "far/"), std::string::npos);
    EXPECT_FALSE(there("prog/round.cls"));
}

TEST_F(AddClass, CopyFileCopiesBothFiles) {
    open();
    add(write("far/round.cls", classText("Round")), {"Copy file"});
    EXPECT_EQ(text("prog/round.cls"), classText("Round"));
    EXPECT_FALSE(there("prog/round.rc"));
    write("far/both.rc", dialog("D"));
    const std::string file = write("far/both.cls", STRNL2CRNL(classText("Both")));
    const auto time = std::filesystem::file_time_type::clock::now() - std::chrono::hours(48);
    std::filesystem::last_write_time(file, time);
    add(file, {"Copy file"});
    EXPECT_EQ(text("prog/both.cls"), STRNL2CRNL(classText("Both")));
    EXPECT_EQ(text("prog/both.rc"), dialog("D"));
    EXPECT_EQ(std::filesystem::last_write_time(dir + "prog/both.cls"),
              std::filesystem::last_write_time(file));
    EXPECT_EQ(uses("prog/main.cls"), "Shapes round both");
    EXPECT_EQ(inherited(), dir + "lib");
}

TEST_F(AddClass, AResourceFileThatIsThereIsAskedAbout) {
    open();
    write("prog/round.rc", "// mine\n");
    write("far/round.rc", dialog("D"));
    const std::string file = write("far/round.cls", classText("Round")), before = everything();
    add(file, {"Copy file", "Cancel"});
    EXPECT_EQ(told().back(), "'" + dir + "prog/round.rc' already exists, do you want to replace it?");
    EXPECT_EQ(everything(), before);
    add(file, {"Copy file", "Replace"});
    EXPECT_EQ(text("prog/round.rc"), dialog("D"));
    EXPECT_EQ(uses("prog/main.cls"), "Shapes round");
}

// Behind the question about the resource file nothing is asked about the class any more.
TEST_F(AddClass, AFileThatAppearsBehindTheQuestionIsNotReplaced) {
    open();
    write("prog/round.rc", "// mine\n");
    write("far/round.rc", dialog("D"));
    const std::string file = write("far/round.cls", classText("Round"));
    std::deque<std::string> given = {file, "Copy file", "Replace", "OK"};
    auto before = platform::useView(platform::makeHeadlessView([&](const platform::Question& question) {
        asked.push_back(question);
        if (question.text.find("round.rc' already exists") != std::string::npos)
            write("prog/round.cls", "// mine too\n");
        std::string answer = given.empty() ? "" : given.front();
        if (!given.empty()) given.pop_front();
        return answer;
    }));
    run([] { PROJECTADDCLASS("Program-Add Class"); });
    platform::useView(std::move(before));
    EXPECT_EQ(told().back(), "'" + dir +
                                 "prog/round.cls'\ncould not be written: The file or folder exists "
                                 "already.\nNothing was changed. Try again when the cause is gone.");
    EXPECT_EQ(text("prog/round.cls"), "// mine too\n");
    EXPECT_EQ(text("prog/round.rc"), "// mine\n");
    EXPECT_EQ(uses("prog/main.cls"), "Shapes");
}

// A link that leads nowhere is no file that could be asked about, and a folder is none to replace.
TEST_F(AddClass, WhatIsNoFileInThePlaceOfACopyStays) {
    open();
    const std::string file = write("far/round.cls", classText("Round"));
    std::filesystem::create_symlink(dir + "lib/nowhere", dir + "prog/round.cls");
    add(file, {"Copy file"});
    EXPECT_FALSE(there("lib/nowhere")) << "nothing is written through the link";
    EXPECT_EQ(uses("prog/main.cls"), "Shapes") << lastText();
    std::filesystem::remove(dir + "prog/round.cls");
    std::filesystem::create_directory(dir + "prog/round.cls");
    add(file, {"Copy file"});
    EXPECT_EQ(uses("prog/main.cls"), "Shapes") << lastText();
}

TEST_F(AddClass, TheMainClassInTheCodeWindowIsChangedThereAndSaved) {
    open();
    EDITWNDOPEN(SDIEdit, mainFile, false, 0);
    type("// mine\n");
    add(write("prog/near.cls", classText("Near")));
    EXPECT_TRUE(told().empty()) << lastText();
    EXPECT_EQ(SYMGETUSES(0, GetText(SDIEdit)), "Shapes near");
    EXPECT_EQ(text("prog/main.cls"), GetText(SDIEdit));
    EXPECT_TRUE(text("prog/main.cls").ends_with("// mine\n"));
    EXPECT_FALSE(GetModify(SDIEdit));
    EXPECT_EQ(GetCaption(SDIEdit), mainFile);
    Undo(SDIEdit);
    EXPECT_EQ(SYMGETUSES(0, GetText(SDIEdit)), "Shapes");
}

TEST_F(AddClass, AMainClassThatTheUserKeepsUnsavedStopsTheCommand) {
    open();
    EDITWNDOPEN(SDIEdit, mainFile, false, 0);
    type("// mine\n");
    write("prog/main.cls", STRREPLACE(MainClass, "Shapes", "Shapes Others"));  // another program, meanwhile
    const std::string file = write("prog/near.cls", classText("Near")), before = everything();
    add(file, {"&Cancel"});
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(SYMGETUSES(0, GetText(SDIEdit)), "Shapes");
    EXPECT_TRUE(GetModify(SDIEdit));
}

TEST_F(AddClass, ANameThatIsInTheClauseAlreadyIsNotAddedTwice) {
    open({"main.cls"});
    write("prog/main.cls", STRREPLACE(MainClass, "Shapes", "Shapes NEAR"));
    add(write("prog/near.cls", classText("Near")));
    EXPECT_TRUE(told().empty());
    EXPECT_EQ(uses("prog/main.cls"), "Shapes NEAR");
}

TEST_F(AddClass, LineEndsAndLongClausesStay) {
    std::string clause = "Uses";
    for (int n = 1; n <= 30; ++n) clause += (n % 3 == 1 ? "\n  C" : " C") + STR(n);
    write("prog/main.cls", STRNL2CRNL(STRREPLACE(MainClass, "Uses Shapes", clause)));
    open({"main.cls"});
    add(write("prog/near.cls", classText("Near")));
    EXPECT_TRUE(uses("prog/main.cls").ends_with("C29 C30 near"));
    EXPECT_EQ(STRREPLACE(text("prog/main.cls"), "\r\n", "").find('\n'), std::string::npos);
}

TEST_F(AddClass, OddFoldersAreFolders) {
    open();
    int n = 0;
    for (const char* folder : {"a b", "it's", "\xc3\xa4\xff", "a\"b", "a&b"}) {
        std::filesystem::create_directory(dir + "far/" + folder);
        const std::string stem = "odd" + STR(++n), name = "far/" + std::string(folder) + "/" + stem + ".cls";
        add(write(name, classText(stem)), {n % 2 == 0 ? "Copy file" : "Update folders"});
        EXPECT_EQ(told(), std::vector<std::string>{question(dir + name)}) << folder;
        EXPECT_TRUE(uses("prog/main.cls").ends_with(" " + stem)) << folder;
    }
}

TEST_F(AddClass, AMainClassThatCannotBeWrittenIsToldAndNothingChanges) {
    open();
    std::filesystem::permissions(mainFile, std::filesystem::perms(0444));
    write("far/round.rc", dialog("D"));
    const std::string file = write("far/round.cls", classText("Round")), before = everything();
    for (const char* answer : {"Copy file", "Update folders"}) {
        add(file, {answer});
        ASSERT_EQ(told().size(), 2U);
        EXPECT_NE(told()[1].find("'" + mainFile + "'"), std::string::npos) << told()[1];
        EXPECT_EQ(everything(), before) << answer;
    }
}

TEST_F(AddClass, AClauseThatCannotBeChangedIsTold) {
    open();
    std::string longText = MainClass;
    for (int n = 0; n < 8000; ++n) longText += "//\n";
    write("prog/main.cls", longText);
    add(write("prog/near.cls", classText("Near")));
    EXPECT_EQ(told(), std::vector<std::string>{"Class has too many lines, maximum is 8000."});
    EXPECT_EQ(text("prog/main.cls"), longText);
}

TEST_F(AddClass, AClassOfAnotherNameThanItsFileIsRefused) {
    open();
    const std::string file = write("prog/ring.cls", classText("Other")), before = everything();
    add(file);
    EXPECT_EQ(told(),
              std::vector<std::string>{form(
                  file, "cannot be added to the program. It holds the class 'Other', and a class must be "
                        "called like its file.\nRename the file or the class, and try again.\n")});
    EXPECT_EQ(everything(), before);
    add(write("prog/RING.cls", classText("ring")));
    EXPECT_TRUE(told().empty()) << "in any case";
}

TEST_F(AddClass, FilesThatTheResourceFileNamesAreCopiedIfTheUserSaysSo) {
    open();
    std::filesystem::create_directory(dir + "far/pics");
    write("far/x.bmp", "picture");
    write("far/pics/y.ico", "icon");
    write("far/n.txt", "note");
    write("prog/n.txt", "mine");
    write("far/cc.rc",
          "x BITMAP \"x.bmp\"\nagain BITMAP \"x.bmp\"\ny ICON \"pics\\\\y.ico\"\nn INCFILE \"n.txt\"\n"
          "gone INCFILE \"gone.txt\"\nr BITMAP \"<RESOURCEDIR>\\\\r.bmp\"\nf BITMAP \"" +
              dir + "far/x.bmp\"\n");
    const std::string file = write("far/cc.cls", classText("Cc"));
    add(file, {"Copy file", "Yes"});
    ASSERT_EQ(told().size(), 2U);
    EXPECT_EQ(
        told()[1],
        "The resource file (cc.rc) names the following file(s), which are not in the main program "
        "folder:\n\n\tx.bmp\n\tpics/y.ico\n\nDo you want to copy them too?\nIf not, you should copy them "
        "later, or the program cannot be built or does not find them.\n");
    EXPECT_EQ(text("prog/x.bmp"), "picture");
    EXPECT_EQ(text("prog/pics/y.ico"), "icon");
    EXPECT_EQ(text("prog/n.txt"), "mine") << "what is there stays";
    write("far/dd.rc", "z BITMAP \"z.bmp\"\n");
    write("far/z.bmp", "picture");
    add(write("far/dd.cls", classText("Dd")), {"Copy file", "No"});
    EXPECT_EQ(told().size(), 2U);
    EXPECT_TRUE(there("prog/dd.rc"));
    EXPECT_FALSE(there("prog/z.bmp"));
}

}  // namespace
}  // namespace tarn
