// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window with the findings of the dialog check, on a dialog that is open in the dialog editor.
#include "ide/designer/check/dlgcheck.h"
#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "library/designer/proputil.h"
#include "support/doings_fixture.h"

namespace tarn {
namespace {

class DialogCheckWindow : public DoingsTest {
protected:
    std::string file;

    void SetUp() override {
        DoingsTest::SetUp();
        start({write("nothing.txt", "")});
        asked.clear();
    }
    void TearDown() override {
        EXPECT_FALSE(IsLoaded(DlgCheckDlg));
        DoingsTest::TearDown();
    }
    void open(const std::string& controls, const std::string& items = "") {
        const std::string menu = items.empty() ? "" : "TestMenu MENU\n" + items + "END\n";
        file = write("a.rc", "Test DIALOG\n  POSITION=0 0 200 100\n" +
                                 std::string(items.empty() ? "" : "  MENU=TestMenu\n") + controls + "END\n" +
                                 menu);
        OPENDIALOG(file, "Test");
        Stamp(0, ReportErrors, DefaultErrorHandler);
        ASSERT_TRUE(IsLoaded(DialogDlg));
    }
    void check(const std::function<void()>& doing) {
        doings = {doing};
        pick("tools_check_dialog");
    }
    static std::string two() {
        return "  CHECKBOX one 101\n    POSITION=8 8 60 11\n    CAPTION=\"One\"\n"
               "  PUSHBUTTON ok 102\n    POSITION=100 80 52 16\n    CAPTION=\"OK\"\n";
    }

    static Object part(const char* name) { return FINDCONTROL(DlgCheckDlg, name); }
    static void press(const char* name) { platform::userCommand(*platform::findControl(part(name))); }
    static void choose(int row) { platform::userRow(*platform::findControl(part("listbox1")), row); }
    static int rows() { return GetListCount(part("listbox1")); }
    static std::string text() { return GetText(part("edit1")); }
    static std::string property(int index, const char* name) { return GETPROPVALUE(DESIGNITEM(index), name); }
};

TEST_F(DialogCheckWindow, BeepsWithoutADialog) {
    CHECKDIALOGDLG();
    EXPECT_TRUE(asked.empty());
}

TEST_F(DialogCheckWindow, SaysThatNothingWasFound) {
    open("");
    pick("tools_check_dialog");
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].title, "Tools-Check Dialog");
    EXPECT_EQ(asked[0].text, "Nothing was found that gets in the way of the users of this dialog.");
}

TEST_F(DialogCheckWindow, ShowsTheFindingsAndSelectsTheirObjects) {
    open(two(), "  MENUITEM open 201\n    POSITION=1\n    CAPTION=\"Open\"\n");
    check([] {
        EXPECT_EQ(rows(), 3);
        EXPECT_EQ(GetListIndex(part("listbox1")), 1);
        EXPECT_EQ(text(), GetList(part("listbox1"), 1));
        EXPECT_TRUE(text().starts_with("Checkbox 'one' has no mnemonic")) << text();
        press("btnshow");
        EXPECT_EQ(SELECTEDOBJECT(), 2);
        choose(2);
        EXPECT_TRUE(text().starts_with("No button is the default one")) << text();
        platform::userDoubleClick(*platform::findControl(part("listbox1")), 0, 0);
        EXPECT_EQ(SELECTEDOBJECT(), 3);
        choose(3);
        EXPECT_TRUE(text().starts_with("Menuitem 'open' has no mnemonic")) << text();
        press("btnshow");
        EXPECT_EQ(SELECTEDOBJECT(), -1);
        press("pushbutton1");
    });
    EXPECT_FALSE(DIALOGGETMODIFY()) << "looking changes nothing";
}

TEST_F(DialogCheckWindow, ARepairChangesItsObjectAlone) {
    open(two());
    check([] {
        const std::string before = DESIGNITEM(3);
        press("btnrepair");
        EXPECT_EQ(property(2, "CAPTION"), "&One");
        EXPECT_EQ(DESIGNITEM(3), before);
        EXPECT_EQ(SELECTEDOBJECT(), 2);
        EXPECT_TRUE(DIALOGGETMODIFY());
        EXPECT_EQ(rows(), 1);
        EXPECT_TRUE(text().starts_with("No button is the default one"));
        press("btnrepair");
        EXPECT_EQ(property(3, "DEFAULT"), "1");
        EXPECT_EQ(rows(), 0);
        EXPECT_EQ(text(), "Nothing was found that gets in the way of the users of this dialog.");
        for (const char* button : {"btnshow", "btnrepair", "btnrepairall"})
            EXPECT_FALSE(GetEnabled(part(button)));
        platform::userKey(*platform::findWindow(DlgCheckDlg), nullptr, KEY_ESCAPE);
    });
    DIALOGSAVE();
    EXPECT_NE(read(file).find("CAPTION=\"&One\""), std::string::npos);
    EXPECT_NE(read(file).find("DEFAULT=1"), std::string::npos);
}

TEST_F(DialogCheckWindow, RepairAllLeavesWhatHasNoSafeRepair) {
    open(two() + "  EDIT name 103\n    POSITION=156 60 40 14\n  SCROLLBAR bar 104\n    POSITION=8 90 80 20\n",
         "  MENUITEM open 201\n    POSITION=1\n    CAPTION=\"Open\"\n");
    check([] {
        press("btnrepairall");
        EXPECT_EQ(property(2, "CAPTION"), "&One");
        EXPECT_EQ(property(3, "DEFAULT"), "1");
        EXPECT_EQ(property(5, "POSITION"), "8 80 80 20");
        EXPECT_EQ(GETPROPVALUE(GetList(MENULIST(), 2), "CAPTION"), "O&pen") << "O is taken by the box";
        ASSERT_GE(rows(), 1);
        EXPECT_TRUE(text().starts_with("Edit 'name' has no label before it")) << text();
        EXPECT_FALSE(GetEnabled(part("btnrepair")));
        EXPECT_FALSE(GetEnabled(part("btnrepairall")));
        press("pushbutton1");
    });
}

}  // namespace
}  // namespace tarn
