// SPDX-License-Identifier: Apache-2.0
//
// tarn-data: what is in a data file, and data files of one form made from those of another. Results go to
// standard output, problems to standard error: what, where, and what can be done. Exit status: 0 all is well,
// 1 the data could not be handled, 2 wrong usage. A file is replaced as a whole or stays as it was.
#include "toolchain/tarn_data.h"
#include "kernel/data/typeinfo.h"
#include "kernel/runtime.h"

#include <algorithm>
#include <cstdio>
#include <new>

namespace tarn::data {

namespace {

int tell(const Problem& problem) {
    std::fprintf(stderr, "tarn-data: %s\n", problem.what.c_str());
    if (!problem.next.empty()) std::fprintf(stderr, "%s\n", problem.next.c_str());
    return problem.status;
}

int print(const std::string& text) {
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (written && std::fflush(stdout) == 0) return Well;
    return tell({"The result cannot be written to standard output.", "Look whether its disk is full."});
}

// ---- info ----

std::string rowsText(const Source& source, const Arguments& arguments) {
    if (source.rowsSeen < 0) return "as many as lines";
    const bool first = arguments.from.maxRows && source.rowsSeen == *arguments.from.maxRows;
    return std::to_string(source.rowsSeen) + (first ? " (at most as many as --max-rows)" : "");
}

constexpr std::string_view xmlForms[] = {"XML", "XML, a list of values", "XML, a single record"};

std::string formText(const Source& source) {
    const auto rows = [](std::int32_t n, const char* what) {
        return ", " + std::to_string(n) + " " + what + " row" + (n == 1 ? "" : "s");
    };
    switch (source.format) {
    case FormatText: return "lines of text";
    case FormatXml: return std::string(xmlForms[static_cast<std::size_t>(source.xmlRows.form)]);
    case FormatXbase: return "Xbase";
    case FormatBinary: return "table file";
    default:
        return "delimited text, separator " + separatorName(source.options.separatorchar) +
               rows(source.options.numheaderrows, "header") + rows(source.options.numfooterrows, "footer");
    }
}

std::string renamedText(const Source& source, std::string_view repaired) {
    const std::vector<std::string> before = columnNames(source.columns), after = columnNames(repaired);
    std::string text;
    for (std::size_t i = 0; i < std::min(before.size(), after.size()); ++i) {
        if (before[i] != after[i]) text += "renamed: " + before[i] + " to " + after[i] + "\n";
    }
    return text;
}

int info(const Arguments& arguments) {
    Source source;
    const Problem problem = identify(arguments.files[0], arguments, source);
    if (problem.any()) return tell(problem);
    const std::string columns = repairedNames(arguments.text ? textColumns(source.columns) : source.columns);
    const std::string whole = declaration(source, columns);
    const std::string keys = TypeInfoFieldList(whole).keys.names;
    return print("file: " + source.file + "\ntype: " + formText(source) + "\nrows: " +
                 rowsText(source, arguments) + "\ncolumns: " + std::to_string(columnNames(columns).size()) +
                 "\ndefault keys: " + (keys.empty() ? "none" : keys) + "\n" + renamedText(source, columns) +
                 "declaration:\n" + whole);
}

// ---- convert ----

int convert(const Arguments& arguments) {
    Target target;
    Problem problem = chooseTarget(arguments.files[1], arguments.to, target);
    if (problem.any()) return tell(problem);
    Source source;
    problem = identify(arguments.files[0], arguments, source);
    if (problem.any()) return tell(problem);
    const std::string found = arguments.text ? textColumns(source.columns) : source.columns;
    const std::string columns = repairedNames(found);
    TableValue table;
    problem = loadRows(source, columns, table);
    if (!problem.any()) problem = fitRows(target, arguments.replace, columns, table);
    if (!problem.any()) problem = saveRows(target, table);
    return problem.any() ? tell(problem) : int{Well};
}

// ---- the program ----

struct Command {
    std::string_view name, files, about;
    std::size_t fileCount;
    bool writes;
    int (*run)(const Arguments&);
};
constexpr Command commands[] = {
    {"info", "FILE", "what FILE is, how many rows it has, and the declaration of its columns", 1, false,
     info},
    {"convert", "A B", "write the rows of A to B; the extension of B decides: csv, tab, txt or xml", 2, true,
     convert},
};

std::string help() {
    constexpr std::size_t column = 22;
    std::string text = "tarn-data: looks into data files and converts them\n\nCommands:\n";
    for (const Command& command : commands) {
        std::string left = "  " + std::string(command.name) + " " + std::string(command.files);
        left.resize(column, ' ');
        text += left + std::string(command.about) + "\n";
    }
    return text + "\nOptions:\n" + optionsHelp() +
           "\nExit status: 0 all is well, 1 the data could not be handled, 2 wrong usage.\n";
}

std::string version() {
    return "tarn-data (" + std::string(ProductWord) + ") " + std::string(ProductVersion) + "." +
           std::string(ProductBuild) + "\n";
}

int usage(const std::string& what, const std::string& next = "'tarn-data --help' lists the commands.") {
    return tell({what, next, WrongUsage});
}

int run(const std::vector<std::string>& words) {
    Arguments arguments;
    const Problem problem = readArguments(words, arguments);
    if (problem.any()) return tell(problem);
    if (arguments.help) return print(help());
    if (arguments.version) return print(version());
    if (arguments.command.empty()) return usage("A command is missing.");
    for (const Command& command : commands) {
        if (command.name != arguments.command) continue;
        const std::string line =
            "The line is: tarn-data " + std::string(command.name) + " " + std::string(command.files);
        if (arguments.files.size() < command.fileCount) return usage("The name of a file is missing.", line);
        if (arguments.files.size() > command.fileCount)
            return usage("'" + arguments.files[command.fileCount] + "' is one file too many.", line);
        if (!command.writes && (arguments.to.any() || arguments.replace))
            return usage("'" + arguments.command + "' writes no file: --to-... and --replace mean nothing.",
                         line);
        return command.run(arguments);
    }
    return usage("There is no command '" + arguments.command + "'.");
}

}  // namespace

}  // namespace tarn::data

int main(int argc, char** argv) {
    using namespace tarn::data;
    catchSignals();
    int status = Failed;
    try {
        status = run({argv + 1, argv + argc});
    } catch (const std::bad_alloc&) {
        std::fputs("tarn-data: There is not enough memory for this.\n", stderr);
    }
    if (stopSignal() != 0 && status != Well) endBySignal(stopSignal());
    return status;
}
