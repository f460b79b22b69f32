// SPDX-License-Identifier: Apache-2.0
//
// The windows of a class: those of the resource file that stands beside it under its name. Each becomes a
// declaration, and so do its controls and the items of its menu. The keys in the class's names hold a '#', which
// no name of the language has:
//
//   main#          the window Main
//   main#ok        its control OK
//
// A control array is a control of its own under the array's name; its element is given by an index.
#pragma once

#include "toolchain/language/tree.h"

#include <string>

namespace tarn::toolchain {

void declareWindows(ClassTree& tree);
std::string windowKey(const std::string& window, const std::string& control = {});
// The resource file beside a class file; empty if there is none.
std::string twinOf(const std::string& file);

}  // namespace tarn::toolchain
