// SPDX-License-Identifier: Apache-2.0
//
// The functions of a class to C; see generator.h for the rules.
#pragma once

#include "toolchain/language/tree.h"
#include "toolchain/output/generator.h"
#include "toolchain/output/literals.h"

#include <set>
#include <string>
#include <vector>

namespace tarn::toolchain {

// What the functions of one class file share.
struct Shared {
    Literals literals;
    std::set<const Declaration*> foreign;  // items of other classes that are named
    std::vector<bool> codeLines;
};

const char* cType(Type type);
std::string functionHead(const Declaration& item);
std::string generateFunction(const Declaration& item, const GeneratorOptions& options, Shared& shared);
// The statements that give class variables their initial values, in a frame of their own.
std::string generateInitialValues(const ClassTree& tree, Shared& shared);

}  // namespace tarn::toolchain
