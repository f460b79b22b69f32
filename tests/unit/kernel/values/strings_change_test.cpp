// SPDX-License-Identifier: Apache-2.0
//
// Strings put together and taken apart: concatenation, appending, deleting, terminating.
#include "unit/kernel/strings_fixture.h"

#include "kernel/run/runtime.h"
#include "kernel/values/strings.h"
#include "support/errorcell.h"

#include <gtest/gtest.h>

using namespace tarn;
using namespace std::string_view_literals;

namespace {

TEST_F(Strings, ConcatIntoFixedStringsKeepsWhatFits) {
    constexpr struct {
        std::string_view a, b, text;
        std::int32_t error;
    } rows[] = {
        {"", "abcdefghijk", "abcdefghij", 615},
        {"abcdefghijk", "", "abcdefghij", 615},
        {"abcdef", "ghijkl", "abcdefghij", 615},
        {"abcdefghijk", "z", "abcdefghij", 615},
        {"abcde", "fghij", "abcdefghij", 0},
        {"", "", "", 0},
        {"a", "b", "ab", 0},
    };
    for (const auto& row : rows) {
        const String a(row.a), b(row.b);
        String first(10), second(10), third(10), fourth(10);
        StringConcat(a.get(), b.get(), first.get());
        EXPECT_EQ(takeError(), row.error);
        StringConcat(row.a, b.get(), second.get());
        EXPECT_EQ(takeError(), row.error);
        StringConcat(a.get(), row.b, third.get());
        EXPECT_EQ(takeError(), row.error);
        StringConcat(row.a, row.b, fourth.get());
        EXPECT_EQ(takeError(), row.error);
        for (const String* s : {&first, &second, &third, &fourth}) EXPECT_EQ(s->view(), row.text);
    }
}

TEST_F(Strings, ConcatIntoAnOperandGivesTheRightText) {
    for (const std::int32_t capacity : {UNBOUNDED, 100, 7}) {
        const auto expect = [&](std::string_view whole, const String& s) {
            const bool cut = capacity == 7 && whole.size() > 7;
            EXPECT_EQ(s.view(), cut ? whole.substr(0, 7) : whole);
            EXPECT_EQ(takeError(), cut ? 615 : 0);
        };
        const String other(std::string_view("1234"));
        String s = fixed(capacity, "abcde");
        StringConcat(s.get(), other.get(), s.get());
        expect("abcde1234", s);
        s.assign("abcde");
        StringConcat(other.get(), s.get(), s.get());
        expect("1234abcde", s);
        s.assign("abcde");
        StringConcat(s.get(), s.get(), s.get());
        expect("abcdeabcde", s);
        s.assign("abcde");
        StringConcat(s.view().substr(3), s.view().substr(0, 3), s.get());
        expect("deabc", s);
        s.assign("abcde");
        StringConcat(s.get(), s.view().substr(1, 2), s.get());
        expect("abcdebc", s);
        s.assign("abcde");
        StringConcat("--"sv, s.view().substr(1, 2), s.get());
        expect("--bc", s);
    }
}

TEST_F(Strings, AnEmptySumLeavesAnEmptyString) {
    String s(std::string_view("abc"));
    const String empty;
    StringConcat(empty.get(), empty.get(), s.get());
    EXPECT_EQ(s.get()->data, 0U);
    EXPECT_EQ(s.get()->size, 0);
    EXPECT_EQ(s.length(), 0);
    StringConcat(s.get(), empty.get(), s.get());
    EXPECT_EQ(s.get()->data, 0U);
}

TEST_F(Strings, ConcatBlocksAreExactHoweverTheyGrew) {
    String s;
    const String one(std::string_view("x"));
    for (std::int32_t i = 1; i <= 1000; ++i) {
        StringConcat(s.get(), one.get(), s.get());
        ASSERT_EQ(s.get()->size, i);
    }
    EXPECT_EQ(s.view(), std::string(1000, 'x'));
    EXPECT_EQ(CountLeaks().bytes, 1001);
}

TEST_F(Strings, AnUnboundedStringBeyondABlockIs804AndEmpty) {
    const String half(std::string(2048001, 'h')), limit(std::string(4096000, 'l'));
    EXPECT_EQ(limit.length(), 4096000);
    String s(std::string_view("abc"));
    StringConcat(half.get(), half.get(), s.get());
    EXPECT_EQ(takeError(), 804);
    EXPECT_EQ(s.view(), "");
    EXPECT_EQ(s.get()->data, 0U);
    StringAssign(s.get(), half.get());
    StringConcat(s.get(), half.get(), s.get());
    EXPECT_EQ(takeError(), 804);
    EXPECT_EQ(s.view(), "");
    s.assign("abc");
    s.assign(std::string(4096001, 'x'));
    EXPECT_EQ(takeError(), 804);
    EXPECT_EQ(s.view(), "");
}

TEST_F(Strings, AppendsFillFixedStringsAndNothingElse) {
    constexpr struct {
        std::int32_t capacity;
        std::string_view text, more, result;
    } rows[] = {
        {8, "1234", "EFGHIJ", "1234EFGH"},
        {10, "PQRSTUVWXY", "R", "PQRSTUVWXY"},
        {10, "1234", "ABCD", "1234ABCD"},
        {10, "123456", "ABCDEF", "123456ABCD"},
        {UNBOUNDED, "1234", "ABCD", "1234"},
        {UNBOUNDED, "", "ABCD", ""},
        {4, "", "", ""},
    };
    for (const auto& row : rows) {
        const String more(row.more);
        std::string shortText(1, static_cast<char>(row.more.size()));
        shortText += row.more;
        String a = fixed(row.capacity, row.text), b = fixed(row.capacity, row.text),
               c = fixed(row.capacity, row.text), d = fixed(row.capacity, row.text),
               e = fixed(row.capacity, row.text);
        StringAppend(a.get(), more.get());
        StringAppendShort(b.get(), reinterpret_cast<const unsigned char*>(shortText.data()));
        StringAppendText(c.get(), std::string(row.more).c_str());
        StringAppendBytes(d.get(), row.more.data(), static_cast<std::int32_t>(row.more.size()));
        for (const char letter : row.more) StringAppendChar(e.get(), letter);
        for (const String* s : {&a, &b, &c, &d, &e}) EXPECT_EQ(s->view(), row.result);
        EXPECT_EQ(ErrorCell(), 0);
    }
}

TEST_F(Strings, AppendingAStringToItselfDoublesIt) {
    String s = fixed(7, "abcd");
    StringAppend(s.get(), s.get());
    EXPECT_EQ(s.view(), "abcdabc");
}

TEST_F(Strings, AppendsToAStringWithoutABlockDoNothing) {
    FailAllocation(0);
    String s(10);
    EXPECT_EQ(takeError(), 802);
    StringAppendText(s.get(), "abc");
    StringAppendChar(s.get(), 'a');
    StringTerminate(s.get());
    StringDelete(s.get(), 1, 1);
    EXPECT_EQ(s.length(), 0);
    EXPECT_EQ(ErrorCell(), 0);
    s.assign("abc");
    EXPECT_EQ(takeError(), 615);
    EXPECT_EQ(s.length(), 0);
}

TEST_F(Strings, AppendBytesOfNoneOrLessDoesNothing) {
    String s = fixed(10, "abc");
    StringAppendBytes(s.get(), "xyz", 0);
    StringAppendBytes(s.get(), "xyz", -4);
    EXPECT_EQ(s.view(), "abc");
}

TEST_F(Strings, DeleteCutsAStretch) {
    constexpr std::int32_t all = 2147483647;
    constexpr struct {
        std::int32_t position, count;
        std::string_view text;
    } rows[] = {
        {6, 4, "123450"},     {2, 8, "10"},         {2, 2, "14567890"},     {6, 5, "12345"},
        {6, 6, "12345"},      {6, all, "12345"},    {1, 5, "67890"},        {1, 10, ""},
        {1, 11, ""},          {1, all, ""},         {0, all, "1234567890"}, {11, all, "1234567890"},
        {10, 1, "123456789"}, {1, 0, "1234567890"}, {1, -1, "1234567890"},  {INT32_MIN, all, "1234567890"},
    };
    for (const auto& row : rows) {
        String s = fixed(10, "1234567890");
        StringDelete(s.get(), row.position, row.count);
        EXPECT_EQ(s.view(), row.text) << row.position << "," << row.count;
    }
    String unbounded(std::string_view("1234567890"));
    StringDelete(unbounded.get(), 1, 5);
    EXPECT_EQ(unbounded.view(), "1234567890");
}

TEST_F(Strings, ClearSetsTheLengthAndLaterChangesWork) {
    for (const std::int32_t capacity : {UNBOUNDED, 10}) {
        String s = fixed(capacity, "abc");
        StringClear(s.get());
        EXPECT_EQ(s.length(), 0);
        EXPECT_EQ(s.view(), "");
        StringConcat(s.get(), "de"sv, s.get());
        EXPECT_EQ(s.view(), "de");
        StringClear(s.get());
        s.assign("");
        EXPECT_EQ(s.view(), "");
    }
}

TEST_F(Strings, TerminatePutsANulBehindTheText) {
    String s(std::string_view("abc")), empty;
    StringTerminate(s.get());
    EXPECT_EQ(s.view(), "abc");
    EXPECT_STREQ(At(s.get()->data), "abc");
    EXPECT_EQ(s.get()->size, 4);
    StringTerminate(empty.get());
    EXPECT_EQ(empty.length(), 0);
    EXPECT_STREQ(At(empty.get()->data), "");
    StringConcat(s.get(), "d"sv, s.get());
    EXPECT_EQ(s.view(), "abcd");

    String roomy = fixed(5, "abc"), full = fixed(3, "abc");
    StringTerminate(roomy.get());
    EXPECT_EQ(roomy.view(), "abc\0"sv);
    StringTerminate(full.get());
    EXPECT_EQ(full.view(), "ab\0"sv);
}

TEST_F(Strings, TerminateAtTheLimitOverwritesTheLastCharacter) {
    String s(std::string(4096000, 'x')), below(std::string(4095999, 'x'));
    StringTerminate(s.get());
    EXPECT_EQ(s.length(), 4096000);
    EXPECT_EQ(StringGetChar(s.get(), 4096000), 0);
    EXPECT_EQ(StringGetChar(s.get(), 4095999), 'x');
    StringTerminate(below.get());
    EXPECT_EQ(StringGetChar(below.get(), 4095999), 'x');
    EXPECT_EQ(At(below.get()->data)[4095999], 0);
}

}  // namespace
