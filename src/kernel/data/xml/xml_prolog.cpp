// SPDX-License-Identifier: Apache-2.0
//
// What stands before the first element. Only entities are taken from it: the rest is checked and passed over.
// A symbol that has no place here is reported and left, so that what follows is still read for what it is.
#include "kernel/data/xml/xml_reader_internal.h"
#include "kernel/run/errors.h"

namespace tarn {

namespace {

bool isSymbol(std::int32_t symbol) {
    return ScannerSymbol() == symbol;
}

bool expectString(XmlReader& reader) {
    if (!XmlCheck(reader, {XmlSingleQuoted, XmlDoubleQuoted})) return false;
    XmlNext(reader);
    return true;
}

// `<?xml` is the declaration only where its name ends there.
bool isInstruction() {
    return isSymbol(XmlInstruction) ||
           (isSymbol(XmlDeclaration) && XmlIsNamePart(static_cast<char>(ScannerChar())));
}

void skipTo(XmlReader& reader, std::string_view mark) {
    XmlSkipPast(reader, mark);
    XmlNext(reader);
}

bool skipMisc(XmlReader& reader) {
    if (isInstruction())
        skipTo(reader, "?>");
    else if (isSymbol(XmlComment))
        XmlNext(reader);
    else
        return false;
    return true;
}

void declaration(XmlReader& reader) {
    XmlNext(reader);
    for (const std::int32_t word : {XmlVersion, XmlEncoding, XmlStandalone}) {
        if (word != XmlVersion && !isSymbol(word)) continue;
        XmlExpect(reader, word);
        XmlExpect(reader, XmlEquals);
        expectString(reader);
    }
    XmlExpect(reader, XmlInstructionEnd);
}

void externalId(XmlReader& reader) {
    const std::int32_t strings = isSymbol(XmlPublic) ? 2 : 1;
    XmlNext(reader);
    for (std::int32_t i = 0; i < strings; ++i) expectString(reader);
}

bool isExternalId() {
    return isSymbol(XmlSystem) || isSymbol(XmlPublic);
}

void parameterReference(XmlReader& reader) {
    const bool adjacent = XmlNameFollows();
    XmlNext(reader);
    const bool named = XmlCheck(reader, {XmlName});
    if (!adjacent) XmlReport(reader, ERR_XML_NOT_WELL_FORMED, "No spaces allowed between \"%\" and \"Name\"");
    if (!named) return;
    if (ScannerChar() == ';')
        ScannerSkipBytes(1);
    else
        XmlReport(reader, ERR_XML_NOT_WELL_FORMED, "%Name must be followed by \";\"");
    XmlNext(reader);
}

std::string_view withoutQuotes(std::string_view text) {
    return text.size() < 2 ? std::string_view() : text.substr(1, text.size() - 2);
}

void entity(XmlReader& reader) {
    XmlNext(reader);
    XmlCheck(reader, {XmlPercent, XmlName});
    const bool parameter = isSymbol(XmlPercent);
    if (parameter) XmlNext(reader);
    std::string reference;
    if (XmlCheck(reader, {XmlName})) {
        reference = "&" + std::string(ScannerSymbolStr()) + ";";
        XmlNext(reader);
    }
    if (isExternalId()) {
        externalId(reader);
    } else if (XmlCheck(reader, {XmlSystem, XmlPublic, XmlSingleQuoted, XmlDoubleQuoted})) {
        const std::string value(withoutQuotes(ScannerSymbolStr()).substr(0, MaxEntityText));
        XmlNext(reader);
        if (!parameter && !reference.empty())
            EntityAdd(reader.tables.entities, reference, value, reader.error);
    }
    if (!parameter && isSymbol(XmlNdata)) {
        XmlNext(reader);
        XmlExpect(reader, XmlName);
    }
    XmlExpect(reader, XmlTagEnd);
}

bool skipDeclaration(XmlReader& reader) {
    if (isSymbol(XmlPercent))
        parameterReference(reader);
    else if (isSymbol(XmlEntity))
        entity(reader);
    else if (isSymbol(XmlElementDeclaration) || isSymbol(XmlAttlist) || isSymbol(XmlNotation))
        skipTo(reader, ">");
    else
        return skipMisc(reader);
    return true;
}

void doctype(XmlReader& reader) {
    XmlNext(reader);
    XmlExpect(reader, XmlName);
    if (isExternalId()) externalId(reader);
    if (isSymbol(XmlOpen)) {
        XmlNext(reader);
        while (!reader.stopped && skipDeclaration(reader)) {}
        XmlExpect(reader, XmlClose);
    }
    XmlExpect(reader, XmlTagEnd);
}

}  // namespace

void XmlMisc(XmlReader& reader) {
    while (!reader.stopped && skipMisc(reader)) {}
}

void XmlProlog(XmlReader& reader) {
    if (isSymbol(XmlDeclaration) && !isInstruction()) declaration(reader);
    XmlMisc(reader);
    if (isSymbol(XmlDoctype)) doctype(reader);
    XmlMisc(reader);
}

}  // namespace tarn
