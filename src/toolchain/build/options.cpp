// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/options.h"

#include "os/files.h"
#include "os/paths.h"
#include "os/text/ascii.h"
#include "toolchain/language/classes.h"
#include "toolchain/language/words.h"

#include <algorithm>

namespace tarn::toolchain {
namespace {

bool isOptionSign(const std::string& argument) {
    return argument.size() > 1 && (argument[0] == '-' || argument[0] == '/');
}

bool allDigits(std::string_view text) {
    return !text.empty() && text.size() < 10 &&
           text.find_first_not_of("0123456789") == std::string_view::npos;
}

bool allLetters(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return ascii::isLower(c) || ascii::isDigit(c); });
}

// Without quotes that reached the tool as they stood. Those inside of a name belong to it.
std::string unquoted(std::string text) {
    if (text.empty() || text.front() != '"' || os::sizeOf(text) >= 0) return text;
    text.erase(std::remove(text.begin(), text.end(), '"'), text.end());
    return text;
}

// A level word: a letter and 0, 1 or 2.
bool levelOption(const std::string& word, CompilerOptions& options) {
    if (word.size() != 2 || word[1] < '0' || word[1] > '2') return false;
    if (word[0] != 'p' && word[0] != 'd') return false;
    (word[0] == 'p' ? options.precond : options.debug) = word[1] - '0';
    return true;
}

bool plainOption(const std::string& word, CompilerOptions& options) {
    if (levelOption(word, options)) return true;
    if (word == "q") {
        options.quiet = true;
        return true;
    }
    if (word[0] == 's' && allDigits(word.substr(1))) {
        options.maxSymbols = std::stoi(word.substr(1));
        return true;
    }
    const bool other = word == "v" || word == "om" || word == "os" ||
                       (word.substr(0, 2) == "lw" && allDigits(word.substr(2))) ||
                       (word[0] == 'g' && word.size() > 1 && word.size() <= 8 && allLetters(word));
    if (other) options.others.push_back(word);
    return other;
}

// `/i` and `/r` have their value behind them without a blank; `/inn/x.cls` is a path all the same.
bool pathOption(const std::string& argument, CompilerOptions& options) {
    const char letter = ascii::lowered(argument.substr(1, 1))[0];
    if (letter != 'i' && letter != 'r') return false;
    if (argument[0] == '/' && argument.size() < 3) return false;
    if (argument[0] == '/' && isClassFile(argument)) return false;
    (letter == 'i' ? options.inheritedPath : options.resourcePath) =
        splitPathList(unquoted(argument.substr(2)));
    return true;
}

// `-m`, as the make tool gives it.
bool mainFolderOption(const std::string& argument, CompilerOptions& options) {
    if (argument.size() < 3 || argument[0] != '-' || argument[1] != 'm') return false;
    options.mainFolder = argument.substr(2);
    return true;
}

}  // namespace

CompilerOptions readCompilerOptions(const std::vector<std::string>& arguments, Messages& messages) {
    CompilerOptions options;
    for (const std::string& argument : arguments) {
        if (argument.empty()) continue;
        if (isOptionSign(argument)) {
            const std::string word = ascii::lowered(argument.substr(1));
            if (plainOption(word, options) || pathOption(argument, options) ||
                mainFolderOption(argument, options))
                continue;
            if (argument[0] == '-') {
                messages.add("quarn", 0, Problem::BadOption, {argument});
                continue;
            }
        }
        options.files.push_back(unquoted(argument));
        if (!isClassFile(options.files.back()))
            messages.add("quarn", 0, Problem::NotAClassFile, {options.files.back()});
    }
    if (options.files.empty()) messages.add("quarn", 0, Problem::NotAClassFile, {""});
    return options;
}

std::string describeOptions(const CompilerOptions& options) {
    std::string text = "-d" + std::to_string(options.debug) + " -p" + std::to_string(options.precond);
    if (options.quiet) text += " -q";
    if (options.maxSymbols > 0) text += " -s" + std::to_string(options.maxSymbols);
    for (const std::string& other : options.others) text += " -" + other;
    return text;
}

MakeOptions readMakeOptions(const std::vector<std::string>& arguments, Messages& messages) {
    MakeOptions options;
    bool modeGiven = false;
    for (const std::string& argument : arguments) {
        if (argument.empty()) continue;
        const std::string word = isOptionSign(argument) ? ascii::lowered(argument.substr(1)) : std::string();
        const bool isMode = word.size() >= 2 && word[0] == 'f' &&
                            std::string_view("maqst").find(word[1]) != std::string_view::npos;
        // The file may stand right behind the mode: -fm"a.cls".
        if (isMode && (word.size() == 2 || (!modeGiven && os::sizeOf(argument) < 0))) {
            options.mode = static_cast<MakeMode>(word[1]);
            modeGiven = true;
            if (word.size() > 2) options.file = unquoted(argument.substr(3));
        } else if (word == "n") {
            options.query = true;
        } else if (argument[0] == '-' && word[0] == 'i') {
            options.inheritedPath = splitPathList(unquoted(argument.substr(2)));
        } else if (argument[0] == '-' && word[0] == 'o') {
            options.outputFile = unquoted(argument.substr(2));
        } else if (argument[0] == '-') {
            messages.add("ordo", 0, Problem::BadOption, {argument});
        } else {
            options.file = unquoted(argument);
        }
    }
    if (!isClassFile(options.file) && !ascii::equal(paths::extension(options.file), ".rc"))
        messages.add("ordo", 0, Problem::NotAClassFile, {options.file});
    return options;
}

}  // namespace tarn::toolchain
