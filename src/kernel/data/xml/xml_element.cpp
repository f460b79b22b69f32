// SPDX-License-Identifier: Apache-2.0
//
// The tags of an element and its attributes.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/value_line.h"
#include "kernel/data/xml/xml_reader_internal.h"
#include "kernel/run/errors.h"
#include "kernel/values/records.h"
#include "os/text/ascii.h"

#include <optional>
#include <utility>

namespace tarn {

namespace {

constexpr std::string_view anyType = " : Any";

bool isSymbol(const XmlPass& pass, std::int32_t symbol) {
    return pass.scan.symbol() == symbol;
}

// The text with its references expanded; what has none is not copied.
std::string_view expand(XmlPass& pass, std::string_view text, std::string& buffer) {
    std::size_t mark = text.find('&');
    if (mark == std::string_view::npos) return text;
    buffer.clear();
    while (mark != std::string_view::npos) {
        buffer.append(text.substr(0, mark));
        text.remove_prefix(mark);
        XmlReference reference;
        if (XmlIsReference(text)) {
            XmlReadReference(pass, text, reference);
            if (!reference.message.empty()) XmlReport(pass, ERR_XML_NOT_WELL_FORMED, reference.message);
            buffer.append(reference.replacement);
            text.remove_prefix(reference.length);
        } else {
            buffer += '&';
            text.remove_prefix(1);
        }
        mark = text.find('&');
    }
    return buffer.append(text);
}

bool isConversionError(std::int32_t code) {
    return (code >= ERR_BOOLEAN_CONVERSION && code <= ERR_STRING_CONVERSION) || code == ERR_SET_CONVERSION;
}

// The attributes of one start tag.
class Attributes {
public:
    Attributes(XmlPass& pass, XmlTarget target, XmlElementResult& result)
        : pass_(pass), result_(result), fields_(target), hadError_(pass.error.code != 0) {
        given_.target = target;
        if (pass.discover) found_.emplace();
    }

    void read() {
        while (isSymbol(pass_, XmlName) && !pass_.stopped) readOne();
        given_.failed = !hadError_ && isConversionError(pass_.error.code);
    }
    [[nodiscard]] XmlGivenFields& given() { return given_; }

    // The type text of the element `name`, from the fields alone.
    [[nodiscard]] std::string typeText(std::string_view name) const {
        if (count_ == 0) return {};
        const bool record =
            ascii::equal(result_.typeAttribute, "record") || ascii::equal(result_.typeAttribute, "union");
        if (count_ == 1 && !record)
            return DataValueLine(found_->firstValue, name, {}, std::string(name).append(anyType));
        return std::string(name) + " : record\n" + found_->fields + "end record\n";
    }

private:
    enum class Meaning { Field, Type, Index };

    void readOne() {
        name_ = pass_.scan.symbolStr();
        const Meaning meaning = ascii::equal(name_, "type")    ? Meaning::Type
                                : ascii::equal(name_, "index") ? Meaning::Index
                                                               : Meaning::Field;
        if (!takePlain(meaning) && !takeScanned(meaning)) return;
        XmlNext(pass_);
    }

    // A value right behind the name, in this line and without quotes in it, needs no scanning.
    bool takePlain(Meaning meaning) {
        const std::string_view rest = pass_.scan.remainder();
        if (rest[0] != '=' || (rest[1] != '"' && rest[1] != '\'')) return false;
        std::size_t end = 2;
        while (rest[end] != rest[1] && !isByte(static_cast<unsigned char>(rest[end]), ByteControl)) ++end;
        if (rest[end] != rest[1] || rest[end + 1] == rest[1]) return false;
        pass_.scan.skipBytes(static_cast<std::int32_t>(end + 1));
        take(meaning, expand(pass_, rest.substr(2, end - 2), expanded_));
        return true;
    }
    bool takeScanned(Meaning meaning) {
        XmlNext(pass_);
        XmlExpect(pass_, XmlEquals);
        if (!XmlCheck(pass_, {XmlSingleQuoted, XmlDoubleQuoted})) return false;
        std::string_view value = pass_.scan.symbolStr();
        if (pass_.events != nullptr && value.size() >= std::size_t{MaxScannerLine})
            XmlReport(pass_, ERR_XML_OVERFLOW,
                      "Attribute is too long, max length is " + std::to_string(MaxScannerLine));
        value = value.size() < 2 ? std::string_view() : value.substr(1, value.size() - 2);
        take(meaning, expand(pass_, value, expanded_));
        return true;
    }

    void take(Meaning meaning, std::string_view value) {
        if (pass_.events != nullptr) return pass_.events->attribute(name_, value);
        switch (meaning) {
        case Meaning::Type:
            if (pass_.discover) result_.typeAttribute = value;
            return;
        case Meaning::Index: result_.index = value; return;
        case Meaning::Field: takeField(value);
        }
    }

    void takeField(std::string_view value) {
        ++count_;
        if (given_.target.hasFields()) {
            given_.count = count_;
            const XmlTarget field = fields_.next();
            if (field.takesText()) XmlBindText(pass_, field, value);
        } else {
            given_.unplaced = given_.target.takesText();
        }
        if (!found_ || found_->fields.size() > std::size_t{MaxXmlTypeText}) return;
        if (count_ == 1) found_->firstValue = value;
        XmlAppendDeeper(found_->fields, DataValueLine(value, name_, {}, name_ + std::string(anyType)));
    }

    struct Found {
        std::string firstValue, fields;
    };
    XmlPass& pass_;
    XmlElementResult& result_;
    XmlGivenFields given_;
    XmlFields fields_;
    bool hadError_;
    std::int32_t count_ = 0;
    std::string name_, expanded_;
    std::optional<Found> found_;  // with `discover`
};

void readStartName(XmlPass& pass) {
    const bool adjacent = XmlNameFollows(pass);
    XmlNext(pass);
    const bool named = XmlCheck(pass, {XmlName});
    if (!adjacent) XmlReport(pass, ERR_XML_NOT_WELL_FORMED, "No spaces allowed between \"<\" and \"Name\"");
    if (!named) return;
    pass.names.append(pass.scan.symbolStr());
    XmlNext(pass);
}

// A name and a `>` right behind it, as most start tags are, needs no scanning.
bool readPlainStart(XmlPass& pass) {
    const std::string_view rest = pass.scan.remainder();
    if (!XmlIsNameStart(rest[0])) return false;
    std::size_t end = 1;
    while (XmlIsNamePart(rest[end])) ++end;
    if (rest[end] != '>') return false;
    pass.names.append(rest.substr(0, end));
    pass.scan.skipBytes(static_cast<std::int32_t>(end + 1));
    return true;
}

bool readPlainEnd(XmlPass& pass, std::string_view name) {
    const std::string_view rest = pass.scan.remainder();
    if (name.empty() || !rest.starts_with(name) || rest[name.size()] != '>') return false;
    pass.scan.skipBytes(static_cast<std::int32_t>(name.size() + 1));
    return true;
}

void checkTypeText(XmlPass& pass, std::string& text) {
    if (text.size() <= std::size_t{MaxXmlTypeText}) return;
    text.resize(std::size_t{MaxXmlTypeText});
    XmlReport(pass, ERR_XML_TOO_COMPLEX, "XML file structure is too large or too deeply nested");
}

}  // namespace

void XmlReadEndTag(XmlPass& pass, std::size_t name) {
    const std::string_view start = std::string_view(pass.names).substr(name);
    if (readPlainEnd(pass, start)) return;
    const bool adjacent = XmlNameFollows(pass);
    XmlNext(pass);
    const bool named = XmlCheck(pass, {XmlName});
    if (!adjacent) XmlReport(pass, ERR_XML_NOT_WELL_FORMED, "No spaces allowed between \"</\" and \"Name\"");
    if (!named) return;
    if (start != pass.scan.symbolStr())
        XmlReport(pass, ERR_XML_NOT_WELL_FORMED,
                  "Start tag \"" + std::string(start) + "\" and end tag \"" +
                      std::string(pass.scan.symbolStr()) + "\" are different");
    XmlNext(pass);
    XmlCheck(pass, {XmlTagEnd});
}

void XmlGivenFields::giveWay(XmlPass& pass) {
    if (count == 0) return;
    count = 0;
    AdtClear(target.value, target.kind);
    TakeError();
    if (failed) pass.error = {};
}

bool XmlStartElement(XmlPass& pass, XmlTarget target, XmlElementResult& result, XmlGivenFields& given) {
    const std::size_t name = pass.names.size();
    const std::int32_t line = pass.scan.lineNumber();
    const bool plain = readPlainStart(pass);
    if (!plain) readStartName(pass);
    if (pass.events != nullptr) pass.events->start(std::string_view(pass.names).substr(name), line);
    if (plain) return true;
    Attributes attributes(pass, target, result);
    attributes.read();
    if (pass.discover) result.typeText = attributes.typeText(pass.names.substr(name));
    given = attributes.given();
    return XmlCheck(pass, {XmlEmptyEnd, XmlTagEnd}) && isSymbol(pass, XmlTagEnd);
}

void XmlElement(XmlPass& pass, XmlTarget target, XmlElementResult& result) {
    const std::size_t name = pass.names.size();
    XmlGivenFields given{target};
    if (XmlStartElement(pass, target, result, given)) {
        std::string found;
        const bool closed = XmlContent(pass, target, given, name, found);
        if (!found.empty()) result.typeText = std::move(found);
        if (pass.ended()) return;
        if (closed) XmlReadEndTag(pass, name);
    }
    if (given.unplaced) XmlNoteLost(pass, "The attributes", std::string_view(pass.names).substr(name));
    checkTypeText(pass, result.typeText);
}

}  // namespace tarn
