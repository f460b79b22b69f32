// SPDX-License-Identifier: GPL-3.0-or-later
//
// Designs on real widgets: what the design of a dialog shows, held against its running window, control by control.
#include "kernel/windows/drawscale.h"
#include "ui/design_fixture.h"

#include <algorithm>
#include <utility>

namespace tarn {
namespace {

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
    open(replaced(DesignResources, "  POSITION=0 0 300 240\n", "  POSITION=0 0 300 240\n" + font));
    run();
    for (const auto& [name, share] : differences()) EXPECT_LT(share, Bound) << name;
}

TEST_F(DesignTest, ALetterOfTheSmallestFontHasAPixel) {
    open(replaced(DesignResources, "  POSITION=0 0 300 240\n", "  POSITION=0 0 300 240\n  FONTSIZE=1\n"));
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
        save("a.rc", replaced(DesignResources, one.what, one.with));
        run();
        EXPECT_GT(differences()[one.control], Bound) << one.control;
        Unload(All);
        Unload(Design);
        settle();
    }
}

TEST_F(DesignTest, APictureThatIsNotThereIsACrossedBox) {
    open(replaced(DesignResources, "    POSITION=250 174 32 30\n    PICTURE=\"disc\"",
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
    save("none.png", DesignPictureText);
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

}  // namespace
}  // namespace tarn
