// SPDX-License-Identifier: Apache-2.0
//
// The classes of a program, what of them is out of date, and their build.
//
// A class that these tools compiled is out of date when its source, or the heads of a class that it sees, have
// another digest than those that its compile noted; when its object is not the one that is noted; and when
// its object or symbol file is older than its source. A class that another compiler compiled is out of date when its
// object or symbol file is missing or older than its source or than the source of a class that it uses. The program
// and the companion of its resources have notes as well (digest.h), without which times decide.
#pragma once

#include "toolchain/build/command.h"
#include "toolchain/build/digest.h"
#include "toolchain/build/options.h"
#include "toolchain/output/messages.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarn::toolchain {

struct SourceClass {
    std::string path, name;
    std::vector<std::size_t> uses;  // numbers of the classes found
    std::string resource;           // its `.rc` twin; empty if there is none
    std::int64_t modified = 0;      // source time
    std::int64_t results = -1;      // time of the older of object and symbol file; -1 if one is missing
    std::int64_t newest = 0;        // source time of it and all that it uses
    bool missingUse = false;
    bool readable = true;
    bool isMain = false;

    Digest source = 0, reach = 0;  // now; see CompileRecord
    Heads heads;
    std::optional<CompileRecord> record;  // of the last compile
    std::string objectBytes;              // of the object that is there
    Digest object = 0;                    // of these; 0 if there is none
};

// A program: its classes, those that others use first, the main class last.
struct Sources {
    std::vector<SourceClass> classes;
    std::string exe, companion;  // the companion only if there are resources
};
// Cost: reads each source, object and symbol file once; a source that has changed is parsed.
Sources findSources(const std::string& mainFile, const std::vector<std::string>& inheritedPath);

bool isOutOfDate(const SourceClass& item);
bool companionIsOutOfDate(const Sources& sources);
bool exeIsOutOfDate(const Sources& sources);

// What the program and the companion are made of, for their notes.
Digest programInputs(const Sources& sources);
Digest companionInputs(const Sources& sources);
// The file of the note of `result`, in the work folder.
std::string noteFile(const std::string& result);

// The answer to a query, one path a line.
std::string answerQuery(const MakeOptions& options, const CompilerLine& line, const Sources& sources);

// What a build did: the messages of the failed compiles as they came, then those of the make tool itself.
struct BuildResult {
    bool ok = false;
    std::string report;
    std::string compilerFolder;  // where the environment looks for the messages
};
// `sources` as found for these options.
BuildResult build(const MakeOptions& options, const CompilerLine& line, Sources sources);

}  // namespace tarn::toolchain
