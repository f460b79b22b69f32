// SPDX-License-Identifier: GPL-3.0-or-later
//
// The door of the library: the one window, which lives as long as the application object.
#include "ide/help/helplibrary.h"
#include "ide/help/window/helpwindow.h"

#include <QApplication>

namespace {

tarn::help::HelpWindow* window = nullptr;
QByteArray problem;

void endWindow() {
    delete window;
    window = nullptr;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) const char*
tarn_show_help(const tarn::help::Request& request) {
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) return "There is no screen.";
    const bool first = window == nullptr;
    if (first) {
        window = new tarn::help::HelpWindow(
            [keep = request.keepPlace](const QString& place) { keep(place.toUtf8().constData()); },
            [choose = request.choosePrinter](const QString& title, tarn::help::PrintTarget& target) {
                return choose(title.toUtf8().constData(), target);
            });
        window->setPlace(QString::fromUtf8(request.place));
        qAddPostRoutine(endWindow);
    }
    problem = window->useFile(QString::fromUtf8(request.file)).toUtf8();
    if (!problem.isEmpty()) return problem.constData();
    window->showTopic(QString::fromUtf8(request.topic));
    window->bringUp();
    return nullptr;
}
