// SPDX-License-Identifier: Apache-2.0
//
// Windows and boxes on the screen: closed, moved, waited for, and with long and odd names.
#include "ui/view_fixture.h"

#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <string>

namespace tarn::platform {

namespace {

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

TEST_F(ViewTest, ManyButtonsOfABoxStandInRowsThatTheScreenHolds) {
    std::string captions;
    for (int n = 1; n <= 40; ++n) captions += "Button number " + std::to_string(n) + "\n";
    QTimer::singleShot(0, [] {
        QWidget* const box = QApplication::activeModalWidget();
        EXPECT_LE(box->width(), box->screen()->availableGeometry().width());
        const auto buttons = box->findChildren<QPushButton*>();
        ASSERT_EQ(buttons.size(), 40);
        int rows = 1;
        for (qsizetype i = 0; i < buttons.size(); ++i) {
            EXPECT_TRUE(box->rect().contains(buttons[i]->geometry())) << i;
            if (i > 0 && buttons[i]->y() > buttons[i - 1]->y()) ++rows;
        }
        EXPECT_GT(rows, 1);
        QTest::mouseClick(buttons.back(), Qt::LeftButton);
    });
    EXPECT_EQ(MsgBox("t", "text", captions), "Button number 40");
}

TEST_F(ViewTest, AModalDialogLargerThanTheScreenScrollsAndKeepsItsSizeForTheProgram) {
    QTimer::singleShot(400, [&] {  // the frame is known then
        const Rect before = GetPosition(Form, WINDOW_UNIT).value;
        const QRect screen = QApplication::primaryScreen()->availableGeometry();
        const Rect tall{before.x, before.y, before.w, screen.height() + 200};
        QWidget* const frame = top(Form);
        const int width = frame->width();
        SetPosition(Form, WINDOW_UNIT, tall);
        QTest::qWait(400);
        EXPECT_EQ(GetPosition(Form, WINDOW_UNIT).value.h, tall.h);
        EXPECT_LE(frame->frameGeometry().height(), screen.height());
        EXPECT_GT(frame->width(), width) << "room for the bar";
        auto* const bar = frame->findChild<QScrollBar*>("scrolldown");
        if (bar == nullptr || !bar->isVisible()) {
            ADD_FAILURE() << "no bar";
            Hide(Form);
            return;
        }
        SetPosition(in(Form, 312), CLIENT_UNIT, {10, tall.h - 60, 60, 24});
        auto* const ok = find<QPushButton>(Form, "btnok");
        frame->activateWindow();
        QTest::qWait(50);
        ok->setFocus();
        QTest::qWait(50);
        const QRect place(ok->mapTo(frame, QPoint()), ok->size());
        EXPECT_TRUE(frame->rect().contains(place)) << "the focus brings it into view";
        SetPosition(Form, WINDOW_UNIT, before);
        EXPECT_FALSE(bar->isVisible());
        EXPECT_EQ(frame->width(), width);
        Hide(Form);
    });
    Show(Form, true);
}

TEST_F(ViewTest, AnotherWindowLargerThanTheScreenIsShownWhole) {
    show(Form);
    Rect tall = GetPosition(Form, WINDOW_UNIT).value;
    tall.h = QApplication::primaryScreen()->availableGeometry().height() + 200;
    SetPosition(Form, WINDOW_UNIT, tall);
    QTest::qWait(400);
    EXPECT_GE(top(Form)->height(), tall.h - 60);
    EXPECT_EQ(top(Form)->findChild<QScrollBar*>("scrolldown"), nullptr);
}

}  // namespace

}  // namespace tarn::platform
