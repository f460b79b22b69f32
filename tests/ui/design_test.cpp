// SPDX-License-Identifier: GPL-3.0-or-later
//
// Designs on real widgets: what the design of a dialog shows, held against its running window, control by control.
#include "ide/designer/drawing/drawing.h"
#include "kernel/run/errors.h"
#include "kernel/windows/drawscale.h"
#include "library/designer/dlgunits.h"
#include "library/designer/proputil.h"
#include "os/files.h"
#include "platform/model/model.h"
#include "platform/windowing.h"
#include "support/tempfolder.h"
#include "ui/shownwindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QMouseEvent>
#include <QPalette>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace tarn {
namespace {

constexpr char Resources[] = R"(
disc BITMAP "disc.svg"
All DIALOG
  CAPTION="All"
  POSITION=0 0 300 240
  Label label 101
    POSITION=8 8 60 10
    CAPTION="A &label:"
  Label lined 102
    POSITION=80 8 60 10
    CAPTION="Lined"
    BORDERSTYLE=1
    ALIGNMENT=2
  Label named 133
    POSITION=220 64 30 10
    CAPTION="&Name"
  Edit behind 134
    POSITION=252 64 30 12
  Label alone 135
    POSITION=150 212 60 10
    CAPTION="R && &D"
  Label tall 103
    POSITION=150 4 60 30
    CAPTION="A text that is too long for one line of the label"
    BORDERSTYLE=2
  Edit edit 104
    POSITION=8 24 60 12
    TEXT="some text"
  Edit readonly 105
    POSITION=80 24 60 12
    TEXT="not to change"
    READONLY=1
    ALIGNMENT=1
  Edit flat 106
    POSITION=220 8 60 12
    TEXT="flat"
    BORDERSTYLE=0
  Edit lines 107
    POSITION=8 44 60 40
    TEXT="one\ntwo\nthree"
    MULTILINE=1
  Edit secret 108
    POSITION=220 24 60 12
    TEXT="secret"
    PASSWORDCHAR=42
  Edit off 109
    POSITION=220 44 60 12
    TEXT="off"
    ENABLED=0
  Combobox dropped 110
    POSITION=80 44 60 60
    TEXT="dropped"
  Combobox list 111
    POSITION=80 64 60 60
    COMBOSTYLE=2
  Combobox simple 112
    POSITION=150 44 60 40
    COMBOSTYLE=0
    TEXT="simple"
    ROWS="a\nb\nc"
  Listbox rows 113
    POSITION=8 92 60 40
    ROWS="first\nsecond\nthird"
    SCROLLBARS=0
  Listbox many 114
    POSITION=80 92 60 40
    ROWS="1\n2\n3\n4\n5\n6\n7\n8\n9\n10"
    SCROLLBARS=2
  Iconlist icons 115
    POSITION=150 92 60 40
    ROWS="x\ny"
    SCROLLBARS=0
  Iconlist grid 116
    POSITION=220 92 70 40
    ROWS="x	y\nz	w"
    USETABSTOPS=1
    SCROLLBARS=0
  Pushbutton push 117
    POSITION=8 140 55 15
    CAPTION="&Push"
  Pushbutton default 118
    POSITION=80 140 55 15
    CAPTION="Default"
    DEFAULT=1
  Pushbutton grey 119
    POSITION=150 140 55 15
    CAPTION="Grey"
    ENABLED=0
  Bitmapbutton bitmap 120
    POSITION=220 140 16 16
    PICTURE="disc"
  Checkbox check 121
    POSITION=8 162 60 12
    CAPTION="Checked"
    VALUE=1
  Checkbox right 122
    POSITION=80 162 60 12
    CAPTION="Mark right"
    ALIGNMENT=0
  Radiobutton radio 123
    POSITION=150 162 60 12
    CAPTION="Radio"
    VALUE=1
    ARRAY=group
  Groupbox box 124
    POSITION=215 160 75 50
    CAPTION="Group"
  Scrollbar across 125
    POSITION=8 182 60 12
    VALUE=30
  Scrollbar down 126
    POSITION=70 182 12 40
  Progressbar bar 127
    POSITION=90 182 60 12
    VALUE=40
  Progressbar coloured 128
    POSITION=90 200 60 12
    VALUE=60
    FORECOLOUR=0x0000FF
    BACKCOLOUR=0xFFFFE0
    BORDERSTYLE=2
  Shape ellipse 129
    POSITION=160 182 24 24
    SHAPE=2
    BACKCOLOUR=0x00C0FF
    BORDERSTYLE=1
  Shape round 130
    POSITION=186 182 24 24
    SHAPE=1
  Icon icon 131
    POSITION=220 174 20 20
    PICTURE="disc"
  Image image 132
    POSITION=250 174 32 30
    PICTURE="disc"
    BORDERSTYLE=1
END
Design DIALOG
  CAPTION="Design"
  POSITION=0 0 320 260
END
)";

constexpr char Disc[] =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16"><circle cx="8" cy="8" r="7" fill="#c00040"/></svg>)";

const Object All("All"), Design("Design");

QPalette darkPalette() {
    QPalette dark;
    const QColor ground(45, 45, 45), paper(30, 30, 30), ink(230, 230, 230);
    for (const auto role : {QPalette::Window, QPalette::Button}) dark.setColor(role, ground);
    for (const auto role : {QPalette::Base, QPalette::AlternateBase}) dark.setColor(role, paper);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(role, ink);
    dark.setColor(QPalette::Light, QColor(80, 80, 80));
    dark.setColor(QPalette::Mid, QColor(65, 65, 65));
    dark.setColor(QPalette::Dark, QColor(20, 20, 20));
    return dark;
}

// The share of pixels that differ visibly.
double difference(const QImage& a, const QImage& b, const Rect& place) {
    const qreal ratio = a.devicePixelRatio();
    const QRect r =
        QRectF(place.x * ratio, place.y * ratio, place.w * ratio, place.h * ratio).toAlignedRect() &
        a.rect() & b.rect();
    constexpr int visible = 24;
    int differing = 0;
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            differing += std::abs(qRed(p) - qRed(q)) > visible || std::abs(qGreen(p) - qGreen(q)) > visible ||
                         std::abs(qBlue(p) - qBlue(q)) > visible;
        }
    return r.isEmpty() ? 1.0 : differing / (double(r.width()) * r.height());
}

class DesignTest : public ::testing::Test {
protected:
    TempFolder folder;
    DesignPicture picture;
    QPalette before = QApplication::palette();

    void SetUp() override {
        DebugStart(1, "test", "", "", "");
        save("all.rc", Resources);
        save("disc.svg", Disc);
        ASSERT_EQ(platform::CompileResources({folder / "all.rc"}, folder / "all.rcx"), "");
        SetApplicationResources(folder / "all.rcx");
    }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        platform::DestroyAllWindows();
        settle();
        QApplication::setPalette(before);
    }
    void save(const std::string& name, std::string_view text) {
        ASSERT_TRUE(os::saveFile(folder / name, text, os::Durability::Unsynced).ok());
    }
    void open(const std::string& text = Resources, const std::string& font = "") {
        save("all.rc", text);
        Load(Design);
        Show(Design, false);
        picture = {};
        picture.resourceFile = folder / "all.rc";
        picture.mode = CLIENT_ONLY;
        picture.link = true;
        ASSERT_EQ(ResourceRead(folder / "all.rc", "All", picture.dialog), "");
        if (!font.empty()) picture.dialog[0] = font + picture.dialog[0];
        settle();
    }
    void run() {
        ASSERT_EQ(Load(All, folder / "all.rc", "All"), "");
        Show(All, false);
        settle();
        if (QWidget* focus = QApplication::focusWidget(); focus != nullptr) focus->clearFocus();
        settle();
    }
    static void settle() {
        for (int i = 0; i < 3; ++i) DoEvents();
    }
    static QWidget* top(const Object& window) { return shownWindow(window.window()); }
    static QImage shot(const Object& window) {
        settle();
        const QImage image = top(window)->grab().toImage().convertToFormat(QImage::Format_RGB32);
        if (const char* to = std::getenv("DESIGN_SHOTS"); to != nullptr)  // to look at
            image.save(
                QString::fromLocal8Bit(to) + QString::fromStdString("/" + window.window()) +
                (QApplication::palette().color(QPalette::Window).lightness() < 128 ? "-dark" : "-light") +
                ".png");
        return image;
    }
    QImage designed() {
        DRAWWINDOW(Design, picture);
        return shot(Design);
    }
    std::string& find(const std::string& name) {
        for (std::string& list : picture.dialog)
            if (GETPROPVALUE(list, "NAME") == name) return list;
        ADD_FAILURE() << name;
        return picture.dialog[255];
    }
    Rect placeOf(const std::string& list) { return RCUNITSTOPIXELS(Design, GETPROPPOSITION(list)); }
    // By name, how much of each control differs.
    std::map<std::string, double> differences() {
        const QImage design = designed(), running = shot(All);
        std::map<std::string, double> out;
        for (std::size_t i = 1; i < picture.dialog.size() && !picture.dialog[i].empty(); ++i)
            out[GETPROPVALUE(picture.dialog[i], "NAME")] =
                difference(design, running, placeOf(picture.dialog[i]));
        return out;
    }
    static std::string replaced(std::string text, const std::string& what, const std::string& with) {
        const std::size_t at = text.find(what);
        EXPECT_NE(at, std::string::npos) << what;
        return at == std::string::npos ? text : text.replace(at, what.size(), with);
    }
};

// What differs is the smoothing of letters and round edges; a wrong letter is more.
constexpr double Bound = 0.004;

TEST_F(DesignTest, EachControlLooksAsInTheRunningWindow) {
    for (const bool dark : {false, true}) {
        QApplication::setPalette(dark ? darkPalette() : before);
        open();
        run();
        for (const auto& [name, share] : differences())
            EXPECT_LT(share, Bound) << name << (dark ? ", dark" : ", light");
        Unload(All);
        Unload(Design);
        settle();
    }
}

// How far two pictures are apart on the mean, of 255.
double distance(const QImage& a, const QImage& b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) sum += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y)));
    return sum / (double(a.width()) * a.height());
}

TEST_F(DesignTest, AtEachZoomItIsTheSamePictureInAnotherSize) {
    for (const bool dark : {false, true}) {
        QApplication::setPalette(dark ? darkPalette() : before);
        open();
        SetDrawScale(Design, 100);
        const QImage whole = designed();
        for (const int zoom : {50, 75, 150, 200, 400}) {
            SetDrawScale(Design, zoom);
            const QImage zoomed = designed();
            EXPECT_NEAR(zoomed.width(), whole.width() * zoom / 100.0, 2) << zoom;
            EXPECT_NEAR(zoomed.height(), whole.height() * zoom / 100.0, 2) << zoom;
            const QSize least = zoomed.size().boundedTo(whole.size());
            const auto reduced = [&](const QImage& image) {
                return image.scaled(least, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
            };
            EXPECT_LT(distance(reduced(zoomed), reduced(whole)), 6) << zoom << (dark ? " dark" : "");
        }
        Unload(Design);
    }
}

double meanGrey(const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) sum += qGray(image.pixel(x, y));
    return sum / (double(image.width()) * image.height());
}

// Whatever the desktop is, the picture has the colours that it was given, and the window those of the desktop.
TEST_F(DesignTest, InOtherColoursNothingOfTheDesktopsIsLeft) {
    for (const bool dark : {false, true}) {
        QApplication::setPalette(dark ? darkPalette() : before);
        open();
        picture.running = true;
        const QImage desktop = designed();
        SetDrawColours(Design, dark ? DARK_COLOURS : LIGHT_COLOURS);
        EXPECT_EQ(designed(), desktop) << "its own";
        SetDrawColours(Design, dark ? LIGHT_COLOURS : DARK_COLOURS);
        const QImage other = designed();
        EXPECT_EQ(meanGrey(desktop) < 128, dark) << meanGrey(desktop);
        EXPECT_EQ(meanGrey(other) < 128, !dark) << meanGrey(other);
        for (const char* const name : {"edit", "lines", "push", "check", "label", "list"}) {
            const Rect r = placeOf(find(name));
            const QImage part = other.copy(r.x, r.y, r.w, r.h);
            EXPECT_EQ(meanGrey(part) < 128, !dark) << name << meanGrey(part);
        }
        SetDrawColours(Design, DESKTOP_COLOURS);
        EXPECT_EQ(designed(), desktop) << "back again";
        Unload(Design);
        settle();
    }
}

// The darkest and the lightest grey of a part of a picture.
std::pair<int, int> greys(const QImage& image, const QRect& part) {
    std::pair<int, int> found = {255, 0};
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x)
            found = {std::min(found.first, qGray(image.pixel(x, y))),
                     std::max(found.second, qGray(image.pixel(x, y)))};
    return found;
}

TEST_F(DesignTest, AFilledEllipseLeavesItsCornersFree) {
    open();
    run();
    const Rect place = placeOf(find("ellipse"));
    for (const QImage& image : {designed(), shot(All)}) {
        const qreal ratio = image.devicePixelRatio();
        const auto at = [&](int x, int y) {
            return image.pixel(int((place.x + x) * ratio), int((place.y + y) * ratio)) & 0xFFFFFF;
        };
        EXPECT_EQ(at(place.w / 2, place.h / 2), 0xFFC000U);
        for (const int x : {1, place.w - 2})
            for (const int y : {1, place.h - 2})
                EXPECT_EQ(at(x, y), at(place.w + 2, place.h / 2)) << x << " " << y;
    }
}

TEST_F(DesignTest, MarksHaveAnEdgeInBothColours) {
    open();
    picture.running = true;
    for (const char* const name : {"radio", "check"}) SETPROPVALUE("VALUE", "0", find(name));
    for (const DrawColours colours : {LIGHT_COLOURS, DARK_COLOURS}) {
        SetDrawColours(Design, colours);
        const QImage image = designed();
        const qreal ratio = image.devicePixelRatio();
        for (const char* const name : {"radio", "check"}) {
            const Rect place = placeOf(find(name));
            const QRect mark(int(place.x * ratio), int(place.y * ratio), int(place.h * ratio),
                             int(place.h * ratio));
            const auto [darkest, lightest] = greys(image, mark);
            EXPECT_GT(lightest - darkest, 60) << name << (colours == DARK_COLOURS ? " dark" : " light");
        }
    }
    SetDrawColours(Design, DESKTOP_COLOURS);
}

TEST_F(DesignTest, ItHasTheFontOfTheDialog) {
    const std::string font = "  FONTNAME=\"DejaVu Serif\"\n  FONTSIZE=12\n  FONTBOLD=1\n";
    open(replaced(Resources, "  POSITION=0 0 300 240\n", "  POSITION=0 0 300 240\n" + font));
    run();
    for (const auto& [name, share] : differences()) EXPECT_LT(share, Bound) << name;
}

TEST_F(DesignTest, ALetterOfTheSmallestFontHasAPixel) {
    open(replaced(Resources, "  POSITION=0 0 300 240\n", "  POSITION=0 0 300 240\n  FONTSIZE=1\n"));
    run();
    SetFontSize(Design, 1);
    ClearError();
    EXPECT_EQ(LETTERSIZE(Design).width, 1);
    EXPECT_GE(PIXELSTORCUNITS(Design, {0, 0, 10, 10}).w, 40);
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_GT(GetPosition(All, CLIENT_UNIT).w, 50) << "of the window that runs";
}

TEST_F(DesignTest, AWrongControlIsFound) {
    struct Case {
        const char *control, *what, *with;
    };
    for (const Case& one :
         {Case{"label", "A &label:", "A &Label:"}, Case{"lined", "BORDERSTYLE=1", "BORDERSTYLE=0"},
          Case{"tall", "BORDERSTYLE=2", "BORDERSTYLE=0"}, Case{"edit", "some text", "some test"},
          Case{"flat", "BORDERSTYLE=0\n  Edit lines", "BORDERSTYLE=1\n  Edit lines"},
          Case{"push", "&Push", "&Bush"}, Case{"check", "VALUE=1", "VALUE=0"},
          Case{"radio", "VALUE=1\n    ARRAY", "VALUE=0\n    ARRAY"},
          Case{"default", "DEFAULT=1", "DEFAULT=0"}, Case{"box", "\"Group\"", "\"Gruop\""},
          Case{"ellipse", "0x00C0FF", "0x0080FF"}, Case{"bar", "VALUE=40", "VALUE=44"}}) {
        open();
        save("all.rc", replaced(Resources, one.what, one.with));
        run();
        EXPECT_GT(differences()[one.control], Bound) << one.control;
        Unload(All);
        Unload(Design);
        settle();
    }
}

TEST_F(DesignTest, APictureThatIsNotThereIsACrossedBox) {
    open(replaced(Resources, "    POSITION=250 174 32 30\n    PICTURE=\"disc\"",
                  "    POSITION=250 174 32 30\n    PICTURE=\"none.png\""));
    const QImage without = designed();
    const Rect place = placeOf(find("image"));
    const qreal ratio = without.devicePixelRatio();
    const auto pixel = [&](const QImage& image, int x, int y) {
        return image.pixel(int((place.x + x) * ratio), int((place.y + y) * ratio));
    };
    const QRgb ground = pixel(without, place.w / 2, 2);
    EXPECT_NE(pixel(without, 0, 0), ground) << "the box";
    EXPECT_NE(pixel(without, place.w - 1, place.h - 1), ground);
    int crossed = 0;
    for (int x = 3; x < place.w / 4; ++x) {
        const int y = x * place.h / place.w;
        crossed += pixel(without, x, y) != ground || pixel(without, x, y + 1) != ground;
    }
    EXPECT_GT(crossed, place.w / 8) << "the cross";
    save("none.png", Disc);
    EXPECT_GT(difference(without, designed(), place), 0.2) << "it has come";
}

TEST_F(DesignTest, OneThatIsNotVisibleIsFaint) {
    open();
    const QImage plain = designed();
    for (std::string& list : picture.dialog) SETPROPVALUE("VISIBLE", "0", list);
    const QImage faint = designed();
    const Rect place = placeOf(find("push"));
    EXPECT_GT(difference(plain, faint, place), 0.02);
    const QImage empty = [&] {
        find("push").clear();
        return designed();
    }();
    EXPECT_GT(difference(empty, faint, place), 0.02) << "but it is there";
}

TEST_F(DesignTest, WhatIsGoneFromTheListIsGoneFromThePicture) {
    open();
    const QImage all = designed();
    const Rect place = placeOf(find("image"));
    find("image").clear();
    const QImage less = designed();
    EXPECT_GT(difference(all, less, place), 0.05);
    EXPECT_EQ(less.pixel(less.width() - 2, less.height() - 2), all.pixel(all.width() - 2, all.height() - 2));
}

TEST_F(DesignTest, TheFrameIsDrawnInItsColours) {
    open();
    SETPROPVALUE("BORDERSTYLE", "2", picture.dialog[0]);
    SETPROPVALUE("MAXBUTTON", "1", picture.dialog[0]);
    SETPROPVALUE("MINBUTTON", "1", picture.dialog[0]);
    SETPROPVALUE("MENU", "Menu1", picture.dialog[0]);
    picture.menu[1] = "NAME=a\nTYPEOF=Menuitem\nPOSITION=1\nCAPTION=\"&File\"\n";
    picture.menu[2] = "NAME=b\nTYPEOF=Menuitem\nPOSITION=1\nCAPTION=\"&Edit\"\n";
    picture.grid = "8 8";
    picture.selection = 8;
    picture.mode = FULL_FRAME;
    picture.margin = {10, 10, 10, 10};
    const QImage image = designed();
    const FrameRects rects = CALCOFFSETS(Design, picture.dialog[0], FULL_FRAME);
    const qreal ratio = image.devicePixelRatio();
    const auto at = [&](int x, int y) {
        return image.pixel(int((x + 10.5) * ratio), int((y + 10.5) * ratio)) & 0xFFFFFF;
    };
    const int right = rects.frame.w - 1, bottom = rects.frame.h - 1, middle = rects.frame.h / 2;
    EXPECT_EQ(at(0, middle), 0xE0E0E0U);
    EXPECT_EQ(at(1, middle), 0xFFFFFFU);
    EXPECT_EQ(at(2, middle), 0xC0C0C0U);
    EXPECT_EQ(at(3, middle), 0xC0C0C0U);
    EXPECT_EQ(at(right, middle), 0x000000U);
    EXPECT_EQ(at(right - 1, middle), 0x808080U);
    EXPECT_EQ(at(right - 2, middle), 0xC0C0C0U);
    EXPECT_EQ(at(right / 2, bottom), 0x000000U);
    EXPECT_EQ(QSize(image.width(), image.height()),
              (QSizeF(rects.frame.w + 20, rects.frame.h + 20) * ratio).toSize());
}

// ---- dragging over a full design ----

std::vector<double> steps;  // milliseconds of each
QImage dragged;

// The moves of a drag, one by one, each until it is painted; then the button is released.
void moveAbout(QWidget& client) {
    const auto send = [&](QEvent::Type type, int i) {
        const QPoint at(60 + i * 3, 60 + i);
        const bool up = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, at, client.mapToGlobal(at), up ? Qt::LeftButton : Qt::NoButton,
                          up ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&client, &event);
    };
    for (int i = 1; i <= 60; ++i) {
        QElapsedTimer timer;
        timer.start();
        send(QEvent::MouseMove, i);
        QApplication::sendPostedEvents();
        QApplication::processEvents();
        steps.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    dragged = client.grab().toImage();
    send(QEvent::MouseButtonRelease, 60);
}

bool trackInDesign(const Object& window, int event, const Object&, int) {
    if (event != MOUSEDOWN_EVENT) return false;
    QTimer::singleShot(
        0, [] { moveAbout(*QApplication::activeWindow()->findChild<QWidget*>(QStringLiteral("pane"))); });
    TrackRect(window, TRACK_MOVE, {4, 12, 12, 1}, {0, 0, 900, 600}, {50, 50, 60, 30});
    return true;
}

TEST_F(DesignTest, AStepOfADragDrawsNoControlAnew) {
    RegisterWindow(Design, trackInDesign);
    open();
    picture.dialog.fill({});
    picture.dialog[0] = "NAME=a\nTYPEOF=Dialog\nPOSITION=0 0 640 300\n";
    constexpr const char* kinds[] = {"Label", "Edit", "Checkbox", "Pushbutton"};
    for (std::size_t i = 1; i < picture.dialog.size(); ++i)
        picture.dialog[i] = "NAME=a\nTYPEOF=" + std::string(kinds[i % 4]) +
                            "\nPOSITION=" + std::to_string(i % 16 * 40) + " " + std::to_string(i / 16 * 18) +
                            " 38 14\nCAPTION=\"" + std::to_string(i) + "\"\n";
    designed();
    for (QWidget* child : top(Design)->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        if (child->height() > 300) child->setObjectName(QStringLiteral("pane"));
    top(Design)->activateWindow();
    settle();
    steps.clear();
    QWidget* const pane = top(Design)->findChild<QWidget*>(QStringLiteral("pane"));
    ASSERT_NE(pane, nullptr);
    QTest::mousePress(pane, Qt::LeftButton, {}, {60, 60});
    QTest::mouseRelease(pane, Qt::LeftButton, {}, {60, 60});
    RegisterWindow(Design, nullptr);
    ASSERT_EQ(steps.size(), 60U);
    std::sort(steps.begin(), steps.end());
    RecordProperty("MedianMicroseconds", static_cast<int>(steps[30] * 1000));
    QElapsedTimer timer;
    timer.start();
    designed();
    const double whole = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    EXPECT_LT(steps[30], whole / 2) << "milliseconds, of which a whole redraw takes " << whole;
    if (const char* to = std::getenv("DESIGN_SHOTS"); to != nullptr)
        dragged.save(QString::fromLocal8Bit(to) + "/drag.png");
}

}  // namespace
}  // namespace tarn
