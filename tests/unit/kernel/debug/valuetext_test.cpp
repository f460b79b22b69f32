// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/valuetext.h"

#include "kernel/lists/lists.h"
#include "kernel/tables/tables.h"
#include "kernel/values/strings.h"
#include "unit/kernel/debug/debuggedvalues.h"
#include "unit/kernel/filelists_fixture.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace tarn;
using namespace tarn::debugged;

namespace {

constexpr std::uint32_t braces = VALUE_BRACES, blanks = VALUE_BLANKS, lines = VALUE_NEWLINES,
                        indent = VALUE_INDENT, rows = VALUE_ROWS, chars = VALUE_CHARACTERS,
                        toNul = VALUE_TO_NUL, hex = VALUE_HEX;

std::string textOf(const ValueModel& model, std::uint32_t flags = 0) {
    const OddValue value(model);
    return ValueText(value.at(), model.kind, flags);
}

class ValueTexts : public Values {};

TEST_F(ValueTexts, EachKindHasItsForm) {
    const struct {
        ValueModel value;
        std::uint32_t flags;
        std::string text;
    } cases[] = {
        {Number(KindBoolean, 1), 0, "True"},
        {Number(KindBoolean, 0), 0, "False"},
        {Number(KindEnum, 0), 0, "0"},
        {Number(KindEnum, 255), 0, "255"},
        {Number(KindEnum, 255), hex, "255"},
        {integer(0), 0, "0"},
        {integer(-2147483648), 0, "-2147483648"},
        {integer(2147483647), 0, "2147483647"},
        {integer(255), hex, "0x000000FF"},
        {integer(-1), hex, "0xFFFFFFFF"},
        {Number(KindFixed, 12500), 0, "1.2500"},
        {Number(KindFixed, -1), 0, "-0.0001"},
        {Number(KindFixed, INT64_MIN), 0, "-922337203685477.5808"},
        {Real(0.125), 0, "+1.2500000000000000E-0001"},
        {Real(0), 0, "+0.0000000000000000E+0000"},
        {Text(""), 0, "\"\""},
        {Text("abc", 5), 0, "\"abc\""},
        {Set(-5, 10, {1, 2, 3, 7}), 0, "[1..3,7]"},
        {Set(-5, 10, {1, 2, 3, 7}), blanks, "[1..3,7]"},
        {Set(1, 8, {}), 0, "[]"},
        {Record({integer(1), Text("a")}), braces, "{1,\"a\"}"},
        {Record({integer(1), Text("a")}, KindUnion), braces, "{1,\"a\"}"},
        {Array({{0, 2}}, integer(0), {integer(4), integer(5), integer(6)}), braces, "{4,5,6}"},
        {Array({{1, 2}, {1, 2}}, integer(0), {integer(1), integer(2), integer(3), integer(4)}), braces,
         "{1,2,3,4}"},
        {Array({}, integer(0), {}, DYNAMIC_BOUNDS), braces, "{}"},
        {integers({}), braces, "{}"},
        {integers({}), 0, ""},
        {integers({1, 2, 3}), 0, "1,2,3"},
        {integers({1, 2, 3}), blanks, "1, 2, 3"},
        {integers({1, 2, 3}), braces | blanks, "{1, 2, 3}"},
        {integers({1, 255}), braces | hex, "{0x00000001,0x000000FF}"},
        {Record({integers({1, 2}), Record({})}), braces, "{{1,2},{}}"},
        {Record({integers({1, 2}), integer(3)}), 0, "1,2,3"},
    };
    for (const auto& one : cases) EXPECT_EQ(textOf(one.value, one.flags), one.text);
}

TEST_F(ValueTexts, StringsAreOneLineOfPrintableCharacters) {
    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    const std::string text = textOf(Text(all));
    for (const char c : text) EXPECT_TRUE(c >= 32 && c < 127);
    EXPECT_EQ(text.substr(0, 41), R"("\x00\x01\x02\x03\x04\x05\x06\x07\x08\t\n)");
    EXPECT_NE(text.find(R"(\r\x0E)"), std::string::npos);
    EXPECT_NE(text.find(R"(\x1F !""#)"), std::string::npos);
    EXPECT_NE(text.find(R"([\\])"), std::string::npos);
    EXPECT_NE(text.find(R"(~\x7F\x80)"), std::string::npos);
    EXPECT_TRUE(text.ends_with(R"(\xFE\xFF")"));
}

TEST_F(ValueTexts, ElementsStandOnLinesOfTheirOwn) {
    const ValueModel flat = integers({1, 2, 3});
    EXPECT_EQ(textOf(flat, lines), "1,\n2,\n3\n");
    EXPECT_EQ(textOf(flat, lines | indent), "   1,\n   2,\n   3\n");
    EXPECT_EQ(textOf(flat, lines | indent | blanks), "   1,\n   2,\n   3\n");
    EXPECT_EQ(textOf(flat, lines | indent | braces), "{\n   1,\n   2,\n   3\n}");
    EXPECT_EQ(textOf(flat, indent), "1,2,3");
    const ValueModel nested = Record({integer(1), integers({2, 3}), integers({}), Text("x")});
    EXPECT_EQ(textOf(nested, lines | indent | braces),
              "{\n   1,\n   {\n      2,\n      3\n   },\n   {},\n   \"x\"\n}");
    EXPECT_EQ(textOf(nested, lines | indent), "   1,\n      2,\n      3,\n,\n   \"x\"\n");
}

TEST_F(ValueTexts, CharactersAreTextWhenAskedFor) {
    const std::string_view bytes("ab\0\"", 4);
    const ValueModel array = characters(bytes);
    EXPECT_EQ(textOf(array), "97,98,0,34");
    EXPECT_EQ(textOf(array, chars), "\"ab\\x00\"\"\"");
    EXPECT_EQ(textOf(array, chars | toNul), "\"ab\"");
    EXPECT_EQ(textOf(array, toNul), "97,98");
    EXPECT_EQ(textOf(characters("abc"), chars | toNul), "\"abc\"");
    EXPECT_EQ(textOf(Record({array, array}), chars | toNul | braces), "{\"ab\",\"ab\"}");
    const ValueModel lower =
        Array({{0, 1}}, Number(KindEnum, 0), {Number(KindEnum, 65), Number(KindEnum, 66)});
    EXPECT_EQ(textOf(lower, chars), "\"AB\"");
    const ValueModel square = Array({{1, 1}, {1, 1}}, Number(KindEnum, 0), {Number(KindEnum, 65)});
    EXPECT_EQ(textOf(square, chars), "65");
    EXPECT_EQ(textOf(Array({}, Number(KindEnum, 0), {}, DYNAMIC_BOUNDS), chars | braces), "{}");
}

TEST_F(ValueTexts, RowsOfATableAreItsElements) {
    const OddValue row(Record({integer(1), Text("a", 4)}));
    TableValue table;
    TableInit(table.get(), UNBOUNDED, static_cast<const RecordDescriptor*>(row.at()), {MakeKeyMap(1)}, "",
              false);
    EXPECT_EQ(ValueText(table.get(), KindTable, braces), "{}");
    TableAdd(table.get(), 1, static_cast<const RecordDescriptor*>(row.at()));
    const OddValue other(Record({integer(2), Text("b", 4)}));
    TableAdd(table.get(), 1, static_cast<const RecordDescriptor*>(other.at()));
    EXPECT_EQ(ValueText(table.get(), KindTable, braces | blanks), "{{1, \"a\"}, {2, \"b\"}}");
    EXPECT_EQ(ValueText(table.get(), KindTable, braces | blanks | rows), "{1, \"a\"}, {2, \"b\"}");
    EXPECT_EQ(ValueText(table.get(), KindTable, blanks), "1, \"a\", 2, \"b\"");
}

TEST_F(ValueTexts, OnlyTheOutermostRowsAreWithoutBraces) {
    const ValueModel list = List(integers({}), {integers({1}), integers({2, 3})});
    EXPECT_EQ(textOf(list, braces | rows), "{1},{2,3}");
    EXPECT_EQ(textOf(Record({list}), braces | rows), "{{{1},{2,3}}}");
}

TEST_F(ValueTexts, GoToStringsOfTheLanguage) {
    const OddValue value(integers({1, 2, 3}));
    String open, fixed(4);
    ValueText(value.at(), KindList, braces | blanks, open.get());
    EXPECT_EQ(open.view(), "{1, 2, 3}");
    ValueText(value.at(), KindList, braces | blanks, fixed.get());
    EXPECT_EQ(fixed.view(), "{1, ");
    EXPECT_EQ(takeError(), 0);
}

TEST_F(ValueTexts, AreCutAtTheirLimit) {
    const OddValue value(Text(std::string(70000, 'x')));
    String open, large(70010);
    ValueText(value.at(), KindString, 0, open.get());
    EXPECT_EQ(open.length(), 65535);
    EXPECT_EQ(ValueText(value.at(), KindString, 0).size(), 65535U);
    ValueText(value.at(), KindString, 0, large.get());
    EXPECT_EQ(large.length(), 70002);
    const OddValue exact(Text(std::string(65533, 'x')));
    EXPECT_EQ(ValueText(exact.at(), KindString, 0).size(), 65535U);
    EXPECT_EQ(ValueText(exact.at(), KindString, 0).back(), '"');
}

TEST_F(ValueTexts, RefuseWhatIsNoValueAndNoString) {
    std::int32_t number = 5;
    String dest("as it was");
    ValueText(nullptr, KindInteger, 0, dest.get());
    EXPECT_EQ(takeError(), 764);
    for (const std::int32_t kind : {-1, 0, 13, 100}) {
        ValueText(&number, kind, 0, dest.get());
        EXPECT_EQ(takeError(), 764) << kind;
        EXPECT_EQ(ValueText(&number, kind, 0), "");
        EXPECT_EQ(takeError(), 764) << kind;
    }
    const char zeros[64] = {};
    const OddValue list(integers({1}));
    for (std::int32_t kind = KindString; kind <= KindTable; ++kind) {
        ValueText(zeros, kind, 0, dest.get());
        EXPECT_EQ(takeError(), 764) << kind;
        if (kind == KindList) continue;
        ValueText(list.at(), kind, 0, dest.get());
        EXPECT_EQ(takeError(), 764) << kind;
    }
    EXPECT_EQ(dest.view(), "as it was");
    ValueText(&number, KindInteger, 0, nullptr);
    EXPECT_EQ(takeError(), 756);
    OddValue set(Set(1, 8, {1}));
    ValueText(&number, KindInteger, 0, set.at());
    EXPECT_EQ(takeError(), 756);
    EXPECT_EQ(ValueText(set.at(), KindSet, 0), "[1]");
    char zeroString[24] = {};
    ValueText(&number, KindInteger, 0, zeroString);
    EXPECT_EQ(takeError(), 756);
}

TEST_F(ValueTexts, TakeUninitialisedElementsAsEmpty) {
    RecordValue record;
    RecordInit(record.get(), TagRecord,
               MakeFieldKinds({KindString, KindRecord, KindUnion, KindSet, KindArray, KindList, KindTable}));
    EXPECT_EQ(ValueText(record.get(), KindRecord, braces), "{\"\",{},{},[],{},{},{}}");
}

class FileValueTexts : public FileLists {};

TEST_F(FileValueTexts, ReadTheFile) {
    const ListValue list = numbers("/d/n.dat", {1, 2, 3});
    EXPECT_EQ(ValueText(list.get(), KindList, braces), "{1,2,3}");
    const ListValue closed = listOf(Number(KindInteger, 0));
    EXPECT_EQ(ValueText(closed.get(), KindList, braces), "{}");
    EXPECT_EQ(takeError(), 0);
}

TEST_F(FileValueTexts, EndWhereTheFileIsMissing) {
    const ListValue list = numbers("/d/n.dat", {1, 2, 3});
    files_.remove("/d/n.dat");
    EXPECT_EQ(ValueText(list.get(), KindList, braces), "{}");
    EXPECT_EQ(takeError(), 653);
}

}  // namespace
