// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/controls/controlpicture.h"

#include "os/paths.h"
#include "platform/qt/controls/widgets.h"
#include "platform/qt/drawing/paintcanvas.h"
#include "platform/qt/drawing/palettes.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/texts.h"
#include "platform/text.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QCache>
#include <QLabel>
#include <QPainter>
#include <QtMath>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <utility>

namespace tarn::platform::qt {

namespace {

constexpr int Kept = 64 * 1024;  // KB
constexpr int LargestSide = 8192;
constexpr qint64 LargeArea = 1 << 20;  // pixels: what is larger is drawn where it is seen alone
constexpr qreal Faint = 0.45;
constexpr int ButtonEdge = 3;

// Lines that change nothing of the look. PICTURE does, and so does what stands in the file, which may change meanwhile.
constexpr std::array<std::string_view, 5> unseen = {"NAME=", "POSITION=", "HINT=", "TABSTOP=", "CANCEL="};

bool isSeen(std::string_view line) {
    return std::none_of(unseen.begin(), unseen.end(),
                        [line](std::string_view name) { return line.starts_with(name); });
}

// What is drawn of the picture, in its pixels.
QRect partOf(const QSize& size, const PixelGrid& grid) {
    const QRect whole(0, 0, qCeil(size.width() * grid.ratio + grid.offset.x()),
                      qCeil(size.height() * grid.ratio + grid.offset.y()));
    if (grid.seen.isNull()) return whole;
    const QRect seen = whole & grid.seen;
    return seen.isEmpty() || qint64{whole.width()} * whole.height() > LargeArea ? seen : whole;
}

// What tells one look from another, in one text.
QByteArray lookOf(std::string_view properties, const QSize& size, const Font& font, const PixelGrid& grid,
                  const QRect& part) {
    QByteArray look;
    look.reserve(static_cast<qsizetype>(properties.size() + font.name.size() + 96));
    const auto number = [&look](qint64 n) { look.append(QByteArray::number(n)).append(' '); };
    for (const qint64 n : {qint64{size.width()}, qint64{size.height()}, qint64(grid.ratio * 1000),
                           qint64(grid.offset.x() * 1000), qint64(grid.offset.y() * 1000), qint64{font.size},
                           qint64{font.bold}, qint64{font.italic}, paletteInForce().cacheKey(),
                           qint64{part.x()}, qint64{part.y()}, qint64{part.width()}, qint64{part.height()}})
        number(n);
    look.append(QApplication::font().key().toUtf8()).append(' ');
    look.append(font.name.data(), static_cast<qsizetype>(font.name.size())).append('\n');
    while (!properties.empty()) {
        const std::size_t end = std::min(properties.find('\n'), properties.size());
        const std::string_view line = properties.substr(0, end);
        if (isSeen(line)) look.append(line.data(), static_cast<qsizetype>(line.size())).append('\n');
        properties.remove_prefix(std::min(end + 1, properties.size()));
    }
    return look;
}

// A line of that name, with its "=".
bool hasLine(std::string_view properties, const std::string& name) {
    return properties.starts_with(name) || properties.find("\n" + name) != std::string_view::npos;
}

// The bars that the control has, be they needed or not.
void showBars(QWidget& widget, const Control& control) {
    const auto show = [&control](QAbstractScrollArea& area) {
        if ((control.scrollBars & 1) != 0) area.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        if ((control.scrollBars & 2) != 0) area.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    };
    if (auto* const area = qobject_cast<QAbstractScrollArea*>(&widget); area != nullptr) show(*area);
}

// A window that is never shown, in the colours of one that the user works in. It stays for the next control, and is not
// deleted, since the toolkit may end before.
QWidget& holder() {
    static QWidget* const widget = new QWidget;
    static qint64 palette = 0;
    QPalette colours = paletteInForce();
    if (palette == colours.cacheKey()) return *widget;
    palette = colours.cacheKey();
    for (int role = 0; role < QPalette::NColorRoles; ++role)
        colours.setBrush(QPalette::Inactive, QPalette::ColorRole(role),
                         colours.brush(QPalette::Active, QPalette::ColorRole(role)));
    widget->setPalette(colours);
    return *widget;
}

bool lacksPicture(const Control& control) {
    return !control.picture.empty() && iconOf(control.picture).isNull();
}

// Stands for a picture that is not there: a crossed box with its name, as much of it as has room.
void paintMissing(QPainter& painter, const QWidget& widget, const QRect& box, const std::string& picture) {
    const QColor line = widget.palette().color(QPalette::Mid),
                 ink = widget.palette().color(QPalette::WindowText);
    painter.setPen(line);
    painter.drawLine(box.topLeft(), box.bottomRight());
    painter.drawLine(box.bottomLeft(), box.topRight());
    paintShape(painter, RECTANGLE_SHAPE, box, line, QColor());
    const QRect room = box.adjusted(2, 1, -2, -1);
    const QString name = shown(paths::fileName(picture));
    painter.setFont(widget.font());
    painter.setPen(ink);
    painter.setClipRect(room);
    painter.drawText(room, Qt::AlignCenter,
                     painter.fontMetrics().elidedText(name, Qt::ElideRight, room.width()));
}

// The widget of the control in a holder, as large and in the state that it has in a window.
Peer* dressed(Control& control, std::string_view properties, const QSize& size, const Font& font) {
    control.position = {0, 0, size.width(), size.height()};
    Peer* const peer = makePeer(control, &holder(), hasLine(properties, "MENU="));
    QWidget& widget = *peer->widget();
    applyFont(widget, control.font, font);
    applyColours(widget, control);
    widget.setEnabled(control.enabled);
    if (auto* const label = qobject_cast<QLabel*>(&widget); label != nullptr && hasLine(properties, "BUDDY="))
        label->setBuddy(&holder());
    if (!hasLine(properties, "RUNNING=")) showBars(widget, control);
    widget.ensurePolished();
    widget.setGeometry(placeOf(control, widget));
    peer->apply(Property::Position);
    peer->catchUp();
    return peer;
}

QPixmap drawn(Control& control, std::string_view properties, const QSize& size, const Font& font,
              const PixelGrid& grid, const QRect& part) {
    const std::string missing = lacksPicture(control) ? std::exchange(control.picture, {}) : std::string();
    Peer* const peer = dressed(control, properties, size, font);
    const std::unique_ptr<QWidget> owned(peer->widget());
    QWidget& widget = *owned;
    QPixmap picture(part.size());
    const qreal ratio = std::max(grid.ratio, 1.0);  // the toolkit knows of no smaller one
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    {
        QPainter painter(&picture);
        painter.translate((grid.offset - part.topLeft()) / ratio);
        painter.scale(grid.ratio / ratio, grid.ratio / ratio);
        if (!control.visible) painter.setOpacity(Faint);
        if (hasLine(properties, "GROUND=")) painter.fillRect(widget.rect(), holder().palette().window());
        widget.render(&painter, QPoint(), QRegion(), QWidget::DrawChildren);
        const int edge = control.type == Type::Bitmapbutton ? ButtonEdge : 0;
        if (!missing.empty())
            paintMissing(painter, widget, widget.rect().adjusted(edge, edge, -edge, -edge), missing);
    }
    peer->release();
    control.widget = nullptr;
    return picture;
}

}  // namespace

ControlPicture controlPicture(std::string_view properties, const QSize& asked, const Font& font,
                              const PixelGrid& grid) {
    static QCache<QByteArray, QPixmap> known(Kept);
    const int most = static_cast<int>(LargestSide / std::max(grid.ratio, 1.0));
    const QSize size = asked.boundedTo({most, most});
    const QRect part = partOf(size, grid);
    if (size.isEmpty() || part.isEmpty()) return {};
    const QByteArray look = lookOf(properties, size, font, grid, part);
    if (const QPixmap* const kept = known.object(look); kept != nullptr) return {*kept, part.topLeft()};
    const std::unique_ptr<Control> control = makeLoose(properties);
    if (control == nullptr) return {};
    const bool missing = lacksPicture(*control);  // one that is missing may come later
    const QPixmap picture = drawn(*control, properties, size, font, grid, part);
    if (missing) return {picture, part.topLeft()};
    const qsizetype cost = qsizetype{picture.width()} * picture.height() * 4 / 1024 + 1;
    known.insert(look, new QPixmap(picture), cost);
    return {picture, part.topLeft()};
}

}  // namespace tarn::platform::qt
