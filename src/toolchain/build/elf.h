// SPDX-License-Identifier: Apache-2.0
//
// What the quick link needs to know of ELF files of this machine, and the one place that reads their headers.
#pragma once

#include <elf.h>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::toolchain {

// A shared library without code that has the names of the C interface in `library`, with their sizes, and those few
// of the C library that compiled code calls; it calls itself as that one does. Empty if it cannot be read or is no
// shared library. Cost: 100 us.
std::string namesOfLibrary(const std::string& library);

// The headers of the parts of a program or a shared library, in their order, up to one that is not there as a whole. None
// if the bytes are of another kind.
std::vector<Elf64_Phdr> programParts(std::string_view bytes);

// Says in the program headers that the stack of the program holds no code, in the place of the header that tells
// where the headers are, which a program with a fixed address does not need. False if there is none.
bool forbidStackCode(std::string& program);

}  // namespace tarn::toolchain
