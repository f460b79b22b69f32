// SPDX-License-Identifier: Apache-2.0
//
// Which texts fit into a cell, and into a line.
#include "kernel/data/textfit.h"

namespace tarn {

namespace {

std::string_view faultOf(char c) {
    return c == '\0' ? "holds a zero byte" : "holds a line end";
}

}  // namespace

TextMisfit MisfitOfCell(std::string_view text, std::size_t from, char separator) {
    if (from == 0 && text.starts_with('"')) return {0, "begins with a quote"};
    for (std::size_t i = from; i < text.size(); ++i) {
        if (text[i] == separator) return {i, "holds the separator", TextMisfit::Way::OtherSeparator};
        if (text[i] == '\n' || text[i] == '\r' || text[i] == '\0') return {i, faultOf(text[i])};
    }
    return {};
}

TextMisfit MisfitOfLine(std::string_view text, std::size_t from) {
    const std::size_t at = text.find_first_of(std::string_view("\n\r\0", 3), from);
    return at < text.size() ? TextMisfit{at, faultOf(text[at])} : TextMisfit{};
}

}  // namespace tarn
