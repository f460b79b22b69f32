// SPDX-License-Identifier: Apache-2.0
//
// Reading and writing the lines of type information text. One reader serves all operations. Since ':' may
// stand in a name and also ends it, a run of name characters is the name as long as a type follows behind it;
// otherwise its last ':' parts it, so that "a:integer" and "ns:a : integer" both say what they seem to say.
#include "kernel/data/typeinfo/typeinfo_text_internal.h"

#include "kernel/text/numbers.h"

#include <iterator>

namespace tarn {
namespace typeinfo {
namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::size_t longestBound = 34;  // digits

class LineReader {
public:
    explicit LineReader(std::string_view line) : body_(ascii::withoutLineEnd(line)) { line_.text = line; }

    Line read() {
        skipBlanks();
        line_.indent = static_cast<std::int32_t>(at_);
        if (peek() == '"' ? !quotedName() : !plainName()) return line_;
        const std::size_t start = skipBlanks();
        while (ascii::isSymbol(peek())) ++at_;
        line_.typeName = body_.substr(start, std::min<std::size_t>(at_ - start, MaxTypeName));
        line_.typeEnd = at_;
        skipBlanks();
        const bool bracket = accept('[');
        if (bracket) bounds();
        const bool closed = !bracket || accept(']');
        line_.whole = closed && !line_.name.empty() && skipBlanks() == body_.size();
        return line_;
    }

private:
    [[nodiscard]] char peek() const { return at_ < body_.size() ? body_[at_] : '\0'; }
    bool accept(char c) {
        if (peek() != c || at_ >= body_.size()) return false;
        ++at_;
        return true;
    }
    std::size_t skipBlanks() {
        while (ascii::isBlank(peek())) ++at_;
        return at_;
    }
    // The name stands at `start`; what parts it from the type, as far as it was not read yet, follows here.
    bool setName(std::size_t start, std::string_view name) {
        line_.name = name.substr(0, MaxTypeInfoName);
        line_.nameEnd = start + name.size();
        skipBlanks();
        accept(':');
        line_.colon = body_.substr(line_.nameEnd, at_ - line_.nameEnd).find(':') != npos;
        return true;
    }

    // A name that is not closed is none.
    bool quotedName() {
        const std::size_t start = at_++;
        while (peek() >= 32 && peek() <= 126 && peek() != '"') ++at_;
        return accept('"') && setName(start, body_.substr(start, at_ - start));
    }
    bool plainName() {
        const std::size_t start = at_;
        while (IsTypeInfoNameChar(peek())) ++at_;
        std::string_view name = body_.substr(start, at_ - start);
        const bool colon = !name.empty() && name.back() == ':';
        skipBlanks();
        if (!colon && !ascii::isSymbol(peek()) && peek() != ':') name = splitName(start, name);
        while (!name.empty() && name.back() == ':') name.remove_suffix(1);
        return setName(start, name);
    }
    // No type stands behind the name: what is behind its last ':' may be one.
    std::string_view splitName(std::size_t start, std::string_view name) {
        const std::size_t colon = name.rfind(':');
        if (colon == npos) return name;
        const std::string_view type = name.substr(colon + 1);
        if (!std::all_of(type.begin(), type.end(), ascii::isSymbol)) return name;
        at_ = start + colon + 1;
        return name.substr(0, colon);
    }

    void bounds() {
        TypeBounds& b = line_.bounds;
        std::int32_t* const pairs[][2] = {{&b.lb1, &b.ub1}, {&b.lb2, &b.ub2}, {&b.lb3, &b.ub3}};
        for (auto* const pair : pairs) {
            if (!integer(*pair[0])) return;
            if (accept(':') && !integer(*pair[1])) return;
            if (!accept(',')) return;
        }
    }
    // A number that no integer can hold leaves the bound absent.
    bool integer(std::int32_t& value) {
        const std::size_t start = skipBlanks();
        if (!accept('+')) accept('-');
        const std::size_t digits = at_;
        while (ascii::isDigit(peek())) ++at_;
        if (at_ == digits) return false;
        std::size_t end = 0;
        const std::size_t used = std::min(at_ - digits, longestBound);
        IntegerFromText(body_.substr(start, digits - start + used), value, end);
        skipBlanks();
        return true;
    }

    std::string_view body_;
    std::size_t at_ = 0;
    Line line_;
};

constexpr struct {
    std::string_view name;
    std::int32_t kind;
} kinds[] = {
    {"boolean", KindBoolean}, {"bit", KindBoolean},
    {"enum", KindEnum},       {"Tchar", KindEnum},
    {"integer", KindInteger}, {"int", KindInteger},
    {"fixed", KindFixed},     {"money", KindFixed},
    {"real", KindReal},       {"float", KindReal},
    {"string", KindString},   {"varchar", KindString},
    {"char", KindString},     {"nvarchar", KindString},
    {"nchar", KindString},    {"uniqueidentifier", KindString},
    {"bigint", KindString},   {"Tdatetime", KindString},
    {"any", KindString},      {"record", KindRecord},
    {"union", KindUnion},     {"set", KindSet},
    {"Tchars", KindArray},    {"Tnumeric", KindArray},
    {"Tlogical", KindArray},  {"Tdate", KindArray},
    {"list", KindList},       {"adt", KindAnyAdt},
};

bool isBlockWord(std::string_view word) {
    constexpr std::string_view words[] = {"record", "union", "list", "table"};
    return std::any_of(std::begin(words), std::end(words),
                       [=](std::string_view each) { return ascii::equal(word, each); });
}

void appendRange(std::string& text, std::int32_t lb, std::int32_t ub, std::string_view before) {
    if (lb != TypeInfoNoValue) text.append(before) += std::to_string(lb);
    if (ub != TypeInfoNoValue) text.append(":") += std::to_string(ub);
}

}  // namespace

Line readLine(std::string_view line) {
    return LineReader(line).read();
}

std::string_view lineOf(std::string_view text, std::int32_t number) {
    if (number < 1) return {};
    while (--number > 0 && !text.empty()) ascii::takeLine(text);
    return ascii::takeLine(text);
}

std::int32_t countLines(std::string_view text) {
    const auto ends = static_cast<std::int32_t>(std::count(text.begin(), text.end(), '\n'));
    return ends + (!text.empty() && text.back() != '\n' ? 1 : 0);
}

std::string boundsText(const TypeBounds& b) {
    if (b.lb1 == TypeInfoNoValue) return {};
    std::string text;
    appendRange(text, b.lb1, b.ub1, "[");
    appendRange(text, b.lb2, b.ub2, ",");
    appendRange(text, b.lb3, b.ub3, ",");
    return text + "]";
}

bool opensBlock(const Line& line) {
    return !line.isEnd() && isBlockWord(line.typeName);
}

bool closesBlock(const Line& line) {
    return line.isEnd() && line.whole && !line.colon && (line.typeName.empty() || isBlockWord(line.typeName));
}

void cutTo(std::string& text, std::int32_t size) {
    const auto most = static_cast<std::size_t>(std::max(size, 1) - 1);
    if (text.size() > most) text.resize(most);
}

}  // namespace typeinfo

using namespace typeinfo;

bool TypeInfoElement::isEnd() const {
    return isEndName(name);
}

bool TypeInfoIsClosing(std::string_view text, std::int32_t line) {
    return closesBlock(readLine(lineOf(text, line)));
}

TypeInfoElement TypeInfoParseLine(std::string_view text, std::int32_t line) {
    const Line read = readLine(lineOf(text, line));
    return {read.indent, std::string(read.name), std::string(read.typeName), read.bounds};
}

std::string TypeInfoLine(std::string_view text, std::int32_t line) {
    return std::string(lineOf(text, line));
}

std::string TypeInfoName(std::string_view text, std::int32_t line) {
    return std::string(readLine(lineOf(text, line)).name);
}

std::string TypeInfoTypeText(std::string_view text, std::int32_t line) {
    constexpr std::string_view bracketChars = "+,-0123456789:[]";
    const Line read = readLine(lineOf(text, line));
    std::string_view rest = read.text.substr(read.typeEnd);
    if (rest.empty() || rest[0] != '[') return std::string(read.typeName);
    rest = rest.substr(0, rest.find_first_not_of(bracketChars));
    return std::string(read.typeName).append(rest);
}

std::int32_t TypeInfoIndent(std::string_view text, std::int32_t line) {
    return readLine(lineOf(text, line)).indent;
}

void TypeInfoDeleteLine(std::string& text, std::int32_t line) {
    const std::string_view old = lineOf(text, line);
    if (old.empty() || old.back() != '\n') return;
    text.erase(static_cast<std::size_t>(old.data() - text.data()), old.size());
}

void TypeInfoChangeIndent(std::int32_t delta, std::string& text, std::int32_t size) {
    if (size < 1) return;
    const auto most = static_cast<std::size_t>(size - 1);
    const std::size_t added = delta > 0 ? static_cast<std::size_t>(delta) : 0;
    std::int64_t removed = 0;
    std::string out;
    for (std::string_view rest = text; !rest.empty() && out.size() < most;) {
        std::string_view line = ascii::takeLine(rest);
        if (line.back() != '\n') break;
        out.append(std::min(added, most - out.size()), '\t');
        for (removed = delta; removed < 0 && line.front() == '\t'; ++removed) line.remove_prefix(1);
        out.append(line);
    }
    cutTo(out, size);
    text = std::move(out);
}

std::int32_t TypeInfoCountElements(std::string_view text, std::int32_t indent) {
    std::int32_t count = 0;
    while (!text.empty()) {
        const Line line = readLine(ascii::takeLine(text));
        if (line.indent == indent && !line.isEnd()) ++count;
    }
    return count;
}

std::int32_t TypeInfoFindElement(std::string_view text, std::string_view name, std::int32_t indent) {
    std::int32_t found = -1;
    for (std::int32_t number = 1; !text.empty(); ++number) {
        const Line line = readLine(ascii::takeLine(text));
        if (line.indent == indent && !line.isEnd() && ascii::equal(line.name, name)) found = number;
    }
    return found;
}

void TypeInfoSkipLine(std::string_view text, std::size_t& position) {
    const std::size_t end = text.find('\n', std::min(position, text.size()));
    position = end == npos ? text.size() : end + 1;
}

void TypeInfoFormatLine(std::string& text, std::int32_t size, std::int32_t line, std::string_view name,
                        std::string_view typeName, const TypeBounds& bounds) {
    if (size < 1 || name.empty() || typeName.empty()) return;
    const std::string_view old = lineOf(text, line);
    if (old.empty()) return;
    const auto start = static_cast<std::size_t>(old.data() - text.data());
    const std::string_view body = ascii::withoutLineEnd(old);
    const auto indent = static_cast<std::size_t>(readLine(old).indent);
    std::string fresh(name);
    fresh.append(" : ").append(typeName) += boundsText(bounds);
    text.replace(start + indent, body.size() - indent, fresh);
    cutTo(text, size);
}

void TypeInfoAppendLine(std::string& buffer, std::int32_t size, std::string_view name,
                        std::string_view typeName, const TypeBounds& bounds) {
    if (size < 1 || name.empty() || typeName.empty()) return;
    std::string line = "\n";
    TypeInfoFormatLine(line, INT32_MAX, 1, name, typeName, bounds);
    buffer += line;
    cutTo(buffer, size);
}

void TypeInfoAppendLineToString(StringDescriptor* text, std::string_view name, std::string_view typeName,
                                const TypeBounds& bounds) {
    if (KindOf(text) != KindString) return;
    std::string line;
    TypeInfoAppendLine(line, INT32_MAX, name, typeName, bounds);
    if (line.empty()) return;
    if (text->maxlength == UNBOUNDED) {
        StringConcat(text, line, text);
    } else {
        for (const char c : line) StringAppendChar(text, static_cast<unsigned char>(c));
    }
}

std::int32_t TypeInfoKind(std::string_view typeName) {
    const auto* const row = std::find_if(std::begin(kinds), std::end(kinds),
                                         [&](const auto& k) { return ascii::equal(k.name, typeName); });
    return row != std::end(kinds) ? row->kind : std::int32_t{KindNone};
}

}  // namespace tarn
