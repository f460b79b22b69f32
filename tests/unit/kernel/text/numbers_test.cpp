// SPDX-License-Identifier: Apache-2.0
#include "kernel/text/numbers.h"

#include "kernel/api/api.h"
#include "kernel/run/runtime.h"

#include <climits>
#include <cstring>
#include <gtest/gtest.h>

using namespace tarn;

namespace {

class Numbers : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
};

TEST_F(Numbers, DivisionRoundsTowardsMinusInfinity) {
    constexpr struct {
        std::int32_t a, b, quotient, rest;
    } rows[] = {
        {-7, 2, -4, 1},
        {7, -2, -4, -1},
        {-7, -2, 3, -1},
        {7, 2, 3, 1},
        {6, 3, 2, 0},
        {-6, 3, -2, 0},
        {0, 5, 0, 0},
        {0, -5, 0, 0},
        {1, -2, -1, -1},
        {-1, 2, -1, 1},
        {1, INT_MIN, -1, INT_MIN + 1},
        {INT_MIN, 1, INT_MIN, 0},
        {INT_MIN, -1, INT_MIN, 0},
        {INT_MIN, 2, INT_MIN / 2, 0},
        {INT_MIN, INT_MAX, -2, INT_MAX - 1},
        {INT_MAX, INT_MIN, -1, -1},
        {INT_MIN, INT_MIN, 1, 0},
        {INT_MAX, -1, -INT_MAX, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(IntegerDiv(row.a, row.b), row.quotient) << row.a << " " << row.b;
        EXPECT_EQ(IntegerMod(row.a, row.b), row.rest) << row.a << " " << row.b;
        EXPECT_EQ(tarn_integer_div(row.a, row.b), row.quotient);
        EXPECT_EQ(tarn_integer_mod(row.a, row.b), row.rest);
        const auto back = tarn_integer_add(tarn_integer_mul(row.b, row.quotient), row.rest);
        EXPECT_EQ(back, row.a);
    }
}

TEST_F(Numbers, DivisionByZeroIs643AndZero) {
    for (const std::int32_t a : {0, 1, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(IntegerDiv(a, 0), 0);
        EXPECT_EQ(ErrorCell(), 643);
        ClearError();
        EXPECT_EQ(IntegerMod(a, 0), 0);
        EXPECT_EQ(ErrorCell(), 643);
        ClearError();
    }
}

TEST_F(Numbers, ARestHasTheSignOfItsDivisor) {
    for (std::int32_t a = -20; a <= 20; ++a) {
        for (std::int32_t b = -7; b <= 7; ++b) {
            if (b == 0) continue;
            const std::int32_t rest = IntegerMod(a, b);
            EXPECT_TRUE(b > 0 ? rest >= 0 && rest < b : rest <= 0 && rest > b) << a << " " << b;
            EXPECT_EQ(b * IntegerDiv(a, b) + rest, a);
        }
    }
}

TEST_F(Numbers, ArithmeticOfProgramsWraps) {
    EXPECT_EQ(tarn_integer_add(INT_MAX, 1), INT_MIN);
    EXPECT_EQ(tarn_integer_sub(INT_MIN, 1), INT_MAX);
    EXPECT_EQ(tarn_integer_mul(INT_MIN, -1), INT_MIN);
    EXPECT_EQ(tarn_integer_neg(INT_MIN), INT_MIN);
}

TEST_F(Numbers, IntegersFillTheirFields) {
    constexpr struct {
        std::int32_t value, width, base;
        const char* text;
    } rows[] = {
        {0, 1, 10, "0"},
        {123456789, 12, 10, "   123456789"},
        {-123456789, 12, 10, "  -123456789"},
        {0, 12, 10, "           0"},
        {123456789, -12, 10, "123456789   "},
        {-123456789, -12, 10, "-123456789  "},
        {0, -12, 10, "0           "},
        {12345, 3, 10, "12345"},
        {12345, 0, 10, "12345"},
        {INT_MIN, 1, 10, "-2147483648"},
        {INT_MAX, 1, 10, "2147483647"},
        {255, 4, 16, "  FF"},
        {-1, 1, 16, "FFFFFFFF"},
        {0, 1, 16, "0"},
        {255, -4, 16, "FF  "},
        {INT_MIN, 1, 16, "80000000"},
        {INT_MIN, -10, 16, "80000000  "},
        {INT_MAX, 10, 16, "  7FFFFFFF"},
        {255, 1, 8, "255"},
        {-255, 1, 0, "-255"},
        {255, 1, -16, "255"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(IntegerToText(row.value, row.width, row.base), row.text);
        char buffer[32] = "old";
        IntegerToText(row.value, row.width, buffer, sizeof buffer, row.base);
        EXPECT_STREQ(buffer, row.text);
    }
    EXPECT_EQ(IntegerToText(5, INT_MAX).size(), 100U);
    EXPECT_EQ(IntegerToText(5, INT_MIN).size(), 100U);
}

TEST_F(Numbers, ABufferThatIsTooSmallGetsNothing) {
    char buffer[8] = "old";
    IntegerToText(12345, 1, buffer, 5);
    EXPECT_STREQ(buffer, "");
    IntegerToText(12345, 1, buffer, 6);
    EXPECT_STREQ(buffer, "12345");
    std::strcpy(buffer, "old");
    IntegerToText(1, 1, buffer, 0);
    IntegerToText(1, 1, buffer, -5);
    EXPECT_STREQ(buffer, "old");
    IntegerToText(1, 1, nullptr, 5);
}

TEST_F(Numbers, IntegersAreReadFromTheStartOfATextOrNotAtAll) {
    constexpr struct {
        std::string_view text;
        std::int32_t value;
        std::size_t end;
    } rows[] = {
        {"+987654321", 987654321, 10},
        {"-987654321", -987654321, 10},
        {"0", 0, 1},
        {"12x", 12, 2},
        {"007", 7, 3},
        {"2147483647", INT_MAX, 10},
        {"-2147483648", INT_MIN, 11},
        {"00000000000012", 12, 14},
        {"-00000000002147483648", INT_MIN, 21},
        {"+0000000000000000000000", 0, 23},
        {"00000000002147483648", 77, 0},
        {"2147483648", 77, 0},
        {"-2147483649", 77, 0},
        {"99999999999999999999999", 77, 0},
        {"", 77, 0},
        {"+", 77, 0},
        {"-", 77, 0},
        {" 1", 77, 0},
        {"--1", 77, 0},
        {"x", 77, 0},
    };
    for (const auto& row : rows) {
        std::int32_t value = 77;
        std::size_t end = 99;
        IntegerFromText(row.text, value, end);
        EXPECT_EQ(value, row.value) << row.text;
        EXPECT_EQ(end, row.end) << row.text;
    }
}

TEST_F(Numbers, AWholeTextIsOneIntegerOrNone) {
    constexpr struct {
        std::string_view text;
        std::int32_t value;
    } good[] = {{"12", 12}, {"  -12 ", -12}, {"NULL", 0}, {" NULL ", 0}, {"2147483647", INT_MAX}};
    for (const auto& row : good) {
        std::int32_t value = 77;
        bool ok = false;
        IntegerFromWholeText(row.text, value, ok);
        EXPECT_TRUE(ok) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
    for (const std::string_view bad :
         {"", " ", "12x", "1 2", "1.5", "null", "NULLS", "2147483648", "\t12", "+", "- 1"}) {
        std::int32_t value = 77;
        bool ok = true;
        IntegerFromWholeText(bad, value, ok);
        EXPECT_FALSE(ok) << bad;
        EXPECT_EQ(value, 77) << bad;
    }
}

TEST_F(Numbers, BooleansAreWords) {
    EXPECT_EQ(BooleanToText(true), "True");
    EXPECT_EQ(BooleanToText(false), "False");
    EXPECT_EQ(BooleanToText(true, 70000), "   True");
    EXPECT_EQ(BooleanToText(false, -70000), "False  ");
    EXPECT_EQ(BooleanToText(true, 81200), "    True");
    EXPECT_EQ(BooleanToText(false, -81200), "False   ");
    EXPECT_EQ(BooleanToText(true, INT64_MAX).size(), 100U);
    EXPECT_EQ(BooleanToText(true, INT64_MIN).size(), 100U);
    constexpr struct {
        std::string_view text;
        bool ok, value;
    } rows[] = {{"True", true, true}, {"tRUE", true, true},   {"Yes", true, true},
                {"yes", true, true},  {"False", true, false}, {"FALSE", true, false},
                {"No", true, false},  {"", false, true},      {"Trueness", false, true},
                {"Tru", false, true}, {" True", false, true}, {"1", false, true}};
    for (const auto& row : rows) {
        bool value = true, ok = !row.ok;
        if (row.ok) value = !row.value;
        BooleanFromText(row.text, value, ok);
        EXPECT_EQ(ok, row.ok) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
}

TEST_F(Numbers, CheckSums) {
    const auto sum = [](std::string_view text) { return Crc32(text.data(), text.size()); };
    EXPECT_EQ(sum("ABC"), 0xA3830348U);
    EXPECT_EQ(sum("abc"), 0x352441C2U);
    EXPECT_EQ(sum("This is a string"), 0x0876633FU);
    EXPECT_EQ(sum(""), 0U);
    EXPECT_EQ(Crc32(nullptr, 0), 0U);
    EXPECT_EQ(Crc32(" a string", 9, sum("This is")), 0x0876633FU);
}

TEST_F(Numbers, Base64WithBitsThatBelongToNoByteIsRefused) {
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
        std::string bytes = "old";
        bool ok = false;
        Base64Decode(std::string("Z") + alphabet[i] + "==", bytes, ok);
        EXPECT_EQ(ok, i % 16 == 0) << alphabet[i];
        EXPECT_EQ(bytes == "old", !ok);
        bytes = "old";
        Base64Decode(std::string("Zm") + alphabet[i] + "=", bytes, ok);
        EXPECT_EQ(ok, i % 4 == 0) << alphabet[i];
        EXPECT_EQ(bytes == "old", !ok);
    }
}

TEST_F(Numbers, Base64IsDecodedWhereItStands) {
    std::string bytes = "Zm9vYmFy";
    bool ok = false;
    Base64Decode(bytes, bytes, ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(bytes, "foobar");
    bytes = "Zm9vYmF";
    Base64Decode(bytes, bytes, ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(bytes, "Zm9vYmF");
}

TEST_F(Numbers, Base64) {
    constexpr struct {
        std::string_view bytes, text;
    } rows[] = {{"", ""},
                {"f", "Zg=="},
                {"fo", "Zm8="},
                {"foo", "Zm9v"},
                {"foob", "Zm9vYg=="},
                {"fooba", "Zm9vYmE="},
                {"foobar", "Zm9vYmFy"},
                {"\xFF\xFE\xFD", "//79"}};
    for (const auto& row : rows) {
        EXPECT_EQ(Base64Encode(row.bytes), row.text);
        std::string bytes = "old";
        bool ok = false;
        Base64Decode(row.text, bytes, ok);
        EXPECT_TRUE(ok) << row.text;
        EXPECT_EQ(bytes, row.bytes);
    }
    for (const char* bad : {"Z", "Zg", "Zg=", "Zg===", "=", "Zg==Zg==", "Zm9v!", "Z=g="}) {
        std::string bytes = "old";
        bool ok = true;
        Base64Decode(bad, bytes, ok);
        EXPECT_FALSE(ok) << bad;
        EXPECT_EQ(bytes, "old");
    }
    std::string bytes;
    bool ok = false;
    Base64Decode("Zm9v\r\nYmFy\n", bytes, ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(bytes, "foobar");
}

}  // namespace
