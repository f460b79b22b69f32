// SPDX-License-Identifier: Apache-2.0
//
// Class text read and changed by light token scanning. `mode` 1: the source is a file's name; 0: it is the
// text. Errors are texts, empty on success; on an error the source is unchanged.
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
