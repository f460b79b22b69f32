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

bool isSymbol(std::int32_t symbol) {
    return ScannerSymbol() == symbol;
}

// The text with its references expanded; what has none is not copied.
std::string_view expand(XmlReader& reader, std::string_view text, std::string& buffer) {
    std::size_t mark = text.find('&');
    if (mark == std::string_view::npos) return text;
    buffer.clear();
    while (mark != std::string_view::npos) {
        buffer.append(text.substr(0, mark));
        text.remove_prefix(mark);
        XmlReference reference;
        if (XmlIsReference(text)) {
            XmlReadReference(reader, text, reference);
            if (!reference.message.empty()) XmlReport(reader, ERR_XML_NOT_WELL_FORMED, reference.message);
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
    Attributes(XmlReader& reader, XmlTarget target, XmlElementResult& result)
        : reader_(reader), result_(result), fields_(target), hadError_(reader.error.code != 0) {
        given_.target = target;
        if (reader.discover) found_.emplace();
    }

    void read() {
        while (isSymbol(XmlName) && !reader_.stopped) readOne();
        given_.failed = !hadError_ && isConversionError(reader_.error.code);
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
        const std::string_view name = ScannerSymbolStr();
        const Meaning meaning = ascii::equal(name, "type")    ? Meaning::Type
                                : ascii::equal(name, "index") ? Meaning::Index
                                                              : Meaning::Field;
        if (found_) found_->name = name;
        if (!takePlain(meaning) && !takeScanned(meaning)) return;
        XmlNext(reader_);
    }

    // A value right behind the name, in this line and without quotes in it, needs no scanning.
    bool takePlain(Meaning meaning) {
        const std::string_view rest = ScannerRemainder();
        if (rest[0] != '=' || (rest[1] != '"' && rest[1] != '\'')) return false;
        std::size_t end = 2;
        while (rest[end] != rest[1] && !isByte(static_cast<unsigned char>(rest[end]), ByteControl)) ++end;
        if (rest[end] != rest[1] || rest[end + 1] == rest[1]) return false;
        ScannerSkipBytes(static_cast<std::int32_t>(end + 1));
        take(meaning, expand(reader_, rest.substr(2, end - 2), expanded_));
        return true;
    }
    bool takeScanned(Meaning meaning) {
        XmlNext(reader_);
        XmlExpect(reader_, XmlEquals);
        if (!XmlCheck(reader_, {XmlSingleQuoted, XmlDoubleQuoted})) return false;
        std::string_view value = ScannerSymbolStr();
        value = value.size() < 2 ? std::string_view() : value.substr(1, value.size() - 2);
        take(meaning, expand(reader_, value, expanded_));
        return true;
    }

    void take(Meaning meaning, std::string_view value) {
        switch (meaning) {
        case Meaning::Type:
            if (reader_.discover) result_.typeAttribute = value;
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
            if (field.takesText()) XmlBindText(reader_, field, value);
        } else {
            given_.unplaced = given_.target.takesText();
        }
        if (!found_ || found_->fields.size() > std::size_t{MaxXmlTypeText}) return;
        if (count_ == 1) found_->firstValue = value;
        XmlAppendDeeper(found_->fields,
                        DataValueLine(value, found_->name, {}, found_->name + std::string(anyType)));
    }

    struct Found {
        std::string name, firstValue, fields;
    };
    XmlReader& reader_;
    XmlElementResult& result_;
    XmlGivenFields given_;
    XmlFields fields_;
    bool hadError_;
    std::int32_t count_ = 0;
    std::string expanded_;
    std::optional<Found> found_;  // with `discover`
};

void readStartName(XmlReader& reader) {
    const bool adjacent = XmlNameFollows();
    XmlNext(reader);
    const bool named = XmlCheck(reader, {XmlName});
    if (!adjacent) XmlReport(reader, ERR_XML_NOT_WELL_FORMED, "No spaces allowed between \"<\" and \"Name\"");
    if (!named) return;
    reader.names.append(ScannerSymbolStr());
    XmlNext(reader);
}

// A name and a `>` right behind it, as most start tags are, needs no scanning.
bool readPlainStart(XmlReader& reader) {
    const std::string_view rest = ScannerRemainder();
    if (!XmlIsNameStart(rest[0])) return false;
    std::size_t end = 1;
    while (XmlIsNamePart(rest[end])) ++end;
    if (rest[end] != '>') return false;
    reader.names.append(rest.substr(0, end));
    ScannerSkipBytes(static_cast<std::int32_t>(end + 1));
    return true;
}

bool readPlainEnd(std::string_view name) {
    const std::string_view rest = ScannerRemainder();
    if (name.empty() || !rest.starts_with(name) || rest[name.size()] != '>') return false;
    ScannerSkipBytes(static_cast<std::int32_t>(name.size() + 1));
    return true;
}

// From behind `</` to the `>`.
void readEndTag(XmlReader& reader, std::size_t name) {
    const std::string_view start = std::string_view(reader.names).substr(name);
    if (readPlainEnd(start)) return;
    const bool adjacent = XmlNameFollows();
    XmlNext(reader);
    const bool named = XmlCheck(reader, {XmlName});
    if (!adjacent)
        XmlReport(reader, ERR_XML_NOT_WELL_FORMED, "No spaces allowed between \"</\" and \"Name\"");
    if (!named) return;
    if (start != ScannerSymbolStr())
        XmlReport(reader, ERR_XML_NOT_WELL_FORMED,
                  "Start tag \"" + std::string(start) + "\" and end tag \"" +
                      std::string(ScannerSymbolStr()) + "\" are different");
    XmlNext(reader);
    XmlCheck(reader, {XmlTagEnd});
}

void checkTypeText(XmlReader& reader, std::string& text) {
    if (text.size() <= std::size_t{MaxXmlTypeText}) return;
    text.resize(std::size_t{MaxXmlTypeText});
    XmlReport(reader, ERR_XML_TOO_COMPLEX, "XML file structure is too large or too deeply nested");
}

}  // namespace

void XmlGivenFields::giveWay(XmlReader& reader) {
    if (count == 0) return;
    count = 0;
    AdtClear(target.value, target.kind);
    TakeError();
    if (failed) reader.error = {};
}

void XmlElement(XmlReader& reader, XmlTarget target, XmlElementResult& result) {
    const std::size_t name = reader.names.size();
    XmlGivenFields given{target};
    bool content = readPlainStart(reader);
    if (!content) {
        readStartName(reader);
        Attributes attributes(reader, target, result);
        attributes.read();
        if (reader.discover) result.typeText = attributes.typeText(reader.names.substr(name));
        given = attributes.given();
        content = XmlCheck(reader, {XmlEmptyEnd, XmlTagEnd}) && isSymbol(XmlTagEnd);
    }
    if (content) {
        std::string found;
        const bool closed = XmlContent(reader, target, given, name, found);
        if (!found.empty()) result.typeText = std::move(found);
        if (reader.ended()) return;
        if (closed) readEndTag(reader, name);
    }
    if (given.unplaced) XmlNoteLost(reader, "The attributes", std::string_view(reader.names).substr(name));
    checkTypeText(reader, result.typeText);
}

}  // namespace tarn
