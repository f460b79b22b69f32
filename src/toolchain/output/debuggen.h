// SPDX-License-Identifier: Apache-2.0
//
// What compiled code tells the debugger when a function is entered, at debug level 2: its variables, the names of fields
// among them, and where its result stands.
#pragma once

#include "toolchain/output/exprgen.h"

#include <string>

namespace tarn::toolchain {

// Parameters, variables and result of a function, and the variables of its class.
void registerVariables(const Declaration& function, ExpressionGenerator& out);
void registerClassVariables(const ClassTree& tree, ExpressionGenerator& out);

// The names of the fields in a value of the type, as kernel/debug/fieldnames.h tells; empty if it has none, or more than
// can be of use.
std::string fieldNames(const Type& type);

}  // namespace tarn::toolchain
