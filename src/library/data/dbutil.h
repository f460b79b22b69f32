// SPDX-License-Identifier: Apache-2.0
//
// The compiler's messages: lines of the form  file ( line ) : [error|fatal] number rest. And what programs
// need around data files: how a delimited file is probably laid out, and texts of the user as options.
#pragma once

#include "kernel/values/values.h"

#include <string>
#include <string_view>

namespace tarn {

// `position` at least 1: the message at that character; below 1: all messages, a line each. A message reads
// as "file" line number; "- 0 0" if there is none. A file without drive and folder is looked up in
// `searchPaths`.
std::string FILEGETERROR(std::string_view text, int position, std::string_view searchPaths);

struct ErrorLine {
    std::string file;
    int line = 0, number = 0;
};
// One line from `position` (1-based), which ends at the start of the next line.
ErrorLine FILEGETERRORLINE(std::string_view text, std::size_t& position);

// ---- data files ----

bool ISDBASEFILE(std::string_view name);  // the extension is .dbf or .xbf, in any case

// How a delimited text file is probably laid out, from its first two lines, as texts for the user to change.
struct PossibleFileDetails {
    std::string headerRows = "0";
    std::string separator = ",";  // "\t" for a tab
};
// A file that cannot be read gives the above, without an error.
PossibleFileDetails GETPOSSIBLEFILEDETAILS(const std::string& filename);

// What the user wrote for a separator: trimmed, without one pair of quotes of either kind around it, and with
// the escapes \t \n \r \" \\ and \xNN resolved.
std::string GETSEPARATOR(std::string_view text);

// Makes `record`, whose old content is freed, the options record of four texts; a text that is no number
// counts as 0. The code of the separator is that of its first character, 0 for none. More than one character
// goes through GETSEPARATOR first. On failure (802) the record is all zero.
void GETOPTIONSRECORD(std::string_view headerRows, std::string_view footerRows, std::string_view separator,
                      std::string_view maxRows, RecordDescriptor* record);

// For a folder without a drive: whether its absolute form is one of `paths` (separated by ";"), in any case.
bool DIRFINDPATH(std::string_view directory, std::string_view paths);

// Opens a data file as a table that is held in a file. A file that is not there is made, a table file of its
// own; files of Xbase (.dbf, .xbf), of packed values (.bin) and of unknown extensions are the table's rows
// themselves. Of XML (.xml) and text (.tab, .csv, .txt) the rows go to a scratch file beside it, whose
// extension begins with "~"; an older one is deleted, unless another table of this program was opened with
// it: 652, and nothing has changed then. `options` is an options record or null; its separator decides
// between the forms of delimited text. All rows are read, whatever it says of their number. When a row cannot
// be read, too, the table is not open: saving it later would lose the row. On any error no scratch file is
// left and the data file is as it was.
//
// A table file that was made under the name of such a form is opened directly again. A byte 0 in its first 64
// KiB tells one, unless they begin as UTF-16 text does, whatever its size and indexes: what is wrong with
// those is told as FileOpen does (655, 656). Rows without such a byte are told by the first index: it names
// the file; or it names none beside it, and the size is that of whole rows.
void TABOPEN(const std::string& filename, const RecordDescriptor* options, TableDescriptor* table);
// Closes a table of TABOPEN. One whose rows stand elsewhere than in `filename` (under whatever name) is saved
// there first if `save`, by the form that belongs to the extension (658 for one that has none); then a
// scratch file goes, with its indexes. Footer lines of a delimited file, as many as the options say, stay as
// they were when they say more than the number of rows. When saving failed the table stays open, and nothing
// is lost. Nor is a file saved over by a table that could not be closed when reading its rows had failed:
// 652.
void TABCLOSE(const std::string& filename, const RecordDescriptor* options, bool save,
              TableDescriptor* table);

int STRCHARCOUNT(std::string_view text, char character);

struct LineTokens {
    std::string a, b, c;
};
// The first three runs between blanks and tabs; empty where there is none.
LineTokens GETLINETOKENS(std::string_view line);

}  // namespace tarn
