// SPDX-License-Identifier: Apache-2.0
// Texts of numbers, truth values and Base64: any bytes give a value whose text reads as the same value, or leave the
// target as it was. No reader sets an error. Numbers of few digits are what the readers of all make of them, and two
// fixed ones multiply and divide alike in one word and in two.
#include "kernel/data/short_number.h"
#include "kernel/run/runtime.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "os/text/ascii.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

using namespace tarn;

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

void readInteger(const std::string& text) {
    std::int32_t value = 77, again = 78;
    std::size_t end = 0;
    bool ok = false;
    IntegerFromWholeText(text, value, ok);
    require(ok || value == 77);
    if (ok) IntegerFromText(IntegerToText(value, -12), again, end);
    require(!ok || (again == value && end == std::to_string(value).size()));
    value = 77;
    IntegerFromText(text, value, end);
    require(end <= text.size() && (end != 0 || value == 77));
}

void readFixed(const std::string& text) {
    Fixed f = 77, again = 78;
    bool ok = false;
    FixedFromText(text, f, ok);
    require(ok || f == 77);
    if (ok) FixedFromText(FixedToText(f, 300400), again, ok);
    require(!ok || again == f);
}

void readReal(const std::string& text) {
    double x = 77, again = 78;
    bool ok = false;
    RealFromText(text, x, ok);
    require(ok || x == 77);
    if (!ok) return;
    RealFromText(RealToText(x, RealTextDecimals), again, ok);
    require(ok && (std::isnan(x) ? std::isnan(again)
                                 : std::bit_cast<std::uint64_t>(again) == std::bit_cast<std::uint64_t>(x)));
}

void readBoolean(const std::string& text) {
    bool value = true, again = false, ok = false;
    BooleanFromText(text, value, ok);
    if (ok) BooleanFromText(BooleanToText(value), again, ok);
    require(!ok || again == value);
}

// Digits and a point alone, as the readers of data files take them apart.
void readShort(const std::string& text) {
    ShortNumber number;
    const std::size_t start = text.starts_with('-') ? 1 : 0, point = text.find('.');
    const std::string digits =
        text.substr(start, point - start) + (point == std::string::npos ? "" : text.substr(point + 1));
    const bool plain = !digits.empty() && digits.size() <= std::size_t{MostShortDigits} && point != start &&
                       digits.find_first_not_of("0123456789") == std::string::npos &&
                       point + 1 != text.size();
    if (!plain) return;
    number.negative = start == 1;
    number.decimals = point == std::string::npos ? 0 : static_cast<std::int32_t>(text.size() - point - 1);
    for (const char c : digits) number.digits = number.digits * 10 + (c - '0');
    Fixed fixed = 0, quick = 0;
    double real = 0;
    bool ok = false;
    FixedFromText(text, fixed, ok);
    if (FixedOfShort(number, quick)) require(ok && quick == fixed);
    RealFromText(text, real, ok);
    require(ok && RealOfShort(number) == real);
}

void reckon(const std::string& text) {
    Fixed a = 0, b = 0, inOne = 0, inTwo = 0;
    bool ok = false;
    const std::size_t half = text.size() / 2;
    FixedFromText(text.substr(0, half), a, ok);
    FixedFromText(text.substr(half), b, ok);
    FixedMul(a, b, inOne);
    FixedMulWide(a, b, inTwo);
    require(inOne == inTwo);
    if (b == 0) return;
    FixedDiv(a, b, inOne);
    FixedDivWide(a, b, inTwo);
    require(inOne == inTwo);
}

void readBase64(const std::string& text) {
    std::string bytes = "before", digits;
    bool ok = false;
    Base64Decode(text, bytes, ok);
    for (const char c : text)
        if (!ascii::isSpace(c)) digits += c;
    require(ok ? Base64Encode(bytes) == digits : bytes == "before");
    Base64Decode(Base64Encode(text), bytes, ok);
    require(ok && bytes == text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    readInteger(text);
    readFixed(text);
    readReal(text);
    readBoolean(text);
    readShort(text);
    reckon(text);
    readBase64(text);
    require(ErrorCell() == 0);
    return 0;
}
