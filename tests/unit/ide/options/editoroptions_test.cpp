// SPDX-License-Identifier: GPL-3.0-or-later
//
// The options of the editor and the colours of highlighting, on the object model alone.
#include "ide/options/editoroptions.h"

#include "ide/options/colours.h"
#include "library/source/symbols.h"
#include "support/ide_fixture.h"

#include <functional>

namespace tarn {
namespace {

class EditorOptions : public IdeTest {
protected:
    static Object in(std::string_view control) { return FINDCONTROL(EditorOptionsDlg, control); }
    void SetUp() override {
        IdeTest::SetUp();
        loadWindows();
        EDITWNDOPEN(SDIEdit, write("a.cls", "Tarnwick Class a\n"), false, 0);
    }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }
    void load() {
        Load(EditorOptionsDlg);
        ASSERT_TRUE(IsLoaded(EditorOptionsDlg)) << ErrorDetails();
        Show(EditorOptionsDlg, false);
    }
    void setIni(std::string_view key, std::string_view value, std::string_view section = "EditorOptionsDlg") {
        PROFILESTRPUT(ini(), section, key, value);
    }
    std::string stored(std::string_view key, std::string_view section = "EditorOptionsDlg") {
        return PROFILESTRGET(ini(), section, key);
    }
    static void click(std::string_view control, int value = 1) {
        platform::userValue(*platform::findControl(in(control)), value);
    }
    static void press(std::string_view button) { platform::userCommand(*platform::findControl(in(button))); }
    static void pickRow(std::string_view list, int row) {
        platform::userRow(*platform::findControl(in(list)), row);
    }
    static void typeInto(std::string_view control, const std::string& text) {
        SetText(in(control), text);
        platform::userChange(*platform::findControl(in(control)));
    }
};

TEST_F(EditorOptions, EveryControlComesFromItsKeyAndGoesBackToIt) {
    for (const char* key :
         {"chkSoundEffects", "HiliteOn", "StatusBarOn", "NumberBarOn", "AutoIndentOn", "FullScreenOn"}) {
        for (const char* value : {"1", "0"}) {
            setIni(key, value);
            load();
            EXPECT_EQ(STR(GetValue(in(key))), value) << key;
            click(key, value[0] == '1' ? 0 : 1);
            press("pushbutton1");
            EXPECT_FALSE(IsLoaded(EditorOptionsDlg)) << key;
            EXPECT_EQ(stored(key), value[0] == '1' ? "0" : "1") << key;
        }
    }
    for (const auto& [key, value] : {std::pair{"AutoBackupInterval", "60"}, {"AutoBackupMaxfiles", "99"}}) {
        setIni(key, "7");
        load();
        EXPECT_EQ(GetText(in(key)), "7");
        typeInto(key, value);
        press("pushbutton1");
        EXPECT_EQ(stored(key), value);
    }
}

TEST_F(EditorOptions, TheCodeWindowFollowsAtOnce) {
    load();
    for (const char* name : {"statusbaron", "numberbaron", "autoindenton"}) click(name, 0);
    press("pushbutton1");
    EXPECT_EQ(GetFlags(SDIEdit) & (STATUSBAR | NUMBERBAR | AUTOINDENT), 0);
    load();
    for (const char* name : {"statusbaron", "numberbaron", "autoindenton"}) click(name, 1);
    press("pushbutton1");
    EXPECT_EQ(GetFlags(SDIEdit) & (STATUSBAR | NUMBERBAR | AUTOINDENT), STATUSBAR | NUMBERBAR | AUTOINDENT);
}

TEST_F(EditorOptions, LettersInTheNumbersBeep) {
    load();
    for (const char* field : {"autobackupinterval", "autobackupmaxfiles"}) {
        const int beeps = platform::headlessBeeps();
        typeInto(field, "1x");
        EXPECT_EQ(platform::headlessBeeps(), beeps + 1) << field;
        typeInto(field, "12");
        typeInto(field, "");
        EXPECT_EQ(platform::headlessBeeps(), beeps + 1) << field;
    }
}

TEST_F(EditorOptions, NumbersOutsideTheirLimitsAreRefusedAndTheDialogStays) {
    const struct {
        const char *field, *text, *message;
    } cases[] = {{"autobackupinterval", "61", "Minutes between backups should be between 0 and 60."},
                 {"autobackupinterval", "-1", "Minutes between backups should be between 0 and 60."},
                 {"autobackupinterval", "", "Minutes between backups should be between 0 and 60."},
                 {"autobackupinterval", "ten", "Minutes between backups should be between 0 and 60."},
                 {"autobackupmaxfiles", "100", "Backups kept of a file should be between 0 and 99."},
                 {"autobackupmaxfiles", "1.5", "Backups kept of a file should be between 0 and 99."}};
    const std::string before = read(ini());
    for (const auto& one : cases) {
        load();
        typeInto(one.field, one.text);
        press("pushbutton1");
        EXPECT_TRUE(IsLoaded(EditorOptionsDlg)) << one.text;
        EXPECT_EQ(asked.back().title, "Tools-Options-Editor");
        EXPECT_EQ(lastText(), one.message) << one.text;
        press("pushbutton2");
        EXPECT_EQ(read(ini()), before);
    }
    for (const char* field : {"autobackupinterval", "autobackupmaxfiles"}) {
        load();
        typeInto(field, "0");
        press("pushbutton1");
        EXPECT_FALSE(IsLoaded(EditorOptionsDlg));
    }
}

// ---- colours ----

TEST_F(EditorOptions, TheListsHoldTheNamedColoursWithTheirPictures) {
    load();
    for (const char* list : {"lstkeywords", "lststrings", "lstcomments", "lstfuturekeywords"}) {
        ASSERT_EQ(GetListCount(in(list)), 16) << list;
        EXPECT_EQ(GetList(in(list), 1), "Black");
        EXPECT_EQ(GetList(in(list), 2), "Dark blue");
        EXPECT_EQ(GetList(in(list), 16), "White");
        EXPECT_EQ(platform::findControl(in(list))->rows[15].picture, "colour16");
    }
}

TEST_F(EditorOptions, EachColourGoesToItsValueAndBack) {
    const char* const values[] = {"0x000000", "0x800000", "0x008000", "0x808000", "0x000080", "0x800080",
                                  "0x008080", "0x808080", "0xC0C0C0", "0xFF0000", "0x00FF00", "0xFFFF00",
                                  "0x0000FF", "0xFF00FF", "0x00FFFF", "0xFFFFFF"};
    load();
    const Object list = in("lststrings"), radio = in("rbstrings1");
    const char* const styles[] = {"", " BOLD", " ITALIC"};
    for (int row = 1; row <= 16; row++) {
        for (int style = 0; style < 3; style++) {
            SetListIndex(list, row);
            SetValue(in("rbstrings" + STR(style + 1)), 1);
            const std::string text = std::string(values[row - 1]) + styles[style];
            EXPECT_EQ(HILITEVALUESTOSTR(list, radio), text);
            setIni("Strings", text, "Hilite.cls");
            LOADHILITEVALUES(ini(), "Hilite.cls", "Strings", list, radio, in("lblstrings"));
            EXPECT_EQ(GetListIndex(list), row);
            EXPECT_EQ(Controlselectionpos(radio), style + 1);
            EXPECT_EQ(GetCaption(in("lblstrings")), text);
        }
    }
}

TEST_F(EditorOptions, AListWithoutASelectionGivesZero) {
    load();
    SetListIndex(in("lststrings"), 0);
    SetValue(in("rbstrings2"), 1);
    EXPECT_EQ(HILITEVALUESTOSTR(in("lststrings"), in("rbstrings1")), "0");
}

TEST_F(EditorOptions, AColourWithoutANameIsShownAndStays) {
    for (const char* text : {"0x123456 BOLD", "0xabcdef", "0x123456 bold italic", "0X00ff01 ITALIC"}) {
        setIni("Comments", text, "Hilite.cls");
        load();
        EXPECT_EQ(GetListCount(in("lstcomments")), 17);
        EXPECT_EQ(GetListIndex(in("lstcomments")), 17);
        press("pushbutton1");
        EXPECT_EQ(stored("Comments", "Hilite.cls"), text);
    }
}

TEST_F(EditorOptions, BrokenColoursSelectNothingAndStay) {
    for (const char* text : {"red", "0x", "0xGG", "0x1000000", "-1", "BOLD 0x000080", ""}) {
        setIni("Comments", text, "Hilite.cls");
        load();
        EXPECT_EQ(GetListIndex(in("lstcomments")), 0) << text;
        press("pushbutton1");
        EXPECT_EQ(stored("Comments", "Hilite.cls"), text);
    }
}

TEST_F(EditorOptions, AChangedColourGoesToTheSectionsOfAllLanguages) {
    setIni("Strings", "0x000001", "HILITE.rc");
    setIni("StringsList", "\"\"\"", "HILITE.rc");
    setIni("Comments", "0x000002", "HILITE.rc");
    load();
    pickRow("lststrings", 13);
    click("rbstrings3");
    press("pushbutton1");
    EXPECT_EQ(stored("Strings", "Hilite.cls"), "0x0000FF ITALIC");
    EXPECT_EQ(stored("Strings", "Hilite.rc"), "0x0000FF ITALIC");
    EXPECT_EQ(stored("Comments", "Hilite.rc"), "0x000002");
    EXPECT_EQ(stored("Comments", "Hilite.cls"), "0x008000 ITALIC");
    EXPECT_EQ(stored("Strings", "EditorOptionsDlg"), "");
    EXPECT_NE(GetTokens(SDIEdit).find("0x0000FF ITALIC"), std::string::npos);
}

TEST_F(EditorOptions, TokensAreSetAgainOnlyWhenHighlightingHasChanged) {
    SetTokens(SDIEdit, "mark - 0x000001\n");
    load();
    click("statusbaron", 0);
    typeInto("autobackupmaxfiles", "3");
    press("pushbutton1");
    EXPECT_EQ(GetTokens(SDIEdit), "mark - 0x000001\n");
    load();
    click("hiliteon", 0);
    press("pushbutton1");
    EXPECT_EQ(GetTokens(SDIEdit), "");
    load();
    click("hiliteon", 1);
    press("pushbutton1");
    EXPECT_EQ(GetTokens(SDIEdit), MAKETOKENSTR(ini(), ".cls"));
    EXPECT_NE(GetTokens(SDIEdit), "");
}

TEST_F(EditorOptions, TheColoursAreEnabledOnlyWhileHighlightingIsOn) {
    const char* const controls[] = {"lstkeywords", "lststrings", "lstcomments", "lstfuturekeywords",
                                    "rbkeywords1", "rbstrings2", "rbcomments3", "rbfuturekeywords1"};
    for (const bool on : {true, false}) {
        setIni("HiliteOn", on ? "1" : "0");
        load();
        for (const char* control : controls) EXPECT_EQ(GetEnabled(in(control)), on) << control;
        click("hiliteon", on ? 0 : 1);
        for (const char* control : controls) EXPECT_EQ(GetEnabled(in(control)), !on) << control;
        for (const char* other :
             {"hiliteon", "statusbaron", "autobackupinterval", "pushbutton1", "pushbutton3"})
            EXPECT_TRUE(GetEnabled(in(other))) << other;
        press("pushbutton2");
    }
}

TEST_F(EditorOptions, EveryWayOutButOkChangesNothing) {
    const std::string before = read(ini()), tokens = GetTokens(SDIEdit);
    const int flags = GetFlags(SDIEdit);
    const std::function<void()> ways[] = {
        [] { press("pushbutton2"); },
        [] { platform::userKey(*platform::findWindow(EditorOptionsDlg), nullptr, KEY_ESCAPE); },
        [] { platform::userClose(*platform::findWindow(EditorOptionsDlg)); }};
    for (const auto& way : ways) {
        load();
        click("statusbaron", 0);
        click("hiliteon", 0);
        pickRow("lstkeywords", 1);
        way();
        EXPECT_FALSE(IsLoaded(EditorOptionsDlg));
        EXPECT_EQ(read(ini()), before);
        EXPECT_EQ(GetTokens(SDIEdit), tokens);
        EXPECT_EQ(GetFlags(SDIEdit), flags);
    }
}

// ---- the command ----

class EditorOptionsCommand : public IdeTest {
protected:
    // Opens the dialog by its menu item; `doing` is done while it is open.
    void open(const std::function<void()>& doing) {
        bool done = false;
        platform::view().setIdle([&] {
            if (done || !ISSHOWN(EditorOptionsDlg)) return;
            done = true;
            doing();
        });
        pick("tools_options_editor");
        platform::view().setIdle({});
        EXPECT_TRUE(done);
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
    }
    static void put(std::string_view control, const std::string& text) {
        SetText(FINDCONTROL(EditorOptionsDlg, control), text);
    }
    static void press(std::string_view button) {
        platform::userCommand(*platform::findControl(FINDCONTROL(EditorOptionsDlg, button)));
    }
    static std::string timer() { return GetCaption(MAINCONTROL("lblautobackuptimer")); }
};

TEST_F(EditorOptionsCommand, TheCodeWindowMaySpreadOverTheWholeScreenAtOnce) {
    start();
    EXPECT_NE(GetMaxPosition(SDIEdit), Rect{});
    open([] {
        SetValue(FINDCONTROL(EditorOptionsDlg, "FullScreenOn"), 1);
        press("pushbutton1");
    });
    EXPECT_EQ(GetMaxPosition(SDIEdit), Rect{});
    open([] {
        SetValue(FINDCONTROL(EditorOptionsDlg, "FullScreenOn"), 0);
        press("pushbutton1");
    });
    EXPECT_NE(GetMaxPosition(SDIEdit), Rect{});
}

TEST_F(EditorOptionsCommand, ACancelledDialogLeavesTheSizeAlone) {
    start();
    SetMaxPosition(SDIEdit, Rect{1, 2, 300, 400});
    open([] { press("pushbutton2"); });
    EXPECT_EQ(GetMaxPosition(SDIEdit), (Rect{1, 2, 300, 400}));
}

TEST_F(EditorOptionsCommand, AnIntervalOfZeroStopsTheTimerAtOnceAndAnotherStartsIt) {
    start();
    open([] {
        put("autobackupinterval", "0");
        press("pushbutton1");
    });
    EXPECT_EQ(timer(), "0");
    open([] {
        put("autobackupinterval", "5");
        press("pushbutton1");
    });
    EXPECT_EQ(timer(), "1");
    SetCaption(MAINCONTROL("lblautobackuptimer"), "1");
    open([] {
        put("autobackupinterval", "0");
        press("pushbutton2");
    });
    EXPECT_EQ(timer(), "1");
}

}  // namespace
}  // namespace tarn
