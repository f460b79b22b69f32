// SPDX-License-Identifier: Apache-2.0
//
// What was read of a resource file: finding statements, symbols and numbers in it; and values and paths as a file writes
// them. It is read in rcparser.cpp.
#include "platform/resources/rctext.h"

#include "platform/text.h"

#include <algorithm>
#include <set>

namespace tarn::platform {

namespace {

constexpr std::pair<std::string_view, int> commonIds[] = {{"IDOK", 1},    {"IDCANCEL", 2}, {"IDABORT", 3},
                                                          {"IDRETRY", 4}, {"IDIGNORE", 5}, {"IDYES", 6},
                                                          {"IDNO", 7},    {"IDCLOSE", 8},  {"IDHELP", 9}};

constexpr std::string_view memoryOptions[] = {"PRELOAD", "LOADONCALL", "FIXED",  "MOVEABLE", "DISCARDABLE",
                                              "PURE",    "IMPURE",     "SHARED", "NONSHARED"};

bool needsQuotes(std::string_view value) {
    if (value.find("//") != std::string_view::npos || value != trim(value)) return true;
    return std::any_of(value.begin(), value.end(),
                       [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '"' || c == 0x7f; });
}

}  // namespace

const std::string& RcObject::givenName() const {
    return name.empty() && type != Type::Menuitem ? number : name;
}

Properties RcObject::values() const {
    Properties result;
    std::set<std::string_view> seen;
    for (const RcProperty& property : properties)
        if (seen.insert(property.name).second)
            result.emplace_back(property.name, normalValue(type, property.name, property.value));
    return result;
}

const RcStatement* RcFile::find(RcKind kind, std::string_view name) const {
    for (const RcStatement& statement : statements)
        if (statement.kind == kind && sameText(statement.name, name)) return &statement;
    return nullptr;
}

const RcStatement* RcFile::find(std::string_view name) const {
    for (const RcStatement& statement : statements)
        if (statement.kind != RcKind::Define && statement.kind != RcKind::Unknown &&
            sameText(statement.name, name))
            return &statement;
    return nullptr;
}

int RcFile::symbol(std::string_view name) const {
    const auto define = symbols.find(name);
    return define != symbols.end() ? define->second : commonId(name);
}

int RcFile::numberOf(const RcObject& object) const {
    if (object.number.empty()) return object.name.empty() ? 0 : symbol(object.name);
    const std::optional<int> number = wholeNumber(object.number);
    return number ? *number : symbol(object.number);
}

std::string_view RcFile::lineEnd() const {
    const std::size_t first = text.find('\n');
    return first != std::string::npos && first > 0 && text[first - 1] == '\r' ? "\r\n" : "\n";
}

std::string faultText(const std::string& file, const RcFault& fault) {
    return "'" + file + "', line " + std::to_string(fault.line) + ": " + fault.text;
}

int commonId(std::string_view name) {
    for (const auto& [word, number] : commonIds)
        if (sameText(word, name)) return number;
    return 0;
}

bool isMemoryOption(std::string_view word) {
    return std::any_of(std::begin(memoryOptions), std::end(memoryOptions),
                       [&](std::string_view option) { return sameText(option, word); });
}

std::string quoted(std::string_view text) {
    static constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
            result += {'\\', c};
        else if (c == '\n')
            result += "\\n";
        else if (c == '\r')
            result += "\\r";
        else if (c == '\t')
            result += "\\t";
        else if (c == '\0')
            result += "\\0";
        else if (byte < ' ' || byte == 0x7f)
            result += {'\\', 'x', digits[byte >> 4U], digits[byte & 15U]};
        else
            result += c;
    }
    return result + "\"";
}

std::string quotedPath(std::string_view path) {
    std::string result = "\"";
    for (const char c : path) {
        if (c == '"' || c == '\\') result += '\\';
        result += c == '\n' || c == '\0' ? ' ' : c;
    }
    return result + "\"";
}

std::string valueText(Type type, std::string_view name, std::string_view value) {
    const ValueKind kind = kindOf(type, name);
    if (kind == ValueKind::File) return quotedPath(value);
    return kind == ValueKind::Text || needsQuotes(value) ? quoted(value) : std::string(value);
}

}  // namespace tarn::platform
