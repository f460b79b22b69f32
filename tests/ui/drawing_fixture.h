// SPDX-License-Identifier: Apache-2.0
//
// A window to draw on, with some controls, whose function notes where the mouse was.
#pragma once

#include "platform/model/view.h"
#include "platform/operations/dragging.h"
#include "ui/window_fixture.h"

#include <QApplication>
#include <QImage>
#include <QPushButton>

#include <functional>
#include <vector>

namespace tarn::platform {

inline constexpr char DrawResources[] = R"(
Draw DIALOG
  CAPTION="Draw"
  POSITION=0 0 200 150
  Pushbutton ok 101
    POSITION=10 120 40 14
    CAPTION="OK"
  Label lbl 102
    POSITION=60 120 40 14
    CAPTION="Text"
  Listbox lst 103
    POSITION=100 100 60 40
    ROWS="a\nb"
  Image img 104
    POSITION=10 80 20 20
  Shape shp 105
    POSITION=40 80 20 20
    SHAPE=0
    FORECOLOUR=0x0000FF
    BACKCOLOUR=0xFF0000
    BORDERSTYLE=1
  Progressbar bar 106
    POSITION=70 80 60 10
    VALUE=50
    FORECOLOUR=0x00FF00
  Pushbutton off 107
    POSITION=10 100 40 14
    ENABLED=0
  Iconlist grid 108
    POSITION=140 80 40 16
    ROWS="x\ty"
    USETABSTOPS=1
  Edit edt 109
    POSITION=10 60 40 14
END
Code EDITWINDOW
  CAPTION="Code"
  POSITION=10 20 200 100
END
)";

class DrawTest : public WindowTest {
protected:
    struct Heard {
        int event, control, x, y;
        friend bool operator==(const Heard&, const Heard&) = default;
        friend std::ostream& operator<<(std::ostream& out, const Heard& one) {
            return out << one.event << " of " << one.control << " at " << one.x << ", " << one.y;
        }
    };

    static inline std::vector<Heard> heard;
    static inline std::function<bool(int, const Object&)> answer;
    static inline const Object Draw{"Draw"}, Code{"Code"};
    static constexpr int Red = 0x0000FF, Blue = 0xFF0000, Green = 0x00FF00;

    static bool listen(const Object&, int event, const Object& control, int parameter) {
        if (event == MOUSEDOWN_EVENT || event == DBLCLICK_EVENT || event == INFO_EVENT)
            heard.push_back({event, control.number(), static_cast<std::int16_t>(parameter & 0xFFFF),
                             static_cast<std::int16_t>(parameter >> 16 & 0xFFFF)});
        return answer && answer(event, control);
    }

    void SetUp() override {
        ASSERT_EQ(useResources(folder, DrawResources), "");
        ASSERT_TRUE(open({Draw}, listen));
        hear(Code, listen);
        settle();
    }
    void TearDown() override {
        answer = nullptr;
        SetCaption(Sysprinter, "");
        WindowTest::TearDown();
    }
    static void settle() {
        WindowTest::settle();
        heard.clear();
    }
    static Object in(int number) { return Object("Draw", number); }
    static QWidget* top(const Object& window = Draw) { return shownWindow(window.window()); }
    // What the window shows, and its client area in the window.
    static QImage seen() {
        DoEvents();
        return top()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }
    static int at(int x, int y) {
        const QImage image = seen();
        const qreal ratio = image.devicePixelRatio();
        const QRgb pixel = image.pixel(static_cast<int>(x * ratio), static_cast<int>(y * ratio));
        return qBlue(pixel) << 16 | qGreen(pixel) << 8 | qRed(pixel);
    }
    template <class Widget>
    static Widget* find(const char* name) {
        return top()->findChild<Widget*>(QString::fromLatin1(name));
    }
    static QWidget* client() { return find<QPushButton>("ok")->parentWidget(); }
    static void ink(int fore, int back) {
        SetForeColour(Draw, fore);
        SetBackColour(Draw, back);
    }
};

}  // namespace tarn::platform
