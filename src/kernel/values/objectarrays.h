// SPDX-License-Identifier: Apache-2.0
//
// The objects of a window or a menu in an array of the kernel: how a program of the language reads and writes
// resource files. Modules use ObjectArray (kernel/windows/resources.h).
//
// The array has one dimension of strings with the bounds 0 and MAX_CONTROLS; anything else is refused before a
// file is touched. Its elements have room for RESOURCE_OBJECT_SIZE characters, or are unbounded; a text ends
// before its first NUL. An object that is too long for its element comes, as far as needed, without lines that
// tell what holds without them, and without quotes; written back it means the same. The results are error texts,
// empty on success. The counts and sizes are what a program says of its arrays; the arrays themselves are asked
// instead.
//
// Cost: as the operations of ObjectArray, and a copy of every element.
#pragma once

#include "kernel/values/values.h"
#include "kernel/windows/resources.h"

#include <cstdint>
#include <string>

namespace tarn {

// On an error all elements are empty, but for an array that is refused. An object that an element has no room
// for even so is an error.
std::string ResourceRead(const std::string& file, const std::string& name, ArrayDescriptor* objects,
                         std::int32_t count, std::int32_t size);
std::string ResourceWrite(const ArrayDescriptor* dialog, std::int32_t dialogCount, std::int32_t dialogSize,
                          const ArrayDescriptor* menu, std::int32_t menuCount, std::int32_t menuSize,
                          const std::string& file);

}  // namespace tarn
