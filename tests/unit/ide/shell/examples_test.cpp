// SPDX-License-Identifier: GPL-3.0-or-later
//
// File-Open Examples. What the user does in the browser is done by a timer, once the browser waits.
#include "ide/shell/examples.h"

#include "ide/menus/filemenu.h"
#include "library/dialogs/commdlgs_examples.h"
#include "support/ide_fixture.h"

#include <functional>

namespace tarn {
namespace {

class ExampleBrowser : public IdeTest {
protected:
    static inline std::function<void()> user;  // what happens while the browser is open

    void SetUp() override {
        IdeTest::SetUp();
        start();
        asked.clear();
        std::filesystem::create_directory(dir + "examples");
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit4", dir + "examples/");
        setenv("HOME", (dir + "home").c_str(), 1);
        RegisterWindow(TimerWindow, [](const Object& window, int event, const Object&, int) {
            if (event == TIMER_EVENT && ISSHOWN(OpenExampleDlg)) KILLTIMER(window), user();
            return false;
        });
    }
    void TearDown() override {
        std::filesystem::permissions(dir + "examples", std::filesystem::perms(0755));
        IdeTest::TearDown();
    }
    void example(const std::string& name, const std::string& title, const std::string& files = "") {
        std::filesystem::create_directory(dir + "examples/" + name);
        write("examples/" + name + "/readme.txt",
              "<?xml version=\"1.0\"?><data type=\"record\"><title type=\"string\">" + title +
                  "</title><description type=\"string\">about " + title +
                  "</description><picture type=\"string\">"
                  "</picture><files type=\"string\">" +
                  files + "</files></data>\n");
        write("examples/" + name + "/" + name + ".cls",
              "Tarnwick Class x\nfunction main()\nend function\nEnd class\n");
    }
    // Opens the browser and does that in it; closes it if that does not.
    void browse(const std::function<void()>& doing) {
        user = [doing] {
            doing();
            if (ISSHOWN(OpenExampleDlg)) Hide(OpenExampleDlg);
        };
        Load(TimerWindow);
        SETTIMER(TimerWindow, 1);
        pick("file_open_examples");
        Stamp(0, ReportErrors, DefaultErrorHandler);
        Unload(TimerWindow);
    }
    static Object part(const char* name) { return FINDCONTROL(OpenExampleDlg, name); }
    static void press(const char* caption) {
        for (int i = 1; !FINDCONTROL(OpenExampleDlg, "pushbutton" + STR(i)).empty(); i++) {
            const Object button = FINDCONTROL(OpenExampleDlg, "pushbutton" + STR(i));
            if (GetCaption(button) == caption) return platform::userCommand(*platform::findControl(button));
        }
        ADD_FAILURE() << caption;
    }
    static void choose(int row) {
        platform::Control* list = platform::findControl(part("iconlist1"));
        platform::userRow(*list, row);
    }
    std::string opened() { return EDITWNDGETFILENAME(SDIEdit); }

    const Object TimerWindow{"GotoFuncDlg"};
};

TEST_F(ExampleBrowser, TellsAFolderThatIsNotThere) {
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit4", dir + "none/");
    pick("file_open_examples");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Examples and Tutorials");
    EXPECT_EQ(lastText(),
              "Can't open examples, the path to the example files cannot be found.\nThe following path is "
              "invalid:\n\n\t'" +
                  dir + "none/'\n\nUse Tools-Options-Paths to set up the paths correctly.");
}

TEST_F(ExampleBrowser, ListsFoldersWithAReadmeSortedAndCountsThem) {
    browse([] { EXPECT_EQ(GetCaption(OpenExampleDlg), "Examples and Tutorials (0 examples)"); });
    example("bee", "Bee");
    browse([] { EXPECT_EQ(GetCaption(OpenExampleDlg), "Examples and Tutorials (1 example)"); });
    example("Cat", "Cat");
    example("ant", "Ant");
    std::filesystem::create_directory(dir + "examples/none");
    write("examples/readme.txt", "no folder");
    browse([] {
        EXPECT_EQ(GetCaption(OpenExampleDlg), "Examples and Tutorials (3 examples)");
        EXPECT_EQ(GetListCount(part("iconlist1")), 3);
        EXPECT_EQ(GetList(part("iconlist1"), 1) + GetList(part("iconlist1"), 2) +
                      GetList(part("iconlist1"), 3),
                  "antbeeCat");
        EXPECT_EQ(GetCaption(part("label1")), "Ant") << "the first is chosen";
        EXPECT_EQ(GetCaption(part("label2")), "about Ant");
        choose(3);
        EXPECT_EQ(GetCaption(part("label1")), "Cat");
    });
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(ExampleBrowser, OpensTheMainFileAndChangesTheFolder) {
    example("ant", "Ant", "other.cls\n*ant.cls");
    browse([] { press("&Open"); });
    EXPECT_EQ(opened(), dir + "examples/ant/ant.cls");
    EXPECT_EQ(FILEADDSEPARATOR(GETCURDIR()), dir + "examples/ant/");
    EXPECT_FALSE(IsLoaded(OpenExampleDlg));
}

TEST_F(ExampleBrowser, WithoutAMainFileTheOneNamedLikeTheFolderIsMeant) {
    example("ant", "Ant", "a.cls\nb.cls");
    browse([] { press("&Open"); });
    EXPECT_EQ(opened(), dir + "examples/ant/ant.cls");
}

TEST_F(ExampleBrowser, NothingHappensOnCancelEscAndClose) {
    example("ant", "Ant");
    const std::function<void()> ways[] = {
        [] { press("&Cancel"); },
        [] { platform::userKey(*platform::findWindow(OpenExampleDlg), nullptr, KEY_ESCAPE); },
        [] { Unload(OpenExampleDlg); },
    };
    for (const auto& way : ways) {
        browse(way);
        EXPECT_EQ(opened(), "");
        EXPECT_FALSE(IsLoaded(OpenExampleDlg));
    }
}

TEST_F(ExampleBrowser, HelpLeavesItOpenAndADoubleClickOpens) {
    example("ant", "Ant");
    browse([] {
        press("&Help");
        EXPECT_TRUE(ISSHOWN(OpenExampleDlg));
    });
    browse([] { platform::userDoubleClick(*platform::findControl(part("iconlist1")), 1, 1); });
    EXPECT_EQ(opened(), dir + "examples/ant/ant.cls");
}

TEST_F(ExampleBrowser, WithoutAnExampleOpenDoesNothing) {
    browse([] {
        press("&Open");
        EXPECT_TRUE(ISSHOWN(OpenExampleDlg));
    });
    EXPECT_EQ(opened(), "");
}

TEST_F(ExampleBrowser, AReadOnlyExampleIsCopiedOrRead) {
    if (geteuid() == 0) GTEST_SKIP() << "nothing is read-only for this user";
    example("ant", "Ant");
    std::filesystem::permissions(dir + "examples/ant", std::filesystem::perms(0555));
    answers = {"Cancel"};
    browse([] { press("&Open"); });
    EXPECT_EQ(opened(), "");
    answers = {"&Read Only"};
    browse([] { press("&Open"); });
    EXPECT_EQ(opened(), dir + "examples/ant/ant.cls");
    answers = {"&Copy"};
    browse([] { press("&Open"); });
    EXPECT_EQ(opened(), dir + "home/tarnwick-examples/ant/ant.cls");
    asked.clear();
    browse([] { press("&Open"); });
    EXPECT_TRUE(asked.empty()) << "the copy is there";
    std::filesystem::permissions(dir + "examples/ant", std::filesystem::perms(0755));
}

}  // namespace
}  // namespace tarn
