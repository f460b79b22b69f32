// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/tabular.h"
#include "library/dbutil.h"
#include "toolchain/tarn_data.h"

#include <algorithm>
#include <charconv>

namespace tarn::data {

namespace {

constexpr std::int32_t mostMarginRows = 2;

bool readNumber(const std::string& text, std::int32_t most, std::optional<std::int32_t>& number) {
    std::int32_t read = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, read);
    if (result.ec != std::errc() || result.ptr != end || read < 0 || read > most) return false;
    number = read;
    return true;
}

bool isSeparator(std::int32_t code) {
    return code >= 1 && code <= 255 && code != '\n' && code != '\r' && code != '"';
}

// One character, or an escape such as \t.
bool readSeparator(const std::string& text, std::optional<std::int32_t>& separator) {
    const std::string character = text.size() > 1 ? GETSEPARATOR(text) : text;
    if (character.size() != 1) return false;
    separator = static_cast<unsigned char>(character[0]);
    return isSeparator(*separator);
}

// What numbers and truth values are written with cannot stand between them.
bool readTargetSeparator(const std::string& text, std::optional<std::int32_t>& separator) {
    if (!readSeparator(text, separator)) return false;
    const auto c = static_cast<char>(*separator);
    const bool word = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    return !word && std::string_view("+-.").find(c) == std::string_view::npos;
}

bool margin(const std::string& text, std::optional<std::int32_t>& rows) {
    return readNumber(text, mostMarginRows, rows);
}

using Take = bool (*)(const std::string& value, Arguments& into);
struct Option {
    std::string_view name, value, about;
    Take take;
    std::string_view expected;  // what the value must be
};

constexpr std::string_view aMargin = "0, 1 or 2", aCharacter = "one character that can stand between cells";
const Option options[] = {
    {"--separator", "C", "what stands between the cells of the file that is read; \\t is a tab",
     [](const std::string& v, Arguments& a) { return readSeparator(v, a.from.separator); }, aCharacter},
    {"--header-rows", "N", "lines ahead of its rows: 0, 1 (names) or 2 (names and dashes)",
     [](const std::string& v, Arguments& a) { return margin(v, a.from.headerRows); }, aMargin},
    {"--footer-rows", "N", "lines behind its rows: 0, 1 or 2",
     [](const std::string& v, Arguments& a) { return margin(v, a.from.footerRows); }, aMargin},
    {"--max-rows", "N", "read only the first N rows",
     [](const std::string& v, Arguments& a) { return readNumber(v, INT32_MAX, a.from.maxRows); },
     "a number from 0 to 2147483647"},
    {"--text", "", "take every column as text, as it stands in the file",
     [](const std::string&, Arguments& a) { return a.text = true; }, ""},
    {"--to-separator", "C", "what stands between the cells of the file that is written",
     [](const std::string& v, Arguments& a) { return readTargetSeparator(v, a.to.separator); }, aCharacter},
    {"--to-header-rows", "N", "lines to write ahead of its rows; 1 if not given",
     [](const std::string& v, Arguments& a) { return margin(v, a.to.headerRows); }, aMargin},
    {"--to-footer-rows", "N", "lines to write behind its rows: 1 is their count, 2 an empty line first",
     [](const std::string& v, Arguments& a) { return margin(v, a.to.footerRows); }, aMargin},
    {"--replace", "", "write '?' for what the other form cannot hold, instead of refusing",
     [](const std::string&, Arguments& a) { return a.replace = true; }, ""},
    {"--help", "", "this text", [](const std::string&, Arguments& a) { return a.help = true; }, ""},
    {"--version", "", "the version of the program",
     [](const std::string&, Arguments& a) { return a.version = true; }, ""},
};

const Option* findOption(std::string_view name) {
    for (const Option& option : options) {
        if (option.name == name) return &option;
    }
    return nullptr;
}

const char* const seeHelp = "'tarn-data --help' lists the commands and options.";

// Takes the option at `i`, and its value, which may be the next argument.
Problem takeOption(const std::vector<std::string>& arguments, std::size_t& i, Arguments& read) {
    const std::string& argument = arguments[i];
    const std::size_t equals = argument.find('=');
    const std::string name = argument.substr(0, equals);
    const Option* const option = findOption(name);
    if (option == nullptr) return {"There is no option '" + name + "'.", seeHelp, WrongUsage};
    std::string value;
    if (option->value.empty()) {
        if (equals != std::string::npos)
            return {"The option '" + name + "' takes no value.", seeHelp, WrongUsage};
    } else if (equals != std::string::npos) {
        value = argument.substr(equals + 1);
    } else if (i + 1 < arguments.size()) {
        value = arguments[++i];
    } else {
        return {"The option '" + name + "' needs a value.", seeHelp, WrongUsage};
    }
    if (option->take(value, read)) return {};
    return {"'" + value + "' cannot be the value of '" + name + "'.",
            "It must be " + std::string(option->expected) + ".", WrongUsage};
}

}  // namespace

Problem readArguments(const std::vector<std::string>& arguments, Arguments& read) {
    bool optionsEnd = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (!optionsEnd && argument == "--") {
            optionsEnd = true;
        } else if (!optionsEnd && argument.size() > 1 && argument[0] == '-') {
            Problem problem = takeOption(arguments, i, read);
            if (problem.any()) return problem;
        } else if (read.command.empty()) {
            read.command = argument;
        } else {
            read.files.push_back(argument);
        }
    }
    return {};
}

std::string optionsHelp() {
    constexpr std::size_t column = 22;
    std::string text;
    for (const Option& option : options) {
        std::string left = "  " + std::string(option.name);
        if (!option.value.empty()) left += "=" + std::string(option.value);
        left.resize(std::max(column, left.size() + 1), ' ');
        text += left + std::string(option.about) + "\n";
    }
    return text;
}

}  // namespace tarn::data
