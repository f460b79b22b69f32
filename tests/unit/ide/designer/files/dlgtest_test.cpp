// SPDX-License-Identifier: GPL-3.0-or-later
//
// Dialogs in files: the round trip, what makes a copied dialog fit, and joined texts.
#include "ide/designer/files/dlgtest.h"

#include "kernel/windows/resources.h"
#include "library/designer/proputil.h"
#include "support/ide_fixture.h"
#include "support/steerable.h"

#include <filesystem>

namespace tarn {
namespace {

const std::string Simple = "// mine\nD DIALOG\n  CAPTION=\"One\"\n  POSITION=0 0 100 80\n"
                           "  Pushbutton idok 101 // well\n    POSITION=8 8 52 16\nEND\n";
const std::string WithMenu =
    "D DIALOG\n  MENU=M\n  POSITION=0 0 100 80\nEND\n"
    "M MENU\n  Menuitem\n    POSITION=1\n    CAPTION=\"&File\"\n"
    "  Menuitem file_open 31\n    POSITION=2\n    PICTURE=\"<RESOURCEDIR>\\\\open.bmp\"\nEND\n";

class DialogFiles : public IdeTest {
protected:
    std::string rc;

    void SetUp() override {
        IdeTest::SetUp();
        std::filesystem::create_directory(dir + "rc");
        rc = dir + "rc/a.rc";
        loadWindows();
    }
    void TearDown() override {
        EXPECT_FALSE(IsLoaded(TestDlg));
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }
    void make(const std::string& text) { write("rc/a.rc", text); }
    std::string text() { return read(rc); }
    // What stands in the folder of the resource file.
    std::vector<std::string> files() {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(dir + "rc"))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    static std::string replaced(std::string text, const std::string& what, const std::string& with) {
        const std::size_t at = text.find(what);
        EXPECT_NE(at, std::string::npos) << what;
        return at == std::string::npos ? text : text.replace(at, what.size(), with);
    }
    const std::vector<std::string> alone = {"a.rc"};
};

// ---- what differs ----

TEST_F(DialogFiles, TheFirstPropertyThatDiffersIsNamed) {
    const struct {
        const char *list1, *list2, *text;
    } cases[] = {
        {"", "", ""},
        {"NAME=a\nTEXT=1\n", "NAME=a\nTEXT=1\n", ""},
        {"NAME=a\nTEXT=1\n", "NAME=a\nTEXT=1", ""},
        {"NAME=a\nTEXT=1\n", "NAME=a\nTEXT=2\n", "Property TEXT"},
        {"NAME=a\nPOSITION=1 2 3 4\nTEXT=1\n", "NAME=a\nPOSITION=1 2 3 5\nTEXT=2\n", "Property POSITION"},
        {"NAME=a\nTEXT=1\n", "NAME=a\nVALUE=1\n", "Property TEXT or VALUE is missing from one of the lists"},
        {"NAME=a\nTEXT=1\n", "NAME=a\n", "Property TEXT is missing from one of the lists"},
        {"NAME=a\n", "NAME=a\nVALUE=1\n", "Property VALUE is missing from one of the lists"},
        {"", "VALUE=1\n", "Property VALUE is missing from one of the lists"},
    };
    for (const auto& one : cases) EXPECT_EQ(FINDDIFFERENCE(one.list1, one.list2), one.text) << one.list1;
}

TEST_F(DialogFiles, ObjectsThatDifferAreNamedByNumberNameAndType) {
    DialogObjects before, after;
    before.dialog[0] = "NAME=D\nTYPEOF=Dialog\n";
    before.dialog[1] = "NAME=ok\nTYPEOF=Pushbutton\nCAPTION=\"a\"\n";
    before.menu[0] = "NAME=M\nTYPEOF=Menuitem\n";
    before.menu[1] = "NAME=open\nTYPEOF=Menuitem\nCHECKED=0\n";
    after = before;
    EXPECT_EQ(COMPAREOBJECTS(before, after), "");
    after.dialog[1] = "NAME=ok\nTYPEOF=Pushbutton\nCAPTION=\"b\"\n";
    EXPECT_EQ(
        COMPAREOBJECTS(before, after),
        "Visual object 1 (ok of type Pushbutton) had different properties when reloaded (Property CAPTION)");
    after = before;
    after.menu[1] = "NAME=open\nTYPEOF=Menuitem\n";
    EXPECT_EQ(COMPAREOBJECTS(before, after),
              "Menu item object 1 (open of type Menuitem) had different properties when reloaded (Property "
              "CHECKED is "
              "missing from one of the lists)");
    after.menu[1].clear();
    EXPECT_EQ(COMPAREOBJECTS(before, after),
              "Menu contained a different number of Visual objects when reloaded");
    after.dialog[2] = before.dialog[1];
    EXPECT_EQ(COMPAREOBJECTS(before, after),
              "Dialog contained a different number of Visual objects when reloaded");
}

// ---- what a file holds ----

TEST_F(DialogFiles, AResourceIsInAFileIfItHasALineAndNoFault) {
    make(WithMenu + "Bad DIALOG\n  Nonsense\nEND\n");
    const struct {
        const char *kind, *name;
        bool there;
    } cases[] = {{"DIALOG", "D", true},  {"dialog", "d", true},   {"MENU", "M", true},
                 {"DIALOG", "M", false}, {"MENU", "D", false},    {"DIALOG", "x", false},
                 {"*", "M", true},       {"DIALOG", "Bad", false}};
    for (const auto& one : cases)
        EXPECT_EQ(ISINRESOURCEFILE(rc, one.kind, one.name), one.there) << one.kind << " " << one.name;
    EXPECT_FALSE(ISINRESOURCEFILE(dir + "none.rc", "DIALOG", "D"));
}

// ---- the round trip ----

TEST_F(DialogFiles, ADialogSurvivesAndItsFileIsNotTouched) {
    for (const std::string& one : {Simple, WithMenu, replaced(Simple, "One", "a\\\"b\\n\\0\\xff"),
                                   replaced(Simple, "END", "  Label\n  Label -1\nEND")}) {
        make(one);
        const auto before = os::infoOf(rc);
        const PropertyTest test = TESTPROPERTIES(rc, "D");
        EXPECT_EQ(test.error, "");
        EXPECT_EQ(test.scratchFile, "");
        EXPECT_EQ(text(), one);
        EXPECT_EQ(os::infoOf(rc).inode, before.inode);
        EXPECT_EQ(os::infoOf(rc).modified, before.modified);
        EXPECT_EQ(files(), alone);
    }
}

TEST_F(DialogFiles, TheFileThatIsKeptHoldsTheDialogUnderTheNameOfTests) {
    make(replaced(WithMenu, "MENU=M", "MENU=M\n  OWNER=1"));
    const PropertyTest test = TESTPROPERTIES(rc, "D", true);
    EXPECT_EQ(test.error, "");
    EXPECT_EQ(test.scratchFile, dir + "rc/~dlgtest1.tmp");
    ObjectArray objects;
    EXPECT_EQ(ResourceRead(test.scratchFile, "TestDlg", objects), "");
    EXPECT_EQ(GETPROPVALUE(objects[0], "NAME"), "TestDlg");
    EXPECT_EQ(GETPROPVALUE(objects[0], "OWNER"), "0");
    EXPECT_TRUE(ISINRESOURCEFILE(test.scratchFile, "MENU", "M"));
    EXPECT_EQ(TESTPROPERTIES(rc, "D", true).scratchFile, dir + "rc/~dlgtest2.tmp");
}

TEST_F(DialogFiles, ADialogWithTheNameOfTestsKeepsItAsItIsWritten) {
    make(replaced(Simple, "D DIALOG", "testdlg DIALOG"));
    const PropertyTest test = TESTPROPERTIES(rc, "testdlg", true);
    EXPECT_EQ(test.error, "");
    EXPECT_TRUE(read(test.scratchFile).starts_with("testdlg DIALOG")) << read(test.scratchFile);
}

TEST_F(DialogFiles, AMenuWithTheNameOfTestsIsNoFault) {
    make(replaced(replaced(WithMenu, "MENU=M", "MENU=testdlg"), "M MENU", "TestDlg MENU"));
    EXPECT_EQ(TESTPROPERTIES(rc, "D").error, "");
    EXPECT_EQ(files(), alone);
}

TEST_F(DialogFiles, WhatIsWrongIsTold) {
    const struct {
        std::string text, error;
    } cases[] = {
        {"", "'D' was not found in '" + rc + "'."},
        {"D DIALOG\n  MENU=M\nEND\n", "'M' was not found in '" + rc + "'."},
        {"D DIALOG\n  Label 17\n  Edit 18\n  Label -1\nEND\n",
         "The following controls were defined using integer values:\n17\n18\n\n"},
        {"D DIALOG\n  Label one\n  Pushbutton IDOK\n  Edit two\n  Label three 9\nEND\n",
         "The following controls have no #define statement:\none\ntwo\n\n"},
        {"#define one 5\nD DIALOG\n  Label 17\n  Label one\n  Label two\nEND\n",
         "The following controls were defined using integer values:\n17\n\n"
         "The following controls have no #define statement:\ntwo\n\n"},
    };
    for (const auto& one : cases) {
        make(one.text);
        EXPECT_EQ(TESTPROPERTIES(rc, "D").error, one.error);
        EXPECT_EQ(files(), alone);
    }
}

TEST_F(DialogFiles, AWindowThatCannotBeLoadedIsTold) {
    make("D DIALOG\n  Label one 5\n    ODD=1\nEND\n");
    EXPECT_EQ(TESTPROPERTIES(rc, "D").error,
              "'" + dir + "rc/~dlgtest1.tmp', line 4: A Label has no property ODD.");
    EXPECT_EQ(files(), alone);
}

TEST_F(DialogFiles, TheFirstDialogOfAFileThatFailsIsNamed) {
    make(Simple + "E DIALOG\n  Label 17\nEND\nF DIALOG\n  Label 18\nEND\n");
    EXPECT_EQ(TESTFILEPROPERTIES(rc),
              "(Dialog E) The following controls were defined using integer values:\n17\n\n");
    make(Simple + WithMenu.substr(WithMenu.find("M MENU")));
    EXPECT_EQ(TESTFILEPROPERTIES(rc), "");
    make("");
    EXPECT_EQ(TESTFILEPROPERTIES(rc), "");
    make(std::string("a\0b", 3));
    EXPECT_NE(TESTFILEPROPERTIES(rc), "");
}

TEST_F(DialogFiles, WhatAKilledTestHasLeftGoesAfterAnHour) {
    make(Simple);
    const std::string old = write("rc/~dlgtest3.tmp", "old"), young = write("rc/~dlgtest7.tmp", "young");
    write("rc/~dlgtest.tmp", "another");
    const std::int64_t now = os::infoOf(young).modified;
    ASSERT_EQ(os::files().setModified(old, now - 3'601'000'000'000), os::FileError::None);
    EXPECT_EQ(TESTPROPERTIES(rc, "D").error, "");
    EXPECT_EQ(files(), (std::vector<std::string>{"a.rc", "~dlgtest.tmp", "~dlgtest7.tmp"}));
}

TEST_F(DialogFiles, AFolderThatTakesNoFileIsTold) {
    os::SteeredFiles disk;
    disk.put("/ro/a.rc", Simple);
    disk.putFolder("/ro", 0555);
    os::FileSystem* const before = os::useFiles(&disk);
    const std::string error = TESTPROPERTIES("/ro/a.rc", "D").error;
    os::useFiles(before);
    EXPECT_TRUE(error.starts_with("No file can be made in the folder '/ro/'. ")) << error;
    EXPECT_TRUE(error.ends_with(
        "\nA test writes the dialog into a file of its own there, and deletes it afterwards."))
        << error;
}

TEST_F(DialogFiles, AFullDiskAtAnyCallLeavesNoFileAndTheSourceWhole) {
    for (int call = 1;; ++call) {
        os::SteeredFiles disk;
        disk.put("/home/user/a.rc", Simple);
        os::FileSystem* const before = os::useFiles(&disk);
        disk.failAt(os::FileCall::Write, call, os::FileError::DiskFull);
        const std::string error = TESTPROPERTIES("/home/user/a.rc", "D").error;
        disk.stopFailing();
        std::vector<std::string> names;
        disk.list("/home/user", names);
        os::useFiles(before);
        EXPECT_EQ(disk.contents("/home/user/a.rc"), Simple);
        EXPECT_EQ(names, alone) << call;
        if (error.empty()) {
            EXPECT_GT(call, 1);
            return;
        }
    }
}

TEST_F(DialogFiles, AllOfTheEnvironmentPass) {
    int count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SOURCE_DIR "/src")) {
        if (entry.path().extension() != ".rc") continue;
        ++count;
        std::filesystem::copy_file(entry.path(), rc, std::filesystem::copy_options::overwrite_existing);
        EXPECT_EQ(TESTFILEPROPERTIES(rc), "") << entry.path();
    }
    EXPECT_GT(count, 5);
    EXPECT_EQ(files(), alone);
}

// ---- a new home ----

TEST_F(DialogFiles, AnOwnerIsTakenAwayAndNothingElse) {
    make(replaced(Simple, "  POSITION=0 0 100 80", "  OWNER=1   // above\n  POSITION=0 0 100 80"));
    const std::string before = text();
    EXPECT_EQ(FIXPROPERTY_OWNER(rc, "D"), "");
    EXPECT_EQ(text(), replaced(before, "OWNER=1", "OWNER=0"));
    const auto info = os::infoOf(rc);
    EXPECT_EQ(FIXPROPERTY_OWNER(rc, "D"), "");
    EXPECT_EQ(os::infoOf(rc).inode, info.inode);
    EXPECT_EQ(FIXPROPERTY_OWNER(rc, "X"), "'X' was not found in '" + rc + "'.");
}

TEST_F(DialogFiles, AWindowOffTheScreenIsMovedToItsMiddle) {
    const Rect screen = ScreenSize();
    const int w = (screen.w * 4 + 3) / 6, h = (screen.h * 8 + 7) / 13;  // of letters of 6 x 13
    const auto at = [](int x, int y, int width, int height) {
        return std::to_string(x) + " " + std::to_string(y) + " " + std::to_string(width) + " " +
               std::to_string(height);
    };
    const struct {
        std::string before, after;
    } cases[] = {
        {at(0, 0, 100, 80), ""},
        {at(w - 40, h - 40, 100, 80), ""},
        {at(w - 39, 0, 100, 80), at((w - 100) / 2, (h - 80) / 2, 100, 80)},
        {at(0, h - 39, 100, 80), at((w - 100) / 2, (h - 80) / 2, 100, 80)},
        {at(w + 500, 1, 2 * w, 2 * h), at(40, 40, 2 * w, 2 * h)},
        {at(-32768, -32768, 100, 80), ""},
        {at(32767, 32767, 100, 80), at((w - 100) / 2, (h - 80) / 2, 100, 80)},
    };
    for (const auto& one : cases) {
        make(replaced(Simple, "0 0 100 80", one.before));
        asked.clear();
        EXPECT_EQ(FIXPROPERTY_POSITION(rc, "D"), "");
        EXPECT_EQ(text(), replaced(Simple, "0 0 100 80", one.after.empty() ? one.before : one.after));
        EXPECT_EQ(lastText(), one.after.empty()
                                  ? ""
                                  : "The window is off the edge of the screen (Position = " + one.before +
                                        ")\nIt will be moved back on the screen to make it visible.\n");
    }
}

TEST_F(DialogFiles, PlaceholdersOfPicturesAreResolved) {
    make("D DIALOG\n  MENU=M\n  Image a 1\n    PICTURE=\"<RESOURCEDIR>\\\\a.bmp\"\n  Icon b 2\n"
         "    PICTURE=\"<COMPILERDIR>/b.ico\"\n  Image c 3\n    PICTURE=\"plain.bmp\"\n  Label d 4\n"
         "    CAPTION=\"<RESOURCEDIR>\\\\not\"\n  Image e 5\n    PICTURE=\"odd<.bmp\"\nEND\n" +
         WithMenu.substr(WithMenu.find("M MENU")));
    const std::string before = text();
    EXPECT_EQ(FIXPROPERTY_PICTURE(rc, "D", "/res", "/comp/"), "");
    std::string after = replaced(before, "<RESOURCEDIR>\\\\a", "/res/a");
    after = replaced(after, "<COMPILERDIR>/b", "/comp/b");
    EXPECT_EQ(text(), replaced(after, "<RESOURCEDIR>\\\\open", "/res/open"));
    const auto info = os::infoOf(rc);
    EXPECT_EQ(FIXPROPERTY_PICTURE(rc, "D", "/res", "/comp/"), "");
    EXPECT_EQ(os::infoOf(rc).inode, info.inode);
}

TEST_F(DialogFiles, AMenuWhoseNameIsTakenGetsTheNextFreeOne) {
    const auto renamed = [&](const std::string& name) {
        return replaced(replaced(WithMenu, "MENU=M", "MENU=" + name), "M MENU", name + " MENU");
    };
    const struct {
        std::string names, name;
    } cases[] = {{"", "M"},
                 {"Menu1\nMM\n", "M"},
                 {"m\n", "D_Menu1"},
                 {"M", "D_Menu1"},
                 {"M MENU\nD_MENU1 MENU\nD_Menu2 MENU\n", "D_Menu3"}};
    for (const auto& one : cases) {
        make(WithMenu);
        EXPECT_EQ(FIXPROPERTY_MENU(rc, "D", one.names), "");
        EXPECT_EQ(text(), one.name == "M" ? WithMenu : renamed(one.name));
    }
    make(Simple);
    EXPECT_EQ(FIXPROPERTY_MENU(rc, "D", "M\n"), "");
    EXPECT_EQ(text(), Simple);
}

TEST_F(DialogFiles, AMenuThatAnotherDialogShowsTooStaysForThat) {
    const std::string other = "E DIALOG\n  MENU=M\nEND\n";
    make(WithMenu + other);
    EXPECT_EQ(FIXPROPERTY_MENU(rc, "D", "M\n"), "");
    ObjectArray objects;
    ResourceRead(rc, "D", objects);
    EXPECT_EQ(GETPROPVALUE(objects[0], "MENU"), "D_Menu1");
    EXPECT_EQ(ResourceRead(rc, "D_Menu1", objects), "");
    EXPECT_EQ(GETPROPVALUE(objects[2], "NAME"), "file_open");
    EXPECT_TRUE(ISINRESOURCEFILE(rc, "MENU", "M"));
    EXPECT_NE(text().find(other), std::string::npos);
}

TEST_F(DialogFiles, AMenuWithoutAFreeNameStays) {
    std::string names = "M\n";
    for (int i = 1; i <= 10000; ++i) names += "D_Menu" + std::to_string(i) + "\n";
    make(WithMenu);
    EXPECT_EQ(FIXPROPERTY_MENU(rc, "D", names), "");
    EXPECT_EQ(text(), WithMenu);
}

// ---- joined texts ----

TEST_F(DialogFiles, TextsAreJoinedByTheLineEndsOfTheSource) {
    const std::string a = "A DIALOG\n  CAPTION=\"a\"\nEND\n", b = "B DIALOG\n  CAPTION=\"b\"\nEND\n";
    const auto crlf = [](std::string text) {
        for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
            text.insert(at, "\r");
        return text;
    };
    const struct {
        std::string target, source, text;
    } cases[] = {
        {a, b, a + "\n" + b + "\n"},
        {"\n  " + a + " \n\n", "\t" + b + "  \n", a + "\n" + b + "\n"},
        {crlf(a), crlf(b), crlf(a + "\n" + b + "\n")},
        {"", b, "\n\n" + b + "\n"},
        {a, "\xef\xbb\xbf" + b, a + "\n" + b + "\n"},
        {a, "// words alone\n", a + "\n// words alone\n\n"},
        {std::string("\0", 1), b, std::string("\0\n\n", 3) + b + "\n"},
    };
    for (const auto& one : cases)
        for (const bool fromFirst : {false, true})
            EXPECT_EQ(DIALOGMERGERCTEXT(one.target, one.source, fromFirst), one.text) << one.source;
}

}  // namespace
}  // namespace tarn
