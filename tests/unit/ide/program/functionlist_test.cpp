// SPDX-License-Identifier: Apache-2.0
//
// The function list: which row is chosen at first, and where OK and a double click go.
#include "ide/menus/viewmenu.h"
#include "ide/program/functionlist.h"
#include "support/ide_fixture.h"

namespace tarn {
namespace {

class FunctionList : public IdeTest {
protected:
    void open(const std::string& text) {
        loadWindows();
        EDITWNDOPEN(SDIEdit, write("a.cls", text), false, 0);
        Load(GotoFuncDlg);
        ASSERT_TRUE(IsLoaded(GotoFuncDlg)) << ErrorDetails();
        Show(GotoFuncDlg, false);
    }
    static Object list() { return FINDCONTROL(GotoFuncDlg, "listbox1"); }
    static void press(const char* button) {
        platform::userCommand(*platform::findControl(FINDCONTROL(GotoFuncDlg, button)));
    }
    static int caretLine() {
        const std::string before =
            GetText(SDIEdit).substr(0, static_cast<std::size_t>(GetSelection(SDIEdit).start - 1));
        return STRLINES(before) + 1;
    }
};

TEST_F(FunctionList, TheFunctionAtTheCaretIsChosen) {
    loadWindows();
    EDITWNDOPEN(
        SDIEdit,
        write("a.cls", "Class A\n\nfunction f()\nend function\n\nfunction g()\nend function\nend class\n"),
        false, 0);
    struct Case {
        int line, row;
    };
    for (const Case& c : {Case{1, 1}, {2, 1}, {3, 1}, {5, 1}, {6, 2}, {7, 2}, {8, 2}}) {
        EDITWNDSELECTLINE(SDIEdit, c.line);
        Load(GotoFuncDlg);
        EXPECT_EQ(GetListIndex(list()), c.row) << c.line;
        EXPECT_EQ(GetListCount(list()), 2);
        Unload(GotoFuncDlg);
    }
}

TEST_F(FunctionList, OkGoesToTheFunctionOfTheRow) {
    open("Class A\nfunction f()\nend function\nfunction g()\nend function\nend class\n");
    SetListIndex(list(), 2);
    press("pushbutton1");
    EXPECT_FALSE(IsLoaded(GotoFuncDlg));
    EXPECT_EQ(caretLine(), 4);
    EXPECT_EQ(GetSelText(SDIEdit), "function g()");
}

TEST_F(FunctionList, WithoutARowItStays) {
    open("no functions\n");
    EXPECT_EQ(GetListCount(list()), 0);
    EXPECT_EQ(GetListIndex(list()), 0);
    press("pushbutton1");
    ASSERT_TRUE(IsLoaded(GotoFuncDlg));
    platform::userDoubleClick(*platform::findControl(list()), 0, 0);
    ASSERT_TRUE(IsLoaded(GotoFuncDlg));
    press("pushbutton2");
    EXPECT_FALSE(IsLoaded(GotoFuncDlg));
    EXPECT_EQ(caretLine(), 1);
}

TEST_F(FunctionList, IsReadAnewForTheJump) {
    open("Class A\nfunction f()\nend class\n");
    SetText(SDIEdit, "Class A\n\n\nfunction other()\nend class\n");  // nobody can, but a timer may
    press("pushbutton1");
    EXPECT_EQ(caretLine(), 4);
}

TEST_F(FunctionList, NeedsAFile) {
    loadWindows();
    DO_FUNCTION_LIST();
    EXPECT_FALSE(IsLoaded(GotoFuncDlg));
    EDITWNDNEW(SDIEdit, "");
    DO_FUNCTION_LIST();  // an untitled text has one; nobody answers, so it closes at once
    EXPECT_FALSE(IsLoaded(GotoFuncDlg));
    EXPECT_TRUE(asked.empty());
}

TEST_F(FunctionList, AClassOfOnlyFunctionsIsListedWhole) {
    std::string text = "Class A\n";
    for (int n = 1; n <= 7998; ++n) text += "function f" + STR(n) + "()\n";
    open(text + "end class\n");
    EXPECT_EQ(GetListCount(list()), 7998);
    EXPECT_EQ(GetList(list(), 7998), "f7998()");
    SetListIndex(list(), 7998);
    press("pushbutton1");
    EXPECT_EQ(caretLine(), 7999);
}

}  // namespace
}  // namespace tarn
