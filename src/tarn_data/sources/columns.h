// SPDX-License-Identifier: Apache-2.0
//
// What the cells of each column are, so that a column gets the one type that loses nothing of any of them:
// the type of its cells where all are of one, text where they are not, and also where a value would not give
// the text back (01234, more digits than a real holds).
//
// Cost: one pass over the rows; for each column a few texts.
#pragma once

#include "tarn_data/sources/cells.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn::datatool {

// What one cell can be read as.
enum class CellClass { Nothing, Boolean, Integer, Fixed, Real, Date, Set, Text };
inline constexpr std::size_t CellClasses = 8;

struct CellExample {
    std::int64_t row = 0;  // 0: none
    std::string text;
};

struct ColumnFacts {
    std::string name;
    bool text = false;  // it is text, whatever its cells look like
    std::array<std::int64_t, CellClasses> counts{};
    std::array<CellExample, CellClasses> examples;  // the first cell of each class
    CellExample lossy;                              // the first number that a value would change
    std::string lossyWhy;                           // "it begins with a zero"
    CellExample nullWord;                           // the first NULL
    std::int64_t nullWords = 0;
    CellExample blankEnd;  // the first text with blanks at its end
    std::int64_t blankEnds = 0;
    CellExample oddTruth;  // the first truth value that is written neither True nor False
    CellExample
        blankAround;  // the first cell, of a number or a truth value or of blanks alone, that has blanks around it
    std::int64_t blanksAround = 0;
    std::size_t longest = 0;            // bytes of a cell
    std::int32_t decimals = 0;          // of numbers, at most
    std::size_t widest = 0;             // characters of a number without exponent
    bool exponents = false;             // or a plus sign, or a point without a digit on each side
    std::int32_t lower = 0, upper = 0;  // of sets

    [[nodiscard]] std::int64_t count(CellClass c) const { return counts[static_cast<std::size_t>(c)]; }
    [[nodiscard]] const CellExample& example(CellClass c) const {
        return examples[static_cast<std::size_t>(c)];
    }
    // The class of the whole column. Nothing: no cell holds anything.
    [[nodiscard]] CellClass type() const;
    // Its line of type information text.
    [[nodiscard]] std::string line() const;
};

struct RowsFacts {
    std::vector<ColumnFacts> columns;
    std::int64_t rows = 0;
    // Rows that have not as many cells as there are columns in the first line.
    std::int64_t ragged = 0, firstRagged = 0;
    std::size_t raggedCells = 0, usualCells = 0;
    Problem gap;  // an empty line that ended the rows
    std::int64_t strayQuote = 0, blankLines = 0;
};

// Reads all rows. `named` are the names of the columns as they stand in the file; those beyond are FIELDn.
Problem lookAtRows(CellSource& cells, const std::vector<std::string>& named, RowsFacts& facts);
// Rows that have not as many cells as `facts.usualCells`, or as the first row when that is 0.
void countRagged(std::size_t cells, std::int64_t row, RowsFacts& facts);
// Why a column is text whose cells are not: "" where nobody would expect anything else.
std::string whyText(const ColumnFacts& column);

CellClass classOf(const Cell& cell);

}  // namespace tarn::datatool
