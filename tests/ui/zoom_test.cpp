// SPDX-License-Identifier: Apache-2.0
//
// Drawings at a scale, on real widgets: what is drawn larger is sharp and stands where the arithmetic says, and the wheel
// with Ctrl is a key of the window.
#include "platform/model/model.h"
#include "platform/operations/drawscale.h"
#include "ui/window_fixture.h"

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QRubberBand>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <QWidget>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarn::platform {

// The names of what tests print stand with the types.
namespace types {
static std::ostream& operator<<(std::ostream& out, const Rect& r) {
    return out << r.x << " " << r.y << " " << r.w << " " << r.h;
}
}  // namespace types

namespace {

constexpr char Resources[] =
    "Draw DIALOG\n  POSITION=0 0 300 200\n  Edit edt 101\n    POSITION=250 180 30 12\nEND\n";
constexpr int Red = 0x0000FF, Blue = 0xFF0000;

std::vector<int> keys;
std::optional<Rect> dragged;
int presses = 0;
std::function<void()> onPress;

bool listen(const Object& window, int event, const Object&, int parameter) {
    if (event == KEYPRESS_EVENT) keys.push_back(parameter);
    presses += event == MOUSEDOWN_EVENT ? 1 : 0;
    if (event == MOUSEDOWN_EVENT && onPress) onPress();
    if (event == MOUSEDOWN_EVENT && dragged)
        dragged = TrackRect(window, TRACK_MOVE, {4, 12, 12, 1}, {0, 0, 200, 150}, *dragged).value;
    return event == KEYPRESS_EVENT;
}

const Object Draw("Draw");

class ZoomTest : public WindowTest {
protected:
    void SetUp() override {
        ASSERT_EQ(useResources(folder, Resources), "");
        ASSERT_TRUE(open({Draw}, listen));
        QTest::qWait(20);
        keys.clear();
        dragged.reset();
        presses = 0;
    }
    static QWidget& client() {
        return *static_cast<QWidget*>(findWindow(Draw)->widget)->findChild<QLineEdit*>()->parentWidget();
    }
    template <class What>
    static QImage drawn(int scale, What what) {
        SetDrawScale(Draw, scale);
        StartGraph(Draw, 10, 5);
        Clear(Draw);
        what();
        EndGraph(Draw);
        return clientImage();
    }
    static QImage clientImage() { return client().grab().toImage().convertToFormat(QImage::Format_RGB32); }
    // The box around the pixels of that colour.
    static Rect boxOf(const QImage& image, int colour) {
        const QRgb wanted = qRgb(colour & 0xFF, colour >> 8 & 0xFF, colour >> 16 & 0xFF);
        QRect box;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixel(x, y) == wanted) box |= QRect(x, y, 1, 1);
        return {box.x(), box.y(), box.width(), box.height()};
    }
};

// One that is larger than a million pixels is drawn where it is seen alone.
TEST_F(ZoomTest, LargeControlsStandWhereTheScaleSays) {
    const auto shape = [](Rect at) {
        DrawControl(Draw, "NAME=x\nTYPEOF=Shape\nSHAPE=0\nFORECOLOUR=0x0000FF\nBACKCOLOUR=0x0000FF\n",
                    at.x - 10, at.y - 5, at.w, at.h);  // the drawing's corner is at 10 5
    };
    const int width = client().width(), height = client().height();
    struct Row {
        Rect at, seen;  // at 400 %
    };
    for (const auto& [at, seen] : std::vector<Row>{
             {{10, 5, 400, 300}, {40, 20, width - 40, height - 20}},
             {{-390, -290, 400, 300}, {0, 0, 40, 40}},
             {{-100, -50, 400, 300}, {0, 0, width, height}},
             {{-400, 0, 400, 300}, {0, 0, 0, 0}},
             {{10, 5, 20, 15}, {40, 20, 80, 60}},
         })
        EXPECT_EQ(boxOf(drawn(400, [&] { shape(at); }), Red), seen) << at.x << " " << at.y;
}

TEST_F(ZoomTest, BoxesAndLinesStandWhereTheScaleSays) {
    const auto draw = [] {
        SetForeColour(Draw, Red);
        SetBackColour(Draw, Red);
        DrawShape(Draw, RECTANGLE_SHAPE, 20, 15, 40, 30);
        SetForeColour(Draw, Blue);
        DrawLine(Draw, 0, 60, 49, 60);
    };
    struct Row {
        int scale;
        Rect box, line;
    };
    for (const Row& row :
         {Row{100, {30, 20, 40, 30}, {10, 65, 50, 1}}, Row{200, {60, 40, 80, 60}, {20, 130, 100, 2}},
          Row{50, {15, 10, 20, 15}, {5, 33, 25, 1}}, Row{300, {90, 60, 120, 90}, {30, 195, 150, 3}},
          Row{67, {21, 14, 26, 20}, {7, 44, 34, 1}}}) {
        const QImage image = drawn(row.scale, draw);
        EXPECT_EQ(boxOf(image, Red), row.box) << row.scale;
        EXPECT_EQ(boxOf(image, Blue), row.line) << row.scale;
    }
}

TEST_F(ZoomTest, ControlsAreDrawnAtTheScaleAndNotBlownUp) {
    const auto draw = [] {
        DrawControl(Draw, "NAME=ok\nTYPEOF=Pushbutton\nCAPTION=\"Sharp &letters\"\n", 20, 15, 100, 24);
    };
    const QRect part(30, 20, 100, 24);
    const QImage once = drawn(100, draw).copy(part),
                 twice = drawn(200, draw).copy(QRect(part.topLeft() * 2, part.size() * 2));
    const QImage blown = once.scaled(twice.size(), Qt::IgnoreAspectRatio, Qt::FastTransformation),
                 reduced = twice.scaled(once.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const auto difference = [](const QImage& a, const QImage& b) {
        double sum = 0;
        for (int y = 0; y < a.height(); ++y)
            for (int x = 0; x < a.width(); ++x) sum += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y)));
        return sum / (a.width() * a.height());
    };
    // Smaller, too, the whole control is there.
    const QImage half = drawn(50, draw).copy(QRect(part.topLeft() / 2, part.size() / 2));
    EXPECT_LT(difference(once.scaled(half.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation), half),
              20);
    EXPECT_NE(twice, blown) << "the same pixels, only larger";
    EXPECT_LT(difference(once, reduced), 12) << "the same button";
    // Blown up, each two by two pixels are one colour.
    int mixed = 0;
    for (int y = 0; y + 1 < twice.height(); y += 2)
        for (int x = 0; x + 1 < twice.width(); x += 2)
            mixed += twice.pixel(x, y) != twice.pixel(x + 1, y) || twice.pixel(x, y) != twice.pixel(x, y + 1);
    EXPECT_GT(mixed, 100);
}

TEST_F(ZoomTest, TextsTakeTheRoomOfTheirMeasureTimesTheScale) {
    const std::string text = "How wide am I?";
    const auto draw = [&] {
        SetForeColour(Draw, -1);
        SetBackColour(Draw, Red);
        SetCurrentX(Draw, 10);
        SetCurrentY(Draw, 10);
        DrawTextstr(Draw, text);
    };
    const int width = TextWidth(Draw, text).value, height = TextHeight(Draw, text).value;
    for (const int scale : {50, 100, 200, 400}) {
        const Rect box = boxOf(drawn(scale, draw), Red);
        EXPECT_NEAR(box.x, 20 * scale / 100, 1) << scale;
        EXPECT_NEAR(box.w, width * scale / 100, 2 + scale / 50) << scale;
        EXPECT_NEAR(box.h, height * scale / 100, 1 + scale / 50) << scale;
    }
}

TEST_F(ZoomTest, AnotherWindowAndItsOwnControlsStayAsTheyAre) {
    const Rect before = GetPosition(Object("Draw", 101), CLIENT_UNIT).value;
    SetDrawScale(Draw, 300);
    EXPECT_EQ(GetPosition(Object("Draw", 101), CLIENT_UNIT).value, before);
    const Rect window = GetPosition(Draw, CLIENT_UNIT).value;
    SetDrawScale(Draw, 50);
    EXPECT_EQ(GetPosition(Draw, CLIENT_UNIT).value, window);
}

TEST_F(ZoomTest, ADragIsShownWhereItIsSeenAndGivesPixelsOfTheDrawing) {
    SetDrawScale(Draw, 200);
    QTest::qWait(100);  // the window takes its place
    dragged = Rect{20, 20, 40, 30};
    QWidget& area = client();
    Rect band;
    const auto send = [&](QEvent::Type type, Qt::MouseButton button) {
        const QPoint to(100, 80);
        QMouseEvent event(type, to, area.mapToGlobal(to), button, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&area, &event);
    };
    onPress = [&] {
        QTimer::singleShot(1, [&] {
            send(QEvent::MouseMove, Qt::NoButton);
            const auto* const shown = area.findChild<QRubberBand*>();
            if (shown != nullptr) band = {shown->x(), shown->y(), shown->width(), shown->height()};
            send(QEvent::MouseButtonRelease, Qt::LeftButton);
        });
    };
    QTest::mousePress(&area, Qt::LeftButton, {}, QPoint(80, 70));
    onPress = nullptr;
    QTest::mouseRelease(&area, Qt::LeftButton, {}, QPoint(100, 80));
    EXPECT_EQ(*dragged, (Rect{30, 25, 40, 30}));
    EXPECT_EQ(presses, 1) << "also where the window does not take it for its own";
    EXPECT_EQ(band, (Rect{60, 50, 80, 60}));
}

TEST_F(ZoomTest, TheWheelWithCtrlIsAKeyOfTheWindow) {
    QWidget& area = client();
    const auto turn = [&](int by, Qt::KeyboardModifiers held) {
        const QPointF at(50, 50);
        QWheelEvent event(at, area.mapToGlobal(at), {}, {0, by}, Qt::NoButton, held, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(&area, &event);
    };
    turn(120, Qt::ControlModifier);
    turn(-120, Qt::ControlModifier);
    EXPECT_EQ(keys, (std::vector<int>{0x1000 + 187, 0x1000 + 189}));
    keys.clear();
    turn(120, Qt::NoModifier);
    turn(120, Qt::ShiftModifier);
    turn(40, Qt::ControlModifier);
    turn(40, Qt::ControlModifier);
    EXPECT_TRUE(keys.empty()) << "a part of a notch";
    turn(40, Qt::ControlModifier);
    EXPECT_EQ(keys, (std::vector<int>{0x1000 + 187}));
}

}  // namespace
}  // namespace tarn::platform
