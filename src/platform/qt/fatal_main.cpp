// SPDX-License-Identifier: Apache-2.0
//
// tarnwick-fatal TITLE TEXT: shows a plain message box with one button and waits until it is closed. The
// kernel starts it when a program has failed so badly that its own windows cannot be trusted. Exit code 2
// without both arguments.
#include <QApplication>
#include <QMessageBox>
#include <QString>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 3) return 2;
    QMessageBox box;
    box.setIcon(QMessageBox::Critical);
    box.setWindowTitle(arguments[1]);
    box.setTextFormat(Qt::PlainText);
    box.setText(arguments[2]);
    box.setStandardButtons(QMessageBox::Ok);
    box.setWindowFlag(Qt::WindowStaysOnTopHint);
    box.exec();
    return 0;
}
