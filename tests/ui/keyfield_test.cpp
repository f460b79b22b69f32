// SPDX-License-Identifier: Apache-2.0
//
// A field that holds the name of the keys pressed in it, menu items whose keys change, and hints that do.
#include "platform/model/model.h"
#include "ui/window_fixture.h"

#include <QApplication>
#include <QLineEdit>
#include <QMenuBar>
#include <QTest>

#include <string>

namespace tarn::platform {
namespace {

constexpr char Resources[] = R"(
Field DIALOG
  CAPTION="Field"
  POSITION=0 0 160 80
  MENU=FieldMenu
  Edit edtkeys 301
    POSITION=4 4 100 12
  Edit edtnext 302
    POSITION=4 24 100 12
    HINT="Before"
  Pushbutton btnok 303
    POSITION=4 44 40 12
    CAPTION="OK"
    DEFAULT=1
END
FieldMenu MENU
  Menuitem
    POSITION=1
    CAPTION="&Do"
  Menuitem do_it 101
    POSITION=2
    CAPTION="&It"
    SHORTCUT="F5"
END
)";

int changes = 0, commands = 0, last = 0;
bool listen(const Object&, int event, const Object& control, int parameter) {
    if (event == CHANGE_EVENT) ++changes;
    if (event == COMMAND_EVENT) ++commands, last = control.number();
    if (event == KEYPRESS_EVENT) last = -parameter;
    return false;
}

class KeyField : public WindowTest {
protected:
    const Object window{"Field"}, field{"Field", 301}, next{"Field", 302}, item{"Field", 101};
    void SetUp() override {
        hear(window, listen);
        ASSERT_EQ(loadText(window, Resources), "");
        SetFlags(field, KEYFIELD);
        Show(window, false);
        settle();
        changes = commands = last = 0;
        line().setFocus();
    }
    static QLineEdit& line(const char* name = "edtkeys") { return *shownWidget<QLineEdit>("Field", name); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&line(), key, modifiers);
    }
    [[nodiscard]] std::string text() const { return GetText(field).value; }
};

TEST_F(KeyField, HoldsTheNameOfTheKeysPressedLast) {
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        const char* name;
    } cases[] = {{Qt::Key_K, Qt::ControlModifier, "Ctrl+K"},
                 {Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier, "Ctrl+Shift+K"},
                 {Qt::Key_F5, Qt::NoModifier, "F5"},
                 {Qt::Key_F9, Qt::AltModifier, "Alt+F9"},
                 {Qt::Key_C, Qt::ControlModifier, "Ctrl+C"},
                 {Qt::Key_V, Qt::ControlModifier, "Ctrl+V"},
                 {Qt::Key_Home, Qt::NoModifier, "Home"},
                 {Qt::Key_Left, Qt::ShiftModifier, "Shift+Left"},
                 {Qt::Key_A, Qt::NoModifier, "A"},
                 {Qt::Key_Return, Qt::ControlModifier, "Ctrl+Enter"},
                 {Qt::Key_F1, Qt::ShiftModifier, "Shift+F1"},
                 {Qt::Key_1, Qt::AltModifier, "Alt+1"}};
    int count = 0;
    for (const auto& one : cases) {
        press(one.key, one.modifiers);
        EXPECT_EQ(text(), one.name);
        EXPECT_EQ(line().text().toStdString(), one.name);
        EXPECT_EQ(changes, ++count) << one.name;
    }
    EXPECT_EQ(commands, 0);  // F5 is the item's, but the field's here
}

TEST_F(KeyField, BackspaceAndDelEmptyIt) {
    for (const Qt::Key key : {Qt::Key_Backspace, Qt::Key_Delete}) {
        press(Qt::Key_K, Qt::ControlModifier);
        press(key);
        EXPECT_EQ(text(), "");
    }
}

TEST_F(KeyField, KeysWithoutANameDoNothing) {
    press(Qt::Key_K, Qt::ControlModifier);
    changes = 0;
    for (const Qt::Key key :
         {Qt::Key_Control, Qt::Key_Shift, Qt::Key_Period, Qt::Key_Comma, Qt::Key_Adiaeresis})
        press(key);
    press(Qt::Key_Period, Qt::ControlModifier);
    EXPECT_EQ(text(), "Ctrl+K");
    EXPECT_EQ(changes, 0);
}

TEST_F(KeyField, TheKeysOfTheWindowStayItsOwn) {
    press(Qt::Key_F1);
    EXPECT_EQ(last, -KEY_F1);
    press(Qt::Key_Escape);
    EXPECT_EQ(last, -KEY_ESCAPE);
    press(Qt::Key_Return);
    EXPECT_EQ(last, 303);  // the default button
    EXPECT_EQ(text(), "");
    QApplication::setActiveWindow(line().window());
    press(Qt::Key_Tab);
    EXPECT_TRUE(line("edtnext").hasFocus());
}

TEST_F(KeyField, WithoutItsFlagItIsALineOfText) {
    SetFlags(field, 0);
    press(Qt::Key_F5);
    EXPECT_EQ(last, 101);
    QTest::keyClicks(&line(), "ab");
    EXPECT_EQ(text(), "ab");
}

TEST_F(KeyField, AnItemAnswersToItsNewKeysAndShowsThem) {
    line("edtnext").setFocus();
    SetShortcut(item, "Ctrl+Shift+L");
    QTest::keyClick(&line("edtnext"), Qt::Key_F5);
    EXPECT_EQ(commands, 0);
    QTest::keyClick(&line("edtnext"), Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(commands, 1);
    const auto* bar = line().window()->findChild<QMenuBar*>();
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->actions().at(0)->menu()->actions().at(0)->text().toStdString(), "&It\tCtrl+Shift+L");
    SetShortcut(item, "");
    EXPECT_EQ(bar->actions().at(0)->menu()->actions().at(0)->text().toStdString(), "&It");
}

TEST_F(KeyField, AHintIsShownAndReadOut) {
    EXPECT_EQ(line("edtnext").toolTip().toStdString(), "Before");
    SetHint(next, "Behind");
    EXPECT_EQ(line("edtnext").toolTip().toStdString(), "Behind");
    EXPECT_EQ(line("edtnext").accessibleName().toStdString(), "Behind");
}

}  // namespace
}  // namespace tarn::platform
