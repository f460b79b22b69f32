// SPDX-License-Identifier: Apache-2.0
//
// Rectangles that are dragged with the mouse.
#include "ui/drawing_fixture.h"
#include "ui/typing.h"

#include "os/files.h"
#include "platform/model/view.h"
#include "platform/operations/dragging.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QMouseEvent>
#include <QRubberBand>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <vector>

namespace tarn::platform {

namespace {

void mouse(QWidget* to, QEvent::Type type, QPoint at, Qt::MouseButton button = Qt::LeftButton,
           Qt::KeyboardModifiers keys = Qt::NoModifier) {
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, at, to->mapToGlobal(at), type == QEvent::MouseMove ? Qt::NoButton : button, held,
                      keys);
    QApplication::sendEvent(to, &event);
}

class TrackTest : public DrawTest {
protected:
    Rect result;
    TrackMode mode = TRACK_MOVE;
    DragGuides guides;
    // Presses at a point of the window, whose function then tracks, and does the steps meanwhile.
    void drag(QPoint from, const std::vector<std::function<void()>>& steps) {
        int next = 0;
        QTimer timer;
        timer.callOnTimeout([&] {
            if (next < static_cast<int>(steps.size())) steps[static_cast<std::size_t>(next++)]();
        });
        answer = [&](int event, const Object&) {
            if (event != MOUSEDOWN_EVENT) return false;
            timer.start(1);
            result = TrackRect(Draw, mode, {4, 12, 12, 1}, {0, 0, 100, 100}, {20, 20, 40, 30}, guides).value;
            return true;
        };
        QTest::mousePress(client(), Qt::LeftButton, {}, from);
        answer = nullptr;
    }
    static std::function<void()> moveTo(int x, int y) {
        return [=] { mouse(client(), QEvent::MouseMove, {x, y}); };
    }
    static std::function<void()> release(int x, int y) {
        return [=] { mouse(client(), QEvent::MouseButtonRelease, {x, y}); };
    }
    static void TearDownMouse() { QTest::mouseRelease(client(), Qt::LeftButton, {}, {0, 0}); }
};

TEST_F(TrackTest, ARectangleIsDraggedAndResized) {
    drag({40, 35}, {moveTo(45, 38), moveTo(50, 40), release(50, 40)});
    EXPECT_EQ(result, (Rect{30, 25, 40, 30}));
    TearDownMouse();
    drag({59, 49}, {moveTo(70, 60), release(500, 500)});
    EXPECT_EQ(result, (Rect{20, 20, 80, 80}));
    TearDownMouse();
    mode = TRACK_NEW;
    drag({5, 6}, {moveTo(70, 60), release(35, 46)});
    EXPECT_EQ(result, (Rect{5, 6, 30, 40}));
    TearDownMouse();
}

TEST_F(TrackTest, EachHandleMovesItsEdgesAndHasItsPointer) {
    struct Case {
        QPoint press;
        Qt::CursorShape pointer;
        Rect result;  // 10 to the right and 6 down
    };
    for (const Case& one : {Case{{20, 20}, Qt::SizeFDiagCursor, {30, 26, 30, 24}},
                            Case{{40, 20}, Qt::SizeVerCursor, {20, 26, 40, 24}},
                            Case{{59, 20}, Qt::SizeBDiagCursor, {20, 26, 50, 24}},
                            Case{{20, 35}, Qt::SizeHorCursor, {30, 20, 30, 30}},
                            Case{{59, 35}, Qt::SizeHorCursor, {20, 20, 50, 30}},
                            Case{{20, 49}, Qt::SizeBDiagCursor, {30, 20, 30, 36}},
                            Case{{40, 49}, Qt::SizeVerCursor, {20, 20, 40, 36}},
                            Case{{59, 49}, Qt::SizeFDiagCursor, {20, 20, 50, 36}},
                            Case{{40, 35}, Qt::SizeAllCursor, {30, 26, 40, 30}}}) {
        const QPoint to = one.press + QPoint(10, 6);
        Qt::CursorShape pointer = Qt::ArrowCursor;
        drag(one.press, {moveTo(to.x(), to.y()),
                         [&] {
                             if (const QCursor* over = QApplication::overrideCursor())
                                 pointer = over->shape();
                         },
                         release(to.x(), to.y())});
        EXPECT_EQ(result, one.result) << one.press.x() << " " << one.press.y();
        EXPECT_EQ(pointer, one.pointer) << one.press.x() << " " << one.press.y();
        EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the pointer as it was";
        TearDownMouse();
    }
}

TEST_F(TrackTest, AClickMovesNothing) {
    drag({40, 35}, {moveTo(41, 36), release(41, 36)});
    EXPECT_EQ(result, (Rect{20, 20, 40, 30}));
    TearDownMouse();
    drag({40, 35}, {moveTo(60, 35), moveTo(41, 35), release(41, 35)});
    EXPECT_EQ(result, (Rect{21, 20, 40, 30})) << "one that went farther counts every pixel";
    TearDownMouse();
}

TEST_F(TrackTest, ABandAndALabelFollowTheMouse) {
    const auto band = [] { return client()->findChild<QRubberBand*>(); };
    const auto label = [] { return client()->findChild<QLabel*>(QStringLiteral("track")); };
    QRect outline, text;
    QString told;
    bool early = true;
    drag({40, 35}, {[&] { early = band()->isVisible() || label()->isVisible(); }, moveTo(50, 40),
                    [&] {
                        outline = band()->geometry();
                        text = label()->geometry();
                        told = label()->text();
                    },
                    release(50, 40)});
    EXPECT_FALSE(early) << "nothing shows before the mouse has moved";
    EXPECT_EQ(outline, QRect(30, 25, 40, 30));
    EXPECT_EQ(told.toStdString(), "30, 25   40 \xC3\x97 30");
    EXPECT_FALSE(text.contains(50, 40)) << "the pointer is not covered";
    EXPECT_EQ(band(), nullptr);
    EXPECT_EQ(label(), nullptr);
    TearDownMouse();
}

TEST_F(TrackTest, AGuideDrawsTheRectangleAndShowsUnlessAltIsDown) {
    guides.x = {33};
    const auto lines = [] {
        int shown = 0;
        for (const QFrame* line : client()->findChildren<QFrame*>(QStringLiteral("guide")))
            shown += line->isVisible() ? 1 : 0;
        return shown;
    };
    int near = 0, free = 0;
    QRect place;
    drag({40, 35}, {moveTo(50, 35),
                    [&] {
                        near = lines();
                        for (const QFrame* line : client()->findChildren<QFrame*>(QStringLiteral("guide")))
                            if (line->isVisible()) place = line->geometry();
                    },
                    release(50, 35)});
    EXPECT_EQ(result, (Rect{33, 20, 40, 30}));
    EXPECT_EQ(near, 1);
    EXPECT_EQ(place, QRect(33, 0, 1, 100));
    TearDownMouse();
    const auto withAlt = [](QEvent::Type type) {
        mouse(client(), type, {50, 35}, Qt::LeftButton, Qt::AltModifier);
    };
    drag({40, 35}, {[&] { withAlt(QEvent::MouseMove); }, [&] { free = lines(); },
                    [&] { withAlt(QEvent::MouseButtonRelease); }});
    EXPECT_EQ(result, (Rect{30, 20, 40, 30}));
    EXPECT_EQ(free, 0);
    EXPECT_TRUE(client()->findChildren<QFrame*>(QStringLiteral("guide")).isEmpty());
    TearDownMouse();
}

TEST_F(TrackTest, BandsShowWhatGoesAlong) {
    guides.along = {{70, 60, 20, 20}, {20, 60, 20, 20}};
    std::vector<QRect> bands;
    drag({40, 35}, {moveTo(45, 38),
                    [&] {
                        for (const QRubberBand* band : client()->findChildren<QRubberBand*>())
                            bands.push_back(band->geometry());
                    },
                    moveTo(500, 38), release(500, 38)});
    EXPECT_EQ(bands.size(), 3U);
    EXPECT_EQ(std::count(bands.begin(), bands.end(), QRect(75, 63, 20, 20)), 1);
    EXPECT_EQ(std::count(bands.begin(), bands.end(), QRect(25, 63, 20, 20)), 1);
    EXPECT_EQ(result, (Rect{30, 23, 40, 30})) << "the first of them is at the edge";
    EXPECT_TRUE(client()->findChildren<QRubberBand*>().isEmpty());
    TearDownMouse();
}

TEST_F(TrackTest, ThePressTellsWhichKeysAreHeldDown) {
    struct Case {
        Qt::KeyboardModifiers keys;
        int expected;
    };
    for (const Case& one : {Case{Qt::NoModifier, 0}, Case{Qt::ShiftModifier, MOUSE_SHIFT},
                            Case{Qt::ControlModifier, MOUSE_CTRL},
                            Case{Qt::ShiftModifier | Qt::ControlModifier, MOUSE_SHIFT | MOUSE_CTRL}}) {
        QTest::mouseClick(client(), Qt::LeftButton, one.keys, {3, 4});
        EXPECT_EQ(GetMouseKeys(), one.expected);
    }
}

TEST_F(TrackTest, EscapeAndAWindowThatGoesEndTheDrag) {
    drag({40, 35}, {moveTo(60, 60), [] { sendKey(client(), Qt::Key_Escape); }});
    EXPECT_EQ(result, (Rect{20, 20, 40, 30}));
    TearDownMouse();
    drag({40, 35}, {moveTo(60, 60), [] { static_cast<void>(Hide(Draw)); }});
    EXPECT_FALSE(GetVisible(Draw).value);
    Show(Draw, false);
    TearDownMouse();
    EXPECT_EQ(TrackRect(Draw, TRACK_MOVE, {}, {0, 0, 99, 99}, {1, 2, 30, 40}).value, (Rect{1, 2, 30, 40}))
        << "no button is down";
}

}  // namespace

}  // namespace tarn::platform
