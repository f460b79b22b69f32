// SPDX-License-Identifier: Apache-2.0
//
// The arithmetic of values that are known while compiling: that of the run-time.
#pragma once

#include "toolchain/language/tree.h"

namespace tarn::toolchain {

// `value` as a number of the kind `to`, which fitOf allows.
Value convertValue(const Value& value, Kind to);
// The value of a chain whose operands are all constant and of one kind; false when it cannot be computed
// (a division by zero, or a result that is known at run time only).
bool foldChain(const Expression& chain, Value& result);
Value negateValue(const Value& value);
int compareValues(const Value& a, const Value& b);  // of one kind

Value booleanValue(bool value);
Value integerValue(std::int64_t number);  // wraps
Value textValue(std::string text);

}  // namespace tarn::toolchain
