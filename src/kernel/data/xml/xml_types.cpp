// SPDX-License-Identifier: Apache-2.0
//
// The structure of an element as type information text. The first two children decide: two of one name make a
// list, two of different names a record. Names, not texts, are compared: an element that holds nothing has no
// text but still is the first of a list.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/value_line.h"
#include "kernel/data/xml/xml_reader_internal.h"
#include "kernel/run/errors.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tarn {

namespace {

constexpr std::size_t most = std::size_t{MaxXmlTypeText};

std::string block(std::string_view name, std::string_view type, std::string_view inner) {
    std::string text(name);
    text.append(" : ").append(type).append("\n");
    XmlAppendDeeper(text, inner);
    return text.append("end ").append(type).append("\n");
}

// Fields are bound by their number, so one that holds nothing has its line too.
std::string fieldText(std::string_view name, std::string_view text) {
    return text.empty() ? std::string(name).append(" : Any\n") : std::string(text);
}

bool isOneLine(std::string_view text) {
    return text.find('\n') + 1 == text.size();
}

// ---- fixed and real ----

// The lines of a declaration, each with the names of the elements around it and its own.
template <class Visit>
void eachLine(std::string_view text, Visit visit) {
    std::vector<std::size_t> ends;  // of the names, by their depth
    std::string path;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1);
        text.remove_prefix(line.size());
        const TypeInfoElement element = TypeInfoParseLine(line, 1);
        ends.resize(static_cast<std::size_t>(element.indent), path.size());
        path.resize(ends.empty() ? 0 : ends.back());
        path.append("/").append(element.name);
        ends.push_back(path.size());
        visit(line, element, path);
    }
}

using Paths = std::unordered_set<std::string>;

Paths realsOf(std::string_view text) {
    Paths reals;
    eachLine(text, [&](std::string_view, const TypeInfoElement& element, const std::string& path) {
        if (element.typeName == "real") reals.insert(path);
    });
    return reals;
}

void makeReal(std::string& text, const Paths& reals) {
    std::string made;
    eachLine(text, [&](std::string_view line, const TypeInfoElement& element, const std::string& path) {
        if (element.typeName == "fixed" && reals.count(path) != 0)
            made.append(static_cast<std::size_t>(element.indent), '\t').append(element.name + " : real\n");
        else
            made.append(line);
    });
    text = std::move(made);
}

bool mayBeReal(std::string_view fixed, std::string_view real) {
    return fixed.find(" : fixed\n") != std::string_view::npos &&
           real.find(" : real\n") != std::string_view::npos;
}

// Numbers of few and of many decimals are one kind of number: where one of two declarations says fixed and
// the other real, both become real.
void alignReals(std::string& a, std::string& b) {
    if (mayBeReal(a, b)) makeReal(a, realsOf(b));
    if (mayBeReal(b, a)) makeReal(b, realsOf(a));
}

// What a `type` attribute says takes the place of what was found in a single element, if it is a type of this
// system: other files have an attribute of that name for words of their own. Types that hold others are never
// left without their end.
void applyTypeAttribute(std::string& text, std::string_view name, std::string_view attribute) {
    if (!text.empty() && !isOneLine(text)) return;
    const std::string lower = ascii::lowered(attribute);
    const TypeInfoElement element = TypeInfoParseLine(std::string("x : ").append(attribute), 1);
    const std::string type = ascii::lowered(element.typeName);
    const std::int32_t kind = TypeInfoKind(type);
    const bool many = lower.starts_with("list") || lower.starts_with("table");
    if (kind == KindList || type == "table" || (many && text.empty())) {
        text = block(name, "list", "component : Any\n");
    } else if (kind == KindRecord || kind == KindUnion) {
        text = block(name, type, "");
    } else if (IsValueKind(kind)) {
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

void XmlTypes::addField(XmlPass& pass, std::string_view parent, std::string_view child,
                        std::string_view text) {
    if (!names_.insert(ascii::lowered(child)).second)
        return XmlReport(pass, ERR_XML_DATA,
                         "Element '" + std::string(child) + "' occurred multiple times in the record '" +
                             std::string(parent) + "'");
    if (text_.size() <= most) text_.append(fieldText(child, text));
}

// One that holds nothing has no text, but its name must be that of the others, too.
void XmlTypes::addElement(XmlPass& pass, std::string_view child, std::int32_t firstLine,
                          const std::string& text) {
    constexpr std::size_t mostSeen = 100;
    if (broken_ || text_.size() > most) return;
    std::string report, merged = text;
    if (child != first_) {
        report = "The name of an element changed, from '" + first_ + "' to '" + std::string(child) + "'";
    } else {
        if (text.empty() || seen_.contains(text)) return;
        alignReals(text_, merged);
        if (!text_.empty()) merged = TypeInfoMerge(text_, merged, INT32_MAX, report);
    }
    broken_ = !report.empty();
    if (broken_) {
        const std::int32_t line = pass.scan.lineNumber();
        if (line != firstLine)
            report += ", between line " + std::to_string(firstLine) + " and " + std::to_string(line);
        return XmlReport(pass, ERR_XML_DATA, report);
    }
    text_ = std::move(merged);
    if (seen_.size() == mostSeen) seen_.clear();
    seen_.insert(text);
}

void XmlTypes::add(XmlPass& pass, std::string_view parent, std::string_view child, std::int32_t firstLine,
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
        if (!list_) text_ = fieldText(first_, text_);
        names_.insert(ascii::lowered(first_));
    }
    if (list_)
        addElement(pass, child, firstLine, result.typeText);
    else
        addField(pass, parent, child, result.typeText);
}

std::string XmlTypes::finish(std::string_view name, std::string_view text) const {
    if (children_ == 0) return DataValueLine(text, name, {}, {});
    return list_ ? block(name, "list", text_) : block(name, "record", fieldText(first_, text_));
}

}  // namespace tarn
