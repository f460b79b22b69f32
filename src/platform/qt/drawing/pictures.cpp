// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/drawing/pictures.h"

#include "os/files.h"
#include "os/paths.h"
#include "platform/model/pictures.h"
#include "platform/qt/drawing/faces.h"
#include "platform/qt/drawing/palettes.h"
#include "platform/qt/texts.h"
#include "platform/resources/resource.h"
#include "platform/windowing.h"

#include <QApplication>
#include <QBuffer>
#include <QIconEngine>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <algorithm>
#include <map>

namespace tarn::platform::qt {

namespace {

bool isSvg(const QByteArray& bytes) {
    return bytes.left(512).contains("<svg");
}

QByteArray qtBytes(const std::string& bytes) {
    return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

QByteArray fileBytes(const std::string& file) {
    std::string bytes;
    if (file.empty() || os::readFile(file, bytes) != os::FileError::None) return {};
    return qtBytes(bytes);
}

std::string withSvg(const std::string& file) {
    return std::string(paths::withoutExtension(file)) + ".svg";
}

// Bitmaps have no transparency of their own: pure magenta stands for it.
QImage withoutMagenta(const QImage& image) {
    if (image.isNull() || image.hasAlphaChannel()) return image;
    QImage result = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < result.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(result.scanLine(y));
        std::replace(line, line + result.width(), qRgb(255, 0, 255), qRgba(0, 0, 0, 0));
    }
    return result;
}

// Draws SVG text, with `currentColor` being the text colour of the palette in force.
class SvgEngine : public QIconEngine {
public:
    explicit SvgEngine(QByteArray bytes)
        : bytes_(std::move(bytes)), symbolic_(bytes_.contains("currentColor")),
          coloured_(!symbolic_ || bytes_.contains("=\"#")), key_(qHash(bytes_)) {
        const Picture size = measuredPicture({bytes_.constData(), static_cast<std::size_t>(bytes_.size())});
        own_ = {size.width, size.height};
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const qreal ratio = painter->device() != nullptr ? painter->device()->devicePixelRatioF() : 1.0;
        painter->drawPixmap(rect, scaledPixmap(rect.size() * ratio, mode, state, 1.0));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1.0);
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal) override {
        const QColor colour = colourOf(mode);
        const QString key = QStringLiteral("tarn-svg-%1-%2-%3-%4-%5")
                                .arg(key_)
                                .arg(size.width())
                                .arg(size.height())
                                .arg(colour.rgba())
                                .arg(int(mode));
        QPixmap pixmap;
        if (QPixmapCache::find(key, &pixmap)) return pixmap;
        pixmap = draw(size, colour, mode);
        QPixmapCache::insert(key, pixmap);
        return pixmap;
    }

    // As large as there is room, in its own proportions.
    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override {
        return own_.isEmpty() ? size : own_.scaled(size, Qt::KeepAspectRatio);
    }

    QIconEngine* clone() const override { return new SvgEngine(*this); }

private:
    // A picture with colours of its own fades as a whole when it is disabled.
    [[nodiscard]] QColor colourOf(QIcon::Mode mode) const {
        const QPalette palette = paletteInForce();
        if (mode == QIcon::Disabled && !coloured_)
            return palette.color(QPalette::Disabled, QPalette::ButtonText);
        if (mode == QIcon::Selected) return palette.color(QPalette::HighlightedText);
        return palette.color(QPalette::Active, QPalette::ButtonText);
    }

    QPixmap draw(const QSize& size, const QColor& colour, QIcon::Mode mode) const {
        QByteArray text = bytes_;
        if (symbolic_) text.replace("currentColor", colour.name().toLatin1());
        QSvgRenderer renderer(text);
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        if (coloured_ && mode == QIcon::Disabled) painter.setOpacity(0.4);
        renderer.render(&painter);
        return pixmap;
    }

    QByteArray bytes_;
    QSize own_;
    bool symbolic_, coloured_;
    std::size_t key_;
};

// The largest of the pictures that a file holds; an icon has several.
QImage imageOf(const QByteArray& bytes) {
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    QImage largest = reader.read();
    while (reader.jumpToNextImage()) {
        const QImage next = reader.read();
        if (next.isNull()) break;
        if (next.width() > largest.width()) largest = next;
    }
    return withoutMagenta(largest);
}

}  // namespace

QIcon iconOfBytes(const QByteArray& bytes) {
    if (bytes.isEmpty()) return {};
    if (isSvg(bytes)) return QIcon(new SvgEngine(bytes));
    const QImage image = imageOf(bytes);
    return image.isNull() ? QIcon() : QIcon(QPixmap::fromImage(image));
}

QIcon iconOf(const std::string& picture) {
    static std::map<std::string, QIcon> known;
    if (picture.empty()) return {};
    if (const auto found = known.find(picture); found != known.end()) return found->second;
    const PictureSource* const source = pictureSource(picture);
    const QIcon icon = source == nullptr ? iconOfBytes(qtBytes(PictureBytes(picture).value))
                       : source->face    ? faceOf(*source)
                                         : iconOfBytes(qtBytes(source->bytes));
    if (!icon.isNull()) known[picture] = icon;  // one that is missing may come later
    return icon;
}

QPixmap pictureScaled(const std::string& picture, const QSize& size, qreal ratio) {
    const QIcon icon = iconOf(picture);
    if (icon.isNull() || size.isEmpty()) return {};
    const QSize pixels = (QSizeF(size) * ratio).toSize();
    QPixmap pixmap = icon.pixmap(pixels, 1.0);
    if (pixmap.size() != pixels)
        pixmap = pixmap.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

std::string encodedPicture(const std::string& picture, const std::string& format) {
    const Picture size = LoadPicture(picture).value;
    QImage image = pictureScaled(picture, {size.width, size.height}, 1.0).toImage();
    if (image.isNull()) return {};
    if (format == "BMP") {  // which has no transparency
        QImage ground(image.size(), QImage::Format_RGB32);
        ground.fill(qRgb(255, 0, 255));
        QPainter(&ground).drawImage(0, 0, image);
        image = ground;
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, format.c_str())) return {};
    return buffer.data().toStdString();
}

QSize measuredSize(std::string_view bytes) {
    return imageOf(QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size()))).size();
}

QIcon iconOfFile(const std::string& file) {
    const QByteArray sharp = fileBytes(withSvg(file));
    if (isSvg(sharp)) return QIcon(new SvgEngine(sharp));
    const QByteArray bytes = fileBytes(file);
    if (isSvg(bytes)) return QIcon(new SvgEngine(bytes));
    // The file's own reader knows of the several sizes that an icon file holds.
    return bytes.isEmpty() ? QIcon() : QIcon(shown(file));
}

}  // namespace tarn::platform::qt
