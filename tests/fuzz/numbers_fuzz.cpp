// SPDX-License-Identifier: Apache-2.0
// Texts of numbers and Base64: any bytes give a value whose text reads as the same value, or leave the target
// as it was. No reader sets an error.
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
    readBase64(text);
    require(ErrorCell() == 0);
    return 0;
}
