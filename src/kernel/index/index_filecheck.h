// SPDX-License-Identifier: Apache-2.0
//
// Whether an index file (index_file.h tells its format) is as it should be. Only reads.
//
// Cost: linear in the file.
#pragma once

#include "kernel/index/index_keys.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tarn {

// "" or what is wrong with an index file: sizes, header, links, balances, order, the free list, nodes that
// are neither linked nor free. `rows` -1, or the number of rows: each must have exactly one node. `seen`,
// unless empty, is called with the row and key bytes of each node in order; what it gives, unless "", is the
// result. No error is set.
using SeenNode = std::function<std::string(std::int32_t row, std::string_view key)>;
std::string CheckIndexFile(const std::string& path, const KeyView& shape, std::int32_t rows,
                           const SeenNode& seen = {});
// Whether the key bytes of a node are those of this key, as trees compare: what stands behind the text of a
// string does not count.
bool IsPackedKey(const KeyView& key, std::string_view bytes);

}  // namespace tarn
