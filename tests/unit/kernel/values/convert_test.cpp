// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/convert.h"

#include "kernel/text/fixed.h"
#include "kernel/values/strings.h"
#include "unit/kernel/checked_fixture.h"

#include <cmath>
#include <limits>

using namespace tarn;
using namespace std::string_view_literals;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// The number type of each kind that is a number.
template <Kind kind>
using NumberOf = std::conditional_t<
    kind == KindReal, double,
    std::conditional_t<kind == KindFixed, Fixed,
                       std::conditional_t<kind == KindInteger, std::int32_t, std::uint8_t>>>;

class Convert : public Checked {
protected:
    void TearDown() override {
        CharacterWidth = 1;
        Checked::TearDown();
    }
    // One conversion between numbers, at addresses of no alignment; the target holds 77 before.
    template <Kind from, Kind to>
    static NumberOf<to> number(NumberOf<from> value) {
        char source[16], target[16];
        WriteAt(source + 1, value);
        WriteAt(target + 3, NumberOf<to>{77});
        bool ok = false;
        AdtConvert(source + 1, from, target + 3, to, ok);
        EXPECT_TRUE(ok);
        return ReadAt<NumberOf<to>>(target + 3);
    }
    template <Kind from>
    static std::string text(NumberOf<from> value) {
        char source[16];
        WriteAt(source + 1, value);
        String target("old"sv);
        bool ok = false;
        AdtConvert(source + 1, from, target.get(), KindString, ok);
        EXPECT_TRUE(ok);
        return std::string(target.view());
    }
    template <Kind to>
    static NumberOf<to> fromText(std::string_view text) {
        const String source(text);
        char target[16];
        WriteAt(target + 3, NumberOf<to>{77});
        bool ok = false;
        AdtConvert(source.get(), KindString, target + 3, to, ok);
        EXPECT_TRUE(ok);
        return ReadAt<NumberOf<to>>(target + 3);
    }
};

// ---- the table ----

TEST_F(Convert, BooleansAreZeroAndOne) {
    for (const int byte : {0, 1, 2, 255}) {
        const auto value = static_cast<std::uint8_t>(byte);
        const int expected = value != 0 ? 1 : 0;
        EXPECT_EQ((number<KindBoolean, KindInteger>(value)), expected);
        EXPECT_EQ((number<KindBoolean, KindFixed>(value)), expected * 10000);
        EXPECT_EQ((number<KindBoolean, KindReal>(value)), expected);
        EXPECT_EQ(text<KindBoolean>(value), value != 0 ? "True" : "False");
    }
}

TEST_F(Convert, EnumsAreTheirOrdinals) {
    for (const int byte : {0, 1, 127, 128, 255}) {
        const auto value = static_cast<std::uint8_t>(byte);
        EXPECT_EQ((number<KindEnum, KindInteger>(value)), value);
        EXPECT_EQ((number<KindEnum, KindFixed>(value)), value * 10000);
        EXPECT_EQ((number<KindEnum, KindReal>(value)), value);
        EXPECT_EQ(text<KindEnum>(value), std::to_string(value));
    }
}

TEST_F(Convert, IntegersAreExactInEveryKind) {
    for (const std::int32_t value : {0, 1, -1, 123456789, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ((number<KindInteger, KindInteger>(value)), value);
        EXPECT_EQ((number<KindInteger, KindFixed>(value)), std::int64_t{value} * 10000);
        EXPECT_EQ((number<KindInteger, KindReal>(value)), value);
        EXPECT_EQ(text<KindInteger>(value), std::to_string(value));
    }
}

TEST_F(Convert, FixedNumbers) {
    for (const Fixed value : {Fixed{0}, Fixed{1}, Fixed{-1}, LargestFixed, SmallestFixed})
        EXPECT_EQ((number<KindFixed, KindFixed>(value)), value);
    EXPECT_EQ((number<KindFixed, KindReal>(12345)), 1.2345);
    EXPECT_EQ((number<KindFixed, KindReal>(SmallestFixed)), -922337203685477.5808);
    EXPECT_EQ(text<KindFixed>(12000), "1.2000");
    EXPECT_EQ(text<KindFixed>(-1), "-0.0001");
    EXPECT_EQ(text<KindFixed>(SmallestFixed), "-922337203685477.5808");
}

TEST_F(Convert, FixedNumbersAreCutToIntegersTowardsZero) {
    constexpr struct {
        Fixed f;
        std::int32_t integer;
    } rows[] = {{0, 0},
                {19999, 1},
                {-19999, -1},
                {-9999, 0},
                {9999, 0},
                {21474836479999, INT32_MAX},
                {-21474836489999, INT32_MIN}};
    for (const auto& row : rows) EXPECT_EQ((number<KindFixed, KindInteger>(row.f)), row.integer) << row.f;
}

TEST_F(Convert, FixedNumbersOutsideTheIntegersAre641AndZero) {
    for (const Fixed f : {Fixed{21474836480000}, Fixed{-21474836490000}, LargestFixed, SmallestFixed}) {
        EXPECT_EQ((number<KindFixed, KindInteger>(f)), 0) << f;
        EXPECT_EQ(takeError(), 641) << f;
    }
}

TEST_F(Convert, Reals) {
    EXPECT_EQ((number<KindReal, KindReal>(-infinity)), -infinity);
    EXPECT_TRUE(std::isnan(number<KindReal, KindReal>(notANumber)));
    EXPECT_EQ((number<KindReal, KindReal>(0.1)), 0.1);
    EXPECT_EQ((number<KindReal, KindFixed>(-1.23456)), -12346);
    EXPECT_EQ((number<KindReal, KindFixed>(0.00009)), 0);
    EXPECT_EQ(text<KindReal>(0.125), "+1.2500000000000000E-0001");
    EXPECT_EQ(text<KindReal>(-10), "-1.0000000000000000E+0001");
    EXPECT_EQ(text<KindReal>(infinity), "+INF");
    EXPECT_EQ(text<KindReal>(notANumber), "+NAN");
}

TEST_F(Convert, RealsAreCutToIntegersTowardsZero) {
    constexpr struct {
        double x;
        std::int32_t integer;
    } rows[] = {{0, 0},      {-0.0, 0},
                {1.9999, 1}, {-1.9999, -1},
                {1e-300, 0}, {2147483647.9999, INT32_MAX},
                {2.5, 2},    {-2147483648.9999, INT32_MIN}};
    for (const auto& row : rows) EXPECT_EQ((number<KindReal, KindInteger>(row.x)), row.integer) << row.x;
}

TEST_F(Convert, RealsOutsideTheTargetKindAre641AndZero) {
    for (const double x :
         {2147483648.0, -2147483649.0, 1e300, -1e300, infinity, -infinity, notANumber, -notANumber}) {
        EXPECT_EQ((number<KindReal, KindInteger>(x)), 0) << x;
        EXPECT_EQ(takeError(), 641) << x;
    }
    for (const double x : {922337203685477.625, -922337203685477.625, infinity, notANumber}) {
        EXPECT_EQ((number<KindReal, KindFixed>(x)), 0) << x;
        EXPECT_EQ(takeError(), 641) << x;
    }
}

TEST_F(Convert, TextsOfIntegers) {
    constexpr struct {
        std::string_view text;
        std::int32_t value;
    } rows[] = {
        {"0", 0},
        {"+987654321", 987654321},
        {"-987654321", -987654321},
        {"  12 ", 12},
        {"2147483647", INT32_MAX},
        {"-2147483648", INT32_MIN},
        {"NULL", 0},
        {" NULL ", 0},
        {"12\0"sv, 12},
    };
    for (const auto& row : rows) EXPECT_EQ(fromText<KindInteger>(row.text), row.value) << row.text;
}

TEST_F(Convert, TextsOfFixedNumbers) {
    EXPECT_EQ(fromText<KindFixed>("1.2"), 12000);
    EXPECT_EQ(fromText<KindFixed>(" -.0001 "), -1);
    EXPECT_EQ(fromText<KindFixed>("2147483648.9999"), 21474836489999);
}

TEST_F(Convert, TextsOfReals) {
    EXPECT_EQ(fromText<KindReal>("-1.250E-1"), -0.125);
    EXPECT_EQ(fromText<KindReal>(" 10 "), 10);
    EXPECT_EQ(fromText<KindReal>("1E-400"), 0);
    EXPECT_EQ(fromText<KindReal>("-INF"), -infinity);
}

TEST_F(Convert, ATextThatDoesNotParseIsTheErrorOfItsTargetKindAndChangesNothing) {
    for (const auto text : {""sv, " "sv, "x"sv, "12x"sv, "1 2"sv, "--1"sv, "\0NULL\0"sv, "\0"sv, "1\0\0"sv,
                            "null"sv, "NULLS"sv, "True"sv}) {
        EXPECT_EQ(fromText<KindInteger>(text), 77) << text;
        EXPECT_EQ(takeError(), 983) << text;
        EXPECT_EQ(fromText<KindFixed>(text), 77) << text;
        EXPECT_EQ(takeError(), 984) << text;
        EXPECT_EQ(fromText<KindReal>(text), 77) << text;
        EXPECT_EQ(takeError(), 985) << text;
    }
    EXPECT_EQ(fromText<KindInteger>("1.5"), 77);
    EXPECT_EQ(takeError(), 983);
    EXPECT_EQ(fromText<KindInteger>("2147483648"), 77);
    EXPECT_EQ(takeError(), 983);
    EXPECT_EQ(fromText<KindFixed>("NULL"), 77);
    EXPECT_EQ(takeError(), 984);
    EXPECT_EQ(fromText<KindFixed>("922337203685477.5808"), 77);
    EXPECT_EQ(takeError(), 984);
    EXPECT_EQ(fromText<KindReal>("NULL"), 77);
    EXPECT_EQ(takeError(), 985);
}

TEST_F(Convert, ATextTooLargeForItsKindDoesNotParse) {
    EXPECT_EQ(fromText<KindInteger>("1000000000000"), 77);
    EXPECT_EQ(takeError(), 983);
    EXPECT_EQ(fromText<KindFixed>("1000000000000000"), 77);
    EXPECT_EQ(takeError(), 984);
    EXPECT_EQ(fromText<KindReal>("1E400"), 77);
    EXPECT_EQ(takeError(), 985);
}

TEST_F(Convert, ATerminatedStringIsReadWithoutItsNul) {
    for (const std::int32_t width : {1, 2}) {
        CharacterWidth = width;
        String source(10);
        source.assign("12");
        StringTerminate(source.get());
        ASSERT_EQ(source.length(), 3);
        std::int32_t value = 77;
        bool ok = false;
        AdtConvert(source.get(), KindString, &value, KindInteger, ok);
        EXPECT_EQ(value, 12);
    }
}

TEST_F(Convert, AnEarlierErrorStays) {
    SetError(800);
    EXPECT_EQ(fromText<KindInteger>("x"), 77);
    EXPECT_EQ(fromText<KindInteger>("5"), 5);
    EXPECT_EQ(takeError(), 800);
}

TEST_F(Convert, StringsAreAssigned) {
    const String source("  1.5\0x "sv);
    String target("old"sv);
    bool ok = false;
    AdtConvert(source.get(), KindString, target.get(), KindString, ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(target.view(), "  1.5\0x "sv);
    AdtConvert(target.get(), KindString, target.get(), KindString, ok);
    EXPECT_EQ(target.view(), "  1.5\0x "sv);
}

TEST_F(Convert, ATextThatDoesNotFitAFixedStringIsCutWith615) {
    String target(4);
    const std::int32_t value = -123456;
    bool ok = false;
    AdtConvert(&value, KindInteger, target.get(), KindString, ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(target.view(), "-123");
    EXPECT_EQ(takeError(), 615);
}

TEST_F(Convert, WideStringsAreReadAndWritten) {
    CharacterWidth = 2;
    EXPECT_EQ(fromText<KindInteger>(" -12 "), -12);
    EXPECT_EQ(fromText<KindFixed>("1.25"), 12500);
    EXPECT_EQ(fromText<KindReal>("2.5E1"), 25);
    EXPECT_EQ(fromText<KindInteger>("NULL"), 0);
    EXPECT_EQ(text<KindInteger>(-7), "-\0007\0"sv);
    // A wide character is no digit, whatever its low byte.
    String source("12"sv);
    StringPutChar(source.get(), 2, 0x0132);
    std::int32_t value = 77;
    bool ok = false;
    AdtConvert(source.get(), KindString, &value, KindInteger, ok);
    EXPECT_EQ(value, 77);
    EXPECT_EQ(takeError(), 983);
}

TEST_F(Convert, ANumberIsConvertedWhereItStands) {
    char place[16];
    bool ok = false;
    WriteAt(place + 1, std::int32_t{-5});
    AdtConvert(place + 1, KindInteger, place + 1, KindReal, ok);
    EXPECT_EQ(ReadAt<double>(place + 1), -5.0);
    AdtConvert(place + 1, KindReal, place + 1, KindFixed, ok);
    EXPECT_EQ(ReadAt<Fixed>(place + 1), -50000);
    AdtConvert(place + 1, KindFixed, place + 1, KindInteger, ok);
    EXPECT_EQ(ReadAt<std::int32_t>(place + 1), -5);
}

TEST_F(Convert, DescriptorsNeedNoAlignment) {
    char place[2 * sizeof(StringDescriptor) + 8] = {};
    auto* source = reinterpret_cast<StringDescriptor*>(place + 1);
    auto* target = reinterpret_cast<StringDescriptor*>(place + 31);
    StringInit(source, UNBOUNDED);
    StringInit(target, UNBOUNDED);
    StringAssignView(source, "42");
    Fixed f = 0;
    bool ok = false;
    AdtConvert(source, KindString, &f, KindFixed, ok);
    EXPECT_EQ(f, 420000);
    AdtConvert(&f, KindFixed, target, KindString, ok);
    EXPECT_EQ(StringView(target), "42.0000");
    StringFree(source);
    StringFree(target);
}

// ---- what is not in the table ----

TEST_F(Convert, OtherPairsAreNotSupportedAndNoError) {
    alignas(8) char source[64] = {}, target[64], before[64];
    std::fill(std::begin(target), std::end(target), 'x');
    std::copy(std::begin(target), std::end(target), before);
    int supported = 0;
    for (std::int32_t from = -2; from <= 20; ++from) {
        for (std::int32_t to = -2; to <= 20; ++to) {
            if (to >= KindInteger && to <= KindString && from >= KindBoolean && from <= KindString) {
                ++supported;
                continue;
            }
            for (const bool present : {true, false}) {
                bool ok = true;
                AdtConvert(present ? source : nullptr, static_cast<Kind>(from), present ? target : nullptr,
                           static_cast<Kind>(to), ok);
                EXPECT_FALSE(ok) << from << " to " << to;
                EXPECT_EQ(takeError(), 0) << from << " to " << to;
            }
        }
    }
    EXPECT_EQ(supported, 24);
    EXPECT_TRUE(std::equal(std::begin(target), std::end(target), before));
}

TEST_F(Convert, ANullAddressIs610) {
    String string("5"sv);
    std::int32_t value = 77;
    const auto expect610 = [](const void* source, Kind from, void* target, Kind to) {
        bool ok = false;
        AdtConvert(source, from, target, to, ok);
        EXPECT_TRUE(ok);
        EXPECT_EQ(takeError(), 610) << from << " to " << to;
    };
    expect610(nullptr, KindInteger, &value, KindInteger);
    expect610(&value, KindInteger, nullptr, KindFixed);
    expect610(nullptr, KindString, &value, KindInteger);
    expect610(nullptr, KindString, string.get(), KindString);
    expect610(&value, KindInteger, nullptr, KindString);
    expect610(nullptr, KindReal, nullptr, KindReal);
    EXPECT_EQ(value, 77);
    EXPECT_EQ(string.view(), "5");
}

TEST_F(Convert, WhatIsNoStringIs756) {
    StringDescriptor zero{};
    ListDescriptor list{};
    list.tag = KindInteger;
    list.maxlength = UNBOUNDED;
    String string("5"sv);
    std::int32_t value = 77;
    bool ok = false;
    const auto expect756 = [&] {
        EXPECT_TRUE(ok);
        EXPECT_EQ(takeError(), 756);
        EXPECT_EQ(value, 77);
    };
    for (void* wrong : {static_cast<void*>(&zero), static_cast<void*>(&list)}) {
        for (const Kind kind : {KindInteger, KindFixed, KindReal}) {
            AdtConvert(wrong, KindString, &value, kind, ok);
            expect756();
        }
        for (const Kind kind : {KindBoolean, KindEnum, KindInteger}) {
            AdtConvert(&value, kind, wrong, KindString, ok);
            expect756();
        }
        AdtConvert(wrong, KindString, string.get(), KindString, ok);
        expect756();
        AdtConvert(string.get(), KindString, wrong, KindString, ok);
        expect756();
    }
    EXPECT_EQ(string.view(), "5");
    EXPECT_EQ(zero.tag, 0);
    EXPECT_EQ(list.tag, KindInteger);
}

// ---- memory ----

TEST_F(Convert, WithoutMemoryAStringTargetIsEmptyWith802) {
    const char source[24] = {1};
    for (const Kind kind : {KindBoolean, KindEnum, KindInteger, KindFixed, KindReal}) {
        String target(std::string(300, 'x'));
        const std::int64_t blocks = LiveBlocks();
        bool ok = false;
        FailAllocation(0);
        AdtConvert(source, kind, target.get(), KindString, ok);
        FailAllocation(-1);
        EXPECT_TRUE(ok);
        EXPECT_EQ(takeError(), 802) << kind;
        EXPECT_EQ(target.length(), 0) << kind;
        EXPECT_EQ(LiveBlocks(), blocks - 1) << kind;
        String fresh;
        FailAllocation(0);
        AdtConvert(source, kind, fresh.get(), KindString, ok);
        FailAllocation(-1);
        EXPECT_EQ(takeError(), 802);
        EXPECT_EQ(fresh.length(), 0);
        EXPECT_EQ(LiveBlocks(), blocks - 1);
        AdtConvert(source, kind, fresh.get(), KindString, ok);
        EXPECT_GT(fresh.length(), 0);
    }
}

TEST_F(Convert, ReadingATextNeedsNoMemory) {
    const String source("12"sv);
    std::int32_t value = 0;
    Fixed f = 0;
    double x = 0;
    bool ok = false;
    FailAllocation(0);
    AdtConvert(source.get(), KindString, &value, KindInteger, ok);
    AdtConvert(source.get(), KindString, &f, KindFixed, ok);
    AdtConvert(source.get(), KindString, &x, KindReal, ok);
    FailAllocation(-1);
    EXPECT_EQ(value, 12);
    EXPECT_EQ(f, 120000);
    EXPECT_EQ(x, 12);
}

}  // namespace
