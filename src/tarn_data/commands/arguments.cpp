// SPDX-License-Identifier: Apache-2.0
//
// The words of the command line.
#include "kernel/data/tab/tabular.h"
#include "kernel/tables/tables.h"
#include "library/data/dbutil.h"
#include "os/text/ascii.h"
#include "tarn_data/commands/commands.h"

#include <algorithm>
#include <charconv>

namespace tarn::datatool {

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
    const bool word = ascii::isLetter(c) || ascii::isDigit(c);
    return !word && std::string_view("+-.").find(c) == std::string_view::npos;
}

bool margin(const std::string& text, std::optional<std::int32_t>& rows) {
    return readNumber(text, mostMarginRows, rows);
}

// Names separated by commas: the fields of an index's key.
bool readKey(const std::string& text, Arguments& into) {
    constexpr std::size_t mostIndexes = std::size_t{MaxIndexes}, mostFields = 4;
    std::vector<std::string> fields;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find(',', at), text.size());
        fields.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    const bool empty = std::any_of(fields.begin(), fields.end(), [](auto& name) { return name.empty(); });
    if (empty || fields.size() > mostFields || into.keys.size() == mostIndexes) return false;
    into.keys.push_back(std::move(fields));
    return true;
}

using Take = bool (*)(const std::string& value, Arguments& into);
struct Option {
    std::string_view name, value;  // in brackets: it may be left away
    unsigned commands;
    std::string_view about;
    Take take;
    std::string_view expected;  // what the value must be
};

constexpr unsigned forReading = ForInfo | ForConvert, forTables = ForCheck | ForRebuild,
                   forAll = forReading | forTables;
constexpr std::string_view aMargin = "0, 1 or 2", aCharacter = "one character that can stand between cells";
const Option options[] = {
    {"--separator", "C", forReading, "what stands between the cells of the file that is read; \\t is a tab",
     [](const std::string& v, Arguments& a) { return readSeparator(v, a.from.separator); }, aCharacter},
    {"--header-rows", "N", forReading, "lines ahead of its rows: 0, 1 (names) or 2 (names and dashes)",
     [](const std::string& v, Arguments& a) { return margin(v, a.from.headerRows); }, aMargin},
    {"--footer-rows", "N", forReading, "lines behind its rows: 0, 1 or 2",
     [](const std::string& v, Arguments& a) { return margin(v, a.from.footerRows); }, aMargin},
    {"--max-rows", "N", forReading, "read only the first N rows",
     [](const std::string& v, Arguments& a) { return readNumber(v, INT32_MAX, a.from.maxRows); },
     "a number from 0 to 2147483647"},
    {"--text", "[COLUMN]", forReading,
     "take every column as text, as it stands in the file; or the one of that name, once for each",
     [](const std::string& v, Arguments& a) {
         if (v.empty()) return a.text = true;
         a.textColumns.push_back(v);
         return true;
     },
     "the name of a column"},
    {"--null", "TEXT", forReading, "take cells that are this text as empty; once for each such text",
     [](const std::string& v, Arguments& a) {
         a.nulls.push_back(v);
         return !v.empty();
     },
     "the text of a cell"},
    {"--deleted", "", ForConvert, "with the rows of a dbf file that are marked as deleted, and their marks",
     [](const std::string&, Arguments& a) { return a.deleted = true; }, ""},
    {"--type", "FILE", forAll, "what a row of a table file is: type information text, or what 'info' printed",
     [](const std::string& v, Arguments& a) { return !(a.type = v).empty(); }, "the name of a file"},
    {"--keys", "A,B", ForConvert | ForCheck | ForRebuild,
     "the fields of an index of a table file; once for each index",
     [](const std::string& v, Arguments& a) { return readKey(v, a); },
     "the names of one to four fields, separated by commas; at most five times"},
    {"--to-table", "", ForConvert, "write a table file, whatever the name of B",
     [](const std::string&, Arguments& a) { return a.toTable = true; }, ""},
    {"--to-separator", "C", ForConvert, "what stands between the cells of the file that is written",
     [](const std::string& v, Arguments& a) { return readTargetSeparator(v, a.to.separator); }, aCharacter},
    {"--to-header-rows", "N", ForConvert,
     "lines to write ahead of its rows; if not given, 1 where A names its columns",
     [](const std::string& v, Arguments& a) { return margin(v, a.to.headerRows); }, aMargin},
    {"--to-footer-rows", "N", ForConvert,
     "lines to write behind its rows: 1 is their count, 2 an empty line first",
     [](const std::string& v, Arguments& a) { return margin(v, a.to.footerRows); }, aMargin},
    {"--plain", "", ForConvert,
     "write delimited text without quotes, as programs of the system do; what would need them is refused",
     [](const std::string&, Arguments& a) { return a.plain = true; }, ""},
    {"--replace", "", ForConvert,
     "write '?' for what the other form cannot hold, and cut, instead of refusing",
     [](const std::string&, Arguments& a) { return a.replace = true; }, ""},
    {"--dry-run", "", ForRebuild, "tell what would be done, and change nothing",
     [](const std::string&, Arguments& a) { return a.dryRun = true; }, ""},
    {"--progress", "", forAll,
     "tell how far the work is, a line each second, where there is no terminal, too",
     [](const std::string&, Arguments& a) { return a.progress = true; }, ""},
    {"--help", "", forAll, "this text", [](const std::string&, Arguments& a) { return a.help = true; }, ""},
    {"--version", "", forAll, "the version of the program",
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
    const bool mayLack = option->value.starts_with('[');
    if (option->value.empty()) {
        if (equals != std::string::npos)
            return {"The option '" + name + "' takes no value.", seeHelp, WrongUsage};
    } else if (equals != std::string::npos) {
        value = argument.substr(equals + 1);
    } else if (mayLack) {
        value.clear();
    } else if (i + 1 < arguments.size()) {
        value = arguments[++i];
    } else {
        return {"The option '" + name + "' needs a value.", seeHelp, WrongUsage};
    }
    read.given.push_back({name, option->commands});
    const bool lacks = mayLack && equals != std::string::npos && value.empty();
    if (!lacks && option->take(value, read)) return {};
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
        if (option.value.starts_with('['))
            left += "[=" + std::string(option.value.substr(1));
        else if (!option.value.empty())
            left += "=" + std::string(option.value);
        left.resize(std::max(column, left.size() + 1), ' ');
        text += left + std::string(option.about) + "\n";
    }
    return text;
}

}  // namespace tarn::datatool
