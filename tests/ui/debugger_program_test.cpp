// SPDX-License-Identifier: Apache-2.0
//
// The program's own windows under the debugger: painted and deaf while it is stopped; and a busy program hears its user.
#include "ui/debugger_fixture.h"

namespace tarn::platform {
namespace {

// ---- the program's windows ----

TEST_F(DebuggerTest, TheProgramsWindowsArePaintedAndDeafDuringAStop) {
    QPushButton* const press = form()->findChild<QPushButton*>();
    QLineEdit* const text = form()->findChild<QLineEdit*>();
    SetTimer(Form, 5);
    int painted = 0;
    struct Counter : QObject {
        int& painted;
        explicit Counter(int& count) : painted(count) {}
        bool eventFilter(QObject*, QEvent* event) override {
            painted += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
    } counter(painted);
    press->installEventFilter(&counter);
    stop({[&] { QTest::mouseClick(press, Qt::LeftButton); }, [&] { QTest::keyClick(text, Qt::Key_A); },
          [&] { QTest::mouseDClick(form(), Qt::LeftButton); }, [&] { QTest::keyClick(form(), Qt::Key_F1); },
          [&] { form()->close(); }, [&] { form()->resize(form()->width() + 20, form()->height()); },
          [&] { static_cast<void>(PostMessage(Form, COMMAND_EVENT, 0)); }, [&] { press->update(); },
          [&] {
              EXPECT_GT(painted, 0);
              EXPECT_TRUE(form()->isVisible());
              EXPECT_EQ(text->text(), QString());
              EXPECT_EQ(heard.size(), 0U);
          }});
    press->removeEventFilter(&counter);
    QTest::qWait(50);
    EXPECT_GT(count(TIMER_EVENT), 0);
    SetTimer(Form, 0);
    EXPECT_EQ(count(RESIZE_EVENT), 1);
    EXPECT_EQ(count(COMMAND_EVENT), 1) << "what was posted, and no press";
    EXPECT_EQ(count(CLOSE_EVENT), 0);
    QTest::mouseClick(press, Qt::LeftButton);
    EXPECT_EQ(count(COMMAND_EVENT), 2) << "and it hears again";
}

TEST_F(DebuggerTest, AStopInsideOfAModalWindowHasAWindowThatHears) {
    ASSERT_EQ(Load(Ask), Ok);
    DebugAddstrings(*window, lines(3));
    bool stopped = false;
    inProgram = [&](int event, int) {
        if (event != COMMAND_EVENT || stopped) return;
        stopped = true;
        stop({[] { QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, at(2, 200)); },
              [] {
                  QTest::mouseClick(top()->windowHandle(), Qt::LeftButton, {},
                                    button(QStringLiteral("106"))->mapTo(top(), QPoint(5, 5)));
              }});
        EXPECT_EQ(Hide(Ask), Ok);
    };
    QTimer::singleShot(50, [] { userCommand(*findControl(Object("Ask", 101))); });
    static_cast<void>(Show(Ask, true));
    EXPECT_TRUE(stopped);
    EXPECT_EQ(done, (Done{"double click 2", "command 106"}));
}

TEST_F(DebuggerTest, ABoxOfTheProgramIsDeafAndLivesOn) {
    inProgram = [&](int event, int) {
        if (event != TIMER_EVENT) return;
        SetTimer(Form, 0);
        QWidget* const box = QApplication::activeModalWidget();
        ASSERT_NE(box, nullptr);
        stop({[&] { QTest::keyClick(box, Qt::Key_Return); },
              [&] { QTest::mouseClick(box->findChild<QPushButton*>(), Qt::LeftButton); },
              [&] { EXPECT_TRUE(box->isVisible()); },
              [] { QTest::mouseClick(button(QStringLiteral("107")), Qt::LeftButton); }});
        QTimer::singleShot(20, box,
                           [box] { QTest::mouseClick(box->findChild<QPushButton*>(), Qt::LeftButton); });
    };
    SetTimer(Form, 30);
    EXPECT_EQ(MsgBox("Program", "A question", "&Yes\n&No"), "&Yes");
    EXPECT_EQ(done, (Done{"command 107"}));
}

TEST_F(DebuggerTest, AMenuThatIsOpenClosesAtAStop) {
    QMenu menu(form());
    menu.addAction(QStringLiteral("one"));
    menu.popup(form()->mapToGlobal(QPoint(5, 5)));
    QTest::qWait(20);
    ASSERT_EQ(QApplication::activePopupWidget(), &menu);
    stop({[&] { EXPECT_FALSE(menu.isVisible()); }, [] { key(Qt::Key_F8); }});
    EXPECT_EQ(done, (Done{"command 104"}));
}

TEST_F(DebuggerTest, AStopWhileAButtonIsHeldLeavesItReleased) {
    QPushButton* const press = form()->findChild<QPushButton*>();
    inProgram = [&](int event, int) {
        if (event != MOUSEDOWN_EVENT) return;
        stop({[&] {
                  QTest::mouseRelease(form()->windowHandle(), Qt::LeftButton, {},
                                      press->mapTo(form(), QPoint(5, 5)));
              },
              [] { QTest::mouseClick(button(QStringLiteral("106")), Qt::LeftButton); }});
    };
    QTest::mousePress(form()->windowHandle(), Qt::LeftButton, {}, press->mapTo(form(), QPoint(5, 5)));
    QTest::qWait(50);
    inProgram = {};
    EXPECT_EQ(done, (Done{"command 106"}));
    heard.clear();
    QTest::mouseClick(form()->windowHandle(), Qt::LeftButton, {}, press->mapTo(form(), QPoint(5, 5)));
    EXPECT_EQ(count(COMMAND_EVENT), 1);
    EXPECT_FALSE(press->isDown());
}

TEST_F(DebuggerTest, TheHandlerMayAskInBoxes) {
    std::vector<std::string> answers;
    act = [&](const DebugEvent& event) {
        if (event.number == 105) {
            QTimer::singleShot(30, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Tab); });
            QTimer::singleShot(60, [] {
                QWidget* const box = QApplication::activeModalWidget();
                EXPECT_EQ(box->parentWidget(), top());
                QTest::mouseClick(box->findChildren<QPushButton*>().at(1), Qt::LeftButton);
            });
            answers.push_back(MsgBox("Integrated Debugger", "Really?", "Yes\nNo"));
        } else {
            QTimer::singleShot(30, [] {
                QWidget* const box = QApplication::activeModalWidget();
                QTest::keyClicks(box->findChild<QLineEdit*>(), QStringLiteral("count"));
                QTest::keyClick(box->findChild<QLineEdit*>(), Qt::Key_Return);
            });
            answers.push_back(InputBox("Integrated Debugger", "Expression:", ""));
        }
    };
    stop({[] { key(Qt::Key_F5); }, [] { key(Qt::Key_F7, Qt::ControlModifier); }, [] { key(Qt::Key_Down); }});
    EXPECT_EQ(answers, (std::vector<std::string>{"No", "count"}));
}

TEST_F(DebuggerTest, ABusyProgramsWindowsAreWorkedNoFurtherDuringAStop) {
    SetBusy(true);
    EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
    stop({[] { EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr); }, [] { key(Qt::Key_F8); }});
    EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
    SetBusy(false);
    EXPECT_EQ(done, (Done{"command 104"}));
}

// ---- running ----

TEST_F(DebuggerTest, WhileTheProgramRunsOnlyStopAndBreakArePossible) {
    stop({[] { EXPECT_FALSE(button(QStringLiteral("break"))->isEnabled()); }});
    EXPECT_TRUE(button(QStringLiteral("104"))->isEnabled()) << "it may be a step";
    QTest::qWait(250);
    for (int number = 102; number <= 111; ++number)
        EXPECT_FALSE(button(QString::number(number))->isEnabled());
    QTest::mouseClick(button(QStringLiteral("101")), Qt::LeftButton);
    EXPECT_EQ(done, (Done{"command 101"}));
    EXPECT_EQ(GetUserBreak(), 0);
    for (int press = 0; press < 2; ++press) {
        QTest::mouseClick(button(QStringLiteral("break")), Qt::LeftButton);
        EXPECT_EQ(GetUserBreak(), 1);
        EXPECT_TRUE(button(QStringLiteral("break"))->isChecked())
            << "until the program has come to a statement";
    }
    stop({[] { EXPECT_FALSE(button(QStringLiteral("break"))->isChecked()); }});
}

// Stops until the handler leaves; a stop that nobody leaves ends, too.
bool leavesByItself(DebugWindow& window) {
    bool late = false;
    QTimer guard;
    guard.setSingleShot(true);
    QObject::connect(&guard, &QTimer::timeout, [&] { late = true, LeaveDebug(window); });
    guard.start(300);
    ActivateDebug(window);
    return !late;
}

TEST_F(DebuggerTest, KeysThatAreTypedBetweenStopsAreStepsOfTheNextOnes) {
    act = [this](const DebugEvent& event) {
        if (event.number == 104) LeaveDebug(*window);
    };
    stop({});
    for (int i = 0; i < 10; ++i) key(Qt::Key_F8);  // within the moment in which nothing looks disabled
    QTest::qWait(250);
    ASSERT_FALSE(button(QStringLiteral("104"))->isEnabled());
    for (int i = 0; i < 10; ++i) key(Qt::Key_F8);
    EXPECT_TRUE(done.empty());
    for (int i = 0; i < 20; ++i) EXPECT_TRUE(leavesByItself(*window)) << i;
    EXPECT_EQ(done, Done(20, "command 104"));
    EXPECT_FALSE(leavesByItself(*window)) << "that was all";
}

TEST_F(DebuggerTest, EachKeyOfACommandWaitsForTheNextStop) {
    DebugAddstrings(*window, lines(5));
    DebugSelect(*window, 2, true);
    stop({});
    QTest::qWait(250);
    Done wanted;
    for (const DebugCommand& command : debugCommands) {
        if (command.number == DEBUG_STOP) continue;
        const QKeyCombination keys = QKeySequence(QLatin1String(command.keys))[0];
        key(keys.key(), keys.keyboardModifiers());
        wanted.push_back("command " + std::to_string(command.number));
    }
    for (const int one : {Qt::Key_F2, Qt::Key_Return, Qt::Key_F1}) key(one);
    EXPECT_TRUE(done.empty());
    DebugSelect(*window, 4, true);
    EXPECT_FALSE(leavesByItself(*window));
    for (const char* event : {"edit 4", "double click 4", "help 0"}) wanted.emplace_back(event);
    EXPECT_EQ(done, wanted);
}

TEST_F(DebuggerTest, ABreakForgetsTheKeysBeforeIt) {
    stop({});
    QTest::qWait(250);
    for (int i = 0; i < 3; ++i) key(Qt::Key_F8);
    key(Qt::Key_Pause, Qt::ControlModifier);
    EXPECT_EQ(GetUserBreak(), 1);
    EXPECT_FALSE(leavesByItself(*window));
    EXPECT_TRUE(done.empty());
}

TEST_F(DebuggerTest, WorkInTheProgramsWindowsForgetsTheKeysBeforeIt) {
    stop({});
    QTest::qWait(250);
    for (int i = 0; i < 3; ++i) key(Qt::Key_F8);
    QTest::keyClick(form(), Qt::Key_A);
    EXPECT_FALSE(leavesByItself(*window));
    EXPECT_TRUE(done.empty());
}

TEST_F(DebuggerTest, TheMouseDoesNothingToTheLinesOfAProgramThatRuns) {
    DebugAddstrings(*window, lines(5));
    SetDebugNumbers(*window, true);
    stop({});
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, at(3, 4));
    QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, at(3, 200));
    EXPECT_FALSE(leavesByItself(*window));
    EXPECT_TRUE(done.empty());
}

TEST_F(DebuggerTest, TheMenuOfTheListHasAllCommandsOnce) {
    QStringList titles;
    for (const QAction* action : list()->actions())
        if (!action->isSeparator()) titles << action->text();
    for (const DebugCommand& command : debugCommands)
        EXPECT_EQ(titles.count(QString::fromLatin1(command.title)), 1) << command.title;
    EXPECT_EQ(titles.size(), static_cast<qsizetype>(debugCommands.size()) + 4) << "edit, help, and copies";
    EXPECT_EQ(titles.removeDuplicates(), 0);
}

TEST_F(DebuggerTest, ClosingTheWindowAsksTheHandlerOrBreaksIn) {
    stop({[] { top()->close(); }});
    EXPECT_EQ(done, (Done{"close 0"}));
    ASSERT_NE(top(), nullptr) << "the handler decides";
    top()->close();
    ASSERT_NE(top(), nullptr);
    EXPECT_EQ(GetUserBreak(), 1);
}

TEST_F(DebuggerTest, CtrlBreakInAnyWindowBreaksIn) {
    for (QWidget* widget : {form(), static_cast<QWidget*>(form()->findChild<QLineEdit*>()), top()}) {
        SetUserBreak(0);
        QTest::keyClick(widget, Qt::Key_Pause);
        EXPECT_EQ(GetUserBreak(), 0);
        QTest::keyClick(widget, Qt::Key_Pause, Qt::ControlModifier);
        EXPECT_EQ(GetUserBreak(), 1);
    }
    SetUserBreak(0);
    stop({[] { key(Qt::Key_Pause, Qt::ControlModifier); }});
    EXPECT_EQ(GetUserBreak(), 0) << "it is stopped";
}

TEST_F(DebuggerTest, TheHandlerMayEndTheWindowFromAButton) {
    act = [this](const DebugEvent&) { EndDebug(window); };
    QTimer::singleShot(20, [] { QTest::mouseClick(button(QStringLiteral("101")), Qt::LeftButton); });
    ActivateDebug(*window);
    DoEvents();
    EXPECT_EQ(top(), nullptr);
    EXPECT_EQ(debugWindow(), nullptr);
}

// Works without an event loop for a while, as a program under the debugger does.
void work(int milliseconds) {
    const std::int64_t end = os::clock().steady() + milliseconds * std::int64_t{1'000'000};
    while (os::clock().steady() < end && GetUserBreak() == 0) {}
}

// Posts events one after the other from another thread, as the window system does.
void come(QWidget* to, const std::vector<QEvent*>& events) {
    QWindow* const target = to->windowHandle();
    std::thread([=] {
        for (QEvent* event : events) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            QCoreApplication::postEvent(target, event);
        }
    }).detach();
}
QEvent* typed(char16_t letter) {
    return new QKeyEvent(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QString(QChar(letter)));
}
// Press and release on a widget of the window.
std::vector<QEvent*> click(QWidget* window, QWidget* on) {
    const QPointF place = on->mapTo(window, QPoint(5, 5)), global = on->mapToGlobal(QPointF(5, 5));
    const auto mouse = [&](QEvent::Type type, Qt::MouseButtons held) {
        return new QMouseEvent(type, place, global, Qt::LeftButton, held, Qt::NoModifier);
    };
    return {mouse(QEvent::MouseButtonPress, Qt::LeftButton), mouse(QEvent::MouseButtonRelease, Qt::NoButton)};
}

TEST_F(DebuggerTest, CtrlBreakReachesAProgramThatIsBusy) {
    come(form(), {new QKeyEvent(QEvent::KeyPress, Qt::Key_Pause, Qt::ControlModifier)});
    const std::int64_t start = os::clock().steady();
    work(5000);
    EXPECT_EQ(GetUserBreak(), 1);
    EXPECT_LT(os::clock().steady() - start, 1'000'000'000);
}

TEST_F(DebuggerTest, WhatIsTypedIntoABusyProgramWaitsForIt) {
    QLineEdit* const text = form()->findChild<QLineEdit*>();
    QPushButton* const press = form()->findChild<QPushButton*>();
    text->setFocus();
    DoEvents();
    heard.clear();
    const std::vector<QEvent*> presses = click(form(), press);
    come(form(), {typed(u'a'), typed(u'b'), typed(u'c'), presses[0], presses[1], new QCloseEvent});
    work(500);
    EXPECT_EQ(text->text(), QString());
    EXPECT_EQ(heard.size(), 0U);
    stop({});
    QTest::qWait(30);
    EXPECT_EQ(text->text().toStdString(), "abc");
    EXPECT_EQ(count(COMMAND_EVENT), 1);
    EXPECT_EQ(count(CLOSE_EVENT), 1);
}

TEST_F(DebuggerTest, TheDebuggersWindowWorksWhileTheProgramIsBusy) {
    stop({});
    bool ended = false;
    act = [&](const DebugEvent&) { ended = true; };
    SetDebugCaption(*window, "Integrated Debugger [inactive]");
    work(300);
    EXPECT_EQ(top()->windowTitle(), QStringLiteral("Integrated Debugger [inactive]"));
    EXPECT_FALSE(button(QStringLiteral("102"))->isEnabled());
    QToolButton* const breaks = button(QStringLiteral("break"));
    come(top(), click(top(), breaks));
    work(2000);
    EXPECT_EQ(GetUserBreak(), 1);
    SetUserBreak(0);
    come(top(), click(top(), button(QStringLiteral("101"))));
    work(500);
    EXPECT_TRUE(ended);
}

TEST_F(DebuggerTest, TimersOfABusyProgramRest) {
    SetTimer(Form, 5);
    work(200);
    EXPECT_EQ(count(TIMER_EVENT), 0);
    QTest::qWait(50);
    EXPECT_GT(count(TIMER_EVENT), 0);
    SetTimer(Form, 0);
}

}  // namespace
}  // namespace tarn::platform
