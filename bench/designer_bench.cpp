// SPDX-License-Identifier: GPL-3.0-or-later
//
// designer_bench: the dialog editor with real windows. How long a dialog takes from its file to the paint: one of 255
// controls, and one of 20 in a file with 100 of them, which is also saved with one change; and how much memory the editor
// takes beyond the environment. The first opening of a run, which makes the windows of the editor, stands by itself.
#include "paint_watch.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/shell/ide.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/run/runtime.h"
#include "kernel/windows/windowing.h"
#include "library/designer/proputil.h"
#include "os/files.h"
#include "os/process.h"
#include "platform/model/model.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

using namespace bench;

constexpr int runs = 15, dialogs = 100, most = 255, few = 20;
constexpr const char* kinds[] = {"Label", "Edit", "Checkbox", "Pushbutton"};

std::string dialogText(const std::string& name, int controls) {
    std::string text = name + " DIALOG\n  CAPTION=\"" + name + "\"\n  POSITION=0 0 640 300\n";
    for (int i = 0; i < controls; ++i)
        text += "  " + std::string(kinds[i % 4]) + " control" + std::to_string(i) + " " +
                std::to_string(100 + i) + "\n    POSITION=" + std::to_string(i % 16 * 40) + " " +
                std::to_string(i / 16 * 18) + " 38 14\n" +
                (i % 4 == 1 ? "    TEXT=\"text " : "    CAPTION=\"Control ") + std::to_string(i) + "\"\n";
    return text + "END\n";
}

void writeFile(const std::string& file, const std::string& text) {
    if (!tarn::os::saveFile(file, text).ok()) std::abort();
}

// Of this process alone, in kB.
double memory() {
    std::ifstream rollup("/proc/self/smaps_rollup");
    for (std::string word; rollup >> word;)
        if (double kb = 0; word == "Private_Dirty:" && rollup >> kb) return kb;
    return 0;
}

double open(const std::string& file, const std::string& name) {
    QElapsedTimer timer;
    timer.start();
    tarn::OPENDIALOG(file, name);
    const auto* const window = tarn::platform::findWindow(tarn::DialogDlg);
    if (window == nullptr) std::abort();
    PaintWatch watch(static_cast<QWidget*>(window->widget));
    untilPainted(watch);
    return milliseconds(timer);
}

void close() {
    tarn::DIALOGSETMODIFY(false);
    tarn::Unload(tarn::DialogDlg);
    QApplication::processEvents();
}

double reopened(const std::string& file, const std::string& name) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        times.push_back(open(file, name));
        close();
    }
    return median(times);
}

double saved(const std::string& file, const std::string& name) {
    open(file, name);
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        std::string list = tarn::DESIGNITEM(2);
        tarn::SETPROPVALUE("CAPTION", "\"Change " + std::to_string(i) + "\"", list);
        tarn::DESIGNSTEP([&] { tarn::SETDESIGNITEM(tarn::DATALIST(), 2, list); });
        QElapsedTimer timer;
        timer.start();
        tarn::DIALOGSAVE();
        times.push_back(milliseconds(timer));
        if (tarn::DIALOGGETMODIFY()) std::abort();
    }
    close();
    return median(times);
}

}  // namespace

int main(int argc, char** argv) {
    tarn::os::setCommandLine(argc, argv);
    std::string folder = "/tmp/tarnwick-designer-bench-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) return 1;
    const std::string large = folder + "/large.rc", many = folder + "/many.rc";
    writeFile(large, dialogText("Large", most));
    std::string text;
    for (int n = 0; n < dialogs; ++n) text += dialogText("Dialog" + std::to_string(n), few) + "\n";
    writeFile(many, text);
    tarn::SetApplicationResources(tarn::os::executableFolder() + "ide.rcx");
    tarn::DebugStart(1, "bench", "", "", "");
    tarn::REGISTERWINDOWS();
    tarn::Load(tarn::Main);
    if (!tarn::IsLoaded(tarn::Main)) return std::fprintf(stderr, "the main window was not loaded\n"), 1;
    QApplication::processEvents();
    const double before = memory();
    std::vector<Figure> figures{{"editorFirst255", open(large, "Large")}};
    const double taken = memory() - before;
    close();
    figures.push_back({"editorOpen255", reopened(large, "Large")});
    figures.push_back({"editorOpenOf100", reopened(many, "Dialog50")});
    figures.push_back({"editorSaveOf100", saved(many, "Dialog50")});
    std::fprintf(stderr, "memory of the dialog editor: %.1f MB (budget 20 MB)\n", taken / 1024);
    print(figures);
    for (const std::string& file : {large, many}) tarn::os::files().remove(file);
    static_cast<void>(std::remove(folder.c_str()));
    std::fflush(nullptr);
    std::_Exit(0);
}
