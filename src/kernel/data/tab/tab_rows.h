// SPDX-License-Identifier: Apache-2.0
//
// Rows of delimited text files, and the cells of a row. A file is read in blocks; a row is a view into the
// block and lasts until the next one is asked for.
//
// A row ends at a line feed (carriage returns ahead of it belong to the line end) that does not stand inside
// a quoted cell. A cell is quoted when its first byte is '"' and a closing quote follows in the same row,
// within the longest line; otherwise its quote is a character like any other, so that one stray quote cannot
// swallow the rest of a file.
//
// Only the modules of delimited text include this.
#pragma once

#include "kernel/data/tab/tabular.h"
#include "os/files.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// True for a separator that cells can stand between: any byte but NUL, the line feed and the quote.
constexpr bool IsTabSeparator(std::int32_t code) {
    return code >= 1 && code <= 255 && code != '\n' && code != '"';
}
inline constexpr std::int32_t NoTabSeparator = -1;  // every line is one cell, and quotes are characters

// A file that is open for reading.
class TabFile {
public:
    TabFile() = default;
    ~TabFile();
    TabFile(const TabFile&) = delete;
    TabFile& operator=(const TabFile&) = delete;

    // 0 or what is wrong; 651 for a device or a pipe. Only once.
    std::int32_t open(const std::string& filename);
    [[nodiscard]] std::int64_t size() const { return size_; }
    // Reads exactly these bytes: 0 or what is wrong (651 when the file has become shorter).
    std::int32_t read(std::int64_t offset, char* into, std::size_t count);

private:
    std::int32_t hold();

    os::Handle handle_ = -1;
    std::int64_t size_ = 0;
    std::string held_;  // the whole of a file that tells no size
};

class TabReader {
public:
    // Opens the file, skips the header rows and finds where the footer rows begin. A separator that is none
    // makes every line one cell. 0 or what is wrong; 802 when there is no memory for the block.
    std::int32_t open(const std::string& filename, const DataOptions& options);
    // The next row without its line end. False behind the last one, and when `code` or `stopped` tells why.
    bool next(std::string_view& row);

    [[nodiscard]] std::int32_t code() const { return code_; }
    [[nodiscard]] bool stopped() const { return stopped_; }
    [[nodiscard]] bool cut() const { return cut_; }  // the row was longer than a line may be
    [[nodiscard]] std::int32_t separator() const { return separator_; }
    [[nodiscard]] std::string_view header(std::size_t n) const {  // from 0; empty for one that is not there
        return n < headers_.size() ? std::string_view(headers_[n]) : std::string_view();
    }

    // The bytes of the data rows as they stand; for those who read them by other means.
    [[nodiscard]] std::int64_t dataBegin() const { return base_ - (have_ - at_); }
    [[nodiscard]] std::int64_t dataEnd() const { return limit_; }
    std::int32_t read(std::int64_t offset, char* into, std::size_t count) {
        return file_.read(offset, into, count);
    }
    // Bytes of the file that have been read, told to progress.h; false when the user stops the work.
    bool tell(std::int64_t done);

private:
    bool fill();
    std::int32_t skipMark();
    std::int32_t findFooters(std::int32_t count);
    void readHeaders(std::int32_t count);
    bool takeLine(bool quotes, std::string_view& row);
    const char* endOfRow(const char* from, const char* to, bool quotes);
    const char* endOfQuotedRow(const char* from, const char* to) const;
    void skipLongLine();
    [[nodiscard]] std::string_view withoutFrame(std::string_view row) const;

    TabFile file_;
    std::vector<char> block_;
    std::int64_t base_ = 0;   // where in the file the bytes behind `have_` stand
    std::int64_t limit_ = 0;  // where the data ends
    std::int64_t told_ = 0;
    std::ptrdiff_t at_ = 0, have_ = 0;  // what is unread in the block
    std::ptrdiff_t quote_ = -1;         // the first quote of the block at or behind `at_`, once it was sought
    std::int32_t separator_ = NoTabSeparator, code_ = 0;
    bool framed_ = false, cut_ = false, inLongLine_ = false, stopped_ = false;
    std::vector<std::string> headers_;  // the first two at most
};

// Behind the closing quote of the quoted cell that begins at `from`; null when it is not closed.
const char* EndOfQuoted(const char* from, const char* to);
// What stands between the quotes of such a cell, doubled quotes as one. `scratch` holds it where it differs
// from what stands in the file.
std::string_view UnquotedText(std::string_view quoted, std::string& scratch);

// The cells of one row, in order.
class TabCells {
public:
    TabCells(std::string_view row, std::int32_t separator)
        : at_(row.data()), end_(row.data() + row.size()), separator_(separator) {}

    [[nodiscard]] bool more() const { return at_ != end_ || separated_; }
    [[nodiscard]] std::string_view rest() const { return {at_, static_cast<std::size_t>(end_ - at_)}; }
    // Blanks, tabs and line ends, except the one that is the separator.
    void skipBlanks();
    // The next cell as it stands, up to its separator, which is skipped. `quoted` then tells whether it is
    // one with quotes, which are part of it; what stands between them and the separator is not.
    std::string_view next();
    [[nodiscard]] bool quoted() const { return quoted_; }
    // The same, and no quotes are looked for.
    std::string_view nextPlain();
    // The next cell as the text that it stands for. `scratch` holds it where it differs from what stands
    // there.
    std::string_view text(std::string& scratch);
    void advance(std::size_t bytes) { at_ += bytes; }

private:
    const char *at_, *end_;
    std::int32_t separator_;
    bool quoted_ = false;
    bool separated_ = false;  // a separator stands ahead of what is left, so that it is a cell
};

}  // namespace tarn
