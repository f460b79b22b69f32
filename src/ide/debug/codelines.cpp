// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/debug/codelines.h"

#include "library/source/symbolfiles.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>

MODULE("textedit")

namespace tarn {
namespace {

constexpr std::size_t Bytes = 1000;

bool bit(std::string_view bitmap, int line) {
    const auto at = static_cast<std::size_t>(line - 1);
    if (line < 1 || at / 8 >= bitmap.size()) return false;
    return (static_cast<unsigned char>(bitmap[at / 8]) >> (at % 8) & 1U) != 0;
}

}  // namespace

std::string CODELINES(const std::string& classFile) {
    FRAME(CODELINES);
    STAMP();
    const std::string symbols = FILECHANGEEXT(classFile, ".sym");
    const os::FileInfo source = os::infoOf(os::native(classFile)), told = os::infoOf(os::native(symbols));
    if (!source.exists || !told.exists || told.modified < source.modified) return {};
    STAMP();
    for (const SymbolRecord& record : SYMLOAD(symbols))
        if (record.name == "debug" && record.sort == "debug")
            return record.comment.size() == Bytes ? record.comment : std::string();
    return {};
}

bool HASCODE(std::string_view bitmap, int line) {
    FRAME(HASCODE);
    return bit(bitmap, line);
}

int NEXTWITHCODE(std::string_view bitmap, int line) {
    FRAME(NEXTWITHCODE);
    const int last = static_cast<int>(bitmap.size()) * 8;
    for (int next = std::max(line, 0) + 1; next <= last; next++)
        if (bit(bitmap, next)) return next;
    return 0;
}

}  // namespace tarn
