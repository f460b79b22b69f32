// SPDX-License-Identifier: Apache-2.0
//
// A whole read, and the steps that the modules of the reader are made of. The data goes into a fresh value of
// the target's shape, which takes the target's place at the end: a read that is stopped changes nothing.
#include "kernel/data/elements.h"
#include "kernel/data/fresh.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xml/xml_reader_internal.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables.h"
#include "kernel/values/sets.h"
#include "os/files.h"

#include <cstring>
#include <memory>
#include <new>

namespace tarn {

namespace {

constexpr struct {
    std::int32_t id;
    const char *key, *terminator = "";
} symbols[] = {
    {XmlDeclaration, "<?xml"},
    {XmlInstructionEnd, "?>"},
    {XmlInstruction, "<?"},
    {XmlPercent, "%"},
    {XmlVersion, "version"},
    {XmlEncoding, "encoding"},
    {XmlStandalone, "standalone"},
    {XmlDoctype, "<!DOCTYPE"},
    {XmlSystem, "SYSTEM"},
    {XmlPublic, "PUBLIC"},
    {XmlNdata, "NDATA"},
    {XmlElementDeclaration, "<!ELEMENT"},
    {XmlAttlist, "<!ATTLIST"},
    {XmlEntity, "<!ENTITY"},
    {XmlNotation, "<!NOTATION"},
    {XmlCdata, "<![CDATA["},
    {XmlTag, "<"},
    {XmlName, "##XMLID"},
    {XmlEmptyEnd, "/>"},
    {XmlTagEnd, ">"},
    {XmlEndTag, "</"},
    {XmlEquals, "="},
    {XmlOpen, "["},
    {XmlClose, "]"},
    {XmlSingleQuoted, "##MLSQSTR"},
    {XmlDoubleQuoted, "##MLDQSTR"},
    {XmlComment, "<!--", "-->"},
    {0, "##EOL"},
    {0, "##WHITESPACE"},
};
// Names like any other behind the prolog.
constexpr std::string_view prologWords[] = {"version", "encoding", "standalone", "SYSTEM", "PUBLIC", "NDATA"};

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

class OpenScanner {
public:
    OpenScanner() = default;
    ~OpenScanner() { ScannerClose(); }
    OpenScanner(const OpenScanner&) = delete;
    OpenScanner& operator=(const OpenScanner&) = delete;
};

std::int32_t codeOf(os::FileError error) {
    switch (error) {
    case os::FileError::Vanished: return ERR_FILE_VANISHED;
    case os::FileError::BadName: return ERR_FILE_NAME;
    default: return ERR_FILE_READ;
    }
}

void fillTables(XmlTables& tables) {
    for (const auto& symbol : symbols) SymbolAdd(&tables.symbols, symbol.id, symbol.key, symbol.terminator);
    EntityInit(tables.entities);
}

// ---- the document ----

void skipByteOrderMark(XmlReader& reader) {
    if (ScannerLine().substr(0, byteOrderMark.size()) != byteOrderMark) return;
    for (std::size_t i = 0; i < byteOrderMark.size(); ++i) XmlNext(reader);
}

void checkEnd(XmlReader& reader) {
    XmlNext(reader);
    XmlMisc(reader);
    if (ScannerSymbol() == SymbolEndOfFile) return;
    std::string found(ScannerSymbolStr());
    const bool tag = ScannerSymbol() == XmlTag;
    if (tag) XmlNext(reader);
    if (!tag || ScannerSymbol() != XmlName)
        return XmlReport(reader, ERR_XML_NOT_WELL_FORMED,
                         "Found unexpected symbol \"" + found + "\" following the final end tag");
    found = ScannerSymbolStr();
    XmlReport(reader, ERR_XML_NOT_WELL_FORMED,
              "Found unexpected element \"" + found +
                  "\" following the final end tag, this may be caused by an XML document with multiple "
                  "elements and no outer element");
}

void readDocument(XmlReader& reader, XmlTarget target, std::string& typeText) {
    skipByteOrderMark(reader);
    XmlProlog(reader);
    if (reader.stopped) return;
    if (!XmlCheck(reader, {XmlTag})) return;
    for (const std::string_view word : prologWords) SymbolRemove(&reader.tables.symbols, word);
    XmlElementResult root;
    XmlElement(reader, target, root);
    typeText = std::move(root.typeText);
    if (!reader.ended()) checkEnd(reader);
}

void cutTypeText(XmlReader& reader, std::string& typeText, std::int32_t size) {
    const std::size_t most = size > 0 ? static_cast<std::size_t>(size - 1) : 0;
    if (typeText.size() <= most) return;
    typeText.resize(most);
    XmlReport(reader, ERR_XML_TOO_COMPLEX, "XML file structure is too large or too deeply nested");
}

XmlReadResult readFile(const std::string& filename, XmlTarget target, std::string* typeText,
                       std::int32_t typeTextSize, XmlTableForm form) {
    XmlReadResult result;
    if (!ScannerInputFilename().empty()) {
        result.error = XmlFailure(ERR_FILE_READ, "Only one XML file can be read at a time");
        return result;
    }
    const os::FileInfo info = os::infoOf(os::native(filename));
    if (info.special) {
        result.error = XmlFailure(ERR_FILE_READ);
        return result;
    }
    const auto tables = std::make_unique<XmlTables>();
    fillTables(*tables);
    XmlReader reader{*tables, typeText != nullptr, form};
    reader.size = info.size;
    const OpenScanner open;
    ScannerReportStatus(ScannerOpen(filename, &tables->symbols, false), reader.error);
    if (!ScannerInputFilename().empty()) {
        std::string found;
        readDocument(reader, target, found);
        if (typeText != nullptr && !reader.stopped) {
            *typeText = std::move(found);
            cutTypeText(reader, *typeText, typeTextSize);
        }
    }
    const bool lacksMemory = reader.memory.code != 0;
    if (lacksMemory) reader.error = std::move(reader.memory);
    // What looks like the end of the file may be this.
    if (ScannerFileError() != os::FileError::None) reader.error = XmlFailure(codeOf(ScannerFileError()));
    return {std::move(reader.error), reader.stopped, std::move(reader.lost)};
}

// A file that could not be read to its end, a user who stops, rows that cannot be written and a table form
// that the file has not leave the value as it was.
XmlReadResult readFresh(const std::string& filename, void* value, Kind kind, std::string* typeText,
                        std::int32_t typeTextSize, XmlTableForm form) {
    FreshValue fresh(value, kind);
    XmlReadResult result;
    std::int32_t code = TakeError();
    if (code == 0) {
        result = readFile(filename, {fresh.get(), kind}, typeText, typeTextSize, form);
        const bool whole = ScannerFileError() == os::FileError::None && !result.stopped;
        const bool failed = IsFileFailure(result.error.code) || IsMemoryError(result.error.code);
        const bool otherForm = form != XmlTableForm::Rows && result.lost.code != 0;
        if (whole && !failed && !otherForm && !fresh.replaceTarget()) code = TakeError();
    }
    if (code != 0) result.error = XmlFailure(code);
    return result;
}

}  // namespace

// ---- steps ----

ErrorRecord XmlFailure(std::int32_t code, std::string_view message) {
    return {code, 0, 0, std::string(message.empty() ? std::string_view(ErrorText(code)) : message)};
}

void XmlReport(XmlReader& reader, std::int32_t code, std::string_view message) {
    if (IsMemoryError(code))
        ReportError(reader.memory, code, ScannerLineNumber(), ScannerPosition(), message);
    ReportError(reader.error, code, ScannerLineNumber(), ScannerPosition(), message);
}

void XmlNoteLost(XmlReader& reader, std::string_view what, std::string_view element) {
    if (reader.lost.code != 0) return;
    const std::string message = std::string(what).append(" of element '").append(element);
    ReportError(reader.lost, ERR_XML_DATA, ScannerLineNumber(), ScannerPosition(),
                message + "' cannot be loaded, fields are expected there");
}

void XmlNoteFinding(XmlReader& reader, ScanStatus status) {
    ScannerReportStatus(status, reader.error);
    const std::int64_t done = ScannerBytesRead();
    if (done - reader.shown < ProgressStep) return;
    reader.shown = done;
    if (!Progress(done, reader.size)) reader.stopped = true;
}

bool XmlIsUnopened(const void* value, Kind kind) {
    if (kind != KindList && kind != KindTable) return false;
    return value != nullptr && KindOf(value) == kind && IsUnopenedFile(value, kind);
}

void XmlReportSymbol(XmlReader& reader) {
    OwnedSet none;
    SetInit(none.get(), 0, MaxSymbols);
    ScannerCheckSymbol(&reader.tables.symbols, ScannerSymbol(), none.get(), reader.error);
    TakeError();
}

bool XmlExpect(XmlReader& reader, std::int32_t symbol) {
    if (!XmlCheck(reader, {symbol})) return false;
    XmlNext(reader);
    return true;
}

bool XmlNameFollows() {
    return !isByte(ScannerChar(), ByteBlank) && ScannerChar() != LineEnd;
}

bool XmlSkipPast(XmlReader& reader, std::string_view mark) {
    for (;;) {
        std::string_view rest = ScannerRemainder();
        rest = rest.substr(0, rest.find(static_cast<char>(EndOfFileMark)));
        const std::size_t found = rest.find(mark);
        if (found != std::string_view::npos) {
            ScannerSkipBytes(static_cast<std::int32_t>(found + mark.size()));
            return true;
        }
        ScannerSkipBytes(static_cast<std::int32_t>(rest.size()));
        if (ScannerChar() != LineEnd) return false;
        XmlNoteStatus(reader, ScannerSkipChar());
        if (reader.stopped) return false;
    }
}

// ---- reads ----

XmlReadResult ReadXml(const std::string& filename, void* value, Kind kind, std::string* typeText,
                      std::int32_t typeTextSize, XmlTableForm form) {
    XmlReadResult result;
    if (typeText != nullptr) typeText->clear();
    if (filename.empty()) return result;
    const ErrorCellAside aside;
    if (value != nullptr && !IsValueKind(kind)) {
        result.error = XmlFailure(ERR_UNIDENTIFIABLE);
    } else if (XmlIsUnopened(value, kind)) {
        result.error = XmlFailure(ERR_FILE_NOT_OPEN);
    } else if (value == nullptr) {
        result = readFile(filename, {}, typeText, typeTextSize, form);
    } else {
        result = readFresh(filename, value, kind, typeText, typeTextSize, form);
    }
    return result;
}

ErrorRecord XmlRead(const std::string& filename, std::int32_t, void* value, Kind kind, std::string* typeText,
                    std::int32_t typeTextSize) {
    return ReadXml(filename, value, kind, typeText, typeTextSize).error;
}

XmlStructure XmlDiscover(const std::string& filename, std::int32_t typeTextSize) {
    XmlStructure found;
    XmlReadResult result = ReadXml(filename, nullptr, KindNone, &found.typeText, typeTextSize);
    found.error = std::move(result.error);
    found.stopped = result.stopped;
    return found;
}

std::string TypeInfoFixAny(std::string_view typeText) {
    constexpr TypeBounds bounds{1024};
    std::string text(typeText);
    std::size_t position = 0;
    for (std::int32_t line = 1; position < text.size(); ++line) {
        const TypeInfoElement element = TypeInfoParseLine(text, line);
        if (TypeInfoKind(element.typeName) == KindString && element.typeName.size() == 3)
            TypeInfoFormatLine(text, static_cast<std::int32_t>(text.size()) + 32, line, element.name,
                               "string", bounds);
        TypeInfoSkipLine(text, position);
    }
    return text;
}

}  // namespace tarn
