// SPDX-License-Identifier: Apache-2.0
#include "os/text/bigendian.h"

#include <gtest/gtest.h>

#include <limits>

namespace tarn::bigendian {
namespace {

template <class Number>
std::string stored(Number value) {
    std::string bytes("<");
    append(bytes, value);
    return bytes + ">";
}

TEST(BigEndianTest, TheHighestByteStandsFirst) {
    EXPECT_EQ(stored(std::uint8_t{0xA7}), "<\xA7>");
    EXPECT_EQ(stored(std::int16_t{0x0102}), "<\x01\x02>");
    EXPECT_EQ(stored(std::int32_t{0x01020304}), "<\x01\x02\x03\x04>");
    EXPECT_EQ(stored(std::int64_t{0x0102030405060708}), "<\x01\x02\x03\x04\x05\x06\x07\x08>");
    EXPECT_EQ(stored(std::int32_t{-2}), "<\xFF\xFF\xFF\xFE>");
}

template <class Number>
void expectSameAgain() {
    using Limits = std::numeric_limits<Number>;
    for (const Number value : {Limits::min(), Limits::max(), Number{0}, Number{1}, static_cast<Number>(-1)}) {
        const std::string bytes = stored(value);
        EXPECT_EQ(at<Number>(bytes.data() + 1), value);  // at an odd address
    }
}

TEST(BigEndianTest, WhatWasStoredIsReadAgain) {
    expectSameAgain<std::int8_t>();
    expectSameAgain<std::int16_t>();
    expectSameAgain<std::uint16_t>();
    expectSameAgain<std::int32_t>();
    expectSameAgain<std::uint32_t>();
    expectSameAgain<std::int64_t>();
    expectSameAgain<std::uint64_t>();
}

TEST(BigEndianTest, NothingBesideTheNumberIsTouched) {
    char bytes[] = "......";
    put(bytes + 1, std::int32_t{0x41424344});
    EXPECT_STREQ(bytes, ".ABCD.");
}

}  // namespace
}  // namespace tarn::bigendian
