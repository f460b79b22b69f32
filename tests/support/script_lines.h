// SPDX-License-Identifier: Apache-2.0
//
// The lines of a script (user_script.h) as words, checked for their form.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace tarn {

using ScriptWords = std::vector<std::string>;  // the first tells what the line does

struct ScriptLine {
    int number = 0;
    ScriptWords words;
};

struct Script {
    std::vector<std::string> arguments;                // of the program
    std::vector<std::array<std::string, 3>> settings;  // section, key, value
    std::vector<ScriptLine> lines;
    bool needsRealInput = false;
    bool needsScreen = false;  // other programs show windows there, too
    bool hidesScreen = false;
    std::string error;  // of the script's own text; empty if it is well formed
};
Script parseScript(const std::string& text, const std::string& dir, const std::string& profile,
                   bool realInput);

// Of a line that there may be, by its first word.
bool needsRealInput(const std::string& name);
bool isAnswer(const std::string& name);  // to the question that is open

}  // namespace tarn
