// SPDX-License-Identifier: Apache-2.0
//
// Classes from source to symbol file and object.
//
// The object of a class with `main` carries, beside its program record, the weak pointer
// `const tarn_program* const tarn_main_program` to it; the start object follows that of the first object linked.
#pragma once

#include "toolchain/build/options.h"
#include "toolchain/output/messages.h"

#include <vector>

namespace tarn::toolchain {

struct ClassResult {
    std::string file;  // full path
    Messages messages;
};

// Compiles the classes of the options in their order: reads and checks each, then writes `name.c` and `name.o`
// into its work folder and `name.sym` beside it. Each source is read once if a class stands behind those that it
// uses. After a failure, which is a message, there is no object file, so that the next make compiles the class
// again.
std::vector<ClassResult> compileClasses(const CompilerOptions& options);

// What stands in the result file: the reports of all classes if none has a message, else of those that have.
std::string reportOf(const std::vector<ClassResult>& results);

}  // namespace tarn::toolchain
