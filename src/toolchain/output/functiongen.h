// SPDX-License-Identifier: Apache-2.0
//
// The functions of a class to C; see generator.h for the rules.
#pragma once

#include "toolchain/language/tree.h"
#include "toolchain/output/generator.h"
#include "toolchain/output/literals.h"
#include "toolchain/output/shapes.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace tarn::toolchain {

// What the functions of one class file share.
struct Shared {
    Literals literals;
    Shapes shapes;
    std::map<const Declaration*, std::string> windows;  // windows and controls that are named, by their C names
    std::set<const Declaration*> foreign;  // functions and variables that are named, in any class
    std::vector<bool> codeLines;
};

void markCodeLine(Shared& shared, int line);
std::string functionHead(const Declaration& item);
std::string externalHead(const Declaration& item);  // of a library function
std::string generateFunction(const Declaration& item, const GeneratorOptions& options, Shared& shared);
// The statements that give class variables and stored constants their initial values, in a frame of their own.
std::string generateInitialValues(const ClassTree& tree, Shared& shared);

}  // namespace tarn::toolchain
