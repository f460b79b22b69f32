// SPDX-License-Identifier: Apache-2.0
//
// Xbase files as they stand: the header against the size, and row after row.
#pragma once

#include "kernel/data/xbase/xbase.h"
#include "kernel/values/owned.h"
#include "tarn_data/base/files.h"
#include "tarn_data/base/rowtype.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::datatool {

inline constexpr char LiveRow = ' ', DeletedRow = '*', XbaseEndMark = 26;
constexpr bool isXbaseMark(char c) {
    return c == LiveRow || c == DeletedRow;
}
// What stands in a field, without what fills it up at its end: blanks, and bytes 0 by some programs.
std::string_view xbaseText(std::string_view field);
std::string_view trimmedText(std::string_view field);  // nor blanks at its beginning
// The cell that a field of a type is, C or another: True, False and "" for truth values; what is no such value stands as
// it is.
std::string_view xbaseCell(std::string_view field, char type);
// What can be made of a number as it stands in a field without losing a digit.
enum class NumberForm { Blank, Integer, Fixed, Real, None };
NumberForm numberForm(std::string_view text);

// The names of the fields as they stand in the file; FIELDn for none.
std::vector<std::string> xbaseHeadings(const XbaseHeader& header);

class XbaseFile {
public:
    Problem open(const std::string& file);
    [[nodiscard]] const XbaseHeader& header() const { return header_; }
    [[nodiscard]] std::int64_t counted() const { return header_.records; }  // by the header
    // Rows that are there: those that are counted, and those behind them that begin with a mark of deletion.
    // Behind a mark of the end there are none.
    [[nodiscard]] std::int64_t whole() const { return whole_; }
    // Bytes behind them, but for a mark of the end and what stands behind that. Below 0: the header is not
    // whole, by so many.
    [[nodiscard]] std::int64_t behind() const { return behind_; }
    // Bytes behind the mark of the end.
    [[nodiscard]] std::int64_t padding() const { return padding_; }
    // Whether they are more than what fills a file up.
    [[nodiscard]] bool hasTextBehindMark();
    // Where the file ends, with the mark of the end.
    [[nodiscard]] std::int64_t end() const {
        return file_.size() - std::max<std::int64_t>(behind_, 0) - padding_;
    }
    [[nodiscard]] std::int64_t size() const { return file_.size(); }
    // What they are, when a row was being written over; and which row, or 0.
    [[nodiscard]] const RowNote& note() const { return note_; }
    [[nodiscard]] std::int32_t replacing() const {
        return note_.position >= 1 && note_.position <= rows() ? note_.position : 0;
    }
    // The rows that count and are there, from the first on.
    [[nodiscard]] std::int64_t rows() const { return counted() < whole_ ? counted() : whole_; }
    bool readHead(std::string& bytes) {
        return file_.read(0, static_cast<std::size_t>(header_.headerSize), bytes);
    }
    void goToFirst(std::int64_t rows);
    bool next(std::string_view& row) { return file_.next(row); }
    [[nodiscard]] os::FileError error() const { return file_.error(); }
    // A field of a row, from 0.
    [[nodiscard]] std::string_view field(std::string_view row, std::int32_t n) const {
        return row.substr(offsets_[static_cast<std::size_t>(n)], header_.length[n]);
    }

private:
    void countWhole(std::int64_t room);
    bool readByte(std::int64_t at, char& byte);
    // The first byte of a row, from 1.
    char markOf(std::int64_t row);

    FileRows file_;
    XbaseHeader header_;
    std::vector<std::size_t> offsets_;
    std::int64_t whole_ = 0, behind_ = 0, padding_ = 0;
    RowNote note_;
};

// The rows of a file as the kernel has them, one at a time.
class XbaseRecord {
public:
    XbaseRecord(const XbaseHeader& header, const RowType& type);
    // Until the next is asked for; null for bytes that are no row.
    const RecordDescriptor* record(std::string_view row);

private:
    const XbaseHeader& header_;
    RecordValue row_;
};

}  // namespace tarn::datatool
