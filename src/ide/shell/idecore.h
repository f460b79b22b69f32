// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the modules of the environment share: where its files are, the paths of the settings, and help. Paths come with
// a separator at their end. Nothing is kept: the settings file is read at each use.
#pragma once

#include "kernel/windows/windowing.h"
#include "library/system/system.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// ---- where things are ----
std::string GETAPPDIR();
// `ide.ini` beside the executable if that folder can be written, else in the user's settings folder, where
// the first call makes it from the copy beside the executable. Where none can be made it is that copy, which is
// read, and which nobody can write.
std::string GETIDEINIFILE();
std::string GETCOMPILERDIR();
std::string GETRESOURCEDIR();
std::string GETEXAMPLEDIR();
std::string GETINHERITEDPATHS();    // as they stand, separated by ";"
std::string GETINHERITEDPATHSML();  // one a line
std::string GETINHERITEDLIBPATH();  // the first of them
std::string GETHELPFILE();
std::string GETMESSAGEPAGE(int number);  // a file of its own; empty if it has none
std::string GETMAINCAPTIONSTR();
// The file named on the command line: ".cls" added if it has no extension, the current folder in front unless
// it is rooted; empty if there is none.
std::string GETCOMMANDLINEFILE();
// The same as several files: words that are no name together, while one of them is a file by itself.
std::vector<std::string> GETCOMMANDLINEFILES();
std::string MISSINGFILETEXT(const std::string& file);  // what is told of one that is not there
// Fills the paths that the settings leave empty with what lies beside the executable, and tells programs
// under debug where the settings are.
void PREPARESETTINGS();

// ---- help ----

// The topic of a dialog: its caption with each "-" replaced by "_", without what stands in parentheses behind it.
std::string HELPTOPIC(std::string_view caption);
void SHOWHELP(const std::string& topic);
void SHOWWINDOWHELP(const Object& window);  // on its caption

// ---- errors ----

inline constexpr bool ISFILEERROR(std::int32_t code) {
    return code >= 651 && code <= 659;
}
// For the handler of a module: a box with the error and, below it, what that means and what to do; the program goes on.
void TELLERROR(std::int32_t code, const std::string& sentence);

}  // namespace tarn
