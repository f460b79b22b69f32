// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/sources/delimited.h"

#include "os/text/ascii.h"

#include <algorithm>
#include <cstring>

namespace tarn::datatool {

namespace {

constexpr std::size_t blockBytes = std::size_t{256} * 1024;
constexpr std::int32_t framesBelow = 27;

bool isBlankRow(const CellRow& row) {
    return std::all_of(row.begin(), row.end(), [](const Cell& cell) {
        return cell.text.find_first_not_of(' ') == std::string_view::npos;
    });
}

bool isBare(const Cell& cell) {
    return cell.text.empty() && !cell.quoted;
}

}  // namespace

// ---- the file ----

Problem DelimitedReader::open() {
    file_ = std::make_unique<FileRows>();
    if (!file_->open(form_.file)) return unreadable(form_.name, file_->error());
    steps_ = std::make_unique<Steps>(file_->size());
    problem_ = gap_ = {};
    strayQuote_ = 0;
    at_ = have_ = 0;
    rows_ = blankLines_ = 0;
    offset_ = form_.begin;
    headers_.clear();
    framed_ = false;
    firstLine_ = true;
    Problem problem = findFooters();
    CellRow row;
    for (std::int32_t n = 0; n < form_.headerRows && !problem.any() && readRow(row); ++n) {
        if (n == 0)
            framed_ = form_.separator >= 1 && form_.separator < framesBelow && row.size() >= 3 &&
                      isBare(row.front()) && isBare(row.back());
        dropFrame(row);
        std::vector<std::string>& header = headers_.emplace_back();
        for (const Cell& cell : row) header.emplace_back(cell.text);
    }
    return problem.any() ? problem : problem_;
}

// Counts lines from the end of the file: the last one may lack its line feed.
Problem DelimitedReader::findFooters() {
    limit_ = std::max(form_.begin, file_->size() - form_.endBytes);
    std::int32_t count = form_.footerRows;
    if (count <= 0) return {};
    bool last = true;  // the byte at the end, which ends the last line and separates nothing
    std::string bytes;
    for (std::int64_t end = limit_; end > form_.begin;) {
        const std::int64_t begin =
            std::max<std::int64_t>(form_.begin, end - static_cast<std::int64_t>(blockBytes));
        if (!file_->read(begin, static_cast<std::size_t>(end - begin), bytes))
            return unreadable(form_.name, file_->error());
        for (std::size_t i = bytes.size(); i-- > 0; last = false) {
            if (bytes[i] != '\n' || last || --count > 0) continue;
            limit_ = begin + static_cast<std::int64_t>(i) + 1;
            return {};
        }
        end = begin;
    }
    limit_ = form_.begin;
    return {};
}

// Moves what is unread to the front and reads on behind it. False: there is no more, or `problem` tells.
bool DelimitedReader::fill() {
    if (offset_ >= limit_) return false;
    if (have_ - at_ > LongestRow)
        return fail({fileWord(form_.name) + "row " + std::to_string(rows_ + 1) + " is longer than " +
                         std::to_string(LongestRow) + " bytes.",
                     "Look whether the file is delimited text, and whether its lines end with line feeds."});
    block_.erase(0, at_);
    have_ -= at_;
    at_ = 0;
    std::string bytes;
    const auto room = static_cast<std::int64_t>(std::max(blockBytes, have_));
    if (!file_->read(offset_, static_cast<std::size_t>(std::min(limit_ - offset_, room)), bytes))
        return fail(unreadable(form_.name, file_->error()));
    if (bytes.empty()) return fail(unreadable(form_.name, os::FileError::Vanished));
    if (!steps_->step(static_cast<std::int64_t>(bytes.size()))) return fail(stoppedProblem());
    block_.resize(have_);
    block_ += bytes;
    have_ = block_.size();
    offset_ += static_cast<std::int64_t>(bytes.size());
    return true;
}

// ---- cells ----

// Whether the cell ends at this byte: at a separator, a line end, or the end of all.
bool DelimitedReader::endOfCell(std::size_t at) const {
    if (at >= have_) return true;
    const char c = block_[at];
    if (c == '\n' || static_cast<unsigned char>(c) == form_.separator) return true;
    return c == '\r' && (at + 1 >= have_ || block_[at + 1] == '\n');
}

// Takes the quoted cell that begins at `at`, up to where it ends. False for what is none; `more` when the
// bytes that would tell were not read yet.
bool DelimitedReader::takeQuoted(std::size_t& at, bool& more) {
    RawCell cell{at + 1, 0, true, false};
    std::size_t from = at + 1;
    const bool all = offset_ >= limit_;
    for (;; from = cell.end + 2, cell.doubled = true) {
        const void* const found =
            from < have_ ? std::memchr(block_.data() + from, '"', have_ - from) : nullptr;
        if (found == nullptr) {
            more = !all && have_ - at < LongestQuoted;
            return false;
        }
        cell.end = static_cast<std::size_t>(static_cast<const char*>(found) - block_.data());
        if (cell.end - at > LongestQuoted) return false;
        if (cell.end + 1 >= have_ || block_[cell.end + 1] != '"') break;
    }
    std::size_t behind = cell.end + 1;
    while (behind < have_ && block_[behind] == ' ') ++behind;
    more = !all && behind + 1 >= have_;
    if (more || !endOfCell(behind)) return false;
    cells_.push_back(cell);
    at = behind;
    return true;
}

void DelimitedReader::takePlain(std::size_t& at) {
    const std::size_t begin = at;
    const char* const bytes = block_.data();
    const std::int32_t separator = form_.separator;
    while (at < have_ && bytes[at] != '\n' && static_cast<unsigned char>(bytes[at]) != separator) ++at;
    std::size_t end = at;
    // The carriage return of the line end; not one in the middle of a line.
    if ((at >= have_ || bytes[at] == '\n') && end > begin && bytes[end - 1] == '\r') --end;
    cells_.push_back({begin, end, false, false});
}

// The cells of the row at `at_`, as places in the block.
DelimitedReader::Parse DelimitedReader::parse() {
    cells_.clear();
    if (at_ >= have_ && offset_ >= limit_) return Parse::End;
    const bool quotes = form_.separator >= 0;
    std::size_t at = at_;
    for (;;) {
        bool more = false;
        const bool quoted = quotes && at < have_ && block_[at] == '"' && takeQuoted(at, more);
        if (more) return Parse::More;
        if (!quoted) takePlain(at);
        if (at >= have_ && offset_ < limit_) return Parse::More;
        if (at < have_ && block_[at] == '\r') ++at;  // behind a closing quote
        if (at >= have_ || block_[at] == '\n') break;
        ++at;  // the separator
    }
    if (firstLine_) crlf_ = at > at_ && at < have_ && block_[at - 1] == '\r';
    firstLine_ = false;
    rowEnd_ = std::min(at + 1, have_);
    return Parse::Row;
}

void DelimitedReader::give(CellRow& row) {
    row.clear();
    for (RawCell& cell : cells_) {
        char* const begin = block_.data() + cell.begin;
        if (cell.doubled) {  // in place: nobody reads these bytes again
            char* to = begin;
            for (const char* from = begin; from < block_.data() + cell.end; ++from) {
                *to++ = *from;
                if (*from == '"') ++from;
            }
            cell.end = static_cast<std::size_t>(to - block_.data());
        }
        row.push_back({std::string_view(block_).substr(cell.begin, cell.end - cell.begin), cell.quoted});
    }
}

bool DelimitedReader::readRow(CellRow& row) {
    for (;;) {
        const Parse parsed = parse();
        if (parsed == Parse::End) return false;
        if (parsed == Parse::Row) break;
        if (!fill()) return false;
    }
    give(row);
    const auto isStray = [](const Cell& cell) { return !cell.quoted && cell.text.starts_with('"'); };
    if (strayQuote_ == 0 && form_.separator >= 0 && std::any_of(row.begin(), row.end(), isStray))
        strayQuote_ = rows_ + 1;
    at_ = rowEnd_;
    return true;
}

void DelimitedReader::dropFrame(CellRow& row) const {
    if (!framed_) return;
    if (row.size() > 1 && isBare(row.front())) row.erase(row.begin());
    if (row.size() > 1 && isBare(row.back())) row.pop_back();
}

// ---- rows ----

bool DelimitedReader::next(CellRow& row) {
    if (problem_.any() || gap_.any() || (form_.maxRows >= 0 && rows_ >= form_.maxRows)) return false;
    if (!readRow(row)) return false;
    const bool empty = row.size() == 1 && isBare(row[0]);
    if (empty && form_.separator >= 0) return endAtGap(row);
    dropFrame(row);
    ++rows_;
    return true;
}

// Blank lines at the end are no rows. In the middle of rows one may be, or may be the end of them: the user
// must say.
bool DelimitedReader::endAtGap(CellRow& row) {
    const std::int64_t empty = rows_ + 1;
    for (std::int64_t number = empty + 1; (form_.maxRows < 0 || number <= form_.maxRows) && readRow(row);
         ++number) {
        if (isBlankRow(row)) {
            blankLines_ += row.size() == 1 && isBare(row[0]) ? 0 : 1;
            continue;
        }
        gap_ = {fileWord(form_.name) + "row " + std::to_string(empty) + " is empty, and row " +
                    std::to_string(number) + " is not.",
                "Take the empty line out, or leave what follows it with --max-rows=" +
                    std::to_string(empty - 1) + " or --footer-rows."};
        return false;
    }
    return false;
}

}  // namespace tarn::datatool
