// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/edit/statusbar.h"

#include "platform/qt/edit/colours.h"

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace tarn::platform::qt {

namespace {
constexpr int Pad = 10;   // on both sides of a part
constexpr int Cell = 15;  // characters that a part has room for
constexpr int Fixed = 3;  // parts that keep their place; those behind are as wide as they need
}  // namespace

StatusBar::StatusBar(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("statusbar"));
    setAccessibleName(tr("Status"));
}

QSize StatusBar::sizeHint() const {
    return {100, fontMetrics().height() + 8};
}

void StatusBar::setParts(const QStringList& parts) {
    if (parts == parts_) return;
    parts_ = parts;
    setAccessibleDescription(parts.join(QStringLiteral(", ")));
    update();
}

void StatusBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor ink = palette().color(QPalette::WindowText);
    const QColor line = mixed(palette().color(QPalette::Window), ink, 0.2);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    painter.setPen(line);
    painter.drawLine(0, 0, width(), 0);
    const int cell = fontMetrics().averageCharWidth() * Cell;
    int x = 0;
    for (qsizetype i = 0; i < parts_.size(); ++i) {
        const bool last = i + 1 == parts_.size();
        const int wide = fontMetrics().horizontalAdvance(parts_[i]) + 2 * Pad;
        if (i >= Fixed && !last && parts_[i].isEmpty()) continue;
        const int w = i >= Fixed ? wide : std::max(wide, i == 0 ? cell * 2 : cell);
        const QRect place =
            last ? QRect(std::max(x, width() - wide), 1, wide, height() - 1) : QRect(x, 1, w, height() - 1);
        painter.setPen(ink);
        painter.drawText(place.adjusted(Pad, 0, -Pad, 0), Qt::AlignVCenter | Qt::AlignLeft, parts_[i]);
        if (last) break;
        x += w;
        painter.setPen(line);
        painter.drawLine(x, 5, x, height() - 5);
    }
}

void StatusBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton && rightClicked) rightClicked(event->pos());
}

void StatusBar::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    if (event->reason() == QContextMenuEvent::Keyboard && rightClicked) rightClicked(event->pos());
}

}  // namespace tarn::platform::qt
