// SPDX-License-Identifier: GPL-3.0-or-later
//
// A dialog with a control of each kind, as a design and as a running window, and how far their pictures are apart.
#pragma once

#include "ide/designer/drawing/drawing.h"
#include "kernel/run/errors.h"
#include "library/designer/dlgunits.h"
#include "library/designer/proputil.h"
#include "ui/window_fixture.h"

#include <QApplication>
#include <QImage>
#include <QPalette>
#include <QWidget>

#include <cstdlib>
#include <map>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr char DesignResources[] = R"(
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

inline constexpr char DesignPictureText[] =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16"><circle cx="8" cy="8" r="7" fill="#c00040"/></svg>)";

class DesignTest : public platform::WindowTest {
protected:
    static inline const Object All{"All"}, Design{"Design"};

    DesignPicture picture;
    QPalette before = QApplication::palette();

    void SetUp() override {
        DebugStart(1, "test", "", "", "");
        save("disc.svg", DesignPictureText);
        ASSERT_EQ(useResources(folder, DesignResources), "");
    }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        WindowTest::TearDown();
        QApplication::setPalette(before);
    }
    static QPalette darkPalette() {
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
    static double difference(const QImage& a, const QImage& b, const Rect& place) {
        const qreal ratio = a.devicePixelRatio();
        const QRect r =
            QRectF(place.x * ratio, place.y * ratio, place.w * ratio, place.h * ratio).toAlignedRect() &
            a.rect() & b.rect();
        constexpr int visible = 24;
        int differing = 0;
        for (int y = r.top(); y <= r.bottom(); ++y)
            for (int x = r.left(); x <= r.right(); ++x) {
                const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
                differing += std::abs(qRed(p) - qRed(q)) > visible ||
                             std::abs(qGreen(p) - qGreen(q)) > visible ||
                             std::abs(qBlue(p) - qBlue(q)) > visible;
            }
        return r.isEmpty() ? 1.0 : differing / (double(r.width()) * r.height());
    }
    void save(const std::string& name, std::string_view text) {
        ASSERT_TRUE(os::saveFile(folder / name, text, os::Durability::Unsynced).ok());
    }
    void open(const std::string& text = DesignResources, const std::string& font = "") {
        save("a.rc", text);
        Load(Design);
        Show(Design, false);
        picture = {};
        picture.resourceFile = folder / "a.rc";
        picture.mode = CLIENT_ONLY;
        picture.link = true;
        ASSERT_EQ(ResourceRead(folder / "a.rc", "All", picture.dialog), "");
        if (!font.empty()) picture.dialog[0] = font + picture.dialog[0];
        settle();
    }
    void run() {
        ASSERT_EQ(Load(All, folder / "a.rc", "All"), "");
        Show(All, false);
        settle();
        if (QWidget* focus = QApplication::focusWidget(); focus != nullptr) focus->clearFocus();
        settle();
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

}  // namespace tarn
