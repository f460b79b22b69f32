// SPDX-License-Identifier: Apache-2.0
//
// What the tree of a class means: names, types, constants, and the rules of the language that the grammar
// cannot say. It completes the tree for the generator.
//
// What other classes need to know of an item (its type, its head, the value of a constant) is found the first
// time that anybody asks, so that classes may use each other in any order.
#pragma once

#include "toolchain/language/tree.h"
#include "toolchain/output/messages.h"

namespace tarn::toolchain {

// Checks `tree`, whose used classes are read. The tree may be generated if no message was added.
void checkClass(ClassTree& tree, Messages& messages);

// The types in the head of one item.
void resolveHead(ClassTree& tree, Declaration& item, Messages& messages);

}  // namespace tarn::toolchain
