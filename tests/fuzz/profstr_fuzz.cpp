// SPDX-License-Identifier: Apache-2.0
// Settings text and word splitting: any bytes give values, never a crash.
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string file = "/tmp/tarnwick-fuzz-" + std::to_string(getpid()) + ".ini";
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::FILE* out = std::fopen(file.c_str(), "wb");
    if (out == nullptr) return 0;
    std::fwrite(text.data(), 1, text.size(), out);
    std::fclose(out);
    const std::string sections = tarn::PROFILESTRSECTIONS(file);
    const std::string section = tarn::STRLINE(sections, 1);
    tarn::PROFILESTRPUT(file, section.empty() ? "Main" : section, "Key", "value");
    if (tarn::PROFILESTRGET(file, section.empty() ? "Main" : section, "Key") != "value" &&
        section.size() < 200)
        std::abort();
    tarn::PROFILESTRKEYS(file, section);
    tarn::PROFILESTRGET(file, section, "");
    tarn::PROFILESTRDEL(file, section, "");
    const int words = tarn::STRTOKENCOUNT(text);
    for (int i = 0; i <= words && i < 50; i++) tarn::STRTOKEN(text, i);
    for (std::size_t position = 1; position <= text.size();) {
        const std::size_t before = position;
        tarn::NextWord(text, position);
        if (position == before) position++;
    }
    std::remove(file.c_str());
    return 0;
}
