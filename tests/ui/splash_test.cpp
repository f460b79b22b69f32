// SPDX-License-Identifier: Apache-2.0
//
// The splash window as the environment has it in its resources: what is drawn on it, what ends its wait, and its
// buttons.
#include "library/dialogs/commdlgs.h"
#include "os/files.h"
#include "support/bitmap.h"
#include "support/places.h"
#include "ui/window_fixture.h"

#include <QAccessible>
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>

namespace tarn {
namespace {

constexpr QRgb text = qRgb(240, 170, 50), shadow = qRgb(60, 50, 10), sky = qRgb(0x20, 0x40, 0x60);

class SplashWindow : public platform::WindowTest {
protected:
    void SetUp() override {
        const std::string rc = std::string(SOURCE_DIR) + "/src/ide/shell/startup.rc";
        ASSERT_EQ(platform::CompileResources({rc}, folder / "a.rcx"), "");
        SetApplicationResources(folder / "a.rcx");
        ClearError();
    }
    void TearDown() override {
        WindowTest::TearDown();
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    static QWidget* top() {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == "SplashDlg") return widget;
        return nullptr;
    }
    [[nodiscard]] std::string picture(unsigned colour) const {
        const std::string file = folder / "logo.bmp";
        EXPECT_TRUE(os::saveFile(file, bitmap(400, 272, colour), os::Durability::Unsynced).ok());
        return file;
    }
    static QImage seen() {
        return top()->grab().toImage().scaled(top()->size()).convertToFormat(QImage::Format_RGB32);
    }
    // How many pixels of that colour stand in the lines from `from` up to `to`.
    static int count(const QImage& image, QRgb colour, int from, int to) {
        int found = 0;
        for (int y = from; y < to; y++)
            for (int x = 0; x < image.width(); x++) found += image.pixel(x, y) == colour;
        return found;
    }
    // How many pixels a line has without its shadow.
    static int alone(const std::string& line) {
        Clear(SplashDlg);
        StartGraph(SplashDlg);
        SetFontName(SplashDlg, "Arial");
        SetFontBold(SplashDlg, true);
        SetFontItalic(SplashDlg, true);
        SetFontSize(SplashDlg, GETBIGGESTFONTSIZE(SplashDlg, line, 328, 50));
        SPLASHDLG_DRAWTEXT(line, 36, 36, 0x32AAF0);
        EndGraph(SplashDlg);
        return count(seen(), text, 0, 272);
    }
    static void later(std::function<void()> act) { QTimer::singleShot(50, qApp, std::move(act)); }
};

TEST_F(SplashWindow, ShowsThePictureInItsOwnSizeWithMagentaTransparent) {
    SPLASHDLG_LOAD("");
    SPLASHDLG_DRAWBMP(picture(0x204060));
    EXPECT_EQ(top()->size(), QSize(400, 272));
    EXPECT_EQ(count(seen(), sky, 0, 272), 400 * 272);
    SPLASHDLG_LOAD("");
    SPLASHDLG_DRAWBMP(picture(0xFF00FF));
    EXPECT_EQ(count(seen(), qRgb(255, 0, 255), 0, 272), 0);
    EXPECT_EQ(count(seen(), sky, 0, 272), 0) << "nothing of the picture before";
}

TEST_F(SplashWindow, HasAPlainGroundWithoutAPicture) {
    SPLASHDLG_LOAD("");
    SPLASHDLG_DRAWBMP(folder / "none.bmp");
    const QImage image = seen();
    EXPECT_EQ(count(image, qRgb(29, 53, 87), 0, image.height()), image.width() * image.height());
}

TEST_F(SplashWindow, HasThreeLinesInTheirBandsEachAboveItsShadow) {
    SPLASHDLG_LOAD("");
    SPLASHDLG_DRAWBMP(picture(0x204060));
    SPLASHDLG_SPLASHTEXT("HHH", "Much longer than its band is high HHHHH", "HHH");
    const QImage image = seen();
    constexpr int margin = 36, band = 50, depth = 4;  // (272 - 2 * 36) / 4
    for (int line = 0; line < 3; line++) {
        const int from = margin + line * band;
        EXPECT_GT(count(image, text, from, from + band), 100) << line;
        EXPECT_GT(count(image, shadow, from, from + band + depth), 20) << line;
    }
    EXPECT_EQ(count(image, text, margin, margin + band), alone("HHH")) << "no shadow lies on the line";
    EXPECT_EQ(count(image, sky, 0, margin), margin * 400) << "nothing above the first band";
    EXPECT_EQ(count(image, text, margin + 3 * band, 272), 0) << "nor below the third";
    for (int y = 0; y < 272; y++)
        for (int x = 400 - margin + depth; x < 400; x++) ASSERT_EQ(image.pixel(x, y), sky) << x << " " << y;
}

TEST_F(SplashWindow, IsWithoutAFrameAndActive) {
    later([] {
        EXPECT_TRUE(top()->isVisible());
        EXPECT_TRUE(top()->windowFlags().testFlag(Qt::FramelessWindowHint));
        EXPECT_EQ(top()->windowTitle(), "Tarnwick");
        EXPECT_TRUE(QTest::qWaitForWindowActive(top(), 2000));  // it becomes so in the window system's time
        QTest::keyClick(top(), Qt::Key_Space);
    });
    SPLASHDLG_SHOWWITHBUTTONS("");
    for (const QPushButton* button : top()->findChildren<QPushButton*>()) EXPECT_FALSE(button->isVisible());
    EXPECT_FALSE(top()->findChild<QLabel*>("lblselectedbutton")->isVisible());
}

TEST_F(SplashWindow, AKeyOrAClickEndsTheWait) {
    const std::pair<const char*, std::function<void()>> ends[] = {
        {"space", [] { QTest::keyClick(top(), Qt::Key_Space); }},
        {"Esc", [] { QTest::keyClick(top(), Qt::Key_Escape); }},
        {"click", [] { QTest::mouseClick(top(), Qt::LeftButton); }},
    };
    for (const auto& [name, end] : ends) {
        QElapsedTimer clock;
        clock.start();
        later(end);
        EXPECT_EQ(SPLASHDLG_SHOWWITHBUTTONS(""), "");
        EXPECT_LT(clock.elapsed(), 2500) << name;
        EXPECT_TRUE(top()->isVisible()) << name << ": it stays until it is unloaded";
        SPLASHDLG_UNLOAD();
        DoEvents();
        EXPECT_EQ(top(), nullptr);
    }
}

TEST_F(SplashWindow, AClickOnAButtonIsTheAnswer) {
    later([] {
        auto* off = top()->findChild<QPushButton*>("pushbutton1");
        EXPECT_FALSE(off->isEnabled());
        EXPECT_EQ(off->text(), "&Buy");
        EXPECT_EQ(QAccessible::queryAccessibleInterface(off)->text(QAccessible::Name), "Buy");
        EXPECT_FALSE(top()->findChild<QPushButton*>("pushbutton3")->isVisible());
        QTest::mouseClick(off, Qt::LeftButton);
        QTest::mouseClick(top()->findChild<QPushButton*>("pushbutton2"), Qt::LeftButton);
    });
    EXPECT_EQ(SPLASHDLG_SHOWWITHBUTTONS("*&Buy\n&Try"), "&Try");
    EXPECT_FALSE(top()->isVisible());
}

}  // namespace
}  // namespace tarn
