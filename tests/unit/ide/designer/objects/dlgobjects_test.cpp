// SPDX-License-Identifier: GPL-3.0-or-later
//
// Adding objects and changing their order, and the Toolbox.
#include "support/dialog_editor_fixture.h"

namespace tarn {
namespace {

class DialogObjects : public DialogEditorTest {
protected:
    void openEmpty(const std::string& own = "") { open(dialog("", "Dlg", own)); }
    // One control a call: "x y w h" each.
    void openStack(const std::vector<std::string>& places) {
        std::string controls;
        int n = 0;
        for (const std::string& place : places) controls += control("LABEL", "L" + STR(++n), place);
        open(dialog(controls));
    }
    static bool moveZ(int direction) {
        bool moved = false;
        DESIGNSTEP([&] { moved = MOVECONTROLZ(DATALIST(), SELECTEDOBJECT(), direction); });
        return moved;
    }
};

TEST_F(DialogObjects, EachTypeHasItsSize) {
    const struct {
        const char *type, *option, *position;
    } cases[] = {
        {"Label", "ctl", "0 0 80 12"},
        {"Edit", "", "0 0 80 12"},
        {"Checkbox", "", "0 0 80 12"},
        {"Radiobutton", "", "0 0 80 12"},
        {"Scrollbar", "horizontal", "0 0 80 12"},
        {"Scrollbar", "", "0 0 80 12"},
        {"Scrollbar", "vertical", "0 0 12 64"},
        {"Progressbar", "HORIZONTAL", "0 0 80 12"},
        {"Progressbar", "Vertical", "0 0 12 64"},
        {"Progressbar", "other", "0 0 12 64"},
        {"Pushbutton", "", "0 0 55 15"},
        {"Bitmapbutton", "", "0 0 16 16"},
        {"Groupbox", "", "0 0 80 64"},
        {"Combobox", "", "0 0 80 64"},
        {"Listbox", "", "0 0 80 64"},
        {"Iconlist", "", "0 0 80 64"},
        {"Image", "", "0 0 80 64"},
        {"Shape", "", "0 0 24 24"},
        {"Icon", "ctl", "0 0 21 20"},  // of 32 x 32 pixels, of letters of 6 x 13
    };
    openEmpty();
    for (const auto& one : cases) {
        EXPECT_TRUE(ADDOBJECT(DialogDlg, one.type, one.option, -1, -1)) << one.type;
        EXPECT_EQ(property(2, "POSITION"), one.position) << one.type << " " << one.option;
        EXPECT_EQ(property(2, "TYPEOF"), one.type);
        EXPECT_EQ(SELECTEDOBJECT(), 2);
        key(KEY_DELETE);
    }
}

TEST_F(DialogObjects, BarsGetTheirDirection) {
    const struct {
        const char *option, *alignment;
    } cases[] = {{"horizontal", "4"}, {"vertical", "5"}, {"Vertical", "5"}};
    openEmpty();
    ADDOBJECT(DialogDlg, "Scrollbar", "", -1, -1);
    const std::string plain = property(2, "ALIGNMENT");
    EXPECT_EQ(plain.substr(0, 1), "0") << "an empty option gives the size and no direction";
    for (const auto& one : cases) {
        ADDOBJECT(DialogDlg, "Scrollbar", one.option, -1, -1);
        EXPECT_EQ(property(count(), "ALIGNMENT"), one.alignment) << one.option;
    }
}

TEST_F(DialogObjects, NamesAndCaptionsAreTheNextFree) {
    open(dialog(control("LABEL", "Label7", "1 1 9 9") + control("LABEL", "label3", "1 1 9 9")));
    ADDOBJECT(DialogDlg, "label", "ctl", -1, -1);
    EXPECT_EQ(property(4, "NAME"), "Label8");
    EXPECT_NE(item(4).find("\nCAPTION=\"Label8\"\n"), std::string::npos) << item(4);
    EXPECT_EQ(property(4, "TYPEOF"), "Label");
    ADDOBJECT(DialogDlg, "Iconlist", "ctl", -1, -1);
    EXPECT_EQ(property(5, "NAME"), "Iconlist1");
    ADDOBJECT(DialogDlg, "Groupbox", "", -1, -1);
    EXPECT_EQ(property(6, "NAME"), "Groupbox1");
    EXPECT_TRUE(DIALOGGETMODIFY());
}

TEST_F(DialogObjects, TheNinthPlaceInADialogOf64UnitsIsAtTheTop) {
    open("Dlg DIALOG\n  POSITION=0 0 200 64\nEND\n");
    for (int i = 0; i < 9; ++i) ADDOBJECT(DialogDlg, "Shape", "", -1, -1);
    EXPECT_EQ(property(2, "POSITION"), "0 0 24 24");
    EXPECT_EQ(property(9, "POSITION"), "56 56 24 24");
    EXPECT_EQ(property(10, "POSITION"), "64 0 24 24");
}

TEST_F(DialogObjects, PlacesEndInsideTheDialog) {
    open("Dlg DIALOG\n  POSITION=0 0 40 200\nEND\n");
    for (int i = 0; i < 9; ++i) ADDOBJECT(DialogDlg, "Shape", "", -1, -1);
    EXPECT_EQ(property(6, "POSITION"), "32 32 24 24");
    EXPECT_EQ(property(10, "POSITION"), "32 32 24 24");
}

TEST_F(DialogObjects, AGivenPointIsThatOfTheWindow) {
    openEmpty();
    const auto place = at(60, 26);
    ADDOBJECT(DialogDlg, "Label", "", place.x, place.y);
    EXPECT_EQ(property(2, "POSITION"), "40 16 80 12");
}

TEST_F(DialogObjects, A256thControlIsRefused) {
    std::string controls;
    for (int i = 1; i <= 255; ++i) controls += control("LABEL", "L" + STR(i), "1 1 8 8");
    open(dialog(controls));
    EXPECT_FALSE(ADDOBJECT(DialogDlg, "Label", "", -1, -1));
    EXPECT_EQ(lastText(), "Cannot add a control object, this dialog has too many control objects.\nThe "
                          "maximum number allowed is "
                          "255.\n");
    EXPECT_EQ(count(), 256);
    EXPECT_FALSE(DIALOGGETMODIFY());
    SELECTOBJECT(2);
    key(KEY_DELETE);
    EXPECT_TRUE(ADDOBJECT(DialogDlg, "Label", "", -1, -1));
    DIALOGSAVE();
    EXPECT_FALSE(DIALOGGETMODIFY()) << lastText();
}

TEST_F(DialogObjects, EditWindowsTakeNoControls) {
    open("Dlg EDITWINDOW\n  POSITION=0 0 200 64\nEND\n");
    EXPECT_FALSE(ADDOBJECT(DialogDlg, "Label", "", -1, -1));
    EXPECT_EQ(lastText(), "Cannot add a control object, controls can only be added to Dialogs.\nThe type of "
                          "the current window is "
                          "Editwindow.");
    EXPECT_TRUE(ADDOBJECT(DialogDlg, "Menuitem", "ctl", -1, -1)) << "but a menu";
}

TEST_F(DialogObjects, AMenuIsNamedAfterThoseOfTheFileAndThereIsOneAtMost) {
    open(dialog("") + "Menu4 MENU\nEND\n");
    EXPECT_TRUE(ADDOBJECT(DialogDlg, "menuitem", "ctl", -1, -1));
    EXPECT_EQ(property(1, "MENU"), "Menu5");
    EXPECT_EQ(property(-1, "NAME"), "Menu5");
    EXPECT_EQ(property(-1, "TYPEOF"), "Menuitem");
    EXPECT_EQ(property(-1, "POSITION"), "0");
    EXPECT_EQ(SELECTEDOBJECT(), -1);
    EXPECT_FALSE(ADDOBJECT(DialogDlg, "menuitem", "ctl", -1, -1));
    EXPECT_EQ(lastText(), "Cannot add a menu, this window already has a menu.");
    EXPECT_EQ(count("menulist"), 1);
    DIALOGSAVE();
    EXPECT_FALSE(DIALOGGETMODIFY()) << lastText();
    EXPECT_NE(read(file).find("Menu5 MENU"), std::string::npos);
    asked.clear();
    OPENDIALOG(file, "Dlg");
    EXPECT_TRUE(asked.empty()) << lastText();
    EXPECT_EQ(count("menulist"), 1);
}

TEST_F(DialogObjects, NothingIsAddedToAFileThatHasGoneOrOfAnUnknownType) {
    openEmpty();
    EXPECT_FALSE(ADDOBJECT(DialogDlg, "Gadget", "", -1, -1));
    EXPECT_FALSE(ADDOBJECT(SDIEdit, "Label", "", -1, -1));
    std::filesystem::remove(file);
    EXPECT_FALSE(ADDOBJECT(DialogDlg, "Label", "", -1, -1));
    EXPECT_EQ(count(), 1);
}

// ---- order ----

TEST_F(DialogObjects, MovesOnTopOfAllThatItOverlaps) {
    openStack({"0 0 20 20", "19 19 5 5", "20 20 5 5", "0 0 5 5", "100 50 5 5"});
    SELECTOBJECT(2);
    answers = {"Yes please"};
    EXPECT_TRUE(moveZ(1));
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Move Control?");
    EXPECT_EQ(
        asked[0].text,
        "Label object L1 is underneath the following control(s):\n\n\tL2:Label\n\tL4:Label\n\nDo you want to "
        "move it on top of these?");
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"Yes please", "No thanks"}));
    EXPECT_EQ(names(), "Dlg\nL2\nL3\nL4\nL1\nL5\n");
    EXPECT_EQ(SELECTEDOBJECT(), 5);
    answers = {"Yes please"};
    EXPECT_TRUE(moveZ(-1));
    EXPECT_EQ(lastText(), "Label object L1 is above the following "
                          "control(s):\n\n\tL4:Label\n\tL2:Label\n\nDo you want to move it "
                          "underneath these?");
    EXPECT_EQ(names(), "Dlg\nL1\nL2\nL3\nL4\nL5\n");
    EXPECT_EQ(SELECTEDOBJECT(), 2);
}

TEST_F(DialogObjects, MovesToTheVeryTop) {
    openStack({"0 0 20 20", "5 5 5 5"});
    SELECTOBJECT(2);
    answers = {"Yes please"};
    press("up_tool");
    EXPECT_EQ(names(), "Dlg\nL2\nL1\n");
    EXPECT_TRUE(DIALOGGETMODIFY());
    answers = {"Yes please"};
    press("down_tool");
    EXPECT_EQ(names(), "Dlg\nL1\nL2\n");
}

TEST_F(DialogObjects, NoThanksLeavesTheOrder) {
    openStack({"0 0 20 20", "5 5 5 5"});
    SELECTOBJECT(2);
    for (const char* answer : {"No thanks", ""}) {
        answers = {answer};
        EXPECT_FALSE(moveZ(1));
    }
    EXPECT_EQ(names(), "Dlg\nL1\nL2\n");
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(DialogObjects, WithoutAnOverlapOrAControlItBeeps) {
    openStack({"0 0 20 20", "20 0 5 5"});
    for (const int selected : {-1, 0, 1, 2, 3}) {
        SELECTOBJECT(selected);
        for (const int direction : {1, -1}) EXPECT_TRUE(beeps([=] { moveZ(direction); })) << selected;
    }
    EXPECT_TRUE(asked.empty());
}

TEST_F(DialogObjects, OfElevenOverlappingTenAreShown) {
    openStack(std::vector<std::string>(12, "0 0 9 9"));
    SELECTOBJECT(2);
    moveZ(1);
    EXPECT_NE(lastText().find("\tL11:Label\n\t...(more)...\n\nDo you"), std::string::npos) << lastText();
    EXPECT_EQ(lastText().find("L12"), std::string::npos);
    openStack(std::vector<std::string>(11, "0 0 9 9"));
    SELECTOBJECT(2);
    moveZ(1);
    EXPECT_NE(lastText().find("\tL11:Label\n\nDo you"), std::string::npos) << lastText();
}

// ---- the Toolbox ----

TEST_F(DialogObjects, EachButtonOfTheToolboxAddsWhatItsNameSays) {
    const struct {
        const char *button, *type;
    } cases[] = {{"icon_ctl", "Icon"},
                 {"Label_ctl", "Label"},
                 {"Edit_ctl", "Edit"},
                 {"Pushbutton_ctl", "Pushbutton"},
                 {"Bitmapbutton_ctl", "Bitmapbutton"},
                 {"Checkbox_ctl", "Checkbox"},
                 {"Radiobutton_ctl", "Radiobutton"},
                 {"Groupbox_ctl", "Groupbox"},
                 {"Combobox_ctl", "Combobox"},
                 {"Listbox_ctl", "Listbox"},
                 {"Iconlist_ctl", "Iconlist"},
                 {"Image_ctl", "Image"},
                 {"Shape_ctl", "Shape"},
                 {"Scrollbar_horizontal", "Scrollbar"},
                 {"Scrollbar_vertical", "Scrollbar"},
                 {"Progressbar_horizontal", "Progressbar"},
                 {"Progressbar_vertical", "Progressbar"}};
    openEmpty();
    for (const auto& one : cases) {
        press(one.button);
        EXPECT_EQ(property(count(), "TYPEOF"), one.type) << one.button;
        EXPECT_FALSE(GetHint(FINDCONTROL(ToolboxDlg, one.button)).empty()) << one.button;
    }
    EXPECT_EQ(count(), 18);
    EXPECT_EQ(property(15, "ALIGNMENT") + property(16, "ALIGNMENT"), "45");
    EXPECT_EQ(ControlUbound(FINDCONTROL(ToolboxDlg, "icon_ctl")), 18);
    DIALOGSAVE();
    EXPECT_FALSE(DIALOGGETMODIFY()) << lastText();
    OPENDIALOG(file, "Dlg");
    EXPECT_EQ(count(), 18);
}

TEST_F(DialogObjects, TheToolboxStandsAtTheLeftAndOnTop) {
    openEmpty();
    const Rect own = GetPosition(ToolboxDlg, WINDOW_UNIT);
    EXPECT_EQ(own.x, 20);
    EXPECT_EQ(own.y, (1080 - own.h) / 3);
    EXPECT_TRUE(platform::findWindow(ToolboxDlg)->onTop);
}

TEST_F(DialogObjects, KeysOfTheDialogBeepInTheToolbox) {
    openEmpty();
    for (const int code : {KEY_LEFT, KEY_RIGHT, KEY_UP, KEY_DOWN, KEY_DELETE, KEY_F2, KEY_F3, KEY_F4})
        EXPECT_TRUE(beeps([=] { EXPECT_TRUE(key(code, ToolboxDlg)); })) << code;
    EXPECT_TRUE(key(KEY_ESCAPE, ToolboxDlg));
    EXPECT_FALSE(IsLoaded(ToolboxDlg));
    EXPECT_TRUE(IsLoaded(DialogDlg));
}

TEST_F(DialogObjects, TheMenuShowsAndHidesTheToolbox) {
    EXPECT_FALSE(isEnabled("view_toolbox"));
    openEmpty();
    EXPECT_TRUE(GetChecked(MAINCONTROL("view_toolbox")));
    pick("view_toolbox");
    EXPECT_FALSE(TOOLBOXGETVISIBLE());
    EXPECT_FALSE(GetChecked(MAINCONTROL("view_toolbox")));
    pick("view_toolbox");
    EXPECT_TRUE(TOOLBOXGETVISIBLE());
    EXPECT_TRUE(GetChecked(MAINCONTROL("view_toolbox")));
}

TEST_F(DialogObjects, TheSelectionOfTheToolboxIsThePointer) {
    EXPECT_EQ(TOOLBOXGETSELECTION().type, "");
    openEmpty();
    EXPECT_EQ(TOOLBOXGETSELECTION().type, "pointer");
    EXPECT_EQ(TOOLBOXGETSELECTION().option, "tool");
    Unload(ToolboxDlg);
    EXPECT_EQ(TOOLBOXGETSELECTION().type + TOOLBOXGETSELECTION().option, "");
}

TEST_F(DialogObjects, ReturnPressesTheButtonWithTheFocusAndF6GoesBetweenTheWindows) {
    openEmpty();
    EXPECT_TRUE(key(117));
    EXPECT_EQ(ActiveWindow(), ToolboxDlg);
    platform::userKey(*platform::findWindow(ToolboxDlg),
                      platform::findControl(FINDCONTROL(ToolboxDlg, "Edit_ctl")), KEY_RETURN);
    EXPECT_EQ(property(2, "TYPEOF"), "Edit");
    EXPECT_EQ(ActiveWindow(), DialogDlg);
    key(117);
    EXPECT_TRUE(key(117, ToolboxDlg));
    EXPECT_EQ(ActiveWindow(), DialogDlg);
}

}  // namespace
}  // namespace tarn
