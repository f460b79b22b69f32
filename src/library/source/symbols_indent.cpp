// SPDX-License-Identifier: Apache-2.0
//
// The layout of window functions: a header of four lines, whose lower three stand under its first argument. It
// is reckoned for callbacks, also where a function is none.
#include "library/source/symbols.h"

#include "library/source/symbols_text_internal.h"
#include "library/system/system.h"

#include <algorithm>
#include <array>

MODULE("symbols", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

using detail::Lines;

using Indents = std::array<std::string, 3>;

// What goes in front of the three lines below `line`; nothing if it does not hold the name.
Indents SETUPINDENTS(std::string_view name, std::string_view line) {
    FRAME(SETUPINDENTS);
    if (STRFIND(name, line) == 0) return {};
    std::size_t position = 1;
    const std::string first = STRUPPER(NextWord(line, position));
    std::string_view prefix = "callback function ";
    if (first == "PUBLIC") prefix = "public callback function ";
    if (first == "PRIVATE") prefix = "private callback function ";
    const std::string argument(prefix.size() + name.size() + std::string_view("(").size(), ' ');
    const std::string behindMode = argument + std::string(std::string_view("out ").size(), ' ');
    return {behindMode, behindMode, argument};
}

// Whether a line of the item has changed.
bool indentHeader(const detail::Item& item, Lines& lines) {
    const auto start = static_cast<std::size_t>(item.first - 1);
    const Indents indents = SETUPINDENTS(item.name, lines[start]);
    bool changed = false;
    const auto below = std::min(indents.size(), static_cast<std::size_t>(item.last - item.first));
    for (std::size_t i = 0; i < below; ++i) {
        std::string& line = lines[start + 1 + i];
        std::string wanted = indents[i] + STRLTRIM(line);
        changed = changed || wanted != line;
        line = std::move(wanted);
    }
    return changed;
}

}  // namespace

std::string SYMINDENTFUNCHEADER(const std::string& name, int mode, std::string& source) {
    FRAME(SYMINDENTFUNCHEADER);
    const std::string text = detail::loadSource(mode, source);
    if (name.empty() || text.empty())
        return "The function name is missing, or the source text does not contain a class.";
    Lines lines;
    if (!detail::LOADSTRINGLIST(text, lines)) return detail::TooManyLines;
    bool changed = false;
    for (const detail::Item& item : detail::scanItems(text)) {
        if (item.kind == detail::ItemKind::Handler) continue;
        if (name == "*" || STREQUAL(item.name, name)) changed = indentHeader(item, lines) || changed;
    }
    if (!changed) return {};
    STAMP();
    return detail::SAVESTRINGLIST(mode, source, lines);
}

}  // namespace tarn
