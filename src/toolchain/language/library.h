// SPDX-License-Identifier: Apache-2.0
//
// The library functions that a class sees without naming them: a table of their forms, each with the name of
// the C function behind it. A string result is the last argument of that C function.
#pragma once

#include "toolchain/language/tree.h"

#include <string>
#include <vector>

namespace tarn::toolchain {

struct LibraryParameter {
    Type type;
    Mode mode = Mode::In;
};

struct LibraryFunction {
    const char* name;  // folded
    const char* cName;
    Type result;
    std::vector<LibraryParameter> parameters;
};

// The forms of a function; empty if there is none of that name.
std::vector<const LibraryFunction*> findLibraryForms(const std::string& foldedName);
const std::vector<LibraryFunction>& libraryFunctions();

}  // namespace tarn::toolchain
