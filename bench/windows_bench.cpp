// SPDX-License-Identifier: GPL-3.0-or-later
//
// windows_bench: a window of 255 controls from its resource file to the paint, beside 255 plain widgets of the toolkit;
// its design, drawn whole, beside those widgets painted anew; and what every command of the environment costs behind it,
// the refresh of its menus.
#include "paint_watch.h"

#include "ide/designer/drawing/drawing.h"
#include "ide/editor/textedit.h"
#include "ide/shell/ide.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/run/runtime.h"
#include "kernel/windows/windowing.h"
#include "library/designer/proputil.h"
#include "os/files.h"
#include "os/process.h"
#include "platform/model/model.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

using namespace bench;

constexpr int controls = 255, runs = 15;
const tarn::Object window("Large"), design("Design");

constexpr const char* kinds[] = {"Label", "Edit", "Checkbox", "Pushbutton"};

std::string resourceText() {
    std::string text = "Large DIALOG\n  CAPTION=\"Large\"\n  POSITION=0 0 640 300\n";
    for (int i = 0; i < controls; i++)
        text += "  " + std::string(kinds[i % 4]) + " control" + std::to_string(i) + " " +
                std::to_string(100 + i) + "\n    POSITION=" + std::to_string(i % 16 * 40) + " " +
                std::to_string(i / 16 * 18) + " 38 14\n" +
                (i % 4 == 1 ? "    TEXT=\"text\"\n" : "    CAPTION=\"Control\"\n");
    return text + "END\nDesign DIALOG\n  CAPTION=\"Design\"\n  POSITION=0 0 640 300\nEND\n";
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

void fill(QWidget& plain) {
    plain.setWindowTitle("Large");
    plain.resize(1280, 600);
    for (int n = 0; n < controls; n++)
        plainWidget(n % 4, &plain)->setGeometry(n % 16 * 80, n / 16 * 36, 76, 28);
}

double plainWidgets() {
    std::vector<double> times;
    for (int i = 0; i < runs; i++) {
        QElapsedTimer timer;
        timer.start();
        QWidget plain;
        fill(plain);
        PaintWatch watch(&plain);
        plain.show();
        untilPainted(watch);
        times.push_back(milliseconds(timer));
    }
    return median(times);
}

// All of them painted again, as when something covered them.
double plainPaint() {
    QWidget plain;
    fill(plain);
    PaintWatch watch(&plain);
    plain.show();
    untilPainted(watch);
    std::vector<double> times;
    for (int i = 0; i < runs; i++) {
        QElapsedTimer timer;
        timer.start();
        plain.repaint();
        times.push_back(milliseconds(timer));
    }
    return median(times);
}

// The whole design to the paint, after a change of one control, or of all.
double designRedraw(const std::string& file, bool all) {
    if (!tarn::Load(design, file, "Design").empty()) std::abort();
    tarn::Show(design, false);
    auto* const frame = static_cast<QWidget*>(tarn::platform::findWindow(design)->widget);
    tarn::DesignPicture picture;
    tarn::ResourceRead(file, "Large", picture.dialog);
    picture.grid = "8 8";
    picture.margin = {10, 10, 10, 10};
    tarn::DRAWWINDOW(design, picture);
    QApplication::processEvents();
    std::vector<double> times;
    for (int i = 0; i < runs; i++) {
        for (int n = 1; n <= (all ? controls : 1); n++)
            for (const char* name : {"CAPTION", "TEXT"})
                tarn::SETPROPVALUE(name, std::to_string(n) + (all ? " of " : " in ") + std::to_string(i),
                                   picture.dialog[n]);
        QElapsedTimer timer;
        timer.start();
        tarn::DRAWWINDOW(design, picture);
        frame->repaint();
        times.push_back(milliseconds(timer));
    }
    tarn::Unload(design);
    QApplication::processEvents();
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

// The refresh with a file in the Code window that has so many backups: `fresh` as after a change in its folder, which
// has it read again, else as after any other command.
void backupRefresh(int backups, const char* fresh, const char* settled, std::vector<Figure>& figures) {
    namespace fs = std::filesystem;
    std::string folder = "/tmp/tarnwick-bench-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) std::abort();
    const std::string file = folder + "/note.txt";
    std::ofstream(file) << "text\n";
    for (int i = 0; i < backups; i++) {
        char stamp[32];
        std::snprintf(stamp, sizeof stamp, "2015-%02d-%02d %02d-%02d-00", 1 + i / 1000 % 12, 1 + i / 60 % 28,
                      i / 60 % 24, i % 60);
        std::ofstream(file + " (" + stamp + ")" + std::to_string(i) + ".bak") << "text\n";
    }
    tarn::EDITWNDOPEN(tarn::SDIEdit, file, false, 0);
    std::vector<double> times;
    for (int i = 0; i < runs; i++) {
        std::ofstream(folder + "/other" + std::to_string(i)) << "text\n";
        QElapsedTimer timer;
        timer.start();
        tarn::UPDATEMAINWINDOW();
        QApplication::processEvents();
        times.push_back(milliseconds(timer));
    }
    figures.push_back({fresh, median(times)});
    std::this_thread::sleep_for(std::chrono::seconds(3));
    figures.push_back({settled, menuRefresh()});
    tarn::EDITWNDCLOSE(tarn::SDIEdit, true);
    fs::remove_all(folder);
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
    figures.push_back({"designRedraw255", designRedraw(file, false)});
    figures.push_back({"designAnew255", designRedraw(file, true)});
    figures.push_back({"plainPaint255", plainPaint()});
    figures.push_back({"menuRefresh", menuRefresh()});
    backupRefresh(50, "menuRefreshFresh/50", "menuRefresh/50", figures);
    backupRefresh(10000, "menuRefreshFresh/10000", "menuRefresh/10000", figures);
    print(figures);
    tarn::os::files().remove(file);
    std::fflush(nullptr);
    std::_Exit(0);
}
