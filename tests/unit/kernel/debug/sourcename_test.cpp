// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/sourcename.h"

#include <gtest/gtest.h>
#include <string>

namespace tarn {
namespace {

TEST(SourceName, IsTheOneAtTheEndWithAllThatItBelongsTo) {
    const struct {
        const char* source;
        const char* name;
    } cases[] = {
        {"x", "x"},
        {"  count", "count"},
        {"_a1", "_a1"},
        {"x := y", "y"},
        {"x:=order.item.price", "order.item.price"},
        {"x := order.item", "order.item"},
        {"x := order", "order"},
        {"l[1].size", "l[1].size"},
        {"y := rows[i + 1].size", "rows[i + 1].size"},
        {"y := rows[i", "i"},
        {"a[1][2].b[c[3].d].e", "a[1][2].b[c[3].d].e"},
        {"a[1][2].b[c[3].d", "c[3].d"},
        {"a[1, 2].b", "a[1, 2].b"},
        {"l [ 1 ] . size", "l [ 1 ] . size"},
        {"names[k = \"]\"].x", "names[k = \"]\"].x"},
        {"f(a.b", "a.b"},
        {"f(a[1], b[2].c", "b[2].c"},
        {"if x in [a..b", "b"},
        {"if x in [a", "a"},
        {"1.5 + x", "x"},
        {"\"a\" + b", "b"},
        {"\"say \"\"x\"\" \" + b", "b"},
        {"a / b", "b"},
    };
    for (const auto& one : cases) EXPECT_EQ(SourceNameAtEnd(one.source), one.name) << one.source;
}

TEST(SourceName, IsNoneInCommentsAndTexts) {
    for (const char* source :
         {"// count", "x := 1 // count", "x := 1 //count", "//", "x := \"count", "x := \"a count",
          "\"say \"\"count", "x := \"// \" + \"count", "x := \"a\" // \"count"})
        EXPECT_EQ(SourceNameAtEnd(source), "") << source;
    EXPECT_EQ(SourceNameAtEnd("x := \"//\" + count"), "count");
    EXPECT_EQ(SourceNameAtEnd("x := \"\" + count"), "count");
}

TEST(SourceName, IsNoneWhereItsOwnerIsNotInTheLine) {
    for (const char* source : {".size", "  .size", "f(x).size", "(a).size", "f(x)[1].size", "].size",
                               "[1].size", "1].size", "\"text\".size", "12.size", "a..b.c.", "\"x\"[1].size"})
        EXPECT_EQ(SourceNameAtEnd(source), "") << source;
}

TEST(SourceName, IsNoneWhereNoNameEnds) {
    for (const char* source : {"", " ", "12", "1.5", "0xFF", "x ", "x :=", "l[1]", "(", "x.", "1E5",
                               "caf\xC3\xA9 ", "\xC3\xA9", "\"text\""})
        EXPECT_EQ(SourceNameAtEnd(source), "") << source;
}

TEST(SourceName, IsFoundInALineOfAnyLength) {
    std::string deep = "x";
    for (int i = 0; i < 1000; ++i) deep = "a[" + deep + "].b";
    EXPECT_EQ(SourceNameAtEnd(deep), deep);
    EXPECT_EQ(SourceNameAtEnd(std::string(100000, '[') + "x"), "x");
    EXPECT_EQ(SourceNameAtEnd(std::string(100000, ']') + ".x"), "");
    EXPECT_EQ(SourceNameAtEnd(std::string(100001, '.') + "x"), "");
}

}  // namespace
}  // namespace tarn
