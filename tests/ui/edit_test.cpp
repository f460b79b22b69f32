// SPDX-License-Identifier: Apache-2.0
//
// Texts of the edit window: every byte is kept, selections, steps of undo, line ends, and what the bars tell.
#include "ui/edit_fixture.h"

#include "platform/operations/textedits.h"
#include "platform/qt/controls/editarea.h"
#include "support/places.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QWidget>

#include <string>
#include <vector>

namespace tarn::platform::qt {

namespace {

using namespace std::string_literals;

constexpr int NumberMargin = 1, ChangeMargin = 2, FoldMargin = 3;  // 0 is for marks

TEST_F(EditTest, KeepsEveryByteOfAnyText) {
    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    const std::string texts[] = {
        "",
        "x",
        "\n",
        "\r",
        "\r\n",
        "no line end",
        "a\nb\r\nc\rd",
        "nul\0nul\0"s,
        "\0"s,
        all,
        all + all,
        "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
        "\xC3",
        "\x80\xFF\xFE",
        "cut \xE2\x82",
        "\xEF\xBB\xBFmark",
        "\xC0\x80",
        "\xED\xA0\x80",
        std::string(100000, 'x'),
        std::string(5000, '\n'),
        "\t \t\n  \v\f\x1B[0m",
    };
    for (const auto& text : texts) {
        store->setText(text);
        EXPECT_EQ(store->text(), text);
        EXPECT_EQ(store->length(), static_cast<int>(text.size()));
        EXPECT_FALSE(store->modified());
    }
}

TEST_F(EditTest, KeepsTheOtherBytesWhenOneIsTyped) {
    const std::string text = "a\xFF\r\n\0b\xC3\n"s;
    store->setText(text);
    caret(1);
    type(QStringLiteral("x"));
    EXPECT_EQ(store->text(), "x" + text);
    EXPECT_TRUE(store->modified());
}

TEST_F(EditTest, TypedLinesEndAsMostLinesOfTheFile) {
    struct Case {
        std::string text, end;
    };
    const Case cases[] = {{"a\nb\n", "\n"},          {"a\r\nb\r\n", "\r\n"}, {"a\rb\r", "\r"},
                          {"a\r\nb\r\nc\n", "\r\n"}, {"a\nb\nc\r\n", "\n"},  {"", "\n"},
                          {"one line", "\n"}};
    for (const auto& [text, end] : cases) {
        store->setText(text);
        caret(1);
        type(QStringLiteral("\n"));
        EXPECT_EQ(store->text(), end + text);
    }
}

TEST_F(EditTest, SelectionsAreBytePositionsFromOne) {
    store->setText("a\xC3\xA9z\nend");
    store->select(2, 2);
    EXPECT_EQ(store->selection().start, 2);
    EXPECT_EQ(store->selection().length, 2);
    store->select(4, 0);
    EXPECT_EQ(store->selection().start, 4);
    EXPECT_EQ(store->selection().length, 0);
    store->select(6, 3);
    EXPECT_EQ(store->selection().start, 6);
    EXPECT_EQ(store->selection().length, 3);
}

TEST_F(EditTest, SelectionsOutsideTheTextAreCutToIt) {
    store->setText("abc");
    store->select(-5, 100);
    EXPECT_EQ(store->selection().start, 1);
    EXPECT_EQ(store->selection().length, 3);
    store->select(100, 5);
    EXPECT_EQ(store->selection().start, 4);
    EXPECT_EQ(store->selection().length, 0);
    store->select(2, -1);
    EXPECT_EQ(store->selection().length, 0);
}

TEST_F(EditTest, SelectingALineFarAwayScrollsToIt) {
    std::string text;
    for (int i = 0; i < 1000; ++i) text += "line\n";
    store->setText(text);
    store->select(500 * 5 + 1, 0);
    store->select(500 * 5 + 1, 5);
    const long first = ask(2152);
    EXPECT_LT(first, 500);
    EXPECT_GT(first, 500 - ask(2370));
}

TEST_F(EditTest, ReplacingTheSelectionIsOneUndoStepAndNotReported) {
    store->setText("one two\0three"s);
    store->select(5, 3);
    store->replaceSelection("2\0\xFF\r\n"s);
    EXPECT_EQ(store->text(), "one 2\0\xFF\r\n\0three"s);
    EXPECT_EQ(store->selection().start, 10);
    EXPECT_EQ(store->selection().length, 0);
    QApplication::processEvents();
    EXPECT_EQ(changes, 0);
    ask(2176);
    QApplication::processEvents();
    EXPECT_EQ(store->text(), "one two\0three"s);
    EXPECT_FALSE(store->modified());
    EXPECT_EQ(changes, 1) << "undoing is an edit of the user";
}

TEST_F(EditTest, StepsAreUndoneAndRedoneByTheProgramWithoutAReport) {
    store->setText("one");
    EXPECT_FALSE(store->canUndo());
    EXPECT_FALSE(store->canRedo());
    store->select(4, 0);
    store->replaceSelection(" two");
    EXPECT_TRUE(store->canUndo());
    store->undo();
    EXPECT_EQ(store->text(), "one");
    EXPECT_FALSE(store->modified());
    EXPECT_FALSE(store->canUndo());
    EXPECT_TRUE(store->canRedo());
    store->redo();
    EXPECT_EQ(store->text(), "one two");
    QApplication::processEvents();
    EXPECT_EQ(changes, 0);
    area->setFlags(READONLY);
    EXPECT_FALSE(store->canUndo());
}

TEST_F(EditTest, ReplacingARangeIsOneStepAndLeavesCaretAndView) {
    std::string text;
    for (int i = 0; i < 1000; ++i) text += "line\n";
    store->setText(text);
    store->select(800 * 5 + 1, 4);
    const long first = ask(2152);
    store->replaceRange(1, 4, "LINES \xFF\0"s);
    EXPECT_EQ(store->text(), "LINES \xFF\0"s + text.substr(4));
    EXPECT_EQ(store->selection().start, 800 * 5 + 1 + 4);
    EXPECT_EQ(store->selection().length, 4);
    EXPECT_EQ(ask(2152), first);
    QApplication::processEvents();
    EXPECT_EQ(changes, 0);
    store->undo();
    EXPECT_EQ(store->text(), text);
    store->select(6, 0);  // the start of the line behind
    store->replaceRange(1, 5, "a longer line\n");
    EXPECT_EQ(store->selection().start, 15);
    store->undo();
    store->replaceRange(100000, 5, "end");
    EXPECT_EQ(store->text(), text + "end");
}

TEST_F(EditTest, WhatHasNoRoomIsToldInTheStatusBarUntilTheNextEdit) {
    area->setFlags(STATUSBAR);
    area->setMaxLength(3);
    area->setStatus(QStringLiteral("Read-only file"));
    store->setText("ab");
    store->select(3, 0);
    auto* bar = window.findChild<QWidget*>(QStringLiteral("statusbar"));
    ASSERT_NE(bar, nullptr);
    const auto said = [&] {
        QApplication::processEvents();
        return bar->accessibleDescription();
    };
    type(QStringLiteral("c"));
    EXPECT_FALSE(said().contains(QStringLiteral("No room")));
    type(QStringLiteral("d"));
    EXPECT_EQ(store->text(), "abc");
    store->undo();
    EXPECT_EQ(store->text(), "ab") << "what was refused is no step";
    store->redo();
    EXPECT_TRUE(said().contains(QStringLiteral("No room: a text has at most 3 bytes")))
        << said().toStdString();
    EXPECT_TRUE(said().contains(QStringLiteral("Read-only file")));
    press(Qt::Key_Backspace);
    EXPECT_FALSE(said().contains(QStringLiteral("No room"))) << said().toStdString();
    store->replaceSelection("longer than the limit");
    EXPECT_EQ(store->length(), 23) << "the program is not limited";
}

TEST_F(EditTest, ReplacingManyPlacesIsOneUndoStepAndNotReported) {
    std::string text, wanted;
    std::vector<TextEdit> edits;
    for (int i = 0; i < 1000; ++i) {
        edits.push_back({static_cast<int>(text.size()) + 3, 2, i % 3 == 0 ? "" : "new\n\0\xFF"s});
        const std::string gap(i % 9 == 0 ? 0 : static_cast<std::size_t>(i), 'y');
        text += "x old\r\n" + gap + "\xC3";
        wanted += "x " + edits.back().text + "d\r\n" + gap + "\xC3";
    }
    store->setText(text);
    type(QStringLiteral("t"));
    QApplication::processEvents();
    changes = 0;
    for (TextEdit& edit : edits) ++edit.start;
    store->replaceParts(edits);
    EXPECT_EQ(store->text(), "t" + wanted);
    EXPECT_EQ(store->selection().length, 0);
    EXPECT_EQ(store->selection().start, static_cast<int>(1 + wanted.size() - 4 + 1));
    QApplication::processEvents();
    EXPECT_EQ(changes, 0);
    ask(2176);
    EXPECT_EQ(store->text(), "t" + text);
    ask(2176);
    EXPECT_EQ(store->text(), text);
    EXPECT_FALSE(store->modified());
    ask(2011);
    ask(2011);
    EXPECT_EQ(store->text(), "t" + wanted);
}

TEST_F(EditTest, SettingATextIsNoChangeAndCannotBeUndone) {
    type(QStringLiteral("x"));
    changes = 0;
    store->setText("new");
    QApplication::processEvents();
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(ask(2174), 0);
    ask(2176);
    EXPECT_EQ(store->text(), "new");
}

TEST_F(EditTest, TheModifiedMarkCanBeSetAndTakenOff) {
    store->setText("x");
    store->setModified(true);
    EXPECT_TRUE(store->modified());
    store->setModified(false);
    EXPECT_FALSE(store->modified());
    type(QStringLiteral("y"));
    EXPECT_TRUE(store->modified());
    store->setModified(false);
    ask(2176);
    EXPECT_TRUE(store->modified()) << "undone beyond the saved text";
}

TEST_F(EditTest, TheNumberBarGrowsWithTheText) {
    const auto width = [this] { return ask(2243, NumberMargin); };
    EXPECT_EQ(width(), 0);
    area->setFlags(NUMBERBAR);
    const long narrow = width();
    EXPECT_GT(narrow, 0);
    store->setText(std::string(20000, '\n'));
    EXPECT_GT(width(), narrow);
    store->setText("");
    EXPECT_EQ(width(), narrow);
}

TEST_F(EditTest, TheStatusBarTellsCaretAndSize) {
    area->setFlags(STATUSBAR);
    store->setText("ab\ncd\n");
    store->select(5, 0);
    QApplication::processEvents();
    auto* bar = window.findChild<QWidget*>(QStringLiteral("statusbar"));
    ASSERT_NE(bar, nullptr);
    EXPECT_TRUE(bar->isVisible());
    EXPECT_EQ(bar->accessibleDescription().toStdString(), "Line 2, column 2, Insert, , LF, 6 bytes");
    QTest::mouseClick(bar, Qt::RightButton);
    EXPECT_EQ(infos, 1);
    area->setFlags(0);
    EXPECT_FALSE(bar->isVisible());
}

TEST_F(EditTest, TheStatusBarFollowsASelectionThatTheProgramMakes) {
    area->setFlags(STATUSBAR);
    store->setText("ab\ncd\nef\n");
    QApplication::processEvents();
    area->textWidget()->clearFocus();
    window.hide();
    store->select(7, 2);
    QApplication::processEvents();
    EXPECT_TRUE(window.findChild<QWidget*>(QStringLiteral("statusbar"))
                    ->accessibleDescription()
                    .startsWith(QStringLiteral("Line 3, ")));
}

TEST_F(EditTest, LineEndsAreConvertedInOneStep) {
    struct Case {
        std::string text;
        int ends;
    };
    const Case cases[] = {{"a\nb\n", ENDS_LF},      {"a\r\nb", ENDS_CRLF}, {"a\rb\r", ENDS_CR},
                          {"a\nb\r\n", ENDS_MIXED}, {"ab", ENDS_NONE},     {"", ENDS_NONE}};
    for (const auto& [text, ends] : cases) {
        store->setText(text);
        EXPECT_EQ(store->lineEnds(), ends) << text;
        for (const int wanted : {ENDS_CRLF, ENDS_LF}) {
            store->setText(text);
            EXPECT_EQ(store->convertLineEnds(wanted, 0), withLineEnds(text, wanted) != text) << text;
            EXPECT_EQ(store->text(), withLineEnds(text, wanted));
            if (store->text() == text) continue;
            EXPECT_TRUE(store->modified());
            ask(2176);
            EXPECT_EQ(store->text(), text) << "undone";
            EXPECT_FALSE(store->modified());
            EXPECT_EQ(store->lineEnds(), ends);
        }
    }
    store->setText("a\nb");
    EXPECT_FALSE(store->convertLineEnds(ENDS_CRLF, 3)) << "no room";
    EXPECT_EQ(store->text(), "a\nb");
}

TEST_F(EditTest, TypedLinesEndAsTheOthersAfterAConversionAndItsUndo) {
    store->setText("a\nb\n");
    store->convertLineEnds(ENDS_CRLF, 0);
    caret(1);
    type(QStringLiteral("\n"));
    EXPECT_EQ(store->text(), "\r\na\r\nb\r\n");
    ask(2176);
    ask(2176);
    EXPECT_EQ(store->lineEnds(), ENDS_LF);
    caret(1);
    type(QStringLiteral("\n"));
    EXPECT_EQ(store->text(), "\na\nb\n");
}

}  // namespace

}  // namespace tarn::platform::qt
