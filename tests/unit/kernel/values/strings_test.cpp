// SPDX-License-Identifier: Apache-2.0
//
// The life of strings, assignment, comparing, single characters.
#include "unit/kernel/strings_fixture.h"

#include "kernel/run/runtime.h"
#include "kernel/values/strings.h"
#include "support/errorcell.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

using namespace tarn;
using namespace std::string_view_literals;

namespace {

TEST_F(Strings, TextsOfEveryLengthAreEqualUntilOneCharacterDiffers) {
    for (std::size_t length = 0; length <= 70; ++length) {
        std::string bytes;
        for (std::size_t i = 0; i < length; ++i) bytes += static_cast<char>('a' + i % 26);
        const String a(bytes), same(bytes);
        EXPECT_EQ(StringCompareOp("eQ", a.get(), same.get()), 1) << length;
        EXPECT_EQ(StringCompareOp("NE", a.get(), same.get()), 0) << length;
        const String longer(bytes + 'x');
        EXPECT_EQ(StringCompareOp("EQ", a.get(), longer.get()), 0) << length;
        String fixed(70);
        fixed.assign(bytes);
        EXPECT_EQ(StringCompareOp("EQ", fixed.get(), a.get()), 1) << length;
        EXPECT_EQ(StringCompareOp("EQ", longer.get(), fixed.get()), 0) << length;
        for (std::size_t i = 0; i < length; ++i) {
            std::string changed = bytes;
            changed[i] = '\xFF';
            const String other(changed);
            ASSERT_EQ(StringCompareOp("EQ", a.get(), other.get()), 0) << length << " at " << i;
            ASSERT_EQ(StringCompareOp("NE", a.get(), other.get()), 1) << length << " at " << i;
        }
    }
}

TEST_F(Strings, TextsOfEveryLengthAreAssignedAndJoinedWithNothingBesideThem) {
    for (std::size_t length = 0; length <= 70; ++length) {
        const std::string bytes(length, 'q');
        String from(bytes), to, fixed(100), sum(100);
        StringAssign(to.get(), from.get());
        StringAssign(fixed.get(), from.get());
        StringConcat(from.get(), "!", sum.get());
        EXPECT_EQ(to.view(), bytes);
        EXPECT_EQ(fixed.view(), bytes);
        EXPECT_EQ(sum.view(), bytes + "!");
        StringAppend(sum.get(), sum.get());
        EXPECT_EQ(sum.view(), (bytes + "!" + bytes + "!").substr(0, 100));
    }
}

TEST_F(Strings, KindSizesAreThoseOfTheDescriptors) {
    constexpr std::int32_t expected[] = {0, 1, 1, 4, 8, 8, 24, 36, 36, 44, 44, 24, 24};
    for (int kind = 0; kind <= 12; ++kind) EXPECT_EQ(KindSize[kind], expected[kind]);
    EXPECT_EQ(KindString, 6);
    EXPECT_EQ(KindTable, 12);
    EXPECT_NE(UNBOUNDED, DYNAMIC_BOUNDS);
}

TEST_F(Strings, AnEmptyUnboundedStringHasNoBlock) {
    const String s;
    EXPECT_EQ(s.get()->size, 0);
    EXPECT_EQ(s.get()->tag, 29);
    EXPECT_EQ(s.get()->data, 0U);
    EXPECT_EQ(s.get()->maxlength, UNBOUNDED);
    EXPECT_EQ(s.get()->length, 0);
    EXPECT_EQ(s.get()->reserved, 0);
    EXPECT_EQ(StringMaxLength(s.get()), UNBOUNDED);
}

TEST_F(Strings, AFixedStringHasItsCapacityAtOnceAndForEver) {
    String s(10);
    const Offset block = s.get()->data;
    EXPECT_EQ(s.get()->size, 10);
    EXPECT_NE(block, 0U);
    EXPECT_EQ(StringMaxLength(s.get()), 10);
    s.assign("0123456789");
    s.assign("");
    EXPECT_EQ(s.get()->size, 10);
    EXPECT_EQ(s.get()->data, block);
}

TEST_F(Strings, InitOfImpossibleCapacities) {
    constexpr struct {
        std::int32_t capacity, error;
    } rows[] = {{0, 821}, {-1, 804}, {DYNAMIC_BOUNDS, 804}, {4096001, 804}, {INT32_MAX, 804}};
    for (const auto& row : rows) {
        String s(row.capacity);
        EXPECT_EQ(takeError(), row.error) << row.capacity;
        EXPECT_EQ(s.get()->data, 0U);
        EXPECT_EQ(s.get()->size, 0);
        s.assign("abc");
        EXPECT_NE(takeError(), 0);
        EXPECT_EQ(s.get()->length, 0);
    }
    StringInit(nullptr, 5);
    EXPECT_EQ(takeError(), 756);
}

TEST_F(Strings, FreeZeroesAndTheSecondFreeDoesNothing) {
    StringDescriptor s;
    StringInit(&s, UNBOUNDED);
    StringAssignText(&s, "abc");
    StringFree(&s);
    const StringDescriptor zero{};
    EXPECT_EQ(std::memcmp(&s, &zero, sizeof s), 0);
    StringFree(&s);
    EXPECT_EQ(ErrorCell(), 0);
    StringFree(nullptr);
    EXPECT_EQ(takeError(), 756);
}

TEST_F(Strings, ASetIsNotAString) {
    StringDescriptor set{0, 29, 0, 0, 0, 0};
    String s(std::string_view("abc"));
    StringAssign(&set, s.get());
    EXPECT_EQ(takeError(), 756);
    StringAssign(s.get(), &set);
    EXPECT_EQ(takeError(), 756);
    EXPECT_EQ(s.view(), "abc");
    set.maxlength = DYNAMIC_BOUNDS;
    EXPECT_EQ(StringLength(&set), 0);
    EXPECT_EQ(takeError(), 756);
}

TEST_F(Strings, NullAndWrongDescriptorsGive756AndNoChange) {
    String s(std::string_view("abc")), f = fixed(5, "xyz");
    StringDescriptor zeroed{}, list{0, 6, 0, UNBOUNDED, 0, 0}, lying{3, 29, 0, UNBOUNDED, 4, 0};
    for (StringDescriptor* bad : {static_cast<StringDescriptor*>(nullptr), &zeroed, &list, &lying}) {
        std::int32_t result = 7;
        char buffer[8] = "same";
        unsigned char shortBuffer[8] = "same";
        const std::vector<std::function<void()>> calls = {
            [&] { StringAssign(bad, s.get()); },
            [&] { StringAssign(s.get(), bad); },
            [&] { StringAssignText(bad, "q"); },
            [&] { StringAssignShort(bad, reinterpret_cast<const unsigned char*>("\1q")); },
            [&] { StringAssignView(bad, "q"); },
            [&] { StringAssignBuffer("q", "ASCII", 1, bad); },
            [&] { StringConcat(bad, s.get(), s.get()); },
            [&] { StringConcat(s.get(), bad, s.get()); },
            [&] { StringConcat(s.get(), s.get(), bad); },
            [&] { StringConcat(bad, "q"sv, s.get()); },
            [&] { StringConcat("q"sv, bad, s.get()); },
            [&] { StringConcat("q"sv, "q"sv, bad); },
            [&] { StringAppend(bad, s.get()); },
            [&] { StringAppend(f.get(), bad); },
            [&] { StringAppendText(bad, "q"); },
            [&] { StringAppendChar(bad, 'q'); },
            [&] { StringAppendBytes(bad, "q", 1); },
            [&] { StringDelete(bad, 1, 1); },
            [&] { StringClear(bad); },
            [&] { StringTerminate(bad); },
            [&] { StringToText(buffer, 7, bad); },
            [&] { StringToShort(shortBuffer, 7, bad); },
            [&] { StringPutChar(bad, 1, 'q'); },
            [&] { EXPECT_EQ(StringGetChar(bad, 1), 0); },
            [&] { EXPECT_FALSE(StringIsNull(bad)); },
            [&] { EXPECT_EQ(StringView(bad), ""); },
            [&] { EXPECT_EQ(StringCompareOp("EQ", bad, s.get()), 0); },
            [&] { EXPECT_EQ(StringCompareOp("EQ", s.get(), bad), 0); },
            [&] { EXPECT_EQ(StringCompareOp("NE", bad, s.get()), 0); },
            [&] { EXPECT_EQ(StringCompareOp("NE", s.get(), bad), 0); },
            [&] { EXPECT_EQ(StringCompareOp("NE", bad, "q"sv), 0); },
            [&] { EXPECT_EQ(StringCompareOp("NE", "q"sv, bad), 0); },
            [&] {
                result = 7;
                StringCompare(bad, s.get(), false, result);
                EXPECT_EQ(result, 0);
            },
            [&] {
                result = 7;
                StringCompare(s.get(), bad, true, result);
                EXPECT_EQ(result, 0);
            },
        };
        for (std::size_t i = 0; i < calls.size(); ++i) {
            calls[i]();
            EXPECT_EQ(takeError(), 756) << i;
            EXPECT_EQ(s.view(), "abc") << i;
            EXPECT_EQ(f.view(), "xyz") << i;
        }
        EXPECT_STREQ(buffer, "same");
        EXPECT_EQ(StringLength(bad), 0);
        EXPECT_EQ(StringMaxLength(bad), 0);
        EXPECT_EQ(takeError(), bad == nullptr ? 0 : 756);
    }
    StringAssignText(s.get(), nullptr);
    EXPECT_EQ(takeError(), 756);
    StringAppendText(f.get(), nullptr);
    EXPECT_EQ(takeError(), 756);
    EXPECT_EQ(f.view(), "xyz");
}

TEST_F(Strings, AnUnboundedBlockIsExact) {
    String s;
    for (const std::size_t length : {1U, 2U, 15U, 16U, 17U, 1000U, 3U}) {
        s.assign(std::string(length, 'x'));
        EXPECT_EQ(s.get()->size, static_cast<std::int32_t>(length));
        EXPECT_EQ(s.length(), static_cast<std::int32_t>(length));
    }
    EXPECT_EQ(CountLeaks().bytes, 3);
    s.assign("");
    EXPECT_EQ(s.get()->data, 0U);
    EXPECT_EQ(s.get()->size, 0);
}

TEST_F(Strings, AssigningAStringToItselfKeepsIt) {
    String s(std::string_view("abc")), f = fixed(10, "abc");
    StringAssign(s.get(), s.get());
    StringAssign(f.get(), f.get());
    EXPECT_EQ(s.view(), "abc");
    EXPECT_EQ(f.view(), "abc");
    StringAssignView(s.get(), s.view().substr(1));
    EXPECT_EQ(s.view(), "bc");
    StringAssignView(f.get(), f.view().substr(1));
    EXPECT_EQ(f.view(), "bc");
}

TEST_F(Strings, AFixedStringKeepsWhatFitsAndReports615) {
    String f(4);
    const String s(std::string_view("abcdef"));
    StringAssign(f.get(), s.get());
    EXPECT_EQ(takeError(), 615);
    EXPECT_EQ(f.view(), "abcd");
    StringAssignText(f.get(), "wxyz");
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(f.view(), "wxyz");
    StringAssignShort(f.get(), reinterpret_cast<const unsigned char*>("\005vwxyz"));
    EXPECT_EQ(takeError(), 615);
    EXPECT_EQ(f.view(), "vwxy");
}

TEST_F(Strings, TextsOfEveryFormAssign) {
    String s;
    StringAssignText(s.get(), "ab");
    EXPECT_EQ(s.view(), "ab");
    StringAssignText(s.get(), "");
    EXPECT_EQ(s.view(), "");
    StringAssignShort(s.get(), reinterpret_cast<const unsigned char*>("\003a\0c"));
    EXPECT_EQ(s.view(), "a\0c"sv);
    StringAssignView(s.get(), "x\0\xFF"sv);
    EXPECT_EQ(s.view(), "x\0\xFF"sv);
}

TEST_F(Strings, ToTextCopiesAtMostTheLimit) {
    const String s(std::string_view("abcdef"));
    char buffer[10];
    constexpr struct {
        std::int32_t limit;
        const char* text;
    } rows[] = {{9, "abcdef"}, {6, "abcdef"}, {3, "abc"}, {1, "a"}, {0, "same"}, {-1, "same"}};
    for (const auto& row : rows) {
        std::strcpy(buffer, "same");
        StringToText(buffer, row.limit, s.get());
        EXPECT_STREQ(buffer, row.text);
    }
    unsigned char shortBuffer[300] = "zzz";
    StringToShort(shortBuffer, 0, s.get());
    EXPECT_EQ(shortBuffer[0], 'z');
    StringToShort(shortBuffer, 2, s.get());
    EXPECT_EQ(std::memcmp(shortBuffer, "\2ab", 3), 0);
    const String big(std::string(400, 'q'));
    StringToShort(shortBuffer, 299, big.get());
    EXPECT_EQ(shortBuffer[0], 255);
}

TEST_F(Strings, BuffersAssignByEncoding) {
    const struct {
        std::string_view encoding, bytes;
        std::int32_t count;
        std::string_view text;
    } rows[] = {
        {"ASCII", "abc", 3, "abc"},
        {"ASCII", "abc", 2, "ab"},
        {"ASCII", "a\0c"sv, 3, "a"},
        {"ASCII", "abc", 0, ""},
        {"ASCII", "abc", -1, ""},
        {"WCHAR", "a\0b\0c\0"sv, 6, "abc"},
        {"WCHAR", "a\0b\0c\0"sv, 5, "abc"},
        {"WCHAR", "a\0b\0c\0"sv, 4, "ab"},
        {"WCHAR", "a\0\0\0c\0"sv, 6, "a"},
        {"WCHAR", "a\1b\2"sv, 4, "ab"},
        {"WCHAR", "a\0"sv, 1, "a"},
        {"OTHER", "abc", 3, ""},
        {"ascii", "abc", 3, ""},
        {"", "abc", 3, ""},
    };
    for (const auto& row : rows) {
        String s(std::string_view("before"));
        StringAssignBuffer(row.bytes.data(), row.encoding, row.count, s.get());
        EXPECT_EQ(s.view(), row.text) << row.encoding << row.count;
    }
    String s(std::string_view("before"));
    StringAssignBuffer(nullptr, "ASCII", 3, s.get());
    EXPECT_EQ(s.view(), "");
}

TEST_F(Strings, ComparisonsGoByTheFirstDifference) {
    constexpr struct {
        std::string_view a, b;
        std::int32_t exact, folded;
    } rows[] = {
        {"", "", 0, 0},        {"A", "a", -1, 0},        {"A", "B", -1, -1},           {"a", "B", 1, -1},
        {"AZZ", "azz", -1, 0}, {"AZZ", "BZZ", -1, -1},   {"ZAZ", "ZBZ", -1, -1},       {"ZZA", "ZZB", -1, -1},
        {"BZZ", "AZZ", 1, 1},  {"", "a", -1, -1},        {"abc", "ab", 1, 1},          {"ab", "abc", -1, -1},
        {"\x80", "z", 1, 1},   {"\xFF", "\x01", 1, 1},   {"a\0b"sv, "a\0c"sv, -1, -1}, {"[", "a", -1, -1},
        {"_", "A", 1, -1},     {"\xC4", "\xE4", -1, -1},
    };
    for (const auto& row : rows) {
        const String a(row.a), b(row.b);
        std::int32_t exact = 9, folded = 9;
        StringCompare(a.get(), b.get(), false, exact);
        StringCompare(a.get(), b.get(), true, folded);
        EXPECT_EQ(exact, row.exact) << row.a << " " << row.b;
        EXPECT_EQ(folded, row.folded) << row.a << " " << row.b;
        const struct {
            const char* op;
            bool holds;
        } ops[] = {{"EQ", exact == 0}, {"NE", exact != 0}, {"GT", exact > 0},
                   {"LT", exact < 0},  {"GE", exact >= 0}, {"LE", exact <= 0}};
        for (const auto& op : ops) {
            EXPECT_EQ(StringCompareOp(op.op, a.get(), b.get()), op.holds ? 1 : 0) << op.op;
            EXPECT_EQ(StringCompareOp(op.op, row.a, b.get()), op.holds ? 1 : 0) << op.op;
            EXPECT_EQ(StringCompareOp(op.op, a.get(), row.b), op.holds ? 1 : 0) << op.op;
            EXPECT_EQ(StringCompareOp(op.op, row.a, row.b), op.holds ? 1 : 0) << op.op;
        }
    }
}

TEST_F(Strings, OperatorsAreReadFromTwoCharactersInAnyCase) {
    const String a(std::string_view("a"));
    for (const char* op : {"eq", "Eq", "eQ", "equal", "LE", "ge"})
        EXPECT_EQ(StringCompareOp(op, a.get(), a.get()), 1);
    for (const char* op : {"", "E", "=", "XX", "QE"})
        EXPECT_EQ(StringCompareOp(op, a.get(), a.get()), 0) << op;
}

TEST_F(Strings, CharactersOutsideTheTextReadAsZeroAndWriteNothing) {
    String s(std::string_view("a\xFF"sv));
    EXPECT_EQ(StringGetChar(s.get(), 1), 'a');
    EXPECT_EQ(StringGetChar(s.get(), 2), 255);
    for (const std::int32_t position : {0, 3, -1, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(StringGetChar(s.get(), position), 0);
        StringPutChar(s.get(), position, 'z');
    }
    StringPutChar(s.get(), 2, 'b');
    EXPECT_EQ(s.view(), "ab");
}

TEST_F(Strings, TheDatabaseNullIsSixCharacters) {
    const struct {
        std::string_view text;
        bool null;
    } rows[] = {{"\0NULL\0"sv, true},    {"NULL", false},       {"\0NULL"sv, false},
                {"\0NULL\0\0"sv, false}, {"\0null\0"sv, false}, {"", false}};
    for (const auto& row : rows) {
        const String s(row.text);
        EXPECT_EQ(StringIsNull(s.get()), row.null);
    }
}

// Each operation that needs memory, with the n-th request failing: 802, the destination empty or unchanged,
// no leak.
TEST_F(Strings, EveryOperationSurvivesAnAllocatorThatFails) {
    const String a(std::string_view("first")), b(std::string(500, 'b'));
    const struct {
        const char* name;
        std::function<void(StringDescriptor*)> run;
    } operations[] = {
        {"assign", [&](StringDescriptor* s) { StringAssign(s, b.get()); }},
        {"text", [&](StringDescriptor* s) { StringAssignText(s, "some text"); }},
        {"short",
         [&](StringDescriptor* s) {
             StringAssignShort(s, reinterpret_cast<const unsigned char*>("\4abcd"));
         }},
        {"view", [&](StringDescriptor* s) { StringAssignView(s, "xy"); }},
        {"buffer", [&](StringDescriptor* s) { StringAssignBuffer("xy", "ASCII", 2, s); }},
        {"concat", [&](StringDescriptor* s) { StringConcat(a.get(), b.get(), s); }},
        {"grow", [&](StringDescriptor* s) { StringConcat(s, b.get(), s); }},
        {"prefix", [&](StringDescriptor* s) { StringConcat(b.get(), s, s); }},
        {"double", [&](StringDescriptor* s) { StringConcat(s, s, s); }},
        {"terminate", [&](StringDescriptor* s) { StringTerminate(s); }},
    };
    for (const auto& operation : operations) {
        bool failed = true;
        for (int n = 0; failed; ++n) {
            ASSERT_LT(n, 10) << operation.name;
            String s(std::string_view("before"));
            FailAllocation(n);
            operation.run(s.get());
            FailAllocation(-1);
            failed = ErrorCell() == 802;
            EXPECT_EQ(takeError(), failed ? 802 : 0) << operation.name;
            if (failed) {
                EXPECT_EQ(s.length(), 0) << operation.name;
                EXPECT_EQ(s.get()->data, 0U) << operation.name;
            }
            s.assign("after");
            EXPECT_EQ(s.view(), "after");
        }
    }
    FailAllocation(0);
    const String s(5);
    EXPECT_EQ(takeError(), 802);
    EXPECT_EQ(s.get()->size, 0);
}

TEST_F(Strings, TheOwningTypeMoves) {
    String a(std::string_view("abc"));
    String b(std::move(a));
    EXPECT_EQ(b.view(), "abc");
    EXPECT_EQ(a.view(), "");
    a.assign("new");
    b = std::move(a);
    EXPECT_EQ(b.view(), "new");
    String& same = b;
    b = std::move(same);
    EXPECT_EQ(b.view(), "new");
}

TEST_F(Strings, TwoByteCharactersFollowTheGlobalWidth) {
    CharacterWidth = 2;
    {
        String s(std::string_view("abc")), f(4);
        EXPECT_EQ(s.length(), 3);
        EXPECT_EQ(s.get()->size, 6);
        EXPECT_EQ(s.view(), "a\0b\0c\0"sv);
        EXPECT_EQ(f.get()->size, 8);
        StringAssign(f.get(), s.get());
        StringAppendText(f.get(), "de");
        EXPECT_EQ(f.length(), 4);
        EXPECT_EQ(StringGetChar(f.get(), 4), 'd');
        StringPutChar(f.get(), 1, 0x20AC);
        EXPECT_EQ(StringGetChar(f.get(), 1), 0x20AC);
        EXPECT_EQ(StringCompareOp("GT", f.get(), s.get()), 1);
        StringDelete(f.get(), 1, 2);
        EXPECT_EQ(StringCompareOp("EQ", f.get(), "cd"sv), 1);
        StringConcat(f.get(), s.get(), s.get());
        EXPECT_EQ(StringCompareOp("EQ", s.get(), "cdabc"sv), 1);
        char text[10];
        StringToText(text, 9, s.get());
        EXPECT_STREQ(text, "cdabc");
        StringTerminate(s.get());
        EXPECT_EQ(s.get()->size, 12);
        EXPECT_EQ(StringCompareOp("EQ", s.get(), "cdabc"sv), 1);
        String tooWide(2048001);
        EXPECT_EQ(takeError(), 804);
    }
}

}  // namespace
