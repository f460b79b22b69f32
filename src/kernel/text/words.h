// SPDX-License-Identifier: Apache-2.0
//
// The words of the language that cannot be names, in any case. Cost: a binary search.
#pragma once

#include <string_view>

namespace tarn {

bool IsReservedWord(std::string_view word);
// Kept for later versions of the language and for generated code.
bool IsFutureReservedWord(std::string_view word);

}  // namespace tarn
