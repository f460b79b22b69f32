// SPDX-License-Identifier: Apache-2.0
//
// Borders, scroll bars and sides of controls as their resource file has them.
#include "ui/window_fixture.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

#include <algorithm>
#include <string>

namespace tarn::platform {
namespace {

using namespace std::string_literals;

const Object Looks("Looks");

class LooksTest : public WindowTest {
protected:
    // Shows a window with one control `one` of 80 by 40 units.
    template <class Widget = QWidget>
    Widget* show(const std::string& type, const std::string& properties) {
        DestroyAllWindows();
        DoEvents();
        const std::string text = "Looks DIALOG\n  POSITION=0 0 100 60\n  " + type +
                                 " one 101\n    POSITION=10 10 80 40\n    " + properties + "\nEND\n";
        EXPECT_EQ(openText(Looks, text), "");
        return shownWidget<Widget>("Looks", "one");
    }
    static QImage seen(QWidget& widget) {
        return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
    }
};

std::string rowsThatNeedBothBars() {
    std::string rows = "ROWS=\"" + std::string(200, 'w');
    for (int i = 0; i < 60; ++i) rows += "\\nrow";
    return rows + "\"";
}

std::string linesThatNeedBothBars() {
    std::string lines = "MULTILINE=1\n    TEXT=\"" + std::string(200, 'w');
    for (int i = 0; i < 60; ++i) lines += "\\nline";
    return lines + "\"";
}

// The mark of a mnemonic is seen only where it leads to a control.
TEST_F(LooksTest, ALabelShowsItsCaptionWithoutMarks) {
    const struct {
        std::string caption, text, spoken;
    } cases[] = {{"&Name", "Name", ""}, {"Tom && Ann", "Tom & Ann", "Tom & Ann"}, {"R&D", "RD", ""},
                 {"a &", "a &", "a &"}, {"Tom & Ann", "Tom & Ann", "Tom & Ann"},  {"Plain", "Plain", ""},
                 {"&&&x", "&x", "&x"}};
    for (const auto& c : cases) {
        const auto* const label = show<QLabel>("LABEL", "CAPTION=\"" + c.caption + "\"");
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->text().toStdString(), c.text) << c.caption;
        EXPECT_EQ(label->accessibleName().toStdString(), c.spoken) << c.caption;
    }
    const auto* const label =
        show<QLabel>("LABEL", "CAPTION=\"&A && b\"\n  Edit two 102\n    POSITION=10 50 20 10");
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->text().toStdString(), "&A && b") << "the toolkit underlines the A";
    EXPECT_NE(label->buddy(), nullptr);
    SetCaption(Object("Looks", 101), "&B");
    EXPECT_EQ(label->text().toStdString(), "&B");
}

// The toolkit takes every "&" of a caption for a mark: one that marks nothing stands there twice.
TEST_F(LooksTest, AnAmpersandThatMarksNothingIsShown) {
    for (const auto& [caption, given] : {std::pair{"a&", "a&&"},
                                         {"Tom & Ann", "Tom && Ann"},
                                         {"Tom && Ann", "Tom && Ann"},
                                         {"&Yes", "&Yes"},
                                         {"&&&&x&", "&&&&x&&"},
                                         {"&", "&&"},
                                         {"R&D", "R&D"}}) {
        for (const char* type : {"PUSHBUTTON", "CHECKBOX", "RADIOBUTTON"}) {
            const auto* const button =
                show<QAbstractButton>(type, "CAPTION=\"" + std::string(caption) + "\"");
            ASSERT_NE(button, nullptr) << type;
            EXPECT_EQ(button->text().toStdString(), given) << type;
        }
        const auto* const box = show<QGroupBox>("GROUPBOX", "CAPTION=\"" + std::string(caption) + "\"");
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->title().toStdString(), given);
        const auto* const label = show<QLabel>("LABEL", "CAPTION=\"" + std::string(caption) +
                                                            "\"\n  Edit two 102\n    POSITION=10 50 20 10");
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->text().toStdString(), given);
    }
}

TEST_F(LooksTest, AControlHasTheScrollBarsThatItNames) {
    const std::string rows = rowsThatNeedBothBars(), lines = linesThatNeedBothBars();
    struct Case {
        std::string type, properties;
        int usual;
    };
    for (const Case& one : {Case{"Listbox", rows, 2},
                            {"Iconlist", rows, 2},
                            {"Iconlist", rows + "\n    USETABSTOPS=1", 2},
                            {"Edit", lines, 0}}) {
        for (int bars = -1; bars <= 3; ++bars) {
            const std::string named = bars < 0 ? "" : "\n    SCROLLBARS=" + std::to_string(bars);
            auto* area = show<QAbstractScrollArea>(one.type, one.properties + named);
            ASSERT_NE(area, nullptr) << one.type;
            const int wanted = bars < 0 ? one.usual : bars;
            EXPECT_EQ(area->horizontalScrollBar()->isVisible(), (wanted & 1) != 0) << one.type << " " << bars;
            EXPECT_EQ(area->verticalScrollBar()->isVisible(), (wanted & 2) != 0) << one.type << " " << bars;
        }
    }
}

TEST_F(LooksTest, ABarThatIsNotNeededIsNotShown) {
    for (const char* type : {"Listbox", "Iconlist", "Edit"}) {
        auto* area = show<QAbstractScrollArea>(type, "SCROLLBARS=3\n    "s +
                                                         (type == "Edit"s ? "MULTILINE=1" : "ROWS=\"a\""));
        EXPECT_FALSE(area->horizontalScrollBar()->isVisible()) << type;
        EXPECT_FALSE(area->verticalScrollBar()->isVisible()) << type;
    }
}

TEST_F(LooksTest, LinesBreakUnlessAHorizontalBarLetsThemRunOn) {
    const std::string lines = linesThatNeedBothBars();
    EXPECT_EQ(show<QPlainTextEdit>("Edit", lines)->lineWrapMode(), QPlainTextEdit::WidgetWidth);
    EXPECT_EQ(show<QPlainTextEdit>("Edit", lines + "\n    SCROLLBARS=2")->lineWrapMode(),
              QPlainTextEdit::WidgetWidth);
    EXPECT_EQ(show<QPlainTextEdit>("Edit", lines + "\n    SCROLLBARS=1")->lineWrapMode(),
              QPlainTextEdit::NoWrap);
}

TEST_F(LooksTest, ListsAndLinesHaveABorderUnlessTheyRefuseIt) {
    for (const std::string type : {"Listbox", "Iconlist", "Iconlist\t", "Edit"}) {
        const std::string kind = type == "Edit" ? "MULTILINE=1" : type.back() == '\t' ? "USETABSTOPS=1" : "";
        const std::string word = type.substr(0, type.find('\t'));
        EXPECT_GT(show<QAbstractScrollArea>(word, kind)->frameWidth(), 0) << type;
        EXPECT_GT(show<QAbstractScrollArea>(word, kind + "\n    BORDERSTYLE=1")->frameWidth(), 0) << type;
        EXPECT_EQ(show<QAbstractScrollArea>(word, kind + "\n    BORDERSTYLE=0")->frameWidth(), 0) << type;
    }
}

// Where the ink of the first line begins and ends, in the text area.
std::pair<int, int> inkOf(const QPlainTextEdit& lines) {
    const QImage image = lines.viewport()->grab().toImage().convertToFormat(QImage::Format_Grayscale8);
    int first = image.width(), last = -1;
    for (int y = 2; y < lines.fontMetrics().height(); ++y)
        for (int x = 8; x < image.width() - 1; ++x)
            if (qGray(image.pixel(x, y)) < 128) first = std::min(first, x), last = std::max(last, x);
    return {first, image.width() - 1 - last};
}

TEST_F(LooksTest, LinesStandOnTheSideThatTheyName) {
    for (const std::string bars : {"0", "2", "3"}) {
        const std::string text =
            "READONLY=1\n    MULTILINE=1\n    TEXT=\"HHHH\"\n    SCROLLBARS=" + bars + "\n    ALIGNMENT=";
        const auto left = inkOf(*show<QPlainTextEdit>("Edit", text + "0"));
        const auto right = inkOf(*show<QPlainTextEdit>("Edit", text + "1"));
        const auto centre = inkOf(*show<QPlainTextEdit>("Edit", text + "2"));
        EXPECT_LT(left.first, 20) << bars;
        EXPECT_LT(right.second, 20) << bars;
        EXPECT_GT(right.first, 40) << bars;
        EXPECT_NEAR(centre.first, centre.second, 6) << bars;
        EXPECT_GT(centre.first, 30) << bars;
    }
}

TEST_F(LooksTest, TheSideHoldsForATextThatIsSetLater) {
    auto* lines = show<QPlainTextEdit>("Edit", "READONLY=1\n    MULTILINE=1\n    ALIGNMENT=1");
    SetText(Object("Looks", 101), "HHHH\nHH");
    DoEvents();
    EXPECT_LT(inkOf(*lines).second, 20);
}

TEST_F(LooksTest, AProgressBarHasTheBorderThatItNames) {
    auto* plain = show<QProgressBar>("Progressbar", "VALUE=0");
    const QImage none = seen(*plain);
    const QRgb mid = plain->palette().color(QPalette::Mid).rgb();
    EXPECT_NE(none.pixel(0, 0), mid);
    const QImage line = seen(*show<QProgressBar>("Progressbar", "BORDERSTYLE=1"));
    for (const QPoint at : {line.rect().topLeft(), line.rect().topRight(), line.rect().bottomLeft(),
                            line.rect().bottomRight(), QPoint(line.width() / 2, 0)})
        EXPECT_EQ(line.pixel(at), mid) << at.x() << " " << at.y();
    const QImage sunken = seen(*show<QProgressBar>("Progressbar", "BORDERSTYLE=2"));
    const QPoint middle(sunken.width() / 2, 0), below(sunken.width() / 2, sunken.height() - 1);
    EXPECT_LT(qGray(sunken.pixel(middle)), qGray(sunken.pixel(below))) << "the light comes from above";
}

TEST_F(LooksTest, AShapeHasTheBorderThatItNames) {
    constexpr QRgb fill = qRgb(0, 0, 255), outline = qRgb(255, 0, 0);
    const std::string colours = "FORECOLOUR=0x0000FF\n    BACKCOLOUR=0xFF0000\n    ";
    const auto image = [&](const std::string& rest) { return seen(*show("Shape", colours + rest)); };
    struct Case {
        const char* shape;
        bool corners;  // it reaches into its corners
    };
    for (const Case one : {Case{"SHAPE=0", true}, {"SHAPE=1", false}, {"SHAPE=2", false}}) {
        const QImage none = image(one.shape), line = image(one.shape + "\n    BORDERSTYLE=1"s),
                     sunken = image(one.shape + "\n    BORDERSTYLE=2"s);
        const QPoint centre = none.rect().center(), top(centre.x(), 0), bottom(centre.x(), none.height() - 1);
        for (const QImage* each : {&none, &line, &sunken}) EXPECT_EQ(each->pixel(centre), fill) << one.shape;
        EXPECT_EQ(none.pixel(top), fill) << one.shape;
        EXPECT_NE(line.pixel(top), fill) << one.shape;
        EXPECT_GT(qRed(line.pixel(top)), 100) << one.shape;
        EXPECT_EQ(line.pixel(0, 0) == outline, one.corners) << one.shape;
        EXPECT_NE(sunken.pixel(top), outline) << one.shape;
        EXPECT_LT(qGray(sunken.pixel(top)), qGray(sunken.pixel(bottom)))
            << one.shape << ": dark above, light below";
    }
}

TEST_F(LooksTest, ASunkenLineIsDarkWithLightBesideIt) {
    const QImage across = seen(*show("Shape", "SHAPE=3\n    BORDERSTYLE=2"));
    const int y = (across.height() - 1) / 2;
    EXPECT_LT(qGray(across.pixel(10, y)), qGray(across.pixel(10, y + 1)));
    EXPECT_NE(across.pixel(10, y), across.pixel(10, y - 2));
    const QImage down = seen(*show("Shape", "SHAPE=4\n    BORDERSTYLE=2"));
    const int x = (down.width() - 1) / 2;
    EXPECT_LT(qGray(down.pixel(x, 10)), qGray(down.pixel(x + 1, 10)));
}

}  // namespace
}  // namespace tarn::platform
