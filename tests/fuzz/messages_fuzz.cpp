// SPDX-License-Identifier: Apache-2.0
// The compiler's messages and class text: any bytes give results, never a crash or an endless walk.
#include "library/data/dbutil.h"
#include "library/source/symbols.h"

#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    tarn::FILEGETERROR(text, 0, "/tmp");
    tarn::FILEGETERROR(text, static_cast<int>(size / 2) + 1, "");
    tarn::SYMGETUSES(0, text);
    tarn::SYMISCLASS(0, text, "Tarnwick", "CLASS");
    tarn::SYMSCANSOURCE(text, 1024 + 2048 + 4096 + 8192);
    tarn::SYMSETCLASSNAME("Other", 0, "Tarnwick", text);
    return 0;
}
