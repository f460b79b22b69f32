// SPDX-License-Identifier: Apache-2.0
//
// The objects of a program to the program.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::toolchain {

struct LinkInput {
    std::string bytes;  // of the object
    bool quick = false;
};

// What start.c compiles to.
std::string_view startObject();

// Writes the program, ready to run, to `made`; its objects are `inputs`, the main class's first. They are linked in
// memory if all of them are the quick compiler's, else by the machine's C compiler. `library` is the folder of
// libtarnwick.so. `scratch` begins the names of files that are needed meanwhile. The result says what went wrong; empty on
// success.
std::string linkProgram(const std::vector<LinkInput>& inputs, const std::string& library,
                        const std::string& scratch, const std::string& made);

}  // namespace tarn::toolchain
