// SPDX-License-Identifier: Apache-2.0
//
// Programs that the toolchain starts, and where its own files stand.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::toolchain {

struct ToolRun {
    bool started = false;
    int code = 0, signal = 0;
    std::string output;   // standard output and error; empty unless it was asked for
    std::string failure;  // why it counts as failed; empty if it ended with code 0
};

// Runs a program to its end. With `outputFile` its output goes there and is read back; the file is removed.
ToolRun runTool(const std::string& program, const std::vector<std::string>& arguments,
                const std::string& outputFile = {});

// The C compiler: the first of cc, gcc and clang on PATH; empty if there is none.
std::string findCCompiler();

// Folder of the running program by the name it was called, with "/".
std::string toolFolder();
// The folder that holds libtarnwick.so: that of the tool, else that of the file behind its link, else the
// system's; without "/" at its end, empty if it is in none of them.
std::string libraryFolder();

// The folder `.tarnwick/` beside a class, in which generated C and object files stand.
std::string workFolder(const std::string& classFile);
// The file in there that is named after the class.
std::string workFile(const std::string& classFile, std::string_view extension);
std::string objectFile(const std::string& classFile);
// The same with a number of this process in its name: what other builds do meanwhile, those included whose make tool has
// died, is another file.
std::string scratchFile(const std::string& classFile, std::string_view extension);
std::string generatedFile(const std::string& classFile);

}  // namespace tarn::toolchain
