// SPDX-License-Identifier: Apache-2.0
//
// What keys, the mouse and the menu do in the edit window, and the help while one types.
#include "ui/edit_fixture.h"

#include "platform/qt/controls/editarea.h"
#include "support/places.h"

#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QElapsedTimer>
#include <QMenu>
#include <QMimeData>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace tarn::platform::qt {

namespace {

using namespace std::string_literals;

TEST_F(EditTest, TellsEachTypedCharacterOnce) {
    type(QStringLiteral("abc"));
    QApplication::processEvents();
    EXPECT_EQ(changes, 3);
    press(Qt::Key_Left);
    press(Qt::Key_Home);
    QApplication::processEvents();
    EXPECT_EQ(changes, 3);
}

// Where no screen is, and in a window that is not shown.
TEST_F(EditTest, ChoicesAndTipsMayBeOfferedAnywhere) {
    const auto offer = [&] {
        store->setText("wor");
        store->select(4, 0);
        area->showChoices("word\nworld\n", 3);
        area->showCallTip(1, "function word(text: string)", {0, 8});
        QApplication::processEvents();
        area->showChoices("", 0);
        area->showCallTip(0, "", {});
    };
    for (const QPoint place : {QPoint(-5000, -5000), QPoint(5000, 5000), QPoint(-550, 20)}) {
        window.move(place);
        QApplication::processEvents();
        offer();
    }
    window.hide();
    offer();
    EXPECT_EQ(store->text(), "wor");
}

TEST_F(EditTest, ReadonlyTextsCannotBeTypedInButSet) {
    area->setFlags(READONLY);
    store->setText("x\n");
    type(QStringLiteral("y\n"));
    press(Qt::Key_Delete);
    press(Qt::Key_Tab, QStringLiteral("\t"));
    EXPECT_EQ(store->text(), "x\n");
    store->setText("z");
    EXPECT_EQ(store->text(), "z");
    EXPECT_EQ(changes, 0);
}

TEST_F(EditTest, IndentsANewLineAsTheOneBefore) {
    area->setFlags(AUTOINDENT);
    store->setText("\t  x y\n");
    caret(6);
    type(QStringLiteral("\n"));
    EXPECT_EQ(store->text(), "\t  x \n\t  y\n");
    store->setText("\tabc");
    caret(5);
    type(QStringLiteral("\nd"));
    EXPECT_EQ(store->text(), "\tabc\n\td");
    area->setFlags(0);
    store->setText("\tabc");
    caret(5);
    type(QStringLiteral("\nd"));
    EXPECT_EQ(store->text(), "\tabc\nd");
}

TEST_F(EditTest, DoesNotIndentBeyondTheCaret) {
    area->setFlags(AUTOINDENT);
    store->setText("    x");
    caret(3);
    type(QStringLiteral("\n"));
    EXPECT_EQ(store->text(), "  \n    x");
}

TEST_F(EditTest, TabAndShiftTabMoveASelectedBlock) {
    area->setFlags(TABSHIFT);
    store->setText("a\n  b\n\nc\n");
    store->select(1, 7);
    press(Qt::Key_Tab, QStringLiteral("\t"));
    EXPECT_EQ(store->text(), "\ta\n\t  b\n\nc\n");
    press(Qt::Key_Backtab, {}, Qt::ShiftModifier);
    EXPECT_EQ(store->text(), "a\n  b\n\nc\n");
    press(Qt::Key_Backtab, {}, Qt::ShiftModifier);
    EXPECT_EQ(store->text(), "a\nb\n\nc\n");
}

TEST_F(EditTest, WithoutBlockShiftTabReplacesTheSelection) {
    store->setText("a\nb\nc");
    store->select(1, 4);
    press(Qt::Key_Tab, QStringLiteral("\t"));
    EXPECT_EQ(store->text(), "\tc");
}

TEST_F(EditTest, OverwritesOnlyWhereThatIsAllowed) {
    store->setText("abc");
    caret(1);
    press(Qt::Key_Insert);
    type(QStringLiteral("x"));
    EXPECT_EQ(store->text(), "xabc");
    area->setFlags(ALLOWOVERWRITE);
    press(Qt::Key_Insert);
    type(QStringLiteral("y"));
    EXPECT_EQ(store->text(), "xybc");
    area->setFlags(0);
    type(QStringLiteral("z"));
    EXPECT_EQ(store->text(), "xyzbc");
}

TEST_F(EditTest, TheContextMenuWorksOnTheSelection) {
    store->setText("one two");
    store->select(1, 4);
    QTimer::singleShot(50, [] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        for (QAction* action : menu->actions()) {
            if (action->text() == QStringLiteral("&Delete")) action->trigger();
        }
        menu->close();
    });
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(5, 5),
                            area->widget()->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(area->textWidget(), &event);
    EXPECT_EQ(store->text(), "two");
}

TEST_F(EditTest, CutAndPasteKeepsBytes) {
    const std::string odd = "a\xFF\xC3\0z"s;
    store->setText(odd);
    press(Qt::Key_A, {}, Qt::ControlModifier);
    press(Qt::Key_X, {}, Qt::ControlModifier);
    EXPECT_EQ(store->text(), "");
    press(Qt::Key_V, {}, Qt::ControlModifier);
    EXPECT_EQ(store->text(), odd);
}

TEST_F(EditTest, HasANameForScreenReaders) {
    area->setName(QStringLiteral("Code"));
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(area->textWidget());
    ASSERT_NE(face, nullptr);
    EXPECT_EQ(face->text(QAccessible::Name).toStdString(), "Code");
    EXPECT_EQ(face->role(), QAccessible::EditableText);
    store->setText("one\ntwo\n");
    store->select(5, 0);
    EXPECT_EQ(face->text(QAccessible::Value).toStdString(), "two");
}

TEST_F(EditTest, DoubleClicksAreTold) {
    store->setText("word word");
    QTest::mouseDClick(area->textWidget()->findChild<QWidget*>(QStringLiteral("qt_scrollarea_viewport")),
                       Qt::LeftButton, {}, {30, 5});
    EXPECT_EQ(doubles, 1);
}

TEST_F(EditTest, TypingAtTheEndOfALargeTextIsQuick) {
    std::string text;
    while (text.size() < 4'000'000) text += "if total > 10 then print \"enough\" end // of it\n";
    area->setFlags(HILITE | NUMBERBAR | STATUSBAR | AUTOINDENT);
    area->setTokens(
        "if - 0x800000 BOLD\nthen - 0x800000 BOLD\nend - 0x800000\n\" - 0x0000FF\n// ##EOL 0x008000\n");
    QElapsedTimer clock;
    clock.start();
    store->setText(text);
    window.repaint();
    QApplication::processEvents();
    const auto loaded = clock.nsecsElapsed() / 1000;
    clock.restart();
    caret(static_cast<int>(text.size()) + 1);
    QApplication::processEvents();
    const auto jumped = clock.nsecsElapsed() / 1000;
    std::vector<qint64> keys;
    for (int i = 0; i < 50; ++i) {
        clock.restart();
        type(QStringLiteral("x"));
        QApplication::processEvents();
        keys.push_back(clock.nsecsElapsed() / 1000);
    }
    std::sort(keys.begin(), keys.end());
    std::printf("load %lld us, jump to the end %lld us, key median %lld us, 95 of 100 %lld us\n",
                static_cast<long long>(loaded), static_cast<long long>(jumped),
                static_cast<long long>(keys[25]), static_cast<long long>(keys[47]));
    EXPECT_LT(loaded, 2'000'000);
    EXPECT_LT(keys[25], 100'000);
}

TEST_F(EditTest, ShiftTabLeavesTheTextWhenItMovesNoBlock) {
    QWidget before(&window);
    before.setFocusPolicy(Qt::StrongFocus);
    before.setGeometry(0, 0, 5, 5);
    before.show();
    QWidget::setTabOrder(&before, area->textWidget());
    store->setText("\tx");
    for (const int flags : {0, static_cast<int>(READONLY), READONLY | TABSHIFT}) {
        area->setFlags(flags);
        area->textWidget()->setFocus();
        press(Qt::Key_Backtab, {}, Qt::ShiftModifier);
        EXPECT_FALSE(area->textWidget()->hasFocus()) << flags;
    }
    area->setFlags(TABSHIFT);
    area->textWidget()->setFocus();
    press(Qt::Key_Backtab, {}, Qt::ShiftModifier);
    EXPECT_TRUE(area->textWidget()->hasFocus());
    EXPECT_EQ(store->text(), "x");
}

TEST_F(EditTest, TakesNoDropThatWouldLoseBytesBehindNul) {
    auto* text = qobject_cast<QAbstractScrollArea*>(area->textWidget());
    ASSERT_NE(text, nullptr);
    for (const bool nul : {false, true}) {
        QMimeData data;
        data.setText(QStringLiteral("a b"));
        data.setData(QStringLiteral("application/x-tarnwick-bytes"), QByteArray(nul ? "a\0b" : "a b", 3));
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QApplication::sendEvent(text->viewport(), &enter);
        EXPECT_EQ(enter.isAccepted(), !nul);
    }
}

TEST_F(EditTest, SeveralCaretsTypeTogether) {
    store->setText("a\nb\nc\n");
    ask(2572, 0, 0);
    ask(2573, 2, 2);
    ask(2573, 4, 4);
    type(QStringLiteral("x"));
    EXPECT_EQ(store->text(), "xa\nxb\nxc\n");
    type(QStringLiteral("\n"));
    EXPECT_EQ(store->text(), "x\na\nx\nb\nx\nc\n");
    press(Qt::Key_Escape);
    EXPECT_EQ(ask(2570), 1);
}

// ---- help while one types ----

TEST_F(EditTest, AChoiceTakesThePlaceOfTheWordInOneStep) {
    store->setText("one wo two\n");
    caret(7);
    area->showChoices("WORD\tsymconst\nWORLD\tsymtype\nworn", 2);
    EXPECT_NE(ask(2102), 0);
    press(Qt::Key_Down);
    press(Qt::Key_Return, QStringLiteral("\r"));
    EXPECT_EQ(store->text(), "one WORLD two\n");
    ask(2176);
    EXPECT_EQ(store->text(), "one wo two\n");
}

TEST_F(EditTest, AChoiceInTheMiddleOfAWordTakesThePlaceOfAllOfIt) {
    store->setText("woxyz\n");
    caret(3);
    area->showChoices("WORD\nWORLD", 2);
    press(Qt::Key_Tab, QStringLiteral("\t"));
    EXPECT_EQ(store->text(), "WORD\n");
}

TEST_F(EditTest, ReturnBehindAWholeWordIsALineEnd) {
    store->setText("word");
    caret(5);
    area->showChoices("word\nwording", 4);
    press(Qt::Key_Return, QStringLiteral("\r"));
    EXPECT_EQ(store->text(), "word\n");
    EXPECT_EQ(ask(2102), 0);
}

TEST_F(EditTest, EscapeClosesListAndHint) {
    store->setText("wo(");
    caret(3);
    area->showChoices("word", 2);
    press(Qt::Key_Escape);
    EXPECT_EQ(ask(2102), 0);
    caret(4);
    area->showCallTip(3, "wo(a : integer)", {4, 11});
    EXPECT_NE(ask(2202), 0);
    press(Qt::Key_Escape);
    EXPECT_EQ(ask(2202), 0);
    EXPECT_EQ(store->text(), "wo(");
}

TEST_F(EditTest, AClickWithCtrlAsksForTheNameAndElseAddsACaret) {
    store->setText("name  other\n");
    caret(12);
    auto* text = qobject_cast<QAbstractScrollArea*>(area->textWidget())->viewport();
    const QPoint at(static_cast<int>(ask(2164, 0, 7)) + 2, static_cast<int>(ask(2165, 0, 7)) + 5);
    follows = true;
    QTest::mouseClick(text, Qt::LeftButton, Qt::ControlModifier, at);
    EXPECT_EQ(clicked, 8);
    EXPECT_EQ(ask(2570), 1);
    follows = false;
    QTest::mouseClick(text, Qt::LeftButton, Qt::ControlModifier, at);
    EXPECT_EQ(ask(2570), 2);
}

TEST_F(EditTest, BracketsAndTheirPartnersAreFoundNearby) {
    area->setLooks(AllLooks, 4, 0);
    store->setText("f(a, [b)" + std::string(3'000'000, '\n'));
    for (const int place : {2, 3, 6, 7, 9}) {
        QElapsedTimer timer;
        timer.start();
        caret(place);
        area->textWidget()->repaint();
        QApplication::processEvents();
        EXPECT_LT(timer.elapsed(), 200) << place;
    }
}

TEST_F(EditTest, ANoteInTheStatusBarGoesWithTheNextKey) {
    area->setFlags(STATUSBAR);
    area->setPassing(QStringLiteral("no declaration found"));
    QApplication::processEvents();
    auto* bar = window.findChild<QWidget*>(QStringLiteral("statusbar"));
    EXPECT_TRUE(bar->accessibleDescription().contains(QStringLiteral("no declaration found")));
    press(Qt::Key_Left);
    QApplication::processEvents();
    EXPECT_FALSE(bar->accessibleDescription().contains(QStringLiteral("no declaration found")));
}

}  // namespace

}  // namespace tarn::platform::qt
