// SPDX-License-Identifier: Apache-2.0
//
// Which name of a line of source the user means: the one under the pointer, with all that it belongs to, as an expression
// (expression.h).
//
//   x := order.item.price     the pointer on price: order.item.price       on item: order.item
//   y := rows[i + 1].size     the pointer on size: rows[i + 1].size        on i: i
//
// In comments and texts nothing is meant, nor is a field whose owner is not in the line: of `f(x).size`, or of a line that
// begins with a full stop, the last word alone would be another name.
//
// Cost: linear in the line.
#pragma once

#include <string_view>

namespace tarn {

// The name that ends where `text`, the beginning of a line, ends. Empty if there is none.
std::string_view SourceNameAtEnd(std::string_view text);

}  // namespace tarn
