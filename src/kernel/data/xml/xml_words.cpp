// SPDX-License-Identifier: Apache-2.0
//
// The words of written XML: names of elements, escapes, types as text.
#include "kernel/data/xml/xml_words_internal.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xml/xml.h"
#include "kernel/data/xml/xml_reader_internal.h"
#include "os/text/ascii.h"

#include <algorithm>

namespace tarn {

namespace {

// Quotes go, and what cannot stand in the name of an element becomes "_".
std::string elementName(std::string_view name) {
    if (name.size() >= 2 && name.front() == '"' && name.back() == '"') name = name.substr(1, name.size() - 2);
    std::string made(name);
    for (char& c : made)
        if (!XmlIsNamePart(c)) c = '_';
    if (!made.empty() && !XmlIsNameStart(made[0])) made.insert(0, "_");
    return made;
}

std::string_view escapeOf(char c) {
    switch (c) {
    case '"': return "&quot;";
    case '&': return "&amp;";
    case '\'': return "&apos;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    default: return {};
    }
}

std::string bracketed(std::string_view type, std::int32_t maxlength) {
    std::string text(type);
    if (maxlength != UNBOUNDED) text += "[" + std::to_string(maxlength) + "]";
    return text;
}

std::string arrayType(const ArrayDescriptor& a) {
    std::string bounds;
    for (const ArrayBounds& b : a.bounds) {
        if (b.lower == NO_DIMENSION) break;
        bounds += (bounds.empty() ? "" : ",") + std::to_string(b.lower) + ":" + std::to_string(b.upper);
    }
    return bounds.empty() ? "array" : "array[" + bounds + "]";
}

}  // namespace

// ---- names ----

XmlNames XmlNamesOfLines(std::string_view text) {
    XmlNames names;
    const auto lines = static_cast<std::int32_t>(std::count(text.begin(), text.end(), '\n') + 1);
    for (std::int32_t n = 1; n <= std::min(lines, MaxFields) && !text.empty(); ++n) {
        const std::string name = TypeInfoDefaultName(text, n);
        names.push_back(name == "FIELD" + std::to_string(n) ? std::string() : name);
    }
    return names;
}

XmlNames XmlDeclaredNames(std::string_view description) {
    XmlNames names;
    std::size_t end = 0;
    if (TypeInfoToValue(description, end, nullptr) == KindRecord && end == description.size() && end != 0)
        description.remove_prefix(std::min(description.find('\n'), end - 1) + 1);
    for (std::size_t position = 0; position < description.size();) {
        const std::string name = TypeInfoName(description.substr(position), 1);
        const std::size_t start = position;
        const std::int32_t kind = TypeInfoToValue(description, position, nullptr);
        if (IsValueKind(kind)) names.push_back(name);
        if (position <= start) break;
    }
    return names;
}

XmlNames XmlFieldNames(const XmlNames& given, std::int32_t count) {
    XmlNames names, lower;
    for (std::size_t n = 0; n < static_cast<std::size_t>(count); ++n) {
        std::string name = n < given.size() ? elementName(given[n]) : std::string();
        if (name.empty() || std::find(lower.begin(), lower.end(), ascii::lowered(name)) != lower.end())
            name = "Field" + std::to_string(n + 1);
        lower.push_back(ascii::lowered(name));
        names.push_back(std::move(name));
    }
    return names;
}

bool XmlIsReserved(std::string_view name) {
    const std::string lower = ascii::lowered(name);
    return lower == "type" || lower == "index";
}

// ---- types and texts ----

std::string XmlTypeOf(const void* value, Kind kind) {
    constexpr std::string_view names[KindCount] = {"",     "boolean", "enum",   "integer", "fixed",
                                                   "real", "string",  "record", "union"};
    switch (kind) {
    case KindString: return bracketed("string", ReadAt<DescriptorHead>(value).maxlength);
    case KindList: return bracketed("list", ReadAt<DescriptorHead>(value).maxlength);
    case KindTable: return bracketed("table", ReadAt<DescriptorHead>(value).maxlength);
    case KindArray: return arrayType(*static_cast<const ArrayDescriptor*>(value));
    case KindSet: {
        const auto* s = static_cast<const SetDescriptor*>(value);
        return "set[" + std::to_string(s->lower) + ":" + std::to_string(s->upper) + "]";
    }
    default: return std::string(names[kind]);
    }
}

void XmlAppendEscaped(std::string& out, std::string_view text) {
    constexpr std::string_view special = "\"&'<>";
    for (;;) {
        const std::size_t found = text.find_first_of(special);
        out.append(text.substr(0, found));
        if (found == std::string_view::npos) return;
        out.append(escapeOf(text[found]));
        text.remove_prefix(found + 1);
    }
}

std::string XmlEscape(std::string_view text) {
    std::string escaped;
    XmlAppendEscaped(escaped, text);
    return escaped;
}

}  // namespace tarn
