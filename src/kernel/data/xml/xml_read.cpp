// SPDX-License-Identifier: Apache-2.0
//
// A whole read. The data goes into a fresh value of the target's shape, which takes the target's place at the
// end.
#include "kernel/data/fresh.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xml/xml_reader_internal.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/run/runtime.h"
#include "os/files.h"

#include <new>
#include <optional>
#include <utility>
#include <vector>

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

std::int32_t codeOf(os::FileError error) {
    switch (error) {
    case os::FileError::Vanished: return ERR_FILE_VANISHED;
    case os::FileError::BadName: return ERR_FILE_NAME;
    default: return ERR_FILE_READ;
    }
}

void fillTables(XmlTables& tables) {
    tables.symbols = {};
    for (const auto& symbol : symbols) SymbolAdd(&tables.symbols, symbol.id, symbol.key, symbol.terminator);
    EntityInit(tables.entities);
}

// ---- the document ----

void skipByteOrderMark(XmlPass& pass) {
    if (pass.scan.line().substr(0, byteOrderMark.size()) != byteOrderMark) return;
    for (std::size_t i = 0; i < byteOrderMark.size(); ++i) XmlNext(pass);
}

void checkEnd(XmlPass& pass) {
    XmlNext(pass);
    XmlMisc(pass);
    if (pass.scan.symbol() == SymbolEndOfFile) return;
    std::string found(pass.scan.symbolStr());
    const bool tag = pass.scan.symbol() == XmlTag;
    if (tag) XmlNext(pass);
    if (!tag || pass.scan.symbol() != XmlName)
        return XmlReport(pass, ERR_XML_NOT_WELL_FORMED,
                         "Found unexpected symbol \"" + found + "\" following the final end tag");
    found = pass.scan.symbolStr();
    XmlReport(pass, ERR_XML_NOT_WELL_FORMED,
              "Found unexpected element \"" + found +
                  "\" following the final end tag, this may be caused by an XML document with multiple "
                  "elements and no outer element");
}

// Up to the `<` of the outermost element; false when there is none.
bool readHead(XmlPass& pass) {
    skipByteOrderMark(pass);
    XmlProlog(pass);
    if (pass.stopped || !XmlCheck(pass, {XmlTag})) return false;
    for (const std::string_view word : prologWords) SymbolRemove(&pass.tables.symbols, word);
    return true;
}

void readDocument(XmlPass& pass, XmlTarget target, std::string& typeText) {
    if (!readHead(pass)) return;
    XmlElementResult root;
    XmlElement(pass, target, root);
    typeText = std::move(root.typeText);
    if (!pass.ended()) checkEnd(pass);
}

void cutTypeText(XmlPass& pass, std::string& typeText, std::int32_t size) {
    const std::size_t most = size > 0 ? static_cast<std::size_t>(size - 1) : 0;
    if (typeText.size() <= most) return;
    typeText.resize(most);
    XmlReport(pass, ERR_XML_TOO_COMPLEX, "XML file structure is too large or too deeply nested");
}

}  // namespace

// ---- the reader ----

struct XmlReader::Work {
    Scanner scan;
    XmlTables tables;
    std::optional<XmlPass> pass;    // the one that goes on
    std::vector<std::size_t> open;  // of a walk: where the names of the open elements begin in it
    enum class Place { Head, Content, End } place = Place::Head;  // of a walk
};

XmlReader::XmlReader() noexcept = default;
XmlReader::~XmlReader() = default;

// The memory to work in, once.
bool XmlReader::prepare() {
    if (work_ == nullptr) work_.reset(new (std::nothrow) Work);
    return work_ != nullptr;
}

// Opens the file; nothing is done when there is an error.
XmlReadResult XmlReading::begin() const {
    XmlReadResult result;
    if (reader.reading_) {
        result.error = XmlFailure(ERR_FILE_READ, "Only one XML file can be read at a time");
        return result;
    }
    const os::FileInfo info = os::infoOf(os::native(filename));
    if (info.special || !reader.prepare()) {
        result.error = XmlFailure(info.special ? ERR_FILE_READ : ERR_OUT_OF_MEMORY);
        result.fileError = info.special ? os::FileError::ReadFailed : os::FileError::None;
        return result;
    }
    XmlReader::Work& work = *reader.work_;
    fillTables(work.tables);
    XmlPass& pass =
        work.pass.emplace(XmlPass{work.scan, work.tables, typeText != nullptr, form, events, characters});
    pass.size = info.size;
    const bool longLines = lengths == XmlLengths::Long;
    if (longLines) pass.longestText = LongestXmlLine;
    work.open.clear();
    work.place = XmlReader::Work::Place::Head;
    reader.reading_ = true;
    const std::int32_t longest = longLines ? LongestXmlLine : MaxScannerLine;
    work.scan.reportStatus(work.scan.open(filename, &work.tables.symbols, false, longest), pass.error);
    return result;
}

XmlReadResult XmlReading::end(XmlReader& reader) {
    XmlPass& pass = *reader.work_->pass;
    if (pass.memory.code != 0) pass.error = std::move(pass.memory);
    // What looks like the end of the file may be this.
    const os::FileError fileError = pass.scan.fileError();
    if (fileError != os::FileError::None) pass.error = XmlFailure(codeOf(fileError));
    XmlReadResult result{std::move(pass.error), pass.stopped, std::move(pass.lost), fileError};
    pass.scan.close();
    reader.work_->pass.reset();
    reader.reading_ = false;
    return result;
}

XmlReadResult XmlReading::readFile(XmlTarget target) const {
    const XmlReadResult begun = begin();
    if (begun.error.code != 0) return begun;
    XmlPass& pass = *reader.work_->pass;
    if (pass.scan.isOpen()) {
        std::string found;
        readDocument(pass, target, found);
        if (typeText != nullptr && !pass.stopped) {
            *typeText = std::move(found);
            cutTypeText(pass, *typeText, typeTextSize);
        }
    }
    return end(reader);
}

// A file that could not be read to its end, a user who stops, rows that cannot be written and a table form
// that the file has not leave the value as it was.
XmlReadResult XmlReading::readFresh(void* value, Kind kind) const {
    FreshValue fresh(value, kind);
    XmlReadResult result;
    std::int32_t code = TakeError();
    if (code == 0) {
        result = readFile({fresh.get(), kind});
        const bool whole = result.fileError == os::FileError::None && !result.stopped;
        const bool failed = IsFileFailure(result.error.code) || IsMemoryError(result.error.code);
        const bool otherForm = form != XmlTableForm::Rows && result.lost.code != 0;
        if (whole && !failed && !otherForm && !fresh.replaceTarget()) code = TakeError();
    }
    if (code != 0) result.error = XmlFailure(code);
    return result;
}

XmlReadResult XmlReading::read(void* value, Kind kind) const {
    XmlReadResult result;
    if (typeText != nullptr) typeText->clear();
    if (filename.empty()) return result;
    const ErrorCellAside aside;
    if (value == nullptr) return readFile({});
    if (!IsValueKind(kind))
        result.error = XmlFailure(ERR_UNIDENTIFIABLE);
    else if (XmlIsUnopened(value, kind))
        result.error = XmlFailure(ERR_FILE_NOT_OPEN);
    else
        result = readFresh(value, kind);
    return result;
}

XmlReadResult XmlReader::read(const std::string& filename, void* value, Kind kind, std::string* typeText,
                              std::int32_t typeTextSize) {
    return XmlReading{*this, filename, typeText, typeTextSize}.read(value, kind);
}

XmlReadResult XmlReader::discover(const std::string& filename, std::string& typeText,
                                  std::int32_t typeTextSize, XmlLengths lengths) {
    XmlReading reading{*this, filename, &typeText, typeTextSize};
    reading.lengths = lengths;
    return reading.read(nullptr, KindNone);
}

// ---- walks ----

namespace {

// The start tag of the outermost element. False when nothing follows.
bool enterDocument(XmlPass& pass, std::vector<std::size_t>& open) {
    if (!pass.scan.isOpen() || !readHead(pass)) return false;
    XmlElementResult none;
    XmlGivenFields given;
    if (XmlStartElement(pass, {}, none, given)) {
        open.push_back(0);
        return true;
    }
    pass.events->end();
    if (!pass.ended()) checkEnd(pass);
    return false;
}

}  // namespace

ErrorRecord XmlReader::startWalk(const std::string& filename, XmlEvents& events, XmlCharacters characters,
                                 XmlLengths lengths) {
    const ErrorCellAside aside;
    return XmlReading{*this, filename, nullptr, 0, XmlTableForm::Rows, &events, characters, lengths}
        .begin()
        .error;
}

bool XmlReader::isWalking() const {
    return reading_ && work_->pass->events != nullptr;
}

bool XmlReader::walkOn(std::int32_t depth) {
    using Place = Work::Place;
    if (!isWalking() || work_->place == Place::End) return false;
    const ErrorCellAside aside;
    XmlPass& pass = *work_->pass;
    const bool inside = work_->place == Place::Content || enterDocument(pass, work_->open);
    work_->place = Place::Content;
    if (inside && XmlWalk(pass, work_->open, static_cast<std::size_t>(depth))) return true;
    work_->place = Place::End;
    if (inside && !pass.ended()) checkEnd(pass);
    return false;
}

XmlReadResult XmlReader::endWalk() {
    if (!isWalking()) return {};
    const ErrorCellAside aside;
    return XmlReading::end(*this);
}

XmlReadResult XmlReader::walk(const std::string& filename, XmlEvents& events, XmlCharacters characters) {
    XmlReadResult result;
    if (filename.empty()) return result;
    result.error = startWalk(filename, events, characters);
    if (result.error.code != 0) return result;
    while (walkOn(1)) {}
    return endWalk();
}

// ---- the reader of the operations ----

XmlReader& XmlReaderOfOperations() {
    static XmlReader reader;
    return reader;
}

ErrorRecord XmlRead(const std::string& filename, std::int32_t, void* value, Kind kind, std::string* typeText,
                    std::int32_t typeTextSize) {
    return XmlReaderOfOperations().read(filename, value, kind, typeText, typeTextSize).error;
}

XmlStructure XmlDiscover(const std::string& filename, std::int32_t typeTextSize) {
    XmlStructure found;
    XmlReadResult result =
        XmlReaderOfOperations().read(filename, nullptr, KindNone, &found.typeText, typeTextSize);
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
