// SPDX-License-Identifier: GPL-3.0-or-later
//
// The status bar of an edit window: caret, mode, modified mark and size, painted without any layout so that a
// key costs one small repaint.
#pragma once

#include <QStringList>
#include <QWidget>

#include <functional>

namespace tarn::platform::qt {

class StatusBar : public QWidget {
public:
    explicit StatusBar(QWidget* parent);
    void setParts(const QStringList& parts);  // from left to right; the last stands at the right edge
    [[nodiscard]] const QStringList& parts() const { return parts_; }
    [[nodiscard]] QSize sizeHint() const override;
    std::function<void(QPoint)> rightClicked;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    QStringList parts_;
};

}  // namespace tarn::platform::qt
