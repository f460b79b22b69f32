// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/base/names.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <vector>

namespace tarn::datatool {

namespace {

constexpr int longestName = 40;

// `name`, or with a number behind it that makes it another one than those before.
std::string uniqueName(const std::string& name, std::vector<std::string>& taken) {
    std::string made = name;
    for (int n = 2; std::find(taken.begin(), taken.end(), ascii::lowered(made)) != taken.end(); ++n) {
        const std::string number = "_" + std::to_string(n);
        made = name.substr(0, longestName - number.size()) + number;
    }
    taken.push_back(ascii::lowered(made));
    return made;
}

}  // namespace

std::string withRepairedNames(const std::string& columns) {
    const std::string repaired = TYPEINFOFIXIDENTIFIERS(columns, longestName);
    std::vector<std::string> taken;
    std::string text;
    const auto lines = static_cast<std::int32_t>(std::count(repaired.begin(), repaired.end(), '\n'));
    for (std::int32_t n = 1; n <= lines; ++n) {
        const std::string name = TypeInfoName(repaired, n);
        text += uniqueName(name, taken) + TypeInfoLine(repaired, n).substr(name.size());
    }
    return text;
}

std::string fileIdentifier(std::string_view name) {
    return STRTOIDENTIFIER(name, longestName - 1, "_");
}

}  // namespace tarn::datatool
