// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the benchmarks of real windows share: waiting for a paint, medians, and figures in Google Benchmark's form, so
// that report.py reads all alike.
#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace bench {

// Notes when a widget has painted.
class PaintWatch : public QObject {
public:
    explicit PaintWatch(QWidget* widget) { widget->installEventFilter(this); }
    bool painted = false;
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) painted = true;
        return false;
    }
};

inline void untilPainted(PaintWatch& watch) {
    QElapsedTimer limit;
    limit.start();
    while (!watch.painted && limit.elapsed() < 2000) QApplication::processEvents();
    QApplication::processEvents();
}

inline double median(std::vector<double> values, double part = 0.5) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(static_cast<double>(values.size() - 1) * part)];
}

inline double milliseconds(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

struct Figure {
    std::string name;
    double milliseconds;
};

inline void print(const std::vector<Figure>& figures) {
    std::printf("{\"benchmarks\": [\n");
    for (std::size_t i = 0; i < figures.size(); i++)
        std::printf(" {\"run_name\": \"%s\", \"aggregate_name\": \"median\", \"real_time\": %.6f, "
                    "\"time_unit\": \"ms\"}%s\n",
                    figures[i].name.c_str(), figures[i].milliseconds, i + 1 < figures.size() ? "," : "");
    std::printf("]}\n");
}

}  // namespace bench
