// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/base/xbase.h"

#include "kernel/run/runtime.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <charconv>

namespace tarn::datatool {

namespace {

constexpr char endMark = 26;

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
    whole_ = std::max<std::int64_t>(room / header_.recordSize, 0);
    behind_ = room < 0 ? room : file_.size() - header_.headerSize - whole_ * header_.recordSize;
    std::string last;
    if (behind_ == 1 && file_.read(file_.size() - 1, 1, last) && last[0] == endMark) behind_ = 0;
    return file_.error() == os::FileError::None ? Problem() : unreadable(file, file_.error());
}

void XbaseFile::goToFirst(std::int64_t rows) {
    file_.goTo(header_.headerSize, static_cast<std::size_t>(header_.recordSize), rows);
}

}  // namespace tarn::datatool
