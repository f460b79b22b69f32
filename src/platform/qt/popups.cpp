// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/popups.h"

#include "platform/qt/pictures.h"
#include "platform/qt/texts.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

constexpr int Margin = 36;  // pixels between the window's edge and the lines
constexpr int Bands = 4;    // each line has a quarter of the height inside

QFont biggestFont(const QString& text, const QRect& band) {
    QFont font(QStringLiteral("Arial"));
    font.setStyleHint(QFont::SansSerif);
    font.setBold(true);
    font.setItalic(true);
    int low = 4, high = std::max(band.height(), 5);
    while (low < high) {
        const int size = (low + high + 1) / 2;
        font.setPixelSize(size);
        const QFontMetrics metrics(font);
        const bool fits =
            metrics.height() <= band.height() && metrics.horizontalAdvance(text) <= band.width();
        if (fits)
            low = size;
        else
            high = size - 1;
    }
    font.setPixelSize(low);
    return font;
}

void drawLine(QPainter& painter, const QString& text, const QRect& band) {
    painter.setFont(biggestFont(text, band));
    painter.setPen(QColor(60, 50, 10));
    for (int shift = 1; shift <= 4; ++shift)
        painter.drawText(band.translated(shift, shift), Qt::AlignLeft, text);
    painter.setPen(QColor(240, 170, 50));
    painter.drawText(band, Qt::AlignLeft, text);
}

void centre(QWidget& widget) {
    QRect place(QPoint(), widget.size());
    place.moveCenter(widget.screen()->availableGeometry().center());
    widget.move(place.topLeft());
}

}  // namespace

Splash::Splash(const std::string& picture, const std::vector<std::string>& lines)
    // A window of the splash kind would get no focus, and so no key that ends its wait.
    : QWidget(nullptr, Qt::Dialog | Qt::FramelessWindowHint), picture_(picture) {
    setObjectName(QStringLiteral("splash"));
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_QuitOnClose, false);
    for (const auto& line : lines) lines_ << shown(line);
    pixmap_ = pictureOfFile(picture_, devicePixelRatioF());
    setWindowTitle(lines_.value(0));
    setAccessibleName(lines_.join(u' '));
    setFixedSize(pixmap_.isNull() ? QSize(480, 300) : pixmap_.deviceIndependentSize().toSize());
    centre(*this);
}

void Splash::paintEvent(QPaintEvent*) {
    if (!qFuzzyCompare(pixmap_.devicePixelRatio(), devicePixelRatioF()) && !pixmap_.isNull())
        pixmap_ = pictureOfFile(picture_, devicePixelRatioF());
    QPainter painter(this);
    if (pixmap_.isNull())
        painter.fillRect(rect(), QColor(29, 53, 87));
    else
        painter.drawPixmap(0, 0, pixmap_);
    const QRect inner = rect().adjusted(Margin, Margin, -Margin, -Margin);
    const int height = inner.height() / Bands;
    for (int i = 0; i < static_cast<int>(lines_.size()) && i < Bands; ++i)
        drawLine(painter, lines_[i], QRect(inner.left(), inner.top() + i * height, inner.width(), height));
}

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
