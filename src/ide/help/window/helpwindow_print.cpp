// SPDX-License-Identifier: GPL-3.0-or-later
//
// A page of the help on paper, or as a file.
#include "ide/help/window/helpwindow.h"

#include <QFile>
#include <QMessageBox>
#include <QPageRanges>
#include <QPdfWriter>
#include <QPrinter>
#include <QSaveFile>

#include <algorithm>

namespace tarn::help {
namespace {

constexpr int MostPages = 1000000;

QPageRanges rangesOf(const PrintTarget& target) {
    QPageRanges ranges;
    if (target.from > 0 || target.to > 0)
        ranges.addRange(std::max(target.from, 1),
                        target.to > 0 ? std::max(target.to, target.from) : MostPages);
    return ranges;
}

// Written whole or not at all where the folder can be written; false if it could not be.
bool printToFile(const Page& page, const QString& file, const PrintTarget& target) {
    QSaveFile out(file);
    out.setDirectWriteFallback(true);  // a file may be writable where its folder is not
    if (!out.open(QIODevice::WriteOnly)) return false;
    {
        QPdfWriter writer(&out);  // ends the document when it goes
        writer.setTitle(page.documentTitle());
        writer.setPageRanges(rangesOf(target));
        page.printable()->print(&writer);
    }
    return out.commit();
}

}  // namespace

void HelpWindow::print() {
    PrintTarget target;
    if (!choosePrinter_(page_->documentTitle(), target)) return;
    if (!target.file.empty()) {
        const QString file = QFile::decodeName(QByteArray::fromStdString(target.file));
        if (!printToFile(*page_, file, target))
            tellNotPrinted(tr("The file '%1' could not be written.").arg(file));
        return;
    }
    QPrinter printer(QPrinter::HighResolution);
    const QString name = QString::fromStdString(target.printer);
    printer.setPrinterName(name);
    printer.setDocName(page_->documentTitle());
    printer.setCopyCount(target.copies);
    printer.setPageRanges(rangesOf(target));
    page_->printable()->print(&printer);
    if (!printer.isValid() || printer.printerState() == QPrinter::Error)
        tellNotPrinted(tr("The printer '%1' could not print.").arg(name));
}

void HelpWindow::tellNotPrinted(const QString& where) {
    QMessageBox::warning(this, tr("Print"),
                         where + u'\n' +
                             tr("Choose another place, or make room on the disk, and try again."));
}

}  // namespace tarn::help
