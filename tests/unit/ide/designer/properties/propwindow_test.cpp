// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Properties window beside the design, on the object model alone.
#include "ide/designer/properties/propshared.h"
#include "ide/designer/properties/propwindow.h"
#include "ide/shell/idecore.h"
#include "kernel/windows/focus.h"
#include "library/designer/propedit.h"
#include "library/designer/propedit_rows.h"
#include "library/settings/profstr.h"
#include "support/dialog_editor_fixture.h"

namespace tarn {
namespace {

class PropertyWindow : public DialogEditorTest {
protected:
    void TearDown() override {
        if (IsLoaded(DialogDlg)) DIALOGSETMODIFY(false);
        DialogEditorTest::TearDown();
    }

    // A label, two edits and a button, with the window open.
    void show() {
        open(dialog(control("LABEL", "one", "8 8 80 16", "    CAPTION=\"One\"  // kept\n") +
                    control("EDIT", "two", "8 30 80 16") +
                    control("EDIT", "three", "8 50 80 16", "    READONLY=1\n") +
                    control("PUSHBUTTON", "ok", "8 70 40 16")));
        PROPERTYWINDOWTOGGLE();
    }
    static Object part(const std::string& name) { return FINDCONTROL(PropertyDlg, name); }
    static std::string note() { return GetCaption(part("lblnote")); }
    static std::string title() { return GetCaption(part("lbltitle")); }
    // The visible row of a property; 0 if there is none.
    static int rowOf(const std::string& property) {
        for (int n = 1; n <= PROPERTYROWS(PropertyDlg); ++n) {
            const PropertyRow row = PROPERTYROW(PropertyDlg, n);
            if (GetVisible(row.value) && GetCaption(row.name) == property) return n;
        }
        return 0;
    }
    static Object field(const std::string& property) {
        return PROPERTYROW(PropertyDlg, rowOf(property)).value;
    }
    static std::string value(const std::string& property) { return GetText(field(property)); }
    static std::string rows() {
        std::string names;
        for (int n = 1; n <= PROPERTYROWS(PropertyDlg); ++n) {
            const PropertyRow row = PROPERTYROW(PropertyDlg, n);
            if (GetVisible(row.value)) names += GetCaption(row.name) + " ";
        }
        return names;
    }
    static void type(const Object& edit, const std::string& text) {
        auto* const control = platform::findControl(edit);
        control->text->setText(text);
        platform::userChange(*control);
    }
    static bool press(const Object& control, int code) {
        const bool handled =
            platform::userKey(*platform::findWindow(PropertyDlg), platform::findControl(control), code);
        platform::DoEvents();
        return handled;
    }
    static void enter(const std::string& property, const std::string& text) {
        type(field(property), text);
        press(field(property), KEY_RETURN);
    }
    static void search(const std::string& text) { type(part("edtsearch"), text); }
    static void choose(const std::vector<int>& objects) {
        SELECTOBJECTS(objects);
        DIALOGREDRAW();
    }
    static std::string setting(const std::string& key) {
        return PROFILESTRGET(GETIDEINIFILE(), "Propertydlg", key);
    }
    static void leave() {
        platform::userActivate(*platform::findWindow(PropertyDlg));
        platform::userActivate(*platform::findWindow(DialogDlg));
        for (int i = 0; i < 4; ++i) platform::DoEvents();  // one posted event each
    }
};

// ---- what it shows ----

TEST_F(PropertyWindow, FollowsTheSelection) {
    show();
    EXPECT_EQ(note(), "Nothing is selected.");
    EXPECT_EQ(rows(), "");
    click(20, 20);
    EXPECT_EQ(title(), "One:Label");
    EXPECT_EQ(value("CAPTION"), "One");
    EXPECT_EQ(note(), "");
    key(9);
    EXPECT_EQ(title(), "Two:Edit");
    choose({1});
    EXPECT_EQ(title(), "Dlg:Dialog");
    key(KEY_ESCAPE);
    EXPECT_EQ(note(), "Nothing is selected.");
}

TEST_F(PropertyWindow, ShowsValuesAsTheSheetDoes) {
    show();
    choose({3});
    EXPECT_EQ(value("MULTILINE"),
              SHOWNPROPERTY(GetText(PROPERTYROW(PropertyDlg, rowOf("MULTILINE")).options), "0"));
    EXPECT_EQ(value("POSITION"), "8 30 80 16");
    EXPECT_TRUE(GetVisible(PROPERTYROW(PropertyDlg, rowOf("MULTILINE")).drop));
    EXPECT_FALSE(GetVisible(PROPERTYROW(PropertyDlg, rowOf("POSITION")).drop));
}

TEST_F(PropertyWindow, TellsOfTheMenu) {
    show();
    choose({-1});
    EXPECT_EQ(note(), "F2 opens the menu in its editor.");
    EXPECT_EQ(rows(), "");
}

TEST_F(PropertyWindow, FollowsWhatTheDesignChanges) {
    show();
    choose({2});
    key(KEY_RIGHT);
    EXPECT_EQ(value("POSITION"), "9 8 80 16");
    key(KEY_DELETE);
    EXPECT_EQ(note(), "Nothing is selected.");
}

// ---- changing ----

TEST_F(PropertyWindow, ReturnMakesAValuePartOfTheDesign) {
    show();
    choose({2});
    enter("CAPTION", "Other");
    EXPECT_EQ(property(2, "CAPTION"), "Other");
    EXPECT_TRUE(DIALOGGETMODIFY());
    EXPECT_EQ(value("CAPTION"), "Other");
}

TEST_F(PropertyWindow, AChangeTouchesItsOwnLineAlone) {
    show();
    choose({2});
    std::string before = item(2);
    enter("CAPTION", "Other");
    const std::string old = "CAPTION=\"One\"";
    ASSERT_NE(before.find(old), std::string::npos) << before;
    before.replace(before.find(old), old.size(), "CAPTION=\"Other\"");
    EXPECT_EQ(item(2), before);
}

TEST_F(PropertyWindow, LeavingAFieldKeepsItsValue) {
    show();
    choose({2});
    type(field("CAPTION"), "Left");
    SetFocus(part("edtsearch"));
    platform::DoEvents();
    EXPECT_EQ(property(2, "CAPTION"), "Left");
    type(field("CAPTION"), "Again");
    leave();
    EXPECT_EQ(property(2, "CAPTION"), "Again");
}

TEST_F(PropertyWindow, AClickInTheDesignKeepsTheValueForTheObjectThatItWasTypedFor) {
    show();
    choose({2});
    type(field("CAPTION"), "Mine");
    click(20, 120);
    EXPECT_EQ(property(2, "CAPTION"), "Mine");
    EXPECT_EQ(title(), "Ok:Pushbutton");
    EXPECT_NE(property(5, "CAPTION"), "Mine");
}

TEST_F(PropertyWindow, EscapeTakesBackThenGoesToTheDesign) {
    show();
    choose({2});
    type(field("CAPTION"), "Other");
    press(field("CAPTION"), KEY_ESCAPE);
    EXPECT_EQ(value("CAPTION"), "One");
    EXPECT_EQ(property(2, "CAPTION"), "One");
    EXPECT_FALSE(DIALOGGETMODIFY());
    platform::userActivate(*platform::findWindow(PropertyDlg));
    press(field("CAPTION"), KEY_ESCAPE);
    EXPECT_EQ(ActiveWindow(), DialogDlg);
    EXPECT_TRUE(ISSHOWN(PropertyDlg));
}

TEST_F(PropertyWindow, AWrongValueIsToldAsInTheSheetAndTheOldOneStays) {
    show();
    choose({2});
    const std::string before = value("VISIBLE");
    enter("VISIBLE", "perhaps");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "One:Label");
    EXPECT_EQ(asked[0].text,
              "There is a problem with the 'VISIBLE' property.\n" +
                  CHECKVALUE(GetText(PROPERTYROW(PropertyDlg, rowOf("VISIBLE")).options), "perhaps").message);
    EXPECT_EQ(value("VISIBLE"), before);
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(PropertyWindow, AWrongValueHoldsUpAClickInTheDesign) {
    show();
    choose({2});
    type(field("POSITION"), "1 2 3");
    click(20, 120);
    EXPECT_EQ(asked.size(), 1U);
    EXPECT_EQ(SELECTEDOBJECT(), 2);
    click(20, 120);
    EXPECT_EQ(asked.size(), 1U);
    EXPECT_EQ(SELECTEDOBJECT(), 5);
}

TEST_F(PropertyWindow, ASaveTakesWhatIsTyped) {
    show();
    choose({2});
    type(field("CAPTION"), "Saved");
    DIALOGSAVE();
    EXPECT_NE(read(file).find("CAPTION=\"Saved\""), std::string::npos) << read(file);
    EXPECT_NE(read(file).find("// kept"), std::string::npos);
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(PropertyWindow, AChangedNameIsCheckedAfterTheEdit) {
    show();
    choose({2});
    enter("NAME", "two");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].text.rfind("Warning - Duplicate Name\n", 0), 0U) << asked[0].text;
    EXPECT_EQ(property(2, "NAME"), "two");
    EXPECT_EQ(title(), "Two:Label");
}

TEST_F(PropertyWindow, F4ChoosesAndKeeps) {
    show();
    choose({2});
    doings.emplace_back([] {
        SetListIndex(FINDCONTROL(ExclusiveBoxDlg, "lstoptions"), 2);
        platform::userKey(*platform::findWindow(ExclusiveBoxDlg), nullptr, KEY_RETURN);
    });
    const std::string before = property(2, "VISIBLE");
    press(field("VISIBLE"), KEY_F4);
    EXPECT_NE(property(2, "VISIBLE"), before);
}

TEST_F(PropertyWindow, TheModalSheetOpensWithF2AllTheSame) {
    show();
    choose({2});
    edit({{"CAPTION", "By the sheet"}});
    EXPECT_EQ(property(2, "CAPTION"), "By the sheet");
    EXPECT_EQ(value("CAPTION"), "By the sheet");
}

// ---- several objects ----

TEST_F(PropertyWindow, SeveralObjectsShowWhatAllHave) {
    show();
    choose({3, 4});
    EXPECT_EQ(title(), "2 objects");
    EXPECT_EQ(rowOf("NAME"), 0);
    EXPECT_EQ(rowOf("TYPEOF"), 0);
    EXPECT_NE(rowOf("MULTILINE"), 0);
    choose({2, 3});
    EXPECT_EQ(rowOf("MULTILINE"), 0);
    EXPECT_EQ(rowOf("CAPTION"), 0);
    EXPECT_NE(rowOf("VISIBLE"), 0);
}

TEST_F(PropertyWindow, AValueThatDiffersIsEmptyWithAHint) {
    show();
    choose({3, 4});
    EXPECT_EQ(value("READONLY"), "");
    EXPECT_EQ(GetHint(field("READONLY")), "The selected objects have different values");
    EXPECT_EQ(GetHint(field("MULTILINE")), "");
    choose({3});
    EXPECT_EQ(GetHint(field("READONLY")), "");
}

TEST_F(PropertyWindow, AChangeGoesToAllInOneStep) {
    show();
    choose({3, 4});
    enter("READONLY", "1");
    EXPECT_EQ(property(3, "READONLY"), "1");
    EXPECT_EQ(property(4, "READONLY"), "1");
    EXPECT_EQ(GetHint(field("READONLY")), "");
    EXPECT_EQ(property(2, "READONLY"), "");
}

TEST_F(PropertyWindow, AnEmptyFieldOfDifferentValuesChangesNothing) {
    show();
    choose({3, 4});
    press(field("READONLY"), KEY_RETURN);
    leave();
    EXPECT_EQ(property(3, "READONLY"), "0");
    EXPECT_EQ(property(4, "READONLY"), "1");
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(PropertyWindow, ManyObjectsAreReadInAFlash) {
    std::string controls;
    for (int i = 0; i < 250; ++i) controls += control("EDIT", "edit" + std::to_string(i), "8 8 40 12");
    open(dialog(controls));
    std::vector<int> all;
    for (int i = 2; i <= 251; ++i) all.push_back(i);
    EXPECT_GT(SHAREDPROPERTIES(all).size(), 5U);
    EXPECT_TRUE(CHANGESHAREDPROPERTY(all, "MULTILINE", "1"));
    EXPECT_EQ(property(251, "MULTILINE"), "1");
}

// ---- the search and the keys ----

TEST_F(PropertyWindow, TheSearchLeavesPropertiesWithItInTheirNames) {
    show();
    choose({3});
    search("tab");
    EXPECT_EQ(rows(), "TABSTOP ");
    search("nowhere");
    EXPECT_EQ(note(), "No property has this in its name.");
    press(part("edtsearch"), KEY_ESCAPE);
    EXPECT_EQ(GetText(part("edtsearch")), "");
    EXPECT_NE(rowOf("NAME"), 0);
}

TEST_F(PropertyWindow, TheSearchKeepsWhatWasTyped) {
    show();
    choose({2});
    type(field("CAPTION"), "Typed");
    search("visible");
    EXPECT_EQ(property(2, "CAPTION"), "Typed");
}

TEST_F(PropertyWindow, UpAndDownGoFromRowToRow) {
    show();
    choose({2});
    press(part("edtsearch"), KEY_DOWN);
    EXPECT_EQ(GetFocus(PropertyDlg), field("NAME"));
    press(field("NAME"), KEY_DOWN);
    EXPECT_EQ(
        rowOf(GetCaption(
            PROPERTYROW(PropertyDlg, PROPERTYROWOF(PropertyDlg, GetFocus(PropertyDlg), "edtvalue1")).name)),
        GetEnabled(field("TYPEOF")) ? rowOf("TYPEOF") : rowOf("POSITION"));
    press(field("NAME"), KEY_UP);
    EXPECT_EQ(GetFocus(PropertyDlg), part("edtsearch"));
}

TEST_F(PropertyWindow, DownScrollsToWhatTheWindowHasNoRoomFor) {
    show();
    choose({3});
    Rect frame = GetPosition(PropertyDlg, WINDOW_UNIT);
    frame.h = 200;
    SetPosition(PropertyDlg, WINDOW_UNIT, frame);
    platform::userMoved(*platform::findWindow(PropertyDlg), Rect{frame.x, frame.y, frame.w, 201}, 0);
    ASSERT_TRUE(GetVisible(part("sclrows")));
    EXPECT_EQ(rowOf("HINT"), 0);
    for (int i = 0; i < 30 && rowOf("HINT") == 0; ++i)
        press(GetFocus(PropertyDlg).empty() ? field("NAME") : GetFocus(PropertyDlg), KEY_DOWN);
    EXPECT_NE(rowOf("HINT"), 0);
    EXPECT_EQ(GetFocus(PropertyDlg), field("HINT"));
    EXPECT_EQ(rowOf("NAME"), 0);
    EXPECT_TRUE(beeps([&] { press(field("HINT"), KEY_DOWN); }));
}

TEST_F(PropertyWindow, F6GoesRound) {
    show();
    constexpr int F6 = 117;
    Show(DialogDlg, false);
    key(F6);
    EXPECT_EQ(ActiveWindow(), ToolboxDlg);
    key(F6, ToolboxDlg);
    EXPECT_EQ(ActiveWindow(), PropertyDlg);
    key(F6, PropertyDlg);
    EXPECT_EQ(ActiveWindow(), DialogDlg);
}

// ---- opening and closing ----

TEST_F(PropertyWindow, IsRememberedAndOpensWithTheDialogEditor) {
    show();
    EXPECT_EQ(setting("Shown"), "1");
    Rect frame = GetPosition(PropertyDlg, WINDOW_UNIT);
    frame.x = 33;
    frame.y = 44;
    SetPosition(PropertyDlg, WINDOW_UNIT, frame);
    Unload(DialogDlg);
    EXPECT_FALSE(IsLoaded(PropertyDlg));
    EXPECT_EQ(setting("Shown"), "1");
    OPENDIALOG(file, "Dlg");
    EXPECT_TRUE(ISSHOWN(PropertyDlg));
    EXPECT_EQ(GetPosition(PropertyDlg, WINDOW_UNIT).x, 33);
    EXPECT_EQ(GetPosition(PropertyDlg, WINDOW_UNIT).y, 44);
    Unload(PropertyDlg);
    EXPECT_EQ(setting("Shown"), "0");
    Unload(DialogDlg);
    OPENDIALOG(file, "Dlg");
    EXPECT_FALSE(IsLoaded(PropertyDlg));
}

TEST_F(PropertyWindow, APlaceOffTheScreenIsNotTaken) {
    PROFILESTRPUT(GETIDEINIFILE(), "Propertydlg", "_Position", "90000 90000 300 400");
    show();
    EXPECT_LT(GetPosition(PropertyDlg, WINDOW_UNIT).x, 9000);
    Unload(PropertyDlg);
    PROFILESTRPUT(GETIDEINIFILE(), "Propertydlg", "_Position", "no place at all");
    PROPERTYWINDOWTOGGLE();
    EXPECT_TRUE(ISSHOWN(PropertyDlg));
}

TEST_F(PropertyWindow, BeepsWithoutADialog) {
    EXPECT_TRUE(beeps([] { PROPERTYWINDOWTOGGLE(); }));
    EXPECT_FALSE(IsLoaded(PropertyDlg));
    EXPECT_TRUE(KEEPTYPEDPROPERTY());
    REFRESHPROPERTYWINDOW();
}

TEST_F(PropertyWindow, AWrongValueKeepsTheDialogOpenOnce) {
    show();
    choose({2});
    type(field("POSITION"), "wrong");
    platform::userClose(*platform::findWindow(DialogDlg));
    EXPECT_EQ(asked.size(), 1U);
    EXPECT_TRUE(ISSHOWN(DialogDlg));
    platform::userClose(*platform::findWindow(DialogDlg));
    EXPECT_FALSE(IsLoaded(DialogDlg));
    EXPECT_FALSE(IsLoaded(PropertyDlg));
}

}  // namespace
}  // namespace tarn
