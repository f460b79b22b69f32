// SPDX-License-Identifier: Apache-2.0
//
// Delimited text as RFC 4180 has it, with any separator. A cell that begins with a quote runs to the closing
// one, behind which its separator or line ends: any byte may stand in it, and "" stands for one quote. A cell
// whose quotes are not like that is taken as it stands, quotes and all, so that no byte is lost and a stray
// quote does not swallow the rest of a file. A line ends with a line feed, or a carriage return and one.
//
// A separator below 27 may stand at both ends of every line, as a frame; the first header line tells.
//
// Cost: linear in the file; in memory a block of 256 KiB, or the longest row where that is longer.
#pragma once

#include "tarn_data/base/files.h"
#include "tarn_data/sources/cells.h"

#include <string>
#include <vector>

namespace tarn::datatool {

// How a delimited file, or one of lines (no separator), is read.
struct DelimitedForm {
    std::string file;  // that is opened
    std::string name;  // that messages tell
    std::int64_t begin = 0;
    std::int64_t endBytes = 0;     // that are no text, at the end: a mark of it, and what fills the file up
    std::int32_t separator = ',';  // -1: every line is one cell, and quotes are characters
    std::int32_t headerRows = 0, footerRows = 0, maxRows = -1;
};

class DelimitedReader : public CellSource {
public:
    static constexpr std::size_t LongestQuoted = std::size_t{1} << 20, LongestRow = std::size_t{1} << 24;

    explicit DelimitedReader(DelimitedForm form) : form_(std::move(form)) {}
    // Reads the header rows, too.
    Problem open() override;
    bool next(CellRow& row) override;

    // The cells of the header rows, as they stand.
    [[nodiscard]] const std::vector<std::vector<std::string>>& headers() const { return headers_; }
    [[nodiscard]] bool framed() const { return framed_; }
    // Whether the first line ended with a carriage return and a line feed.
    [[nodiscard]] bool crlf() const { return crlf_; }

private:
    struct RawCell {
        std::size_t begin = 0, end = 0;  // of the text in the block, without quotes
        bool quoted = false, doubled = false;
    };
    enum class Parse { Row, More, End };

    bool readRow(CellRow& row);
    Parse parse();
    bool takeQuoted(std::size_t& at, bool& more);
    void takePlain(std::size_t& at);
    bool endOfCell(std::size_t at) const;
    bool fill();
    void give(CellRow& row);
    void dropFrame(CellRow& row) const;
    Problem findFooters();
    bool endAtGap(CellRow& row);

    DelimitedForm form_;
    std::unique_ptr<FileRows> file_;
    std::unique_ptr<Steps> steps_;
    std::string block_;
    std::size_t at_ = 0, have_ = 0;        // what is unread in the block
    std::size_t rowEnd_ = 0;               // behind the line end of the row that was parsed
    std::int64_t offset_ = 0, limit_ = 0;  // in the file: behind the block, and where the rows end
    std::int64_t rows_ = 0;                // that were given
    std::vector<RawCell> cells_;
    std::vector<std::vector<std::string>> headers_;
    bool framed_ = false, crlf_ = false, firstLine_ = true;
};

}  // namespace tarn::datatool
