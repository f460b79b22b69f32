// SPDX-License-Identifier: GPL-3.0-or-later
//
// edit_bench RCX: the Code window with 4,000,000 bytes: opening, and key to paint at its end, in many lines and in one;
// the peer is QPlainTextEdit with the same text.
#include "paint_watch.h"

#include "kernel/windows/windowing.h"
#include "library/source/symbols.h"
#include "platform/model/model.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QPlainTextEdit>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace bench;

std::string sourceText(std::size_t size) {
    const std::string line =
        "    if count > 0 then result := result + STR(count) // the sum of \"all\" counts\r\n";
    std::string text;
    while (text.size() + line.size() <= size) text += line;
    text.resize(size, ' ');
    return text;
}

// Milliseconds from a key press to its paint, 95 of 100.
double keyToPaint(QAbstractScrollArea* area) {
    PaintWatch watch(area->viewport());
    std::vector<double> times;
    area->setFocus();
    for (int i = 0; i < 220; i++) {
        QApplication::processEvents();
        watch.painted = false;
        QElapsedTimer timer;
        timer.start();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, "x");
        QApplication::sendEvent(area, &press);
        while (!watch.painted && timer.elapsed() < 2000) QApplication::processEvents();
        if (i >= 20) times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    return median(times, 0.95);
}

double openTime(QAbstractScrollArea* area, const std::function<void()>& open) {
    std::vector<double> times;
    PaintWatch watch(area->viewport());
    for (int i = 0; i < 9; i++) {
        watch.painted = false;
        QElapsedTimer timer;
        timer.start();
        open();
        untilPainted(watch);
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    return median(times);
}

void toEnd(QAbstractScrollArea* area) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_End, Qt::ControlModifier);
    QApplication::sendEvent(area, &press);
}

}  // namespace

int main(int, char** argv) {
    const std::string large = sourceText(4000000), small = sourceText(4000);
    tarn::platform::SetApplicationResources(argv[1]);
    const tarn::Object window("SDIEdit");
    tarn::Load(window);
    tarn::SetTokens(window, tarn::MAKETOKENSTR(argv[2], ".cls"));
    tarn::Show(window, false);
    tarn::DoEvents();
    auto* widget = static_cast<QWidget*>(tarn::platform::findWindow(window)->widget);
    auto* area = widget == nullptr ? nullptr : qobject_cast<QAbstractScrollArea*>(widget);
    if (widget != nullptr && area == nullptr) area = widget->findChild<QAbstractScrollArea*>();
    if (area == nullptr) return std::fprintf(stderr, "the Code window has no edit area\n"), 1;
    std::vector<Figure> figures;
    figures.push_back({"openSmall", openTime(area, [&] { tarn::SetText(window, small); })});
    figures.push_back({"openLarge", openTime(area, [&] { tarn::SetText(window, large); })});
    toEnd(area);
    figures.push_back({"keyToPaint", keyToPaint(area)});
    tarn::SetLooks(window, tarn::LOOK_LINE | tarn::LOOK_BRACKETS | tarn::LOOK_FOLDS | tarn::LOOK_CHANGES);
    tarn::SetBlocks(window,
                    "any function record union if loop select\nouter function\nend end\ncomment //\n");
    for (int i = 0; i < 100; ++i) QApplication::processEvents();
    figures.push_back({"keyToPaintWithLooks", keyToPaint(area)});
    const std::string endless(4000000, 'x');
    figures.push_back({"openEndless", openTime(area, [&] { tarn::SetText(window, endless); })});
    figures.push_back({"endlessKeyToPaintStart", keyToPaint(area)});
    tarn::SetSelection(window, 2000000, 0);
    figures.push_back({"endlessKeyToPaintMiddle", keyToPaint(area)});
    toEnd(area);
    figures.push_back({"endlessKeyToPaintEnd", keyToPaint(area)});

    QPlainTextEdit plain;
    plain.resize(widget->size());
    plain.show();
    QApplication::setActiveWindow(&plain);
    figures.push_back(
        {"plainOpenLarge", openTime(&plain, [&] { plain.setPlainText(QString::fromStdString(large)); })});
    toEnd(&plain);
    figures.push_back({"plainKeyToPaint", keyToPaint(&plain)});
    print(figures);
    return 0;
}
