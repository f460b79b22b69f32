// SPDX-License-Identifier: Apache-2.0
//
// Files of packed values (packing.h): all bytes of the file are one value.
#pragma once

#include "kernel/data/tab/tabular.h"

namespace tarn {

// The file is read in one piece, or as much of it as shows that it is too large. `rows` counts elements of
// lists and rows of tables, and is otherwise 1. Any failure leaves the value as it was. Leaves the error cell
// alone.
DataResult BinaryLoad(const std::string& filename, void* value, Kind kind);
DataResult BinarySave(const std::string& filename, const void* value, Kind kind);

}  // namespace tarn
