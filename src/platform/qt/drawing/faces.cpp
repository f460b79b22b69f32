// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/drawing/faces.h"

#include "platform/qt/drawing/palettes.h"
#include "platform/qt/texts.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

constexpr int Gap = 2;  // pixels between picture and text, and above and below them

class FaceEngine : public QIconEngine {
public:
    explicit FaceEngine(const PictureSource& face)
        : size_(face.width, face.height), text_(withoutMnemonic(shown(face.text))),
          icon_(iconOfBytes(QByteArray(face.icon.data(), static_cast<qsizetype>(face.icon.size())))) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const QPalette palette = paletteInForce();
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        painter->save();
        painter->translate(rect.topLeft());
        painter->scale(double(rect.width()) / size_.width(), double(rect.height()) / size_.height());
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        QFont font = QApplication::font();
        const QRect room = QRect(QPoint(), size_).adjusted(0, Gap, 0, -Gap);
        const int flags = Qt::AlignHCenter | Qt::AlignBottom | Qt::TextWordWrap;
        // A text that is too wide for the face gets smaller letters.
        while (font.pointSizeF() > 6 && textRect(font, room, flags).width() > room.width())
            font.setPointSizeF(font.pointSizeF() - 0.5);
        const int below = text_.isEmpty() ? 0 : textRect(font, room, flags).height() + Gap;
        painter->setFont(font);
        painter->setPen(palette.color(group, QPalette::ButtonText));
        painter->drawText(room, flags, text_);
        const QRect above = room.adjusted(0, 0, 0, -below);
        if (!icon_.isNull() && above.height() > 0) icon_.paint(painter, above, Qt::AlignCenter, mode);
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }
    // In its own proportions, as large as there is room.
    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override {
        return size_.scaled(size, Qt::KeepAspectRatio);
    }
    QIconEngine* clone() const override { return new FaceEngine(*this); }

private:
    [[nodiscard]] QRect textRect(const QFont& font, const QRect& room, int flags) const {
        return QFontMetrics(font).boundingRect(room, flags, text_);
    }

    QSize size_;
    QString text_;
    QIcon icon_;
};

}  // namespace

QIcon faceOf(const PictureSource& face) {
    return QIcon(new FaceEngine(face));
}

}  // namespace tarn::platform::qt
