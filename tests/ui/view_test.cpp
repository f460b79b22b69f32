// SPDX-License-Identifier: Apache-2.0
//
// Controls: what the model says reaches the widgets, what the user does reaches the window function, and nothing
// comes back from what the program did itself.
#include "ui/view_fixture.h"

#include "os/files.h"
#include "platform/model/view.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScrollBar>
#include <QTest>

#include <string>

namespace tarn::platform {

namespace {

using namespace std::string_literals;

TEST_F(ViewTest, TheEditorHoldsTheTextAndTellsEditsOnce) {
    show(Code);
    const std::string text = "a\0\xFF\r\nb\n"s;
    SetText(Code, text);
    settle();
    EXPECT_EQ(GetText(Code).value, text);
    SetSelection(Code, 2, 1);
    SetSelText(Code, "zz");
    EXPECT_EQ(GetText(Code).value, "azz\xFF\r\nb\n");
    DoEvents();
    EXPECT_EQ(count(CHANGE_EVENT), 1);
    press(editor(), Qt::Key_Y, Qt::NoModifier, QStringLiteral("y"));
    EXPECT_EQ(count(CHANGE_EVENT), 2);
    EXPECT_TRUE(GetModify(Code).value);
    SetText(Code, "new");
    DoEvents();
    EXPECT_EQ(count(CHANGE_EVENT), 2);
}

TEST_F(ViewTest, ProgramChangesSendNoUserEvents) {
    show(Form);
    SetText(in(Form, 301), "text");
    SetText(in(Form, 302), "lines\nof text");
    SetListIndex(in(Form, 303), 2);
    SetCombotext(in(Form, 304), "blue");
    AddItem(in(Form, 305), "d");
    SetListIndex(in(Form, 305), 3);
    SetValue(in(Form, 306), 1);
    SetValue(in(Form, 308), 1);
    SetValue(in(Form, 311), 50);
    SetPosition(Form, WINDOW_UNIT, {30, 40, 500, 400});
    DoEvents();
    EXPECT_EQ(count(CHANGE_EVENT), 0);
    EXPECT_EQ(count(COMMAND_EVENT), 0);
    EXPECT_EQ(find<QLineEdit>(Form, "edtname")->text().toStdString(), "text");
    EXPECT_EQ(find<QPlainTextEdit>(Form, "edtlines")->toPlainText().toStdString(), "lines\nof text");
    EXPECT_EQ(find<QComboBox>(Form, "cmbdrop")->currentText().toStdString(), "two");
    EXPECT_EQ(find<QComboBox>(Form, "cmbedit")->currentText().toStdString(), "blue");
    EXPECT_EQ(find<QListView>(Form, "lstrows")->currentIndex().row(), 2);
    EXPECT_EQ(find<QListView>(Form, "lstrows")->model()->rowCount(), 4);
    EXPECT_TRUE(find<QAbstractButton>(Form, "chkon")->isChecked());
    EXPECT_TRUE(find<QAbstractButton>(Form, "rbsecond")->isChecked());
    EXPECT_EQ(find<QScrollBar>(Form, "scroll")->value(), 50);
}

TEST_F(ViewTest, TextsTypedReachTheModel) {
    show(Form);
    auto* line = find<QLineEdit>(Form, "edtname");
    EXPECT_EQ(GetText(in(Form, 301)).value, "first") << "what the resources gave";
    line->setFocus();
    line->selectAll();
    press(line, 0, Qt::NoModifier, QStringLiteral("\u00e9"));
    EXPECT_EQ(GetText(in(Form, 301)).value, "\xC3\xA9");
    EXPECT_EQ(count(CHANGE_EVENT, 301), 1);
    SetSelection(in(Form, 301), 1, 2);
    EXPECT_EQ(GetSelText(in(Form, 301)).value, "\xC3\xA9");
}

TEST_F(ViewTest, BytesThatAreNoUtf8AreShownAsLatin1AndKept) {
    show(Form);
    auto* line = find<QLineEdit>(Form, "edtname");
    SetText(in(Form, 301), "caf\xE9");
    EXPECT_EQ(line->text(), QStringLiteral("caf\u00e9"));
    EXPECT_EQ(GetText(in(Form, 301)).value, "caf\xE9");
    line->setFocus();
    line->end(false);
    press(line, 0, Qt::NoModifier, QStringLiteral("s"));
    EXPECT_EQ(GetText(in(Form, 301)).value, "caf\xE9s");
    SetText(in(Form, 302), "one\r\ntwo\r\n");
    EXPECT_EQ(GetText(in(Form, 302)).value, "one\r\ntwo\r\n");
    SetSelection(in(Form, 302), 6, 3);
    EXPECT_EQ(GetSelection(in(Form, 302)).value.start, 6);
    EXPECT_EQ(GetSelText(in(Form, 302)).value, "two");
}

TEST_F(ViewTest, RadioButtonsExcludeEachOtherWithinTheirArrayOnly) {
    show(Form);
    auto* first = find<QRadioButton>(Form, "rbfirst");
    auto* second = find<QRadioButton>(Form, "rbsecond");
    auto* other = find<QRadioButton>(Form, "rbother");
    second->click();
    EXPECT_FALSE(first->isChecked());
    EXPECT_TRUE(second->isChecked());
    EXPECT_TRUE(other->isChecked());
    EXPECT_EQ(GetValue(in(Form, 307)).value, 0);
    EXPECT_EQ(GetValue(in(Form, 308)).value, 1);
    EXPECT_EQ(count(COMMAND_EVENT), 1);
}

TEST_F(ViewTest, RowsChosenReachTheModel) {
    show(Form);
    auto* list = find<QListView>(Form, "lstrows");
    list->setFocus();
    list->setCurrentIndex(list->model()->index(1, 0));
    EXPECT_EQ(GetListIndex(in(Form, 305)).value, 2);
    EXPECT_EQ(count(CHANGE_EVENT, 305), 1);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {},
                       list->visualRect(list->model()->index(1, 0)).center());
    EXPECT_EQ(count(DBLCLICK_EVENT, 305), 1);
    SetListIndex(in(Form, 305), 0);
    EXPECT_FALSE(list->currentIndex().isValid());
}

TEST_F(ViewTest, ControlsAreNamedByTheLabelBeforeThemAndReachedByItsMnemonic) {
    show(Form);
    auto* line = find<QLineEdit>(Form, "edtname");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(line)->text(QAccessible::Name).toStdString(), "Name");
    EXPECT_EQ(find<QLabel>(Form, "lblname")->buddy(), line);
}

TEST_F(ViewTest, TheTabOrderIsThatOfTheResources) {
    show(Form);
    auto* line = find<QLineEdit>(Form, "edtname");
    line->setFocus();
    const char* const names[] = {"edtlines", "cmbdrop", "cmbedit", "lstrows", "chkon"};
    for (const char* name : names) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget()->objectName().toStdString(), name);
    }
}

TEST_F(ViewTest, ALabelThatIsFilledBeforeTheWindowIsShownNamesTheControl) {
    SetCaption(in(Form, 300), "&Street:");
    show(Form);
    EXPECT_EQ(find<QLineEdit>(Form, "edtname")->accessibleName().toStdString(), "Street");
}

}  // namespace

}  // namespace tarn::platform
