// SPDX-License-Identifier: Apache-2.0
// Symbol files: any bytes give records within the lengths of their fields, and lines without control characters.
#include "library/source/symbolfiles.h"
#include "library/system/system.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string file = "/tmp/tarnwick-fuzz-" + std::to_string(getpid()) + ".sym";
    std::FILE* out = std::fopen(file.c_str(), "wb");
    if (out == nullptr) return 0;
    std::fwrite(data, 1, size, out);
    std::fclose(out);
    for (const tarn::SymbolRecord& record : tarn::SYMLOAD(file)) {
        if (record.name.size() > 40 || record.signature.size() > 657 || record.comment.size() > 1000)
            std::abort();
        const std::string line =
            tarn::SYMFORMATSTR(record, "$NAME$ $SIGNATURE$ $SORT$ $CLASSNAME$ $TYPENAME$ $SCOPE$");
        if (std::any_of(line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < 32; }))
            std::abort();
    }
    const int level = tarn::SYMGETDEBUGLEVEL(file);
    if (level < -1 || level > 2) std::abort();
    std::remove(file.c_str());
    return 0;
}
