// SPDX-License-Identifier: Apache-2.0
//
// tarn-data: looks into data files, turns one form into another, checks and mends those that tables live in;
// without windows. The program is a table of commands (main.cpp); this is what they share.
//
//   commands/  arguments        the command line
//              info             the command of that name; convert, check and rebuild likewise
//              patient          what is known of a file before it is mended, and whether it may be
//   sources/   source           what a file is, and its columns
//              load             its rows as a table of typed values; loadrows likewise
//              digits           numbers that would lose digits on their way
//   targets/   target           what the other form cannot hold, and the writing; toxbase and totable likewise
//   base/      files            reading files, and what they are at first sight
//              rows             tables of rows on their way
//              xbase            Xbase files as they stand
//              rowtype          declarations of rows
//              tables           table files, and the index files beside them
//              progress         progress on a terminal, and stopping
#pragma once

#include "kernel/data/datafile.h"
#include "kernel/run/runtime.h"
#include "tarn_data/base/names.h"
#include "tarn_data/base/rows.h"
#include "tarn_data/base/rowtype.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::datatool {

// ---- the command line ----

// What was given of the layout of a delimited file.
struct Layout {
    std::optional<std::int32_t> separator, headerRows, footerRows, maxRows;
    [[nodiscard]] bool any() const { return separator || headerRows || footerRows || maxRows; }
};
// A bit for each command, so that an option tells for which ones it is.
enum CommandBit : unsigned { ForInfo = 1, ForConvert = 2, ForCheck = 4, ForRebuild = 8 };

struct Arguments {
    std::string command;
    std::vector<std::string> files;
    Layout from, to;
    std::string type;                            // the file with the declaration of a table file's row
    std::vector<std::vector<std::string>> keys;  // the fields of each index
    bool text = false;                           // columns are text, as they stand
    bool replace = false;                        // what the target cannot hold is replaced
    bool deleted = false;                        // with the rows that are marked as deleted
    bool toTable = false;                        // the target is a table file, whatever its name
    bool dryRun = false;
    bool help = false, version = false;
    struct Given {
        std::string option;
        unsigned commands;
    };
    std::vector<Given> given;
};
// `arguments` without the name of the program.
Problem readArguments(const std::vector<std::string>& arguments, Arguments& read);
std::string optionsHelp();  // a line for each option

// ---- commands ----

int tell(const Problem& problem);    // on standard error; gives its status
void note(const std::string& text);  // there, too: something the user should know
int print(const std::string& text);  // on standard output

int info(const Arguments& arguments);
int convert(const Arguments& arguments);
int check(const Arguments& arguments);
int rebuild(const Arguments& arguments);

// ---- sources ----

struct Source {
    std::string file;
    DataFormat format = FormatUnknown;
    DataOptions options;
    std::string columns;  // type information text, a line for each column, names as they are in the file
    std::int32_t rowsSeen = -1;
    std::int32_t rowBehind = 0;  // delimited: the first one behind the empty line that ends those seen; or 0
    XmlRows xmlRows;             // XML: which elements are the rows
    std::vector<std::int32_t> longest;   // of each column: characters of its texts; empty: not known
    bool text = false, deleted = false;  // as the arguments say
    bool willChange = false;             // the rows must be copies in memory
    std::int32_t deletedRows = 0, uncountedRows = 0;  // Xbase: that are not taken
    RowType type;                                     // of a table file
};
// Finds out what a file of rows is: not an index file, and a table file only with a declaration. Extensions
// decide only between lines and delimited text, and give defaults. `isTable`: the declaration is that of this
// file.
Problem identify(const std::string& file, const Arguments& arguments, bool isTable, Source& source);
std::vector<std::string> columnNames(std::string_view columns);
// The whole declaration of the table, named after the file.
std::string declaration(const std::string& file, std::string_view columns);
std::string separatorName(std::int32_t separator);
// Every column as text.
std::string textColumns(std::string_view columns);
// The rows of a file with these columns. Strings have no upper length here, unless the rows are those of a
// table file or go into one (`exact`): memory goes by what they hold.
Problem loadRows(const Source& source, std::string_view columns, bool exact, Rows& rows);
// The columns were found in the rows up to the first empty line. Rows with content behind it would be read by
// columns that do not know them.
Problem checkEmptyLine(const Source& source);
// Columns whose numbers have digits that a real does not hold become text, and a note says so.
Problem keepDigits(Source& source);
// The numbers of a source against the fields of the table file that they shall fill, by their place: the
// first one whose digits its field does not hold.
Problem checkDigits(const Source& source, const RowType& type);
// The columns of a file whose types do not fit each other, when they are to be text.
Problem identifyTexts(Source& source, const DataFileInfo& info);

// ---- targets ----

struct Target {
    std::string file;
    DataFormat format = FormatUnknown;
    DataOptions options;
    RowType type;                                // of a table file
    std::vector<std::vector<std::string>> keys;  // of its indexes, if they are given
};
// A file that cannot be a target is wrong usage.
Problem chooseTarget(const std::string& file, const Arguments& arguments, Target& target);
// Finds the first cell that the target cannot hold, or with `replace` changes all of them. May change the
// names of columns, too.
Problem fitRows(const Target& target, bool replace, std::string& columns, Rows& rows);
Problem saveRows(const Target& target, std::string_view columns, Rows& rows);

// ---- Xbase files and table files as targets ----

Problem fitXbase(bool replace, std::string& columns, Rows& rows);
Problem saveXbase(const Target& target, std::string_view columns, Rows& rows);
Problem copyXbase(const Source& source, const Target& target);
// The columns of a source, by name, against those of the table file that they shall fill.
Problem fitColumns(const Source& source, std::string_view columns, const RowType& type);
Problem saveTable(const Target& target, Rows& rows);

// Lets `fitting` look at each row: its `row` gives what does not fit, and `changed` tells whether it changed
// the row, which is then kept.
template <class Fitting>
Problem fitEachRow(Fitting& fitting, Rows& rows, Problem problem) {
    rows.beginBatch();
    for (std::int32_t i = 1; i <= rows.count() && !problem.any(); ++i) {
        RecordDescriptor* const row = rows.at(i);
        if (row != nullptr) problem = fitting.row(row, i);
        if (fitting.changed() && !problem.any() && ErrorCell() == 0) rows.keep();
        if (ErrorCell() != 0) problem = {ErrorMessage(ErrorCell()) + ".", ""};
    }
    ClearError();
    return problem;
}

}  // namespace tarn::datatool
