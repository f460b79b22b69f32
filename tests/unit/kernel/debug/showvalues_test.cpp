// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/showvalues.h"

#include "kernel/lists/lists.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/tables.h"
#include "kernel/values/strings.h"
#include "support/steerable.h"
#include "unit/kernel/debug/debuggedvalues.h"
#include "unit/kernel/debug/shownvalues_fixture.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace tarn;
using namespace tarn::debugged;
using platform::types::DEBUG_CHANGED;
using platform::types::DebugMarker;

namespace {

class ShownValues : public WindowOfValues {
protected:
    std::vector<std::string> show(std::int32_t frame = 1, bool hex = false) {
        ShowValues(*window_, frame, hex);
        return lines();
    }
    std::vector<std::string> lines() {
        std::vector<std::string> all;
        for (int i = 1; i <= platform::DebugCount(*window_); ++i)
            all.push_back(platform::DebugLine(*window_, i));
        return all;
    }
    std::vector<int> changed() {
        std::vector<int> all;
        for (int i = 1; i <= platform::DebugCount(*window_); ++i)
            if ((platform::DebugFlags(*window_, i) & DEBUG_CHANGED) != 0) all.push_back(i);
        return all;
    }
    using Lines = std::vector<std::string>;
};

TEST_F(ShownValues, AnEmptyFrameSaysWhy) {
    EXPECT_EQ(show(), (Lines{" Either there are no values in scope here,",
                             " or the file was compiled without debug information.",
                             " (To enable debug information, use Tools-Options-Compiler,",
                             "  select Full Debugging, then recompile the file)."}));
    EXPECT_EQ(platform::DebugSelected(*window_), 0);
    EXPECT_EQ(show(0).size(), 4U);
    EXPECT_EQ(show(2).size(), 4U);
    EXPECT_EQ(show(100000).size(), 4U);
    EXPECT_FALSE(ExpandValue(*window_, 1, 1, false));
    EXPECT_NE(ChangeValue(*window_, 1, 1, "5"), "");
}

TEST_F(ShownValues, AreThoseOfTheFrame) {
    addInteger("a", 1);
    add("list", integers(2));
    FunctionEnter("Other", "deeper", 1);
    addInteger("b", 2);
    EXPECT_EQ(show(1), (Lines{"a : Integer = 1", "list : List (Length=2) = {1, 2}"}));
    EXPECT_EQ(show(2), (Lines{"b : Integer = 2"}));
    EXPECT_EQ(show(2, true), (Lines{"b : Integer = 0x00000002"}));
}

TEST_F(ShownValues, ThoseThatCanBeExpandedHaveAMarker) {
    addInteger("a", 1);
    add("list", integers(2));
    add("record", Record({integer(1)}));
    add("array", Array({{1, 2}}, integer(0)));
    entry(4).expanded = true;
    show();
    const DebugMarker expected[] = {DebugMarker::None,     DebugMarker::Expand, DebugMarker::None,
                                    DebugMarker::Collapse, DebugMarker::None,   DebugMarker::None};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(platform::GetDebugMarker(*window_, i + 1), expected[i]) << i;
}

TEST_F(ShownValues, ADoubleClickExpandsAndCollapses) {
    addInteger("a", 1);
    add("list", integers(2));
    addInteger("b", 1);
    show();
    platform::DebugSelect(*window_, 2, false);
    EXPECT_TRUE(ExpandValue(*window_, 1, 2, false));
    EXPECT_EQ(lines(),
              (Lines{"a : Integer = 1", "list : List (Length=2) = ", "   1,", "   2", "b : Integer = 1"}));
    EXPECT_EQ(platform::DebugSelected(*window_), 2);
    EXPECT_TRUE(entry(2).expanded);
    for (const int other : {0, 1, 3, 4, 5, 6}) EXPECT_FALSE(ExpandValue(*window_, 1, other, false)) << other;
    EXPECT_TRUE(ExpandValue(*window_, 1, 2, false));
    EXPECT_EQ(lines(), (Lines{"a : Integer = 1", "list : List (Length=2) = {1, 2}", "b : Integer = 1"}));
}

TEST_F(ShownValues, OfTwoWithOneNameTheOneOfTheLineIsExpanded) {
    add("list", integers(1));
    add("LIST", integers(2));
    show();
    EXPECT_TRUE(ExpandValue(*window_, 1, 2, false));
    EXPECT_FALSE(entry(1).expanded);
    EXPECT_TRUE(entry(2).expanded);
}

TEST_F(ShownValues, AnElementThatReadsLikeAVariableExpandsIt) {
    add("True", integers(1));
    add("list", List(Number(KindBoolean, 0), {Number(KindBoolean, 1)}));
    entry(2).expanded = true;
    EXPECT_EQ(show()[2], "   True");
    EXPECT_TRUE(ExpandValue(*window_, 1, 3, false));
    EXPECT_TRUE(entry(1).expanded);
}

TEST_F(ShownValues, TheLineForElementsWithoutAPlaceOpensNothing) {
    add("list", integers(150000));
    entry(1).expanded = true;
    const int last = static_cast<int>(show().size());
    EXPECT_EQ(platform::DebugLine(*window_, last), "  {...too big...}");
    EXPECT_FALSE(ExpandValue(*window_, 1, last, false));
    EXPECT_EQ(platform::DebugCount(*window_), last);
}

TEST_F(ShownValues, ALineThatIsTooLongIsNotExpanded) {
    add("list", List(Text(""), {Text(std::string(1000, 'x'))}));
    show();
    EXPECT_GT(platform::DebugLine(*window_, 1).size(), 1024U);
    EXPECT_FALSE(ExpandValue(*window_, 1, 1, false));
}

TEST_F(ShownValues, WhatHasChangedSinceItWasNotedIsMarked) {
    std::int32_t& a = addInteger("a", 1);
    addInteger("b", 1);
    void* const list = add("list", integers(3));
    entry(3).expanded = true;
    show();
    EXPECT_EQ(changed(), std::vector<int>());
    NoteValues();
    a = 2;
    const std::int32_t nine = 9;
    ListPut(&nine, KindInteger, 2, static_cast<ListDescriptor*>(list));
    show();
    EXPECT_EQ(changed(), (std::vector<int>{1, 5}));
    show();
    EXPECT_EQ(changed(), (std::vector<int>{1, 5}));
    NoteValues();
    ListAppend(&nine, KindInteger, static_cast<ListDescriptor*>(list));
    show();
    EXPECT_EQ(changed(), std::vector<int>{3});
    entry(3).expanded = false;
    show();
    EXPECT_EQ(changed(), std::vector<int>{3});
    NoteValues();
    FunctionEnter("Main", "other", 1);
    addInteger("c", 1);
    show(2);
    EXPECT_EQ(changed(), std::vector<int>());
}

TEST_F(ShownValues, AChangeWithinWhatIsTooBigIsSeen) {
    void* const list = add("list", integers(3000));
    show();
    NoteValues();
    const std::int32_t nine = 9;
    ListPut(&nine, KindInteger, 2999, static_cast<ListDescriptor*>(list));
    EXPECT_EQ(show(), Lines{"list : List (Length=3000) = {...too big...}"});
    EXPECT_EQ(changed(), std::vector<int>{1});
}

TEST_F(ShownValues, ComeByPages) {
    addInteger("a", 1);
    add("list", integers(250));
    show();
    EXPECT_FALSE(PageValue(*window_, 1, 1, ValuePage::Next, false));
    EXPECT_FALSE(PageValue(*window_, 1, 2, ValuePage::Previous, false));
    EXPECT_TRUE(PageValue(*window_, 1, 2, ValuePage::Next, false));
    ASSERT_EQ(lines().size(), 103U);
    EXPECT_EQ(lines()[2], "   {...elements 1 to 100 of 250...}");
    EXPECT_EQ(lines()[3], "   1,");
    EXPECT_EQ(lines()[102], "   100,");
    EXPECT_TRUE(PageValue(*window_, 1, 50, ValuePage::Next, false));
    EXPECT_EQ(WholeValue(1, 3, false), "");
    EXPECT_EQ(NameOfValue(1, 3), "");
    EXPECT_EQ(ChangeValue(*window_, 1, 3, "1"), "There is no value in this line.");
    EXPECT_FALSE(ShowWholeValue(*window_, 1, 3, false));
    EXPECT_TRUE(ExpandValue(*window_, 1, 3, false));
    EXPECT_FALSE(ExpandValue(*window_, 1, 3, false));
    EXPECT_TRUE(PageValue(*window_, 1, 3, ValuePage::Previous, false));
    EXPECT_TRUE(PageValue(*window_, 1, 3, ValuePage::Next, false));
    ASSERT_EQ(lines().size(), 53U);
    EXPECT_EQ(lines()[2], "   {...elements 201 to 250 of 250...}");
    EXPECT_EQ(lines()[52], "   250");
    EXPECT_FALSE(PageValue(*window_, 1, 2, ValuePage::Next, false));
    EXPECT_TRUE(PageValue(*window_, 1, 2, ValuePage::Previous, false));
    EXPECT_EQ(lines()[3], "   101,");
    EXPECT_EQ(ChangeValue(*window_, 1, 4, "7"), "");
    EXPECT_EQ(lines()[3], "   7,");
    EXPECT_TRUE(ExpandValue(*window_, 1, 2, false));
    EXPECT_TRUE(ExpandValue(*window_, 1, 2, false));
    EXPECT_EQ(lines().size(), 252U);
    EXPECT_EQ(lines()[102], "   7,");
}

TEST_F(ShownValues, ComeWhole) {
    const std::string text(1100, 'x');
    addInteger("a", 1);
    add("text", Text(text));
    add("list", List(Text(""), {Text("a"), Text(text), Text("b")}));
    add("chars", characters(std::string(1100, 'y')));
    entry(3).expanded = true;
    const Lines before = show();
    EXPECT_FALSE(ShowWholeValue(*window_, 1, 1, false));
    EXPECT_FALSE(ShowWholeValue(*window_, 1, 3, false));
    EXPECT_FALSE(ShowWholeValue(*window_, 1, 4, false));
    EXPECT_FALSE(ShowWholeValue(*window_, 1, 100, false));
    EXPECT_EQ(lines(), before);
    EXPECT_TRUE(ShowWholeValue(*window_, 1, 2, false));
    ASSERT_EQ(lines().size(), before.size() + 11);
    EXPECT_EQ(lines()[1], "text : String = \"" + std::string(99, 'x'));
    EXPECT_EQ(lines()[2], "   " + std::string(100, 'x'));
    EXPECT_EQ(lines()[12], "   x\"");
    EXPECT_EQ(lines()[13], before[2]);
    EXPECT_TRUE(ShowWholeValue(*window_, 1, 16, false));
    ASSERT_EQ(lines().size(), before.size() + 22);
    EXPECT_EQ(lines()[15], "   \"" + std::string(99, 'x'));
    EXPECT_EQ(lines()[26], "      x\",");
    EXPECT_EQ(lines()[27], "   \"b\"");
    EXPECT_TRUE(ShowWholeValue(*window_, 1, 29, false));
    EXPECT_EQ(lines().back(), "   y\"");
    NoteValues();
    EXPECT_EQ(ChangeValue(*window_, 1, 5, "\"short\""), "");
    EXPECT_EQ(lines()[1], "text : String = \"short\"");
    EXPECT_EQ(changed(), std::vector<int>{2});
    EXPECT_TRUE(ShowWholeValue(*window_, 1, 10, false));
    EXPECT_EQ(lines()[4], "   {...too big...},");
}

// ---- one value ----

TEST_F(ShownValues, AreChanged) {
    std::int32_t& a = addInteger("a", 1);
    void* const list = add("list", integers(3));
    add("text", Text("abc", 5));
    void* const array = add("array", Array({{5, 6}}, Text("")));
    entry(2).expanded = entry(4).expanded = true;
    show();
    EXPECT_EQ(ChangeValue(*window_, 1, 1, " 0x10 "), "");
    EXPECT_EQ(a, 16);
    EXPECT_EQ(lines()[0], "a : Integer = 16");
    EXPECT_EQ(ChangeValue(*window_, 1, 4, "77"), "");
    EXPECT_EQ(ChangeValue(*window_, 1, 6, "\"hello\""), "");
    EXPECT_EQ(ChangeValue(*window_, 1, 9, "\"six\""), "");
    EXPECT_EQ(lines(), (Lines{"a : Integer = 16", "list : List (Length=3) = ", "   1,", "   77,", "   3",
                              "text : String[5] = \"hello\"", "array : Array (Bounds=5:6) = ", "   \"\",",
                              "   \"six\""}));
    EXPECT_EQ(ChangeValue(*window_, 1, 2, "{4}"), "");
    EXPECT_EQ(AdtCheck(list, KindList), "");
    EXPECT_EQ(AdtCheck(array, KindArray), "");
    EXPECT_EQ(lines()[1], "list : List (Length=1) = ");
    EXPECT_EQ(lines()[2], "   4");
}

TEST_F(ShownValues, RefuseWhatDoesNotFit) {
    const std::int32_t& a = addInteger("a", 1);
    add("text", Text("abc", 5));
    add("given", Text("abc"), 'I');
    show();
    add("list", List(Record({Text("", 3), integer(0)}), {}));
    show();
    const struct {
        int line;
        const char* text;
        const char* refusal;
    } cases[] = {
        {1, "x", "1 it takes an integer, in decimal or as 0x and up to eight hexadecimal digits."},
        {1, "12 x", "4 it takes an integer, in decimal or as 0x and up to eight hexadecimal digits."},
        {2, "\"toolong\"", "1 it takes a text in double quotes, of at most 5 characters."},
        {2, "short", "1 it takes a text in double quotes."},
        {4, "{{\"abcd\", 1}}", "3 it takes a text in double quotes, of at most 3 characters."},
        {4, "{{\"abc\", x}}",
         "10 it takes an integer, in decimal or as 0x and up to eight hexadecimal digits."},
        {4, "{{\"abc\", 1, 2}}", "13 it takes the fields between { and }, with commas."},
        {4, "{{\"abc\", 1}", "12 it takes the elements between { and }, with commas."},
    };
    for (const auto& one : cases)
        EXPECT_EQ(ChangeValue(*window_, 1, one.line, one.text),
                  std::string("The value was not changed: at character ") + one.refusal);
    EXPECT_EQ(ChangeValue(*window_, 1, 3, "\"x\""),
              "A parameter of mode in is the value of the caller, and cannot be changed here.");
    EXPECT_EQ(ChangeValue(*window_, 1, 5, "1"), "There is no value in this line.");
    EXPECT_EQ(ChangeValue(*window_, 2, 1, "1"), "There is no value in this line.");
    EXPECT_EQ(a, 1);
    SetError(603);
    EXPECT_EQ(ChangeValue(*window_, 1, 1, "7"), "");
    EXPECT_EQ(a, 7);
    EXPECT_EQ(takeError(), 603);
}

TEST_F(ShownValues, RowsOfATableKeepItsIndexes) {
    const OddValue row(Record({integer(1), Text("a", 4)})), other(Record({integer(2), Text("b", 4)}));
    TableValue table;
    TableInit(table.get(), UNBOUNDED, static_cast<const RecordDescriptor*>(row.at()), {MakeKeyMap(1)}, "",
              false);
    for (const OddValue* one : {&row, &other})
        TableAdd(table.get(), 1, static_cast<const RecordDescriptor*>(one->at()));
    RegisterVariable("t", 'V', KindTable, table.get());
    entry(1).expanded = true;
    EXPECT_EQ(show(), (Lines{"t : Table (Length=2) = ", "   {1, \"a\"},", "   {2, \"b\"}"}));
    EXPECT_EQ(ChangeValue(*window_, 1, 2, "{9, \"z\"}"), "");
    EXPECT_EQ(lines()[1], "   {9, \"z\"},");
    EXPECT_EQ(AdtCheck(table.get(), KindTable), "");
    EXPECT_EQ(ChangeValue(*window_, 1, 2, "{2, \"z\"}"),
              "The value was not changed: " + ErrorMessage(635) + ".");
    EXPECT_EQ(lines()[1], "   {9, \"z\"},");
}

TEST_F(ShownValues, ElementsInAFileAreChangedThere) {
    const OddValue like(Text("", 6));
    ListValue list;
    ListInit(list.get(), UNBOUNDED, like.at(), KindString, true);
    FileOpen(list.get(), KindList, folder_ / "n.dat");
    for (const char* text : {"one", "two"}) ListAppend(String(text).get(), KindString, list.get());
    RegisterVariable("l", 'V', KindList, list.get());
    entry(1).expanded = true;
    show();
    EXPECT_EQ(ChangeValue(*window_, 1, 3, "\"three\""), "");
    EXPECT_EQ(lines()[2], "   \"three\"");
    EXPECT_NE(ChangeValue(*window_, 1, 3, "\"threefold\""), "");
    std::filesystem::remove(folder_ / "n.dat");
    EXPECT_EQ(ChangeValue(*window_, 1, 3, "\"x\""), "The value was not changed: " + ErrorMessage(653) + ".");
    EXPECT_EQ(takeError(), 0);
}

TEST_F(ShownValues, AreToldAsAWhole) {
    const std::string text(5000, 'x');
    add("text", Text(text));
    add("list", List(Text(""), {Text(text), Text("b")}));
    entry(2).expanded = true;
    show();
    EXPECT_EQ(NameOfValue(1, 1), "text : String");
    EXPECT_EQ(NameOfValue(1, 2), "list : List (Length=2)");
    EXPECT_EQ(NameOfValue(1, 4), "element 2 of list");
    EXPECT_EQ(NameOfValue(1, 5), "");
    EXPECT_EQ(WholeValue(1, 1, false), "\"" + text + "\"");
    EXPECT_EQ(WholeValue(1, 2, false), "{\"" + text + "\", \"b\"}");
    EXPECT_EQ(WholeValue(1, 3, false), "\"" + text + "\"");
    EXPECT_EQ(WholeValue(1, 4, false), "\"b\"");
    EXPECT_EQ(WholeValue(1, 5, false), "");
    EXPECT_EQ(ChangeValue(*window_, 1, 3, WholeValue(1, 3, false)), "");
}

TEST_F(ShownValues, ReadingAMissingFileLeavesItsError) {
    const OddValue like(integer(0));
    ListValue list;
    ListInit(list.get(), UNBOUNDED, like.at(), KindInteger, true);
    FileOpen(list.get(), KindList, folder_ / "n.dat");
    const std::int32_t one = 1;
    ListAppend(&one, KindInteger, list.get());
    RegisterVariable("l", 'V', KindList, list.get());
    std::filesystem::remove(folder_ / "n.dat");
    show();
    EXPECT_EQ(takeError(), 653);
}

}  // namespace
