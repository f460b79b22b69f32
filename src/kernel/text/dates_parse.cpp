// SPDX-License-Identifier: Apache-2.0
//
// The reader of loose dates: words between separators, then perhaps a time. What it accepts is said at
// DateParse.
#include "kernel/text/dates.h"

#include "os/text/ascii.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tarn {

namespace {

using ascii::equal, ascii::isBlank, ascii::isDigit, ascii::isLetter;

constexpr bool belongsToGap(char c) {
    return isBlank(c) || c == '-' || c == ',';
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
        bool any = false, blank = false, dash = false;
    };

    template <class Class>
    std::string_view take(Class belongs) {
        const auto end = std::find_if_not(rest_.begin(), rest_.end(), belongs);
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
    const std::string_view run = take(belongsToGap);
    return {!run.empty(), std::any_of(run.begin(), run.end(), isBlank), run.find('-') != run.npos};
}

bool Reader::atTime() const {
    const auto colon = std::find_if_not(rest_.begin(), rest_.end(), isDigit);
    return colon != rest_.begin() && colon != rest_.end() && *colon == ':';
}

bool Reader::scan() {
    if (gap().dash) return false;
    for (;;) {
        if (!word()) return false;
        const Gap between = gap();
        if (rest_.empty()) return true;
        if (atTime()) return between.blank && !between.dash && time();
        if (!between.any) return false;
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
    return half() && !gap().dash && rest_.empty();
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
    if (!equal(word, "AM")) return false;
    if (date_.hour == noon) date_.hour = 0;
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
