// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/sources/columns.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "os/text/ascii.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/sources/digits.h"
#include "tarn_data/sources/layout.h"

#include <algorithm>
#include <charconv>

namespace tarn::datatool {

namespace {

// ---- one cell ----

bool isShortInteger(std::string_view text) {
    constexpr std::size_t most = 9;
    return !text.empty() && text.size() <= most && (text[0] != '0' || text.size() == 1) &&
           std::all_of(text.begin(), text.end(), ascii::isDigit);
}

// What every fixed number holds; told without the readers of numbers, which take most of the time.
bool isShortDecimal(std::string_view text) {
    constexpr std::size_t most = 15, decimals = 4;
    const std::size_t point = text.find('.');
    if (text.size() > most || point == 0 || text.size() - std::min(point, text.size()) - 1 > decimals)
        return false;
    return point + 1 < text.size() && std::all_of(text.begin(), text.end(), [&](const char& c) {
               return ascii::isDigit(c) || &c == text.data() + point;
           });
}

bool fitsInteger(std::string_view text) {
    std::int32_t number = 0;
    if (text.starts_with('+')) text.remove_prefix(1);
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() && read.ptr == text.data() + text.size();
}

std::size_t decimalsOf(std::string_view text) {
    const std::size_t point = text.find('.');
    return point == std::string_view::npos ? 0 : text.size() - point - 1;
}

CellClass classOfText(std::string_view text) {
    constexpr std::size_t fixedDecimals = 4, longestDate = 24;
    const std::string_view trimmed = withoutBlanks(text);
    if (isNothing(trimmed)) return CellClass::Nothing;
    if (isShortInteger(text)) return CellClass::Integer;
    if (isShortDecimal(text)) return CellClass::Fixed;
    switch (TypeInfoGuessValue(text, {}).kind) {
    case ValueClass::Blank: return CellClass::Nothing;
    case ValueClass::Boolean: return CellClass::Boolean;
    case ValueClass::Integer: return fitsInteger(trimmed) ? CellClass::Integer : CellClass::Real;
    case ValueClass::Fixed: return decimalsOf(trimmed) > fixedDecimals ? CellClass::Real : CellClass::Fixed;
    case ValueClass::Real: return CellClass::Real;
    case ValueClass::Date: return text.size() > longestDate ? CellClass::Text : CellClass::Date;
    case ValueClass::Set: return CellClass::Set;
    case ValueClass::String: break;
    }
    return CellClass::Text;
}

bool isNumber(CellClass c) {
    return c == CellClass::Integer || c == CellClass::Fixed || c == CellClass::Real;
}

// Why no value gives this number's text back; "" for most of them.
std::string_view lossOf(std::string_view number, CellClass c) {
    number = withoutBlanks(number);
    if (number.starts_with('+') && number.find_first_of("eE") == std::string_view::npos)
        return "begins with a plus sign";
    std::string_view digits = number;
    if (digits.starts_with('-')) digits.remove_prefix(1);
    if (digits.size() > 1 && digits[0] == '0' && ascii::isDigit(digits[1])) return "begins with a zero";
    return c != CellClass::Real || numberHolds(KindReal, number) ? "" : "digits";
}

// Digits with a point between them or none, and a sign: what every reader of numbers takes as it stands.
bool isPlainNumber(std::string_view text) {
    if (text.starts_with('-')) text.remove_prefix(1);
    const std::size_t point = std::min(text.find('.'), text.size());
    const std::string_view whole = text.substr(0, point),
                           decimals = text.substr(std::min(point + 1, text.size()));
    const auto digits = [](std::string_view part) {
        return !part.empty() && std::all_of(part.begin(), part.end(), ascii::isDigit);
    };
    return digits(whole) && (point == text.size() || digits(decimals));
}

// ---- columns ----

// Of a column that is text for sure, classes do not matter any more.
bool isSettled(const ColumnFacts& column, std::int64_t rows) {
    constexpr std::int64_t enough = 1000;
    const std::int64_t texts = column.count(CellClass::Text);
    return column.text || (texts > enough && texts > rows / 2);
}

void lookAtNumber(ColumnFacts& column, std::int64_t row, std::string_view text, CellClass c) {
    const std::string_view number = withoutBlanks(text);
    if (column.lossy.row == 0) {
        const std::string_view why = lossOf(number, c);
        if (!why.empty()) {
            column.lossy = {row, std::string(number)};
            column.lossyWhy = why;
        }
    }
    if (!isPlainNumber(number)) {
        column.exponents = true;
        return;
    }
    column.widest = std::max(column.widest, number.size());
    column.decimals = std::max(column.decimals, static_cast<std::int32_t>(decimalsOf(number)));
}

bool isBlankAround(std::string_view text) {
    constexpr char beyondBlanks = ' ';
    return !text.empty() &&
           ((text.front() <= beyondBlanks && text.front() > 0) ||
            (text.back() <= beyondBlanks && text.back() > 0)) &&
           withoutBlanks(text).size() != text.size();
}

void lookAtSet(ColumnFacts& column, std::string_view text) {
    const ValueGuess set = TypeInfoGuessValue(text, {});
    const bool first = column.count(CellClass::Set) == 1;
    column.lower = first ? set.lower : std::min(column.lower, set.lower);
    column.upper = first ? set.upper : std::max(column.upper, set.upper);
}

void countSpecial(ColumnFacts& column, std::int64_t row, const Cell& cell) {
    if (cell.text.ends_with(' ') && column.blankEnds++ == 0) column.blankEnd = {row, std::string(cell.text)};
    const bool null = !cell.quoted && isNullWord(cell.text);
    if (null && column.nullWords++ == 0) column.nullWord = {row, std::string(cell.text)};
}

void lookAtCell(ColumnFacts& column, std::int64_t row, const Cell& cell) {
    column.longest = std::max(column.longest, cell.text.size());
    countSpecial(column, row, cell);
    const CellClass c = isSettled(column, row) ? CellClass::Text : classOf(cell);
    const auto n = static_cast<std::size_t>(c);
    ++column.counts[n];
    if (column.examples[n].row == 0) column.examples[n] = {row, std::string(cell.text)};
    if (c == CellClass::Boolean && column.oddTruth.row == 0 && cell.text != "True" && cell.text != "False")
        column.oddTruth = {row, std::string(cell.text)};
    if (c != CellClass::Text && isBlankAround(cell.text) && column.blanksAround++ == 0)
        column.blankAround = {row, std::string(cell.text)};
    if (isNumber(c)) lookAtNumber(column, row, cell.text, c);
    if (c == CellClass::Set) lookAtSet(column, cell.text);
}

std::int64_t typedCells(const ColumnFacts& column) {
    std::int64_t count = 0;
    for (std::size_t n = 0; n < CellClasses; ++n) count += column.counts[n];
    return count - column.count(CellClass::Nothing) - column.count(CellClass::Text);
}

}  // namespace

CellClass classOf(const Cell& cell) {
    if (cell.quoted) return cell.text.empty() ? CellClass::Nothing : CellClass::Text;
    return classOfText(cell.text);
}

CellClass ColumnFacts::type() const {
    if (text || lossy.row != 0) return CellClass::Text;
    CellClass type = CellClass::Nothing;
    for (const CellClass c : {CellClass::Boolean, CellClass::Integer, CellClass::Fixed, CellClass::Real,
                              CellClass::Date, CellClass::Set, CellClass::Text}) {
        if (count(c) == 0 || type == c) continue;
        if (type == CellClass::Nothing)
            type = c;
        else
            type = isNumber(type) && isNumber(c) ? CellClass::Real : CellClass::Text;
    }
    return type;
}

std::string ColumnFacts::line() const {
    const std::string start = quotedName(name) + " : ";
    switch (type()) {
    case CellClass::Nothing: return start + "Any\n";
    case CellClass::Boolean: return start + "boolean\n";
    case CellClass::Integer: return start + "integer\n";
    case CellClass::Fixed: return start + "fixed\n";
    case CellClass::Real: return start + "real\n";
    case CellClass::Date: return start + "Tdatetime[24]\n";
    case CellClass::Set: return start + "set[" + std::to_string(lower) + ":" + std::to_string(upper) + "]\n";
    case CellClass::Text: break;
    }
    return start + "string[" + std::to_string(std::max<std::size_t>(longest, 1)) + "]\n";
}

std::string whyText(const ColumnFacts& column) {
    if (column.text || column.type() != CellClass::Text) return {};
    const auto place = [](const CellExample& e) { return " (row " + std::to_string(e.row) + ")."; };
    if (column.lossy.row != 0 && column.count(CellClass::Text) == 0) {
        const std::string number = shownCell(column.lossy.text);
        return (column.lossyWhy == "digits" ? "no real holds every digit of " + number
                                            : number + " " + column.lossyWhy) +
               place(column.lossy);
    }
    // Where texts are many, nobody takes the column for one of numbers.
    const std::int64_t texts = column.count(CellClass::Text), typed = typedCells(column);
    if (typed == 0 || (texts > 1 && texts > typed / 4)) return {};
    std::vector<const CellExample*> both;
    for (std::size_t n = CellClasses; n-- > 1;) {
        if (column.counts[n] > 0) both.push_back(&column.examples[n]);
    }
    const CellExample &odd = *both[0], &usual = *both[1];
    const std::string asEmpty =
        texts == 0 ? "" : "--null='" + shownCell(odd.text) + "' takes such cells as empty, ";
    return "row " + std::to_string(odd.row) + " holds '" + shownCell(odd.text) + "', and row " +
           std::to_string(usual.row) + " '" + shownCell(usual.text) + "'. " + asEmpty + "--text='" +
           shown(column.name) + "' leaves this note away.";
}

void countRagged(std::size_t cells, std::int64_t row, RowsFacts& facts) {
    if (facts.usualCells == 0) facts.usualCells = cells;
    if (cells == facts.usualCells || facts.ragged++ != 0) return;
    facts.firstRagged = row;
    facts.raggedCells = cells;
}

Problem lookAtRows(CellSource& cells, const std::vector<std::string>& named, RowsFacts& facts) {
    Problem problem = cells.open();
    CellRow row;
    facts.usualCells = named.size();
    for (std::size_t n = facts.columns.size(); n < named.size(); ++n)
        facts.columns.emplace_back().name = named[n];
    while (!problem.any() && cells.next(row)) {
        ++facts.rows;
        countRagged(row.size(), facts.rows, facts);
        while (facts.columns.size() < row.size()) {
            const std::string number = std::to_string(facts.columns.size() + 1);
            facts.columns.emplace_back().name = "FIELD" + number;
        }
        for (std::size_t n = 0; n < row.size(); ++n) lookAtCell(facts.columns[n], facts.rows, row[n]);
    }
    facts.gap = cells.gap();
    facts.strayQuote = cells.strayQuote();
    facts.blankLines = cells.blankLines();
    return problem.any() ? problem : cells.problem();
}

}  // namespace tarn::datatool
