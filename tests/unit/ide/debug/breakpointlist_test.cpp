// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/debug/breakpointlist.h"

#include "support/ide_fixture.h"

#include <chrono>

namespace tarn {
namespace {

std::string text(const std::vector<Breakpoint>& list) {
    std::string result;
    for (const Breakpoint& one : list) result += one.className + ":" + std::to_string(one.line) + " ";
    return result;
}

class BreakpointList : public IdeTest {};

TEST_F(BreakpointList, IsReadFromWords) {
    struct Case {
        const char *value, *list;
    };
    for (const Case& c : {Case{"ide 10 20 textedit 5", "ide:10 ide:20 textedit:5 "},
                          {"10 20", ""},
                          {"", ""},
                          {"   ide   10   ", "ide:10 "},
                          {"ide", ""},
                          {"ide textedit 5", "textedit:5 "},
                          {"ide 0 -3 7", "ide:7 "},
                          {"ide 5x 7", "5x:7 "},
                          {"ide 10 10", "ide:10 ide:10 "},
                          {"ide 99999999999 7", "99999999999:7 "}})
        EXPECT_EQ(text(PARSEBREAKPOINTS(c.value)), c.list) << c.value;
}

TEST_F(BreakpointList, TenThousandAreReadAtOnce) {
    std::vector<Breakpoint> all;
    for (int i = 1; i <= 10000; i++) all.push_back({i % 2 == 0 ? "ide" : "textedit", i});
    const std::string value = FORMATBREAKPOINTS(all);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(text(PARSEBREAKPOINTS(value)), text(all));
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(500));
}

TEST_F(BreakpointList, BecomesWordsInItsOrder) {
    EXPECT_EQ(FORMATBREAKPOINTS({{"ide", 10}, {"IDE", 20}, {"textedit", 5}, {"ide", 3}}),
              "ide 10 20 textedit 5 ide 3");
    EXPECT_EQ(FORMATBREAKPOINTS({}), "");
}

TEST_F(BreakpointList, IsKeptInTheSettings) {
    EXPECT_TRUE(STOREDBREAKPOINTS().empty());
    STOREBREAKPOINTS({{"ide", 10}, {"textedit", 5}});
    EXPECT_EQ(PROFILESTRGET(ini(), "debug", "breakpoints"), "ide 10 textedit 5");
    EXPECT_EQ(text(STOREDBREAKPOINTS()), "ide:10 textedit:5 ");
}

TEST_F(BreakpointList, IsNoLongerThanAProgramTakes) {
    std::vector<Breakpoint> list;
    for (int i = 1; i <= 200; i++) list.push_back({"A", i});
    EXPECT_EQ(BREAKPOINTSFAULT(list), "");
    list.push_back({"A", 201});
    EXPECT_EQ(BREAKPOINTSFAULT(list), "A program takes at most 200 breakpoints.");
    list.clear();
    for (int i = 0; i < 24; i++) list.push_back({std::string(37, static_cast<char>('a' + i)), 1000});
    EXPECT_EQ(FORMATBREAKPOINTS(list).size(), 24U * 43 - 1);
    EXPECT_NE(BREAKPOINTSFAULT(list), "") << "1031 characters";
    list.pop_back();
    EXPECT_EQ(BREAKPOINTSFAULT(list), "");
}

TEST_F(BreakpointList, NamesOfClassesAreThoseOfTheLanguage) {
    for (const char* name : {"a", "Main", "a_1"}) EXPECT_TRUE(ISCLASSNAME(name)) << name;
    for (const std::string& name : {std::string(), std::string("1a"), std::string("a-b"),
                                    std::string("function"), std::string(41, 'a')})
        EXPECT_FALSE(ISCLASSNAME(name)) << name;
}

}  // namespace
}  // namespace tarn
