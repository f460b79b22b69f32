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
