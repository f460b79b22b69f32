// SPDX-License-Identifier: Apache-2.0
//
// The printers of the system, and one that prints to a PDF file and is always there. What is known of a printer
// is asked for once and kept until its document has ended.
#pragma once

#include "platform/model/canvas.h"

#include <QFont>
#include <QFontMetrics>

#include <memory>
#include <string>
#include <vector>

namespace tarn::platform::qt {

std::vector<std::string> printers();  // the default one first, the one to a file last
PrinterStatus printerStatus(const std::string& printer);
Paper paperOf(const std::string& printer);
QFontMetrics printerMetrics(const std::string& printer, const QFont& font);
// Null if the printer does not begin. A document without a name goes to no file, and neither does one for a folder that
// is not there; a file is made when the document ends, whole or not at all.
std::unique_ptr<Canvas> startDocument(const std::string& printer, const std::string& document, int copies);

}  // namespace tarn::platform::qt
