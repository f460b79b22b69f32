// SPDX-License-Identifier: Apache-2.0
//
// What stands before the first element. Only entities are taken from it: the rest is checked and passed over.
// A symbol that has no place here is reported and left, so that what follows is still read for what it is.
#include "kernel/data/xml/xml_reader_internal.h"
#include "kernel/run/errors.h"

namespace tarn {

namespace {

bool isSymbol(const XmlPass& pass, std::int32_t symbol) {
    return pass.scan.symbol() == symbol;
}

bool expectString(XmlPass& pass) {
    if (!XmlCheck(pass, {XmlSingleQuoted, XmlDoubleQuoted})) return false;
    XmlNext(pass);
    return true;
}

// `<?xml` is the declaration only where its name ends there.
bool isInstruction(const XmlPass& pass) {
    return isSymbol(pass, XmlInstruction) ||
           (isSymbol(pass, XmlDeclaration) && XmlIsNamePart(static_cast<char>(pass.scan.character())));
}

void skipTo(XmlPass& pass, std::string_view mark) {
    XmlSkipPast(pass, mark);
    XmlNext(pass);
}

bool skipMisc(XmlPass& pass) {
    if (isInstruction(pass))
        skipTo(pass, "?>");
    else if (isSymbol(pass, XmlComment))
        XmlNext(pass);
    else
        return false;
    return true;
}

void declaration(XmlPass& pass) {
    XmlNext(pass);
    for (const std::int32_t word : {XmlVersion, XmlEncoding, XmlStandalone}) {
        if (word != XmlVersion && !isSymbol(pass, word)) continue;
        XmlExpect(pass, word);
        XmlExpect(pass, XmlEquals);
        expectString(pass);
    }
    XmlExpect(pass, XmlInstructionEnd);
}

void externalId(XmlPass& pass) {
    const std::int32_t strings = isSymbol(pass, XmlPublic) ? 2 : 1;
    XmlNext(pass);
    for (std::int32_t i = 0; i < strings; ++i) expectString(pass);
}

bool isExternalId(const XmlPass& pass) {
    return isSymbol(pass, XmlSystem) || isSymbol(pass, XmlPublic);
}

void parameterReference(XmlPass& pass) {
    const bool adjacent = XmlNameFollows(pass);
    XmlNext(pass);
    const bool named = XmlCheck(pass, {XmlName});
    if (!adjacent) XmlReport(pass, ERR_XML_NOT_WELL_FORMED, "No spaces allowed between \"%\" and \"Name\"");
    if (!named) return;
    if (pass.scan.character() == ';')
        pass.scan.skipBytes(1);
    else
        XmlReport(pass, ERR_XML_NOT_WELL_FORMED, "%Name must be followed by \";\"");
    XmlNext(pass);
}

std::string_view withoutQuotes(std::string_view text) {
    return text.size() < 2 ? std::string_view() : text.substr(1, text.size() - 2);
}

void entity(XmlPass& pass) {
    XmlNext(pass);
    XmlCheck(pass, {XmlPercent, XmlName});
    const bool parameter = isSymbol(pass, XmlPercent);
    if (parameter) XmlNext(pass);
    std::string reference;
    if (XmlCheck(pass, {XmlName})) {
        reference = "&" + std::string(pass.scan.symbolStr()) + ";";
        XmlNext(pass);
    }
    if (isExternalId(pass)) {
        externalId(pass);
    } else if (XmlCheck(pass, {XmlSystem, XmlPublic, XmlSingleQuoted, XmlDoubleQuoted})) {
        const std::string value(withoutQuotes(pass.scan.symbolStr()).substr(0, MaxEntityText));
        XmlNext(pass);
        if (!parameter && !reference.empty())
            XmlReport(pass, ERR_XML_OVERFLOW, EntityAdd(pass.tables.entities, reference, value));
    }
    if (!parameter && isSymbol(pass, XmlNdata)) {
        XmlNext(pass);
        XmlExpect(pass, XmlName);
    }
    XmlExpect(pass, XmlTagEnd);
}

bool skipDeclaration(XmlPass& pass) {
    if (isSymbol(pass, XmlPercent))
        parameterReference(pass);
    else if (isSymbol(pass, XmlEntity))
        entity(pass);
    else if (isSymbol(pass, XmlElementDeclaration) || isSymbol(pass, XmlAttlist) ||
             isSymbol(pass, XmlNotation))
        skipTo(pass, ">");
    else
        return skipMisc(pass);
    return true;
}

void doctype(XmlPass& pass) {
    XmlNext(pass);
    XmlExpect(pass, XmlName);
    if (isExternalId(pass)) externalId(pass);
    if (isSymbol(pass, XmlOpen)) {
        XmlNext(pass);
        while (!pass.stopped && skipDeclaration(pass)) {}
        XmlExpect(pass, XmlClose);
    }
    XmlExpect(pass, XmlTagEnd);
}

}  // namespace

void XmlMisc(XmlPass& pass) {
    while (!pass.stopped && skipMisc(pass)) {}
}

void XmlProlog(XmlPass& pass) {
    if (isSymbol(pass, XmlDeclaration) && !isInstruction(pass)) declaration(pass);
    XmlMisc(pass);
    if (isSymbol(pass, XmlDoctype)) doctype(pass);
    XmlMisc(pass);
}

}  // namespace tarn
