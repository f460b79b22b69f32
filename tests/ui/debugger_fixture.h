// SPDX-License-Identifier: Apache-2.0
//
// The debugger's window with real widgets beside one of a program, and what a user does there during a stop.
#pragma once

#include "os/clock.h"
#include "platform/model/debugger/debugwindow.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "ui/window_fixture.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QToolTip>
#include <QWindow>

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace tarn::platform {

inline const Object Form("Form"), Press("Form", 101), Text("Form", 102), Ask("Ask");
inline constexpr char Pictures[] =
    "stop\nrun\nfeet1\nfeet2\nstop2\n\ncode3\nspecs\npapers2\ncode2\ninfo\nquest2";

inline std::vector<int> heard;
inline std::function<void(int event, int control)> inProgram;

inline bool hear(const Object&, int event, const Object& control, int) {
    heard.push_back(event);
    if (inProgram) inProgram(event, control.number());
    return event == CLOSE_EVENT;  // stays
}
inline long count(int event) {
    return std::count(heard.begin(), heard.end(), event);
}

class DebuggerTest : public WindowTest {
protected:
    DebugWindow* window = nullptr;
    std::vector<std::string> done;
    std::function<void(const DebugEvent&)> act;
    using Step = std::function<void()>;

    void SetUp() override {
        const std::string text = "Form DIALOG\n  CAPTION=\"Program\"\n  POSITION=0 0 160 80\n  "
                                 "BORDERSTYLE=2\n  Pushbutton press 101\n"
                                 "    POSITION=4 4 60 14\n    CAPTION=\"Press\"\n  Edit text 102\n"
                                 "    POSITION=4 24 60 12\nEND\nAsk DIALOG\n  CAPTION=\"Modal\"\n"
                                 "  POSITION=0 0 80 40\n  Pushbutton ok 101\n    POSITION=4 4 60 14\nEND\n";
        ASSERT_EQ(useResources(folder, text), "");
        ASSERT_TRUE(open({Form}, platform::hear));
        hear(Ask, platform::hear);
        QTest::qWait(50);
        start({0, 0, 0, 0});
        heard.clear();
    }
    void TearDown() override {
        inProgram = {};
        EndDebug(debugWindow());
        WindowTest::TearDown();
        SetUserBreak(0);
        QToolTip::hideText();
    }
    void startAnew(const DebugPlace& place, const DebugPlace& beside = {}) {
        EndDebug(window);
        DoEvents();
        start(place, beside);
    }
    void start(const DebugPlace& place, const DebugPlace& beside = {}) {
        window = StartDebug(
            Form, "Integrated Debugger", Pictures, "BUG",
            [this](DebugWindow&, const DebugEvent& event) {
                constexpr const char* names[] = {"command", "double click", "help", "edit", "hover", "close"};
                done.push_back(names[static_cast<int>(event.message)] + (" " + std::to_string(event.number)) +
                               (event.text.empty() ? "" : " " + event.text));
                if (act) act(event);
            },
            place, beside);
        ASSERT_NE(window, nullptr);
        DoEvents();
    }
    // Stops; does one step after the other, with time for the events of each, and leaves.
    void stop(std::vector<Step> steps) {
        steps.emplace_back([this] { LeaveDebug(*window); });
        std::function<void(std::size_t)> next = [&](std::size_t index) {
            steps[index]();
            if (index + 1 < steps.size()) QTimer::singleShot(20, [&, index] { next(index + 1); });
        };
        QTimer::singleShot(20, [&] { next(0); });
        ActivateDebug(*window);
    }
    static QWidget* top() { return shownWindow("IntegratedDebugger"); }
    static QListView* list() { return top()->findChild<QListView*>(QStringLiteral("201")); }
    static QPlainTextEdit* status() { return top()->findChild<QPlainTextEdit*>(QStringLiteral("302")); }
    static QToolButton* button(const QString& name) { return top()->findChild<QToolButton*>(name); }
    static QWidget* form() { return static_cast<QWidget*>(findWindow(Form)->widget); }
    static QPoint at(int line, int x) {
        return {x, list()->visualRect(list()->model()->index(line - 1, 0)).center().y()};
    }
    static void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(list(), static_cast<Qt::Key>(key), modifiers);
    }
    static std::string lines(int count) {
        std::string text;
        for (int line = 1; line <= count; ++line) text += "line " + std::to_string(line) + "\n";
        return text;
    }
};

using Done = std::vector<std::string>;

}  // namespace tarn::platform
