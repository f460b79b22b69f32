// SPDX-License-Identifier: Apache-2.0
//
// tarn-data: looks into data files, turns one form into another, checks and mends those that tables live in;
// without windows. The program is a table of commands (main.cpp); this is what they share.
//
//   commands/  arguments        the command line
//              info             the command of that name; convert, check and rebuild likewise
//              looking          what info and convert see of a source before they act, and their notes
//              checkxbase       check of an Xbase file; mendxbase its rebuild
//              patient          what is known of a file before it is mended, and whether it may be
//   sources/   source           what a file is, and its columns; recordsource those of Xbase and table files
//              layout           how a delimited file is laid out
//              delimited        its rows
//              xmlsource        what an XML file is; xmlrows its rows, xmlcolumns its columns, xmlencoding
//              cells            the rows of any file as texts
//              columns          what the cells of each column are
//              digits           numbers that would lose digits on their way
//              load             rows as a table of typed values; loadrows likewise
//   targets/   target           which form is written, and how
//              totext           rows of cells as delimited text and lines; toxml, toxbase and totable likewise
//   base/      files            reading files, and what they are at first sight
//              encoding         in which encoding a text is; codepage that of an Xbase file
//              shown            texts of files in messages
//              names            names of columns that the language takes
//              problem          what went wrong, and what to do
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
#include <memory>
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
    std::vector<std::string> textColumns;        // those of these names
    std::vector<std::string> nulls;              // cells that are taken as empty
    bool plain = false;                          // delimited text is written without quotes
    bool replace = false;                        // what the target cannot hold is replaced
    bool deleted = false;                        // with the rows that are marked as deleted
    bool toTable = false;                        // the target is a table file, whatever its name
    bool dryRun = false;
    bool progress = false;  // is told where there is no terminal, too
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
    Source();
    ~Source();
    Source(Source&&) = delete;
    std::string file;                    // as it was given
    std::string path;                    // that is read: a copy for text that is not UTF-8
    std::unique_ptr<WorkFolder> folder;  // that it stands in
    std::int64_t begin = 0;              // of the text, behind a mark
    std::int64_t endBytes = 0;           // that are no text, at its end
    std::vector<std::string> headings;   // names of the columns as they stand; empty: none
    std::vector<std::size_t> widths;     // that a line of dashes below them tells
    std::vector<std::string> nulls;      // cells that are taken as empty
    bool crlf = false;                   // delimited: lines end with a carriage return and a line feed
    DataFormat format = FormatUnknown;
    DataOptions options;
    std::string columns;  // type information text, a line for each column, names as they are in the file
    std::int32_t rowsSeen = -1;
    XmlRows xmlRows;                                  // XML: which elements are the rows
    bool text = false, deleted = false;               // as the arguments say
    std::int32_t deletedRows = 0, uncountedRows = 0;  // Xbase: that are not taken
    RowType type;                                     // of a table file
};
// Finds out what a file of rows is: not an index file, and a table file only with a declaration. Extensions
// decide only between lines and delimited text, and give defaults. `isTable`: the declaration is that of this
// file.
Problem identify(const std::string& file, const Arguments& arguments, bool isTable, Source& source);
std::vector<std::string> lineNames(std::string_view columns);
// The whole declaration of the table, named after the file.
std::string declaration(const std::string& file, std::string_view columns);
std::string separatorName(std::int32_t separator);
// Every column as text.
std::string textColumns(std::string_view columns);
// The rows of an Xbase or table file as those of a table file with these columns.
Problem loadRows(const Source& source, std::string_view columns, Rows& rows);

// ---- targets ----

struct Target {
    std::string file;
    DataFormat format = FormatUnknown;
    DataOptions options;
    bool plain = false, replace = false;         // as the arguments say
    std::optional<std::int32_t> headerRows;      // that were asked for
    RowType type;                                // of a table file
    std::vector<std::vector<std::string>> keys;  // of its indexes, if they are given
};
// A file that cannot be a target is wrong usage.
Problem chooseTarget(const std::string& file, const Arguments& arguments, Target& target);
Problem copyXbase(const Source& source, const Target& target);
// The columns of a source, by names of the language, against those of the table file that they shall fill.
Problem fitColumns(const Source& source, std::vector<std::string> names, const RowType& type);
// `source`: where the rows are from.
Problem saveTable(const Source& source, const Target& target, Rows& rows);

}  // namespace tarn::datatool
