// SPDX-License-Identifier: GPL-3.0-or-later
//
// program_bench: the Program Window of 50 classes and 20 resource files, opened and refreshed up to the paint, without
// the make tool's own time, which is measured beside it; 5,000 rows put into it, beside the same rows in a plain
// tree of the toolkit; and the names that a place of such a program knows, as completion lists them, first with all
// classes still to be read and then again.
#include "paint_watch.h"

#include "ide/build/compiler.h"
#include "ide/editor/completion.h"
#include "ide/editor/names.h"
#include "ide/program/projwindow.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/run/runtime.h"
#include "os/files.h"
#include "os/process.h"
#include "platform/model/model.h"

#include <QListView>
#include <QTreeWidget>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using namespace bench;

constexpr int runs = 11, classes = 50, resources = 20, dialogs = 5, controls = 20, treeRows = 5000;
using tarn::ProjectEditorDlg;

void writeResources(const std::string& stem) {
    std::ofstream out(stem + ".rc");
    for (int d = 0; d < dialogs; ++d) {
        out << "Dialog" << d << " DIALOG\n  CAPTION=\"A dialog\"\n  POSITION=0 0 200 300\n";
        for (int c = 0; c < controls; ++c)
            out << "  LABEL label" << c << " " << 100 + c << "\n    CAPTION=\"Label\"\n    POSITION=8 "
                << c * 14 << " 80 10\n";
        out << "END\n\n";
    }
    out << "note INCFILE \"note.txt\"\nlogo BITMAP \"logo.bmp\"\n";
}

// The main file of a program whose classes have functions of some lines each.
std::string writeProgram(const std::string& folder) {
    std::string uses;
    std::ofstream(folder + "note.txt") << "note";
    std::ofstream(folder + "logo.bmp") << "BM";
    for (int n = 1; n < classes; ++n) {
        const std::string name = "Part" + std::to_string(n);
        uses += (uses.empty() ? "" : ", ") + name;
        std::ofstream out(folder + name + ".cls");
        out << "Tarnwick Class " << name << "\n\n";
        for (int f = 0; f < 10; ++f) out << "function F" << f << "()\n\t// nothing\nend function\n\n";
        out << "End class\n";
        if (n <= resources) writeResources(folder + name);
    }
    std::ofstream(folder + "main.cls")
        << "Tarnwick Class Main\n\nUses " << uses << "\n\nfunction main()\nend function\nEnd class\n";
    return folder + "main.cls";
}

QWidget* rowsView() {
    return tarn::platform::findWindow(ProjectEditorDlg)->widget == nullptr
               ? nullptr
               : static_cast<QWidget*>(tarn::platform::findWindow(ProjectEditorDlg)->widget)
                     ->findChild<QListView*>()
                     ->viewport();
}

template <class Work>
double timeOf(Work work) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) times.push_back(work());
    return median(times);
}

double makeTool(const std::string& file) {
    return timeOf([&] {
        QElapsedTimer timer;
        timer.start();
        if (!tarn::LOADDEPLIST(file, "/fs", true).error.empty()) std::abort();
        return milliseconds(timer);
    });
}

double untilRows(QElapsedTimer& timer) {
    PaintWatch watch(rowsView());
    untilPainted(watch);
    return milliseconds(timer);
}

double open(const std::string& file) {
    return timeOf([&] {
        tarn::PROJECTCLOSE(ProjectEditorDlg);
        QApplication::processEvents();
        QElapsedTimer timer;
        timer.start();
        tarn::PROJECTOPEN(ProjectEditorDlg, "Program Window", file);
        if (!tarn::IsLoaded(ProjectEditorDlg)) std::abort();
        return untilRows(timer);
    });
}

double refresh() {
    return timeOf([] {
        QElapsedTimer timer;
        timer.start();
        tarn::PROJECTREFRESH(ProjectEditorDlg);
        return untilRows(timer);
    });
}

double fillRows() {
    std::vector<std::string> items;
    for (int n = 0; n < treeRows; ++n)
        tarn::ADDPROJECTITEM({1, "Class <B>Part" + std::to_string(n) + "</B> (part.cls)", "Class", "Part",
                              "/part.cls", "2026-01-01 00:00:00", "class0.bmp", ""},
                             items);
    std::string text;
    for (const std::string& item : items) text += item + "\n";
    return timeOf([&] {
        QElapsedTimer timer;
        timer.start();
        tarn::UPDATEPROJECTWINDOW(ProjectEditorDlg, "/main.cls", text, {});
        return untilRows(timer);
    });
}

double fillTree() {
    QTreeWidget tree;
    tree.resize(400, 600);
    tree.show();
    QApplication::processEvents();
    return timeOf([&] {
        QElapsedTimer timer;
        timer.start();
        tree.clear();
        for (int n = 0; n < treeRows; ++n)
            new QTreeWidgetItem(&tree, {QStringLiteral("Class Part%1 (part.cls)").arg(n)});
        PaintWatch watch(tree.viewport());
        untilPainted(watch);
        return milliseconds(timer);
    });
}

// Nothing if the list lacks the functions of a class.
double completion(const std::string& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    const std::string source = text.str();
    QElapsedTimer timer;
    timer.start();
    const std::string rows = tarn::COMPLETIONROWS({source, file, 6, {}}, "");
    const double time = milliseconds(timer);
    return rows.find("Part49") == std::string::npos ? 0 : time;
}

}  // namespace

int main(int argc, char** argv) {
    tarn::os::setCommandLine(argc, argv);
    char folder[] = "/tmp/tarnwick-program-bench-XXXXXX";
    if (mkdtemp(folder) == nullptr) return 1;
    tarn::SetApplicationResources(tarn::os::executableFolder() + "ide.rcx");
    tarn::DebugStart(1, "bench", "", "", "");
    tarn::REGISTERWINDOWS();
    tarn::Load(tarn::Main);
    if (!tarn::IsLoaded(tarn::Main)) return std::fprintf(stderr, "the main window was not loaded\n"), 1;
    const std::string file = writeProgram(std::string(folder) + "/");
    const double tool = makeTool(file);
    std::vector<Figure> figures{{"programMakeTool", tool}};
    figures.push_back({"programOpen", open(file) - tool});
    figures.push_back({"programRefresh", refresh() - tool});
    figures.push_back({"programRows5000", fillRows()});
    figures.push_back({"treeRows5000", fillTree()});
    figures.push_back({"completionFirst", completion(file)});
    figures.push_back({"completion", timeOf([&] { return completion(file); })});
    print(figures);
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    std::fflush(nullptr);
    std::_Exit(0);
}
