// SPDX-License-Identifier: Apache-2.0
//
// A checked class to C for the kernel's C interface. The C file is complete: it carries the interface's text.
//
// A function of the class becomes a C function that enters its frame, sets up its locals, runs its
// statements, each behind a stamp with its line, frees its locals in reverse order and leaves. Every call is
// a C statement of its own, so that operands are evaluated from left to right; strings that a call could
// change meanwhile are copied first. Temporary strings belong to the function and are freed with its locals.
#pragma once

#include "toolchain/language/tree.h"

#include <string>
#include <vector>

namespace tarn::toolchain {

struct GeneratorOptions {
    int precond = 0;  // 1: preconditions are tested; 2: postconditions too
    int debug = 0;    // 2: variables are registered, memory is checked
};

struct Generated {
    std::string text;
    std::vector<bool> codeLines;  // element n: line n can take a breakpoint
};

// `tree` has been checked without a message.
Generated generateC(const ClassTree& tree, const GeneratorOptions& options);

bool hasMain(const ClassTree& tree);

}  // namespace tarn::toolchain
