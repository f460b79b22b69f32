// SPDX-License-Identifier: Apache-2.0
//
// The command line of the compiler: from the settings, with the class in it.
#pragma once

#include "platform/resources/resource.h"

#include <string>
#include <vector>

namespace tarn::toolchain {

// What the settings say of the compiler. They are those that lie beside this tool if they name a compiler, else those
// of the environment that this user has installed. A `quarn` beside this tool is the compiler in any case but the
// first: a copied tool folder works with what lies in it.
struct CompilerLine {
    std::string program;             // full path, or a name to be looked for
    std::vector<std::string> words;  // the arguments, "^" for the class without its extension
    bool isOwn = false;              // it is the `quarn` that belongs to this tool
    std::vector<platform::ResourceFolder> resourceFolders;  // what placeholders in resource files stand for
};
CompilerLine findCompilerLine();
// The inherited folders that the line names.
std::vector<std::string> inheritedPath(const CompilerLine& line);

// The arguments for these classes, each with its full path; a compiler that is not our own takes one. Every word reaches
// the compiler as it is. The folder of the main class leads the inherited path, so that every class of the program
// finds the others from wherever it is compiled.
std::vector<std::string> compilerArguments(const CompilerLine& line, const std::vector<std::string>& files,
                                           const std::string& mainFolder,
                                           const std::vector<std::string>& inheritedPath);

}  // namespace tarn::toolchain
