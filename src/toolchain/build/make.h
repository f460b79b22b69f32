// SPDX-License-Identifier: Apache-2.0
//
// The classes of a program, what of them is out of date, and their build. A class is out of date when its
// object or symbol file is missing or older than its source or than the source of a class that it uses,
// directly or not; the resources when their companion is older than one of the `.rc` twins; the program when
// it is older than an object.
#pragma once

#include "toolchain/build/options.h"
#include "toolchain/output/messages.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::toolchain {

struct SourceClass {
    std::string path, name;
    std::vector<std::size_t> uses;  // numbers of the classes found
    std::string resource;           // its `.rc` twin; empty if there is none
    std::int64_t newest = 0;        // source time of it and all that it uses
    bool missingUse = false;
    bool readable = true;
    bool isMain = false;
};

// A program: its classes, those that others use first, the main class last.
struct Sources {
    std::vector<SourceClass> classes;
    std::string exe, companion;  // the companion only if there are resources
};
Sources findSources(const std::string& mainFile, const std::vector<std::string>& inheritedPath);

bool isOutOfDate(const SourceClass& item);
bool companionIsOutOfDate(const Sources& sources);
bool exeIsOutOfDate(const Sources& sources);

// The answer to a query, one path a line.
std::string answerQuery(const MakeOptions& options, const Sources& sources);

// What a build did: the messages of the failed compiles as they came, then those of the make tool itself.
struct BuildResult {
    bool ok = false;
    std::string report;
    std::string compilerFolder;  // where the environment looks for the messages
};
BuildResult build(const MakeOptions& options, const Sources& sources);

}  // namespace tarn::toolchain
