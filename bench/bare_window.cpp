// SPDX-License-Identifier: Apache-2.0
// The floor of a start: a Qt program that shows one empty window.
#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QMainWindow window;
    window.setWindowTitle("Bare window");
    window.resize(640, 100);
    window.show();
    return QApplication::exec();
}
