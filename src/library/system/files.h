// SPDX-License-Identifier: Apache-2.0
//
// The file family of the system library: paths as texts, facts about files, whole files and whole values,
// copies and shortcuts. In paths both separators are understood; composed ones use the platform's. Functions
// leave errors in the cell for the caller's next stamp: 651 cannot be read, 652 cannot be written, 653 it
// disappeared, 654 the disk is full, 657 the name is not allowed.
#pragma once

#include "kernel/data/datafile.h"
#include "kernel/values/owned.h"
#include "kernel/values/strings.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// ---- paths; these neither touch the disk nor fail ----

// The drive is what stands up to a ":" in front of the first separator, the directory reaches to the last
// separator, the extension begins at the last dot of the rest.
struct PathParts {
    std::string drive, directory, name, extension;
};
PathParts SPLITPATH(std::string_view path);
std::string FILEGETDRIVE(std::string_view path);
std::string FILEGETDIR(std::string_view path);    // drive and directory, with its last separator
std::string FILEGETFNAME(std::string_view path);  // name and extension
std::string FILEGETEXT(std::string_view path);    // with its dot
std::string FILEBASENAME(std::string_view path);  // name without folder and extension
std::string FILECHANGEEXT(std::string_view path, std::string_view extension);
bool FILENAMECHAR(char c);  // may stand in a file name; bytes from 128 up are letters of some script
// Whether the text has the form of a full path: a drive or the root, folders each ended by one separator, and
// file-name characters alone. FILECHK wants a file's name behind them.
bool DIRCHK(std::string_view path);
bool FILECHK(std::string_view path);
bool ISROOTED(std::string_view path);  // has a drive or begins with a separator
// "/" added if it has no separator at its end; the empty text stays empty, so that it never becomes the root.
std::string FILEADDSEPARATOR(std::string_view directory);
// Replaces each `mark` and the file-name characters behind it by base + those characters, in double quotes.
std::string FILESUBSTITUTENAME(std::string_view line, std::string_view mark, std::string_view base);

// ---- facts ----

std::int64_t FileSize(const std::string& path);  // -1 if it does not exist
std::string FILETIME(const std::string& path);   // "YYYY-MM-DD hh:mm:ss", empty if it does not exist
// Names in `directory` (which they begin with) of the form stem, number, extension, digits at the end of the
// stem and the case of letters aside: the one with the highest number there is (stem and extension if there
// is none), and the next, counting from 1. The extension may stand without its dot.
struct TempNames {
    std::string last, next;
};
TempNames FILETEMPNAMES(std::string_view directory, std::string_view stem, std::string_view extension);
// In the current folder, and with ".tmp".
TempNames FILETEMPNAMES(std::string_view stem, std::string_view extension);
TempNames FILETEMPNAMES(std::string_view stem);
// The next of them: an unused name.
std::string FILETEMPNAME(std::string_view directory, std::string_view stem, std::string_view extension);
std::string GETCURDIR();  // without a separator at its end
void SETCURDIR(const std::string& directory);
// The first of the folders in `paths` (separated by ";") that holds `file`; empty if none does.
std::string FILEFINDPATHNAME(std::string_view paths, std::string_view file);

// ---- whole files ----

// As text. A failure sets 651 to 654 or 657 and `false`; SAVEFILE keeps the old contents then.
bool LOADFILE(const std::string& file, std::string& text);
bool SAVEFILE(const std::string& file, std::string_view text);
bool SAVEFILE(const std::string& file, const std::vector<std::string>& lines);  // each ended by a newline
// What a failed SAVEFILE says to the user: what went wrong and where the text is safe. Empty unless the last
// of all SAVEFILEs and LOADFILEs was a SAVEFILE that failed.
std::string SAVEFILEREPORT();

// Whole values of the language, by a format of datafile.h: 1 lines, 2 commas, 3 packed, 5 Xbase, 6 XML,
// 7 tabs.
// `options` is the options record of delimited text; null and an empty one mean the defaults of the format.
// The first failure is set in the cell too (see DataResult); a file that cannot be read, and a file that
// cannot be written, stay as they are, and so does the value then. 658 for any other format. The user sees
// how far a long one is and can stop it: 651 and 652 then, so that no program takes it for done.
DataResult LOADFILE(const std::string& file, std::int32_t format, const RecordDescriptor* options,
                    void* value, Kind kind);
DataResult SAVEFILE(const std::string& file, std::int32_t format, const RecordDescriptor* options,
                    const void* value, Kind kind);
// The same, without options, and without a format, which is then 3: a string is its bytes.
DataResult LOADFILE(const std::string& file, std::int32_t format, void* value, Kind kind);
DataResult SAVEFILE(const std::string& file, std::int32_t format, const void* value, Kind kind);
DataResult LOADFILE(const std::string& file, void* value, Kind kind);
DataResult SAVEFILE(const std::string& file, const void* value, Kind kind);
// By the kind of the value itself: string, record, union, set, array, list, table.
inline DataResult LOADFILE(const std::string& file, String& value) {
    return LOADFILE(file, value.get(), KindString);
}
inline DataResult SAVEFILE(const std::string& file, const String& value) {
    return SAVEFILE(file, value.get(), KindString);
}
template <class Descriptor, Kind kind>
DataResult LOADFILE(const std::string& file, Owned<Descriptor, kind>& value) {
    return LOADFILE(file, value.get(), kind);
}
template <class Descriptor, Kind kind>
DataResult SAVEFILE(const std::string& file, const Owned<Descriptor, kind>& value) {
    return SAVEFILE(file, value.get(), kind);
}

void FILEDELETE(const std::string& file);  // one that does not exist is no error
// Copies bytes, time and, where it can, permissions; both must be full paths (FILECHK). A destination without
// a folder lies beside the source, on its drive; one that ends with a separator gets the source's name. With
// `confirm` the user is asked before a file is replaced. The destination is the whole copy or what it was
// before. False when nothing was copied: the user said no, a path is none, or an error is in the cell (651 for
// a source that is no file of a disk, 659 if the copy has another size). A copy onto itself, under whatever
// name, is true and changes nothing; a file whose name differs by the case of letters alone is left alone, and
// that is false. The user sees how far a long copy is and can stop it: 652 then. Cost: linear, in memory
// bounded.
bool FILECOPY(const std::string& source, const std::string& dest, bool confirm = false);

// Makes the desktop's kind of shortcut, a file whose name ends in ".desktop", in place of the extension ".lnk"
// or behind a name without either: one that starts a program with its arguments in a folder, or opens `target`
// when that is no program. The name of the file without its extension is what the user sees. `target` must be
// a full path (DIRCHK; 657) that exists (651). False, with the code of SAVEFILE, when it cannot be written.
bool FILECREATESHORTCUT(const std::string& shortcut, const std::string& target);
bool FILECREATESHORTCUT(const std::string& shortcut, const std::string& target, const std::string& arguments);
bool FILECREATESHORTCUT(const std::string& shortcut, const std::string& target, const std::string& arguments,
                        const std::string& folder, const std::string& icon);

}  // namespace tarn
