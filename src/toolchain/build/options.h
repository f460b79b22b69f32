// SPDX-License-Identifier: Apache-2.0
//
// The command lines of the two tools. Options begin with `/` or `-`. Option words are matched whole; anything
// else that begins with `/` is a path. docs/language.md lists the options.
#pragma once

#include "toolchain/output/messages.h"

#include <string>
#include <vector>

namespace tarn::toolchain {

struct CompilerOptions {
    std::vector<std::string> files;
    int precond = 0, debug = 0;
    bool quiet = false;
    int maxSymbols = 0;  // 0: no limit
    std::vector<std::string> inheritedPath, resourcePath;
    std::string mainFolder;           // leads the inherited path; may hold any character
    std::vector<std::string> others;  // as given, without their sign: v, om, os, lwN, gX
};

// What is wrong is added to `messages`, without a line.
CompilerOptions readCompilerOptions(const std::vector<std::string>& arguments, Messages& messages);
// The options as the symbol file keeps them, in lower case with "-" in front; the debug level is always
// there.
std::string describeOptions(const CompilerOptions& options);

enum class MakeMode : char {
    Make = 'm',     // build what is out of date
    All = 'a',      // build all; as a query: all classes
    Quick = 'q',    // as Make; as a query: what is out of date
    Sources = 's',  // query: all inputs
    Targets = 't',  // query: all outputs
};

struct MakeOptions {
    std::string file, outputFile;
    MakeMode mode = MakeMode::Make;
    bool query = false;
    std::vector<std::string> inheritedPath;
};

MakeOptions readMakeOptions(const std::vector<std::string>& arguments, Messages& messages);

}  // namespace tarn::toolchain
