// SPDX-License-Identifier: Apache-2.0
//
// What the tree of a class means: names, types, constants, and the rules of the language that the grammar
// cannot say. It completes the tree for the generator.
#pragma once

#include "toolchain/language/tree.h"
#include "toolchain/output/messages.h"

namespace tarn::toolchain {

// Checks `tree`, whose used classes are read. The tree may be generated if no message was added.
void checkClass(ClassTree& tree, Messages& messages);

// The value of a chain whose operands are all constant; false when it cannot be computed.
bool foldChain(const Expression& chain, Value& result);

}  // namespace tarn::toolchain
