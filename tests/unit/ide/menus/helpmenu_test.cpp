// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/helpmenu.h"

#include "ide/shell/about.h"
#include "support/ide_fixture.h"

namespace tarn {
namespace {

class About : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        start();
        asked.clear();
    }
    // Lines of the text, from 1.
    static std::string line(int n) { return STRLINE(GETABOUTTEXT(), n); }
};

TEST_F(About, TextHasItsPartsInThisOrder) {
    const std::string text = GETABOUTTEXT(), rule(50, '_');
    EXPECT_EQ(line(1), "Tarnwick Developer Studio");
    EXPECT_EQ(line(2), "Version 1.3, build 2207");
    EXPECT_EQ(line(3), rule);
    EXPECT_EQ(line(4), "Made by the developers of Tarnwick.");
    const std::size_t second = text.find("\n" + rule + "\n", text.find(rule) + 50);
    ASSERT_NE(second, std::string::npos);
    EXPECT_TRUE(text.substr(second + 52).starts_with("Application directory = ")) << text.substr(second);
    EXPECT_EQ(text.find("__________\n", second + 52), std::string::npos) << "there are two rules";
    EXPECT_EQ(text.find("copying"), std::string::npos);
}

TEST_F(About, CreditsThePascalLibraryWhereItsBackEndIsInUse) {
    std::filesystem::create_directory(dir + "tools");
    write("tools/ppc386.exe", "x");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", dir + "tools/");
    EXPECT_NE(GETABOUTTEXT().find("Pascal run-time library"), std::string::npos);
    EXPECT_NE(GETABOUTTEXT().find("'copying.fpc' and 'copying.lgpl'"), std::string::npos);
}

TEST_F(About, DoesNotChangeTheCompilersLine) {
    const std::string before = read(ini());
    static_cast<void>(GETABOUTTEXT());
    EXPECT_EQ(read(ini()), before);
}

TEST_F(About, ButtonsComeInThisOrder) {
    PROFILESTRPUT(ini(), "Product", "Website", "http://localhost/");
    const AboutButtons buttons = GETABOUTBOXBUTTONS();
    const std::vector<std::vector<std::string>> expected = {{"Close", "Unload", ""},
                                                            {"Visit website", "http://localhost/", ""},
                                                            {"Copy Info", "Copy", ""},
                                                            {"Help", GETHELPFILE(), "Help_About"}};
    ASSERT_EQ(buttons.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); i++)
        EXPECT_EQ((std::vector<std::string>{buttons[i].caption, buttons[i].action, buttons[i].topic}),
                  expected[i]);
}

// What the user does while the box is open is done by the timer of a window that nobody sees.
class AboutBox : public About {
protected:
    static inline void (*user)();
    void show(void (*doing)()) {
        user = doing;
        const Object timer("GotoFuncDlg");
        RegisterWindow(timer, [](const Object& window, int event, const Object&, int) {
            if (event != TIMER_EVENT || !ISSHOWN(AboutDlg)) return false;
            KILLTIMER(window);
            user();
            if (ISSHOWN(AboutDlg)) Unload(AboutDlg);
            return true;
        });
        Load(timer);
        SETTIMER(timer, 1);
        pick("help_about");
        Stamp(0, ReportErrors, DefaultErrorHandler);
        EXPECT_FALSE(IsLoaded(AboutDlg));
        Unload(timer);
    }
    static void press(int button) {
        platform::userCommand(*platform::findControl(FINDCONTROL(AboutDlg, "pushbutton" + STR(button))));
    }
    static std::string text() { return GetText(FINDCONTROL(AboutDlg, "edit1")); }
};

TEST_F(AboutBox, ShowsTheTextAndCopiesIt) {
    show([] {
        EXPECT_EQ(GetCaption(AboutDlg), "Help-About");
        EXPECT_EQ(GetPicture(FINDCONTROL(AboutDlg, "icon1")), "mainicon.ico");
        EXPECT_TRUE(text().starts_with("Tarnwick Developer Studio\n")) << text();
        EXPECT_TRUE(GetReadonly(FINDCONTROL(AboutDlg, "edit1")));
        SetText(Sysclipboard, "before");
        press(3);
        EXPECT_TRUE(ISSHOWN(AboutDlg));
        EXPECT_EQ(GetText(Sysclipboard), text());
    });
}

TEST_F(AboutBox, ClosesByItsButtonAndByEsc) {
    show([] {
        press(1);
        EXPECT_FALSE(IsLoaded(AboutDlg));
    });
    show([] {
        platform::userKey(*platform::findWindow(AboutDlg), nullptr, KEY_ESCAPE);
        EXPECT_FALSE(IsLoaded(AboutDlg));
    });
}

TEST_F(AboutBox, VisitsTheWebsiteWhereThereIsOne) {
    show([] { EXPECT_FALSE(GetEnabled(FINDCONTROL(AboutDlg, "pushbutton2"))); });
    PROFILESTRPUT(ini(), "Product", "Website", "http://localhost/");
    show([] {
        EXPECT_TRUE(GetEnabled(FINDCONTROL(AboutDlg, "pushbutton2")));
        press(2);
        EXPECT_TRUE(ISSHOWN(AboutDlg));
    });
    EXPECT_TRUE(asked.empty()) << "the browser has taken it";
}

TEST_F(AboutBox, HelpAndF1ShowTheTopic) {
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit2", dir + "nohelp/");
    for (const bool key : {false, true}) {
        asked.clear();
        if (key)
            show([] { platform::userKey(*platform::findWindow(AboutDlg), nullptr, KEY_F1); });
        else
            show([] { press(4); });
        EXPECT_EQ(asked.size(), 1U) << "there is no help file, and that is told";
    }
}

TEST_F(About, ProductsNeedAnAddress) {
    PROFILESTRPUT(ini(), "Product", "Website", "");
    DO_PRODUCTS("Help-Products");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Help-Products");
    EXPECT_EQ(
        lastText(),
        "There is no address of a website in the settings.\nPut one there, in the section 'Product' under "
        "'Website'.");
    PROFILESTRPUT(ini(), "Product", "Website", "http://localhost/");
    DO_PRODUCTS("Help-Products");
    EXPECT_EQ(asked.size(), 1U) << "the browser is asked";
}

}  // namespace
}  // namespace tarn
