// SPDX-License-Identifier: Apache-2.0
#include "kernel/text/transform.h"

#include "kernel/values/strings.h"
#include "kernel/values/texttransform.h"
#include "support/errorcell.h"

#include <gtest/gtest.h>

#include <random>

namespace tarn {
namespace {

std::string changed(std::string_view key, std::int32_t mode, std::string_view text) {
    bool ok = false;
    std::string result = TransformBytes(key, mode, text, ok);
    EXPECT_TRUE(ok);
    return result;
}

TEST(TextTransforms, AModeOfFourLettersHasTheFirstInTheLowByte) {
    EXPECT_EQ(TransformToBase64, 0x58343642);    // "B64X"
    EXPECT_EQ(TransformFromBase64, 0x44343642);  // "B64D"
    EXPECT_EQ(TransformToHex, 0x58584548);       // "HEXX"
    EXPECT_EQ(TransformFromHex, 0x44584548);     // "HEXD"
}

TEST(TextTransforms, TextsAndBytesInEachMode) {
    struct Case {
        const char* key;
        std::int32_t mode;
        std::string text, result;
    };
    const Case cases[] = {
        {"\x01\x02", 1, "abc", "bdd"},
        {"\x01\x02", -1, "bdd", "abc"},
        {"\xFF", 1, "a", "`"},  // modulo 256
        {"\x02", -1, "\x01", "\xFF"},
        {"k", TransformToBase64, "any carnal pleas", "YW55IGNhcm5hbCBwbGVhcw=="},
        {"", TransformFromBase64, "YW55IGNhcm5hbCBwbGVhcw==", "any carnal pleas"},
        {"", TransformFromBase64, "YW 55\n*IGNh?cm5hbCBwbGVhcw", "any carnal pleas"},
        {"", TransformFromBase64, "YQ==YQ==", "a\x06\x10"},  // the bits behind another
        {"", TransformFromBase64, "Y", ""},
        {"", TransformFromBase64, "====", ""},
        {"", TransformToHex, "AZ\xFF", "41 5A FF "},
        {"", TransformFromHex, "41 5A FF ", "AZ\xFF"},
        {"", TransformFromHex, "41-5a:f f,4", "AZ\xFF"},
        {"", TransformFromHex, "zz", ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(changed(c.key, c.mode, c.text), c.result) << c.text << " " << c.mode;
    for (const std::int32_t mode :
         {1, -1, TransformToBase64, TransformFromBase64, TransformToHex, TransformFromHex})
        EXPECT_EQ(changed("key", mode, ""), "") << mode;
}

TEST(TextTransforms, AnyBytesComeBack) {
    std::mt19937 random(2);
    for (int round = 0; round < 2000; ++round) {
        std::string text(random() % 40, '\0'), key(random() % 5, '\0');
        for (char& c : text) c = static_cast<char>(random());
        for (char& c : key) c = static_cast<char>(random());
        EXPECT_EQ(changed(key, -1, changed(key, 1, text)), text);
        EXPECT_EQ(changed("", TransformFromBase64, changed("", TransformToBase64, text)), text);
        EXPECT_EQ(changed("", TransformFromHex, changed("", TransformToHex, text)), text);
    }
}

TEST(TextTransforms, AnEmptyKeyIsReplacedByOneOfTheKernels) {
    EXPECT_NE(changed("", 1, "a secret"), "a secret");
    EXPECT_EQ(changed("", -1, changed("", 1, "a secret")), "a secret");
}

TEST(TextTransforms, OtherModesAreNone) {
    for (const std::int32_t mode : {0, 2, -2, TransformMode("B64Y"), TransformMode("b64x")}) {
        bool ok = true;
        EXPECT_EQ(TransformBytes("k", mode, "text", ok), "");
        EXPECT_FALSE(ok) << mode;
    }
}

// ---- strings of the language ----

class TransformedStrings : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override { EXPECT_EQ(takeError(), 0); }
    String key{std::string_view("key")}, text{std::string_view("text")}, result;
    std::string_view view() { return StringView(result.get()); }
};

TEST_F(TransformedStrings, AreTransformedAlsoInPlace) {
    TextTransform(key.get(), TransformToHex, text.get(), result.get());
    EXPECT_EQ(view(), "74 65 78 74 ");
    TextTransform(key.get(), TransformToBase64, text.get(), text.get());
    EXPECT_EQ(StringView(text.get()), "dGV4dA==");
    TextTransform(text.get(), TransformFromBase64, text.get(), text.get());
    EXPECT_EQ(StringView(text.get()), "text");
    TextTransform(key.get(), 1, String().get(), result.get());
    EXPECT_EQ(view(), "");
    const String plain(std::string_view("a"));
    TextTransform(plain.get(), 1, plain.get(), result.get());
    EXPECT_EQ(view(), "\xC2");
}

TEST_F(TransformedStrings, WhatIsNoStringIs756AndNothingChanges) {
    StringAssignView(result.get(), "kept");
    StringDescriptor none{};
    struct Case {
        const StringDescriptor *key, *text;
        StringDescriptor* result;
    };
    for (const Case& c : {Case{nullptr, text.get(), result.get()}, Case{key.get(), nullptr, result.get()},
                          Case{key.get(), text.get(), nullptr}, Case{&none, text.get(), result.get()},
                          Case{key.get(), &none, result.get()}, Case{key.get(), text.get(), &none}}) {
        TextTransform(c.key, 1, c.text, c.result);
        EXPECT_EQ(takeError(), 756);
        EXPECT_EQ(view(), "kept");
    }
}

TEST_F(TransformedStrings, AnUnknownModeIs753AndAFixedStringIsCutWith615) {
    StringAssignView(result.get(), "old");
    TextTransform(key.get(), 7, text.get(), result.get());
    EXPECT_EQ(takeError(), 753);
    EXPECT_EQ(view(), "");
    String fixed(5);
    TextTransform(key.get(), TransformToHex, text.get(), fixed.get());
    EXPECT_EQ(takeError(), 615);
    EXPECT_EQ(StringView(fixed.get()), "74 65");
}

TEST_F(TransformedStrings, ATextThatBecomesTooLongForABlockIs804) {
    const String large(std::string_view(std::string(2'000'000, 'x')));
    TextTransform(key.get(), TransformToHex, large.get(), result.get());
    EXPECT_EQ(takeError(), 804);
    EXPECT_EQ(view(), "");
}

}  // namespace
}  // namespace tarn
