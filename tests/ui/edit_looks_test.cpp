// SPDX-License-Identifier: Apache-2.0
//
// How the edit window looks: colours on any paper, marks, margins, blocks.
#include "ui/edit_fixture.h"

#include "platform/qt/controls/editarea.h"
#include "support/places.h"

#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QApplication>
#include <QImage>
#include <QPalette>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace tarn::platform::qt {

namespace {

using namespace std::string_literals;

constexpr int NumberMargin = 1, ChangeMargin = 2, FoldMargin = 3;  // 0 is for marks

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

// ---- looks ----

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

}  // namespace

}  // namespace tarn::platform::qt
