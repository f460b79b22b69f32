// SPDX-License-Identifier: Apache-2.0
//
// The library that every class sees without naming it: the class `system`, whose text (system.cls) is built
// into the compiler. Its functions are C functions of the run-time; the heads in its text are all that the
// compiler knows of them.
#pragma once

#include "toolchain/language/tree.h"

#include <string>
#include <string_view>

namespace tarn::toolchain {

extern const std::string_view SystemText;  // with a mark where the windowing operations belong
std::string windowHeads();                 // the heads of those, one a line
std::string errorConstants();              // of run-time errors
std::string systemText();                  // the whole class

// Read once, its types resolved.
ClassTree& systemClass();
bool isSystem(const ClassTree& tree);
// A type of the library by its name; it is there.
const Type* systemType(const char* name);

}  // namespace tarn::toolchain
