// SPDX-License-Identifier: Apache-2.0
//
// The steps that the modules of the XML reader are made of.
#include "kernel/data/elements.h"
#include "kernel/data/xml/xml_reader_internal.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/sets.h"

namespace tarn {

ErrorRecord XmlFailure(std::int32_t code, std::string_view message) {
    return {code, 0, 0, std::string(message.empty() ? std::string_view(ErrorText(code)) : message)};
}

void XmlReport(XmlPass& pass, std::int32_t code, std::string_view message) {
    if (IsMemoryError(code))
        ReportError(pass.memory, code, pass.scan.lineNumber(), pass.scan.position(), message);
    ReportError(pass.error, code, pass.scan.lineNumber(), pass.scan.position(), message);
}

void XmlNoteLost(XmlPass& pass, std::string_view what, std::string_view element) {
    if (pass.lost.code != 0) return;
    const std::string message = std::string(what).append(" of element '").append(element);
    ReportError(pass.lost, ERR_XML_DATA, pass.scan.lineNumber(), pass.scan.position(),
                message + "' cannot be loaded, fields are expected there");
}

void XmlNoteFinding(XmlPass& pass, ScanStatus status) {
    pass.scan.reportStatus(status, pass.error);
    const std::int64_t done = pass.scan.bytesRead();
    if (done - pass.shown < ProgressStep) return;
    pass.shown = done;
    if (!Progress(done, pass.size)) pass.stopped = true;
}

bool XmlIsUnopened(const void* value, Kind kind) {
    if (kind != KindList && kind != KindTable) return false;
    return value != nullptr && KindOf(value) == kind && IsUnopenedFile(value, kind);
}

void XmlReportSymbol(XmlPass& pass) {
    OwnedSet none;
    SetInit(none.get(), 0, MaxSymbols);
    pass.scan.checkSymbol(&pass.tables.symbols, pass.scan.symbol(), none.get(), pass.error);
    TakeError();
}

bool XmlExpect(XmlPass& pass, std::int32_t symbol) {
    if (!XmlCheck(pass, {symbol})) return false;
    XmlNext(pass);
    return true;
}

bool XmlNameFollows(const XmlPass& pass) {
    return !isByte(pass.scan.character(), ByteBlank) && pass.scan.character() != LineEnd;
}

bool XmlSkipPast(XmlPass& pass, std::string_view mark) {
    for (;;) {
        std::string_view rest = pass.scan.remainder();
        rest = rest.substr(0, rest.find(static_cast<char>(EndOfFileMark)));
        const std::size_t found = rest.find(mark);
        if (found != std::string_view::npos) {
            pass.scan.skipBytes(static_cast<std::int32_t>(found + mark.size()));
            return true;
        }
        pass.scan.skipBytes(static_cast<std::int32_t>(rest.size()));
        if (pass.scan.character() != LineEnd) return false;
        XmlNoteStatus(pass, pass.scan.skipChar());
        if (pass.stopped) return false;
    }
}

}  // namespace tarn
