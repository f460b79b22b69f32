// SPDX-License-Identifier: Apache-2.0
//
// tarn-data: the program. Results go to standard output, problems to standard error: what, where, and what
// can be done. Exit status: 0 all is well, 1 the data could not be handled or has faults, 2 wrong usage. A
// file that is converted to is replaced as a whole or stays as it was.
#include "kernel/run/runtime.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/commands/commands.h"

#include <algorithm>
#include <cstdio>
#include <new>

namespace tarn::datatool {

namespace {

// Texts of files and of the command line do not reach the terminal as they are; line ends do.
std::string printable(const std::string& text) {
    std::string made;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        made.append(at == 0 ? "" : "\n").append(shown(std::string_view(text).substr(at, end - at)));
        at = end + 1;
    }
    return made;
}

}  // namespace

int tell(const Problem& problem) {
    std::fprintf(stderr, "tarn-data: %s\n", printable(problem.what).c_str());
    if (!problem.next.empty()) std::fprintf(stderr, "%s\n", printable(problem.next).c_str());
    return problem.status;
}

void note(const std::string& text) {
    std::fprintf(stderr, "tarn-data: note: %s\n", printable(text).c_str());
}

int print(const std::string& text) {
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (written && std::fflush(stdout) == 0) return Well;
    return tell({"The result cannot be written to standard output.", "Look whether its disk is full."});
}

namespace {

// ---- the program ----

struct Command {
    std::string_view name, files, about;
    std::size_t fileCount;
    CommandBit bit;
    int (*run)(const Arguments&);
};
constexpr Command commands[] = {
    {"info", "FILE", "what FILE is, how many rows it has, and the declaration of its columns", 1, ForInfo,
     info},
    {"convert", "A B", "write the rows of A to B; the extension of B decides: ", 2, ForConvert, convert},
    {"check", "FILE", "what is wrong with a dbf, table or index FILE, a line for each fault", 1, ForCheck,
     check},
    {"rebuild", "FILE", "mend a dbf or table FILE, and make its indexes anew", 1, ForRebuild, rebuild},
};

std::string help() {
    constexpr std::size_t column = 22;
    std::string text = "tarn-data: looks into data files and converts them\n\nCommands:\n";
    for (const Command& command : commands) {
        std::string left = "  " + std::string(command.name) + " " + std::string(command.files);
        left.resize(column, ' ');
        text += left + std::string(command.about) + (command.bit == ForConvert ? DataFormatNames("or") : "") +
                "\n";
    }
    return text + "\nOptions:\n" + optionsHelp() +
           "\nExit status: 0 all is well, 1 the data could not be handled or has faults, 2 wrong usage.\n";
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
    if (arguments.progress) showProgressEverywhere();
    if (arguments.command.empty()) return usage("A command is missing.");
    for (const Command& command : commands) {
        if (command.name != arguments.command) continue;
        const std::string line =
            "The line is: tarn-data " + std::string(command.name) + " " + std::string(command.files);
        if (arguments.files.size() < command.fileCount) return usage("The name of a file is missing.", line);
        if (arguments.files.size() > command.fileCount)
            return usage("'" + arguments.files[command.fileCount] + "' is one file too many.", line);
        for (const Arguments::Given& given : arguments.given) {
            if ((given.commands & command.bit) == 0)
                return usage("'" + given.option + "' means nothing to '" + arguments.command + "'.", line);
        }
        return command.run(arguments);
    }
    return usage("There is no command '" + arguments.command + "'.");
}

}  // namespace

}  // namespace tarn::datatool

int main(int argc, char** argv) {
    using namespace tarn::datatool;
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
