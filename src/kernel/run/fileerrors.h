// SPDX-License-Identifier: Apache-2.0
//
// How the failures of files become run-time errors: 651 cannot be read, 652 cannot be written, 653 it
// disappeared, 654 the disk is full, 657 the name is not allowed. And which errors end a whole load.
#pragma once

#include "os/files.h"

#include <cstddef>
#include <cstdint>

namespace tarn {

std::int32_t FileReadCode(os::FileError error);   // 0 for None
std::int32_t FileWriteCode(os::FileError error);  // 0 for None
// Reads all of these bytes: 0, or the code; 651 also where the file ends before.
std::int32_t ReadWhole(os::Handle handle, std::int64_t offset, char* into, std::size_t count);
// A code of a file that could not be used: 651 to 657. What was read from elsewhere cannot go on then.
bool IsFileFailure(std::int32_t code);
bool IsMemoryError(std::int32_t code);  // 802 and 804
// Whether a failed read means that there is no such file.
bool IsMissing(os::FileError error);

}  // namespace tarn
