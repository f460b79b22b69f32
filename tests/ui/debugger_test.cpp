// SPDX-License-Identifier: Apache-2.0
//
// The debugger's window: what the model has is seen, and what the user does reaches the handler.
#include "ui/debugger_fixture.h"

namespace tarn::platform {
namespace {

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

TEST_F(DebuggerTest, TheLineUpToTheWordUnderThePointerIsToldAndTheAnswerShown) {
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
          [] { EXPECT_EQ(QToolTip::text().toStdString(), "<qt>1 &lt; 2<br>second</qt>"); }, [&] { rest(8); },
          [&] { rest(12); }, [&] { rest(16); }, [&] { rest(23); }, [&] { rest(60); },
          [this] { SetDebugTip(*window, ""); }});
    EXPECT_EQ(done, (Done{"hover 1   count", "hover 1   count := row", "hover 1   count := row.total"}));
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

}  // namespace
}  // namespace tarn::platform
