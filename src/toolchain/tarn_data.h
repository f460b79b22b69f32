// SPDX-License-Identifier: Apache-2.0
//
// tarn-data: looks into data files and turns one form into another, without windows. The program is a table
// of commands (tarn_data.cpp); this is what they share.
//
//   tarn_data_arguments   the command line
//   tarn_data_source      what a file is, and its rows as a table of typed values
//   tarn_data_target      what the other form cannot hold, and the writing
//   tarn_data_progress    progress on a terminal, and stopping
#pragma once

#include "kernel/adt.h"
#include "kernel/data/datafile.h"
#include "toolchain/tarn_data_names.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::data {

enum ExitStatus { Well = 0, Failed = 1, WrongUsage = 2, Stopped = 128 };  // Stopped: ended by a signal

// What is wrong, where, and what the user can do. Without `what` all is well.
struct Problem {
    std::string what, next;
    ExitStatus status = Failed;
    [[nodiscard]] bool any() const { return !what.empty(); }
};

// ---- the command line ----

// What was given of the layout of a delimited file.
struct Layout {
    std::optional<std::int32_t> separator, headerRows, footerRows, maxRows;
    [[nodiscard]] bool any() const { return separator || headerRows || footerRows || maxRows; }
};
struct Arguments {
    std::string command;
    std::vector<std::string> files;
    Layout from, to;
    bool text = false;     // columns are text, as they stand
    bool replace = false;  // what the target cannot hold is replaced
    bool help = false, version = false;
};
// `arguments` without the name of the program.
Problem readArguments(const std::vector<std::string>& arguments, Arguments& read);
std::string optionsHelp();  // a line for each option

// ---- sources ----

struct Source {
    std::string file;
    DataFormat format = FormatUnknown;
    TabOptions options;
    std::string columns;  // type information text, a line for each column, names as they are in the file
    std::int32_t rowsSeen = -1;
    XmlRows xmlRows;  // XML: which elements are the rows
};
// Finds out what a file is. Extensions decide only between lines and delimited text, and give defaults.
Problem identify(const std::string& file, const Arguments& arguments, Source& source);
std::vector<std::string> columnNames(std::string_view columns);
// The whole declaration of the table, named after the file.
std::string declaration(const Source& source, std::string_view columns);
std::string separatorName(std::int32_t separator);
// The rows of a file with these columns. Strings have no upper length here: memory goes by what they hold.
Problem loadRows(const Source& source, std::string_view columns, TableValue& table);
// Every column as text.
std::string textColumns(std::string_view columns);

// ---- targets ----

struct Target {
    std::string file;
    DataFormat format = FormatUnknown;
    TabOptions options;
};
// A file that cannot be a target is wrong usage.
Problem chooseTarget(const std::string& file, const Layout& layout, Target& target);
// Finds the first cell that the target cannot hold, or with `replace` changes all of them.
Problem fitRows(const Target& target, bool replace, std::string_view columns, TableValue& table);
Problem saveRows(const Target& target, const TableValue& table);

// ---- progress ----

// For the lifetime of this, the work that is named shows how far it is, and signals stop it.
class Work {
public:
    explicit Work(const std::string& what);
    ~Work();
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;
};
void catchSignals();
// The signal that asked to stop, 0 for none.
int stopSignal();
// Ends this process by that signal.
[[noreturn]] void endBySignal(int signal);

}  // namespace tarn::data
