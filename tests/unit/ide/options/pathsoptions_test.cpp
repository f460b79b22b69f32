// SPDX-License-Identifier: GPL-3.0-or-later
//
// The paths of the environment, its general options and its font, on the object model alone.
#include "ide/options/pathsoptions.h"

#include "ide/build/compiler.h"
#include "ide/menus/toolmenu.h"
#include "ide/options/fonts.h"
#include "support/ide_fixture.h"

#include <algorithm>
#include <functional>

namespace tarn {
namespace {

class PathsOptions : public IdeTest {
protected:
    static Object in(std::string_view control) { return FINDCONTROL(PathsOptionsDlg, control); }
    void SetUp() override {
        IdeTest::SetUp();
        REGISTERWINDOWS();
        for (const char* key : {"Edit1", "Edit2", "Edit3", "Edit4", "Edit5"}) setIni(key, dir);
    }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }
    void load() {
        Load(PathsOptionsDlg);
        ASSERT_TRUE(IsLoaded(PathsOptionsDlg)) << ErrorDetails();
        Show(PathsOptionsDlg, false);
    }
    void setIni(std::string_view key, std::string_view value) {
        PROFILESTRPUT(ini(), "PathsOptionsDlg", key, value);
    }
    std::string stored(std::string_view key) { return PROFILESTRGET(ini(), "PathsOptionsDlg", key); }
    std::string line() { return PROFILESTRGET(ini(), "ordo", "CLS"); }
    static void press(std::string_view button) { platform::userCommand(*platform::findControl(in(button))); }
    std::string folder(const std::string& name) {
        std::filesystem::create_directories(dir + name);
        return dir + name;
    }
};

TEST_F(PathsOptions, EveryBoxComesFromItsKeyAndGoesBackToIt) {
    for (int i = 1; i <= 5; i++) {
        const std::string name = "edit" + STR(i), path = folder("f" + STR(i));
        load();
        EXPECT_EQ(GetText(in(name)), dir);
        SetText(in(name), path);
        press("pushbutton1");
        EXPECT_FALSE(IsLoaded(PathsOptionsDlg));
        EXPECT_EQ(stored("Edit" + STR(i)), path);
        setIni("Edit" + STR(i), dir);
    }
    EXPECT_TRUE(asked.empty());
}

TEST_F(PathsOptions, TheCommandLineFollowsThePaths) {
    load();
    SetText(in("edit1"), folder("one") + ";" + folder("two words"));
    SetText(in("edit5"), folder("res"));
    press("pushbutton1");
    EXPECT_NE(line().find("/i\"" + dir + "one;" + dir + "two words\""), std::string::npos) << line();
    EXPECT_NE(line().find("/r\"" + dir + "res\""), std::string::npos) << line();
    EXPECT_EQ(line(), SAVECOMMANDLINE(GETCOMPILEROPTIONS(), 0, false));
}

TEST_F(PathsOptions, MissingFoldersAreAskedAboutAndMayBeSaved) {
    const std::string question =
        "The following path(s) are too long or do not exist:\n\t" + dir + "gone\n\t" + dir +
        "lost\nDo you want to save them anyway (OK), or go back and fix them (Cancel)?";
    for (const char* answer : {"Cancel", "", "OK"}) {
        load();
        SetText(in("edit1"), dir + ";" + dir + "gone");
        SetText(in("edit4"), dir + "lost");
        answers = {answer};
        const int beeps = platform::headlessBeeps();
        press("pushbutton1");
        EXPECT_EQ(platform::headlessBeeps(), beeps + 1);
        EXPECT_EQ(lastText(), question);
        EXPECT_EQ(asked.back().title, "Tools-Options-Paths");
        EXPECT_EQ(asked.back().buttons, (std::vector<std::string>{"OK", "Cancel"}));
        const bool saved = std::string(answer) == "OK";
        EXPECT_EQ(IsLoaded(PathsOptionsDlg), !saved);
        EXPECT_EQ(stored("Edit4"), saved ? dir + "lost" : dir);
        if (!saved) Unload(PathsOptionsDlg);
    }
}

TEST_F(PathsOptions, TheListsAreSplitAndTheOthersAreNot) {
    folder("a;b");
    load();
    SetText(in("edit1"), dir + "a;b");
    SetText(in("edit2"), dir + "a;b");
    SetText(in("edit5"), dir + ";;  ; " + dir + "x ;");
    answers = {"OK"};
    press("pushbutton1");
    EXPECT_EQ(lastText(), "The following path(s) are too long or do not exist:\n\t" + dir + "a\n\tb\n\t" +
                              dir +
                              "x\nDo you want to save them anyway (OK), or go back and fix them (Cancel)?");
}

TEST_F(PathsOptions, EmptyBoxesAreGood) {
    load();
    for (int i = 1; i <= 5; i++) SetText(in("edit" + STR(i)), i % 2 == 0 ? "" : "  ");
    press("pushbutton1");
    EXPECT_FALSE(IsLoaded(PathsOptionsDlg));
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(stored("Edit2"), "");
}

TEST_F(PathsOptions, PathsAreGoodByTheirLengthAndTheirFolder) {
    EXPECT_TRUE(CHECKPATHS("t", ""));
    EXPECT_TRUE(CHECKPATHS("t", "\n \n"));
    EXPECT_TRUE(CHECKPATHS("t", dir));
    EXPECT_TRUE(CHECKPATHS("t", "/"));
    EXPECT_TRUE(CHECKPATHS("t", " " + dir + " \n"));
    EXPECT_FALSE(CHECKPATHS("t", ini()));  // a file
    std::string deep = dir;
    while (deep.size() + 51 < 250) deep += std::string(50, 'd') + "/";
    deep += std::string(254 - deep.size() - 1, 'e');  // 254 with its separator
    std::filesystem::create_directories(deep);
    std::filesystem::create_directories(deep + "e");
    EXPECT_TRUE(CHECKPATHS("t", deep));
    EXPECT_FALSE(CHECKPATHS("t", deep + "e"));
    EXPECT_EQ(lastText(), "The following path(s) are too long or do not exist:\n\t" + deep +
                              "e\nDo you want to save them anyway (OK), or go back and fix them (Cancel)?");
}

TEST_F(PathsOptions, ALongListIsCutToTwentyLines) {
    std::string paths;
    for (int i = 1; i <= 20; i++) paths += "/none/" + STR(i) + "\n";
    EXPECT_FALSE(CHECKPATHS("t", paths));
    EXPECT_NE(lastText().find("\t/none/20\nDo you"), std::string::npos) << lastText();
    EXPECT_FALSE(CHECKPATHS("t", paths + "/none/21\n"));
    EXPECT_NE(lastText().find("\t/none/19\n\t...(more)...\nDo you"), std::string::npos) << lastText();
    EXPECT_EQ(lastText().find("/none/20"), std::string::npos);
}

TEST_F(PathsOptions, DrivesAreAddedToPathsThatNeedOne) {
    const struct {
        const char *drive, *before, *after;
    } cases[] = {{"C:", "\\a", "C:\\a"},       {"C:", "a;D:\\b; c;", "C:a;D:\\b;C:c;"},
                 {"C:", "/a;\\b", "/a;C:\\b"}, {"C:", "", ""},
                 {"C:", ";;\\a", ";;C:\\a"},   {"C:", " ", " "},
                 {"", "\\a;b", "\\a;b"},       {"", "/a", "/a"}};
    for (const auto& one : cases) EXPECT_EQ(ADDDRIVELETTERS(one.drive, one.before), one.after) << one.before;
}

TEST_F(PathsOptions, PathsFromTheRootAreStoredAsTheyAre) {
    load();
    SetText(in("edit1"), "/;" + dir);
    press("pushbutton1");
    EXPECT_EQ(stored("Edit1"), "/;" + dir);
}

TEST_F(PathsOptions, BrowseAddsToAListAndReplacesAPath) {
    const std::string one = folder("one"), two = folder("two");
    load();
    SetText(in("edit1"), one);
    SetText(in("edit2"), one);
    answers = {two, two, two, "", two};
    press("btnbrowse1");
    EXPECT_EQ(asked.back().kind, platform::Question::Kind::Folder);
    EXPECT_EQ(asked.back().value, one);
    EXPECT_EQ(GetText(in("edit1")), one + ";" + two);
    press("btnbrowse1");  // it is there
    EXPECT_EQ(GetText(in("edit1")), one + ";" + two);
    press("btnbrowse2");
    EXPECT_EQ(GetText(in("edit2")), two);
    press("btnbrowse3");  // cancelled
    EXPECT_EQ(GetText(in("edit3")), dir);
    SetText(in("edit5"), "");
    press("btnbrowse5");
    EXPECT_EQ(GetText(in("edit5")), two);
}

TEST_F(PathsOptions, BlanksAndQuotesInPathsReachTheTools) {
    const std::string odd = folder("a \"b\" c"), quoted = "\"" + dir + "\"";
    load();
    SetText(in("edit1"), odd);
    SetText(in("edit5"), quoted);
    answers = {"OK"};
    press("pushbutton1");
    EXPECT_EQ(stored("Edit1"), odd);
    EXPECT_EQ(stored("Edit5"), quoted);
    const std::vector<std::string> words = SPLITARGUMENTS(line());
    EXPECT_NE(std::find(words.begin(), words.end(), "/i" + odd), words.end()) << line();
    EXPECT_NE(std::find(words.begin(), words.end(), "/r" + quoted), words.end()) << line();
}

// ---- the path of a class that is added ----

TEST_F(PathsOptions, AClassElsewhereIsOfferedForTheInheritedPath) {
    const std::string file = folder("lib") + "/a.cls";
    setIni("Edit1", dir);
    answers = {"No", "Yes"};
    UPDATEINHERITPATHS("Add Class", file);
    EXPECT_EQ(asked.back().title, "Add Class");
    EXPECT_EQ(asked.back().buttons, (std::vector<std::string>{"Yes", "No"}));
    EXPECT_EQ(lastText(),
              "'" + dir +
                  "lib/' should be added to the inherited class path.\nDo you want to add it now?\n"
                  "If not, you should add it later using the Tools-Options-Paths command.");
    EXPECT_EQ(stored("Edit1"), dir);
    UPDATEINHERITPATHS("Add Class", file);
    EXPECT_EQ(stored("Edit1"), dir + ";" + dir + "lib/");
    EXPECT_NE(line().find("/i\"" + dir + ";" + dir + "lib/\""), std::string::npos) << line();
    UPDATEINHERITPATHS("Add Class", file);  // it is there now
    EXPECT_EQ(asked.size(), 2U);
}

TEST_F(PathsOptions, OtherFilesAndKnownFoldersAreNotOffered) {
    setIni("Edit1", "/x;" + dir.substr(0, dir.size() - 1) + ";");
    UPDATEINHERITPATHS("t", dir + "a.cls");
    UPDATEINHERITPATHS("t", dir + "sub/a.txt");
    UPDATEINHERITPATHS("t", "a.cls");
    UPDATEINHERITPATHS("t", "");
    EXPECT_TRUE(asked.empty());
    answers = {"Yes"};
    setIni("Edit1", "");
    UPDATEINHERITPATHS("t", dir + "A.CLS");
    EXPECT_EQ(stored("Edit1"), ";" + dir);
}

TEST_F(PathsOptions, AFolderThatIsAddedNeverBecomesTheLibrary) {
    for (const char* before : {"", ";"}) {
        setIni("Edit1", before);
        UPDATEINHERITPATHS("t", dir + "a.cls", false);
        EXPECT_EQ(stored("Edit1"), ";" + dir);
        EXPECT_EQ(GETINHERITEDLIBPATH(), "");
        EXPECT_EQ(GETINHERITEDPATHSML(), dir + "\n");
        EXPECT_NE(line().find("/i\";" + dir + "\""), std::string::npos) << line();
    }
}

// ---- general ----

class GeneralOptions : public IdeTest {
protected:
    static Object in(std::string_view control) { return FINDCONTROL(GenOptionsDlg, control); }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }
    void open(const std::function<void()>& doing) {
        bool done = false;
        platform::view().setIdle([&] {
            if (done || !ISSHOWN(GenOptionsDlg)) return;
            done = true;
            doing();
        });
        pick("tools_options_gen");
        platform::view().setIdle({});
        EXPECT_TRUE(done);
    }
    static void press(std::string_view button) { platform::userCommand(*platform::findControl(in(button))); }
    std::string stored(std::string_view key) { return PROFILESTRGET(ini(), "GenOptionsDlg", key); }
};

TEST_F(GeneralOptions, TheCaptionOfTheMainWindowFollowsAtOnce) {
    start();
    open([] {
        EXPECT_EQ(GetListCount(in("combo1")), 2);
        EXPECT_EQ(GetList(in("combo1"), 1),
                  std::string(ProductWord) + " Developer Studio v" + std::string(ProductVersion));
        EXPECT_EQ(GetList(in("combo1"), 2),
                  std::string(ProductWord) + " Developer Belvedere v" + std::string(ProductVersion));
        EXPECT_EQ(GetCombotext(in("combo1")), "%PRODUCT_NAME% Developer Studio v%VERSION_NUMBER%");
        SetCombotext(in("combo1"), "\"Mine\" %VERSION_NUMBER%");
        press("pushbutton1");
    });
    EXPECT_EQ(GetCaption(Main), "\"Mine\" " + std::string(ProductVersion));
    EXPECT_EQ(stored("Combo1"), "\"Mine\" %VERSION_NUMBER%");
}

TEST_F(GeneralOptions, EveryControlComesFromItsKeyAndGoesBackToIt) {
    start();
    for (int i = 0; i < 4; i++) {
        open([i] {
            SetText(in("GridWidth"), STR(i + 5));
            SetText(in("GridHeight"), STR(i + 6));
            SetText(in("HelpFileTypes"), "htm " + STR(i));
            SetValue(in("SavePath"), i % 2);
            SetValue(in("rbStartup" + STR(i)), 1);
            press("pushbutton1");
        });
        EXPECT_EQ(stored("GridWidth") + stored("GridHeight"), STR(i + 5) + STR(i + 6));
        EXPECT_EQ(stored("HelpFileTypes"), "htm " + STR(i));
        EXPECT_EQ(stored("SavePath"), STR(i % 2));
        for (int other = 0; other < 4; other++)
            EXPECT_EQ(stored("rbStartup" + STR(other)), other == i ? "1" : "0");
        open([i] {
            EXPECT_EQ(GetText(in("GridWidth")), STR(i + 5));
            EXPECT_EQ(GetText(in("HelpFileTypes")), "htm " + STR(i));
            EXPECT_EQ(GetValue(in("SavePath")), i % 2);
            EXPECT_EQ(Controlselectionpos(in("rbStartup0")), i + 1);
            press("pushbutton2");
        });
    }
}

TEST_F(GeneralOptions, OfSeveralOpeningActionsTheFirstShowsAsAtTheStart) {
    start();
    for (const char* key : {"rbStartup1", "rbStartup3"}) PROFILESTRPUT(ini(), "GenOptionsDlg", key, "1");
    PROFILESTRPUT(ini(), "GenOptionsDlg", "rbStartup0", "0");
    open([] {
        EXPECT_EQ(Controlselectionpos(in("rbStartup0")), 2);
        press("pushbutton2");
    });
}

TEST_F(GeneralOptions, TheGridGoesToTheDialogEditorWhenItIsTwoNumbers) {
    start();
    const std::string rc =
        write("d.rc", "DialogDlg DIALOG\n  LABEL gridstr 101\n    POSITION=0 0 9 9\nEND\n");
    ASSERT_EQ(Load(DialogDlg, rc, "DialogDlg"), "");
    const struct {
        const char *width, *height, *grid;
    } cases[] = {
        {"4", "6", "4 6"}, {"x", "6", "4 6"}, {"", "6", "4 6"}, {"8", "-1", "4 6"}, {"12", "3", "12 3"}};
    for (const auto& one : cases) {
        open([&] {
            SetText(in("GridWidth"), one.width);
            SetText(in("GridHeight"), one.height);
            press("pushbutton1");
        });
        EXPECT_EQ(GetCaption(FINDCONTROL(DialogDlg, "gridstr")), one.grid) << one.width;
    }
}

// ---- fonts ----

class FontOptions : public IdeTest {
protected:
    std::string stored(std::string_view key) { return PROFILESTRGET(ini(), "Sdiedit", key); }
};

TEST_F(FontOptions, TheCodeWindowTakesTheFontAtOnceAndKeepsIt) {
    start();
    const std::string tokens = "mark - 0x000001\n";
    SetTokens(SDIEdit, tokens);
    answers = {"Courier\t17\tbi"};
    pick("tools_options_fonts");
    EXPECT_EQ(asked.back().kind, platform::Question::Kind::Font);
    EXPECT_TRUE(asked.back().fixedWidth);
    EXPECT_EQ(GetFontName(SDIEdit), "Courier");
    EXPECT_EQ(GetFontSize(SDIEdit), 17);
    EXPECT_TRUE(GetFontBold(SDIEdit) && GetFontItalic(SDIEdit));
    EXPECT_EQ(stored("_Fontname") + stored("_Fontsize") + stored("_Fontbold") + stored("_Fontitalic"),
              "Courier1711");
    EXPECT_EQ(GetTokens(SDIEdit), tokens);
    platform::DestroyAllWindows();
    start();
    EXPECT_EQ(GetFontName(SDIEdit), "Courier");
    EXPECT_EQ(GetFontSize(SDIEdit), 17);
    EXPECT_TRUE(GetFontBold(SDIEdit) && GetFontItalic(SDIEdit));
}

TEST_F(FontOptions, ACancelledChoiceChangesNothing) {
    start();
    const std::string before = read(ini());
    pick("tools_options_fonts");
    EXPECT_EQ(read(ini()), before);
    EXPECT_EQ(GetFontName(SDIEdit), "");
}

TEST_F(FontOptions, AFontMayBeChosenWithoutBeingGiven) {
    loadWindows();
    answers = {"Courier\t17", ""};
    EXPECT_TRUE(CHOOSEFONT(SDIEdit, false));
    EXPECT_EQ(GetFontName(SDIEdit), "");
    EXPECT_FALSE(CHOOSEFONT(SDIEdit, true));
}

}  // namespace
}  // namespace tarn
