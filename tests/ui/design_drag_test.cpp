// SPDX-License-Identifier: GPL-3.0-or-later
//
// A drag over a dialog full of controls, on real widgets: no step of it draws a control anew.
#include "platform/model/model.h"
#include "ui/design_fixture.h"

#include <QElapsedTimer>
#include <QMouseEvent>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <vector>

namespace tarn {
namespace {

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
