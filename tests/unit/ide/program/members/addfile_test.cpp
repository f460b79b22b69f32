// SPDX-License-Identifier: GPL-3.0-or-later
//
// Adding a file to a resource file: which, where, and under what name.
#include "ide/program/members/addfile.h"

#include "ide/editor/seenfile.h"
#include "kernel/windows/resources.h"
#include "unit/ide/program/members/members_fixture.h"

namespace tarn {
namespace {

class AddFile : public MembersTest {
protected:
    void SetUp() override {
        MembersTest::SetUp();
        write("prog/main.rc", "// mine\n");
        open({"main.cls", "main.rc", "shapes.cls"});
    }
    void add(const std::string& file) {
        answers = {file};
        run([] { PROJECTADDFILE("Program-Add File"); });
        answers.clear();
    }
    std::string rc() { return text("prog/main.rc"); }
    std::string refusal(const std::string& file, const std::string& reason) {
        return "The following file:\n\n\t" + file + "\n\n" + reason;
    }
};

TEST_F(AddFile, EachTypeHasItsKind) {
    const struct {
        std::string name, statement;
    } cases[] = {{"a.bmp", "a_bmp BITMAP"},         {"b.ICO", "b_ICO BITMAP"},  {"c.exe", "c_exe INCFILE"},
                 {"d.txt", "d_txt INCFILE"},        {"e.xml", "e_xml INCFILE"}, {"f.wav", "f_wav INCFILE"},
                 {"1 & 2.txt", "n___2_txt INCFILE"}};
    for (const auto& c : cases) {
        const std::string file = write("far/" + c.name, "x");
        add(file);
        EXPECT_EQ(told(), std::vector<std::string>{"Added " + file + " to '" + dir + "prog/main.rc'"});
    }
    EXPECT_EQ(ResourceInfo(dir + "prog/main.rc", "BITMAP", "*").text,
              "a_bmp a_bmp BITMAP \"" + dir + "far/a.bmp\"\nb_ICO b_ICO BITMAP \"" + dir + "far/b.ICO\"\n");
    EXPECT_NE(rc().find("d_txt INCFILE \"" + dir + "far/d.txt\"\n"), std::string::npos) << rc();
}

TEST_F(AddFile, ItsNameIsFreeInTheWholeProgram) {
    write("prog/shapes.rc", "A_BMP BITMAP \"x.bmp\"\n");
    open({"main.cls", "main.rc", "shapes.cls", "shapes.rc"});
    add(write("far/a.bmp", "x"));
    EXPECT_EQ(rc(), "// mine\na_bmp1 BITMAP \"" + dir + "far/a.bmp\"\n");
}

TEST_F(AddFile, AsksWithRowsForAllTypes) {
    add("");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Program-Add File");
    EXPECT_EQ(asked[0].value, "*:*");
    EXPECT_EQ(
        asked[0].filter,
        "All files(*.*)|*.*|Bitmap files(*.bmp)|*.bmp|Icon files(*.ico)|*.ico|EXE files(*.exe)|*.exe|Text "
        "files(*.txt)|*.txt|XML files(*.xml)|*.xml|Wave files(*.wav)|*.wav|");
    EXPECT_EQ(rc(), "// mine\n");
}

TEST_F(AddFile, ChecksInItsOrder) {
    const std::string noTarget =
        "cannot be added. You have not specified where the file is added to.\nChoose a "
        "resource file in the program window and try again.";
    const std::string exe = write("prog/main.exe", "x"), doc = write("prog/main.doc", "x"),
                      note = write("far/note.txt", "x");
    SetListIndex(rows(), 0);  // no row, and no class in the Code window: nothing is meant
    add(doc);
    EXPECT_EQ(told(),
              std::vector<std::string>{refusal(
                  doc, "cannot be added. Only files of type .bmp .ico .exe .txt .xml .wav can be added to a "
                       "resource file.")});
    add(exe);
    EXPECT_EQ(told(), std::vector<std::string>{refusal(
                          exe, "does not need adding. It is the main program file and is always included.")});
    add(note);
    EXPECT_EQ(told(), std::vector<std::string>{refusal(note, noTarget)});
    choose("Main Class Main");
    add(note);
    EXPECT_EQ(told()[0], "Added " + note + " to '" + dir + "prog/main.rc'");
    const std::string before = rc();
    add(note);
    EXPECT_EQ(told(), std::vector<std::string>{
                          refusal(note, "is already in the resource file and does not need adding again.")});
    add(dir + "far/none.txt");
    EXPECT_EQ(told(),
              std::vector<std::string>{refusal(
                  dir + "far/none.txt", "cannot be added. The file does not exist or cannot be found.")});
    EXPECT_EQ(rc(), before);
}

TEST_F(AddFile, TheSameFileByAnotherPathIsThatFile) {
    write("far/note.txt", "x");
    std::filesystem::create_symlink(dir + "far", dir + "prog/link");
    write("prog/main.rc", "note INCFILE FIXED \"link/note.txt\"\n");
    add(dir + "far/note.txt");
    EXPECT_TRUE(told()[0].ends_with("is already in the resource file and does not need adding again."));
}

TEST_F(AddFile, ANameThatIsTakenGetsANumber) {
    for (int n = 0; n <= 11; ++n) {
        std::filesystem::create_directory(dir + "far/" + STR(n));
        const std::string file = write("far/" + STR(n) + "/picture.bmp", "x"), before = rc();
        add(file);
        if (n == 11) {
            EXPECT_EQ(told(),
                      std::vector<std::string>{refusal(
                          file, "cannot be added. The resource file contains too many files with similar "
                                "names (over 10) total.\nChoose another file and try again.")});
            EXPECT_EQ(rc(), before);
            break;
        }
        const std::string name = "picture_bmp" + (n == 0 ? std::string() : STR(n));
        EXPECT_NE(rc().find(name + " BITMAP \"" + file + "\"\n"), std::string::npos) << n << rc();
    }
}

TEST_F(AddFile, ANameOfAnyResourceIsTaken) {
    write("prog/main.rc", "NOTE_TXT DIALOG\nEND\n");
    add(write("far/note.txt", "x"));
    EXPECT_NE(rc().find("note_txt1 INCFILE "), std::string::npos) << rc();
}

TEST_F(AddFile, ALongNameIsCutAlsoWithItsNumber) {
    const std::string name(60, 'x');
    add(write("far/" + name + ".txt", "x"));
    add(write("prog/" + name + ".txt", "x"));
    const std::string lines = ResourceInfo(dir + "prog/main.rc", "INCFILE", "*").text;
    EXPECT_EQ(STRWORD(STRLINE(lines, 1), 1), std::string(40, 'x'));
    EXPECT_EQ(STRWORD(STRLINE(lines, 2), 1), std::string(39, 'x') + "1");
}

TEST_F(AddFile, FoldersOfTheSettingsAreWrittenAsPlaceholders) {
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit5", dir + "far");
    const std::string file = write("far/note.txt", "x");
    add(file);
    EXPECT_NE(rc().find("note_txt INCFILE \"<RESOURCEDIR>\\\\note.txt\"\n"), std::string::npos) << rc();
    EXPECT_TRUE(ISFILENAMEINRESOURCEFILE(dir + "prog/main.rc", file));
}

TEST_F(AddFile, OddPathsAreFoundAgain) {
    for (const char* folder : {"a b", "it's", "\xc3\xa4\xff", "a\"b", "$<>&"}) {
        std::filesystem::create_directory(dir + "far/" + folder);
        const std::string file = dir + "far/" + folder + "/note.txt";
        write(std::string("far/") + folder + "/note.txt", "x");
        add(file);
        EXPECT_EQ(told()[0], "Added " + file + " to '" + dir + "prog/main.rc'") << folder;
        EXPECT_TRUE(ISFILENAMEINRESOURCEFILE(dir + "prog/main.rc", file)) << rc();
    }
}

TEST_F(AddFile, AResourceFileThatIsNotThereYetIsMade) {
    choose("Class Shapes");
    EDITWNDOPEN(SDIEdit, dir + "prog/shapes.cls", false, 0);
    SetListIndex(rows(), 0);
    const std::string file = write("far/note.txt", "x");
    add(file);
    EXPECT_EQ(text("prog/shapes.rc"), "note_txt INCFILE \"" + file + "\"\n");
}

TEST_F(AddFile, AResourceFileThatCannotBeWrittenIsTold) {
    std::filesystem::permissions(dir + "prog/main.rc", std::filesystem::perms(0444));
    const std::string file = write("far/note.txt", "x");
    add(file);
    ASSERT_EQ(told().size(), 1U);
    EXPECT_TRUE(told()[0].starts_with("Cannot add " + file + " to '" + dir + "prog/main.rc'\n")) << told()[0];
    EXPECT_EQ(rc(), "// mine\n");
}

TEST_F(AddFile, LineEndsOfTheFileAreKept) {
    write("prog/main.rc", "// mine\r\nD DIALOG\r\nEND\r\n");
    add(write("far/note.txt", "x"));
    EXPECT_EQ(STRREPLACE(rc(), "\r\n", "").find('\n'), std::string::npos) << rc();
}

TEST_F(AddFile, AResourceFileInTheCodeWindowIsSavedFirstAndShowsTheLineThen) {
    EDITWNDOPEN(SDIEdit, dir + "prog/main.rc", false, 0);
    type("// typed\n");
    const std::string file = write("far/a.txt", "x"), before = rc();
    answers = {file, "&Cancel"};
    run([] { PROJECTADDFILE("Program-Add File"); });
    EXPECT_EQ(rc(), before);
    EXPECT_TRUE(GetModify(SDIEdit));
    answers = {file, "&Yes"};
    run([] { PROJECTADDFILE("Program-Add File"); });
    EXPECT_EQ(told()[0], dir + "prog/main.rc\nThis file has been changed. Do you want to save the changes?");
    EXPECT_NE(rc().find("// typed"), std::string::npos);
    EXPECT_NE(rc().find("a_txt INCFILE"), std::string::npos);
    EXPECT_EQ(GetText(SDIEdit), rc());
    EXPECT_FALSE(GetModify(SDIEdit));
    EXPECT_EQ(NEWCHANGEOUTSIDE(SDIEdit, dir + "prog/main.rc"), OutsideChange::None);
}

}  // namespace
}  // namespace tarn
