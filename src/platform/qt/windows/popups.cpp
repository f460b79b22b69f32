// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/windows/popups.h"

#include "platform/qt/texts.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

void centre(QWidget& widget) {
    QRect place(QPoint(), widget.size());
    place.moveCenter(widget.screen()->availableGeometry().center());
    widget.move(place.topLeft());
}

}  // namespace

ToolProgress::ToolProgress()
    : QWidget(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint), label_(new QLabel(this)),
      stop_(new QPushButton(tr("&Stop"), this)) {
    setObjectName(QStringLiteral("toolprogress"));
    stop_->setObjectName(QStringLiteral("toolstop"));
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(tr("Running ..."));
    label_->setTextFormat(Qt::PlainText);
    auto* bar = new QProgressBar(this);
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    bar->setAccessibleName(tr("Progress"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 12);
    layout->addWidget(label_);
    auto* row = new QHBoxLayout;
    row->addWidget(bar, 1);
    row->addWidget(stop_);
    layout->addLayout(row);
    delay_.setSingleShot(true);
    delay_.setInterval(300);
    connect(&delay_, &QTimer::timeout, this, [this] {
        adjustSize();
        centre(*this);
        show();
        activateWindow();  // the work below takes no keys meanwhile, and Stop is at once under the fingers
        stop_->setFocus();
    });
    connect(stop_, &QPushButton::clicked, this, [this] {
        stopped_ = true;
        stop_->setEnabled(false);
    });
}

void ToolProgress::setText(const std::string& text) {
    if (text.empty()) {
        delay_.stop();
        const bool active = isActiveWindow();
        hide();
        if (active && gone) gone();
        stopped_ = false;
        stop_->setEnabled(true);
        return;
    }
    constexpr int narrow = 360, wide = 720;  // pixels
    const QString line = shown(text);
    label_->setMinimumWidth(std::clamp(fontMetrics().horizontalAdvance(line), narrow, wide));
    label_->setText(fontMetrics().elidedText(line, Qt::ElideMiddle, wide));
    label_->setAccessibleName(line);
    if (!isVisible() && !delay_.isActive()) delay_.start();
}

void ToolProgress::closeEvent(QCloseEvent* event) {
    event->ignore();
    stop_->click();
}

void ToolProgress::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter)
        stop_->click();
    else
        QWidget::keyPressEvent(event);
}

}  // namespace tarn::platform::qt
