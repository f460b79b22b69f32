// SPDX-License-Identifier: Apache-2.0
//
// What a file is by its first bytes, for whoever asks whether the system could run it or link it.
#pragma once

#include <string>
#include <string_view>

namespace tarn::os {

enum class ProgramFile {
    None,
    Elf,     // a program or a library of the machine
    Script,  // begins with "#!"
};
ProgramFile programFileOf(std::string_view bytes);
// None also for what cannot be read. Cost: reads a few bytes.
ProgramFile programFileAt(const std::string& path);

}  // namespace tarn::os
