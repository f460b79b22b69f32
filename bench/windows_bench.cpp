// SPDX-License-Identifier: GPL-3.0-or-later
//
// windows_bench: a window of 255 controls from its resource file to the paint, beside 255 plain widgets of the toolkit;
// and what every command of the environment costs behind it, the refresh of its menus.
#include "paint_watch.h"

#include "ide/editor/textedit.h"
#include "ide/shell/ide.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/run/runtime.h"
#include "kernel/windows/windowing.h"
#include "os/files.h"
#include "os/process.h"
#include "platform/model/model.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <cstdlib>

namespace {

using namespace bench;

constexpr int controls = 255, runs = 15;
const tarn::Object window("Large");

constexpr const char* kinds[] = {"Label", "Edit", "Checkbox", "Pushbutton"};

std::string resourceText() {
    std::string text = "Large DIALOG\n  CAPTION=\"Large\"\n  POSITION=0 0 640 300\n";
    for (int i = 0; i < controls; i++)
        text += "  " + std::string(kinds[i % 4]) + " control" + std::to_string(i) + " " +
                std::to_string(100 + i) + "\n    POSITION=" + std::to_string(i % 16 * 40) + " " +
                std::to_string(i / 16 * 18) + " 38 14\n" +
                (i % 4 == 1 ? "    TEXT=\"text\"\n" : "    CAPTION=\"Control\"\n");
    return text + "END\n";
}

double load(const std::string& file) {
    std::vector<double> times;
    for (int i = 0; i < runs; i++) {
        QElapsedTimer timer;
        timer.start();
        if (!tarn::Load(window, file, "Large").empty()) std::abort();
        PaintWatch watch(static_cast<QWidget*>(tarn::platform::findWindow(window)->widget));
        tarn::Show(window, false);
        untilPainted(watch);
        times.push_back(milliseconds(timer));
        tarn::Unload(window);
        QApplication::processEvents();
    }
    return median(times);
}

QWidget* plainWidget(int kind, QWidget* parent) {
    switch (kind) {
    case 0: return new QLabel("Control", parent);
    case 1: return new QLineEdit("text", parent);
    case 2: return new QCheckBox("Control", parent);
    default: return new QPushButton("Control", parent);
    }
}

double plainWidgets() {
    std::vector<double> times;
    for (int i = 0; i < runs; i++) {
        QElapsedTimer timer;
        timer.start();
        QWidget plain;
        plain.setWindowTitle("Large");
        plain.resize(1280, 600);
        for (int n = 0; n < controls; n++)
            plainWidget(n % 4, &plain)->setGeometry(n % 16 * 80, n / 16 * 36, 76, 28);
        PaintWatch watch(&plain);
        plain.show();
        untilPainted(watch);
        times.push_back(milliseconds(timer));
    }
    return median(times);
}

double menuRefresh() {
    std::vector<double> times;
    for (int i = 0; i < 200; i++) {
        QElapsedTimer timer;
        timer.start();
        tarn::UPDATEMAINWINDOW();
        QApplication::processEvents();
        times.push_back(milliseconds(timer));
    }
    return median(times);
}

}  // namespace

int main(int argc, char** argv) {
    tarn::os::setCommandLine(argc, argv);
    const std::string file = "/tmp/tarnwick-windows-bench.rc";
    if (!tarn::os::saveFile(file, resourceText()).ok()) return 1;
    tarn::SetApplicationResources(tarn::os::executableFolder() + "ide.rcx");
    tarn::DebugStart(1, "bench", "", "", "");
    tarn::REGISTERWINDOWS();
    tarn::Load(tarn::Main);
    if (!tarn::IsLoaded(tarn::Main)) return std::fprintf(stderr, "the main window was not loaded\n"), 1;
    std::vector<Figure> figures;
    figures.push_back({"load255", load(file)});
    figures.push_back({"plain255", plainWidgets()});
    figures.push_back({"menuRefresh", menuRefresh()});
    print(figures);
    tarn::os::files().remove(file);
    std::fflush(nullptr);
    std::_Exit(0);
}
