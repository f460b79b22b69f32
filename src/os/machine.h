// SPDX-License-Identifier: Apache-2.0
//
// Facts about the machine, as Linux tells them in its files. What is not told is an empty text or -1: nothing
// is guessed. Cost: a file or two read for each fact.
#pragma once

#include <cstdint>
#include <string>

namespace tarn::os {

std::string computerName();

// Bytes.
struct Memory {
    std::int64_t physical = -1;
    std::int64_t available = -1;  // what can be had without ending programs: memory, and room for swapping
};
Memory memory();

inline constexpr std::int64_t Unlimited = INT64_MAX;
std::int64_t stackLimit();  // bytes that the stack of this process may grow to, or Unlimited

// The disk (file system) on which a path lies, by the names that its maker and its user gave it.
struct Disk {
    std::string label, serial;
};
Disk diskOf(const std::string& path);

// -1: not told, 0: no, 1: yes.
struct Pointing {
    int mouse = -1, wheel = -1;
};
Pointing pointing();
int networkUp();  // whether any network but the machine's own is connected

}  // namespace tarn::os
