// SPDX-License-Identifier: Apache-2.0
//
// Whole values as the content of binary files, in the bytes of lists/packing.h. A string is its characters
// and nothing else; the last field of a record may be an unbounded string; the elements of an unbounded list,
// and the rows of a table, have a packed length (list_access.h and tables.h say what may go in).
//
// Cost: linear in the bytes.
#pragma once

#include "kernel/lists/packing.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// 660 for what cannot be packed, which is 0 or more than MostPackedBytes for a record or an element too; the
// first operation tells whether the value's shape is one, without packing it.
std::int32_t PackWholeError(const void* value, Kind kind);
// With `stopped` progress.h is told how far it is; when the user stops it that is set, and `bytes` are not
// whole.
std::int32_t PackWhole(const void* value, Kind kind, std::string& bytes, bool* stopped = nullptr);
// How many bytes of a file a whole value needs at most: from so many on UnpackWhole does not look at the
// rest, or refuses them for their number. Only for a value that PackWholeError does not refuse.
std::int64_t PackedRoom(const void* value, Kind kind);
// 655 for a number of bytes that no such value has, 651 for damaged bytes, 619 and 618 for more rows than
// fit, 635 for rows with one key, 660, 802 and 804. `value` is an empty one of its shape.
std::int32_t UnpackWhole(std::string_view bytes, void* value, Kind kind);

}  // namespace tarn
