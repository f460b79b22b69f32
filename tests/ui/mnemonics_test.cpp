// SPDX-License-Identifier: Apache-2.0
//
// The letters of buttons, typed faster than a button can be seen to be pressed.
#include "platform/model/model.h"
#include "ui/window_fixture.h"

#include <QAbstractItemView>
#include <QTest>

namespace tarn::platform {
namespace {

const Object Fast("Fast");
std::vector<std::string> pressed;

bool hearFast(const Object& window, int event, const Object& control, int) {
    if (event == COMMAND_EVENT)
        pressed.push_back(std::to_string(control.number()) + " at " +
                          std::to_string(GetListIndex(Object("Fast", 103)).value));
    return event == CLOSE_EVENT && window == Fast;
}

class Mnemonics : public WindowTest {
protected:
    void SetUp() override {
        const std::string text = "Fast DIALOG\n  POSITION=0 0 160 120\n  BORDERSTYLE=2\n"
                                 "  Pushbutton one 101\n    POSITION=4 4 60 14\n    CAPTION=\"&One\"\n"
                                 "  Checkbox two 102\n    POSITION=4 24 60 12\n    CAPTION=\"&Two\"\n"
                                 "  Listbox rows 103\n    POSITION=4 40 60 60\nEND\n";
        ASSERT_EQ(useResources(folder, text), "");
        ASSERT_TRUE(open({Fast}, hearFast));
        for (const char* row : {"a", "b", "c", "d"}) static_cast<void>(AddItem(Object("Fast", 103), row));
        static_cast<void>(SetListIndex(Object("Fast", 103), 1));
        window()->activateWindow();
        list()->setFocus();
        QTest::qWait(50);
        pressed.clear();
    }
    static QWidget* window() { return static_cast<QWidget*>(findWindow(Fast)->widget); }
    static QAbstractItemView* list() { return window()->findChild<QAbstractItemView*>(); }
};

TEST_F(Mnemonics, EachPressIsOneHoweverFastTheyCome) {
    for (int i = 0; i < 20; ++i) QTest::keyClick(list(), Qt::Key_O, Qt::AltModifier);
    QTest::qWait(150);
    EXPECT_EQ(pressed.size(), 20U);
}

TEST_F(Mnemonics, AMarkThatIsPressedTwiceIsAsItWas) {
    QTest::keyClick(list(), Qt::Key_T, Qt::AltModifier);
    QTest::keyClick(window(), Qt::Key_T, Qt::AltModifier);
    QTest::qWait(150);
    EXPECT_EQ(pressed.size(), 2U);
    EXPECT_FALSE(GetChecked(Object("Fast", 102)).value);
}

TEST_F(Mnemonics, WhatIsTypedBehindALetterComesBehindIt) {
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(list(), Qt::Key_O, Qt::AltModifier);
        QTest::keyClick(list(), Qt::Key_Down);
    }
    QTest::qWait(150);
    EXPECT_EQ(pressed, (std::vector<std::string>{"101 at 1", "101 at 2", "101 at 3"}));
}

}  // namespace
}  // namespace tarn::platform
