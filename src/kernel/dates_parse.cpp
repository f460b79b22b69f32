// SPDX-License-Identifier: Apache-2.0
//
// The reader of loose dates. It accepts the forms below in any order of words that leaves one meaning, and
// refuses everything else, because a wrong date is worse than none.
//
//   date       words with a gap between each two; blanks (and tabs) around the whole do not matter
//   gap        blanks with at most one "-" or "," among them, but not nothing: a second mark may be a sign
//   year       four digits, once
//   month      the name of a month or its first three letters, in any case, once; or a number
//   day        a number of one or two digits, once. Without a month's name two numbers are needed, month
//              and day, and the year must stand before both: "1-2-2000" has two meanings
//   day name   or its first three letters, in any case, once, anywhere; what day it says does not matter
//   time       last, once or not at all, behind a gap that has a blank and no "-" (which may be the sign of
//              a zone): the hour of one or two digits, ":", minutes of two; ":", seconds of two; ".",
//              decimals of which those behind the fourth are dropped
//   AM, PM     at the end of a time, in any case, blanks before it or not. PM adds 12 to hours below 12, AM
//              makes 12 into 0; a later hour than 12 is refused with AM, and stays as it is with PM
//
// Numbers of three or of more than four digits, words that are no names, other characters, and a mark at the
// end or the beginning make it no date, and so do a year, month, day, hour, minute or second that does not
// exist.
#include "kernel/dates.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tarn {

namespace {

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr bool isLetter(char c) {
    return lower(c) >= 'a' && lower(c) <= 'z';
}
constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t';
}
constexpr bool belongsToGap(char c) {
    return isBlank(c) || c == '-' || c == ',';
}

bool equal(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

// The number, from 1, that `names` gives to a word; 0 for none.
std::int32_t numberOf(std::string_view word, std::string_view (*names)(std::int32_t)) {
    constexpr std::size_t shortName = 3;
    for (std::int32_t i = 1;; ++i) {
        const std::string_view name = names(i);
        if (name.empty()) return 0;
        if (equal(word, word.size() == shortName ? name.substr(0, shortName) : name)) return i;
    }
}

class Reader {
public:
    explicit Reader(std::string_view text) : rest_(text) {}
    // The date that the text says, valid or not; false when it says none.
    bool read(DateParts& date) {
        if (!scan() || !assign()) return false;
        date = date_;
        return true;
    }

private:
    struct Gap {
        bool blank = false;
        int marks = 0;
        char mark = 0;
    };

    template <class Class>
    std::string_view take(Class belongs) {
        const auto* const end = std::find_if_not(rest_.begin(), rest_.end(), belongs);
        const std::string_view run = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
        rest_.remove_prefix(run.size());
        return run;
    }
    bool take(char c) {
        if (rest_.empty() || rest_.front() != c) return false;
        rest_.remove_prefix(1);
        return true;
    }
    Gap gap();
    [[nodiscard]] bool atTime() const;
    bool scan();
    bool word();
    bool number(std::string_view digits);
    bool name(std::string_view word);
    bool time();
    bool twoDigits(std::int32_t& value);
    bool decimals();
    bool half();
    bool assign();

    static std::int32_t valueOf(std::string_view digits) {
        std::int32_t value = 0;
        for (const char c : digits) value = 10 * value + (c - '0');
        return value;
    }
    static bool once(bool& seen) { return !std::exchange(seen, true); }

    std::string_view rest_;
    DateParts date_;
    bool hasYear_ = false, hasMonthName_ = false, hasDayName_ = false;
    bool yearLeads_ = false;                 // it stands before all numbers
    std::array<std::int32_t, 2> numbers_{};  // of the month and the day, or of the day alone
    std::size_t count_ = 0;
};

Reader::Gap Reader::gap() {
    Gap gap;
    for (const char c : take(belongsToGap)) {
        if (isBlank(c)) {
            gap.blank = true;
        } else {
            gap.mark = c;
            ++gap.marks;
        }
    }
    return gap;
}

bool Reader::atTime() const {
    const auto* const colon = std::find_if_not(rest_.begin(), rest_.end(), isDigit);
    return colon != rest_.begin() && colon != rest_.end() && *colon == ':';
}

bool Reader::scan() {
    take(isBlank);
    for (;;) {
        if (!word()) return false;
        const Gap between = gap();
        if (rest_.empty()) return between.marks == 0;
        if (between.marks > 1) return false;
        if (atTime()) return between.blank && between.mark != '-' && time();
        if (!between.blank && between.marks == 0) return false;
    }
}

bool Reader::word() {
    const std::string_view digits = take(isDigit);
    return digits.empty() ? name(take(isLetter)) : number(digits);
}

bool Reader::number(std::string_view digits) {
    constexpr std::size_t yearDigits = 4, mostDigits = 2;
    if (digits.size() == yearDigits) {
        date_.year = valueOf(digits);
        yearLeads_ = count_ == 0;
        return once(hasYear_);
    }
    if (digits.size() > mostDigits || count_ == numbers_.size()) return false;
    numbers_[count_++] = valueOf(digits);
    return true;
}

bool Reader::name(std::string_view word) {
    if (const std::int32_t month = numberOf(word, MonthName); month != 0) {
        date_.month = month;
        return once(hasMonthName_);
    }
    return numberOf(word, DayName) != 0 && once(hasDayName_);
}

bool Reader::time() {
    const std::string_view hour = take(isDigit);
    if (hour.size() > 2) return false;
    date_.hour = valueOf(hour);
    if (!take(':') || !twoDigits(date_.minute)) return false;
    if (take(':')) {
        if (!twoDigits(date_.second)) return false;
        if (take('.') && !decimals()) return false;
    }
    take(isBlank);
    if (!half()) return false;
    take(isBlank);
    return rest_.empty();
}

bool Reader::twoDigits(std::int32_t& value) {
    const std::string_view digits = take(isDigit);
    value = digits.size() == 2 ? valueOf(digits) : 0;
    return digits.size() == 2;
}

bool Reader::decimals() {
    constexpr std::size_t kept = 4;
    const std::string_view digits = take(isDigit);
    for (std::size_t i = 0; i < kept; ++i)
        date_.fraction = 10 * date_.fraction + (i < digits.size() ? digits[i] - '0' : 0);
    return !digits.empty();
}

bool Reader::half() {
    constexpr std::int32_t noon = 12;
    const std::string_view word = take(isLetter);
    if (word.empty()) return true;
    if (equal(word, "PM")) {
        if (date_.hour < noon) date_.hour += noon;
        return true;
    }
    if (!equal(word, "AM") || date_.hour > noon) return false;
    date_.hour %= noon;
    return true;
}

// Tells month and day apart.
bool Reader::assign() {
    if (!hasYear_ || count_ != (hasMonthName_ ? 1 : 2)) return false;
    if (!hasMonthName_) {
        if (!yearLeads_) return false;
        date_.month = numbers_[0];
    }
    date_.day = numbers_[count_ - 1];
    return true;
}

}  // namespace

void DateParse(std::string_view text, std::string& result, bool& ok) {
    DateParts d;
    char date[DateSize] = "";
    if (Reader(text).read(d))
        DateMake(d.year, d.month, d.day, d.hour, d.minute, d.second, d.fraction, date, DateSize);
    result = date;
    ok = !result.empty();
}

}  // namespace tarn
