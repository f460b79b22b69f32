// SPDX-License-Identifier: Apache-2.0
//
// What an index must do wherever it is held, as tables: the turns of its tree, what a search finds, and the order
// of keys. Trees are pictures in letters: "(1 +2 3)" is a node 2 that leans right (- left) between 1 and 3, "."
// is no node, and a node without any is its mark and key alone.
#pragma once

#include "unit/kernel/table_rows.h"

#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

namespace tarn::indexcases {

inline constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double Infinity = std::numeric_limits<double>::infinity();

// Keys in the order in which they are inserted.
struct Insertion {
    std::initializer_list<int> keys;
    const char* form;
};
inline const Insertion insertions[] = {
    {{1}, "1"},
    {{1, 2}, "(. +1 2)"},
    {{2, 1}, "(1 -2 .)"},
    {{3, 2, 1}, "(1 2 3)"},
    {{3, 1, 2}, "(1 2 3)"},
    {{1, 3, 2}, "(1 2 3)"},
    {{1, 2, 3, 4, 5, 6, 7}, "((1 2 3) 4 (5 6 7))"},
    {{7, 6, 5, 4, 3, 2, 1}, "((1 2 3) 4 (5 6 7))"},
    // double turns with a grandchild that leans left, right and not at all
    {{5, 2, 6, 1, 4, 3}, "((1 2 3) 4 (. +5 6))"},
    {{6, 2, 7, 1, 4, 5}, "((1 -2 .) 4 (5 6 7))"},
    {{3, 1, 2}, "(1 2 3)"},
    {{2, 1, 5, 4, 6, 3}, "((1 2 3) 4 (. +5 6))"},
    {{2, 1, 6, 4, 7, 5}, "((1 -2 .) 4 (5 6 7))"},
};

struct Deletion {
    const char* what;
    std::initializer_list<int> keys;
    int gone;
    const char* form;
};
inline const Deletion deletions[] = {
    {"no child", {2, 1, 3}, 1, "(. +2 3)"},
    {"a right child only", {2, 1, 3, 4}, 3, "(1 2 4)"},
    {"a left child only", {3, 2, 4, 1}, 2, "(1 3 4)"},
    {"two children: the left child takes the place", {2, 1, 3}, 2, "(. +1 3)"},
    {"two children: the highest of the left side", {5, 2, 7, 1, 3, 6, 8, 4}, 5, "((1 2 3) 4 (6 7 8))"},
    {"its left child takes the highest one's place", {6, 2, 8, 1, 5, 7, 9, 4}, 6, "((1 2 4) 5 (7 8 9))"},
    {"left shrinks, right level: single, height stays", {2, 1, 4, 3, 5}, 1, "((. +2 3) -4 5)"},
    {"left shrinks, right leans right: single", {2, 1, 3, 4}, 1, "(2 3 4)"},
    {"left shrinks, right leans left: double", {2, 1, 4, 3}, 1, "(2 3 4)"},
    {"right shrinks, left level: single, height stays", {4, 2, 5, 1, 3}, 5, "(1 +2 (3 -4 .))"},
    {"right shrinks, left leans left: single", {3, 2, 4, 1}, 4, "(1 2 3)"},
    {"right shrinks, left leans right: double", {3, 1, 4, 2}, 4, "(1 2 3)"},
    {"double, the grandchild leaning right", {3, 2, 7, 1, 5, 8, 4, 6}, 1, "((2 3 4) 5 (6 7 8))"},
    {"shrinks on both levels",
     {5, 2, 8, 1, 3, 7, 10, 4, 6, 9, 11, 12},
     1,
     "(((2 3 4) 5 (6 -7 .)) 8 (9 +10 (. +11 12)))"},
};

// In an index of the keys 10, 20, 30, 40 and 50 with rows of ten times that; -1: nothing is found.
struct Search {
    const char* op;
    int key, row;
};
inline constexpr Search searches[] = {
    {"EQ", 30, 300},       {"EQ", 31, -1},  {"EQUALS", 10, 100}, {"equals", 11, -1},   {"FIRST", 99, 100},
    {"LAST", -1, 500},     {"GE", 30, 300}, {"GE", 31, 400},     {"GE", 5, 100},       {"GE", 51, -1},
    {"LE", 30, 300},       {"LE", 29, 200}, {"LE", 99, 500},     {"LE", 9, -1},        {"GT", 30, 400},
    {"GT", 9, 100},        {"GT", 50, -1},  {"NEXT", 50, -1},    {"NEXT", 10, 200},    {"nExT", 40, 500},
    {"LT", 30, 200},       {"LT", 10, -1},  {"LT", 99, 500},     {"PREVIOUS", 10, -1}, {"PREVIOUS", 50, 400},
    {"previous", 11, 100},
};

// Keys of one form each, ascending. All have a length, as those of files must.
inline std::vector<std::vector<Cells>> ascendingKeys() {
    return {
        {{flag(false)}, {flag(true)}},
        {{ordinal(0)}, {ordinal(1)}, {ordinal(127)}, {ordinal(128)}, {ordinal(255)}},
        {{integer(INT32_MIN)}, {integer(-1)}, {integer(0)}, {integer(1)}, {integer(INT32_MAX)}},
        {{fixedNumber(INT64_MIN)}, {fixedNumber(-1)}, {fixedNumber(0)}, {fixedNumber(INT64_MAX)}},
        {{real(-Infinity)}, {real(-1.5)}, {real(0)}, {real(5e-324)}, {real(Infinity)}, {real(NaN)}},
        {{text("", 4)},
         {text(std::string(1, '\0'), 4)},
         {text("A", 4)},
         {text("AAAA", 4)},
         {text("AB", 4)},
         {text("a", 4)},
         {text("\x80", 4)},
         {text("\xff", 4)}},
        {{characters("", 3)}, {characters("AB", 3)}, {characters("ABC", 3)}, {characters("\xff", 3)}},
        {{integer(1), integer(9)}, {integer(2), integer(-9)}, {integer(2), integer(0)}},
        {{text("a", 3), flag(true), characters("z", 2), real(1)},
         {text("a", 3), flag(true), characters("z", 2), real(NaN)},
         {text("aa", 3), flag(false), characters("a", 2), real(0)}},
    };
}

}  // namespace tarn::indexcases
