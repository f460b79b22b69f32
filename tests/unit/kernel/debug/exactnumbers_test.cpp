// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/exactnumbers.h"

#include "kernel/text/fixed.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>

namespace tarn {
namespace {

TEST(ExactNumbers, FixedKeepsFourDecimals) {
    for (const char* text :
         {"0", "1", "-1.5", "1.2345", "1.23450000", "+.0001", "922337203685477.5807", "1."})
        EXPECT_TRUE(KeptByFixed(text)) << text;
    for (const char* text : {"1.23456", "0.00001", "-.00009", "1.00000000000000000000000001"})
        EXPECT_FALSE(KeptByFixed(text)) << text;
}

bool keptByReal(const std::string& text) {
    double number = 0;
    bool ok = false;
    RealFromText(text, number, ok);
    EXPECT_TRUE(ok) << text;
    return KeptByReal(text, number);
}

TEST(ExactNumbers, RealKeepsAsManyDigitsAsComeBack) {
    for (const char* text : {"0",
                             "0.0E+00",
                             "-0",
                             "00000.000",
                             "1",
                             "0.1",
                             "-0.3",
                             "1.25E10",
                             "+1E6",
                             "1e-5",
                             "123456789012345",
                             "0.00012345",
                             "1.7976931348623157E308",
                             "5E-324",
                             "2.2250738585072014E-308",
                             "100000000000000000000",
                             "9007199254740992",
                             "+3.5E+12",
                             "12E0000000000000000000003",
                             "0E999999999999999999999"})
        EXPECT_TRUE(keptByReal(text)) << text;
    for (const char* text :
         {"9007199254740993", "0.1234567890123456789", "1E-400", "3E-324", "3.14159265358979323846",
          "1.00000000000000000000000000001", "123456789012345678901234567890"})
        EXPECT_FALSE(keptByReal(text)) << text;
    EXPECT_FALSE(keptByReal("0." + std::string(2000, '7')));
    EXPECT_TRUE(keptByReal("1." + std::string(100000, '0')));
}

TEST(ExactNumbers, WhatTheDebuggerWritesIsKept) {
    std::mt19937_64 random(5);
    for (int i = 0; i < 2000; ++i) {
        const std::uint64_t bits = random();
        double number = 0;
        static_assert(sizeof number == sizeof bits);
        std::memcpy(&number, &bits, sizeof number);
        if (!std::isfinite(number)) continue;
        const std::string text = RealToText(number, RealTextDecimals);
        EXPECT_TRUE(keptByReal(text)) << text;
    }
}

}  // namespace
}  // namespace tarn
