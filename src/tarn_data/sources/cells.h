// SPDX-License-Identifier: Apache-2.0
//
// Rows of cells: what every form of file is made of on its way into another. A cell is a text, byte for byte
// as the file holds it, so that nothing is changed because a number could be read out of it. Values become
// texts that are read back equal: True and False, numbers in their shortest form, what is not there as "".
//
// Cost: linear in the file. A source holds a block of it and the row that was given last.
#pragma once

#include "tarn_data/commands/commands.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::datatool {

struct Cell {
    std::string_view text;
    bool quoted = false;  // in delimited text: so that it is a text, whatever it looks like
};
using CellRow = std::vector<Cell>;

class CellSource {
public:
    CellSource() = default;
    virtual ~CellSource() = default;
    CellSource(const CellSource&) = delete;
    CellSource& operator=(const CellSource&) = delete;

    // Goes ahead of the first row; again, too.
    virtual Problem open() = 0;
    // A row, which is valid until the next one is asked for. False behind the last one, and when `problem`
    // tells why.
    virtual bool next(CellRow& row) = 0;
    [[nodiscard]] const Problem& problem() const { return problem_; }
    // Of delimited text: an empty line with rows behind it, where `next` ended.
    [[nodiscard]] const Problem& gap() const { return gap_; }
    // The first row with a cell that begins with a quote and is none with quotes; 0: none.
    [[nodiscard]] std::int64_t strayQuote() const { return strayQuote_; }
    // Of delimited text: lines of separators and blanks alone that stand behind the rows and an empty line.
    [[nodiscard]] std::int64_t blankLines() const { return blankLines_; }

protected:
    bool fail(Problem problem) {
        problem_ = std::move(problem);
        return false;
    }
    Problem problem_, gap_;
    std::int64_t strayQuote_ = 0, blankLines_ = 0;
};

// The rows of a source that was identified, with the cells that --null names empty.
std::unique_ptr<CellSource> cellsOf(const Source& source);

// Empty, blanks, or NULL in any case: what a number or a truth value that is not there stands as.
bool isNothing(std::string_view cell);
bool isNullWord(std::string_view cell);
std::string_view withoutBlanks(std::string_view text);
// "Row 5, column 'price' ".
std::string cellPlace(std::int64_t row, const std::string& column);

}  // namespace tarn::datatool
