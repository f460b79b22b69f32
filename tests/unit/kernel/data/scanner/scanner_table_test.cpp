// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/scanner/scanner.h"

#include <cctype>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>
#include <vector>

using namespace tarn;

namespace {

std::vector<std::string> keysOf(const SymbolTable& table) {
    std::vector<std::string> keys;
    for (std::int32_t i = 0; i < table.count; ++i)
        keys.emplace_back(table.entries[static_cast<std::size_t>(i)].key);
    return keys;
}
using Keys = std::vector<std::string>;

bool sameBytes(const SymbolTable& a, const SymbolTable& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// A table with the keys "1", "2", ... and these ids.
struct Numbers {
    SymbolTable table{};
    explicit Numbers(std::int32_t count) {
        for (std::int32_t i = 1; i <= count; ++i)
            EXPECT_TRUE(SymbolAdd(&table, i, std::to_string(i).c_str(), ""));
    }
};

TEST(SymbolTables, EntriesAreSortedByBytes) {
    SymbolTable table{};
    for (const char* const key : {"b", "a", "B", "<!--", "<", "ab", "~", "_"})
        EXPECT_TRUE(SymbolAdd(&table, 1, key, ""));
    EXPECT_EQ(keysOf(table), (Keys{"<", "<!--", "B", "_", "a", "ab", "b", "~"}));
}

TEST(SymbolTables, AnEqualKeyIsReplaced) {
    SymbolTable table{};
    SymbolAdd(&table, 1, "a", "x");
    SymbolAdd(&table, 2, "b", "");
    EXPECT_TRUE(SymbolAdd(&table, 3, "a", ""));
    EXPECT_EQ(table.count, 2);
    EXPECT_EQ(SymbolLookup(&table, false, "a"), 3);
    EXPECT_FALSE(SymbolHasTerminator(&table, "a", false));
}

TEST(SymbolTables, WhatCannotBeAddedChangesNothing) {
    const struct {
        std::int32_t id;
        const char* key;
        const char* terminator;
    } rows[] = {{-1, "a", ""},   {1, "", ""},      {1, " a", ""},    {1, "a ", ""},
                {1, " ", ""},    {1, "a\tb", ""},  {1, "a\x7F", ""}, {1, "\x80", ""},
                {1, "\x1F", ""}, {1, nullptr, ""}, {1, "a", nullptr}};
    SymbolTable table{};
    SymbolAdd(&table, 1, "k", "");
    const SymbolTable before = table;
    for (const auto& row : rows) {
        EXPECT_FALSE(SymbolAdd(&table, row.id, row.key, row.terminator));
        EXPECT_TRUE(sameBytes(table, before));
    }
    EXPECT_FALSE(SymbolAdd(nullptr, 1, "a", ""));
    EXPECT_TRUE(SymbolAdd(&table, 0, "a b~", " \x01\x80")) << "blanks inside, and any terminator";
}

TEST(SymbolTables, AFullTableTakesNothing) {
    Numbers full(255);
    const SymbolTable before = full.table;
    EXPECT_FALSE(SymbolAdd(&full.table, 1, "new", ""));
    EXPECT_FALSE(SymbolAdd(&full.table, 99, "7", "")) << "nor another entry in the place of one";
    EXPECT_TRUE(sameBytes(full.table, before));
    SymbolRemove(&full.table, "7");
    EXPECT_TRUE(SymbolAdd(&full.table, 1, "new", ""));
    EXPECT_EQ(full.table.count, 255);
}

TEST(SymbolTables, KeysAndTerminatorsAreCutTo40Characters) {
    SymbolTable table{};
    const std::string key(45, 'k'), terminator(45, 't');
    EXPECT_TRUE(SymbolAdd(&table, 1, key.c_str(), terminator.c_str()));
    EXPECT_EQ(std::string(table.entries[0].key), key.substr(0, 40));
    EXPECT_EQ(std::string(table.entries[0].terminator), terminator.substr(0, 40));
    EXPECT_TRUE(SymbolAdd(&table, 2, key.substr(0, 41).c_str(), ""));
    EXPECT_EQ(table.count, 1);
    EXPECT_EQ(SymbolLookup(&table, false, key), -1);
    EXPECT_EQ(SymbolLookup(&table, false, key.substr(0, 40)), 2);
    SymbolRemove(&table, key);
    EXPECT_EQ(table.count, 0);
}

TEST(SymbolTables, WhatBeginsAsAClassIsUpperCased) {
    SymbolTable table{};
    SymbolAdd(&table, 1, "##id", "##eol");
    SymbolAdd(&table, 2, "#id", "#eol");
    EXPECT_EQ(keysOf(table), (Keys{"##ID", "#id"}));
    EXPECT_STREQ(table.entries[0].terminator, "##EOL");
    EXPECT_STREQ(table.entries[1].terminator, "#eol");
}

TEST(SymbolTables, RemovingClosesTheGapAndClearsTheLastSlot) {
    Numbers numbers(3);
    SymbolRemove(&numbers.table, "2");
    EXPECT_EQ(keysOf(numbers.table), (Keys{"1", "3"}));
    const SymbolEntry none{};
    EXPECT_EQ(std::memcmp(&numbers.table.entries[2], &none, sizeof none), 0);
    const SymbolTable before = numbers.table;
    SymbolRemove(&numbers.table, "2");
    SymbolRemove(&numbers.table, "");
    SymbolRemove(nullptr, "1");
    EXPECT_TRUE(sameBytes(numbers.table, before));
    SymbolRemove(&numbers.table, "1");
    SymbolRemove(&numbers.table, "3");
    EXPECT_TRUE(sameBytes(numbers.table, SymbolTable{}));
}

TEST(SymbolTables, Lookup) {
    SymbolTable table{};
    const SymbolTable empty{};
    SymbolAdd(&table, 7, "AND", "");
    SymbolAdd(&table, 0, "OR", "X");
    SymbolAdd(&table, 8, "and", "");
    const struct {
        const SymbolTable* table;
        bool ignoreCase;
        const char* key;
        std::int32_t id, index;
        bool terminator;
    } rows[] = {{&table, false, "AND", 7, 1, false},   {&table, false, "OR", 0, 2, true},
                {&table, false, "and", 8, 3, false},   {&table, false, "or", -1, -1, false},
                {&table, true, "oR", 0, 2, true},      {&table, false, "", -1, -1, false},
                {&table, false, "AN", -1, -1, false},  {&table, true, "ANDY", -1, -1, false},
                {&empty, false, "AND", -1, -1, false}, {nullptr, true, "AND", -1, -1, false}};
    for (const auto& row : rows) {
        EXPECT_EQ(SymbolLookup(row.table, row.ignoreCase, row.key), row.id) << row.key;
        EXPECT_EQ(SymbolIndex(row.table, row.key, row.ignoreCase), row.index) << row.key;
        EXPECT_EQ(SymbolHasTerminator(row.table, row.key, row.ignoreCase), row.terminator) << row.key;
    }
}

TEST(SymbolTables, WhatAnIdStandsFor) {
    SymbolTable table{};
    SymbolAdd(&table, 1, "a", "");
    SymbolAdd(&table, 1, "b", "x");
    SymbolAdd(&table, 2, "##ID", "");
    SymbolAdd(&table, 3, "c", "");
    SymbolAdd(&table, 0, "d", "x");
    SymbolAdd(&table, 0, "##EOL", "");
    SymbolAdd(&table, 4, "##OTHER", "");
    const struct {
        std::int32_t id;
        bool terminator, isClass;
        const char* name;
    } rows[] = {{1, true, false, "a"},          {2, false, true, "<Identifier>"},
                {3, false, false, "c"},         {4, false, true, "##OTHER"},
                {0, false, false, "<Unknown>"}, {-2, false, false, "<Unknown>"},
                {9, false, false, "<Unknown>"}};
    for (const auto& row : rows) {
        char name[41];
        EXPECT_EQ(SymbolIdHasTerminator(&table, row.id), row.terminator) << row.id;
        EXPECT_EQ(SymbolIdIsClass(&table, row.id), row.isClass) << row.id;
        EXPECT_EQ(SymbolDisplayName(&table, row.id, name, sizeof name),
                  static_cast<int>(std::strlen(row.name)));
        EXPECT_STREQ(name, row.name);
    }
    EXPECT_FALSE(SymbolIdHasTerminator(nullptr, 1));
    EXPECT_FALSE(SymbolIdIsClass(nullptr, 2));
}

TEST(SymbolTables, DisplayNamesAreCutToTheBuffer) {
    SymbolTable table{};
    SymbolAdd(&table, 1, "##ID", "");
    char name[20] = "unchanged";
    EXPECT_EQ(SymbolDisplayName(&table, 1, name, 0), 0);
    EXPECT_EQ(SymbolDisplayName(&table, 1, nullptr, 9), 0);
    EXPECT_STREQ(name, "unchanged");
    EXPECT_EQ(SymbolDisplayName(&table, 1, name, 1), 0);
    EXPECT_STREQ(name, "");
    EXPECT_EQ(SymbolDisplayName(&table, 1, name, 6), 5);
    EXPECT_STREQ(name, "<Iden");
    EXPECT_EQ(SymbolDisplayName(nullptr, 1, name, sizeof name), 9);
    EXPECT_STREQ(name, "<Unknown>");
}

TEST(SymbolTables, TheClasses) {
    const struct {
        const char *key, *label, *display;
    } rows[] = {{"##ID", "identifier", "<Identifier>"},
                {"##XMLID", "identifier", "<XmlIdentifier>"},
                {"##SQSTR", "string", "<SingleQuoteString>"},
                {"##DQSTR", "string", "<DoubleQuoteString>"},
                {"##MLSQSTR", "MLstring", "<SingleQuoteString>"},
                {"##MLDQSTR", "MLstring", "<DoubleQuoteString>"},
                {"##WHITESPACE", "Whitespace", "<Whitespace>"},
                {"##EOL", "EndOfLine", "<EndOfLine>"},
                {"##UREAL", "real", "<RealNumber>"},
                {"##UFIXED", "fixed", "<FixedPointNumber>"},
                {"##UINT", "integer", "<Integer>"},
                {"##HEXCONST", "hex", "<Hexadecimal>"}};
    for (const auto& row : rows) {
        SymbolTable table{};
        char name[41];
        std::string small = row.key;
        for (char& c : small) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        EXPECT_TRUE(SymbolAdd(&table, 5, small.c_str(), ""));
        SymbolDisplayName(&table, 5, name, sizeof name);
        EXPECT_STREQ(name, row.display);
        EXPECT_EQ(SymbolClassLabel(row.key), row.label);
        EXPECT_EQ(SymbolClassLabel(small), row.label);
        EXPECT_TRUE(SymbolIsClassName(row.key, false));
        EXPECT_FALSE(SymbolIsClassName(small, false));
        EXPECT_TRUE(SymbolIsClassName(small, true));
    }
    for (const char* const other : {"", "##", "ID", "##I", "##IDX", "##OTHER"}) {
        EXPECT_EQ(SymbolClassLabel(other), "") << other;
        EXPECT_FALSE(SymbolIsClassName(other, true)) << other;
    }
}

TEST(SymbolTables, BehaveAsASortedMapOf255Entries) {
    constexpr unsigned seed = 20261;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::map<std::string, std::int32_t> model;
    SymbolTable table{};
    for (int step = 0; step < 200000; ++step) {
        const std::string key = std::to_string(random() % 400);
        if (random() % 3 == 0) {
            SymbolRemove(&table, key);
            model.erase(key);
        } else {
            const auto id = static_cast<std::int32_t>(random() % 100);
            const bool room = model.size() < 255;
            ASSERT_EQ(SymbolAdd(&table, id, key.c_str(), ""), room);
            if (room) model[key] = id;
        }
        ASSERT_EQ(table.count, static_cast<std::int32_t>(model.size()));
        const std::string looked = std::to_string(random() % 400);
        const auto found = model.find(looked);
        ASSERT_EQ(SymbolLookup(&table, false, looked), found == model.end() ? -1 : found->second);
        if (step % 1000 != 0) continue;
        std::int32_t index = 0;
        for (const auto& [modelKey, id] : model) ASSERT_EQ(SymbolIndex(&table, modelKey, false), ++index);
    }
}

}  // namespace
