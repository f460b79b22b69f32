// SPDX-License-Identifier: Apache-2.0
//
// What new objects begin with. These functions compute on their arguments and the tables of types alone, can
// neither fail nor set the error cell, and so have no frames.
#include "kernel/windows/resources.h"
#include "library/designer/propedit.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>

namespace tarn {
namespace {

std::string defaultOf(const std::string& type, std::string_view name, std::string_view options) {
    constexpr struct {
        std::string_view name, value;
    } colours[] = {{"FORECOLOUR", "0x000000"},
                   {"FORECOLOR", "0x000000"},
                   {"BACKCOLOUR", "0xFFFFFF"},
                   {"BACKCOLOR", "0xFFFFFF"}};
    for (const auto& colour : colours)
        if (ascii::equal(colour.name, name)) return std::string(colour.value);
    if (ascii::equal(name, "TYPEOF")) return STRNAMECASE(type);
    return CHECKVALUE(options, "").fallback;
}

std::string_view takeWhile(std::string_view& text, bool (*isOne)(char)) {
    const auto* const end = std::find_if_not(text.begin(), text.end(), isOne);
    const std::string_view taken = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(taken.size());
    return taken;
}

}  // namespace

std::string GETOBJECTDEFAULTS(const std::string& type) {
    const std::string description = ResourceTypelist(type);
    std::string list;
    for (std::string_view rest = description; !rest.empty();) {
        const std::string_view line = ascii::withoutLineEnd(ascii::takeLine(rest));
        std::size_t at = 1;
        const std::string name = NextWord(line, at);
        if (name.empty()) continue;
        list.append(name).append("=").append(defaultOf(type, name, line.substr(std::min(at, line.size()))));
        list += '\n';
    }
    return list;
}

std::string GETNEXTNAME(std::string_view names, std::string_view base) {
    std::int64_t highest = -1;
    while (!names.empty()) {
        std::string_view line = ascii::takeLine(names);
        const std::string_view stem = takeWhile(line, ISALPHA), digits = takeWhile(line, ISDIGIT);
        bool ok = false;
        const int number = digits.empty() ? 0 : CVTI(digits, ok);
        if (ok && ascii::equal(stem, base)) highest = std::max<std::int64_t>(highest, number);
    }
    return std::string(base) + std::to_string(highest == -1 ? 1 : highest + 1);
}

}  // namespace tarn
