// SPDX-License-Identifier: Apache-2.0
//
// Marks of lines in the edit window's own control.
#include "platform/operations/linemarks.h"
#include "ui/edit_fixture.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QImage>
#include <QTest>

#include <string>
#include <vector>

namespace tarn::platform::qt {
namespace {

class LineMarksOnScreen : public EditAreaTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(EditAreaTest::SetUp());
        store->setText("one\ntwo\nthree\nfour\nfive\n");
        QApplication::processEvents();
    }
    void prepare() override {
        area->setFlags(NUMBERBAR);
        area->setMarkMargin(true);
    }
    void marginClicked(int line) override { clicks.push_back(line); }

    void mark(const std::vector<int>& lines, int kinds = LINEMARK_BREAKPOINT) {
        std::vector<LineMark> marks;
        for (const int line : lines) marks.push_back({line, kinds});
        store->setLineMarks(marks);
    }
    std::string lines() const {
        std::string text;
        for (const LineMark& mark : store->lineMarks()) text += std::to_string(mark.line) + " ";
        return text;
    }
    void edit(std::string_view part, std::string_view text) {
        const std::size_t at = store->text().find(part);
        ASSERT_NE(at, std::string::npos) << part;
        store->select(static_cast<int>(at) + 1, static_cast<int>(part.size()));
        store->replaceSelection(text);
    }
    QWidget* viewport() const { return qobject_cast<QAbstractScrollArea*>(area->textWidget())->viewport(); }
    QImage picture() const {
        QApplication::processEvents();
        return viewport()->grab().toImage();
    }
    void click(QPoint at) {
        QTest::mouseClick(viewport(), Qt::LeftButton, Qt::NoModifier, at);
        QApplication::processEvents();
    }

    std::vector<int> clicks;
};

TEST_F(LineMarksOnScreen, AreKeptInTheirOrderWithTheirKinds) {
    const std::vector<LineMark> marks = {{4, LINEMARK_RULE}, {2, LINEMARK_BREAKPOINT}, {2, LINEMARK_CURRENT}};
    store->setLineMarks(marks);
    EXPECT_EQ(store->lineMarks(), marks);
    mark({0, 9, 3});
    EXPECT_EQ(lines(), "0 0 3 ");
}

TEST_F(LineMarksOnScreen, MoveWithTheirLinesAsInTheModel) {
    struct Case {
        const char *part, *text, *lines;
    };
    for (const Case& c : {Case{"one\n", "zero\none\n", "3 5 "},
                          {"one\n", "", "1 3 "},
                          {"one", "1", "2 4 "},
                          {"wo\n", "wo\n\n\n", "2 6 "},
                          {"two\n", "", "0 3 "},
                          {"two\nthree\n", "", "0 2 "},
                          {"three\n", "", "2 3 "},
                          {"two\nthree\nfour\nfive\n", "", "0 0 "},
                          {"\nfour", "", "2 3 "},
                          {"e\nt", "", "1 3 "},
                          {"five\n", "", "2 4 "},
                          {"two\n", "2\n", "0 4 "}}) {
        store->setText("one\ntwo\nthree\nfour\nfive\n");
        mark({2, 4});
        edit(c.part, c.text);
        EXPECT_EQ(lines(), c.lines) << c.part << " -> " << c.text;
    }
}

TEST_F(LineMarksOnScreen, MoveWithWhatTheUserTypes) {
    mark({2, 4});
    store->select(1, 0);
    QTest::keyClick(area->textWidget(), Qt::Key_Return);
    QTest::keyClick(area->textWidget(), Qt::Key_Return);
    EXPECT_EQ(lines(), "4 6 ");
    store->undo();
    store->undo();
    EXPECT_EQ(lines(), "2 4 ");
}

TEST_F(LineMarksOnScreen, GoWithTheTextAndWithTheMargin) {
    mark({2});
    store->setText("one\ntwo\n");
    EXPECT_EQ(lines(), "");
    mark({2});
    area->setMarkMargin(false);
    EXPECT_EQ(lines(), "");
    mark({2});
    EXPECT_EQ(lines(), "");
}

TEST_F(LineMarksOnScreen, AreNotShownWhereLinesStandInRows) {
    mark({1});
    store->setText("one\n" + std::string(50000, 'x') + "\nthree\n");
    mark({3});
    EXPECT_EQ(lines(), "");
    store->setText("one\ntwo\n");
    mark({2});
    EXPECT_EQ(lines(), "2 ");
}

TEST_F(LineMarksOnScreen, AreSeenInTheMargin) {
    const QImage plain = picture();
    mark({2});
    const QImage marked = picture();
    EXPECT_NE(plain, marked);
    mark({2}, LINEMARK_RULE);
    EXPECT_NE(picture(), marked) << "one with a rule looks different";
    mark({});
    EXPECT_EQ(picture(), plain);
}

TEST_F(LineMarksOnScreen, TheCurrentLineIsSeenAcrossItsText) {
    const QImage plain = picture();
    mark({3}, LINEMARK_CURRENT);
    const QImage marked = picture();
    const int right = plain.width() - 30;
    int rows = 0;
    for (int y = 0; y < plain.height(); ++y) rows += plain.pixel(right, y) != marked.pixel(right, y) ? 1 : 0;
    EXPECT_GT(rows, 8);
    EXPECT_LT(rows, 60);
}

TEST_F(LineMarksOnScreen, AClickBesideALineTellsIt) {
    mark({2});
    const QImage plain = picture();
    // The middle of the mark is where its line is.
    mark({});
    const QImage empty = picture();
    int y = 0;
    while (y < plain.height() && plain.pixel(8, y) == empty.pixel(8, y)) ++y;
    ASSERT_LT(y, plain.height());
    click({8, y + 2});
    EXPECT_EQ(clicks, std::vector<int>{2});
    const auto selection = store->selection();
    EXPECT_EQ(selection.length, 0) << "the caret stays";
    area->setMarkMargin(false);
    click({8, y + 2});
    EXPECT_EQ(clicks.size(), 1U);
}

}  // namespace
}  // namespace tarn::platform::qt
