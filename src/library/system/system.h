// SPDX-License-Identifier: Apache-2.0
//
// The library class that every module sees without naming it. Its functions leave errors in the cell for the
// caller's next stamp. Positions are 1-based byte positions.
#pragma once

#include "kernel/data/datafile.h"
#include "kernel/windows/windowing.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// ---- strings ----
int STRFIND(std::string_view what, std::string_view text, int from = 1,
            bool ignoreCase = true);  // 0: not found
std::string STRLEFT(std::string_view text, int count);
std::string STRRIGHT(std::string_view text, int count);
std::string STRTRIM(std::string_view text);  // blanks, tabs, CR, LF on both sides
std::string STRLTRIM(std::string_view text);
std::string STRRTRIM(std::string_view text);
std::string STRRTRIMCRLF(std::string_view text);
std::string STRLOWER(std::string_view text);  // ASCII letters
std::string STRUPPER(std::string_view text);
bool STREQUAL(std::string_view a, std::string_view b);  // without regard to case
int STRLINES(std::string_view text);                    // the number of newlines
std::string STRLINE(std::string_view text, int n);      // line n without its line end; empty outside
std::string STRNL2CRNL(std::string_view text);
std::string STRADDQUOTES(std::string_view text);
std::string STRREMOVEQUOTES(std::string_view text);
std::string STRREPLACE(std::string_view text, std::string_view what, std::string_view with,
                       bool ignoreCase = true);
std::string STRMAKE(int count, int character);
std::string STRNAMECASE(std::string_view text);
// More than 40 lines are cut to 39 and "...(more)...".
// (`most` other than 40: as many lines, one less and the mark.)
std::string LIMITLINES(std::string_view text, int most = 40);
std::string STR(int value);
std::string HEXSTR(std::uint32_t value, int width);
std::uint32_t HEXVAL(std::string_view text);
bool ISDIGITS(std::string_view text);
// A whole text that is an integer (optional sign, digits); `ok` tells.
int CVTI(std::string_view text, bool& ok);
std::string KEYSTR(int keyCode);

// ---- files: both separators are understood; composed paths use the platform's ----
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
bool DIRCHK(std::string_view path);
bool FILECHK(std::string_view path);
bool ISROOTED(std::string_view path);            // has a drive or begins with a separator
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
// "/" added if it has no separator at its end; the empty text stays empty, so that it never becomes the root.
std::string FILEADDSEPARATOR(std::string_view directory);
std::string GETCURDIR();  // without a separator at its end
void SETCURDIR(const std::string& directory);
// The first of the folders in `paths` (separated by ";") that holds `file`; empty if none does.
std::string FILEFINDPATHNAME(std::string_view paths, std::string_view file);
// Replaces each `mark` and the file-name characters behind it by base + those characters, in double quotes.
std::string FILESUBSTITUTENAME(std::string_view line, std::string_view mark, std::string_view base);

// Whole files as text. A failure sets 651 to 654 or 657 and `false`; SAVEFILE keeps the old contents then.
bool LOADFILE(const std::string& file, std::string& text);
bool SAVEFILE(const std::string& file, std::string_view text);
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
void FILEDELETE(const std::string& file);  // one that does not exist is no error
// Copies bytes, time and, where it can, permissions; both must be full paths (FILECHK). A destination without
// a folder lies beside the source, on its drive; one that ends with a separator gets the source's name. With
// `confirm` the user is asked before a file is replaced. False when nothing was copied (659 if the copy has
// another size); a copy onto itself is true.
bool FILECOPY(const std::string& source, const std::string& dest, bool confirm);

// ---- programs ----
// Runs a program. `mode`: low four bits the window state; then 0 disable the windows and wait, 32 wait with
// the windows enabled, 16 wait at most 5000 ms. Failures set 901 to 909. A tool that is waited for can be
// stopped by the user; one that dies by a signal counts as failed: its code is then 128 + the signal. One
// that cannot even be forced to end counts as killed. " > file" behind the arguments sends the output there.
// A program without a folder is sought on PATH.
struct ExecResult {
    bool started = false, stopped = false;  // stopped: by the user
    int code = 0, signal = 0;
};
// It starts in `folder`; an empty one is the current folder.
ExecResult EXEC(const std::string& program, const std::string& arguments, int mode,
                const std::string& folder = {});
// An argument line split as the tools read it: blanks separate, double quotes enclose.
std::vector<std::string> SPLITARGUMENTS(std::string_view line);
// The file to start for a tool's name: `x.exe`, else `x` beside it; empty if neither is there with content.
std::string FINDTOOL(const std::string& path);

// ---- words ----
bool ISRESERVEDWORD(std::string_view word);
bool ISFUTURERESERVEDWORD(std::string_view word);
// The token reader that all text-form parsers share; `position` is 1-based and ends behind the token. Empty
// at the end of the text, and where no token stands: `position` then stays at that character.
std::string NextWord(std::string_view text, std::size_t& position);

// ---- names for identifiers ----
// At most `maxLength` letters and digits; see TypeInfoIdentifier. Letters are kept, and digits behind the
// first character; all else becomes `replacement`, '_' too. A first character that is no letter becomes
// `replacement` if that begins with a letter, else "n".
std::string STRTOIDENTIFIER(std::string_view text, int maxLength, std::string_view replacement);
// Keeps '_' and the length. A first character that is neither a letter nor one of `firstSet` gets the first
// of `replacement` put ahead of it; that stands for each other character that cannot be in an identifier,
// which is left out when `replacement` is empty.
std::string STRTOIDENTIFIER(std::string_view text, std::string_view firstSet, std::string_view replacement);
// Makes the names of a type information text identifiers of the language: by the first form above with "_",
// and "_1" behind words that are reserved, now or for later; an empty name becomes "n". A name stands in
// double quotes or brackets, or ends where the line's reader ends it, or, with blanks in it, at " : ", or
// else at the first blank. Closing lines stay as they are, in any case. With `dropDeleteFlag` lines
// "delete_flag : Tchar" are left out.
std::string TYPEINFOFIXIDENTIFIERS(std::string_view text, int maxLength, bool dropDeleteFlag = false);
// By the second form above without a first set, and "_1" behind words that are reserved now. Lines without
// " : " behind the name, and "delete_flag : Tchar", stay as they are.
std::string TYPEINFOFIXIDENTIFIERS(std::string_view text, std::string_view replacement);
// In place: a text that cannot hold the repaired one stays as it was, with the error (804, 802); one of fixed
// length is cut with 615. 756 for what is no string.
void TYPEINFOFIXIDENTIFIERS(StringDescriptor* text, int maxLength, bool dropDeleteFlag = false);
// The lines are the strings of a list (761), which likewise stays as it was (618, 804, 802), except for the
// cut of single strings. One that is held in a file must be open.
void TYPEINFOFIXIDENTIFIERS(ListDescriptor* lines, int maxLength, bool dropDeleteFlag = false);

// ---- resources ----
// Words such as PRELOAD or FIXED, which may stand between the kind and the path of a resource line.
bool IS_RESOURCE_MEMORY_OPTS(const std::string& word);
// The path of a BITMAP, an INCFILE or a DBFILE as the resource file tells it; empty if there is no such one.
std::string RESOURCEGETFILENAME(const std::string& file, const std::string& kind, const std::string& name);

// ---- windows ----
Object FINDCONTROL(const Object& window, std::string_view name);
void MSGBOX(const std::string& title, const std::string& text);  // one OK
// Pages of the web open in the browser at the topic's anchor; all that cannot be shown is told in a box.
void MULTIHELP(int owner, const std::string& helpFile, int command, const std::string& topic);

}  // namespace tarn
