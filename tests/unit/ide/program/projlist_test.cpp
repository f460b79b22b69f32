// SPDX-License-Identifier: Apache-2.0
//
// The list of a program as text.
#include "ide/program/projlist.h"
#include "support/ide_fixture.h"

#include <filesystem>

namespace tarn {
namespace {

class ProjList : public IdeTest {
protected:
    // The items of dependencies, each a path below the folder of the test.
    std::vector<ProjectItem> list(const std::vector<std::string>& names, ProjectView view = {}) {
        std::string files;
        for (const std::string& name : names)
            files += (name[0] == '/' || name[0] == '<' || name[0] == '{' ? "" : dir) + name + "\n";
        std::vector<ProjectItem> items;
        for (const std::string& line : MAKEPROJECTLIST(view, dir + "main.cls", files))
            items.push_back(PARSEPROJECTITEM(line));
        return items;
    }
    static std::string titles(const std::vector<ProjectItem>& items) {
        std::string text;
        for (const ProjectItem& item : items)
            text += std::string(item.level == 2 ? " " : "") + item.title + "|";
        for (char& c : text)
            if (c == BOLD_MARK) c = '*';
        return text;
    }
    static std::string pictures(const std::vector<ProjectItem>& items) {
        std::string text;
        for (const ProjectItem& item : items)
            text += item.picture + (item.openPicture.empty() ? "" : ">" + item.openPicture) + " ";
        return text;
    }
    void setLibrary(const std::string& folder) { PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit1", folder); }
    static std::string dialog(const std::string& name) {
        return name + " DIALOG\n  POSITION=0 0 10 10\n  CAPTION=\"x\"\nEND\n\n";
    }
};

constexpr const char* Class = "Tarnwick Class X\nEnd class\n";

// ---- items as text ----

TEST_F(ProjList, AnItemIsALevelAndSixFieldsInQuotes) {
    std::vector<std::string> items{"before"};
    ADDPROJECTITEM({1, "Class <B>A</B>", "Class", "A", "/d/a.cls", "2026-01-01 00:00:00", "class0.bmp", ""},
                   items);
    ADDPROJECTITEM({2, "t", "DIALOG", "n", "f", "d", "p", "o"}, items);
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[1], R"(1 "Class <B>A</B>" "Class" "A" "/d/a.cls" "2026-01-01 00:00:00" "class0.bmp")");
    EXPECT_EQ(items[2], R"(2 "t" "DIALOG" "n" "f" "d" "p" "o")");
}

TEST_F(ProjList, ReadingTakesQuotesOffAndMakesMarksOfTheBoldWords) {
    const ProjectItem item = PARSEPROJECTITEM(R"(2  "x <b>y</B> <B>z</b>" DIALOG "n m" "" "d" "p" "o")");
    EXPECT_EQ(item.level, 2);
    EXPECT_EQ(item.title, "x \2y\2 \2z\2");
    EXPECT_EQ(item.type, "DIALOG");
    EXPECT_EQ(item.name, "n m");
    EXPECT_EQ(item.file, "");
    EXPECT_EQ(item.date, "d");
    EXPECT_EQ(item.picture, "p");
    EXPECT_EQ(item.openPicture, "o");
}

TEST_F(ProjList, FieldsThatAreNotThereAreEmpty) {
    EXPECT_EQ(PARSEPROJECTITEM("").level, 0);
    EXPECT_EQ(PARSEPROJECTITEM("").title, "");
    EXPECT_EQ(PARSEPROJECTITEM("x \"y\"").level, 0);
    const ProjectItem item = PARSEPROJECTITEM("1 \"a\" \"b\"");
    EXPECT_EQ(item.type, "b");
    EXPECT_EQ(item.name + item.file + item.date + item.picture + item.openPicture, "");
    EXPECT_EQ(PARSEPROJECTITEM("1 \"").title, "");
    EXPECT_EQ(PARSEPROJECTITEM("1 \"\"").title, "");
}

TEST_F(ProjList, AnyNameSurvivesTheText) {
    for (const std::string& name : std::vector<std::string>{"a b", "a\"b", "\"", "\"\"", "\xC3\xA4\xFF",
                                                            "a\\b", "a'b", "$(x)", "<I>", "a,b;c"}) {
        std::vector<std::string> items;
        ADDPROJECTITEM({1, name, name, name, "/" + name, name, name, name}, items);
        const ProjectItem item = PARSEPROJECTITEM(items[0]);
        for (const std::string& field :
             {item.title, item.type, item.name, item.date, item.picture, item.openPicture})
            EXPECT_EQ(field, name);
        EXPECT_EQ(item.file, "/" + name);
    }
}

// ---- classes ----

TEST_F(ProjList, AClassIsOneTopItem) {
    write("main.cls", Class);
    const std::string file = write("hello world.CLS", Class);
    const auto items = list({"main.cls", "hello world.CLS"});
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(titles(items), "Main Class *Main*|Class *Hello World*|");
    EXPECT_EQ(items[1].level, 1);
    EXPECT_EQ(items[1].type, "Class");
    EXPECT_EQ(items[1].name, "Hello World");
    EXPECT_EQ(items[1].file, file);
    EXPECT_EQ(items[1].date, FILETIME(file));
    EXPECT_EQ(pictures(items), "class0.bmp class0.bmp ");
}

TEST_F(ProjList, TheOrderIsThatOfTheDependencies) {
    for (const char* name : {"main.cls", "b.cls", "a.cls"}) write(name, Class);
    EXPECT_EQ(titles(list({"b.cls", "main.cls", "a.cls"})), "Class *B*|Main Class *Main*|Class *A*|");
}

TEST_F(ProjList, PathsWinOverFiles) {
    write("main.cls", Class);
    const struct {
        bool files, paths;
        std::string suffix;
    } cases[] = {{false, false, ""},
                 {true, false, " (main.cls)"},
                 {false, true, " (" + dir + "main.cls)"},
                 {true, true, " (" + dir + "main.cls)"}};
    for (const auto& c : cases)
        EXPECT_EQ(titles(list({"main.cls"}, {false, c.files, c.paths})),
                  "Main Class *Main*" + c.suffix + "|");
}

TEST_F(ProjList, OtherExtensionsGiveNoItem) {
    for (const char* name : {"a.bmp", "b.txt", "c", "d.cls2"}) write(name, "x");
    EXPECT_TRUE(list({"a.bmp", "b.txt", "c", "d.cls2"}).empty());
}

TEST_F(ProjList, LibraryClassesStayOutOfTheList) {
    std::filesystem::create_directories(dir + "lib/deep/er");
    for (const char* name : {"main.cls", "lib/a.cls", "lib/deep/b.cls", "lib/deep/er/c.cls", "lib/w.rc"})
        write(name, Class);
    const std::vector<std::string> all{"main.cls", "lib/a.cls", "lib/deep/b.cls", "lib/deep/er/c.cls",
                                       "lib/w.rc"};
    setLibrary(dir + "lib;" + dir);
    EXPECT_EQ(titles(list(all)), "Main Class *Main*|Class *C*|") << "its folder and the ones in that";
    setLibrary(dir + "lib/");
    EXPECT_EQ(titles(list(all)), "Main Class *Main*|Class *C*|");
    EXPECT_EQ(list(all, {true, false, false}).size(), 5u) << "unless they are wanted";
    setLibrary("");
    EXPECT_EQ(list(all).size(), 5u);
}

TEST_F(ProjList, TheMainClassIsAlwaysShown) {
    write("main.cls", Class);
    write("main.rc", "");
    write("a.cls", Class);
    setLibrary(dir);
    EXPECT_EQ(titles(list({"main.cls", "main.rc", "a.cls"})), "Main Class *Main*|Dialogs|")
        << "and what has its path and stem";
    EXPECT_EQ(titles([this] {
                  std::vector<ProjectItem> items;
                  for (const std::string& line :
                       MAKEPROJECTLIST({}, STRUPPER(dir) + "MAIN.CLS", dir + "main.cls\n"))
                      items.push_back(PARSEPROJECTITEM(line));
                  return items;
              }()),
              "Main Class *Main*|")
        << "in any case";
}

// ---- resources ----

TEST_F(ProjList, AResourceFileWithoutDialogsHasARowForThem) {
    write("a.rc", "");
    const auto items = list({"a.rc"}, {false, true, false});
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(titles(items), "Dialogs (a.rc)|");
    EXPECT_EQ(items[0].type, "DIALOG");
    EXPECT_EQ(items[0].name, "A");
    EXPECT_EQ(pictures(items), "resource0.bmp ");
}

TEST_F(ProjList, DialogsStandUnderTheirGroup) {
    write("a.rc", dialog("First") + dialog("Second"));
    const auto items = list({"a.rc"}, {false, false, true});
    EXPECT_EQ(titles(items), "Dialogs (" + dir + "a.rc)| DIALOG *First*| DIALOG *Second*|");
    EXPECT_EQ(pictures(items), "resource1.bmp>resource2.bmp resource3.bmp resource4.bmp ");
    EXPECT_EQ(items[2].type, "DIALOG");
    EXPECT_EQ(items[2].name, "Second");
    EXPECT_EQ(items[2].file, dir + "a.rc");
}

TEST_F(ProjList, VersionBlocksAreTopItems) {
    write("a.rc", "One VERSIONINFO\nFILEVERSION 1,0,0,0\nBEGIN\nEND\n\nTwo VERSIONINFO\nFILEVERSION "
                  "2,0,0,0\nBEGIN\nEND\n");
    const auto items = list({"a.rc"}, {false, true, false});
    EXPECT_EQ(titles(items), "Dialogs (a.rc)|VERSIONINFO *One*|VERSIONINFO *Two*|");
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[1].level, 1);
    EXPECT_EQ(items[1].type, "VERSIONINFO");
    EXPECT_EQ(items[1].file, dir + "a.rc");
    EXPECT_EQ(items[1].picture, "versioninfo0.bmp");
}

TEST_F(ProjList, FilesOfAResourceFileStandInGroups) {
    std::filesystem::create_directories(dir + "pics");
    const std::string text = write("note.txt", "x"), picture = write("pics/p.bmp", "x");
    write("a.rc", "note INCFILE \"note.txt\"\nPic BITMAP FIXED \"pics\\\\p.bmp\"\nPic2 BITMAP \"" + dir +
                      "pics/p.bmp\"\ndata DBFILE FIXED \"d.xml\"\n");
    const auto items = list({"a.rc"}, {false, true, false});
    EXPECT_EQ(titles(items), "Dialogs (a.rc)|Included files (a.rc)| INCFILE *note* (note.txt)|"
                             "Included bitmaps (a.rc)| BITMAP *Pic* (p.bmp)| BITMAP *Pic2* (p.bmp)|"
                             "Database (a.rc)| Table *data* (d.xml)|");
    EXPECT_EQ(pictures(items),
              "resource0.bmp file1.bmp>file2.bmp file4.bmp file1.bmp>file2.bmp file3.bmp file4.bmp "
              "database1.bmp>database2.bmp database4.bmp ");
    ASSERT_EQ(items.size(), 8u);
    EXPECT_EQ(items[2].type, "INCFILE");
    EXPECT_EQ(items[2].file, text);
    EXPECT_EQ(items[2].date, FILETIME(text));
    EXPECT_EQ(items[2].name, "note");
    EXPECT_EQ(items[4].file, picture);
    EXPECT_EQ(items[5].file, picture);
    EXPECT_EQ(items[1].type, "INCFILE");
    EXPECT_EQ(items[3].type, "BITMAP");
    EXPECT_EQ(items[6].type, "DBFILE");
    EXPECT_EQ(items[7].file, dir + "d.xml") << "a file that is missing is shown all the same";
    EXPECT_EQ(items[7].date, "");
    EXPECT_EQ(titles({items[1]}), "Included files (a.rc)|");
    EXPECT_EQ(titles(list({"a.rc"}, {false, false, true})).substr(0, 9), "Dialogs (");
}

TEST_F(ProjList, TwoHundredAndFiftyFiveDialogsOfOneFile) {
    std::string text;
    for (int n = 1; n <= 255; ++n) text += dialog("Dlg" + STR(n));
    write("a.rc", text);
    const auto items = list({"a.rc"});
    ASSERT_EQ(items.size(), 256u);
    EXPECT_EQ(items[254].picture, "resource3.bmp");
    EXPECT_EQ(items[255].picture, "resource4.bmp");
    EXPECT_EQ(items[255].name, "Dlg255");
}

TEST_F(ProjList, PlaceholdersStandForTheirFolders) {
    std::filesystem::create_directories(dir + "res");
    std::filesystem::create_directories(dir + "comp");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit5", dir + "res");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", dir + "comp");
    write("res/a.cls", Class);
    write("comp/b.cls", Class);
    EXPECT_EQ(titles(list({"<RESOURCEDIR>\\a.cls", "{RESOURCEDIR}\\a.cls", "<COMPILERDIR>\\b.cls",
                           "{COMPILERDIR}\\b.cls"})),
              "Class *A*|Class *A*|Class *B*|Class *B*|");
    write("x.rc", "p BITMAP \"<RESOURCEDIR>\\\\p.bmp\"\n");
    EXPECT_EQ(list({"x.rc"}).back().file, dir + "res/p.bmp");
}

TEST_F(ProjList, APathThatIsNoneIsABrokenPromise) {
    write("a.cls", Class);
    std::filesystem::current_path(dir);
    for (const std::string& file : {dir + "gone.cls", std::string("a.cls")}) {
        answers = {"Continue"};
        EXPECT_EQ(titles(list({"a.cls"})), "Class *A*|");
        EXPECT_TRUE(MAKEPROJECTLIST({}, dir + "main.cls", file + "\n").empty());
        EXPECT_NE(lastText().find("'" + file +
                                  "' should be a fully qualified name.\nCheck the paths in the resource "
                                  "file are correct."),
                  std::string::npos)
            << lastText();
    }
}

TEST_F(ProjList, OddPathsComeThrough) {
    std::filesystem::create_directories(dir + "a b \xC3\xA4 'q' \"d\"");
    const std::string name = "a b \xC3\xA4 'q' \"d\"/x \xFF.cls";
    write(name, Class);
    const auto items = list({name}, {false, false, true});
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].file, dir + name);
    EXPECT_EQ(items[0].date, FILETIME(dir + name));
}

TEST_F(ProjList, AClassInThreeFoldersIsThreeItems) {
    for (const char* folder : {"one/", "two/", "three/"}) {
        std::filesystem::create_directories(dir + folder);
        write(std::string(folder) + "shapes.cls", Class);
    }
    const auto items = list({"one/shapes.cls", "two/shapes.cls", "three/shapes.cls"});
    EXPECT_EQ(titles(items), "Class *Shapes*|Class *Shapes*|Class *Shapes*|");
    EXPECT_EQ(items[2].file, dir + "three/shapes.cls");
}

// ---- the main file ----

TEST_F(ProjList, TheMainFileIsFoundAmongTheTopItems) {
    std::vector<std::string> items;
    ADDPROJECTITEM({1, "", "Class", "", "/a.cls", "", "", ""}, items);
    ADDPROJECTITEM({1, "", "DIALOG", "", "/a.rc", "", "", ""}, items);
    ADDPROJECTITEM({2, "", "DIALOG", "", "/b.cls", "", "", ""}, items);
    ADDPROJECTITEM({1, "", "Class", "", "/B.cls", "", "", ""}, items);
    ADDPROJECTITEM({1, "", "Class", "", "/b.cls", "", "", ""}, items);
    EXPECT_EQ(FINDMAINFILE(items, "/b.CLS"), (ProjectPlace{3, 0})) << "the first one, in any case";
    EXPECT_EQ(FINDMAINFILE(items, "/gone.cls"), (ProjectPlace{1, 0}));
    EXPECT_EQ(FINDMAINFILE({}, "/a.cls"), (ProjectPlace{1, 0}));
}

// ---- settings and folders ----

TEST_F(ProjList, TheViewIsReadFromTheSettings) {
    const auto set = [this](const char* key, const char* value) {
        PROFILESTRPUT(ini(), "GenOptionsDlg", key, value);
    };
    set("ShowClasses", "1");
    set("ShowFiles", "01");
    set("ShowPaths", "yes");
    ProjectView view = GETPROJECTVIEW();
    EXPECT_TRUE(view.classes);
    EXPECT_FALSE(view.files);
    EXPECT_FALSE(view.paths);
    set("ShowPaths", "1");
    EXPECT_TRUE(GETPROJECTVIEW().paths);
}

TEST_F(ProjList, AFileIsFoundInTheFoldersThatHoldIt) {
    for (const char* folder : {"one", "two", "three"}) std::filesystem::create_directories(dir + folder);
    write("one/a.cls", Class);
    write("three/a.cls", Class);
    const std::string folders = dir + "one\n" + dir + "two/\n\n" + dir + "gone\n" + dir + "three/";
    EXPECT_EQ(FOLDERLISTFINDFILE(folders, "/else/where/a.cls"), dir + "one/a.cls\n" + dir + "three/a.cls\n");
    EXPECT_EQ(FOLDERLISTFINDFILE(folders, "b.cls"), "");
    write("two/B.Cls", Class);
    EXPECT_EQ(FOLDERLISTFINDFILE(folders, "b.cls"), dir + "two/B.Cls\n") << "in any case";
    EXPECT_EQ(FOLDERLISTFINDFILE("", "a.cls"), "");
    EXPECT_EQ(FOLDERLISTFINDFILE(folders, ""), "");
}

TEST_F(ProjList, ALibraryFileHasTheNameOfOneOfItsClasses) {
    std::filesystem::create_directories(dir + "lib");
    write("lib/Tools.cls", Class);
    write("lib/only.rc", "");
    setLibrary(dir + "lib;" + dir);
    EXPECT_TRUE(ISLIBRARYFILE("/any/tools.cls"));
    EXPECT_TRUE(ISLIBRARYFILE("tools.rc")) << "by its name alone";
    EXPECT_FALSE(ISLIBRARYFILE("only.cls"));
    EXPECT_FALSE(ISLIBRARYFILE(""));
    setLibrary(dir + "gone");
    EXPECT_FALSE(ISLIBRARYFILE("tools.cls"));
    setLibrary("");
    EXPECT_FALSE(ISLIBRARYFILE("tools.cls"));
}

TEST_F(ProjList, ThreeHundredClasses) {
    std::vector<std::string> names;
    for (int n = 0; n < 300; ++n) {
        names.push_back("c" + STR(n) + ".cls");
        write(names.back(), Class);
    }
    EXPECT_EQ(list(names).size(), 300u);
}

TEST_F(ProjList, AllResourcesOfAFileHoweverManyTheyAre) {
    std::string text;
    for (int n = 1; n <= 3000; ++n)
        text += "picture" + STR(n) + " BITMAP \"" + std::string(40, 'p') + ".bmp\"\n";
    write("main.rc", text);
    const std::vector<ProjectItem> items = list({"main.rc"});
    ASSERT_EQ(items.size(), 3002u) << "two groups, and the members of one";
    EXPECT_EQ(items.back().name, "picture3000");
    EXPECT_EQ(items.back().picture, "file4.bmp");
}

}  // namespace
}  // namespace tarn
