// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the modules of the environment share: where its files are, the paths of the settings, and the driver of the
// compiler and the make tool. Paths come with a separator at their end. Nothing is kept: the settings file is read
// at each use.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// ---- where things are ----
std::string GETAPPDIR();
// `ide.ini` beside the executable if that folder can be written, else in the user's settings folder, where the
// first call makes it from the copy beside the executable.
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
// The file named on the command line: ".cls" added if it has no extension, the current folder in front unless it
// is rooted; empty if there is none.
std::string GETCOMMANDLINEFILE();
// Fills the paths that the settings leave empty with what lies beside the executable, and tells programs under
// debug where the settings are.
void PREPARESETTINGS();

// The topic of a dialog: its caption with each "-" replaced by "_".
std::string HELPTOPIC(std::string_view caption);
void SHOWHELP(const std::string& topic);

// ---- compiler and make tool ----
std::string GETCOMPILEREXE();
std::string GETORDOEXE();

struct CompilerOptions {
    int precond = 0, debug = 0;  // levels 0 to 3, as the sum of what is ticked
    int quiet = 0, verification = 0, manifest = 0, shortcutFile = 0, symbols = 0;
    std::string extra, inheritPaths, resourcePaths;
};
CompilerOptions GETCOMPILEROPTIONS();
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
