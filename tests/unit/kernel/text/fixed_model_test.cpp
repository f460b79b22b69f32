// SPDX-License-Identifier: Apache-2.0
//
// Random numbers of all lengths against models that are slow and plain: 128-bit arithmetic, division bit by
// bit, and texts made digit by digit.
#include "kernel/text/fixed.h"
#include "unit/kernel/runtime_fixture.h"

#include <bit>
#include <cmath>
#include <random>

using namespace tarn;

namespace {

__extension__ using Int128 = __int128;
__extension__ using Unsigned128 = unsigned __int128;

constexpr int steps = 200'000;

class FixedModel : public Runtime {
protected:
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        Runtime::TearDown();
    }

    // Numbers of 0 to 64 bits, so that every length is as likely, and the ends of the range.
    Fixed number() {
        constexpr Fixed ends[] = {SmallestFixed,
                                  SmallestFixed + 1,
                                  LargestFixed,
                                  LargestFixed - 1,
                                  0,
                                  1,
                                  -1,
                                  FixedOne,
                                  -FixedOne,
                                  9999,
                                  -9999};
        const std::uint64_t pick = random() % 64;
        if (pick < std::size(ends)) return ends[pick];
        const std::uint64_t bits = random() >> random() % 64;
        return static_cast<Fixed>(random() % 2 == 0 ? bits : 0 - bits);
    }
    Fixed format() { return static_cast<Fixed>(random() % 2'400'000) - 1'200'000; }
    double real() { return std::bit_cast<double>(random()); }

    static constexpr std::uint32_t seed = 20'607;
    std::mt19937_64 random{seed};
};

Fixed saturated(Int128 value) {
    if (value > LargestFixed) return LargestFixed;
    if (value < SmallestFixed) return SmallestFixed;
    return static_cast<Fixed>(value);
}

// Division as on paper, a bit at a time.
Int128 longDivision(Int128 dividend, Int128 divisor) {
    const bool negative = (dividend < 0) != (divisor < 0);
    const auto n = static_cast<Unsigned128>(dividend < 0 ? -dividend : dividend);
    const auto d = static_cast<Unsigned128>(divisor < 0 ? -divisor : divisor);
    Unsigned128 rest = 0, quotient = 0;
    for (unsigned bit = 128; bit-- > 0;) {
        rest = rest << 1U | (n >> bit & 1U);
        quotient <<= 1U;
        if (rest < d) continue;
        rest -= d;
        quotient |= 1U;
    }
    return negative ? -static_cast<Int128>(quotient) : static_cast<Int128>(quotient);
}

// The digits of all 20 decimals, the last one of the format rounded as on paper.
std::string modelText(Fixed f, std::int32_t width, std::int32_t decimals) {
    Int128 digits = f;
    if (digits < 0) digits = -digits;
    for (int i = 4; i < 20; ++i) digits *= 10;
    Int128 unit = 1;
    for (int i = decimals; i < 20; ++i) unit *= 10;
    digits = (digits + unit / 2) / unit;
    std::string text;
    for (std::int32_t i = 0; i <= decimals || digits != 0; ++i) {
        if (i == decimals && decimals > 0) text.insert(0, 1, '.');
        text.insert(0, 1, static_cast<char>('0' + static_cast<int>(digits % 10)));
        digits /= 10;
    }
    if (f < 0) text.insert(0, 1, '-');
    while (static_cast<std::int32_t>(text.size()) < std::abs(width)) {
        if (width < 0)
            text += ' ';
        else
            text.insert(0, 1, ' ');
    }
    return text;
}

TEST_F(FixedModel, Products) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < steps; ++i) {
        const Fixed a = number(), b = number();
        Fixed r = 0;
        FixedMul(a, b, r);
        ASSERT_EQ(r, saturated(Int128{a} * b / 10000)) << a << " " << b;
        FixedMulWide(a, b, r);
        ASSERT_EQ(r, saturated(Int128{a} * b / 10000)) << a << " " << b;
    }
}

TEST_F(FixedModel, ProductsAtTheEdgeOfTheRange) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < steps; ++i) {
        const Fixed a = number();
        if (a == 0) continue;
        // The factor whose product with `a` is nearest to an end of the range, and its neighbours.
        const Int128 edge = (i % 2 == 0 ? Int128{LargestFixed} : Int128{SmallestFixed}) * 10000 / a;
        const auto b = static_cast<Fixed>(static_cast<std::uint64_t>(saturated(edge)) + random() % 5 - 2);
        Fixed r = 0;
        FixedMul(a, b, r);
        ASSERT_EQ(r, saturated(Int128{a} * b / 10000)) << a << " " << b;
    }
}

TEST_F(FixedModel, Quotients) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < steps; ++i) {
        const Fixed a = number(), b = number();
        if (b == 0) continue;
        Fixed r = 0;
        FixedDiv(a, b, r);
        ASSERT_EQ(r, saturated(longDivision(Int128{a} * 10000, b))) << a << " " << b;
        FixedDivWide(a, b, r);
        ASSERT_EQ(r, saturated(Int128{a} * 10000 / b)) << a << " " << b;
    }
}

TEST_F(FixedModel, SumsAndDifferences) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < steps; ++i) {
        const Fixed a = number(), b = number();
        Fixed r = 0;
        FixedAdd(a, b, r);
        ASSERT_EQ(r, static_cast<Fixed>(Int128{a} + b)) << a << " " << b;
        FixedSub(r, b, r);
        ASSERT_EQ(r, a);
        FixedSub(a, b, r);
        ASSERT_EQ(r, static_cast<Fixed>(Int128{a} - b)) << a << " " << b;
        ASSERT_EQ(FixedNeg(a), static_cast<Fixed>(-Int128{a}));
        ASSERT_EQ(FixedCompare("LT", a, b), a < b);
    }
}

TEST_F(FixedModel, Texts) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < steps; ++i) {
        const Fixed f = number(), shape = format();
        const NumberFormat form = SplitFormat(shape);
        const std::string text = FixedToText(f, shape);
        ASSERT_EQ(text, modelText(f, form.width, form.decimals)) << f << " " << shape;
        Fixed back = 77;
        bool ok = false;
        if (form.decimals < 4) continue;
        FixedFromText(text, back, ok);
        ASSERT_TRUE(ok) << text;
        ASSERT_EQ(back, f) << text;
    }
}

TEST_F(FixedModel, TextsOfAllSorts) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < steps; ++i) {
        std::string text;
        const std::uint64_t length = random() % 24;
        for (std::uint64_t k = 0; k < length; ++k) text += "01234567899+-. x"[random() % 16];
        // The model: a form that is checked by cutting it off piece by piece, and a value by 128 bits.
        std::string_view rest = text;
        while (rest.starts_with(' ')) rest.remove_prefix(1);
        while (rest.ends_with(' ')) rest.remove_suffix(1);
        const bool negative = rest.starts_with('-');
        if (negative || rest.starts_with('+')) rest.remove_prefix(1);
        const std::size_t point = std::min(rest.find('.'), rest.size());
        const std::string whole(rest.substr(0, point));
        const std::string decimals(point < rest.size() ? rest.substr(point + 1) : std::string_view());
        const std::string all = whole + (decimals + "0000").substr(0, 4);
        const bool form = !(whole + decimals).empty() &&
                          (whole + decimals).find_first_not_of("0123456789") == std::string::npos;
        Int128 value = 0;
        for (const char c : all) value = value * 10 + (form ? c - '0' : 0);
        if (negative) value = -value;
        const bool expected = form && value == saturated(value);

        Fixed f = 77;
        bool ok = !expected;
        FixedFromText(text, f, ok);
        ASSERT_EQ(ok, expected) << text;
        ASSERT_EQ(f, expected ? static_cast<Fixed>(value) : 77) << text;
    }
}

// |x - f / 10000|, exactly, in units of 1 / (10000 * 2^20). A real near a large fixed number has at most 14
// binary places.
Int128 distance(double x, Fixed f) {
    const auto scaled = static_cast<Int128>(static_cast<long double>(x) * 1048576.0L) * 10000;
    const Int128 difference = scaled - Int128{f} * 1048576;
    return difference < 0 ? -difference : difference;
}

TEST_F(FixedModel, TheNearestRealOfEveryFixedNumber) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < steps; ++i) {
        const Fixed f = number();
        const double x = FixedToReal(f);
        const std::uint64_t magnitude =
            f < 0 ? 0 - static_cast<std::uint64_t>(f) : static_cast<std::uint64_t>(f);
        if (magnitude <= std::uint64_t{1} << 52U) {  // half a step of the real is less than half of ours
            Fixed back = 77;
            FixedFromReal(x, back);
            ASSERT_EQ(back, f);
            continue;
        }
        const double below = std::nextafter(x, -1e300), above = std::nextafter(x, 1e300);
        ASSERT_LE(distance(x, f), distance(below, f)) << f;
        ASSERT_LE(distance(x, f), distance(above, f)) << f;
    }
}

TEST_F(FixedModel, TheNearestFixedNumberOfEveryReal) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < steps; ++i) {
        // The fraction of a double, shifted to lie in the range: x = mantissa / 2^places.
        const auto places = static_cast<int>(random() % 54);
        const auto mantissa = static_cast<std::int64_t>(random() >> (11 + random() % 53));
        const double x = std::ldexp(static_cast<double>(mantissa), -places) * (i % 2 == 0 ? 1 : -1);
        if (std::fabs(x) > 922337203685477.5 || std::fabs(x) < 0.0001) continue;
        const Int128 scaled = Int128{mantissa} * 10000, unit = Int128{1} << places;
        Int128 expected = scaled / unit;
        if (scaled % unit * 2 >= unit) ++expected;
        Fixed f = 77;
        FixedFromReal(x, f);
        ASSERT_EQ(f, static_cast<Fixed>(i % 2 == 0 ? expected : -expected)) << x;
    }
}

TEST_F(FixedModel, RealsOfAnyBitsComeBackFromTheirTexts) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < steps; ++i) {
        const double x = real();
        const std::string text = RealToText(x, RealTextDecimals);
        double back = 77;
        bool ok = false;
        RealFromText(text, back, ok);
        ASSERT_TRUE(ok) << text;
        if (std::isnan(x))
            ASSERT_TRUE(std::isnan(back)) << text;
        else
            ASSERT_EQ(std::bit_cast<std::uint64_t>(back), std::bit_cast<std::uint64_t>(x)) << text;
    }
}

// The exponent form by the C library, which keeps to the point in its own locale.
std::string modelReal(double x, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%+#.*E", decimals, x);
    std::string form(text);
    const std::size_t digits = form.find('E') + 2;
    return form.insert(digits, 4 - (form.size() - digits), '0');
}

TEST_F(FixedModel, TheExponentFormOfAnyBitsAndDecimals) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < steps; ++i) {
        const double x = real();
        const auto decimals = static_cast<int>(random() % 21);
        if (!std::isfinite(x)) continue;
        ASSERT_EQ(RealToText(x, decimals), modelReal(x, decimals));
    }
}

TEST_F(FixedModel, RealTextsOfAllSorts) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < steps; ++i) {
        std::string text;
        const std::uint64_t length = random() % 10;
        for (std::uint64_t k = 0; k < length; ++k) text += "0123456789+-.. EEe9x"[random() % 20];
        double x = 77;
        bool ok = false;
        RealFromText(text, x, ok);
        ASSERT_EQ(ErrorCell(), 0) << text;
        // What the C library reads to its end, when it is made of nothing but a number's characters.
        const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
        const std::string body = text.substr(first, text.find_last_not_of(' ') + 1 - first);
        char* end = nullptr;
        const double expected = std::strtod(body.c_str(), &end);
        const bool whole = !body.empty() && *end == 0 && body.find_first_of(" xX") == std::string::npos;
        ASSERT_EQ(ok, whole && !std::isinf(expected)) << text;
        ASSERT_EQ(x, ok ? expected : 77) << text;
    }
}

}  // namespace
