// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the modules of the environment share: where its files are, the paths of the settings, and the driver
// of the compiler and the make tool. Paths come with a separator at their end. Nothing is kept: the settings
// file is read at each use.
#pragma once

#include "library/system/system.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// ---- where things are ----
std::string GETAPPDIR();
// `ide.ini` beside the executable if that folder can be written, else in the user's settings folder, where
// the first call makes it from the copy beside the executable.
std::string GETIDEINIFILE();
std::string GETCOMPILERDIR();
std::string GETRESOURCEDIR();
std::string GETEXAMPLEDIR();
std::string GETINHERITEDPATHS();    // as they stand, separated by ";"
std::string GETINHERITEDPATHSML();  // one a line
std::string GETINHERITEDLIBPATH();  // the first of them
std::string GETHELPFILE();
std::string GETMAINCAPTIONSTR();
std::string REPLACECONSTANTS(std::string text);
// The file named on the command line: ".cls" added if it has no extension, the current folder in front unless
// it is rooted; empty if there is none.
std::string GETCOMMANDLINEFILE();
// Fills the paths that the settings leave empty with what lies beside the executable, and tells programs
// under debug where the settings are.
void PREPARESETTINGS();

// The topic of a dialog: its caption with each "-" replaced by "_".
std::string HELPTOPIC(std::string_view caption);
void SHOWHELP(const std::string& topic);

// ---- compiler and make tool ----
// The error handler of modules that start tools and read what they leave: a tool that cannot be run (901 to
// 909) and a file that cannot be read or written (651 to 659) are told in a box, and the program goes on.
void TOOL_ONERROR(std::int32_t code);
// What a run says beside the tool's messages: it was stopped, died, or failed without a word; empty if none
// of these.
std::string RUNFAULT(const ExecResult& run, const std::string& tool, bool hasMessages);
std::string GETCOMPILEREXE();
std::string GETORDOEXE();

struct CompilerOptions {
    int precond = 0, debug = 0;  // levels 0 to 3, as the sum of what is ticked
    int quiet = 0, verification = 0, manifest = 0, shortcutFile = 0, symbols = 0;
    std::string extra, inheritPaths, resourcePaths;
};
CompilerOptions GETCOMPILEROPTIONS();
// The compiler's success mark, which its messages hold exactly when nothing went wrong.
inline constexpr std::string_view NoErrors = ": 0 errors.";
// The compiler's command line; with `write` it also goes to the settings, where the make tool finds it.
std::string SAVECOMMANDLINE(const CompilerOptions& options, int windowMode, bool write);
void REFRESHCOMMANDLINE();  // from the settings, written back
void COMPILESINGLEFILE(const std::string& file, int windowMode);

struct DependencyList {
    std::string files;  // one a line
    std::string error;  // empty on success
};
// Asks the make tool; `options` is "/fq", "/fa", "/fs" or "/ft".
DependencyList LOADDEPLIST(const std::string& file, const std::string& options, bool fullPaths);
std::vector<std::string> LOADDEPLISTARRAY(const std::string& file, const std::string& options, bool fullPaths,
                                          std::string& error);

}  // namespace tarn
