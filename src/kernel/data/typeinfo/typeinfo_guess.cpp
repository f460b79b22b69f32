// SPDX-License-Identifier: Apache-2.0
//
// What type a text value looks like. The readers of numbers, booleans and dates decide; a reader that
// complains about a number that is too large only says that the value is none of its kind, so the error cell
// is left as it was.
#include "kernel/data/typeinfo/typeinfo_text_internal.h"

#include "kernel/run/errorcell.h"
#include "kernel/run/runtime.h"
#include "kernel/text/dates.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "kernel/text/padding.h"

#include <limits>

namespace tarn {

using namespace typeinfo;

namespace {

std::string_view withoutSpaceBefore(std::string_view value) {
    const std::size_t start = value.find_first_not_of("\t\n\r ");
    return start == std::string_view::npos ? std::string_view() : value.substr(start);
}

bool readsAsBoolean(std::string_view value) {
    bool result = false, ok = false;
    BooleanFromText(value, result, ok);
    return ok;
}

// A sign, digits and blanks behind, whatever the size of the number: "integer" by its form. As with the other
// numbers, a tab or a line end behind makes it a text.
bool readsAsInteger(std::string_view value) {
    value = Unpadded(value);
    if (!value.empty() && (value.front() == '+' || value.front() == '-')) value.remove_prefix(1);
    return !value.empty() && std::all_of(value.begin(), value.end(), ascii::isDigit);
}
bool fitsInteger(std::string_view value) {
    value = Unpadded(value);
    std::int32_t number = 0;
    std::size_t end = 0;
    IntegerFromText(value, number, end);
    return end == value.size();
}

bool readsAsFixed(std::string_view value) {
    Fixed number = 0;
    bool ok = false;
    FixedFromText(value, number, ok);
    return ok;
}

bool readsAsReal(std::string_view value) {
    double number = 0;
    bool ok = false;
    RealFromText(value, number, ok);
    return ok;
}

bool readsAsDate(std::string_view value) {
    std::string date;
    bool ok = false;
    DateParse(value, date, ok);
    return ok;
}

// Numbers and ranges between brackets, in the form that sets are read in. Members that no set can hold, and
// no members at all, make it a text like any other.
class MembersReader {
public:
    explicit MembersReader(std::string_view value) : rest_(value) {}
    bool read(std::int32_t& lower, std::int32_t& upper) {
        std::int32_t least = HighestBound, most = LowestBound;
        if (!accept("[")) return false;
        do {
            std::int32_t first = 0;
            if (!member(first)) return false;
            std::int32_t last = first;
            if ((accept("..") || accept(":")) && (!member(last) || last < first)) return false;
            least = std::min(least, first);
            most = std::max(most, last);
        } while (accept(","));
        if (rest_ != "]") return false;
        lower = least;
        upper = most;
        return true;
    }

private:
    void skipBlanks() {
        while (!rest_.empty() && rest_.front() == ' ') rest_.remove_prefix(1);
    }
    bool accept(std::string_view mark) {
        if (rest_.substr(0, mark.size()) != mark) return false;
        rest_.remove_prefix(mark.size());
        return true;
    }
    bool member(std::int32_t& value) {
        skipBlanks();
        std::size_t end = 0;
        IntegerFromText(rest_, value, end);
        rest_.remove_prefix(end);
        skipBlanks();
        return end > 0 && value >= LowestBound && value <= HighestBound;
    }

    std::string_view rest_;
};

std::int32_t lengthOf(std::string_view value) {
    return static_cast<std::int32_t>(std::min<std::size_t>(value.size(), INT32_MAX));
}

}  // namespace

ValueGuess TypeInfoGuessValue(std::string_view value, std::string_view nullWord) {
    const ErrorCellAside aside;
    const std::string_view shown = withoutSpaceBefore(value);
    if (shown.empty()) return {};
    if (!nullWord.empty() && ascii::equal(shown.substr(0, nullWord.size()), nullWord)) return {};
    if (readsAsBoolean(shown)) return {ValueClass::Boolean};
    if (readsAsInteger(shown)) return {ValueClass::Integer};
    if (readsAsFixed(shown)) return {ValueClass::Fixed};
    if (readsAsReal(shown)) return {ValueClass::Real};
    if (readsAsDate(shown)) return {ValueClass::Date, DateLength};
    ValueGuess set{ValueClass::Set};
    if (MembersReader(shown).read(set.lower, set.upper)) return set;
    return {ValueClass::String, lengthOf(value)};
}

std::string TypeInfoValueLine(std::string_view value, std::string_view name, std::string_view nullWord,
                              std::string_view defaultLine) {
    const ValueGuess guess = TypeInfoGuessValue(value, nullWord);
    std::string line(name);
    switch (guess.kind) {
    case ValueClass::Blank: line = defaultLine; break;
    case ValueClass::Boolean: line += " : boolean"; break;
    case ValueClass::Integer:
        line += fitsInteger(withoutSpaceBefore(value)) ? " : integer" : " : real";
        break;
    case ValueClass::Fixed: line += " : fixed"; break;
    case ValueClass::Real: line += " : real"; break;
    case ValueClass::Date: line += " : Tdatetime"; break;
    case ValueClass::Set: line += " : set"; break;
    case ValueClass::String: line += " : string"; break;
    }
    TypeBounds bounds;
    bounds.lb1 = guess.lower;
    bounds.ub1 = guess.upper;
    line += boundsText(bounds);
    if (!line.empty() && line.back() != '\n') line += '\n';
    return line;
}

}  // namespace tarn
