// SPDX-License-Identifier: Apache-2.0
//
// The quick C compiler and linker that the tools carry: tcc, as a library inside the process. It works in memory:
// C text to the bytes of an object, objects to the bytes of a program. A build of the tools without it has
// `tccIsThere()` false, and every call fails.
//
// A program that is linked here needs nothing but libtarnwick.so at its start; the C library comes with that. Its
// stack cannot be executed. Its link sees of the library the names of the C interface alone, which takes a tenth
// of the time that the whole library with all it stands on takes.
//
// Cost: about 0.4 ms and 1 ms for 5,000 lines of C; a link 0.3 ms and 30 us for each object.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::toolchain {

struct Made {
    std::string bytes;    // empty on failure
    std::string failure;  // why; empty on success
};

bool tccIsThere();
// `text` includes nothing but <stdint.h>, if that; then no header of the machine is needed.
Made tccCompile(std::string text);
// `objects` with the start object among them; of several definitions that are weak, the first counts. `library` is
// the full path of libtarnwick.so; the program looks for it in its own folder first, then in that one.
Made tccLink(const std::vector<std::string_view>& objects, const std::string& library);

}  // namespace tarn::toolchain
