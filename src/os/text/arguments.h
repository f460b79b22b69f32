// SPDX-License-Identifier: Apache-2.0
//
// Lists of arguments as one line, and back. Blanks, tabs and line ends part the arguments; double quotes
// enclose what holds them, and inside of quotes two quotes stand for one. Any list of texts can be written as
// a line and is read back the same, whatever bytes it holds. No failure; cost: linear.
#pragma once

#include "os/text/ascii.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::os {

// Quotes that are not closed reach to the end of the line.
inline std::vector<std::string> splitArguments(std::string_view line) {
    std::vector<std::string> arguments;
    bool quoted = false, inside = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (!quoted && ascii::isSpace(line[i])) {
            inside = false;
            continue;
        }
        if (!inside) arguments.emplace_back();
        inside = true;
        const bool quote = line[i] == '"', doubled = quoted && line.substr(i, 2) == "\"\"";
        if (quote && !doubled)
            quoted = !quoted;
        else
            arguments.back() += line[i];
        if (doubled) ++i;
    }
    return arguments;
}

// The argument as it stands in a line: in quotes only where it needs them.
inline std::string quotedArgument(std::string_view argument) {
    if (!argument.empty() && argument.find_first_of(" \t\r\n\"") == std::string_view::npos)
        return std::string(argument);
    std::string quoted = "\"";
    for (const char c : argument) quoted.append(c == '"' ? 2 : 1, c);
    return quoted + '"';
}

inline std::string joinedArguments(const std::vector<std::string>& arguments) {
    std::string line;
    for (const std::string& argument : arguments)
        line.append(line.empty() ? "" : " ").append(quotedArgument(argument));
    return line;
}

}  // namespace tarn::os
