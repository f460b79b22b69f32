// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/base/xbase.h"

#include "kernel/run/runtime.h"
#include "kernel/values/adt.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <charconv>

namespace tarn::datatool {

namespace {

constexpr bool isFill(char c) {
    return c == ' ' || c == '\0';
}

}  // namespace

std::string_view xbaseText(std::string_view field) {
    while (!field.empty() && isFill(field.back())) field.remove_suffix(1);
    return field;
}

std::string_view trimmedText(std::string_view field) {
    field = xbaseText(field);
    while (!field.empty() && isFill(field.front())) field.remove_prefix(1);
    return field;
}

std::string_view xbaseCell(std::string_view field, char type) {
    if (type == 'C') return xbaseText(field);
    const std::string_view text = trimmedText(field);
    if (type != 'L' || text.size() != 1) return text;
    switch (text[0]) {
    case 'T':
    case 't':
    case 'Y':
    case 'y': return "True";
    case 'F':
    case 'f':
    case 'N':
    case 'n': return "False";
    case '?': return "";
    default: return text;
    }
}

NumberForm numberForm(std::string_view text) {
    constexpr std::size_t mostWhole = 14, fixedDecimals = 4;  // 15 digits may be too many for a fixed number
    if (text.empty()) return NumberForm::Blank;
    const std::string_view number = text[0] == '+' || text[0] == '-' ? text.substr(1) : text;
    const std::size_t point = std::min(number.find('.'), number.size());
    std::string_view whole = number.substr(0, point),
                     decimals = number.substr(std::min(point + 1, number.size()));
    const auto digits = [](std::string_view part) {
        return std::all_of(part.begin(), part.end(), ascii::isDigit);
    };
    if (!digits(whole) || !digits(decimals) || whole.size() + decimals.size() == 0) {
        double real = 0;
        const auto read = std::from_chars(number.data(), number.data() + number.size(), real);
        const bool isReal = read.ec == std::errc() && read.ptr == number.data() + number.size() &&
                            !number.empty() && (ascii::isDigit(number[0]) || number[0] == '.');
        return isReal ? NumberForm::Real : NumberForm::None;
    }
    std::int32_t integer = 0;
    const char* const start = text.data() + (text[0] == '+' ? 1 : 0);
    const auto read = std::from_chars(start, text.data() + text.size(), integer);
    if (read.ec == std::errc() && read.ptr == text.data() + text.size()) return NumberForm::Integer;
    whole.remove_prefix(std::min(whole.find_first_not_of('0'), whole.size()));
    const bool exact = decimals.substr(std::min(decimals.size(), fixedDecimals)).find_first_not_of('0') ==
                       std::string_view::npos;
    return whole.size() <= mostWhole && exact ? NumberForm::Fixed : NumberForm::Real;
}

std::vector<std::string> xbaseHeadings(const XbaseHeader& header) {
    std::vector<std::string> names;
    for (std::int32_t n = 0; n < header.fieldCount; ++n) {
        const std::string name(trimmedText(header.name[n]));
        names.push_back(name.empty() ? "FIELD" + std::to_string(n + 1) : name);
    }
    return names;
}

Problem XbaseFile::open(const std::string& file) {
    Problem problem = problemOfName(file);
    if (problem.any()) return problem;
    const std::string message = XbaseReadHeader(os::native(file), header_);
    ClearError();
    if (!file_.open(file)) return unreadable(file, file_.error());
    if (!message.empty())
        return {fileWord(file) + "cannot be read: " + message + ".",
                "A header that is damaged is not mended; take the file from a copy."};
    std::size_t offset = 1;
    for (std::int32_t n = 0; n < header_.fieldCount; ++n) {
        offsets_.push_back(offset);
        offset += header_.length[n];
    }
    problem = findNote(file, header_.headerSize, header_.recordSize, note_);
    if (problem.any()) return problem;
    const std::int64_t end = note_.offset >= 0 ? note_.offset : file_.size();
    const std::int64_t room = end - header_.headerSize;
    behind_ = room;
    if (room >= 0) countWhole(room);
    return file_.error() == os::FileError::None ? Problem() : unreadable(file, file_.error());
}

bool XbaseFile::readByte(std::int64_t at, char& byte) {
    std::string bytes;
    if (!file_.read(at, 1, bytes) || bytes.empty()) return false;
    byte = bytes[0];
    return true;
}

char XbaseFile::markOf(std::int64_t row) {
    char mark = 0;
    readByte(header_.headerSize + (row - 1) * header_.recordSize, mark);
    return mark;
}

// A count that is higher than the rows that there is room for tells nothing of where they end: what stands
// there may be a mark of the end with bytes behind it, as long as rows.
void XbaseFile::countWhole(std::int64_t room) {
    const std::int64_t most = room / header_.recordSize, noted = file_.size() - header_.headerSize - room;
    if (counted() <= most) {
        whole_ = counted();
        while (whole_ < most && isXbaseMark(markOf(whole_ + 1))) ++whole_;
    } else {
        std::int64_t last = most;
        while (last > 0 && !isXbaseMark(markOf(last))) --last;
        whole_ = last < most && markOf(last + 1) == XbaseEndMark ? last : most;
    }
    const std::int64_t used = whole_ * header_.recordSize;
    char next = 0;
    const bool ended = room > used && readByte(header_.headerSize + used, next) && next == XbaseEndMark;
    padding_ = ended ? room - used - 1 : 0;
    behind_ = noted + (ended ? 0 : room - used);
}

bool XbaseFile::hasTextBehindMark() {
    constexpr std::size_t block = 4096;
    std::string bytes;
    for (std::int64_t at = file_.size() - padding_; at < file_.size();
         at += static_cast<std::int64_t>(block)) {
        if (!file_.read(at, block, bytes)) return true;
        if (bytes.find_first_not_of(std::string_view("\x1A\0 \r\n", 5)) != std::string::npos) return true;
    }
    return false;
}

XbaseRecord::XbaseRecord(const XbaseHeader& header, const RowType& type) : header_(header) {
    AdtInit(row_.get(), type.row.get(), KindRecord);
}

const RecordDescriptor* XbaseRecord::record(std::string_view row) {
    const bool read = XbaseReadRow(row, header_, row_.get(), KindRecord, true).errorCode == 0;
    return read && ErrorCell() == 0 ? row_.get() : nullptr;
}

void XbaseFile::goToFirst(std::int64_t rows) {
    file_.goTo(header_.headerSize, static_cast<std::size_t>(header_.recordSize), rows);
}

}  // namespace tarn::datatool
