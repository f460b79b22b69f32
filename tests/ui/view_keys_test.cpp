// SPDX-License-Identifier: Apache-2.0
//
// Menus and keys: which window and which control gets them.
#include "ui/view_fixture.h"

#include "os/files.h"
#include "platform/model/view.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QToolButton>

namespace tarn::platform {

namespace {

TEST_F(ViewTest, TheMenuBarFollowsTheLevelsOfTheFlatList) {
    show(Main);
    auto* bar = top(Main)->findChild<QMenuBar*>();
    ASSERT_NE(bar, nullptr);
    ASSERT_EQ(bar->actions().size(), 2);
    EXPECT_EQ(bar->actions()[0]->text().toStdString(), "&File");
    const auto items = bar->actions()[0]->menu()->actions();
    ASSERT_EQ(items.size(), 4);
    EXPECT_EQ(items[0]->text().toStdString(), "&Open...\tCtrl+O");
    EXPECT_TRUE(items[2]->isSeparator()) << "dashes alone";
    ASSERT_NE(items[3]->menu(), nullptr);
    EXPECT_EQ(items[3]->menu()->actions().size(), 1);
    EXPECT_TRUE(bar->actions()[1]->menu()->actions()[0]->isChecked());
}

TEST_F(ViewTest, MenuItemsFollowTheModel) {
    show(Main);
    auto* bar = top(Main)->findChild<QMenuBar*>();
    SetEnabled(in(Main, 101), false);
    SetCaption(in(Main, 101), "Changed \xC3\xA9");
    SetChecked(in(Main, 105), false);
    QAction* open = bar->actions()[0]->menu()->actions()[0];
    EXPECT_FALSE(open->isEnabled());
    EXPECT_EQ(open->text().toStdString(), "Changed \xC3\xA9\tCtrl+O");
    EXPECT_FALSE(bar->actions()[1]->menu()->actions()[0]->isChecked());
    AddMenuitem(in(Main, 104), "Another");
    settle();
    EXPECT_EQ(bar->actions()[0]->menu()->actions()[3]->menu()->actions().size(), 2);
}

TEST_F(ViewTest, APickedItemIsACommandOnce) {
    show(Main);
    auto* bar = top(Main)->findChild<QMenuBar*>();
    bar->actions()[0]->menu()->actions()[0]->trigger();
    EXPECT_EQ(count(COMMAND_EVENT), 1);
    EXPECT_EQ(count(COMMAND_EVENT, 101), 1);
    bar->actions()[1]->menu()->actions()[0]->trigger();
    EXPECT_TRUE(bar->actions()[1]->menu()->actions()[0]->isChecked()) << "the model alone sets the mark";
}

TEST_F(ViewTest, ToolbarButtonsAreFlatAndNamedByTheirHint) {
    show(Main);
    auto* button = find<QToolButton>(Main, "btnopen");
    ASSERT_NE(button, nullptr);
    EXPECT_TRUE(button->autoRaise());
    EXPECT_EQ(button->toolTip().toStdString(), "Open a file");
    EXPECT_EQ(button->accessibleName().toStdString(), "Open a file");
    button->click();
    EXPECT_EQ(count(COMMAND_EVENT, 201), 1);
}

TEST_F(ViewTest, ShortcutsOfTheMainWindowHoldInTheOthers) {
    show(Main);
    show(Code);
    press(editor(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(count(COMMAND_EVENT, 101), 1);
    press(editor(), Qt::Key_F5);
    EXPECT_EQ(count(KEYPRESS_EVENT), 1) << "the window hears of function keys first";
    EXPECT_EQ(count(COMMAND_EVENT, 105), 1);
    SetEnabled(in(Main, 101), false);
    press(editor(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(count(COMMAND_EVENT, 101), 1);
}

TEST_F(ViewTest, AKeyThatTheWindowHandlesGoesNoFurther) {
    show(Main);
    show(Code);
    handledKey() = 116;
    press(editor(), Qt::Key_F5);
    EXPECT_EQ(count(COMMAND_EVENT), 0);
}

TEST_F(ViewTest, KeysOfTheEditorStayInTheEditor) {
    show(Main);
    show(Code);
    press(editor(), Qt::Key_C, Qt::ControlModifier);
    press(editor(), Qt::Key_A, Qt::ControlModifier);
    press(editor(), Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
    EXPECT_EQ(count(COMMAND_EVENT), 0);
    EXPECT_EQ(GetText(Code).value, "x");
}

TEST_F(ViewTest, EditingKeysOfTheMainMenuActInMainAlone) {
    show(Main);
    QWidget* button = find<QToolButton>(Main, "btnopen");
    press(button, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(count(COMMAND_EVENT, 102), 1);
    show(Form);
    find<QListView>(Form, "lstrows")->setFocus();
    press(find<QListView>(Form, "lstrows"), Qt::Key_C, Qt::ControlModifier);
    press(find<QCheckBox>(Form, "chkon"), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(count(COMMAND_EVENT, 102), 0);
}

TEST_F(ViewTest, AFieldsEditingKeysStayInTheField) {
    show(Main);
    show(Form);
    auto* field = find<QLineEdit>(Form, "edtname");
    SetText(Sysclipboard, "before");
    field->setFocus();
    field->selectAll();
    press(field, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(GetText(Sysclipboard).value, "first");
    press(field, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(field->text(), QString());
    press(field, Qt::Key_V, Qt::ControlModifier);
    press(field, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(field->text().toStdString(), "firstfirst");
    EXPECT_EQ(count(COMMAND_EVENT), 0);
}

TEST_F(ViewTest, KeysTypedAheadOfTheFocusReachTheWindowThatWasShown) {
    show(Main);
    ASSERT_EQ(Show(Code, false).code, Ok);  // the focus has not moved yet
    QWidget* before = top(Main)->focusWidget() != nullptr ? top(Main)->focusWidget() : top(Main);
    sendKey(before, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
    EXPECT_EQ(GetText(Code).value, "x");
    settle();
    show(Main);
    press(before, Qt::Key_Y, Qt::NoModifier, QStringLiteral("y"));
    EXPECT_EQ(GetText(Code).value, "x") << "the user has gone back";
}

TEST_F(ViewTest, ReturnAndEscPressTheirButtonsUnlessTheWindowTakesThem) {
    show(Form);
    auto* line = find<QLineEdit>(Form, "edtname");
    line->setFocus();
    press(line, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
    EXPECT_EQ(count(COMMAND_EVENT, 312), 1);
    press(line, Qt::Key_Escape);
    EXPECT_EQ(count(COMMAND_EVENT, 313), 1);
    handledKey() = KEY_RETURN;
    press(line, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
    EXPECT_EQ(count(COMMAND_EVENT, 312), 1);
}

TEST_F(ViewTest, UpAndDownOfALineReachTheWindow) {
    show(Form);
    const auto pressAt = [](QWidget* to, int key) {
        to->setFocus();
        press(to, key);
    };
    auto* line = find<QLineEdit>(Form, "edtname");
    handledKey() = KEY_DOWN;
    pressAt(line, Qt::Key_Down);
    pressAt(line, Qt::Key_Up);
    EXPECT_EQ(count(KEYPRESS_EVENT, 301), 2);
    pressAt(line, Qt::Key_Left);
    EXPECT_EQ(count(KEYPRESS_EVENT), 2) << "the line moves its caret itself";
    pressAt(find<QPlainTextEdit>(Form, "edtlines"), Qt::Key_Down);
    pressAt(find<QComboBox>(Form, "cmbedit"), Qt::Key_Down);
    pressAt(find<QComboBox>(Form, "cmbedit")->lineEdit(), Qt::Key_Down);
    pressAt(find<QComboBox>(Form, "cmbdrop"), Qt::Key_Down);
    EXPECT_EQ(count(KEYPRESS_EVENT), 2) << "several lines and rows are walked by their own keys";
}

TEST_F(ViewTest, KeysThatMoveAListsSelectionReachTheWindowFirst) {
    show(Form);
    auto* list = find<QListView>(Form, "lstrows");
    ASSERT_NE(list, nullptr);
    list->setFocus();
    SetListIndex(in(Form, 305), 1);
    settle();
    handledKey() = 40;
    press(list, Qt::Key_Down);
    EXPECT_EQ(GetListIndex(in(Form, 305)).value, 1) << "a key that the window takes moves nothing";
    handledKey() = 0;
    press(list, Qt::Key_Down);
    EXPECT_EQ(GetListIndex(in(Form, 305)).value, 2);
    press(list, Qt::Key_Home);
    EXPECT_EQ(GetListIndex(in(Form, 305)).value, 1);
    press(list, Qt::Key_End);
    press(list, Qt::Key_Up);
    EXPECT_EQ(count(KEYPRESS_EVENT, 305), 5);
}

}  // namespace

}  // namespace tarn::platform
