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

// By what the program calls them, so that the same text becomes the same C.
struct DeclarationOrder {
    bool operator()(const Declaration* a, const Declaration* b) const;
};

// What the functions of one class file share.
struct Shared {
    Literals literals;
    Shapes shapes;
    std::map<const Declaration*, std::string, DeclarationOrder>
        windows;  // that are named, with their C names
    std::set<const Declaration*, DeclarationOrder>
        foreign;  // functions and variables that are named, in any class
    std::vector<bool> codeLines;
};

void markCodeLine(Shared& shared, int line);
std::string functionHead(const Declaration& item);
std::string externalHead(const Declaration& item);  // of a library function
std::string generateFunction(const Declaration& item, const GeneratorOptions& options, Shared& shared);
// The statements that give class variables and stored constants their initial values, in a frame of their own.
std::string generateInitialValues(const ClassTree& tree, const GeneratorOptions& options, Shared& shared);

}  // namespace tarn::toolchain
