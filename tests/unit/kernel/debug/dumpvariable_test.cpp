// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/showvalues.h"

#include "kernel/lists/lists.h"
#include "kernel/tables/filevalues.h"
#include "kernel/values/strings.h"
#include "unit/kernel/debug/debuggedvalues.h"
#include "unit/kernel/debug/shownvalues_fixture.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

using namespace tarn;
using namespace tarn::debugged;

namespace {

class DumpedVariable : public FrameValues {
protected:
    std::string dump(const ValueModel& model, bool hex = false, bool expanded = false) {
        add("v", model);
        VariableEntry& one = entry(variableTable->count);
        one.expanded = expanded;
        return DumpVariable(one, hex);
    }
};

TEST_F(DumpedVariable, HasNameTypeAndValue) {
    const struct {
        ValueModel value;
        std::string text;
    } cases[] = {
        {Number(KindBoolean, 1), "v : Boolean = True\n"},
        {Number(KindEnum, 7), "v : Enum = 7\n"},
        {integer(255), "v : Integer = 255\n"},
        {Number(KindFixed, 12500), "v : Fixed = 1.2500\n"},
        {Real(0.125), "v : Real = +1.2500000000000000E-0001\n"},
        {Text("abc"), "v : String = \"abc\"\n"},
        {Text("abc", 10), "v : String[10] = \"abc\"\n"},
        {Set(1, 20, {1, 2, 3, 7}), "v : Set = [1..3,7]\n"},
        {Record({integer(1), Text("a")}), "v : Record = {1, \"a\"}\n"},
        {Record({integer(1)}, KindUnion), "v : Union = {1}\n"},
        {Array({{1, 3}}, integer(0)), "v : Array (Bounds=1:3) = {0, 0, 0}\n"},
        {Array({{-1, 0}, {5, 6}, {0, 0}}, integer(0)), "v : Array (Bounds=-1:0,5:6,0:0) = {0, 0, 0, 0}\n"},
        {Array({}, integer(0), {}, DYNAMIC_BOUNDS), "v : Array (Bounds=*:*) = {}\n"},
        {integers(3), "v : List (Length=3) = {1, 2, 3}\n"},
        {integers(0), "v : List (Length=0) = {}\n"},
        {characters(std::string_view("ab\0c", 4)), "v : Array (Bounds=1:4) = \"ab\"\n"},
    };
    for (const auto& one : cases) EXPECT_EQ(dump(one.value), one.text);
}

TEST_F(DumpedVariable, ShowsIntegersInHexadecimalWhenAskedFor) {
    EXPECT_EQ(dump(integer(255), true), "v : Integer = 0x000000FF\n");
    EXPECT_EQ(dump(integers(2), true), "v : List (Length=2) = {0x00000001, 0x00000002}\n");
    EXPECT_EQ(dump(integers(2), true, true), "v : List (Length=2) = \n   0x00000001,\n   0x00000002\n");
    EXPECT_EQ(dump(Number(KindEnum, 255), true), "v : Enum = 255\n");
}

TEST_F(DumpedVariable, ExpandedHasALineForEachElement) {
    EXPECT_EQ(dump(integers(3), false, true), "v : List (Length=3) = \n   1,\n   2,\n   3\n");
    EXPECT_EQ(dump(integers(0), false, true), "v : List (Length=0) = \n");
    EXPECT_EQ(dump(List(integers(0), {integers(2), integers(0)}), false, true),
              "v : List (Length=2) = \n   {1, 2},\n   {}\n");
    EXPECT_EQ(dump(Array({{1, 2}}, integer(0)), false, true), "v : Array (Bounds=1:2) = \n   0,\n   0\n");
    EXPECT_EQ(dump(characters("AB"), false, true), "v : Array (Bounds=1:2) = \n   65,\n   66\n");
    EXPECT_EQ(dump(Record({integer(1)}), false, true), "v : Record = {1}\n");
    EXPECT_EQ(dump(Text("a"), false, true), "v : String = \"a\"\n");
}

TEST_F(DumpedVariable, TooBigValuesAreSaidToBe) {
    EXPECT_EQ(dump(Text(std::string(2000, 'x'))), "v : String = {...too big...}\n");
    EXPECT_EQ(dump(Text(std::string(1022, 'x'))), "v : String = {...too big...}\n");
    EXPECT_EQ(dump(Text(std::string(1021, 'x'))), "v : String = \"" + std::string(1021, 'x') + "\"\n");
    EXPECT_EQ(dump(integers(1000)), "v : List (Length=1000) = {...too big...}\n");
    EXPECT_EQ(dump(Record({Text(std::string(600, 'x')), Text(std::string(600, 'x'))})),
              "v : Record = {...too big...}\n");
    EXPECT_EQ(dump(List(Text(""), {Text("a"), Text(std::string(2000, 'x')), Text("b")}), false, true),
              "v : List (Length=3) = \n   \"a\",\n   {...too big...},\n   \"b\"\n");
}

TEST_F(DumpedVariable, ArraysOfCharactersAreCut) {
    EXPECT_EQ(dump(characters(std::string(1018, 'x'))),
              "v : Array (Bounds=1:1018) = \"" + std::string(1018, 'x') + "\"\n");
    EXPECT_EQ(dump(characters(std::string(1019, 'x'))),
              "v : Array (Bounds=1:1019) = \"" + std::string(1019, 'x') + "...\n");
    EXPECT_EQ(dump(characters(std::string(30000, 'x'))),
              "v : Array (Bounds=1:30000) = \"" + std::string(1019, 'x') + "...\n");
}

TEST_F(DumpedVariable, ElementsWithoutAPlaceAreOneLine) {
    add("v", integers(10));
    entry(1).expanded = true;
    const std::string whole = DumpVariable(entry(1), false);
    const std::string head = "v : List (Length=10) = \n";
    EXPECT_EQ(DumpVariable(entry(1), false, whole.size()), whole);
    EXPECT_EQ(DumpVariable(entry(1), false, whole.size() - 1),
              head + "   1,\n   2,\n   3,\n   4,\n   5,\n   6,\n  {...too big...}\n");
    EXPECT_EQ(DumpVariable(entry(1), false, head.size() + 25), head + "   1,\n  {...too big...}\n");
    EXPECT_EQ(DumpVariable(entry(1), false, head.size() + 3),
              (head + "  {...too big...}\n").substr(0, head.size() + 3));
    EXPECT_EQ(DumpVariable(entry(1), false, 10), head.substr(0, 10));
    EXPECT_EQ(DumpVariable(entry(1), false, std::size_t{0}), "");
}

TEST_F(DumpedVariable, OfALargeListStopsAtTheCapacity) {
    add("v", integers(150000));
    entry(1).expanded = true;
    const std::string text = DumpVariable(entry(1), false);
    EXPECT_LE(text.size(), 1024000U);
    EXPECT_GT(text.size(), 1024000U - 40);
    EXPECT_TRUE(text.ends_with(",\n  {...too big...}\n"));
}

TEST_F(DumpedVariable, GoesToAStringOfTheLanguage) {
    addInteger("count", 5);
    String open, fixed(9);
    DumpVariable(entry(1), false, open.get());
    EXPECT_EQ(open.view(), "count : Integer = 5\n");
    DumpVariable(entry(1), false, fixed.get());
    EXPECT_EQ(fixed.view(), "count : I");
    DumpVariable(entry(1), false, nullptr);
    EXPECT_EQ(takeError(), 756);
    VariableEntry none = entry(1);
    none.address = nullptr;
    DumpVariable(none, false, open.get());
    EXPECT_EQ(takeError(), 764);
    EXPECT_EQ(open.view(), "count : Integer = 5\n");
}

TEST_F(DumpedVariable, TakesFreedValuesAsEmpty) {
    static const char zeros[64] = {};
    const std::string expected[] = {"v : String = \"\"\n",
                                    "v : Record = {}\n",
                                    "v : Union = {}\n",
                                    "v : Set = []\n",
                                    "v : Array (Bounds=*:*) = {}\n",
                                    "v : List (Length=0) = {}\n",
                                    "v : Table (Length=0) = {}\n"};
    for (std::int32_t kind = KindString; kind <= KindTable; ++kind) {
        VariableEntry one{"v", 'V', kind, const_cast<char*>(zeros), false};
        EXPECT_EQ(DumpVariable(one, false), expected[kind - KindString]);
        one.expanded = true;
        EXPECT_TRUE(DumpVariable(one, false).starts_with("v : "));
    }
    EXPECT_EQ(takeError(), 0);
}

TEST_F(DumpedVariable, ShowsTheFileOfAFileHeldValue) {
    const OddValue like(integer(0));
    ListValue list;
    ListInit(list.get(), UNBOUNDED, like.at(), KindInteger, true);
    RegisterVariable("rows", 'V', KindList, list.get());
    EXPECT_EQ(DumpVariable(entry(1), false), "rows : List (Length=0) (external=\"\") = {}\n");
    const std::string name = folder_ / "n.dat";
    FileOpen(list.get(), KindList, name);
    for (std::int32_t i = 1; i <= 3; ++i) ListAppend(&i, KindInteger, list.get());
    EXPECT_EQ(DumpVariable(entry(1), false),
              "rows : List (Length=3) (external=\"" + name + "\") = {1, 2, 3}\n");
    entry(1).expanded = true;
    EXPECT_EQ(DumpVariable(entry(1), false),
              "rows : List (Length=3) (external=\"" + name + "\") = \n   1,\n   2,\n   3\n");
    EXPECT_EQ(takeError(), 0);
    std::filesystem::remove(name);
    EXPECT_EQ(DumpVariable(entry(1), false),
              "rows : List (Length=3) (external=\"" + name + "\") = \n   {...cannot be read...}\n");
    EXPECT_EQ(takeError(), 653);
    entry(1).expanded = false;
    EXPECT_EQ(DumpVariable(entry(1), false),
              "rows : List (Length=3) (external=\"" + name + "\") = {...cannot be read...}\n");
    EXPECT_EQ(takeError(), 653);
}

}  // namespace
