// SPDX-License-Identifier: Apache-2.0
//
// Numbers whose digits a value does not hold: a real has 15 to 17 of them, and numbers of accounts and of
// machines have more. The cells are read once more as text, and compared with the texts of the values that
// they would become. Sources of values, and those that are text, have no such cells.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/run/runtime.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "os/text/ascii.h"
#include "tarn_data/base/files.h"
#include "tarn_data/commands/commands.h"
#include "tarn_data/sources/load.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <utility>

namespace tarn::datatool {

namespace {

// ---- one number ----

std::string_view takeDigits(std::string_view& rest) {
    const std::string_view digits = rest.substr(0, rest.find_first_not_of("0123456789"));
    rest.remove_prefix(digits.size());
    return digits;
}

bool takeSign(std::string_view& rest) {
    const bool negative = rest.starts_with('-');
    if (negative || rest.starts_with('+')) rest.remove_prefix(1);
    return negative;
}

std::string_view withoutBlanks(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

// What two texts of the same number have in common: sign, digits without the zeros around them, and where the
// point stands. No digits: zero, or no number.
struct Digits {
    bool negative = false;
    std::string digits;
    std::int64_t point = 0;
    bool operator==(const Digits&) const = default;
};

// False for what is no number.
bool readDigits(std::string_view text, Digits& number) {
    constexpr std::int64_t beyond = 1'000'000;
    number = {};
    const bool negative = takeSign(text);
    const std::string_view whole = takeDigits(text);
    std::string_view fraction;
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        fraction = takeDigits(text);
    }
    if (whole.empty() && fraction.empty()) return false;
    std::int64_t exponent = 0;
    if (text.starts_with('e') || text.starts_with('E')) {
        text.remove_prefix(1);
        const bool down = takeSign(text);
        const std::string_view digits = takeDigits(text);
        if (digits.empty()) return false;
        for (const char c : digits) exponent = std::min(exponent * 10 + (c - '0'), beyond);
        if (down) exponent = -exponent;
    }
    std::string digits = std::string(whole).append(fraction);
    digits.resize(digits.find_last_not_of('0') + 1);
    const std::size_t zeros = std::min(digits.find_first_not_of('0'), digits.size());
    digits.erase(0, zeros);
    if (!digits.empty())
        number = {negative, std::move(digits),
                  static_cast<std::int64_t>(whole.size()) - static_cast<std::int64_t>(zeros) + exponent};
    return text.empty();
}

bool isNumber(std::string_view text, const Digits& number) {
    Digits other;
    return readDigits(text, other) && other == number;
}

// The shortest text that is read as the same real, or the one with all digits that a real may need.
bool realHolds(std::string_view cell, const Digits& number) {
    constexpr std::size_t anyDigits = 15;  // that many are held, whatever they are
    constexpr std::int64_t anyPoint = 300;
    if (number.digits.size() <= anyDigits && std::abs(number.point) <= anyPoint) return true;
    double value = 0;
    bool ok = false;
    RealFromText(cell, value, ok);
    if (!ok) return true;
    char shortest[40];
    const auto end =
        std::to_chars(shortest, shortest + sizeof shortest, value, std::chars_format::scientific);
    const auto size = static_cast<std::size_t>(end.ptr - shortest);
    return isNumber({shortest, size}, number) || isNumber(RealToText(value, RealTextDecimals), number);
}

bool fixedHolds(std::string_view cell, const Digits& number) {
    Fixed value = 0;
    bool ok = false;
    FixedFromText(cell, value, ok);
    return !ok || isNumber(FixedToText(value), number);
}

bool integerHolds(std::string_view cell, const Digits& number, std::int32_t least, std::int32_t most) {
    std::int32_t value = 0;
    std::size_t end = 0;
    IntegerFromText(cell, value, end);
    return end > 0 && value >= least && value <= most && isNumber(std::to_string(value), number);
}

// What is no number in a column of reals or fixed ones is told when it is read. Empty cells and NULL are
// zeros.
bool holds(Kind kind, std::string_view cell) {
    cell = withoutBlanks(cell);
    Digits number;
    if (cell.empty() || ascii::equal(cell, "NULL")) return true;
    const bool is = readDigits(cell, number);
    switch (kind) {
    case KindReal: return !is || realHolds(cell, number);
    case KindFixed: return !is || fixedHolds(cell, number);
    case KindInteger: return is && integerHolds(cell, number, INT32_MIN, INT32_MAX);
    case KindEnum: return is && integerHolds(cell, number, 0, UINT8_MAX);
    default: return true;
    }
}

// ---- the columns ----

struct Lost {
    std::int32_t row = 0;      // the first one; 0: none
    std::int32_t longest = 1;  // characters of a cell of the column
    std::string cell;
};

bool isOfTexts(const Source& source) {
    return !source.text && (IsDelimited(source.format) || FactsOf(source.format).rows == RowForm::Marked);
}

// For each column, read as `kinds`: KindNone where every text does.
class LostDigits {
public:
    explicit LostDigits(std::vector<Kind> kinds) : kinds_(std::move(kinds)), lost_(kinds_.size()) {}

    Problem find(const Source& source) {
        const auto all = [](Kind kind) { return kind == KindNone; };
        if (std::all_of(kinds_.begin(), kinds_.end(), all)) return {};
        return IsDelimited(source.format) ? findInCells(source) : findInRows(source);
    }
    [[nodiscard]] const Lost& operator[](std::size_t column) const { return lost_[column]; }

private:
    void look(std::int32_t row, std::size_t column, std::string_view cell) {
        if (column >= kinds_.size() || kinds_[column] == KindNone) return;
        Lost& lost = lost_[column];
        lost.longest = std::max(lost.longest, static_cast<std::int32_t>(cell.size()));
        if (lost.row != 0 || holds(kinds_[column], cell)) return;
        lost.row = row;
        lost.cell = withoutBlanks(cell);
    }
    Problem findInCells(const Source& source) {
        const Work work("reading " + source.file);
        DataOptions options = source.options;
        if (source.rowsSeen >= 0) options.maxdatarows = source.rowsSeen;
        const DataResult result = TabVisitCells(
            source.file, options, [&](std::int32_t row, std::int32_t column, std::string_view cell) {
                look(row, static_cast<std::size_t>(column - 1), cell);
            });
        if (result.stopped || stopSignal() != 0) return stoppedProblem();
        return result.code == 0 ? Problem() : loadProblem(source, result, {});
    }
    Problem findInRows(const Source& source) {
        Rows rows;
        Problem problem = loadRows(source, repairedNames(textColumns(source.columns)), false, rows);
        if (problem.any()) return problem;
        rows.beginBatch();
        for (std::int32_t i = 1; i <= rows.count() && ErrorCell() == 0; ++i) {
            const RecordDescriptor* const row = rows.at(i);
            for (std::size_t n = 0; row != nullptr && n < kinds_.size(); ++n) {
                const void* const field = RecordFieldAddress(row, static_cast<std::int32_t>(n + 1));
                look(i, n, StringView(static_cast<const StringDescriptor*>(field)));
            }
        }
        if (ErrorCell() != 0) problem = {ErrorMessage(ErrorCell()) + ".", ""};
        ClearError();
        return problem;
    }

    std::vector<Kind> kinds_;
    std::vector<Lost> lost_;
};

}  // namespace

Problem keepDigits(Source& source) {
    if (!isOfTexts(source)) return {};
    const std::vector<std::string> names = columnNames(source.columns);
    std::vector<Kind> kinds;
    for (std::size_t n = 1; n <= names.size(); ++n) {
        const std::string type = TypeInfoParseLine(source.columns, static_cast<std::int32_t>(n)).typeName;
        kinds.push_back(TypeInfoKind(type) == KindReal ? KindReal : KindNone);
    }
    LostDigits lost(std::move(kinds));
    const Problem problem = lost.find(source);
    if (problem.any()) return problem;
    std::string columns;
    for (std::size_t n = 0; n < names.size(); ++n) {
        if (lost[n].row == 0) {
            columns += TypeInfoLine(source.columns, static_cast<std::int32_t>(n + 1));
            continue;
        }
        columns += names[n] + " : string[" + std::to_string(lost[n].longest) + "]\n";
        note("Column '" + names[n] + "' of '" + source.file +
             "' is taken as text: no real holds every digit of " + lost[n].cell + " (row " +
             std::to_string(lost[n].row) + ").");
    }
    source.columns = columns;
    return {};
}

Problem checkDigits(const Source& source, const RowType& type) {
    if (!isOfTexts(source)) return {};
    const std::vector<std::string> names = columnNames(source.columns);
    std::vector<Kind> kinds;
    for (std::size_t n = 1; n <= names.size(); ++n) {
        const Kind kind = RecordFieldKind(type.row.get(), static_cast<std::int32_t>(n));
        // Of delimited text the readers themselves refuse what is no integer.
        const bool whole = kind == KindInteger || kind == KindEnum;
        const bool loses = kind == KindReal || kind == KindFixed || (whole && !IsDelimited(source.format));
        kinds.push_back(loses ? kind : KindNone);
    }
    LostDigits lost(std::move(kinds));
    const Problem problem = lost.find(source);
    for (std::size_t n = 0; n < names.size() && !problem.any(); ++n) {
        if (lost[n].row != 0)
            return {"Row " + std::to_string(lost[n].row) + ", column '" + names[n] + "' holds " +
                        lost[n].cell + ", which its field in the declaration cannot hold.",
                    "Declare the field as string, or as a kind that holds every digit."};
    }
    return problem;
}

}  // namespace tarn::datatool
