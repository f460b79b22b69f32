// SPDX-License-Identifier: Apache-2.0
//
// debugger_bench: the debugger's window on a real screen: from the start of a stop to the paint of a source of 8,000 lines,
// a step from one line of it to the next, and 20,000 values. What each is measured to is the paint of the list. And what
// GetUserBreak costs, which a program under the debugger asks at each statement.
#include "paint_watch.h"

#include "platform/model/debugger/debugwindow.h"
#include "platform/windowing.h"

#include <QAbstractScrollArea>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace bench;
using namespace tarn::platform;

constexpr int runs = 25, sourceLines = 8000, values = 20000, asked = 1'000'000;

QWidget* list() {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->objectName() == u"IntegratedDebugger" && widget->isVisible())
            return widget->findChild<QAbstractScrollArea*>(QStringLiteral("201"))->viewport();
    std::abort();
}

// Leaves the stop at the first paint of the list.
class Leave : public QObject {
public:
    Leave(DebugWindow& window, QWidget* watched) : window_(window) { watched->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) QTimer::singleShot(0, this, [this] { LeaveDebug(window_); });
        return false;
    }

private:
    DebugWindow& window_;
};

DebugWindow& start() {
    DebugWindow* const window =
        StartDebug(Object(), "Integrated Debugger",
                   "stop\nrun\nfeet1\nfeet2\nstop2\n\ncode3\nspecs\npapers2\ncode2\ninfo", "BUG",
                   [](DebugWindow&, const DebugEvent&) {}, {});
    if (window == nullptr) std::abort();
    return *window;
}

void fill(DebugWindow& window, const char* text, int count) {
    std::string lines;
    for (int line = 1; line <= count; line++) lines += text + std::to_string(line) + "\n";
    DebugAddstrings(window, lines);
    DebugExtent(window);
}

void stopAt(DebugWindow& window, int line) {
    SetDebugFlags(window, line - 1, 0);
    SetDebugCaption(window, "Integrated Debugger");
    SetDebugStatus(window, "File bench, function MAIN, line " + std::to_string(line));
    SetDebugFlags(window, line, DEBUG_CURRENT);
    DebugSelect(window, line, true);
    ActivateDebug(window);
    SetDebugCaption(window, "Integrated Debugger [inactive]");
}

// The very first one of the process, and the median.
std::pair<double, double> firstStops() {
    std::vector<double> times;
    for (int i = 0; i < runs; i++) {
        QElapsedTimer timer;
        timer.start();
        DebugWindow& window = start();
        fill(window, "    count := count + ", sourceLines);
        SetDebugNumbers(window, true);
        const Leave leave(window, list());
        stopAt(window, sourceLines / 2);
        times.push_back(milliseconds(timer));
        EndDebug(&window);
        QApplication::processEvents();
    }
    return {times.front(), median(times)};
}

double step(DebugWindow& window) {
    std::vector<double> times;
    const Leave leave(window, list());
    stopAt(window, 100);
    for (int i = 0; i < runs * 4; i++) {
        QElapsedTimer timer;
        timer.start();
        stopAt(window, 101 + i);
        times.push_back(milliseconds(timer));
    }
    return median(times);
}

double showValues(DebugWindow& window) {
    std::vector<double> times;
    const Leave leave(window, list());
    for (int i = 0; i < runs; i++) {
        QElapsedTimer timer;
        timer.start();
        fill(window, "    value : integer = ", values);
        stopAt(window, values / 2);
        times.push_back(milliseconds(timer));
    }
    return median(times);
}

// In time of the processor, which whoever else works on the machine does not change.
double userBreak() {
    std::vector<double> times;
    for (int i = 0; i < runs; i++) {
        const std::clock_t start = std::clock();
        int sum = 0;
        for (int n = 0; n < asked; n++) sum += GetUserBreak();
        times.push_back(static_cast<double>(std::clock() - start) * 1000 / CLOCKS_PER_SEC / asked);
        if (sum != 0) std::abort();
    }
    return median(times);
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    std::vector<Figure> figures;
    const auto [first, usual] = firstStops();
    figures.push_back({"debugStopFirst", first});
    figures.push_back({"debugStop8000", usual});
    DebugWindow& window = start();
    fill(window, "    count := count + ", sourceLines);
    figures.push_back({"debugStep", step(window)});
    figures.push_back({"debugValues20000", showValues(window)});
    figures.push_back({"userBreakAsked", userBreak()});
    EndDebug(&window);
    figures.push_back({"userBreakAskedAlone", userBreak()});
    print(figures);
    std::fflush(nullptr);
    std::_Exit(0);
}
