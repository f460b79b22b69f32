// SPDX-License-Identifier: Apache-2.0
//
// The edit window by itself: its library, without a model behind it.
#include "platform/operations/textedits.h"
#include "platform/qt/controls/editarea.h"
#include "support/places.h"

#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QElapsedTimer>
#include <QImage>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPalette>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <QWidget>

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tarn::platform::qt {

namespace {

using namespace std::string_literals;

constexpr int NumberMargin = 1, ChangeMargin = 2, FoldMargin = 3;  // 0 is for marks

class EditTest : public ::testing::Test, public EditEvents {
protected:
    void SetUp() override {
        static void* library = dlopen(BINARY_DIR "/libtarnwick-edit.so", RTLD_NOW | RTLD_GLOBAL);
        ASSERT_NE(library, nullptr) << dlerror();
        const auto make = reinterpret_cast<MakeEditArea>(dlsym(library, "tarn_make_edit_area"));
        ASSERT_NE(make, nullptr);
        window.resize(600, 400);
        area = make(&window, *this);
        area->widget()->setGeometry(window.rect());
        store = area->store();
        area->setFlags(0);
        window.show();
        window.activateWindow();
        area->textWidget()->setFocus();
        QApplication::processEvents();
    }

    void changed() override { ++changes; }
    void doubleClicked(QPoint) override { ++doubles; }
    void infoAsked(QPoint) override { ++infos; }
    void zoomed(int points) override { zoom = points; }
    bool nameClicked(int position) override {
        clicked = position;
        return follows;
    }

    // A key with the text that it makes.
    void press(int code, const QString& text = {}, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent down(QEvent::KeyPress, code, modifiers, text);
        QApplication::sendEvent(area->textWidget(), &down);
    }
    void type(const QString& text) {
        for (const QChar c : text) {
            if (c == u'\n')
                press(Qt::Key_Return, QStringLiteral("\r"));
            else
                press(0, QString(c));
        }
    }
    void caret(int position) { store->select(position, 0); }

    // A message of the control itself, for looking at what has no other way out.
    long ask(unsigned message, unsigned long w = 0, long l = 0) {
        long result = 0;
        static const auto send = reinterpret_cast<long (*)(const void*, unsigned, unsigned long, long)>(
            dlsym(RTLD_DEFAULT, "_ZNK17QsciScintillaBase13SendScintillaEjml"));
        if (send != nullptr) result = send(area->textWidget(), message, w, l);
        return result;
    }
    int styleAt(int position) {
        ask(4003, 0, -1);  // colourise all
        return static_cast<int>(ask(2010, static_cast<unsigned long>(position - 1)));
    }
    int foreOf(int style) { return static_cast<int>(ask(2481, static_cast<unsigned long>(style))); }

    QWidget window;
    EditArea* area = nullptr;
    std::unique_ptr<TextStore> store;
    int changes = 0, doubles = 0, infos = 0, zoom = 0, clicked = 0;
    bool follows = false;
};

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

double luminance(const QColor& colour) {
    const auto linear = [](float part) {
        return part <= 0.03928F ? part / 12.92 : std::pow((static_cast<double>(part) + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

// Of the two colours that fill most of the picture.
double contrastOf(const QImage& picture) {
    std::map<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) ++counts[picture.pixel(x, y)];
    std::vector<std::pair<int, QRgb>> most;
    for (const auto& [colour, count] : counts) most.emplace_back(count, colour);
    std::sort(most.rbegin(), most.rend());
    if (most.size() < 2) return 0;
    const double a = luminance(QColor(most[0].second)), b = luminance(QColor(most[1].second));
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QPalette paletteOf(const QColor& paper, const QColor& ink, const QColor& mark, const QColor& marked) {
    QPalette palette(ink, paper, paper, paper, paper, ink, ink, paper, paper);
    palette.setColor(QPalette::Highlight, mark);
    palette.setColor(QPalette::HighlightedText, marked);
    return palette;
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

std::string placesOf(const std::vector<Selection>& marks) {
    std::string places;
    for (const Selection& mark : marks)
        places += std::to_string(mark.start) + "+" + std::to_string(mark.length) + " ";
    return places;
}

TEST_F(EditTest, MarksStayWithTheirText) {
    store->setText("one two one");
    EXPECT_TRUE(store->marks().empty());
    store->setMarks({{1, 3}, {9, 3}, {50, 2}});
    EXPECT_EQ(placesOf(store->marks()), "1+3 9+3 ");
    caret(5);
    type(QStringLiteral("xx"));
    EXPECT_EQ(placesOf(store->marks()), "1+3 11+3 ");
    store->setMarks({{5, 2}});
    EXPECT_EQ(placesOf(store->marks()), "5+2 ");
    EXPECT_EQ(store->text(), "one xxtwo one");
    store->setMarks({});
    EXPECT_TRUE(store->marks().empty());
    store->setMarks({{1, 3}});
    store->setText("one");
    EXPECT_TRUE(store->marks().empty());
}

TEST_F(EditTest, MarkedHitsReadWellInEveryPalette) {
    const QPalette before = QApplication::palette();
    std::string blocks;
    for (int i = 0; i < 30; ++i) blocks += "\u2588 ";
    area->setFlags(HILITE);
    area->setTokens("// ##EOL 0x008000 ITALIC\n");
    for (const QPalette& palette :
         {paletteOf(Qt::white, Qt::black, QColor(48, 140, 198), Qt::white),
          paletteOf(QColor(30, 30, 30), QColor(220, 220, 220), QColor(42, 130, 218), Qt::white)}) {
        QApplication::setPalette(palette);
        for (const bool comment : {false, true}) {
            store->setText((comment ? "// " : "   ") + blocks + "\n");
            store->setMarks({{1, store->length() - 1}});
            caret(store->length() + 1);
            for (int i = 0; i < 3; ++i) QApplication::processEvents();
            // A comment has 4.5 on the plain ground.
            EXPECT_GE(contrastOf(area->textWidget()->grab(QRect(40, 5, 230, 5)).toImage()),
                      comment ? 3.7 : 4.5);
        }
    }
    QApplication::setPalette(before);
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

// ---- what is marked ----

TEST_F(EditTest, AMarkedCommentReadsWellInEveryPalette) {
    const QPalette before = QApplication::palette();
    const QPalette palettes[] = {
        paletteOf(Qt::white, Qt::black, QColor(48, 140, 198), Qt::white),
        paletteOf(QColor(30, 30, 30), QColor(220, 220, 220), QColor(42, 130, 218), Qt::white),
        paletteOf(QColor(30, 30, 30), QColor(220, 220, 220), QColor(42, 130, 218), Qt::black),
        paletteOf(QColor(35, 38, 41), QColor(252, 252, 252), QColor(61, 174, 233), QColor(252, 252, 252)),
    };
    area->setFlags(HILITE);
    area->setTokens("// ##EOL 0x008000 ITALIC\n");
    std::string blocks;
    for (int i = 0; i < 30; ++i) blocks += "\u2588 ";
    for (const QPalette& palette : palettes) {
        QApplication::setPalette(palette);
        store->setText("// " + blocks + "\n");
        store->select(1, 10000);
        for (int i = 0; i < 3; ++i) QApplication::processEvents();
        const QRect line(40, 3, 250, 8);  // inside the text's first line
        EXPECT_GE(contrastOf(area->textWidget()->grab(line).toImage()), 4.5);
    }
    QApplication::setPalette(before);
}

TEST_F(EditTest, TextHasAFixedPitchWhateverFontTheDesktopOrTheSettingsName) {
    const QFont before = QApplication::font();
    for (const char* name : {"", "No Such Font Anywhere", "Sans"}) {
        QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 11));
        Font font;
        font.name = std::string(name) == "Sans" ? "" : name;
        font.size = 11;
        area->setFont(font);
        const auto width = [this](const char* text) {
            return ask(2276, 32, reinterpret_cast<long>(text));  // of a text in the default style
        };
        EXPECT_GT(width("iiiiiiii"), 0);
        EXPECT_EQ(width("iiiiiiii"), width("WWWWWWWW")) << name;
    }
    QApplication::setFont(before);
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

TEST_F(EditTest, ColoursWordsStringsAndComments) {
    area->setFlags(HILITE);
    area->setTokens("begin - 0xFF0000 BOLD\nEnd - 0xFF0000 BOLD\n\"' - 0x0000FF\n// ##EOL 0x008000 "
                    "ITALIC\nrem ##EOL 0x008000\n");
    store->setText("BEGIN x \"end\" 'it' // end\nend beginx rem_1 rem x\n\"open\nend");
    const int plain = styleAt(7), word = styleAt(1), string = styleAt(9), comment = styleAt(20);
    EXPECT_EQ(plain, 0);
    EXPECT_NE(word, plain);
    EXPECT_NE(string, word);
    EXPECT_NE(comment, string);
    EXPECT_EQ(styleAt(10), string) << "a word in a string";
    EXPECT_EQ(styleAt(15), string);
    EXPECT_EQ(styleAt(23), comment) << "a word in a comment";
    EXPECT_EQ(styleAt(27), word);
    EXPECT_EQ(styleAt(31), plain) << "part of a longer word";
    EXPECT_EQ(styleAt(38), plain) << "a starter that is part of a word";
    EXPECT_EQ(styleAt(44), styleAt(48));
    EXPECT_NE(styleAt(44), plain);
    EXPECT_EQ(styleAt(51), string);
    EXPECT_EQ(styleAt(56), word) << "a string ends with its line";
}

TEST_F(EditTest, ColoursNothingWithoutTheFlagOrWithoutRules) {
    area->setTokens("end - 0xFF0000\n");
    store->setText("end");
    EXPECT_EQ(styleAt(1), 0);
    area->setFlags(HILITE);
    EXPECT_NE(styleAt(1), 0);
    area->setTokens("");
    EXPECT_EQ(styleAt(1), 0);
}

TEST_F(EditTest, RulesThatAreNoneArePassedOver) {
    area->setFlags(HILITE);
    area->setTokens("\n - 0xFF\nx -\n##EOL\n ##EOL 0xFF\nnonsense\nend - zzz\nok - 0x0000FF\n");
    store->setText("x nonsense ok");
    EXPECT_EQ(styleAt(1), 0);
    EXPECT_EQ(styleAt(3), 0);
    EXPECT_NE(styleAt(12), 0);
}

TEST_F(EditTest, TypingRecoloursTheLine) {
    area->setFlags(HILITE);
    area->setTokens("end - 0x0000FF\n// ##EOL 0x008000\n");
    store->setText("end\nend\n");
    const int word = styleAt(1);
    caret(1);
    type(QStringLiteral("//"));
    EXPECT_NE(styleAt(3), word);
    EXPECT_EQ(styleAt(7), word);
}

TEST_F(EditTest, FlagsAndRulesThatChangeLaterKeepTheTextColoured) {
    area->setFlags(HILITE);
    area->setTokens("end - 0x0000FF\n");
    store->setText("end\nend\n");
    const int word = styleAt(1), plain = styleAt(4);
    ASSERT_NE(word, plain);
    area->setFlags(HILITE | PRIVATE_MODIFY);
    EXPECT_EQ(styleAt(1), word);
    area->setFlags(0);
    EXPECT_EQ(styleAt(1), plain);
    area->setFlags(HILITE);
    EXPECT_EQ(styleAt(1), word);
    area->setTokens("other - 0x0000FF\n");
    EXPECT_EQ(styleAt(1), plain);
    area->setTokens("end - 0x0000FF\n");
    EXPECT_EQ(styleAt(1), word);
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

TEST_F(EditTest, DarkColoursBecomeReadableOnADarkPalette) {
    const QPalette before = QApplication::palette();
    QPalette dark = before;
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, QColor(230, 230, 230));
    area->setFlags(HILITE);
    area->setTokens("end - 0x800000\n");
    store->setText("end");
    const int style = styleAt(1), light = foreOf(style);
    EXPECT_EQ(light, 0x800000);
    QApplication::setPalette(dark);
    QApplication::processEvents();
    const int shown = foreOf(style);
    EXPECT_NE(shown, light);
    const QColor colour(shown & 255, shown >> 8 & 255, shown >> 16 & 255);
    EXPECT_GT(colour.lightness(), 90);
    QApplication::setPalette(before);
    QApplication::processEvents();
    EXPECT_EQ(foreOf(style), light);
}

// The sixteen colours that the options offer, 0xBBGGRR.
constexpr int standardColours[] = {0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080,
                                   0x008080, 0x808080, 0xC0C0C0, 0xFF0000, 0x00FF00, 0xFFFF00,
                                   0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};

QColor colourOf(int value) {
    return {value & 255, value >> 8 & 255, value >> 16 & 255};
}

double contrastOf(const QColor& a, const QColor& b) {
    const double x = luminance(a), y = luminance(b);
    return (std::max(x, y) + 0.05) / (std::min(x, y) + 0.05);
}

TEST_F(EditTest, TheStandardColoursReadWellOnAnyPaperAndKeepTheirHue) {
    const QPalette before = QApplication::palette();
    std::string tokens, text;
    for (int n = 0; n < 16; ++n) {
        char rule[40];
        std::snprintf(rule, sizeof rule, "word%d - 0x%06X\n", n, static_cast<unsigned>(standardColours[n]));
        tokens += rule;
        text += "word" + std::to_string(n) + "\n";
    }
    area->setFlags(HILITE);
    area->setTokens(tokens);
    store->setText(text);
    for (const QColor& paper : {QColor(Qt::white), QColor(255, 253, 240), QColor(30, 30, 30),
                                QColor(Qt::black), QColor(35, 38, 41), QColor(128, 128, 128)}) {
        const bool dark = luminance(paper) < 0.18;
        QApplication::setPalette(paletteOf(paper, dark ? Qt::white : Qt::black, Qt::blue, Qt::white));
        QApplication::processEvents();
        int position = 1, kept = 0;
        for (int n = 0; n < 16; ++n) {
            const QColor wanted = colourOf(standardColours[n]), shown = colourOf(foreOf(styleAt(position)));
            const std::string which = std::to_string(n) + " on " + paper.name().toStdString();
            EXPECT_GE(contrastOf(shown, paper), 4.5) << which;
            if (contrastOf(wanted, paper) >= 4.5) {
                EXPECT_EQ(shown.rgb(), wanted.rgb()) << which;
                ++kept;
            } else {
                EXPECT_LT(contrastOf(shown, paper), 6.5) << which;  // no further than needed
            }
            // Black and white of a colour have no hue left.
            if (wanted.hslSaturation() > 0 && shown.lightness() > 0 && shown.lightness() < 255) {
                const int apart = std::abs(shown.hslHue() - wanted.hslHue());
                EXPECT_LE(std::min(apart, 360 - apart), 2) << which;
            } else if (wanted.hslSaturation() == 0) {
                EXPECT_EQ(shown.hslSaturation(), 0) << which;
            }
            position += static_cast<int>(5 + std::to_string(n).size());
        }
        EXPECT_GT(kept, 0);
        EXPECT_LT(kept, 16);
    }
    QApplication::setPalette(before);
    QApplication::processEvents();
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

// ---- endless lines ----

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

// ---- looks ----

constexpr int AllLooks = LOOK_LINE | LOOK_BRACKETS | LOOK_FOLDS | LOOK_CHANGES;

TEST_F(EditTest, ZoomIsKeptAndToldByKeysAndWheel) {
    area->setLooks(AllLooks, 4, 3);
    EXPECT_EQ(ask(2374), 3);
    press(Qt::Key_Plus, QStringLiteral("+"), Qt::ControlModifier);
    EXPECT_EQ(zoom, 4);
    press(Qt::Key_Minus, QStringLiteral("-"), Qt::ControlModifier);
    press(Qt::Key_Minus, QStringLiteral("-"), Qt::ControlModifier);
    EXPECT_EQ(zoom, 2);
    auto* text = qobject_cast<QAbstractScrollArea*>(area->textWidget())->viewport();
    QWheelEvent wheel(QPointF(50, 50), text->mapToGlobal(QPointF(50, 50)), {}, {0, 120}, Qt::NoButton,
                      Qt::ControlModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(text, &wheel);
    EXPECT_EQ(zoom, 3);
    press(Qt::Key_0, QStringLiteral("0"), Qt::ControlModifier);
    EXPECT_EQ(zoom, 0);
    EXPECT_EQ(store->text(), "");
}

TEST_F(EditTest, BlanksTabsAndMarginsFollowTheLooks) {
    EXPECT_EQ(ask(2243, ChangeMargin), 0);
    area->setLooks(AllLooks | LOOK_BLANKS, 8, 0);
    EXPECT_EQ(ask(2121), 8);
    EXPECT_NE(ask(2020), 0);
    EXPECT_GT(ask(2243, ChangeMargin), 0);
    EXPECT_EQ(ask(2243, FoldMargin), 0) << "nothing can be folded";
    area->setBlocks("any if\nend end\n");
    EXPECT_GT(ask(2243, FoldMargin), 0);
    area->setLooks(0, 4, 0);
    EXPECT_EQ(ask(2243, ChangeMargin) + ask(2243, FoldMargin) + ask(2020), 0);
}

TEST_F(EditTest, ChangedLinesAreMarkedUntilTheTextIsWhatItWas) {
    area->setLooks(AllLooks, 4, 0);
    const auto marks = [&] {
        std::string text;
        for (int line = 0; line < ask(2154); ++line)
            text += std::to_string(ask(2046, static_cast<unsigned long>(line)) & 3);
        return text;
    };
    store->setText("a\nb\nc\nd\n");
    EXPECT_EQ(marks(), "00000");
    caret(3);
    type(QStringLiteral("x"));
    QApplication::processEvents();
    EXPECT_EQ(marks(), "01000");
    type(QStringLiteral("\n"));
    QApplication::processEvents();
    EXPECT_EQ(marks(), "011000");
    ask(2176);
    ask(2176);
    QApplication::processEvents();
    EXPECT_EQ(marks(), "00000") << "undone to what is saved";
    type(QStringLiteral("y"));
    store->setModified(false);
    EXPECT_EQ(marks(), "02000") << "saved";
    press(Qt::Key_Down);
    type(QStringLiteral("z"));
    QApplication::processEvents();
    EXPECT_EQ(marks(), "02100");
    ask(2176);
    QApplication::processEvents();
    EXPECT_EQ(marks(), "02000");
    store->setText("new\n");
    EXPECT_EQ(marks(), "00");
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

// ---- blocks ----

constexpr std::string_view Blocks =
    "any function if loop record select\nouter function\nend end\ncomment //\n";

TEST_F(EditTest, BlocksFoldAndUnfold) {
    area->setLooks(AllLooks, 4, 0);
    area->setBlocks(Blocks);
    store->setText("// one\n// two\nfunction a()\n  if x then // end if\n    y\n  end if\nend function\nz\n");
    area->foldAll(true);
    const auto visible = [&] {
        std::string text;
        for (int line = 0; line < ask(2154); ++line)
            text += ask(2228, static_cast<unsigned long>(line)) != 0 ? '1' : '0';
        return text;
    };
    EXPECT_EQ(visible(), "101000011");
    store->select(static_cast<int>(store->text().find("y")) + 1, 1);
    EXPECT_EQ(visible(), "101111111") << "what is selected shows";
    area->foldAll(true);
    area->foldAll(false);
    EXPECT_EQ(visible(), "111111111");
}

TEST_F(EditTest, FoldedBlocksSurviveEditsElsewhere) {
    area->setLooks(AllLooks, 4, 0);
    area->setBlocks(Blocks);
    store->setText("x\nfunction a()\n  b\nend function\nz\n");
    area->foldAll(true);
    caret(1);
    type(QStringLiteral("new\nline"));
    QApplication::processEvents();
    EXPECT_EQ(ask(2228, 3), 0) << "the body stays folded";
    EXPECT_NE(ask(2228, 2), 0);
    caret(static_cast<int>(store->text().find("z")) + 1);
    press(Qt::Key_Backspace);
    QApplication::processEvents();
    EXPECT_EQ(store->text(), "new\nlinex\nfunction a()\n  b\nend functionz\n");
}

TEST_F(EditTest, BlocksFollowWhatIsTyped) {
    area->setLooks(AllLooks, 4, 0);
    area->setBlocks(Blocks);
    store->setText("a\nb\nc\nend if\nd\n");
    QApplication::processEvents();
    const auto levels = [&] {
        std::string text;
        for (int line = 0; line < ask(2154); ++line) {
            const long level = ask(2223, static_cast<unsigned long>(line));
            text += std::to_string((level & 0xFFF) - 0x400);
            if ((level & 0x2000) != 0) text += '+';
        }
        return text;
    };
    EXPECT_EQ(levels(), "000000");
    caret(1);
    type(QStringLiteral("if "));
    for (int i = 0; i < 5; ++i) QApplication::processEvents();
    EXPECT_EQ(levels(), "0+11100");
    ask(2176);
    for (int i = 0; i < 5; ++i) QApplication::processEvents();
    EXPECT_EQ(levels(), "000000");
}

TEST_F(EditTest, DeepNestsAndHostileTextsAreScanned) {
    area->setLooks(AllLooks, 4, 0);
    area->setBlocks(Blocks);
    std::string deep;
    for (int i = 0; i < 255; ++i) deep += "if a then\n";
    for (int i = 0; i < 255; ++i) deep += "end if\n";
    std::string endless;
    for (int i = 0; i < 9000; ++i) endless += "if a then loop select\n";
    for (const std::string& text : {deep, endless, "\xFF if \xC3\r\rend\0if\n"s, "end end end\n"s, ""s}) {
        store->setText(text);
        area->foldAll(true);
        area->foldAll(false);
        caret(1);
        type(QStringLiteral("if"));
        QApplication::processEvents();
        EXPECT_EQ(store->text(), "if" + text);
    }
    store->setText(deep);
    area->foldAll(false);
    EXPECT_EQ(ask(2223, 255) & 0xFFF, 0x400 + 255);
    EXPECT_EQ(ask(2223, 510) & 0xFFF, 0x400);
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
