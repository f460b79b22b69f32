// SPDX-License-Identifier: Apache-2.0
//
// The structure of an element as type information text. The first two children decide: two of one name make a
// list, two of different names a record. Names, not texts, are compared: an element that holds nothing has no
// text but still is the first of a list.
#include "kernel/data/typeinfo.h"
#include "kernel/data/xml_reader.h"
#include "kernel/errors.h"

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

constexpr std::size_t most = std::size_t{MaxXmlTypeText};

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return lower;
}

std::string block(std::string_view name, std::string_view type, std::string_view inner) {
    std::string text(name);
    text.append(" : ").append(type).append("\n");
    XmlAppendDeeper(text, inner);
    return text.append("end ").append(type).append("\n");
}

bool isOneLine(std::string_view text) {
    return text.find('\n') + 1 == text.size();
}

// What a `type` attribute says takes the place of what was found in a single element. Types that hold others
// are never left without their end.
void applyTypeAttribute(std::string& text, std::string_view name, std::string_view attribute) {
    if (!text.empty() && !isOneLine(text)) return;
    const std::string lower = lowerCase(attribute);
    const TypeInfoElement element = TypeInfoParseLine(std::string("x : ").append(attribute), 1);
    if (lower.starts_with("list") || lower.starts_with("table")) {
        text = block(name, "list", "component : Any\n");
    } else if (lower == "record" || lower == "union") {
        text = block(name, lower, "");
    } else if (!element.typeName.empty()) {
        text.clear();
        TypeInfoAppendLine(text, MaxXmlTypeText, name, element.typeName, element.bounds);
    }
}

}  // namespace

void XmlAppendDeeper(std::string& to, std::string_view text) {
    while (!text.empty() && to.size() <= most) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        to.append("\t").append(text.substr(0, end));
        text.remove_prefix(end);
    }
}

void XmlTypes::addField(XmlReader& reader, std::string_view parent, std::string_view child,
                        std::string_view text) {
    if (!names_.insert(lowerCase(child)).second)
        return XmlReport(reader, ERR_XML_DATA,
                         "Element '" + std::string(child) + "' occurred multiple times in the record '" +
                             std::string(parent) + "'");
    if (text_.size() <= most) text_.append(text);
}

void XmlTypes::addElement(XmlReader& reader, std::int32_t firstLine, const std::string& text) {
    constexpr std::size_t mostSeen = 100;
    if (text.empty() || broken_ || text_.size() > most || seen_.contains(text)) return;
    std::string report;
    std::string merged = text_.empty() ? text : TypeInfoMerge(text_, text, INT32_MAX, report);
    broken_ = !report.empty();
    if (broken_) {
        const std::int32_t line = ScannerLineNumber();
        if (line != firstLine)
            report += ", between line " + std::to_string(firstLine) + " and " + std::to_string(line);
        return XmlReport(reader, ERR_XML_DATA, report);
    }
    text_ = std::move(merged);
    if (seen_.size() == mostSeen) seen_.clear();
    seen_.insert(text);
}

void XmlTypes::add(XmlReader& reader, std::string_view parent, std::string_view child, std::int32_t firstLine,
                   XmlElementResult& result) {
    if (!result.typeAttribute.empty()) applyTypeAttribute(result.typeText, child, result.typeAttribute);
    ++children_;
    if (children_ == 1) {
        first_ = child;
        text_ = std::move(result.typeText);
        return;
    }
    if (children_ == 2) {
        list_ = child == first_;
        names_.insert(lowerCase(first_));
    }
    if (list_)
        addElement(reader, firstLine, result.typeText);
    else
        addField(reader, parent, child, result.typeText);
}

std::string XmlTypes::finish(std::string_view name, std::string_view text) const {
    if (children_ == 0) return TypeInfoValueLine(text, name, {}, {});
    return block(name, list_ ? "list" : "record", text_);
}

}  // namespace tarn
