// SPDX-License-Identifier: GPL-3.0-or-later
//
// The keys of menu commands and the dialog that changes them, on the object model alone.
#include "ide/options/shortcuts.h"

#include "ide/options/keysoptions.h"
#include "support/ide_fixture.h"

#include <functional>
#include <set>

namespace tarn {
namespace {

constexpr const char* secondMenu = "Second DIALOG\n  MENU=SecondMenu\n  POSITION=0 0 90 40\nEND\n"
                                   "SecondMenu MENU\n"
                                   "  MENUITEM things 1\n    POSITION=1\n    CAPTION=\"&Things\"\n"
                                   "  MENUITEM things_do 2\n    POSITION=2\n    CAPTION=\"&Do\"\n"
                                   "    SHORTCUT=\"F9\"\n"
                                   "  MENUITEM things_undo 3\n    POSITION=2\n    CAPTION=\"&Undo...\"\n"
                                   "END\n";
const Object Second("Second");

class Shortcuts : public IdeTest {
protected:
    static constexpr std::string_view section = "Shortcuts";
    void setIni(std::string_view key, std::string_view value) { PROFILESTRPUT(ini(), section, key, value); }
    std::string stored(std::string_view key) { return PROFILESTRGET(ini(), section, key); }
    static std::string keysOf(std::string_view item) { return GetShortcut(MAINCONTROL(item)); }
    void loadSecond() { ASSERT_EQ(Load(Second, write("s.rc", secondMenu), "Second"), ""); }
    static const CommandKeys* find(const std::vector<CommandKeys>& commands, std::string_view setting) {
        for (const CommandKeys& command : commands)
            if (command.setting == setting) return &command;
        return nullptr;
    }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }
};

TEST_F(Shortcuts, EveryCommandOfTheMenuIsListedWithItsPathAndKeys) {
    start();
    const std::vector<CommandKeys> commands = COMMANDKEYS();
    const struct {
        const char *setting, *title, *keys;
    } some[] = {{"file_new_textfile", "File-New Text File", "Ctrl+N"},
                {"file_save_as", "File-Save As", "Ctrl+Shift+S"},
                {"file_save_all", "File-Save All", ""},
                {"tools_options_rcfile", "Tools-Create Resource File", ""},
                {"tools_options_keys", "Tools-Options-Keyboard", ""},
                {"program_add_class", "Program-Add Class", ""},
                {"run_compile", "Run-Compile", "Alt+F9"},
                {"help_about", "Help-About", ""}};
    for (const auto& one : some) {
        const CommandKeys* command = find(commands, one.setting);
        ASSERT_NE(command, nullptr) << one.setting;
        EXPECT_EQ(command->title, one.title);
        EXPECT_EQ(command->keys, one.keys) << one.title;
        EXPECT_EQ(command->usual, one.keys) << one.title;
    }
    for (const char* none : {"file", "edit_undo", "edit_undo_01", "file_mru_1", "tools_options", ""})
        EXPECT_EQ(find(commands, none), nullptr) << none;
}

TEST_F(Shortcuts, NoTwoCommandsHaveTheSameUsualKeys) {
    start();
    std::set<std::string> seen;
    for (const CommandKeys& command : COMMANDKEYS()) {
        if (command.usual.empty()) continue;
        EXPECT_TRUE(seen.insert(command.usual).second) << command.title;
    }
}

TEST_F(Shortcuts, TheKeysOfTheZoomAreGivenAndTakenAsOthers) {
    for (const char* keys : {"Ctrl+Plus", "Ctrl+Minus", "Ctrl+0", "Ctrl+Shift+Plus", "Alt+Minus"})
        EXPECT_EQ(SHORTCUTFAULT(keys), "") << keys;
    EXPECT_EQ(SHORTCUTFAULT("Plus"), "Plus is needed without Ctrl and Alt.");
    EXPECT_EQ(SHORTCUTFAULT("Shift+Minus"), "Shift+Minus is needed without Ctrl and Alt.");
    setIni("view_zoom_in", "none");
    setIni("file_save_all", "ctrl+plus");
    start();
    EXPECT_EQ(keysOf("view_zoom_in"), "");
    EXPECT_EQ(keysOf("file_save_all"), "Ctrl+Plus");
    EXPECT_EQ(keysOf("view_zoom_out"), "Ctrl+Minus");
    EXPECT_EQ(keysOf("view_zoom_normal"), "Ctrl+0");
}

TEST_F(Shortcuts, TheSettingsAreAppliedAtTheStart) {
    setIni("file_save_all", "ctrl+shift+a");
    setIni("file_save", "none");
    setIni("run_start", "Alt+F8");
    start();
    EXPECT_EQ(keysOf("file_save_all"), "Ctrl+Shift+A");
    EXPECT_EQ(keysOf("file_save"), "");
    EXPECT_EQ(keysOf("run_start"), "Alt+F8");
    EXPECT_EQ(keysOf("file_open"), "Ctrl+O");
    EXPECT_EQ(GetHint(MAINCONTROL("btnfile_save")), "Save");
    EXPECT_EQ(GetHint(MAINCONTROL("btnrun_start")), "Start (Alt+F8)");
    EXPECT_EQ(GetHint(MAINCONTROL("btnfile_open")), "Open (Ctrl+O)");
}

TEST_F(Shortcuts, ABrokenSettingIsIgnoredWithTheUsualKeysKept) {
    const char* const broken[] = {"Ctrl",   "Ctrl+",     "Hyper+S",      "Ctrl+Foo", "S",      "F99",
                                  "Ctrl+C", "Home",      "F1",           "F2",       "Alt+F",  "Ctrl++",
                                  "Esc",    "Ctrl+.",    "Space",        "Shift+A",  "Delete", "Ctrl+V",
                                  "Alt+F4", "Shift+Ins", "Ctrl+S Ctrl+T"};
    for (const char* text : broken) {
        setIni("file_open", text);
        start();
        EXPECT_EQ(keysOf("file_open"), "Ctrl+O") << text;
        EXPECT_EQ(stored("file_open"), text);
        platform::DestroyAllWindows();
    }
    EXPECT_TRUE(asked.empty());
}

TEST_F(Shortcuts, KeysOfAnotherCommandAreIgnored) {
    setIni("file_open", "Ctrl+S");  // File-Save has it
    start();
    EXPECT_EQ(keysOf("file_open"), "Ctrl+O");
    EXPECT_EQ(keysOf("file_save"), "Ctrl+S");
}

TEST_F(Shortcuts, OfTwoSettingsWithTheSameKeysTheFirstOfTheMenuHolds) {
    setIni("run_start", "Ctrl+Q");
    setIni("file_open", "Ctrl+Q");
    start();
    EXPECT_EQ(keysOf("file_open"), "Ctrl+Q");
    EXPECT_EQ(keysOf("run_start"), "F9");
}

TEST_F(Shortcuts, TwoCommandsMayHaveEachOthersKeys) {
    setIni("file_open", "Ctrl+S");
    setIni("file_save", "Ctrl+O");
    start();
    EXPECT_EQ(keysOf("file_open"), "Ctrl+S");
    EXPECT_EQ(keysOf("file_save"), "Ctrl+O");
}

TEST_F(Shortcuts, ASettingThatFallsTakesWithItWhatNeededIt) {
    setIni("file_open", "Ctrl+S");          // free, as File-Save has Ctrl+N
    setIni("file_save", "Ctrl+N");          // free, as File-New has Ctrl+W
    setIni("file_new_textfile", "Ctrl+W");  // not free: File-Close keeps it
    start();
    EXPECT_EQ(keysOf("file_new_textfile"), "Ctrl+N");
    EXPECT_EQ(keysOf("file_save"), "Ctrl+S");
    EXPECT_EQ(keysOf("file_open"), "Ctrl+O");
    EXPECT_EQ(keysOf("file_close"), "Ctrl+W");
}

TEST_F(Shortcuts, OnlyWhatDiffersIsStored) {
    setIni("nobody_knows", "Ctrl+9");
    start();
    std::vector<CommandKeys> commands = COMMANDKEYS();
    const auto put = [&](std::string_view setting, const std::string& keys) {
        const_cast<CommandKeys*>(find(commands, setting))->keys = keys;
        SAVESHORTCUTS(commands);
    };
    const std::string before = PROFILESTRKEYS(ini(), section);
    put("file_save_all", "Ctrl+Shift+A");
    EXPECT_EQ(stored("file_save_all"), "Ctrl+Shift+A");
    EXPECT_EQ(keysOf("file_save_all"), "Ctrl+Shift+A");
    put("file_save", "");
    EXPECT_EQ(stored("file_save"), "none");
    EXPECT_EQ(PROFILESTRKEYS(ini(), section), before + "file_save_all\nfile_save\n");
    put("file_save", "Ctrl+S");
    put("file_save_all", "");
    EXPECT_EQ(PROFILESTRKEYS(ini(), section), before);
    EXPECT_EQ(stored("nobody_knows"), "Ctrl+9");
    const std::string text = read(ini());
    SAVESHORTCUTS(commands);
    EXPECT_EQ(read(ini()), text);
}

TEST_F(Shortcuts, AWindowsOwnMenuHasItsOwnKeys) {
    setIni("Second.things_undo", "F8");  // which is Main's too
    setIni("things_do", "Ctrl+9");       // no command of Main
    start();
    loadSecond();
    APPLYSHORTCUTS(Second);
    EXPECT_EQ(GetShortcut(FINDCONTROL(Second, "things_do")), "F9");
    EXPECT_EQ(GetShortcut(FINDCONTROL(Second, "things_undo")), "F8");
    EXPECT_EQ(keysOf("run_start"), "F9");
    const std::vector<CommandKeys> commands = COMMANDKEYS();
    const CommandKeys* command = find(commands, "Second.things_undo");
    ASSERT_NE(command, nullptr);
    EXPECT_EQ(command->title, "Things-Undo");
    EXPECT_EQ(command->usual, "");
    EXPECT_EQ(COMMANDWITHKEYS(commands, command->item, "F9")->setting, "Second.things_do");
    EXPECT_EQ(COMMANDWITHKEYS(commands, MAINCONTROL("file_open"), "F9")->setting, "run_start");
    EXPECT_EQ(COMMANDWITHKEYS(commands, MAINCONTROL("run_start"), "F9"), nullptr);
}

TEST_F(Shortcuts, KeysThatNoCommandCanHaveAreToldWithTheReason) {
    const struct {
        const char *keys, *reason;
    } cases[] = {{"F1", "F1 shows the help of every window."},
                 {"F2", "F2 shows the file information of the text editor."},
                 {"Alt+F4", "Alt+F4 closes windows."},
                 {"Ctrl+Tab", "Tab leads from one control to the next."},
                 {"Ctrl+C", "Ctrl+C belongs to the text editor."},
                 {"Shift+Ins", "Shift+Ins belongs to the text editor."},
                 {"Ctrl+Home", "Ctrl+Home belongs to the text editor."},
                 {"Alt+T", "Alt+T opens menus."},
                 {"A", "A is needed without Ctrl and Alt."},
                 {"Shift+Enter", "Shift+Enter is needed without Ctrl and Alt."},
                 {"", "These keys have no name by which a command could have them."}};
    for (const auto& one : cases) EXPECT_EQ(SHORTCUTFAULT(one.keys), one.reason) << one.keys;
    for (const char* good : {"Ctrl+K", "Ctrl+Shift+K", "Ctrl+Alt+K", "Alt+1", "F3", "Shift+F1", "Ctrl+F2",
                             "F24", "Ctrl+Space", "Ctrl+Enter", "Alt+Home", "Alt+Up"})
        EXPECT_EQ(SHORTCUTFAULT(good), "") << good;
}

// ---- the dialog ----

class KeysDialog : public Shortcuts {
protected:
    static Object in(std::string_view control) { return FINDCONTROL(KeysOptionsDlg, control); }
    void open() {
        Load(KeysOptionsDlg);
        ASSERT_TRUE(IsLoaded(KeysOptionsDlg)) << ErrorDetails();
        Show(KeysOptionsDlg, false);
    }
    static void choose(const std::string& title) {
        for (int row = 1; row <= GetListCount(in("iconlist1")); row++)
            if (GetList(in("iconlist1"), row).starts_with(title + "\t"))
                return platform::userRow(*platform::findControl(in("iconlist1")), row);
        FAIL() << title;
    }
    static void pressKeys(const std::string& keys) {
        SetText(in("edtkeys"), keys);
        platform::userChange(*platform::findControl(in("edtkeys")));
    }
    static void press(std::string_view button) { platform::userCommand(*platform::findControl(in(button))); }
    static std::string row() { return GetList(in("iconlist1"), GetListIndex(in("iconlist1"))); }
    static std::string remark() { return GetCaption(in("lblremark")); }
};

TEST_F(KeysDialog, AssignedKeysHoldFromOkOn) {
    start();
    open();
    choose("File-Save All");
    EXPECT_EQ(row(), "File-Save All\t\t");
    EXPECT_FALSE(GetEnabled(in("btnassign")));
    pressKeys("Ctrl+Shift+A");
    EXPECT_EQ(remark(), "Ctrl+Shift+A is free.");
    press("btnassign");
    EXPECT_EQ(row(), "File-Save All\tCtrl+Shift+A\t");
    EXPECT_EQ(GetText(in("edtkeys")), "");
    EXPECT_EQ(keysOf("file_save_all"), "");
    press("pushbutton1");
    EXPECT_FALSE(IsLoaded(KeysOptionsDlg));
    EXPECT_EQ(keysOf("file_save_all"), "Ctrl+Shift+A");
    EXPECT_EQ(stored("file_save_all"), "Ctrl+Shift+A");
}

TEST_F(KeysDialog, ReturnInTheFieldAssigns) {
    start();
    open();
    choose("File-Save All");
    pressKeys("Ctrl+K");
    platform::userKey(*platform::findWindow(KeysOptionsDlg), platform::findControl(in("edtkeys")),
                      KEY_RETURN);
    ASSERT_TRUE(IsLoaded(KeysOptionsDlg));
    EXPECT_EQ(row(), "File-Save All\tCtrl+K\t");
    platform::userKey(*platform::findWindow(KeysOptionsDlg), platform::findControl(in("edtkeys")),
                      KEY_RETURN);
    EXPECT_FALSE(IsLoaded(KeysOptionsDlg));  // there is nothing to assign: it is OK
    EXPECT_EQ(keysOf("file_save_all"), "Ctrl+K");
}

TEST_F(KeysDialog, AConflictIsToldWithTheOtherCommandAndAskedAbout) {
    start();
    open();
    choose("File-Save All");
    pressKeys("Ctrl+S");
    EXPECT_EQ(remark(), "Ctrl+S is used by File-Save.");
    answers = {"&No", "&Yes"};
    press("btnassign");
    EXPECT_EQ(asked.back().title, "Tools-Options-Keyboard");
    EXPECT_EQ(lastText(), "Ctrl+S is used by File-Save.\nDo you want File-Save All to have it instead?");
    EXPECT_EQ(row(), "File-Save All\t\t");
    press("btnassign");
    EXPECT_EQ(row(), "File-Save All\tCtrl+S\t");
    choose("File-Save");
    EXPECT_EQ(row(), "File-Save\t\tCtrl+S");
    press("pushbutton1");
    EXPECT_EQ(keysOf("file_save_all"), "Ctrl+S");
    EXPECT_EQ(keysOf("file_save"), "");
    EXPECT_EQ(stored("file_save"), "none");
    EXPECT_EQ(GetHint(MAINCONTROL("btnfile_save")), "Save");
}

TEST_F(KeysDialog, KeysThatCannotBeHadAreToldAndNotAssigned) {
    start();
    open();
    choose("File-Save All");
    for (const auto& [keys, told] :
         {std::pair{"Ctrl+C", "Ctrl+C belongs to the text editor."}, {"Alt+F", "Alt+F opens menus."}}) {
        pressKeys(keys);
        EXPECT_EQ(remark(), told);
        EXPECT_FALSE(GetEnabled(in("btnassign")));
    }
    pressKeys("Ctrl+O");
    choose("File-Open");
    EXPECT_EQ(remark(), "File-Open has Ctrl+O.");
    EXPECT_FALSE(GetEnabled(in("btnassign")));
}

TEST_F(KeysDialog, OneCommandOrAllGetTheirUsualKeysBack) {
    setIni("file_save", "none");
    setIni("file_save_all", "Ctrl+S");
    setIni("run_start", "Ctrl+9");
    start();
    open();
    EXPECT_TRUE(GetEnabled(in("btnallusual")));
    choose("File-Open");
    EXPECT_FALSE(GetEnabled(in("btnusual")));
    EXPECT_TRUE(GetEnabled(in("btnremove")));
    press("btnremove");
    EXPECT_EQ(row(), "File-Open\t\tCtrl+O");
    EXPECT_FALSE(GetEnabled(in("btnremove")));
    press("btnusual");
    EXPECT_EQ(row(), "File-Open\tCtrl+O\tCtrl+O");
    choose("File-Save");  // its keys are another's now
    answers = {"&No"};
    press("btnusual");
    EXPECT_EQ(lastText(), "Ctrl+S is used by File-Save All.\nDo you want File-Save to have it instead?");
    EXPECT_EQ(row(), "File-Save\t\tCtrl+S");
    press("btnallusual");
    EXPECT_EQ(row(), "File-Save\tCtrl+S\tCtrl+S");
    EXPECT_FALSE(GetEnabled(in("btnallusual")));
    press("pushbutton1");
    EXPECT_EQ(PROFILESTRKEYS(ini(), section), "");
    EXPECT_EQ(keysOf("run_start"), "F9");
    EXPECT_EQ(keysOf("file_save_all"), "");
}

TEST_F(KeysDialog, EveryWayOutButOkChangesNothing) {
    start();
    const std::string before = read(ini());
    const std::function<void()> ways[] = {
        [] { press("pushbutton2"); },
        [] { platform::userKey(*platform::findWindow(KeysOptionsDlg), nullptr, KEY_ESCAPE); },
        [] { platform::userClose(*platform::findWindow(KeysOptionsDlg)); }};
    for (const auto& way : ways) {
        open();
        choose("File-Save All");
        pressKeys("Ctrl+K");
        press("btnassign");
        way();
        EXPECT_FALSE(IsLoaded(KeysOptionsDlg));
        EXPECT_EQ(keysOf("file_save_all"), "");
        EXPECT_EQ(read(ini()), before);
    }
}

TEST_F(KeysDialog, KeysOfAnotherWindowAreToldAndMayBeHad) {
    start();
    loadSecond();
    APPLYSHORTCUTS(Second);
    open();
    choose("Things-Undo");
    pressKeys("F8");
    EXPECT_EQ(remark(), "F8 is also Run-Start in Debugger in another window.");
    press("btnassign");
    EXPECT_TRUE(asked.empty());
    press("pushbutton1");
    EXPECT_EQ(stored("Second.things_undo"), "F8");
    EXPECT_EQ(keysOf("run_debug"), "F8");
}

TEST_F(KeysDialog, KeysOfBothWindowsAreKeptApartAcrossStarts) {
    setIni("run_start", "Ctrl+9");
    start();
    loadSecond();
    APPLYSHORTCUTS(Second);
    open();
    choose("Things-Do");
    press("btnremove");
    press("pushbutton1");
    EXPECT_EQ(stored("Second.things_do"), "none");
    EXPECT_EQ(stored("run_start"), "Ctrl+9");
}

}  // namespace
}  // namespace tarn
