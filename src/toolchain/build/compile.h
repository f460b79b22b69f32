// SPDX-License-Identifier: Apache-2.0
//
// One class from source to symbol file and object.
#pragma once

#include "toolchain/build/options.h"
#include "toolchain/output/messages.h"

namespace tarn::toolchain {

// Reads and checks the class, then writes `name.c` and `name.o` into its work folder and `name.sym` beside
// it. After a failure, which is a message, there is no object file, so that the next make compiles the class
// again.
void compileClass(const CompilerOptions& options, Messages& messages);

}  // namespace tarn::toolchain
