// SPDX-License-Identifier: GPL-3.0-or-later
//
// The options of the compiler, on the object model alone.
#include "ide/options/compoptions.h"

#include "ide/build/compiler.h"
#include "support/ide_fixture.h"
#include "support/steerable.h"

#include <algorithm>
#include <functional>

namespace tarn {
namespace {

class CompOptions : public IdeTest {
protected:
    static Object in(std::string_view control) { return FINDCONTROL(CompOptionsDlg, control); }
    void load() {
        REGISTERWINDOWS();
        Load(CompOptionsDlg);
        ASSERT_TRUE(IsLoaded(CompOptionsDlg)) << ErrorDetails();
        Show(CompOptionsDlg, false);
    }
    void setIni(std::string_view key, std::string_view value, std::string_view section = "CompOptionsDlg") {
        PROFILESTRPUT(ini(), section, key, value);
    }
    std::string stored(std::string_view key) { return PROFILESTRGET(ini(), "CompOptionsDlg", key); }
    std::string line() { return PROFILESTRGET(ini(), "ordo", "CLS"); }
    static void click(std::string_view control, int value = 1) {
        platform::userValue(*platform::findControl(in(control)), value);
    }
    static void press(std::string_view button) { platform::userCommand(*platform::findControl(in(button))); }
    static void typeInto(std::string_view control, const std::string& text) {
        SetText(in(control), text);
        platform::userChange(*platform::findControl(in(control)));
    }
    static std::string preview() { return GetText(in("edit1")); }
    static bool has(const std::string& line, const std::string& word) {
        return (" " + line + " ").find(" " + word + " ") != std::string::npos;
    }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }
};

TEST_F(CompOptions, EveryControlComesFromItsKeyAndGoesBackToIt) {
    const struct {
        const char *key, *control;
    } marks[] = {{"Quiet0", "quiet0"},
                 {"Verification", "verification"},
                 {"Manifest", "manifest"},
                 {"ShortcutFile", "shortcutfile"}};
    for (const auto& mark : marks) {
        for (const char* value : {"1", "0"}) {
            setIni(mark.key, value);
            load();
            EXPECT_EQ(STR(GetValue(in(mark.control))), value) << mark.key;
            click(mark.control, value[0] == '1' ? 0 : 1);
            press("pushbutton1");
            EXPECT_FALSE(IsLoaded(CompOptionsDlg));
            EXPECT_EQ(stored(mark.key), value[0] == '1' ? "0" : "1") << mark.key;
        }
    }
}

TEST_F(CompOptions, EachLevelIsOneOfThreeButtons) {
    for (const std::string name : {"precond", "debug"}) {
        for (int level = 0; level <= 2; level++) {
            load();
            click(name + STR(level));
            press("pushbutton1");
            for (int i = 0; i <= 2; i++)
                EXPECT_EQ(stored(STRNAMECASE(name) + STR(i)), i == level ? "1" : "0") << name << level;
            load();
            for (int i = 0; i <= 2; i++)
                EXPECT_EQ(GetValue(in(name + STR(i))), i == level ? 1 : 0) << name << level;
            Unload(CompOptionsDlg);
        }
    }
}

TEST_F(CompOptions, TheCommandLineShowsWhatIsChosenBeforeItIsStored) {
    load();
    const std::string before = line();
    EXPECT_EQ(preview(), SAVECOMMANDLINE(GETCOMPILEROPTIONS(), 0, false));
    const struct {
        const char *control, *word;
    } marks[] = {{"precond2", "/p2"}, {"debug2", "/d2"},       {"quiet0", "/q"},
                 {"manifest", "/om"}, {"shortcutfile", "/os"}, {"verification", "/v"}};
    for (const auto& mark : marks) {
        EXPECT_FALSE(has(preview(), mark.word)) << mark.word;
        click(mark.control);
        EXPECT_TRUE(has(preview(), mark.word)) << preview();
    }
    typeInto("symbols", "4321");
    EXPECT_TRUE(has(preview(), "/s4321")) << preview();
    typeInto("extra", " /x  ");
    EXPECT_TRUE(has(preview(), "/s4321 /x /lw0")) << preview();
    EXPECT_EQ(line(), before);
    press("pushbutton1");
    EXPECT_TRUE(has(line(), "/p2 /d2 /q /v /om /os /s4321 /x")) << line();
    EXPECT_EQ(stored("Extra"), " /x  ");
}

TEST_F(CompOptions, ThePathsOfTheSettingsStandInTheLine) {
    setIni("Edit1", "/a b;/c", "PathsOptionsDlg");
    setIni("Edit5", "/r \"x\"", "PathsOptionsDlg");
    load();
    EXPECT_EQ(GetCaption(in("lblinheritstr")), "/a b;/c");
    EXPECT_EQ(GetCaption(in("lblresourcestr")), "/r \"x\"");
    EXPECT_FALSE(GetVisible(in("lblinheritstr")));
    EXPECT_FALSE(GetVisible(in("lblresourcestr")));
    EXPECT_FALSE(GetVisible(in("chkok")));
    EXPECT_TRUE(has(preview(), "/i\"/a b;/c\"")) << preview();
    const std::vector<std::string> words = SPLITARGUMENTS(preview());
    EXPECT_EQ(std::count(words.begin(), words.end(), "/i/a b;/c"), 1) << preview();
    EXPECT_EQ(std::count(words.begin(), words.end(), "/r/r \"x\""), 1) << preview();
}

TEST_F(CompOptions, ALineWithoutPathsHasNoOptionForThem) {
    setIni("Edit1", "", "PathsOptionsDlg");
    setIni("Edit5", "", "PathsOptionsDlg");
    load();
    EXPECT_EQ(preview().find("/i"), std::string::npos);
    EXPECT_EQ(preview().find("/r\""), std::string::npos);
}

TEST_F(CompOptions, LettersAmongTheSymbolsBeep) {
    load();
    const std::string before = preview();
    for (const char* text : {"abc", "12a", "-1", " 5", "1.5"}) {
        const int beeps = platform::headlessBeeps();
        typeInto("symbols", text);
        EXPECT_EQ(platform::headlessBeeps(), beeps + 1) << text;
        EXPECT_EQ(preview(), before) << text;
    }
    const int beeps = platform::headlessBeeps();
    typeInto("symbols", "4000");
    typeInto("symbols", "");
    EXPECT_EQ(platform::headlessBeeps(), beeps);
    EXPECT_EQ(GetMaxLength(in("symbols")), 4);
}

TEST_F(CompOptions, SymbolsOutsideTheLimitsAreRefusedAndTheDialogStays) {
    for (const char* text : {"abc", "", "2999", "10000", "99999999999", "-3000", "3 000"}) {
        load();
        typeInto("symbols", text);
        press("pushbutton1");
        EXPECT_TRUE(IsLoaded(CompOptionsDlg)) << text;
        EXPECT_EQ(asked.back().title, "Tools-Options-Compiler");
        EXPECT_EQ(lastText(), "Maximum symbols (MAX_SYMBOLS) should be between 3000 and 9999.") << text;
        EXPECT_EQ(stored("Symbols"), "3000");
        press("pushbutton2");
        EXPECT_FALSE(IsLoaded(CompOptionsDlg));
    }
    for (const char* text : {"3000", "9999"}) {
        load();
        typeInto("symbols", text);
        press("pushbutton1");
        EXPECT_FALSE(IsLoaded(CompOptionsDlg));
        EXPECT_EQ(stored("Symbols"), text);
    }
}

TEST_F(CompOptions, EveryWayOutButOkStoresNothing) {
    const std::string before = read(ini());
    const std::function<void()> ways[] = {
        [] { press("pushbutton2"); },
        [] { platform::userKey(*platform::findWindow(CompOptionsDlg), nullptr, KEY_ESCAPE); },
        [] { platform::userClose(*platform::findWindow(CompOptionsDlg)); }};
    for (const auto& way : ways) {
        load();
        click("debug2");
        typeInto("extra", "/y");
        way();
        EXPECT_FALSE(IsLoaded(CompOptionsDlg));
        EXPECT_EQ(read(ini()), before);
    }
}

TEST_F(CompOptions, ALevelIsSetWithoutShowingAnything) {
    REGISTERWINDOWS();
    const struct {
        const char *option, *key, *word;
    } cases[] = {{"-P1", "Precond1", "/p1"}, {"-p2", "Precond2", "/p2"}, {"-D1", "Debug1", "/d1"},
                 {"-d2", "Debug2", "/d2"},   {"-P0", "Precond0", ""},    {"-D0", "Debug0", ""}};
    for (const auto& one : cases) {
        SETCOMPILEROPTION(one.option);
        EXPECT_FALSE(IsLoaded(CompOptionsDlg));
        EXPECT_EQ(stored(one.key), "1") << one.option;
        const std::string word = one.word;
        EXPECT_TRUE(word.empty() || has(line(), word)) << line();
    }
    EXPECT_EQ(line().find("/p"), std::string::npos) << line();
    EXPECT_EQ(line().find("/d"), std::string::npos) << line();
    EXPECT_TRUE(asked.empty());
}

TEST_F(CompOptions, StartInDebuggerRaisesTheDebugOptionAndTheLineFollows) {
    REGISTERWINDOWS();
    setIni("Extra", "/keep");
    SETCOMPILEROPTION("-D2");
    EXPECT_EQ(stored("Debug2"), "1");
    EXPECT_EQ(stored("Debug1"), "0");
    EXPECT_TRUE(has(line(), "/d2")) << line();
    EXPECT_TRUE(has(line(), "/keep")) << line();
}

TEST_F(CompOptions, ATextThatIsNoLevelChangesNothing) {
    REGISTERWINDOWS();
    const std::string before = read(ini());
    for (const char* option : {"", "-D3", "D2", "/d2", "-D2 "}) SETCOMPILEROPTION(option);
    EXPECT_EQ(read(ini()), before);
}

TEST_F(CompOptions, BrokenSettingsShowAsTheCommandLineTakesThem) {
    setIni("Debug1", "7");
    setIni("Debug0", "x");
    setIni("Precond1", "1");
    setIni("Precond2", "1");
    setIni("Quiet0", "7");
    setIni("Symbols", "many");
    load();
    EXPECT_EQ(preview(), SAVECOMMANDLINE(GETCOMPILEROPTIONS(), 0, false));
    EXPECT_EQ(Controlselectionpos(in("debug0")), 1);
    EXPECT_EQ(Controlselectionpos(in("precond0")), 1);
    EXPECT_EQ(GetValue(in("quiet0")), 0);
    EXPECT_EQ(GetText(in("symbols")), "many");
    typeInto("symbols", "5000");
    press("pushbutton1");
    EXPECT_EQ(stored("Debug0"), "1");
    EXPECT_EQ(stored("Debug1"), "0");
    EXPECT_EQ(stored("Quiet0"), "0");
}

TEST_F(CompOptions, SettingsWithoutTheSectionGiveLevelZero) {
    PROFILESTRDEL(ini(), "CompOptionsDlg", "");
    load();
    EXPECT_EQ(Controlselectionpos(in("debug0")), 1);
    EXPECT_EQ(Controlselectionpos(in("precond0")), 1);
    EXPECT_EQ(GetText(in("symbols")), "");
}

TEST_F(CompOptions, VeryLongAndQuotedExtraOptionsSurvive) {
    const std::string texts[] = {
        std::string(20000, 'x'), "\"/a b\"", "\"", "\"\"", "  lead", "a=b;c", "\"a\" \"b\""};
    for (const std::string& text : texts) {
        load();
        typeInto("extra", text);
        press("pushbutton1");
        load();
        EXPECT_EQ(GetText(in("extra")), text) << text.substr(0, 40);
        press("pushbutton1");
        EXPECT_EQ(stored("Extra"), text) << text.substr(0, 40);
    }
}

TEST_F(CompOptions, SettingsThatCannotBeWrittenAreToldOnceAndStay) {
    load();
    click("debug2");
    const std::string before = read(ini());
    os::SteeredFiles disk;
    disk.put(ini(), before);
    disk.putOwner(dir.substr(0, dir.size() - 1), os::SteeredFiles::user, os::SteeredFiles::user);
    const os::Steered steered(disk);
    disk.failAlways(os::FileCall::Open, os::FileError::Denied);
    press("pushbutton1");
    EXPECT_FALSE(IsLoaded(CompOptionsDlg));
    EXPECT_EQ(disk.contents(ini()), before);
    ASSERT_EQ(asked.size(), 1U) << lastText();
    EXPECT_NE(lastText().find("were not saved and are as they were"), std::string::npos) << lastText();
}

}  // namespace
}  // namespace tarn
