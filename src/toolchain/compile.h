// SPDX-License-Identifier: Apache-2.0
//
// One class from source to symbol file and object.
#pragma once

#include "toolchain/messages.h"
#include "toolchain/options.h"

namespace tarn::toolchain {

// Reads and checks the class, then writes `name.sym` beside it, and `name.c` and `name.o` into its work
// folder. With a message added, none of them is there that is not from this source: a stale object never
// survives a failure.
void compileClass(const CompilerOptions& options, Messages& messages);

}  // namespace tarn::toolchain
