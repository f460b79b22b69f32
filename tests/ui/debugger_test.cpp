// SPDX-License-Identifier: Apache-2.0
//
// The debugger's window with real widgets: what the model has is seen, what the user does reaches the handler, the
// program's own windows are painted and deaf while it is stopped, and a busy program hears its user.
#include "os/clock.h"
#include "os/files.h"
#include "platform/model/debugger/debugwindow.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "platform/resources/resource.h"
#include "platform/windowing.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QToolTip>
#include <QWindow>

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace tarn::platform {
namespace {

const Object Form("Form"), Press("Form", 101), Text("Form", 102), Ask("Ask");
constexpr char Pictures[] = "stop\nrun\nfeet1\nfeet2\nstop2\n\ncode3\nspecs\npapers2\ncode2\ninfo\nquest2";

std::vector<int> heard;
std::function<void(int event, int control)> inProgram;

bool hear(const Object&, int event, const Object& control, int) {
    heard.push_back(event);
    if (inProgram) inProgram(event, control.number());
    return event == CLOSE_EVENT;  // stays
}
long count(int event) {
    return std::count(heard.begin(), heard.end(), event);
}

class DebuggerTest : public ::testing::Test {
protected:
    TempFolder folder;
    DebugWindow* window = nullptr;
    std::vector<std::string> done;
    std::function<void(const DebugEvent&)> act;
    using Step = std::function<void()>;

    void SetUp() override {
        const std::string text = "Form DIALOG\n  CAPTION=\"Program\"\n  POSITION=0 0 160 80\n  "
                                 "BORDERSTYLE=2\n  Pushbutton press 101\n"
                                 "    POSITION=4 4 60 14\n    CAPTION=\"Press\"\n  Edit text 102\n"
                                 "    POSITION=4 24 60 12\nEND\nAsk DIALOG\n  CAPTION=\"Modal\"\n"
                                 "  POSITION=0 0 80 40\n  Pushbutton ok 101\n    POSITION=4 4 60 14\nEND\n";
        ASSERT_TRUE(os::saveFile(folder / "a.rc", text, os::Durability::Unsynced).ok());
        ASSERT_EQ(CompileResources({folder / "a.rc"}, folder / "a.rcx"), "");
        SetApplicationResources(folder / "a.rcx");
        for (const Object& one : {Form, Ask}) RegisterWindow(one, hear);
        ASSERT_EQ(Load(Form), Ok);
        Show(Form, false);
        QTest::qWait(50);
        start({0, 0, 0, 0});
        heard.clear();
    }
    void TearDown() override {
        inProgram = {};
        EndDebug(debugWindow());
        DestroyAllWindows();
        DoEvents();
        SetApplicationResources("");
        SetUserBreak(0);
        QToolTip::hideText();
    }
    void start(const DebugPlace& place) {
        window = StartDebug(
            Form, "Integrated Debugger", Pictures, "BUG",
            [this](DebugWindow&, const DebugEvent& event) {
                constexpr const char* names[] = {"command", "double click", "help", "edit", "hover", "close"};
                done.push_back(names[static_cast<int>(event.message)] + (" " + std::to_string(event.number)) +
                               (event.text.empty() ? "" : " " + event.text));
                if (act) act(event);
            },
            place);
        ASSERT_NE(window, nullptr);
        DoEvents();
    }
    // Stops; does one step after the other, with time for the events of each, and leaves.
    void stop(std::vector<Step> steps) {
        steps.emplace_back([this] { LeaveDebug(*window); });
        std::function<void(std::size_t)> next = [&](std::size_t index) {
            steps[index]();
            if (index + 1 < steps.size()) QTimer::singleShot(20, [&, index] { next(index + 1); });
        };
        QTimer::singleShot(20, [&] { next(0); });
        ActivateDebug(*window);
    }
    static QWidget* top() {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == u"IntegratedDebugger" && widget->isVisible()) return widget;
        return nullptr;
    }
    static QListView* list() { return top()->findChild<QListView*>(QStringLiteral("201")); }
    static QPlainTextEdit* status() { return top()->findChild<QPlainTextEdit*>(QStringLiteral("302")); }
    static QToolButton* button(const QString& name) { return top()->findChild<QToolButton*>(name); }
    static QWidget* form() { return static_cast<QWidget*>(findWindow(Form)->widget); }
    static QPoint at(int line, int x) {
        return {x, list()->visualRect(list()->model()->index(line - 1, 0)).center().y()};
    }
    static void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(list(), static_cast<Qt::Key>(key), modifiers);
    }
    static std::string lines(int count) {
        std::string text;
        for (int line = 1; line <= count; ++line) text += "line " + std::to_string(line) + "\n";
        return text;
    }
};

using Done = std::vector<std::string>;

TEST_F(DebuggerTest, ShowsCaptionStatusAndLines) {
    SetDebugCaption(*window, "Integrated Debugger [inactive]");
    SetDebugStatus(*window, "Error 687, no\nsecond line\n");
    DebugAddstrings(*window, "one\n\ttwo\r\n\x01");
    QTest::qWait(20);
    EXPECT_EQ(top()->windowTitle(), QStringLiteral("Integrated Debugger [inactive]"));
    EXPECT_EQ(status()->toPlainText(), QStringLiteral("Error 687, no\nsecond line"));
    ASSERT_EQ(list()->model()->rowCount(), 3);
    const auto text = [](int row) { return list()->model()->index(row, 0).data().toString(); };
    EXPECT_EQ(text(0), QStringLiteral("one"));
    EXPECT_EQ(text(1), QStringLiteral("    two"));
    EXPECT_EQ(text(2), QString(QChar(0x2401)));
    EXPECT_FALSE(top()->windowIcon().isNull());
}

TEST_F(DebuggerTest, ALongStatusTakesSomeLinesAndScrolls) {
    SetDebugStatus(*window, "one");
    QTest::qWait(20);
    const int low = status()->height();
    SetDebugStatus(*window, lines(40));
    QTest::qWait(20);
    EXPECT_GT(status()->height(), low);
    EXPECT_LT(status()->height(), top()->height() / 2);
    EXPECT_TRUE(status()->verticalScrollBar()->maximum() > 0);
}

TEST_F(DebuggerTest, EachButtonSendsItsCommand) {
    std::vector<Step> steps;
    Done wanted;
    for (int number = 101; number <= 111; ++number) {
        steps.emplace_back([number] { QTest::mouseClick(button(QString::number(number)), Qt::LeftButton); });
        wanted.push_back("command " + std::to_string(number));
    }
    stop(steps);
    EXPECT_EQ(done, wanted);
    EXPECT_EQ(button(QStringLiteral("112")), nullptr) << "a gap takes no number";
}

TEST_F(DebuggerTest, EachButtonIsReachedByTabAndPressedBySpace) {
    std::vector<Step> steps{[] { button(QStringLiteral("101"))->setFocus(); }};
    Done wanted;
    for (int number = 101; number <= 111; ++number) {
        steps.emplace_back([] {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        });
        wanted.push_back("command " + std::to_string(number));
    }
    stop(steps);
    EXPECT_EQ(done, wanted);
}

TEST_F(DebuggerTest, EachCommandHasItsKeyWhichTheTooltipTells) {
    std::vector<Step> steps;
    Done wanted;
    for (const DebugCommand& command : debugCommands) {
        const QKeyCombination keys = QKeySequence(QLatin1String(command.keys))[0];
        steps.emplace_back([keys] { key(keys.key(), keys.keyboardModifiers()); });
        wanted.push_back("command " + std::to_string(command.number));
        if (command.number > 111) continue;  // no button
        EXPECT_EQ(button(QString::number(command.number))->toolTip().toStdString(),
                  std::string(command.title) + " (" + command.keys + ")");
    }
    stop(steps);
    EXPECT_EQ(done, wanted);
}

TEST_F(DebuggerTest, EachButtonHasAPictureAndAName) {
    for (int number = 101; number <= 111; ++number) {
        const QToolButton* const one = button(QString::number(number));
        EXPECT_FALSE(one->icon().isNull()) << number;
        EXPECT_EQ(one->accessibleName().toStdString(), debugCommand(number)->title);
    }
    EXPECT_FALSE(button(QStringLiteral("break"))->icon().isNull());
}

TEST_F(DebuggerTest, APictureThatIsNotThereLeavesTheTitle) {
    EndDebug(window);
    DoEvents();
    window = StartDebug(Form, "", "nothing\nother", "none", {}, {});
    EXPECT_TRUE(button(QStringLiteral("101"))->icon().isNull());
    EXPECT_EQ(button(QStringLiteral("101"))->text(), QStringLiteral("Stop the program"));
}

TEST_F(DebuggerTest, LinesAreOpenedByDoubleClickAndReturn) {
    DebugAddstrings(*window, lines(5));
    stop({[] { QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, at(3, 200)); },
          [this] { DebugSelect(*window, 2, true); }, [] { key(Qt::Key_Return); }, [] { key(Qt::Key_Down); },
          [] { key(Qt::Key_Enter, Qt::KeypadModifier); }, [] { key(Qt::Key_F2); }, [] { key(Qt::Key_F1); },
          [this] { DebugSelect(*window, 0, false); }, [] { key(Qt::Key_F2); }, [] { key(Qt::Key_Return); }});
    EXPECT_EQ(done, (Done{"double click 3", "double click 2", "double click 3", "edit 3", "help 0"}));
}

TEST_F(DebuggerTest, TheSelectionIsTheSameInModelAndList) {
    DebugAddstrings(*window, lines(5));
    stop({[this] { DebugSelect(*window, 4, true); },
          [] { EXPECT_EQ(list()->selectionModel()->selectedRows().value(0).row(), 3); },
          [] { QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, at(2, 200)); },
          [this] { EXPECT_EQ(DebugSelected(*window), 2); }, [] { key(Qt::Key_End); },
          [this] { EXPECT_EQ(DebugSelected(*window), 5); }, [this] { DebugAddstrings(*window, "other"); },
          [this] {
              EXPECT_EQ(DebugSelected(*window), 0);
              EXPECT_FALSE(list()->selectionModel()->hasSelection());
          },
          [this] { DebugSelect(*window, 1, true); },
          [] { EXPECT_TRUE(list()->selectionModel()->hasSelection()); }});
}

TEST_F(DebuggerTest, AClickIntoTheMarginOfNumbersTogglesTheBreakpoint) {
    DebugAddstrings(*window, lines(5));
    stop({[] { QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, at(2, 4)); },
          [this] { SetDebugNumbers(*window, true); },
          [] { QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, at(3, 4)); },
          [this] { EXPECT_EQ(DebugSelected(*window), 3); }});
    EXPECT_EQ(done, (Done{"command 105"})) << "without numbers there is nothing to toggle";
}

TEST_F(DebuggerTest, AMarkerIsOpenedByAClickAndByTheArrows) {
    DebugAddstrings(*window, lines(4));
    SetDebugMarker(*window, 2, DebugMarker::Expand);
    SetDebugMarker(*window, 3, DebugMarker::Collapse);
    const auto marker = [](int line) {
        const int margin = list()->fontMetrics().height() * 3 / 2 + 6;
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, at(line, margin + 2));
    };
    stop({[&] { marker(2); }, [&] { marker(1); }, [&] { marker(3); }, [] { key(Qt::Key_Right); },
          [] { key(Qt::Key_Left); }, [] { key(Qt::Key_Up); }, [] { key(Qt::Key_Left); },
          [] { key(Qt::Key_Right); }});
    EXPECT_EQ(done, (Done{"double click 2", "double click 3", "double click 3", "double click 2"}));
}

TEST_F(DebuggerTest, ALineIsScrolledIntoViewAndTheTopIsKept) {
    DebugAddstrings(*window, lines(8000));
    DebugSelect(*window, 4000, true);
    const int first = DebugTop(*window);
    EXPECT_LT(first, 4000);
    EXPECT_GT(first, 3900);
    DebugSelect(*window, first + 1, true);
    EXPECT_EQ(DebugTop(*window), first) << "it was in view";
    SetDebugTop(*window, 100);
    EXPECT_EQ(DebugTop(*window), 100);
    DebugSelect(*window, 7000, false);
    EXPECT_EQ(DebugTop(*window), 100);
    list()->verticalScrollBar()->setValue(499);
    EXPECT_EQ(DebugTop(*window), 500) << "the user has scrolled";
    SetDebugTop(*window, 8000);
    EXPECT_GT(DebugTop(*window), 7900);
    EXPECT_LT(DebugTop(*window), 8000);
    DebugAddstrings(*window, lines(8000));
    EXPECT_EQ(DebugTop(*window), 1);
}

TEST_F(DebuggerTest, TheLongestLineAnd30PixelsCanBeReachedSideways) {
    DebugAddstrings(*window, std::string(1000, 'x') + "\nshort");
    QTest::qWait(20);
    EXPECT_EQ(list()->horizontalScrollBar()->maximum(), 0);
    DebugExtent(*window);
    QTest::qWait(20);
    const int text = list()->fontMetrics().horizontalAdvance(QString(1000, u'x'));
    const int margin = (list()->fontMetrics().height() - 2) * 3 / 2 + 8;
    const int reach = list()->horizontalScrollBar()->maximum() + list()->viewport()->width();
    EXPECT_NEAR(reach, margin + text + 30, 4);
}

TEST_F(DebuggerTest, TheWordUnderThePointerIsAskedForAndTheAnswerShown) {
    DebugAddstrings(*window, "  count := row.total + 12");
    act = [this](const DebugEvent& event) {
        if (event.message == DebugMessage::Hover) SetDebugTip(*window, "1 < 2\nsecond");
    };
    const auto rest = [](int letter) {
        const QFontMetrics metrics = list()->fontMetrics();
        const int from = metrics.height() * 3 / 2 + 9;
        const QPoint place = at(1, from + metrics.horizontalAdvance(u'x') * letter + 2);
        QHelpEvent event(QEvent::ToolTip, place, list()->viewport()->mapToGlobal(place));
        QApplication::sendEvent(list()->viewport(), &event);
    };
    stop({[&] { rest(3); }, [] { EXPECT_TRUE(QToolTip::isVisible()); },
          [] { EXPECT_EQ(QToolTip::text().toStdString(), "1 &lt; 2<br>second"); }, [&] { rest(8); },
          [&] { rest(12); }, [&] { rest(16); }, [&] { rest(23); }, [&] { rest(60); },
          [this] { SetDebugTip(*window, ""); }});
    EXPECT_EQ(done, (Done{"hover 1 count", "hover 1 row", "hover 1 row.total"}));
}

TEST_F(DebuggerTest, MarksAreDrawnInTheMargin) {
    DebugAddstrings(*window, lines(5));
    DebugSelect(*window, 0, false);
    QTest::qWait(20);
    const auto margin = [] {
        QImage all = list()->viewport()->grab().toImage();
        return all.copy(0, 0, list()->fontMetrics().height() * 3 / 2, all.height());
    };
    std::vector<QImage> seen{margin()};
    for (const int flags : {1, 2, 3, 4, 9}) {
        SetDebugFlags(*window, 2, flags);
        QTest::qWait(5);
        for (const QImage& before : seen) EXPECT_NE(margin(), before) << flags;
        seen.push_back(margin());
    }
    SetDebugFlags(*window, 2, 0);
    QTest::qWait(5);
    EXPECT_EQ(margin(), seen.front());
}

TEST_F(DebuggerTest, ScreenReadersHearMarksAndNumbers) {
    DebugAddstrings(*window, lines(3));
    SetDebugNumbers(*window, true);
    SetDebugFlags(*window, 2, DEBUG_BREAKPOINT | DEBUG_RULE | DEBUG_CURRENT);
    SetDebugMarker(*window, 3, DebugMarker::Expand);
    const auto read = [](int row) {
        return list()->model()->index(row, 0).data(Qt::AccessibleTextRole).toString().toStdString();
    };
    EXPECT_EQ(read(0), "1: line 1");
    EXPECT_EQ(read(1), "breakpoint with a rule, current line, 2: line 2");
    EXPECT_EQ(read(2), "collapsed, 3: line 3");
    EXPECT_EQ(list()->accessibleName(), QStringLiteral("Lines"));
    EXPECT_EQ(status()->accessibleName(), QStringLiteral("Status"));
}

TEST_F(DebuggerTest, TheLineAndAllOfItCanBeCopied) {
    SetDebugStatus(*window, "File a");
    DebugAddstrings(*window, "\tone\ntwo");
    DebugSelect(*window, 1, true);
    const auto copied = [] { return QGuiApplication::clipboard()->text().toStdString(); };
    stop({[] { key(Qt::Key_C, Qt::ControlModifier); }, [&] { EXPECT_EQ(copied(), "\tone"); },
          [] { key(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier); },
          [&] { EXPECT_EQ(copied(), "File a\n\tone\ntwo\n"); }});
}

TEST_F(DebuggerTest, HugeAndHostileLinesAreShown) {
    std::string text = std::string(1'000'000, 'x') + "\n" + std::string(5, '\0') + "\xff\xfe\n";
    for (int line = 0; line < 20000; ++line) text += "value\n";
    DebugAddstrings(*window, text);
    DebugExtent(*window);
    QTest::qWait(20);
    list()->viewport()->grab();
    EXPECT_EQ(list()->model()->rowCount(), 20002);
    EXPECT_EQ(list()->model()->index(0, 0).data().toString().size(), 4097);
    EXPECT_EQ(DebugLine(*window, 1).size(), 1'000'000U);
    EXPECT_EQ(list()->model()->index(1, 0).data().toString().size(), 7);
}

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

// ---- the place ----

TEST_F(DebuggerTest, ThePlaceIsTakenAndTold) {
    EndDebug(window);
    DoEvents();
    start({40, 60, 500, 300});
    QTest::qWait(300);  // until the frame is known
    EXPECT_EQ(top()->frameGeometry(), QRect(40, 60, 500, 300));
    QTest::qWait(1100);
    top()->setGeometry(70, 80, 520, 320);
    QTest::qWait(20);
    const QRect frame = top()->frameGeometry();
    EXPECT_EQ(GetDebugPlace(*window), (DebugPlace{frame.x(), frame.y(), frame.width(), frame.height()}));
}

TEST_F(DebuggerTest, APlaceOutsideOfTheScreenIsNotTaken) {
    for (const DebugPlace& place : {DebugPlace{-5000, 0, 400, 300}, DebugPlace{0, 9000, 400, 300}}) {
        EndDebug(window);
        DoEvents();
        start(place);
        EXPECT_TRUE(top()->screen()->geometry().contains(top()->frameGeometry().topLeft()));
        EXPECT_EQ(top()->width(), 400);
    }
    EndDebug(window);
    DoEvents();
    start({10, 10, 300, 0});
    EXPECT_GT(top()->height(), 100) << "a height of 0 is none";
}

}  // namespace
}  // namespace tarn::platform
