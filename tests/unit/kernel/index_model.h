// SPDX-License-Identifier: Apache-2.0
//
// What an index must do, written down once more with an ordered map, and random keys of every kind for it.
#pragma once

#include "kernel/index/indexes.h"
#include "unit/kernel/table_rows.h"

#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace tarn {

using IndexModelMap = std::map<Cells, std::int32_t, CellsOrder>;

// One of `spread` values of a kind.
inline Cell randomCell(Kind kind, std::mt19937& random, int spread) {
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const int n = static_cast<int>(random() % static_cast<unsigned>(spread)) - spread / 2;
    switch (kind) {
    case KindBoolean: return flag(random() % 2 != 0);
    case KindEnum: return ordinal(n & 255);
    case KindInteger: return integer(n * 1000003LL % INT32_MAX);
    case KindFixed: return fixedNumber(n * 123456789012LL);
    case KindReal: return real(n == 0 ? notANumber : n == 1 ? infinite : n * 0.37);
    case KindString: return text(std::string(random() % 3, '\xfe') + std::to_string(n), 12);
    default: return characters(std::to_string(n), 6);
    }
}

inline IndexHit expectedHit(const IndexModelMap& model, const std::string& op, const Cells& key) {
    auto at = model.end();
    if (op == "EQ") at = model.find(key);
    if (op == "FIRST") at = model.begin();
    if (op == "LAST" && !model.empty()) at = std::prev(model.end());
    if (op == "GE") at = model.lower_bound(key);
    if (op == "GT") at = model.upper_bound(key);
    if (op == "LE" || op == "LT") {
        at = op == "LE" ? model.upper_bound(key) : model.lower_bound(key);
        at = at == model.begin() ? model.end() : std::prev(at);
    }
    return at == model.end() ? IndexHit{} : IndexHit{at->second, true};
}

struct KeyShape {
    const char* name;
    std::vector<Kind> kinds;
};
inline const KeyShape keyShapes[] = {
    {"boolean and enum", {KindBoolean, KindEnum}},
    {"integer", {KindInteger}},
    {"fixed", {KindFixed}},
    {"real", {KindReal}},
    {"string", {KindString}},
    {"characters", {KindArray}},
    {"three fields", {KindInteger, KindString, KindFixed}},
    {"four fields", {KindBoolean, KindReal, KindArray, KindString}},
};

inline Cells randomKey(const KeyShape& shape, std::mt19937& random) {
    const int spread = shape.kinds.size() == 1 ? 600 : 20;
    Cells key;
    for (const Kind kind : shape.kinds) key.push_back(randomCell(kind, random, spread));
    return key;
}

}  // namespace tarn
