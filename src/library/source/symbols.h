// SPDX-License-Identifier: Apache-2.0
//
// Class text read and changed by light token scanning. `mode` 1: the source is a file's name; 0: it is the
// text, and takes the result. Errors are texts, empty on success; on an error the source is unchanged. A file that is
// missing or cannot be read is an empty text. A text of more than 8000 lines can be read, and is not changed. What is
// written by lines has CR LF behind each.
//
// Cost: one pass over the text; nothing is kept between calls.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

std::string SYMGETUSES(int mode, const std::string& source);  // names separated by blanks
// Both words stand before the first declaration.
bool SYMISCLASS(int mode, const std::string& source, std::string_view word1, std::string_view word2);
std::string SYMGETCLASSNAME(int mode, const std::string& source, std::string_view keyword);
std::string SYMSETCLASSNAME(const std::string& name, int mode, std::string_view keyword, std::string& source);
// Replaces, adds or (with no names) removes the Uses line; more than 8000 lines are refused.
std::string SYMSETUSES(const std::string& names, int mode, std::string& source);
bool ISDECLARATIONSYMBOL(std::string_view word);  // a word in upper case

// ---- functions, and the constants and types that the scan knows; names compare without regard to case ----

// Lines from 1; 0 for what is not there. What stands in the text once, be it a forward declaration, counts as the body.
struct FunctionLines {
    int declStart = 0, declEnd = 0, bodyStart = 0, bodyEnd = 0;
};
FunctionLines SYMFINDFUNCTION(const std::string& name, int mode, const std::string& source);
// Whether there is one; `kind` is what stands in front of "function" in the head of its body: "public callback", or
// nothing.
bool SYMFINDFUNCTION(const std::string& name, int mode, const std::string& source, std::string& kind);
// Puts the text of a function in front of "End class", with an empty line on either side.
std::string SYMADDFUNCTION(const std::string& text, int mode, std::string& source);
// Removes declaration and body, with all up to the item that follows. False if there is no such function, the text has
// too many lines, or the file cannot be written, which sets the error cell.
bool SYMDELETEFUNCTION(const std::string& name, int mode, std::string& source);
// In the heads of declaration and body; the arguments on lines of their own move along.
std::string SYMRENAMEFUNCTION(const std::string& oldName, const std::string& newName, int mode,
                              std::string& source);
// Lines up the arguments below the heads of the functions of that name, or of all: "*". The three lines below
// a head are taken for arguments.
std::string SYMINDENTFUNCHEADER(const std::string& name, int mode, std::string& source);

// Lists the functions of a class; flags: low 4 bits the mode, 1024 "()" behind each name, 2048 " start end",
// 4096 names with a ".", 8192 other declarations, 16384 three blanks in front. One line each.
// A name with a "." is an event handler of a callback: "DLG.load_event", or with 1024 "DLG().load_event".
std::string SYMSCANSOURCE(const std::string& source, int flags);
bool ISMAINCLASS(const std::string& file);  // extension ".cls" and a function main()

// The token string that colours a file of an extension (with or without its dot), made from the settings
// file.
std::string MAKETOKENSTR(const std::string& iniFile, std::string_view extension);
std::string GETHILITELIST(const std::string& iniFile, std::string_view section, std::string_view settingKey,
                          std::string_view listKey);

}  // namespace tarn
