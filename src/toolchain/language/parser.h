// SPDX-License-Identifier: Apache-2.0
//
// Class text to tree. docs/language.md holds the grammar. The parser reports every error that it can tell
// apart and goes on at the next statement or declaration; after an error it stays silent until it has found
// one.
//
// Cost: linear. The depth of its recursion is bounded by MaxNesting.
#pragma once

#include "toolchain/language/tree.h"
#include "toolchain/output/messages.h"

#include <memory>
#include <string>
#include <string_view>

namespace tarn::toolchain {

// Never null; `complete` is false if anything was reported. `path` names the file in messages.
std::unique_ptr<ClassTree> parseClass(std::string_view source, const std::string& path, Messages& messages);

}  // namespace tarn::toolchain
