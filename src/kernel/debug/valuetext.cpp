// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/valuetext.h"

#include "kernel/debug/valueelements_internal.h"
#include "kernel/debug/valuewriter_internal.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <charconv>
#include <new>

namespace tarn {

namespace {

constexpr std::size_t indentWidth = 3;
constexpr char hexDigits[] = "0123456789ABCDEF";

// What stands as itself between quotes.
constexpr bool isPlain(char c) {
    return c >= 32 && c < 127 && c != '"' && c != '\\';
}

void appendEscape(std::string& out, char c) {
    switch (c) {
    case '\t': out += "\\t"; return;
    case '\n': out += "\\n"; return;
    case '\r': out += "\\r"; return;
    case '"': out += "\"\""; return;
    case '\\': out += "\\\\"; return;
    default: break;
    }
    const auto code = static_cast<unsigned char>(c);
    const char escape[] = {'\\', 'x', hexDigits[code >> 4U], hexDigits[code & 15U]};
    out.append(escape, sizeof escape);
}

// A byte for each character, whatever the width of a character is.
std::string narrowed(const StringDescriptor* s) {
    std::string text;
    for (std::int32_t i = 1; i <= StringLength(s); ++i) {
        const std::int32_t c = StringGetChar(s, i);
        text += static_cast<char>(c <= UINT8_MAX ? c : '?');
    }
    return text;
}

bool acceptValue(const void* value, std::int32_t kind) {
    return (value != nullptr && IsValueKind(kind) && IsOfKind(value, static_cast<Kind>(kind))) ||
           Refuse(ERR_UNIDENTIFIABLE);
}

std::string textOf(const void* value, std::int32_t kind, std::uint32_t flags, std::size_t limit) {
    std::string text;
    ValueWriter(text, flags).append(value, static_cast<Kind>(kind), limit);
    return text;
}

}  // namespace

// ---- the writer ----

ValueWriter::Result ValueWriter::append(const void* value, Kind kind, std::size_t limit) {
    end_ = out_.size() + limit;
    unreadable_ = false;
    write(value, kind, 0);
    const bool cut = out_.size() > end_;
    if (cut) out_.resize(end_);
    return cut ? Result::Cut : unreadable_ ? Result::Unreadable : Result::Whole;
}

void ValueWriter::write(const void* value, Kind kind, std::int32_t level) {
    switch (kind) {
    case KindBoolean: out_ += BooleanToText(ReadAt<std::uint8_t>(value) != 0); break;
    case KindEnum: decimal(ReadAt<std::uint8_t>(value)); break;
    case KindInteger: integer(ReadAt<std::int32_t>(value)); break;
    case KindFixed: out_ += FixedToText(ReadAt<Fixed>(value)); break;
    case KindReal: out_ += RealToText(ReadAt<double>(value), RealTextDecimals); break;
    case KindString: string(value); break;
    case KindSet: set(value); break;
    default: composite(value, kind, level); break;
    }
}

void ValueWriter::decimal(std::int32_t value) {
    char digits[12];
    out_.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

void ValueWriter::integer(std::int32_t value) {
    if (!has(VALUE_HEX)) return decimal(value);
    constexpr std::uint32_t nibbles = 8;
    char text[2 + nibbles] = {'0', 'x'};
    for (std::uint32_t i = 0; i < nibbles; ++i)
        text[2 + i] = hexDigits[static_cast<std::uint32_t>(value) >> 4U * (nibbles - 1 - i) & 15U];
    out_.append(text, sizeof text);
}

void ValueWriter::string(const void* value) {
    const auto* const s = static_cast<const StringDescriptor*>(value);
    if (IsZeroValue(value, KindString)) return quoted({});
    if (CharacterWidth == 1) return quoted(StringView(s));
    quoted(narrowed(s));
}

void ValueWriter::quoted(std::string_view bytes) {
    out_ += '"';
    // Each byte takes a character at least, so that no more than these can be seen.
    if (!full()) characters(bytes.substr(0, end_ - out_.size() + 1));
    out_ += '"';
}

void ValueWriter::characters(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto special = std::find_if_not(bytes.begin(), bytes.end(), isPlain);
        const auto plain = static_cast<std::size_t>(special - bytes.begin());
        out_.append(bytes.substr(0, plain));
        bytes.remove_prefix(plain);
        if (bytes.empty()) return;
        appendEscape(out_, bytes.front());
        bytes.remove_prefix(1);
    }
}

void ValueWriter::set(const void* value) {
    String text;
    if (!IsZeroValue(value, KindSet)) SetToText(static_cast<const SetDescriptor*>(value), true, text.get());
    if (text.length() == 0) text.assign("[]");
    out_ += CharacterWidth == 1 ? std::string(text.view()) : narrowed(text.get());
}

bool ValueWriter::isBraced(Kind kind, std::int32_t level) const {
    const bool isRows = has(VALUE_ROWS) && level == 0 && (kind == KindList || kind == KindTable);
    return has(VALUE_BRACES) && !isRows;
}

bool ValueWriter::isText(const void* value, Kind kind) const {
    return has(VALUE_CHARACTERS) && IsCharacterArray(value, kind);
}

void ValueWriter::composite(const void* value, Kind kind, std::int32_t level) {
    if (isText(value, kind)) {
        const auto array = ReadAt<ArrayDescriptor>(value);
        std::string_view bytes(At(array.data), static_cast<std::size_t>(array.size));
        if (has(VALUE_TO_NUL)) bytes = bytes.substr(0, bytes.find('\0'));
        return quoted(bytes);
    }
    const bool braced = isBraced(kind, level);
    if (braced) out_ += '{';
    if (!IsZeroValue(value, kind)) elements(value, kind, level);
    if (braced) out_ += '}';
}

void ValueWriter::elements(const void* value, Kind kind, std::int32_t level) {
    ValueElements all(value, kind);
    const bool toNul = has(VALUE_TO_NUL) && IsCharacterArray(value, kind);
    const bool opensLines = has(VALUE_NEWLINES) && isBraced(kind, level) && all.count() > 0;
    if (opensLines) out_ += '\n';
    for (std::int32_t i = 0; i < all.count() && !full(); ++i) {
        const void* const at = all.at(i);
        unreadable_ = at == nullptr;
        if (unreadable_ || (toNul && ReadAt<std::uint8_t>(at) == 0)) break;
        element(at, all.kind(i), level + 1, i == 0);
    }
    if (opensLines && has(VALUE_INDENT)) out_.append(indentWidth * static_cast<std::size_t>(level), ' ');
}

// A composite without braces is its elements: they begin and end the lines.
void ValueWriter::element(const void* value, Kind kind, std::int32_t level, bool first) {
    const bool lines = has(VALUE_NEWLINES);
    if (!first) {
        if (lines && !out_.empty() && out_.back() == '\n') out_.pop_back();
        out_ += lines ? ",\n" : has(VALUE_BLANKS) ? ", " : ",";
    }
    const std::size_t start = out_.size();
    const bool isOpen = IsComposite(kind) && !isBraced(kind, level) && !isText(value, kind);
    if (lines && has(VALUE_INDENT) && !isOpen)
        out_.append(indentWidth * static_cast<std::size_t>(level), ' ');
    write(value, kind, level);
    if (lines && (out_.size() == start || out_.back() != '\n')) out_ += '\n';
}

// ---- the operations ----

void ValueText(const void* value, std::int32_t kind, std::uint32_t flags, void* dest) {
    if (KindOf(dest) != KindString) return SetError(ERR_STRING_TYPE);
    if (!acceptValue(value, kind)) return;
    auto* const string = static_cast<StringDescriptor*>(dest);
    const std::size_t limit =
        string->maxlength == UNBOUNDED ? MaxValueText : static_cast<std::size_t>(string->maxlength);
    try {
        StringAssignView(string, textOf(value, kind, flags, limit));
    } catch (const std::bad_alloc&) {
        SetError(ERR_OUT_OF_MEMORY);
    }
}

std::string ValueText(const void* value, std::int32_t kind, std::uint32_t flags) {
    if (!acceptValue(value, kind)) return {};
    return textOf(value, kind, flags, MaxValueText);
}

}  // namespace tarn
