// SPDX-License-Identifier: Apache-2.0
// Options texts and property lists: the first line is an options text, the second a value, the rest a list. A check tells
// whole lines, a step gives the value or a line to choose from, and what is written into a list is read from it.
#include "kernel/run/runtime.h"
#include "library/designer/propedit.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

using namespace tarn;

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

std::string takeLine(std::string& rest) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string line = rest.substr(0, end);
    rest.erase(0, end + 1);
    return line;
}

void checkOptions(const std::string& options, const std::string& value) {
    const ValueCheck check = CHECKVALUE(options, value);
    require(check.message.empty() || check.message.ends_with('\n'));
    const std::string lines = MAKEOPTIONSSTRING(options);
    require(lines.empty() || lines.ends_with('\n'));
    for (const int step : {-1, 0, 1}) {
        const std::string next = GETNEXTVALUE(options, value, step);
        bool listed = next == value;
        for (int i = 1; !listed && i <= STRLINES(lines); ++i) listed = STRTRIM(STRLINE(lines, i)) == next;
        require(listed);
    }
    const LengthLimits limits = GETMINMAX(options);
    require(limits.found || (limits.minimum == 0 && limits.maximum == 0));
}

void checkList(const std::string& list, const std::string& value) {
    const std::string names = GETPROPNAMES(list);
    const std::string name = names.substr(0, names.find('\n'));
    std::string changed = list;
    SETPROPVALUE(name, value, changed);
    const bool plain = value.find('\0') == std::string::npos && value.find('"') == std::string::npos;
    const bool there = list.starts_with(name + "=");
    require(!there || !plain || GETPROPVALUE(changed, name) == value || name.empty());
    const UnitRect position = GETPROPPOSITION(list);
    changed = list;
    SETPROPPOSITION(changed, position);
    require(GETPROPPOSITION(changed) == position);
    static_cast<void>(GETPROPINT(list, name));
    require(GETNEXTNAME(names, "Label").starts_with("Label"));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string rest(reinterpret_cast<const char*>(data), size);
    const std::string options = takeLine(rest), value = takeLine(rest);
    checkOptions(options, value);
    checkList(rest, value);
    require(ErrorCell() == 0);
    return 0;
}
