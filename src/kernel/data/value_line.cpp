// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/value_line.h"

#include "kernel/data/typeinfo/typeinfo.h"

#include <algorithm>

namespace tarn {

namespace {

bool hasManyDecimals(std::string_view value) {
    constexpr std::size_t ownDecimals = 4;
    const std::size_t point = value.find('.');
    if (point == std::string_view::npos) return false;
    const std::string_view decimals = value.substr(point + 1);
    return std::min(decimals.find_first_not_of("0123456789"), decimals.size()) > ownDecimals;
}

}  // namespace

std::string DataValueLine(std::string_view value, std::string_view name, std::string_view nullWord,
                          std::string_view defaultLine) {
    if (hasManyDecimals(value) && TypeInfoGuessValue(value, nullWord).kind == ValueClass::Fixed)
        return std::string(name).append(" : real\n");
    return TypeInfoValueLine(value, name, nullWord, defaultLine);
}

}  // namespace tarn
