// SPDX-License-Identifier: Apache-2.0
//
// Icon lists with columns as grids of real widgets.
#include "platform/model/model.h"
#include "ui/window_fixture.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QImage>
#include <QPalette>
#include <QTest>
#include <QTreeView>

#include <string>

namespace tarn::platform {

namespace {

constexpr char Resources[] = R"(
Form DIALOG
  CAPTION="Form"
  POSITION=0 0 220 160
  LABEL label1 300
    POSITION=4 4 60 10
    CAPTION="&Rows:"
  Iconlist lstrows 301
    POSITION=4 20 200 80
    USETABSTOPS=1
END
)";

const Object Form("Form"), List("Form", 301);

class GridTest : public WindowTest {
protected:
    void SetUp() override {
        ASSERT_EQ(loadText(Form, Resources), "");
        Show(Form, false);  // without its focus, which is to come when there are rows
        grid = shownWidget<QTreeView>("Form", "lstrows");
        ASSERT_NE(grid, nullptr);
    }
    QString cell(int row, int column) const {
        return grid->model()->data(grid->model()->index(row, column)).toString();
    }
    QString title(int column) const {
        return grid->model()->headerData(column, Qt::Horizontal, Qt::AccessibleTextRole).toString();
    }
    bool atRight(int column) const {
        const QVariant side = grid->model()->data(grid->model()->index(0, column), Qt::TextAlignmentRole);
        return (side.toInt() & Qt::AlignRight) != 0;
    }
    QTreeView* grid = nullptr;
};

TEST_F(GridTest, TheCaptionIsTheTitleLine) {
    AddItem(List, "Ann\t31");
    DoEvents();
    EXPECT_TRUE(grid->isHeaderHidden());
    SetCaption(List, "\tname  \tage\tcity\t");
    DoEvents();
    EXPECT_FALSE(grid->isHeaderHidden());
    ASSERT_EQ(grid->model()->columnCount(), 3);
    EXPECT_EQ(title(0), "name");
    EXPECT_EQ(title(1), "age");
    EXPECT_EQ(title(2), "city");
    EXPECT_EQ(grid->accessibleName(), "Rows") << "the titles do not name the list";
}

TEST_F(GridTest, RowsAreCutIntoCells) {
    AddItem(List, "Ann\t31\tOslo");
    AddItem(List, "Bob");
    DoEvents();
    ASSERT_EQ(grid->model()->columnCount(), 3);
    EXPECT_EQ(cell(0, 2), "Oslo");
    EXPECT_EQ(cell(1, 0), "Bob");
    EXPECT_EQ(cell(1, 2), "");
}

TEST_F(GridTest, NumbersStandAtTheRight) {
    SetCaption(List, "name\tage\tsize\tnone");
    AddItem(List, "Ann\t31\t1.5\t");
    AddItem(List, "7\t-4\t1e3\t");
    DoEvents();
    EXPECT_FALSE(atRight(0));
    EXPECT_TRUE(atRight(1));
    EXPECT_TRUE(atRight(2));
    EXPECT_FALSE(atRight(3)) << "a column without a cell holds no numbers";
}

TEST_F(GridTest, TheFirstColumnHasRoomForPictures) {
    SetCaption(List, "a\tb");
    AddItem(List, "some long name\tx");
    DoEvents();
    const int plain = grid->columnWidth(0);
    Clear(List);
    AddItem(List, "some long name\tx", "picture");
    DoEvents();
    EXPECT_GE(grid->columnWidth(0), plain + grid->iconSize().width());
}

TEST_F(GridTest, ColumnsAreAsWideAsTheyNeedUntilTheUserDecides) {
    SetCaption(List, "a\tb\tc");
    AddItem(List, "x\ty\tz");
    DoEvents();
    const int narrow = grid->columnWidth(0);
    AddItem(List, "a longer text\ty\tz");
    DoEvents();
    EXPECT_GT(grid->columnWidth(0), narrow);
    AddItem(List, std::string(500, 'w') + "\ty\tz");
    DoEvents();
    EXPECT_LT(grid->columnWidth(0), 60 * grid->fontMetrics().averageCharWidth());
    grid->header()->resizeSection(0, 33);
    AddItem(List, "more\ty\tz");
    DoEvents();
    EXPECT_EQ(grid->columnWidth(0), 33);
    SetCaption(List, "d\te\tf");
    DoEvents();
    EXPECT_NE(grid->columnWidth(0), 33) << "other columns are measured anew";
}

TEST_F(GridTest, EverySecondRowIsDarkOnADarkDesktopThatSaysNothingOfIt) {
    QPalette dark = grid->palette();
    dark.setColor(QPalette::Base, QColor(35, 38, 41));
    dark.setColor(QPalette::Text, QColor(240, 240, 240));
    dark.setColor(QPalette::AlternateBase, Qt::white);
    grid->setPalette(dark);
    SetCaption(List, "a\tb");
    for (int i = 0; i < 4; ++i) AddItem(List, "x\ty");
    DoEvents();
    const QImage picture = grid->viewport()->grab().toImage();
    const auto paper = [&](int row) {
        const QRect cell = grid->visualRect(grid->model()->index(row, 1));
        return picture.pixelColor(cell.right() - 2, cell.bottom() - 1).lightness();
    };
    EXPECT_LT(paper(1), 64);
    EXPECT_LT(paper(3), 64);
    EXPECT_NE(paper(2), paper(3));
}

TEST_F(GridTest, AHundredThousandRowsAreShownAtOnce) {
    SetCaption(List, "name\tage\tcity");
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 100000; ++i) AddItem(List, "Person\t" + std::to_string(i) + "\tOslo");
    DoEvents();
    EXPECT_LT(clock.elapsed(), 3000);
    RecordProperty("milliseconds", static_cast<int>(clock.elapsed()));
    EXPECT_EQ(grid->model()->rowCount(), 100000);
    EXPECT_EQ(cell(99999, 1), "99999");
    clock.restart();
    grid->setFocus();
    QTest::keyClick(grid, Qt::Key_End);
    EXPECT_LT(clock.elapsed(), 500);
    EXPECT_EQ(GetListIndex(List).value, 100000);
}

}  // namespace

}  // namespace tarn::platform
