// SPDX-License-Identifier: Apache-2.0
//
// The script of an installer, as the packager writes it (docs/formats/iss.md). Sections and keys that are not known, and
// values that this system has no meaning for, are errors with a line: nothing is passed over in silence. No name may lead
// out of the folder that is installed.
#pragma once

#include "toolchain/setup/package.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn::setup {

struct ScriptError {
    int line = 0;  // 0: of the script as a whole
    std::string text;
};

struct Script {
    Package package;                   // its files without sizes
    std::vector<std::string> sources;  // of the files, in their order
};

// All that is wrong, in the order of the lines; empty if nothing is.
std::vector<ScriptError> readScript(std::string_view text, Script& script);

}  // namespace tarn::setup
