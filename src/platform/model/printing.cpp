// SPDX-License-Identifier: Apache-2.0
//
// Printers as objects, and documents that are printed.
#include "platform/model/access_internal.h"
#include "platform/model/graph_internal.h"
#include "platform/operations/drawing.h"
#include "platform/operations/printjob.h"

#include <algorithm>

namespace tarn::platform {

namespace {

// The printer of an object; a code if it is none.
struct Printer {
    Control* control = nullptr;
    Code code = Ok;
    explicit Printer(const Object& object) : control(findControl(object)) {
        if (control == nullptr)
            code = missing(object);
        else if (control->type != Type::Printer)
            code = ControlInvalid;
    }
};

Answer<int> askPaper(const Object& object, int Paper::*part) {
    const Printer printer(object);
    return printer.code != Ok ? Answer<int>{0, printer.code}
                              : Answer<int>{view().paper(printer.control->name).*part, Ok};
}

}  // namespace

std::vector<Object> PrinterList() {
    std::vector<Object> list;
    for (const std::string& name : view().printers()) list.push_back(printerObject(name));
    return list;
}

Code StartPrint(const Object& object) {
    return StartPrint(object, PrintJob());
}

Code StartPrint(const Object& object, const PrintJob& job) {
    const Printer printer(object);
    if (printer.code != Ok) return printer.code;
    Control& control = *printer.control;
    if (control.graph != nullptr) return PrinterFailed;
    if (view().printerStatus(control.name) == PRINTER_STOPPED) return PrinterNotReady;
    std::unique_ptr<Canvas> canvas = view().startDocument(control.name, control.caption, job.copies);
    if (canvas == nullptr) return PrinterFailed;
    beginGraph(control, std::move(canvas)).job = job;
    beginPage(control);
    return Ok;
}

Code CancelPrint(const Object& object) {
    const Printer printer(object);
    if (printer.code != Ok) return printer.code;
    if (printer.control->graph == nullptr) return PrintNotStarted;
    if (printer.control->graph->canvas != nullptr) printer.control->graph->canvas->discard();
    endGraph(*printer.control);
    return Ok;
}

Code EndPrint(const Object& object) {
    const Printer printer(object);
    if (printer.code != Ok) return printer.code;
    if (printer.control->graph == nullptr) return PrintNotStarted;
    return endGraph(*printer.control) ? Ok : PrinterFailed;
}

Code NewPage(const Object& object) {
    const Printer printer(object);
    if (printer.code != Ok) return printer.code;
    if (printer.control->graph == nullptr) return PrintNotStarted;
    beginPage(*printer.control);
    return printer.control->graph->failed ? PrinterFailed : Ok;
}

Answer<int> GetPage(const Object& object) {
    const Printer printer(object);
    const bool started = printer.code == Ok && printer.control->graph != nullptr;
    return {started ? printer.control->graph->page : 0, printer.code};
}

Answer<int> GetPrinterStatus(const Object& object) {
    const Printer printer(object);
    return {printer.code == Ok ? view().printerStatus(printer.control->name) : 0, printer.code};
}

Answer<int> GetPhysicalWidth(const Object& printer) {
    return askPaper(printer, &Paper::sheetWidth);
}
Answer<int> GetPhysicalHeight(const Object& printer) {
    return askPaper(printer, &Paper::sheetHeight);
}
Answer<int> GetPhysicalOffsetX(const Object& printer) {
    return askPaper(printer, &Paper::offsetX);
}
Answer<int> GetPhysicalOffsetY(const Object& printer) {
    return askPaper(printer, &Paper::offsetY);
}

}  // namespace tarn::platform
