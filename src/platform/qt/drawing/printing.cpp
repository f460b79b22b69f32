// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/drawing/printing.h"

#include "os/files.h"
#include "os/paths.h"
#include "platform/qt/drawing/paintcanvas.h"
#include "platform/qt/texts.h"

#include <QPageLayout>
#include <QPrinter>
#include <QPrinterInfo>
#include <QTemporaryFile>

#include <algorithm>
#include <map>

namespace tarn::platform::qt {

namespace {

constexpr char FilePrinter[] = "Print to file";
constexpr int FileDpi = 600;
constexpr double FileMargin = 15;  // millimetres
constexpr int ScreenDpi = 96;      // for which a line is one dot wide

std::map<std::string, std::unique_ptr<QPrinter>>& known() {
    static std::map<std::string, std::unique_ptr<QPrinter>> all;
    return all;
}

std::unique_ptr<QPrinter> make(const std::string& name) {
    if (name != FilePrinter)
        return std::make_unique<QPrinter>(QPrinterInfo::printerInfo(shown(name)), QPrinter::HighResolution);
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer->setOutputFormat(QPrinter::PdfFormat);
    printer->setResolution(FileDpi);
    printer->setPageMargins({FileMargin, FileMargin, FileMargin, FileMargin}, QPageLayout::Millimeter);
    return printer;
}

QPrinter& printerOf(const std::string& name) {
    std::unique_ptr<QPrinter>& one = known()[name];
    if (one == nullptr) one = make(name);
    return *one;
}

class PrinterCanvas : public PaintCanvas {
public:
    explicit PrinterCanvas(std::string name)
        : PaintCanvas(QColor(Qt::black), std::max(1, printerOf(name).resolution() / ScreenDpi)),
          name_(std::move(name)) {
        painter_.begin(&printerOf(name_));
    }
    ~PrinterCanvas() override { PrinterCanvas::discard(); }
    [[nodiscard]] bool begun() const { return painter_.isActive(); }
    bool newPage() override { return painter_.isActive() && printerOf(name_).newPage(); }
    bool finish() override {
        if (!painter_.isActive()) return false;
        const bool ended = painter_.end() && printerOf(name_).printerState() != QPrinter::Error;
        known().erase(name_);
        return ended;
    }
    void discard() override {
        if (!painter_.isActive()) return;
        printerOf(name_).abort();
        painter_.end();
        known().erase(name_);
    }

private:
    std::string name_;
};

// The pages are made in a file of their own, which takes the place of the document's at the end.
class FileCanvas : public PrinterCanvas {
public:
    FileCanvas(std::string name, std::string document, std::unique_ptr<QTemporaryFile> pages)
        : PrinterCanvas(std::move(name)), document_(std::move(document)), pages_(std::move(pages)) {}
    bool finish() override {
        std::string bytes;
        return PrinterCanvas::finish() &&
               os::readFile(pages_->fileName().toStdString(), bytes) == os::FileError::None &&
               !bytes.empty() && os::saveFile(document_, bytes, os::Durability::Unsynced).ok();
    }

private:
    std::string document_;
    std::unique_ptr<QTemporaryFile> pages_;
};

std::unique_ptr<PrinterCanvas> startFile(const std::string& name, const std::string& document) {
    const std::string file = os::native(document) + ".pdf", folder(paths::folder(file));
    auto pages = std::make_unique<QTemporaryFile>();
    if (document.empty() || (!folder.empty() && !os::infoOf(folder).folder) || !pages->open()) return nullptr;
    printerOf(name).setOutputFileName(pages->fileName());
    return std::make_unique<FileCanvas>(name, file, std::move(pages));
}

}  // namespace

std::vector<std::string> printers() {
    std::vector<std::string> names;
    const QString first = QPrinterInfo::defaultPrinterName();
    if (!first.isEmpty()) names.push_back(first.toStdString());
    for (const QString& name : QPrinterInfo::availablePrinterNames())
        if (name != first) names.push_back(name.toStdString());
    names.emplace_back(FilePrinter);
    return names;
}

PrinterStatus printerStatus(const std::string& printer) {
    if (printer == FilePrinter) return PRINTER_READY;
    const QPrinterInfo info = QPrinterInfo::printerInfo(shown(printer));
    if (info.isNull()) return PRINTER_STOPPED;
    switch (info.state()) {
    case QPrinter::Active: return PRINTER_BUSY;
    case QPrinter::Aborted:
    case QPrinter::Error: return PRINTER_STOPPED;
    default: return PRINTER_READY;
    }
}

Paper paperOf(const std::string& name) {
    QPrinter& printer = printerOf(name);
    const int dpi = printer.resolution();
    const QPageLayout layout = printer.pageLayout();
    const QRect inside = layout.paintRectPixels(dpi), sheet = layout.fullRectPixels(dpi);
    return {inside.width(), inside.height(), sheet.width(),         sheet.height(),
            inside.x(),     inside.y(),      printer.logicalDpiX(), printer.logicalDpiY()};
}

QFontMetrics printerMetrics(const std::string& printer, const QFont& font) {
    return {font, &printerOf(printer)};
}

std::unique_ptr<Canvas> startDocument(const std::string& name, const std::string& document, int copies) {
    QPrinter& printer = printerOf(name);
    printer.setDocName(shown(document));
    std::unique_ptr<PrinterCanvas> canvas;
    if (name == FilePrinter) {
        canvas = startFile(name, document);
    } else {
        printer.setCopyCount(copies);
        canvas = std::make_unique<PrinterCanvas>(name);
    }
    if (canvas == nullptr || !canvas->begun()) return known().erase(name), nullptr;
    return canvas;
}

}  // namespace tarn::platform::qt
