// SPDX-License-Identifier: Apache-2.0
//
// What a user types as a value: what is left out by mistake is refused, with what to do about it.
#include "kernel/debug/setfaults.h"
#include "kernel/debug/valuetext.h"

#include "unit/kernel/debug/shownvalues_fixture.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace tarn;
using namespace tarn::debugged;

namespace {

class TypedValues : public WindowOfValues {
protected:
    // What the user is told who types this for a value of that kind; it is as it was if that is anything.
    std::string typed(const ValueModel& before, const std::string& text) {
        OddValue value(before);
        RegisterVariable("v", 'V', before.kind, value.at());
        ShowValues(*window_, 1, false);
        const std::string told = ChangeValue(*window_, 1, variableTable->count, text);
        if (!told.empty()) {
            EXPECT_EQ(model::Differs(before, value.at()), "") << text;
        }
        after_ = ValueText(value.at(), before.kind, VALUE_BRACES | VALUE_BLANKS);
        --variableTable->count;
        constexpr std::string_view unchanged = "The value was not changed: at character ";
        return told.starts_with(unchanged) ? told.substr(unchanged.size()) : told;
    }
    std::string after_;
};

TEST_F(TypedValues, OfASetNameTheMemberThatDoesNotFit) {
    const struct {
        const char* text;
        const char* told;
    } cases[] = {
        {"[1,,2]", "4 a member is missing: write one, or take the comma away."},
        {"[1,2,]", "6 a member is missing: write one, or take the comma away."},
        {"[,1]", "2 a member is missing: write one, or take the comma away."},
        {"[ , ]", "3 a member is missing: write one, or take the comma away."},
        {" [1, ,2]", "6 a member is missing: write one, or take the comma away."},
        {"[10]", "2 the member 10 is outside of the set: its members are from 1 to 9."},
        {"[1, 3..12]", "8 the member 12 is outside of the set: its members are from 1 to 9."},
        {"[-3..2]", "2 the member -3 is outside of the set: its members are from 1 to 9."},
        {"[+10]", "2 the member +10 is outside of the set: its members are from 1 to 9."},
        {"[99999999999999999999999]",
         "2 the member 99999999999999999999... is outside of the set: its members are from 1 to 9."},
        {"[-99999999999999999999999]",
         "2 the member -9999999999999999999... is outside of the set: its members are from 1 to 9."},
        {"[5..3]", "2 the range 5..3 has no members: the lesser number comes first."},
        {"[5:3]", "2 the range 5..3 has no members: the lesser number comes first."},
        {"[1", "3 it takes the members between [ and ], such as [1, 5..9]."},
        {"[x]", "2 it takes the members between [ and ], such as [1, 5..9]."},
        {"[1..]", "5 it takes the members between [ and ], such as [1, 5..9]."},
        {"[1,-]", "4 it takes the members between [ and ], such as [1, 5..9]."},
        {"1", "1 it takes the members between [ and ], such as [1, 5..9]."},
        {"[1] 2", "5 it takes the members between [ and ], such as [1, 5..9]."},
    };
    for (const auto& one : cases) EXPECT_EQ(typed(Set(1, 9, {1}), one.text), one.told) << one.text;
    EXPECT_EQ(typed(Set(1, 1, {}, DYNAMIC_BOUNDS), "[40000]"),
              "2 the member 40000 is outside of the set: its members are from -32768 to 32767.");
    EXPECT_EQ(typed(Record({integer(1), Set(1, 9, {})}), "{1, [1,,2]}"),
              "8 a member is missing: write one, or take the comma away.");
}

TEST_F(TypedValues, OfASetAreTakenInAllItsForms) {
    const struct {
        const char* text;
        const char* after;
    } cases[] = {{"[]", "[]"},    {"[ ]", "[]"},      {"[1, 9]", "[1,9]"}, {" [2..4,6:7] ", "[2..4,6..7]"},
                 {"[+1]", "[1]"}, {"[1,1,1]", "[1]"}, {"[3..3]", "[3]"}};
    for (const auto& one : cases) {
        EXPECT_EQ(typed(Set(1, 9, {5}), one.text), "") << one.text;
        EXPECT_EQ(after_, one.after) << one.text;
    }
    EXPECT_EQ(typed(Set(1, 1, {}, DYNAMIC_BOUNDS), "[-32768, 32767]"), "");
    EXPECT_EQ(after_, "[-32768,32767]");
}

TEST_F(TypedValues, OfARecordHaveAllItsFields) {
    const ValueModel person = Record({integer(5), Text("Ada"), Set(1, 9, {2})});
    const std::string rest = ": write all, or nothing between the commas for those that become 0 or empty.";
    const struct {
        ValueModel value;
        const char* text;
        std::string told;
    } cases[] = {
        {person, "7", "1 it takes the fields between { and }, with commas."},
        {person, "7, \"Bo\", []", "1 it takes the fields between { and }, with commas."},
        {person, "{7}", "3 there are 1 of 3 fields" + rest},
        {person, "{7, \"Bo\"}", "9 there are 2 of 3 fields" + rest},
        {person, "{,}", "3 there are 2 of 3 fields" + rest},
        {person, "{7, \"Bo\", [], 1}", "15 it takes the fields between { and }, with commas."},
        {Record({integer(1), integer(2)}, KindUnion), "{7}", "3 there are 1 of 2 fields" + rest},
        {List(person, {person}), "{{7}}", "4 there are 1 of 3 fields" + rest},
        {List(person, {person}), "{7}", "2 it takes the fields between { and }, with commas."},
        {Array({{1, 3}}, integer(0)), "{7}", "3 there are 1 of 3 elements" + rest},
        {Array({{1, 3}}, integer(0)), "7", "1 it takes the elements between { and }, with commas."},
        {Array({{1, 2}, {1, 2}}, integer(0), {}, DYNAMIC_BOUNDS), "{7, 8, 9}",
         "9 there are 3 of 4 elements" + rest},
        {debugged::integers({1, 2, 3}), "7", "1 it takes the elements between { and }, with commas."},
    };
    for (const auto& one : cases) EXPECT_EQ(typed(one.value, one.text), one.told) << one.text;
}

TEST_F(TypedValues, LeaveOutWhatCommasTell) {
    const ValueModel person = Record({integer(5), Text("Ada"), Set(1, 9, {2})});
    const struct {
        ValueModel value;
        const char *text, *after;
    } cases[] = {
        {person, "{7,,}", "{7, \"\", []}"},
        {person, "{, \"Bo\", [3]}", "{0, \"Bo\", [3]}"},
        {person, "{}", "{0, \"\", []}"},
        {person, "{ }", "{0, \"\", []}"},
        {Record({integer(5)}), "{7}", "{7}"},
        {Array({{1, 3}}, integer(0), {integer(1), integer(2), integer(3)}), "{7, , 9}", "{7, 0, 9}"},
        {Array({{1, 3}}, integer(0), {integer(1), integer(2), integer(3)}), "{}", "{0, 0, 0}"},
        {characters("abc"), "\"x\"", "{120, 0, 0}"},
        {debugged::integers({1, 2, 3}), "{7}", "{7}"},
        {debugged::integers({1, 2, 3}), "{}", "{}"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(typed(one.value, one.text), "") << one.text;
        EXPECT_EQ(after_, one.after) << one.text;
    }
}

TEST_F(TypedValues, EmptyAnArrayWhoseBoundsComeAndGo) {
    void* const array =
        add("a", Array({{4, 6}}, integer(0), {integer(1), integer(2), integer(3)}, DYNAMIC_BOUNDS));
    void* const square = add("b", Array({{1, 2}, {1, 2}}, integer(0), {}, DYNAMIC_BOUNDS));
    void* const text = add("c", characters("abc", DYNAMIC_BOUNDS));
    ShowValues(*window_, 1, false);
    EXPECT_EQ(ChangeValue(*window_, 1, 1, "{}"), "");
    EXPECT_EQ(platform::DebugLine(*window_, 1), "a : Array (Bounds=*:*) = {}");
    EXPECT_EQ(ChangeValue(*window_, 1, 2, "{ }"), "");
    EXPECT_EQ(platform::DebugLine(*window_, 2), "b : Array (Bounds=*:*) = {}");
    EXPECT_EQ(ChangeValue(*window_, 1, 3, "\"\""), "");
    EXPECT_EQ(platform::DebugLine(*window_, 3), "c : Array (Bounds=1:3) = \"\"");
    EXPECT_EQ(ChangeValue(*window_, 1, 3, "{}"), "");
    EXPECT_EQ(platform::DebugLine(*window_, 3), "c : Array (Bounds=*:*) = {}");
    for (void* const one : {array, square, text}) EXPECT_EQ(AdtCheck(one, KindArray), "");
    EXPECT_EQ(ChangeValue(*window_, 1, 1, "{7, 8}"), "");
    EXPECT_EQ(platform::DebugLine(*window_, 1), "a : Array (Bounds=1:2) = {7, 8}");
}

TEST_F(TypedValues, AreRefusedWhateverStandsThere) {
    const ValueModel values[] = {integer(1),
                                 Set(1, 9, {1}),
                                 Text("old", 5),
                                 Record({integer(1), Set(1, 9, {1})}),
                                 Array({{1, 2}}, integer(0), {}, DYNAMIC_BOUNDS),
                                 debugged::integers({1})};
    const std::string texts[] = {std::string(100000, '['),
                                 std::string(100000, '{'),
                                 std::string(100000, ','),
                                 std::string("\0\0", 2),
                                 "[1,\0 2]",
                                 "\xFF\xFE",
                                 "{[1,,2]}",
                                 "{1,[1,,2]",
                                 "[1,2",
                                 "]",
                                 "}",
                                 "[..]",
                                 "[1...2]",
                                 "[1:2:3]",
                                 "[--1]"};
    for (const ValueModel& value : values)
        for (const std::string& text : texts)
            EXPECT_NE(typed(value, text), "") << value.kind << ' ' << text.substr(0, 20);
}

// ---- sets alone ----

TEST(SetFaults, AreFoundInSetsAlone) {
    for (const char* text : {"", "x", "1,,2", "{1,,2}", "[x,,]", "[1 x,,]", "[1,2", "[1;;2]"})
        EXPECT_FALSE(FaultOfSet(text, 0, 1, 9)) << text;
    EXPECT_EQ(FaultOfSet("x [1,,]", 2, 1, 9)->at, 5U);
    EXPECT_FALSE(FaultOfSet("[1]", 3, 1, 9)) << "behind the end";
}

}  // namespace
