// SPDX-License-Identifier: Apache-2.0
//
// These functions compute on their arguments alone, can neither fail nor set the error cell, and so have no
// frames.
#include "library/time/timeutil.h"

#include "kernel/text/dates.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarn {
namespace {

// The pieces of a day's text.
struct Piece {
    std::string_view name;
    std::size_t at;
};
constexpr std::array<Piece, 3> pieces = {{{"YYYY", 0}, {"MM", 5}, {"DD", 8}}};
constexpr std::size_t dayLength = 10;
constexpr Fixed secondsPerDay = 24 * 3600 * FixedOne;

std::string_view pieceOf(std::string_view text, const Piece& piece) {
    return text.substr(piece.at, piece.name.size());
}

struct Day {
    std::int32_t year = 0, month = 0, day = 0;
    [[nodiscard]] bool exists() const { return ISDATEVALID(year, month, day); }
};

// By position, whatever stands between and behind the pieces; no day where one of them has other than digits.
Day dayOf(std::string_view text) {
    if (text.size() < dayLength) return {};
    std::array<std::int32_t, pieces.size()> values{};
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        for (const char c : pieceOf(text, pieces[i])) {
            if (!ascii::isDigit(c)) return {};
            values[i] = 10 * values[i] + (c - '0');
        }
    }
    return {values[0], values[1], values[2]};
}

}  // namespace

std::string FORMATTIME(std::string_view text, std::string_view pattern) {
    if (text.size() < dayLength) return {};
    std::string result;
    result.reserve(pattern.size());
    while (!pattern.empty()) {
        const auto* const piece = std::find_if(pieces.begin(), pieces.end(),
                                               [&](const Piece& p) { return pattern.starts_with(p.name); });
        const bool found = piece != pieces.end();
        result += found ? pieceOf(text, *piece) : pattern.substr(0, 1);
        pattern.remove_prefix(found ? piece->name.size() : 1);
    }
    return result;
}

bool ISGREGORIANLEAPYEAR(std::int32_t year) {
    return IsLeapYear(year);
}

bool ISDATEVALID(std::int32_t year, std::int32_t month, std::int32_t day) {
    return DateValid(year, month, day, 0, 0, 0, 0);
}

bool ISDATESTRVALID(std::string_view text) {
    return dayOf(text).exists();
}

std::string TIMEMAKEFULLSTR(std::string_view text) {
    constexpr std::string_view least = "0000-01-01 00:00:00.0000";
    std::string full(text);
    if (text.size() < least.size()) full += least.substr(text.size());
    return full;
}

std::int32_t TIMEGETDAYNUMBER(std::string_view text) {
    const Day day = dayOf(text);
    char midnight[DateSize] = "";
    DateMake(day.year, day.month, day.day, 0, 0, 0, 0, midnight, DateSize);
    Fixed seconds = 0;
    DateToSeconds(midnight, seconds);
    return static_cast<std::int32_t>(seconds / secondsPerDay);
}

std::string TIMEDAYNUMBERTOSTR(std::int32_t n) {
    char text[DateSize] = "";
    DateFromSeconds(n * secondsPerDay, text, DateSize);
    return text;
}

Fixed TIMEDIFFERENCE(std::string_view a, std::string_view b) {
    Fixed secondsA = 0, secondsB = 0;
    DateToSeconds(a, secondsA);
    DateToSeconds(b, secondsB);
    return secondsA - secondsB;
}

}  // namespace tarn
