// SPDX-License-Identifier: Apache-2.0
//
// Lines that are too long for the component, which stand in it as rows: as quick as others, and every byte is kept.
#include "ui/edit_fixture.h"

#include "platform/operations/textedits.h"
#include "platform/qt/controls/editarea.h"
#include "support/places.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QWidget>

#include <algorithm>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace tarn::platform::qt {

namespace {

using namespace std::string_literals;

// Milliseconds of this program's own time for the longest but one of some keys, painted.
double slowKey(EditArea& area, const std::function<void()>& key) {
    std::vector<double> times;
    for (int i = 0; i < 12; ++i) {
        const std::clock_t start = std::clock();
        key();
        area.textWidget()->repaint();
        QApplication::processEvents();
        times.push_back(static_cast<double>(std::clock() - start) * 1000 / CLOCKS_PER_SEC);
    }
    std::sort(times.begin(), times.end());
    return times[10];
}

TEST_F(EditTest, TypingInAnEndlessLineIsQuick) {
    area->setFlags(STATUSBAR);
    std::string text(4'000'000, 'x');
    store->setText(text);
    for (const int place : {1, 2'000'000, 4'000'001}) {
        caret(place);
        EXPECT_LT(slowKey(*area, [&] { type(QStringLiteral("y")); }), 100) << place;
        text.insert(static_cast<std::size_t>(place - 1), 12, 'y');
        EXPECT_EQ(store->text(), text);
        EXPECT_EQ(store->length(), static_cast<int>(text.size()));
    }
}

TEST_F(EditTest, EndlessLinesAreToldInTheStatusBar) {
    area->setFlags(STATUSBAR);
    const std::string line(50'000, 'x');
    store->setText("a\n" + line + "\nb\n");
    caret(2 + 30'001);
    QApplication::processEvents();
    auto* bar = window.findChild<QWidget*>(QStringLiteral("statusbar"));
    EXPECT_TRUE(bar->accessibleDescription().startsWith(QStringLiteral("Line 2, column 30")))
        << bar->accessibleDescription().toStdString();
    EXPECT_TRUE(bar->accessibleDescription().contains(QStringLiteral("stand in rows")));
    caret(2 + 50'001 + 1);
    QApplication::processEvents();
    EXPECT_TRUE(bar->accessibleDescription().startsWith(QStringLiteral("Line 3, column 1")))
        << bar->accessibleDescription().toStdString();
}

TEST_F(EditTest, EndlessLinesKeepEveryByteThroughEdits) {
    const std::string line(40'000, 'x');
    std::string odd;
    for (int i = 0; i < 40'000; ++i) odd += static_cast<char>(i % 3 == 0 ? 0xC3 : i % 3 == 1 ? 0xA9 : 0xFF);
    const std::string texts[] = {
        line, line + "\n" + line + "\n", "a\r\n" + line + "\r\nb", "a\r" + line, "a\nb\r\n" + line,
        odd,  line + "\0"s + line};
    for (const std::string& text : texts) {
        store->setText(text);
        EXPECT_EQ(store->text(), text);
        EXPECT_EQ(store->length(), static_cast<int>(text.size()));
        store->select(3, static_cast<int>(text.size()) - 5);
        EXPECT_EQ(store->selection().start, 3);
        EXPECT_EQ(store->selection().length, static_cast<int>(text.size()) - 5);
        EXPECT_EQ(store->range(3, 12'345), text.substr(2, 12'345));
        store->replaceSelection("new\r\n" + line + "\rend");
        std::string wanted = text;
        wanted.replace(2, text.size() - 5, "new\r\n" + line + "\rend");
        EXPECT_EQ(store->text(), wanted);
    }
}

TEST_F(EditTest, KeysInEndlessLinesWorkAsInOthers) {
    std::string text(40'000, 'x');
    for (std::size_t i = 0; i < text.size(); ++i) text[i] = static_cast<char>('a' + i % 26);
    store->setText(text);
    for (const int place : {1001, 2001, 1999, 2000, 2002}) {
        caret(place);
        press(Qt::Key_Backspace);
        text.erase(static_cast<std::size_t>(place - 2), 1);
        EXPECT_EQ(store->text(), text) << place;
        press(Qt::Key_Delete);
        text.erase(static_cast<std::size_t>(place - 2), 1);
        EXPECT_EQ(store->text(), text) << place;
        type(QStringLiteral("\n"));
        text.insert(static_cast<std::size_t>(place - 2), "\n");
        EXPECT_EQ(store->text(), text) << place;
    }
    const std::string last = text;
    for (int i = 0; i < 30; ++i) ask(2176);
    for (std::size_t i = 0; i < 40'000; ++i)
        ASSERT_EQ(store->text()[i], static_cast<char>('a' + i % 26)) << "undone " << i;
    for (int i = 0; i < 30; ++i) ask(2011);
    EXPECT_EQ(store->text(), last) << "done again";
}

TEST_F(EditTest, APastedEndlessLineIsNoSlowerThanALoadedOne) {
    store->setText("short\n");
    caret(3);
    const std::string line(1'000'000, 'x');
    QGuiApplication::clipboard()->setText(QString::fromStdString(line));
    press(Qt::Key_V, {}, Qt::ControlModifier);
    EXPECT_EQ(store->text(), "sh" + line + "ort\n");
    EXPECT_LT(slowKey(*area, [&] { type(QStringLiteral("y")); }), 100);
    press(Qt::Key_A, {}, Qt::ControlModifier);
    press(Qt::Key_C, {}, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(),
              "sh" + line + std::string(12, 'y') + "ort\n");
}

// A line of 4,000,000 bytes with 8,000 places to find.
constexpr int Hits = 8000, Apart = 500;

std::string lineOfHits() {
    std::string text;
    for (int i = 0; i < Hits; ++i)
        text += "hit" + std::string(static_cast<std::size_t>(Apart - 3), static_cast<char>('a' + i % 26));
    return text;
}

std::vector<Selection> placesOfHits() {
    std::vector<Selection> places;
    for (int i = 0; i < Hits; ++i) places.push_back({i * Apart + 1, 3});
    return places;
}

TEST_F(EditTest, ManyPlacesOfAnEndlessLineAreReplacedAsOneStep) {
    const std::string text = lineOfHits();
    for (const std::string& comes : {"HIT"s, ""s, "longer\xC3\xA9\0"s, "two\nlines"s, std::string(40, 'z')}) {
        std::vector<TextEdit> edits;
        std::string wanted;
        for (const Selection& place : placesOfHits()) {
            edits.push_back({place.start, place.length, comes});
            wanted += comes + text.substr(static_cast<std::size_t>(place.start + 2), Apart - 3);
        }
        store->setText(text);
        QElapsedTimer timer;
        timer.start();
        store->replaceParts(edits);
        EXPECT_LT(timer.elapsed(), 3000);
        EXPECT_EQ(store->text(), wanted);
        EXPECT_EQ(store->length(), static_cast<int>(wanted.size()));
        EXPECT_EQ(store->selection().start, static_cast<int>(wanted.size()) - (Apart - 3) + 1);
        EXPECT_EQ(store->selection().length, 0);
        EXPECT_EQ(store->range(1'000'001, 777), wanted.substr(1'000'000, 777));
        store->undo();
        EXPECT_EQ(store->text(), text) << "one step";
        EXPECT_FALSE(store->canUndo());
        EXPECT_FALSE(store->modified());
        store->redo();
        EXPECT_EQ(store->text(), wanted);
        caret(2'000'000);
        EXPECT_LT(slowKey(*area, [&] { type(QStringLiteral("y")); }), 200);
    }
    QApplication::processEvents();
    EXPECT_EQ(changes, 5 * 12) << "the keys alone are reported";
}

TEST_F(EditTest, WhatMakesALineEndlessIsPartedInOneStepToo) {
    std::string text, wanted;
    std::vector<TextEdit> edits;
    for (int i = 0; i < 1000; ++i) {
        edits.push_back({static_cast<int>(text.size()) + 1, 1, std::string(900, 'n')});
        text += "o y";
        wanted += edits.back().text + " y";
    }
    for (const std::string& tail : {""s, "\nmore\n"s, "\r\nmore"s}) {
        store->setText(text + tail);
        store->replaceParts(edits);
        EXPECT_EQ(store->text(), wanted + tail);
        EXPECT_LT(slowKey(*area, [&] { type(QStringLiteral("y")); }), 200);
        while (store->canUndo()) store->undo();
        EXPECT_EQ(store->text(), text + tail);
        store->replaceRange(2, 1, std::string(900'000, 'r'));
        EXPECT_EQ(store->text(), "o" + std::string(900'000, 'r') + text.substr(2) + tail);
        store->undo();
        EXPECT_EQ(store->text(), text + tail);
    }
}

TEST_F(EditTest, ARangeOfAnEndlessLineIsReplacedAroundCaretAndView) {
    const std::string text = lineOfHits();
    struct Case {
        int start, length;
        std::string comes;
    };
    const Case cases[] = {{1, 3, "x"},           {1001, 1000, ""},
                          {999, 5, "\n"},        {500'000, 2'000'000, std::string(5000, 'n')},
                          {4'000'001, 0, "end"}, {1, 4'000'000, "all"},
                          {2000, 1, "\0\xFF"s}};
    for (const auto& [start, length, comes] : cases) {
        store->setText(text);
        store->select(3'000'001, 500);
        const long first = ask(2152);
        store->replaceRange(start, length, comes);
        std::string wanted = text;
        wanted.replace(static_cast<std::size_t>(start - 1), static_cast<std::size_t>(length), comes);
        EXPECT_EQ(store->text(), wanted) << start;
        if (start + length <= 3'000'001) {
            const Selection now = store->selection();
            EXPECT_EQ(store->range(now.start, now.length), text.substr(3'000'000, 500)) << start;
        }
        if (start > 3'000'000) {
            EXPECT_EQ(ask(2152), first) << "nothing is scrolled";
        }
        store->undo();
        EXPECT_EQ(store->text(), text) << start;
        EXPECT_FALSE(store->canUndo());
        store->redo();
        EXPECT_EQ(store->text(), wanted) << start;
    }
    store->setText(text);
    store->replaceRange(2'000'001, 3, "lone\rreturn");
    EXPECT_EQ(store->range(2'000'001, 11), "lone\rreturn");
    EXPECT_EQ(store->length(), 4'000'008);
    EXPECT_TRUE(store->modified());
}

TEST_F(EditTest, MarksOfAnEndlessLineStayWithTheirText) {
    store->setText(lineOfHits());
    const std::vector<Selection> places = placesOfHits();
    store->setMarks(places);
    EXPECT_EQ(placesOf(store->marks()), placesOf(places));
    caret(1);
    type(QStringLiteral("xx"));
    std::vector<Selection> moved = places;
    for (Selection& place : moved) place.start += 2;
    EXPECT_EQ(placesOf(store->marks()), placesOf(moved));
    store->replaceRange(1, 2, "");
    EXPECT_EQ(placesOf(store->marks()), placesOf(places));
    store->setMarks({{998, 10}, {2001, 3000}, {3'999'999, 50}});
    EXPECT_EQ(placesOf(store->marks()), "998+10 2001+3000 3999999+2 ") << "over the ends of rows";
    store->setMarks({{1, 2000}, {2001, 5}});
    EXPECT_EQ(placesOf(store->marks()), "1+2005 ") << "those that touch are one";
    EXPECT_EQ(store->text(), lineOfHits());
    store->setMarks({});
    EXPECT_TRUE(store->marks().empty());
}

TEST_F(EditTest, TheLimitOfAnEndlessLineCountsItsOwnBytes) {
    area->setFlags(STATUSBAR);
    area->setMaxLength(4'000'000);
    area->setStatus(QStringLiteral("Read-only file"));
    std::string text(3'999'998, 'x');
    store->setText(text);
    caret(2'000'000);
    type(QStringLiteral("abc"));
    text.insert(1'999'999, "ab");
    EXPECT_EQ(store->text(), text) << "two had room";
    QApplication::processEvents();
    auto* bar = window.findChild<QWidget*>(QStringLiteral("statusbar"));
    for (const char* part :
         {"No room: a text has at most 4,000,000 bytes", "Read-only file", "stand in rows"})
        EXPECT_TRUE(bar->accessibleDescription().contains(QLatin1String(part)))
            << bar->accessibleDescription().toStdString();
    store->select(1, 2000);
    QGuiApplication::clipboard()->setText(QString(2001, u'p'));
    press(Qt::Key_V, {}, Qt::ControlModifier);
    EXPECT_EQ(store->text(), text) << "one byte too many";
    QGuiApplication::clipboard()->setText(QString(2000, u'p'));
    press(Qt::Key_V, {}, Qt::ControlModifier);
    text.replace(0, 2000, std::string(2000, 'p'));
    EXPECT_EQ(store->text(), text);
    while (store->canUndo()) store->undo();
    EXPECT_EQ(store->text(), std::string(3'999'998, 'x'));
    while (store->canRedo()) store->redo();
    EXPECT_EQ(store->text(), text) << "what was done is done again, whatever the limit";
}

TEST_F(EditTest, APasteIntoAnEndlessLineKeepsItsBytesAndTakesTheLineEnds) {
    for (const std::string& end : {"\n"s, "\r\n"s}) {
        const std::string text = lineOfHits() + end;
        store->setText(text);
        caret(1001);
        QGuiApplication::clipboard()->setText(QStringLiteral("one\r\ntwo\nthree"));
        press(Qt::Key_V, {}, Qt::ControlModifier);
        EXPECT_EQ(store->text(),
                  text.substr(0, 1000) + "one" + end + "two" + end + "three" + text.substr(1000));
        store->undo();
        EXPECT_EQ(store->text(), text);
        store->select(500, 3'000'000);
        press(Qt::Key_X, {}, Qt::ControlModifier);
        EXPECT_EQ(store->text(), text.substr(0, 499) + text.substr(3'000'499));
        press(Qt::Key_V, {}, Qt::ControlModifier);
        EXPECT_EQ(store->text(), text) << "cut and pasted";
    }
}

TEST_F(EditTest, ReturnsThatWereOnceInATextAreNotTakenForRows) {
    const std::string line(40'000, 'x');
    store->setText("a\rb\nc");
    store->convertLineEnds(ENDS_LF, 0);
    caret(1);
    store->replaceSelection(line);
    EXPECT_EQ(store->text(), line + "a\nb\nc");
    EXPECT_TRUE(store->modified());
    while (store->canUndo()) store->undo();
    EXPECT_EQ(store->text(), "a\nb\nc") << "what was before cannot be undone";
    EXPECT_TRUE(store->modified());
    store->setText("a\nb");
    caret(1);
    type(QStringLiteral("\n"));
    store->replaceSelection(line);
    while (store->canUndo()) store->undo();
    EXPECT_EQ(store->text(), "a\nb") << "ends as the others are no hindrance";
    EXPECT_FALSE(store->modified());
}

TEST_F(EditTest, ChangedLinesAndBlocksFollowReplacingManyPlacesAndItsUndo) {
    area->setLooks(LOOK_FOLDS | LOOK_CHANGES, 4, 0);
    area->setBlocks("any if\nend end\n");
    const std::string between(100, 'c');
    store->setText("a\nx\n" + between + "\nend if\na\n");
    store->replaceParts({{1, 1, "if"}, {113, 1, "z"}});
    EXPECT_EQ(store->text(), "if\nx\n" + between + "\nend if\nz\n");
    const auto marked = [&] {
        std::string lines;
        for (int line = 0; line < ask(2154); ++line)
            lines += std::to_string(ask(2046, static_cast<unsigned long>(line)) & 3);
        return lines;
    };
    for (int i = 0; i < 5; ++i) QApplication::processEvents();
    EXPECT_EQ(marked(), "100010");
    EXPECT_NE(ask(2223, 0) & 0x2000, 0) << "a block begins";
    store->undo();
    for (int i = 0; i < 5; ++i) QApplication::processEvents();
    EXPECT_EQ(marked().find('1'), std::string::npos);
    EXPECT_EQ(ask(2223, 0) & 0x2000, 0);
}

}  // namespace

}  // namespace tarn::platform::qt
