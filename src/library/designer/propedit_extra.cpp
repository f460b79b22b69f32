// SPDX-License-Identifier: Apache-2.0
//
// What stands behind the drop button of a row: one table row for each form of options text that has one.
#include "library/designer/propedit.h"
#include "library/designer/propedit_boxes_internal.h"
#include "library/designer/propedit_options_internal.h"
#include "library/designer/propedit_sheet.h"
#include "library/system/system.h"

#include <optional>

MODULE("propedit", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

using detail::BoxPlace;
using detail::Options;

bool isHex(std::string_view value) {
    return STREQUAL(value.substr(0, 2), "0x");
}

std::string numberText(int number, bool hex, int width) {
    return hex ? "0x" + HEXSTR(static_cast<std::uint32_t>(number), width) : STR(number);
}

// Each of these lets the user choose, and gives the new value, or the old one.

std::optional<int> chooseAnyColour(const BoxPlace& place, int before) {
    constexpr int allBits = 0xFFFFFF;
    const int shown = before & allBits, chosen = ColourDialog(place.owner, shown);
    return chosen != shown ? std::optional(chosen) : std::nullopt;
}

std::string colour(const Options& options, const BoxPlace& place, const std::string& value) {
    const auto choose = options.isBasicColour() ? detail::chooseBasicColour : chooseAnyColour;
    const std::optional<int> chosen = choose(place, detail::numberOf(STRTRIM(value)).value_or(0));
    return chosen ? numberText(*chosen, isHex(value), 6) : value;
}

std::vector<std::string> extensionsOf(const Options& options) {
    std::vector<std::string> extensions;
    std::size_t at = options.inside;
    do {
        const std::string extension = NextWord(options.text, at);
        if (!ISALNUMSTR(extension)) break;
        extensions.push_back(extension);
    } while (NextWord(options.text, at) == ",");
    return extensions;
}

std::string file(const Options& options, const BoxPlace& place, const std::string& value) {
    const std::vector<std::string> extensions = extensionsOf(options);
    std::string filter, start = value;
    for (const std::string& extension : extensions) {
        const std::string pattern = "(*." + extension + ")|";
        filter += GETFILEDESCRIPTION(extension) + " " + pattern + pattern;
    }
    if (start.empty() && !extensions.empty()) start = "*." + extensions.front();
    const std::string chosen = OpenFileDialog(place.title, start, filter);
    return chosen.empty() ? value : chosen;
}

std::string folder(const Options&, const BoxPlace& place, const std::string& value) {
    const std::string chosen = OpenFolderDialog(place.title, value);
    return chosen.empty() ? value : chosen;
}

std::string oneOfList(const Options& options, const BoxPlace& place, const std::string& value) {
    const std::string string = MAKEOPTIONSSTRING(options.text);
    const std::vector<std::string_view> lines = detail::linesOf(string);
    const std::optional<int> row =
        detail::chooseLine(place, lines, detail::lineOfValue(options, lines, value));
    return row ? std::string(lines[static_cast<std::size_t>(*row - 1)]) : value;
}

std::string someOfList(const Options& options, const BoxPlace& place, const std::string& value) {
    const std::string string = MAKEOPTIONSSTRING(options.text);
    const int before = detail::numberOf(STRTRIM(value)).value_or(0);
    const std::optional<int> bits = detail::chooseBits(place, detail::linesOf(string), before);
    return bits ? numberText(*bits, isHex(value), 1) : value;
}

struct Extra {
    std::string_view word;
    char opener;     // NUL: with or without one
    bool needsList;  // only where there are lines to choose from
    std::string (*choose)(const Options&, const BoxPlace&, const std::string& value);
};
constexpr Extra extras[] = {
    {"COLOUR", '\0', false, colour},  {"COLOR", '\0', false, colour},      {"FILENAME", '(', false, file},
    {"FOLDER", '\0', false, folder},  {"ENUM", '(', true, oneOfList},      {"INTEGER", '(', true, oneOfList},
    {"STRING", '(', true, oneOfList}, {"INTEGER", '{', false, someOfList},
};

const Extra* extraOf(const Options& options) {
    for (const Extra& extra : extras)
        if (options.is(extra.word, extra.opener))
            return extra.needsList && MAKEOPTIONSSTRING(options.text).empty() ? nullptr : &extra;
    return nullptr;
}

}  // namespace

bool EXTRAPROPS(std::string_view options) {
    return extraOf(Options(options)) != nullptr;
}

bool EXTRAPROPS(std::string_view text, const Object& window, int x, int y, const std::string& title,
                std::string& value) {
    FRAME(EXTRAPROPS);
    STAMP();
    const Options options(text);
    const Extra* const extra = extraOf(options);
    if (extra == nullptr) return false;
    value = extra->choose(options, {x, y, title, window}, value);
    STAMP();
    return true;
}

}  // namespace tarn
