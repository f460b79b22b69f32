// SPDX-License-Identifier: Apache-2.0
//
// The tags of an element and its attributes.
#include "kernel/data/typeinfo.h"
#include "kernel/data/xml_reader.h"
#include "kernel/errors.h"
#include "kernel/records.h"

#include <utility>

namespace tarn {

namespace {

constexpr std::string_view anyType = " : Any";

bool isSymbol(std::int32_t symbol) {
    return ScannerSymbol() == symbol;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lower) {
    if (text.size() != lower.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i)
        if ((text[i] >= 'A' && text[i] <= 'Z' ? text[i] + 32 : text[i]) != lower[i]) return false;
    return true;
}

bool startsWithIgnoringCase(std::string_view text, std::string_view lower) {
    return equalsIgnoringCase(text.substr(0, lower.size()), lower);
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
        : reader_(reader), result_(result), hadError_(reader.error.code != 0) {
        given_.target = target;
    }

    void read() {
        while (isSymbol(XmlName)) readOne();
        given_.failed = !hadError_ && isConversionError(reader_.error.code);
    }
    [[nodiscard]] XmlGivenFields& given() { return given_; }

    // The type text of the element `name`, from the fields alone.
    [[nodiscard]] std::string typeText(std::string_view name) const {
        if (count_ == 0) return {};
        const bool record = startsWithIgnoringCase(result_.typeAttribute, "record") ||
                            startsWithIgnoringCase(result_.typeAttribute, "union");
        if (count_ == 1 && !record)
            return TypeInfoValueLine(onlyValue_, name, {}, std::string(name).append(anyType));
        return std::string(name) + " : record\n" + fields_ + "end record\n";
    }

private:
    enum class Meaning { Field, Type, Index };

    void readOne() {
        const std::string_view name = ScannerSymbolStr();
        const Meaning meaning = equalsIgnoringCase(name, "type")    ? Meaning::Type
                                : equalsIgnoringCase(name, "index") ? Meaning::Index
                                                                    : Meaning::Field;
        if (reader_.discover) name_ = name;
        XmlNext(reader_);
        XmlExpect(reader_, XmlEquals);
        if (!XmlCheck(reader_, {XmlSingleQuoted, XmlDoubleQuoted})) return;
        std::string_view value = ScannerSymbolStr();
        value = value.size() < 2 ? std::string_view() : value.substr(1, value.size() - 2);
        take(meaning, expand(reader_, value, expanded_));
        XmlNext(reader_);
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
            auto* record = static_cast<RecordDescriptor*>(given_.target.value);
            const XmlTarget field{RecordFieldAddress(record, count_), RecordFieldKind(record, count_)};
            if (field.takesText()) XmlBindText(reader_, field, value);
        } else if (given_.target.value != nullptr) {
            reader_.lostData = true;
        }
        if (!reader_.discover || fields_.size() > std::size_t{MaxXmlTypeText}) return;
        if (count_ == 1) onlyValue_ = value;
        XmlAppendDeeper(fields_, TypeInfoValueLine(value, name_, {}, name_ + std::string(anyType)));
    }

    XmlReader& reader_;
    XmlElementResult& result_;
    XmlGivenFields given_;
    bool hadError_;
    std::int32_t count_ = 0;
    std::string name_, expanded_, onlyValue_, fields_;  // the last two with `discover`
};

// Gives where the name begins in `reader.names`.
std::size_t readStartName(XmlReader& reader) {
    const std::size_t start = reader.names.size();
    const bool adjacent = XmlNameFollows();
    XmlNext(reader);
    const bool named = XmlCheck(reader, {XmlName});
    if (!adjacent) XmlReport(reader, ERR_XML_NOT_WELL_FORMED, "No spaces allowed between \"<\" and \"Name\"");
    if (!named) return start;
    reader.names.append(ScannerSymbolStr());
    XmlNext(reader);
    return start;
}

// From `</` to the `>`, which stays the symbol.
void readEndTag(XmlReader& reader, std::size_t name) {
    if (!XmlCheck(reader, {XmlEndTag})) return;
    const bool adjacent = XmlNameFollows();
    XmlNext(reader);
    const bool named = XmlCheck(reader, {XmlName});
    if (!adjacent)
        XmlReport(reader, ERR_XML_NOT_WELL_FORMED, "No spaces allowed between \"</\" and \"Name\"");
    if (!named) return;
    const std::string_view start = std::string_view(reader.names).substr(name);
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
    XmlTakeCellError();
    if (failed) reader.error = {};
}

void XmlElement(XmlReader& reader, XmlTarget target, XmlElementResult& result) {
    const std::size_t name = readStartName(reader);
    Attributes attributes(reader, target, result);
    attributes.read();
    if (reader.discover) result.typeText = attributes.typeText(reader.names.substr(name));
    XmlCheck(reader, {XmlEmptyEnd, XmlTagEnd});
    if (isSymbol(XmlTagEnd)) {
        std::string found = XmlContent(reader, target, attributes.given(), name);
        if (!found.empty()) result.typeText = std::move(found);
        if (reader.ended()) return;
        readEndTag(reader, name);
    }
    checkTypeText(reader, result.typeText);
}

}  // namespace tarn
