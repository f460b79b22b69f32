// SPDX-License-Identifier: Apache-2.0
//
// Writing over a row so that a death in the middle of it loses nothing: what will be written stands behind
// the last row first, as a note, which is cut off again when the row is whole. All integers big-endian:
//
//   offset  size  note
//        0     8  "\xA7row\xA7\x1A\r\n"
//        8     8  where in the file this note begins: the end of the rows
//       16     4  the row's number
//       20     4  n, the bytes of a row
//       24     n  the row
//   24 + n     4  CRC-32 of all that
//   28 + n     1  0xA7; one more when the note would else be as long as some rows
//
// So a file with a note is of the wrong size (655). RebuildTableFile writes the row of a whole note, and cuts
// off one that is not.
#pragma once

#include "kernel/values/values.h"

#include <cstdint>
#include <string>

namespace tarn {

struct RowNote {
    std::int64_t offset = -1;   // where it begins; below 0 when there is none
    std::int32_t position = 0;  // 0 for one that is not whole
    std::string row;
};
// Looks for a note at the end of a file with a header and rows of that many bytes. 653, 651.
bool FindRowNote(const std::string& path, std::int64_t headerBytes, std::int32_t rowBytes, RowNote& note);

}  // namespace tarn
