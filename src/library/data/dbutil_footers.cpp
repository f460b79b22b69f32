// SPDX-License-Identifier: Apache-2.0
#include "library/data/dbutil_footers_internal.h"

#include "os/files.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <string_view>

namespace tarn {
namespace {

// "(2 rows affected)".
bool isRowCount(std::string_view line) {
    if (!line.starts_with('(')) return false;
    line.remove_prefix(1);
    const auto digits =
        static_cast<std::size_t>(std::find_if_not(line.begin(), line.end(), ascii::isDigit) - line.begin());
    line.remove_prefix(digits);
    return digits > 0 && (line == " row affected)" || line == " rows affected)");
}

std::string_view takeFooter(std::string_view& text) {
    std::string_view line = ascii::takeLine(text);
    while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

bool isMadeAnew(std::string_view lines, std::int32_t count) {
    constexpr std::int32_t mostMade = 2;
    if (count > mostMade) return false;
    if (count == mostMade && !takeFooter(lines).empty()) return false;
    return isRowCount(takeFooter(lines)) && lines.empty();
}

// A line feed at the end of the file ends the last line.
std::string_view lastLines(std::string_view text, std::int32_t count) {
    std::size_t at = text.size();
    for (; count > 0 && at > 0; --count) {
        const std::size_t end = at < 2 ? std::string_view::npos : text.rfind('\n', at - 2);
        at = end == std::string_view::npos ? 0 : end + 1;
    }
    return text.substr(at);
}

}  // namespace

bool ReadFooters(const std::string& filename, std::int32_t count, std::string& footers) {
    std::string text;
    footers.clear();
    if (os::readFile(os::native(filename), text) != os::FileError::None) return false;
    const std::string_view lines = lastLines(text, count);
    if (!isMadeAnew(lines, count)) footers = lines;
    return true;
}

}  // namespace tarn
