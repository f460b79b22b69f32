// SPDX-License-Identifier: Apache-2.0
//
// The view on windows made from resource text: what the model says reaches the widgets, what the user does
// reaches the window function, and nothing comes back from what the program did itself.
#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "platform/resources/resource.h"
#include "platform/windowing.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <string>
#include <vector>

namespace tarn::platform {

namespace {

using namespace std::string_literals;

constexpr char Resources[] = R"(
Main DIALOG
  CAPTION="Tarnwick"
  POSITION=0 0 320 14
  BORDERSTYLE=2
  MENU=MainMenu
  Bitmapbutton btnopen 201
    POSITION=2 1 16 12
    CAPTION="Open"
    HINT="Open a file"
END
MainMenu MENU
  Menuitem
    POSITION=1
    CAPTION="&File"
  Menuitem file_open 101
    POSITION=2
    CAPTION="&Open..."
    SHORTCUT="Ctrl+O"
  Menuitem file_copy 102
    POSITION=2
    CAPTION="&Copy"
    SHORTCUT="Ctrl+C"
  Menuitem
    POSITION=2
    CAPTION="-----"
  Menuitem file_more 103
    POSITION=2
    CAPTION="&More"
  Menuitem file_deep 104
    POSITION=3
    CAPTION="&Deep"
    ARRAY=deep
  Menuitem
    POSITION=1
    CAPTION="&Run"
  Menuitem run_start 105
    POSITION=2
    CAPTION="&Start"
    SHORTCUT="F5"
    CHECKED=1
END
Code EDITWINDOW
  CAPTION="Code"
  POSITION=10 20 200 100
END
Form DIALOG
  CAPTION="Form"
  POSITION=0 0 220 160
  Label lblname 300
    POSITION=4 4 60 10
    CAPTION="&Name:"
  Edit edtname 301
    POSITION=70 4 100 12
    TEXT="first"
  Edit edtlines 302
    POSITION=70 20 100 30
    MULTILINE=1
  Combobox cmbdrop 303
    POSITION=70 54 100 40
    COMBOSTYLE=2
    ROWS="one\ntwo\nthree"
  Combobox cmbedit 304
    POSITION=70 70 100 40
    ROWS="red\ngreen"
  Listbox lstrows 305
    POSITION=4 20 60 40
    ROWS="a\nb\nc"
  Checkbox chkon 306
    POSITION=4 64 60 10
    CAPTION="&On"
  Groupbox grp 310
    POSITION=2 76 64 30
    CAPTION="Choice"
  Radiobutton rbfirst 307
    POSITION=4 84 60 10
    CAPTION="F&irst"
    ARRAY=choice
    VALUE=1
  Radiobutton rbsecond 308
    POSITION=4 94 60 10
    CAPTION="&Second"
    ARRAY=choice
  Radiobutton rbother 309
    POSITION=70 94 60 10
    CAPTION="O&ther"
    ARRAY=elsewhere
    VALUE=1
  Scrollbar scroll 311
    POSITION=4 110 100 8
  Pushbutton btnok 312
    POSITION=4 130 40 14
    CAPTION="OK"
    DEFAULT=1
  Pushbutton btncancel 313
    POSITION=50 130 40 14
    CAPTION="Cancel"
    CANCEL=1
END
)";

struct Heard {
    std::string window;
    int event, control, parameter;
};
std::vector<Heard>& heard() {
    static std::vector<Heard> all;
    return all;
}
int& handledKey() {
    static int key = 0;
    return key;
}

bool listen(const Object& window, int event, const Object& control, int parameter) {
    heard().push_back({window.window(), event, control.number(), parameter});
    if (event == KEYPRESS_EVENT) return parameter == handledKey();
    return event == CLOSE_EVENT;
}

int count(int event, int control = -1) {
    return static_cast<int>(std::count_if(heard().begin(), heard().end(), [&](const Heard& one) {
        return one.event == event && (control < 0 || one.control == control);
    }));
}

const Object Main("Main"), Code("Code"), Form("Form");
Object in(const Object& window, int number) {
    return Object(window.window(), number);
}

class ViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        const std::string rc = folder / "test.rc", rcx = folder / "test.rcx";
        ASSERT_TRUE(os::saveFile(rc, Resources, os::Durability::Unsynced).ok());
        ASSERT_EQ(CompileResources({rc}, rcx), "");
        SetApplicationResources(rcx);
        for (const Object& window : {Main, Code, Form}) {
            RegisterWindow(window, listen);
            ASSERT_EQ(Load(window), Ok);
        }
        handledKey() = 0;
        settle();
    }
    void TearDown() override {
        DestroyAllWindows();
        settle();
    }

    static void settle() {
        for (int i = 0; i < 3; ++i) DoEvents();
        heard().clear();
    }
    static QWidget* top(const Object& window) {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName().toStdString() == window.window() && !widget->isHidden()) return widget;
        return nullptr;
    }
    template <class Widget>
    static Widget* find(const Object& window, const char* name) {
        QWidget* frame = top(window);
        return frame != nullptr ? frame->findChild<Widget*>(QString::fromLatin1(name)) : nullptr;
    }
    static void show(const Object& window) {
        Show(window, false);
        settle();
    }
    static void press(QWidget* to, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                      const QString& text = {}) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
        QApplication::sendEvent(to, &event);
        DoEvents();
    }
    static QWidget* editor() {
        for (QWidget* widget : top(Code)->findChildren<QWidget*>())
            if (widget->inherits("QsciScintillaBase")) return widget;
        return nullptr;
    }

    TempFolder folder;
};

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
    QKeyEvent event(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
    QApplication::sendEvent(before, &event);
    EXPECT_EQ(GetText(Code).value, "x");
    settle();
    show(Main);
    press(before, Qt::Key_Y, Qt::NoModifier, QStringLiteral("y"));
    EXPECT_EQ(GetText(Code).value, "x") << "the user has gone back";
}

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

TEST_F(ViewTest, TheCloseButtonAsksTheWindowWhichMayRefuse) {
    show(Form);
    top(Form)->close();
    DoEvents();
    EXPECT_EQ(count(CLOSE_EVENT), 1);
    EXPECT_TRUE(GetVisible(Form).value);
    EXPECT_NE(top(Form), nullptr);
}

TEST_F(ViewTest, ADragOfTheWindowReachesTheModel) {
    show(Code);
    QWidget* frame = top(Code);
    frame->setGeometry(50, 60, 300, 200);
    DoEvents();
    const Rect now = GetPosition(Code, WINDOW_UNIT).value;
    EXPECT_EQ(now.x, frame->frameGeometry().x());
    EXPECT_EQ(now.w, frame->frameGeometry().width());
    EXPECT_GE(count(RESIZE_EVENT), 1);
}

TEST_F(ViewTest, TheClientAreaOfTheMainWindowIsBelowItsMenu) {
    show(Main);
    const Rect frame = GetPosition(Main, WINDOW_UNIT).value, client = GetPosition(Main, CLIENT_UNIT).value;
    EXPECT_GT(client.y, frame.y);
    EXPECT_LT(client.h, frame.h);
    SetPosition(Main, CLIENT_UNIT, {client.x, client.y, 640, 40});
    SetMinPosition(Main, {0, 0, 632, 41});
    DoEvents();
    EXPECT_GE(top(Main)->minimumHeight(), 41);
    EXPECT_EQ(top(Main)->minimumWidth(), 632);
}

TEST_F(ViewTest, AMaximisedWindowKeepsToItsLargestPosition) {
    show(Code);
    const Rect screen = ScreenSize();
    SetMaxPosition(Code, {0, 100, screen.w, screen.h - 100});
    SetWindowState(Code, 2);
    DoEvents();
    EXPECT_GE(top(Code)->frameGeometry().y(), 100);
    EXPECT_LE(top(Code)->height(), screen.h - 100);
    EXPECT_GE(top(Code)->height(), screen.h - 150);
    EXPECT_EQ(GetWindowState(Code).value, 2);
    SetWindowState(Code, 0);
    EXPECT_LT(top(Code)->height(), screen.h - 150);
}

TEST_F(ViewTest, BoxesAnswerWithTheCaptionOfTheButton) {
    show(Main);
    const auto answerWith = [](const std::string& caption) {
        QTimer::singleShot(0, [caption] {
            for (auto* button : QApplication::activeModalWidget()->findChildren<QPushButton*>())
                if (button->text().toStdString() == caption) return button->click();
        });
    };
    answerWith("&No");
    EXPECT_EQ(MsgBox("Save Changes?", "text", "&Yes\n&No\n&Cancel\n", BoxIcon::Question), "&No");
    QTimer::singleShot(0, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape); });
    EXPECT_EQ(MsgBox("t", "text", "&Yes\n&No\n"), "");
    QTimer::singleShot(0, [] {
        auto* box = QApplication::activeModalWidget();
        const auto buttons = box->findChildren<QPushButton*>();
        ASSERT_EQ(buttons.size(), 3);
        EXPECT_TRUE(buttons[1]->isDefault());
        QTest::keyClick(box, Qt::Key_Return);
    });
    EXPECT_EQ(MsgBox("t", "text", "&C\n&A\n&B\n", BoxIcon::None, 2), "&A");
    answerWith("OK");
    EXPECT_EQ(MsgBox("t", "text", ""), "OK");
}

TEST_F(ViewTest, ALongTextScrollsInsteadOfLeavingTheScreen) {
    std::string text;
    for (int i = 0; i < 500; ++i) text += "line\n";
    QTimer::singleShot(0, [] {
        QWidget* box = QApplication::activeModalWidget();
        EXPECT_LE(box->height(), box->screen()->availableGeometry().height());
        QTest::keyClick(box, Qt::Key_Escape);
    });
    EXPECT_EQ(MsgBox("t", text, "OK\n"), "");
}

TEST_F(ViewTest, InputAndListBoxesAnswerWithTextAndRow) {
    QTimer::singleShot(0, [] {
        QWidget* box = QApplication::activeModalWidget();
        EXPECT_EQ(box->findChild<QLineEdit*>()->text().toStdString(), "old");
        EXPECT_TRUE(view().answer("new"));
    });
    EXPECT_EQ(InputBox("t", "prompt", "old"), "new");
    QTimer::singleShot(0, [] {
        EXPECT_FALSE(view().answer("nowhere"));
        EXPECT_TRUE(view().answer("two"));
    });
    EXPECT_EQ(ListBox("t", "prompt", "one\ntwo\nthree\n"), "two");
    QTimer::singleShot(0, [] { EXPECT_TRUE(view().answer("")); });
    EXPECT_EQ(ListBox("t", "prompt", "one\n"), "");
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

TEST_F(ViewTest, ALabelThatIsFilledBeforeTheWindowIsShownNamesTheControl) {
    SetCaption(in(Form, 300), "&Street:");
    show(Form);
    EXPECT_EQ(find<QLineEdit>(Form, "edtname")->accessibleName().toStdString(), "Street");
}

TEST_F(ViewTest, AFilePatternMayStandInParentheses) {
    QStringList filters;
    view().setIdle([&] {
        if (view().asking() == nullptr) return;
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* box = qobject_cast<QFileDialog*>(widget); box != nullptr) filters = box->nameFilters();
        EXPECT_TRUE(view().answer(""));
    });
    EXPECT_EQ(OpenFileDialog("x", "", "Pictures (*.bmp)|(*.bmp)|Texts (*.txt)|*.txt;*.text|"), "");
    view().setIdle({});
    EXPECT_EQ(filters.join(u'|').toStdString(), "Pictures (*.bmp)|Texts (*.txt *.text)|All files (*)");
}

TEST_F(ViewTest, AModalWindowReturnsWhenItIsHidden) {
    show(Main);
    QTimer::singleShot(20, [] {
        EXPECT_EQ(top(Form)->windowModality(), Qt::ApplicationModal);
        Hide(Form);
    });
    Show(Form, true);
    EXPECT_EQ(top(Form), nullptr);
    EXPECT_FALSE(IsModal(Form));
}

TEST_F(ViewTest, ABusyProgramTakesNoInput) {
    show(Main);
    SetBusy(true);
    QTest::mouseClick(find<QToolButton>(Main, "btnopen"), Qt::LeftButton);
    press(top(Main), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(count(COMMAND_EVENT), 0);
    SetBusy(false);
    press(top(Main), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(count(COMMAND_EVENT), 1);
}

TEST_F(ViewTest, ToolProgressAppearsAfterAWhileAndItsStopWorksWhileBusy) {
    SetBusy(true);
    ShowToolProgress("Building...");
    WaitEvents(50, false);
    const auto stop = []() -> QPushButton* {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* button = widget->findChild<QPushButton*>(QStringLiteral("toolstop"));
                button != nullptr && button->isVisible())
                return button;
        return nullptr;
    };
    EXPECT_EQ(stop(), nullptr);
    WaitEvents(400, false);
    ASSERT_NE(stop(), nullptr);
    EXPECT_FALSE(ToolStopPressed());
    QTest::mouseClick(stop(), Qt::LeftButton);
    EXPECT_TRUE(ToolStopPressed());
    ShowToolProgress("");
    SetBusy(false);
    EXPECT_EQ(stop(), nullptr);
}

TEST_F(ViewTest, AWindowMayUnloadItselfInItsOwnEvent) {
    RegisterWindow(Form, [](const Object& window, int event, const Object&, int) {
        if (event == COMMAND_EVENT) Unload(window);
        return false;
    });
    show(Form);
    auto* button = find<QPushButton>(Form, "btnok");
    button->click();
    EXPECT_FALSE(IsLoaded(Form));
    DoEvents();
    EXPECT_EQ(top(Form), nullptr);
    RegisterWindow(Form, listen);
}

TEST_F(ViewTest, ActivationIsTold) {
    show(Main);
    show(Code);
    EXPECT_EQ(ActiveWindow(), Code);
    Hide(Code);
    settle();
    EXPECT_EQ(ActiveWindow(), Main);
    EXPECT_EQ(QApplication::activeWindow(), top(Main));
}

// ---- long and odd names ----

std::string longPath() {
    std::string path;
    while (path.size() < 470) path += "/a-folder-with-a-name";
    return path + "/file.txt";
}

TEST_F(ViewTest, ARecentFileShowsItsNameAsItIs) {
    show(Main);
    const struct {
        const char *caption, *shown;
    } rows[] = {{"&1 /a/R&D/x.txt", "&1 /a/R&&D/x.txt"}, {"&2 /a && b", "&2 /a &&&& b"},
                {"&3 tab\there", "&3 tab here"},         {"&4 ", "&4 "},
                {"Save && E&xit", "Save && E&xit"},      {"&10 of them", "&10 of them"}};
    const auto* action = top(Main)->findChild<QMenuBar*>()->actions()[0]->menu()->actions()[1];
    for (const auto& row : rows) {
        SetCaption(Object("Main", 102), row.caption);
        EXPECT_EQ(action->text().toStdString().substr(0, action->text().toStdString().find("\tC")),
                  row.shown);
    }
}

TEST_F(ViewTest, AMenuIsNeverWiderThanTheScreen) {
    show(Main);
    for (const std::string& caption : {"&1 " + longPath(), longPath()}) {
        SetCaption(Object("Main", 102), caption);
        QMenu* menu = top(Main)->findChild<QMenuBar*>()->actions()[0]->menu();
        const auto* action = menu->actions()[1];
        EXPECT_LT(menu->sizeHint().width(), QApplication::primaryScreen()->availableSize().width());
        EXPECT_NE(action->text().indexOf(QStringLiteral("file.txt")), -1) << "the end of the name shows";
        EXPECT_EQ(action->toolTip().toStdString(), caption);
    }
}

TEST_F(ViewTest, ALabelShortensAPathInItsMiddleAndSpeaksAllOfIt) {
    show(Form);
    auto* label = find<QLabel>(Form, "lblname");
    SetCaption(Object("Form", 300), longPath());
    EXPECT_LE(label->fontMetrics().horizontalAdvance(label->text()), label->width());
    EXPECT_TRUE(label->text().startsWith(u"/a-f"));
    EXPECT_TRUE(label->text().endsWith(u"txt"));
    EXPECT_EQ(label->toolTip().toStdString(), longPath());
    EXPECT_EQ(QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name).toStdString(),
              longPath());
    SetCaption(Object("Form", 300), "short");
    EXPECT_EQ(label->text(), u"short");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name), u"short");
}

TEST_F(ViewTest, BoxesKeepTheirButtonsOnTheScreen) {
    show(Form);
    std::string lines;
    for (int i = 0; i < 300; ++i) lines += longPath() + "\n";
    const QSize screen = QApplication::primaryScreen()->availableSize();
    for (const std::string& text : {"The file:\n\n\t'" + longPath() + "'\n\nis not there.", lines,
                                    std::string(5000, 'x'), longPath()}) {
        QTimer::singleShot(0, [&] {
            QWidget* box = QApplication::activeModalWidget();
            EXPECT_LE(box->width(), screen.width());
            EXPECT_LE(box->height(), screen.height());
            for (const auto* button : box->findChildren<QPushButton*>())
                EXPECT_TRUE(box->rect().contains(button->geometry()));
            QTest::keyClick(box, Qt::Key_Escape);
        });
        MsgBox("t", text, "&Yes\n&No\n");
        QTimer::singleShot(0, [&] {
            QWidget* box = QApplication::activeModalWidget();
            EXPECT_LE(box->width(), screen.width());
            EXPECT_LE(box->height(), screen.height());
            QTest::keyClick(box, Qt::Key_Escape);
        });
        static_cast<void>(InputBox("t", text, longPath()));
    }
}

TEST_F(ViewTest, TheTextOfAnEditWindowIsNamedByItsCaption) {
    show(Code);
    const auto name = [] {
        return QAccessible::queryAccessibleInterface(editor())->text(QAccessible::Name).toStdString();
    };
    EXPECT_EQ(name(), "Code");
    SetCaption(Code, "/a/b.cls *");
    EXPECT_EQ(name(), "/a/b.cls *");
    SetCaption(Code, "");
    EXPECT_EQ(name(), "Text");
}

}  // namespace

}  // namespace tarn::platform
