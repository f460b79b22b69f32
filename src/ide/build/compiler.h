// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the environment asks of the compiler and the make tool: the compiler's command line as the settings want it, one
// class compiled, and the files that a program is made of. Nothing is kept: the settings are read at each use.
#pragma once

#include <string>
#include <vector>

namespace tarn {

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
