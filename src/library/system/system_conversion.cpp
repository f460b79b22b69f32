// SPDX-License-Identifier: Apache-2.0
//
// The conversion family. These functions compute on their arguments alone and set their own codes, and so have
// no frames.
#include "library/system/conversion.h"

#include "kernel/run/errors.h"
#include "kernel/text/numbers.h"
#include "kernel/text/padding.h"
#include "kernel/values/arrays.h"
#include "kernel/values/convert.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"
#include "os/text/ascii.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr std::string_view HexDigits = "0123456789ABCDEF";

template <class Number>
Number converted(const void* from, Kind kind, Kind wanted) {
    Number number{};
    bool ok = false;
    AdtConvert(from, kind, &number, wanted, ok);
    return number;
}

std::string padded(std::string_view text, Format format) {
    return Padded(std::string(text), SplitFormat(format.word()).width);
}

std::string hexDigits(std::uint64_t value, int width) {
    std::string digits;
    for (; value != 0; value >>= 4) digits += HexDigits[value & 15];
    const auto wanted = static_cast<std::size_t>(std::clamp(width, 1, 255));
    if (digits.size() < wanted) digits.append(wanted - digits.size(), '0');
    std::reverse(digits.begin(), digits.end());
    return digits;
}

// The characters of a field: the elements of an array of bytes of one dimension.
bool fieldText(const ArrayDescriptor* array, std::string& text) {
    if (KindOf(array) != KindArray || array->tag != KindEnum) return false;
    if (array->bounds[1].lower != NO_DIMENSION) return false;
    text.resize(static_cast<std::size_t>(std::max(array->size, 0)));
    std::int32_t place = array->bounds[0].lower;
    for (char& c : text) ArrayGet(array, place++, &c, KindEnum);
    return true;
}

ArrayValue field(int size) {
    ArrayValue value;
    ArrayInit(value.get(), KindEnum, 1, size);
    return value;
}

}  // namespace

bool CVTB(std::uint8_t n) {
    return n != 0;
}
bool CVTB(std::int32_t n) {
    return n != 0;
}
bool CVTB(FixedValue n) {
    return n.word != 0;
}
bool CVTB(double n) {
    return n != 0;
}
bool CVTB(std::string_view text) {
    bool value = false, ok = false;
    BooleanFromText(Unpadded(text), value, ok);
    if (!ok) SetError(ERR_BOOLEAN_CONVERSION);
    return value;
}

FixedValue CVTF(std::int32_t n) {
    return FixedValue(Fixed{n} * FixedOne);
}
FixedValue CVTF(double n) {
    Fixed word = 0;
    FixedFromReal(n, word);
    return FixedValue(word);
}
FixedValue CVTF(std::string_view text) {
    Fixed word = 0;
    bool ok = false;
    FixedFromText(text, word, ok);
    if (!ok) SetError(ERR_FIXED_CONVERSION);
    return FixedValue(word);
}

std::int32_t CVTI(FixedValue n) {
    return converted<std::int32_t>(&n.word, KindFixed, KindInteger);
}
std::int32_t CVTI(double n) {
    return converted<std::int32_t>(&n, KindReal, KindInteger);
}
std::int32_t CVTI(std::string_view text) {
    std::int32_t value = 0;
    bool ok = false;
    IntegerFromWholeText(text, value, ok);
    if (!ok) SetError(ERR_INTEGER_CONVERSION);
    return value;
}
std::int32_t CVTI(std::string_view text, bool& ok) {
    std::int32_t value = 0;
    std::size_t end = 0;
    IntegerFromText(text, value, end);
    ok = end != 0 && end == text.size();
    return ok ? value : 0;
}

double CVTR(std::uint8_t n) {
    return n;
}
double CVTR(std::int32_t n) {
    return n;
}
double CVTR(FixedValue n) {
    return FixedToReal(n.word);
}
double CVTR(std::string_view text) {
    double value = 0;
    bool ok = false;
    RealFromText(text, value, ok);
    if (!ok) SetError(ERR_REAL_CONVERSION);
    return value;
}

std::string CVTS(const void* value, Kind kind) {
    std::string characters;
    if (kind == KindArray && fieldText(static_cast<const ArrayDescriptor*>(value), characters))
        return characters;
    String text;
    bool ok = false;
    AdtConvert(value, kind, text.get(), KindString, ok);
    if (!ok) SetError(ERR_STRING_CONVERSION);
    return std::string(StringView(text.get()));
}

std::int32_t ORD(std::string_view text) {
    return text.empty() ? 0 : static_cast<unsigned char>(text[0]);
}
std::string CHR(std::int32_t code) {
    return std::string(1, static_cast<char>(code & 255));
}

std::string STR(std::uint8_t value) {
    return std::to_string(value);
}
std::string STR(std::int32_t value) {
    return std::to_string(value);
}
std::string STR(FixedValue value) {
    return FixedToText(value.word);
}
std::string STR(double value) {
    return RealToText(value, RealTextDecimals);
}
std::string STR(std::string_view value) {
    return std::string(value);
}
std::string STR(std::uint8_t value, Format format) {
    return padded(STR(value), format);
}
std::string STR(std::int32_t value, Format format) {
    return padded(STR(value), format);
}
std::string STR(FixedValue value, Format format) {
    return FixedToText(value.word, format.word());
}
std::string STR(double value, Format format) {
    return RealToFormat(value, format.word());
}
std::string STR(std::string_view value, Format format) {
    return padded(value, format);
}

std::string HEXSTR(std::uint32_t value, int width) {
    return hexDigits(value, width);
}
std::string HEXSTR(std::int32_t value, int width) {
    return hexDigits(static_cast<std::uint32_t>(value), width);
}
std::string HEXSTR(std::uint8_t value, int width) {
    return hexDigits(value, width);
}
std::string HEXSTR(FixedValue value, int width) {
    return hexDigits(static_cast<std::uint64_t>(value.word), width);
}
std::string HEXSTR(std::string_view bytes) {
    std::string digits;
    digits.reserve(bytes.size() * 2);
    for (const char c : bytes) {
        digits += HexDigits[static_cast<unsigned char>(c) >> 4];
        digits += HexDigits[c & 15];
    }
    return digits;
}

std::uint32_t HEXVAL(std::string_view text) {
    std::uint32_t value = 0;
    for (const char c : text) {
        const int digit = ascii::hexDigit(c);
        if (digit < 0) break;
        value = value << 4 | static_cast<std::uint32_t>(digit);
    }
    return value;
}

std::uint8_t IIF(bool condition, std::uint8_t yes, std::uint8_t no) {
    return condition ? yes : no;
}
std::int32_t IIF(bool condition, std::int32_t yes, std::int32_t no) {
    return condition ? yes : no;
}
FixedValue IIF(bool condition, FixedValue yes, FixedValue no) {
    return condition ? yes : no;
}
double IIF(bool condition, double yes, double no) {
    return condition ? yes : no;
}
std::string IIF(bool condition, std::string_view yes, std::string_view no) {
    return std::string(condition ? yes : no);
}
Object IIF(bool condition, const Object& yes, const Object& no) {
    return condition ? yes : no;
}

void SETVALUE(std::string_view text, SetDescriptor* set, bool& ok) {
    std::int32_t position = 1, error = 0;
    const std::string_view literal = Unpadded(text);
    OwnedSet read;
    SetInit(read.get(), UNBOUNDED, UNBOUNDED);
    SetFromText(literal, position, read.get(), error);
    constexpr std::int32_t NoSet = 1;
    ok = error != NoSet && (error != 0 || static_cast<std::size_t>(position) == literal.size() + 1);
    if (ok && error == 0) SetAssign(set, read.get(), error);
}

void SETVALUE(std::string_view text, SetDescriptor* set) {
    bool ok = false;
    SETVALUE(text, set, ok);
    if (!ok) SetError(ERR_SET_CONVERSION);
}

ArrayValue TCHARS(int size) {
    return field(size);
}
ArrayValue TNUMERIC(int size) {
    return field(size);
}
ArrayValue TDATE(int size) {
    return field(size);
}
ArrayValue TLOGICAL(int size) {
    return field(size);
}

}  // namespace tarn
