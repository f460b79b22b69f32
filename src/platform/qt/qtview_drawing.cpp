// SPDX-License-Identifier: Apache-2.0
//
// The view's drawing, dragging, pictures, printing and clipboard.
#include "platform/model/drawscale.h"
#include "platform/qt/controls/widgets.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/drawing/printing.h"
#include "platform/qt/drawing/surface.h"
#include "platform/qt/input/mouse.h"
#include "platform/qt/input/tracker.h"
#include "platform/qt/input/xclipboard.h"
#include "platform/qt/qtview.h"
#include "platform/qt/texts.h"
#include "platform/qt/windows/frame.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>

#include <utility>

namespace tarn::platform::qt {

namespace {

// What is drawn on; null for a control that has no picture of its own.
SurfaceWidget* surfaceOf(Control& control) {
    if (isWindowType(control.type)) {
        Frame* const frame = frameOf(static_cast<Window&>(control));
        return frame == nullptr ? nullptr : &frame->client();
    }
    const Peer* const peer = peerOf(control);
    return peer == nullptr ? nullptr : dynamic_cast<SurfaceWidget*>(peer->widget());
}

}  // namespace

std::unique_ptr<Canvas> QtView::canvas(Control& control) {
    SurfaceWidget* const surface = surfaceOf(control);
    return surface == nullptr ? nullptr : surface->canvas(drawLook(control));
}

void QtView::wipe(Control& control) {
    if (SurfaceWidget* const surface = surfaceOf(control); surface != nullptr) surface->wipe();
}

Rect QtView::track(Window& window, Track track) {
    Frame* const frame = frameOf(window);
    if (frame == nullptr || !QGuiApplication::mouseButtons().testFlag(Qt::LeftButton)) return track.start;
    const QPoint at = frame->client().mapFromGlobal(lastPress());
    const int scale = drawScale(window);
    track.pressed = onDrawing({at.x(), at.y()}, scale);
    Tracker tracker(frame->client(), track, dragGuides(), scale);
    Tracker* const outer = std::exchange(tracking_, &tracker);
    loop([&] { return tracker.done(); });
    tracking_ = outer;
    return tracker.result();
}

Picture QtView::measured(std::string_view bytes) {
    const QSize size = measuredSize(bytes);
    return {size.width(), size.height(), 0};
}

std::string QtView::encoded(const std::string& picture, const std::string& extension) {
    return encodedPicture(picture, extension);
}

std::vector<std::string> QtView::printers() {
    return qt::printers();
}

PrinterStatus QtView::printerStatus(const std::string& printer) {
    return qt::printerStatus(printer);
}

Paper QtView::paper(const std::string& printer) {
    return paperOf(printer);
}

std::unique_ptr<Canvas> QtView::startDocument(const std::string& printer, const std::string& document,
                                              int copies) {
    return qt::startDocument(printer, document, copies);
}

std::string QtView::clipboard() {
    if (QGuiApplication::platformName() == u"xcb" && !QGuiApplication::clipboard()->ownsClipboard()) {
        // One more byte tells that there were more.
        if (auto text = foreignClipboard(LargestText + 1)) return *text;
    }
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    if (data == nullptr) return {};
    const QString bytes = QString::fromLatin1(BytesType);
    return data->hasFormat(bytes) ? data->data(bytes).toStdString() : data->text().toStdString();
}

// The bytes are for this program's own texts; other programs get a text whose lines end as the desktop's do.
void QtView::setClipboard(std::string_view text) {
    auto* data = new QMimeData;
    data->setText(shown(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    data->setData(QString::fromLatin1(BytesType),
                  QByteArray(text.data(), static_cast<qsizetype>(text.size())));
    QGuiApplication::clipboard()->setMimeData(data);
}

}  // namespace tarn::platform::qt
