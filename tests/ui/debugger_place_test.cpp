// SPDX-License-Identifier: Apache-2.0
//
// Where the debugger's window stands on its screen.
#include "ui/debugger_fixture.h"

namespace tarn::platform {
namespace {

TEST_F(DebuggerTest, ThePlaceIsTakenAndTold) {
    startAnew({40, 60, 500, 300});
    QTest::qWait(300);  // until the frame is known
    EXPECT_EQ(top()->frameGeometry(), QRect(40, 60, 500, 300));
    QTest::qWait(1100);
    top()->setGeometry(70, 80, 520, 320);
    QTest::qWait(20);
    const QRect frame = top()->frameGeometry();
    EXPECT_EQ(GetDebugPlace(*window), (DebugPlace{frame.x(), frame.y(), frame.width(), frame.height()}));
}

TEST_F(DebuggerTest, APlaceThatIsNotMovedIsToldToo) {
    startAnew({40, 60, 500, 300});
    QTest::qWait(1200);
    EXPECT_EQ(GetDebugPlace(*window), (DebugPlace{40, 60, 500, 300}));
}

TEST_F(DebuggerTest, APlaceLargerThanTheScreenIsMadeToFit) {
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
    struct Case {
        DebugPlace wanted;
        QRect frame;
    };
    const int w = room.width(), h = room.height();
    for (const Case& c :
         {Case{{0, 0, 20000, 300}, {0, 0, w, 300}}, Case{{100, 200, 400, 20000}, {100, 0, 400, h}},
          Case{{50, 50, 20000, 20000}, room}, Case{{w - 100, 20, 400, 200}, {w - 100, 20, 400, 200}}}) {
        startAnew(c.wanted);
        QTest::qWait(300);
        EXPECT_EQ(top()->frameGeometry(), c.frame) << c.wanted.left << " " << c.wanted.width;
    }
}

TEST_F(DebuggerTest, WithoutAPlaceItLeavesTheOtherWindowFree) {
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
    const int w = room.width(), h = room.height();
    struct Case {
        const char* where;
        QRect other;
    };
    for (const Case& c : {Case{"right", {0, 0, w - 420, h}}, Case{"below", {0, 0, w, h - 260}},
                          Case{"left", {w - 380, 0, 380, h}}, Case{"above", {0, 260, w, h - 260}}}) {
        startAnew({}, {c.other.x(), c.other.y(), c.other.width(), c.other.height()});
        QTest::qWait(300);
        const QRect frame = top()->frameGeometry();
        EXPECT_TRUE(room.contains(frame)) << c.where;
        EXPECT_FALSE(frame.intersects(c.other)) << c.where;
        EXPECT_GE(frame.width(), 380) << c.where;
        EXPECT_GE(frame.height(), 240) << c.where;
    }
    startAnew({}, {0, 0, w, h});
    QTest::qWait(300);
    EXPECT_EQ(top()->frameGeometry().bottomRight(), room.bottomRight()) << "there is no room anywhere";
    startAnew({}, {-5000, -5000, 100, 0});
    EXPECT_TRUE(room.contains(top()->geometry().topLeft()));
}

TEST_F(DebuggerTest, APlaceOutsideOfTheScreenIsNotTaken) {
    for (const DebugPlace& place : {DebugPlace{-5000, 0, 400, 300}, DebugPlace{0, 9000, 400, 300}}) {
        startAnew(place);
        EXPECT_TRUE(top()->screen()->geometry().contains(top()->frameGeometry().topLeft()));
        EXPECT_EQ(top()->width(), 400);
    }
    startAnew({10, 10, 300, 0});
    EXPECT_GT(top()->height(), 100) << "a height of 0 is none";
}

}  // namespace
}  // namespace tarn::platform
