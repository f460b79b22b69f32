// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/edit/units.h"

#include <cstdint>
#include <cstring>

namespace tarn::platform::qt {

namespace {

struct Unit {
    char32_t code = 0;  // of a sound character; else the byte
    int bytes = 1, units = 1;
};

// How many bytes a character takes that begins with this one; 1 if none does.
int lengthOf(unsigned char first) {
    if (first < 0xC2 || first > 0xF4) return 1;
    return first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

bool isSound(char32_t code, int bytes) {
    static constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    return code >= least[bytes] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

Unit unitAt(std::string_view bytes, std::size_t at) {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const int count = lengthOf(first);
    const Unit lone{first, 1, 1};
    if (count == 1 || at + static_cast<std::size_t>(count) > bytes.size()) return lone;
    char32_t code = first & (0xFFU >> (count + 1));
    for (int i = 1; i < count; ++i) {
        const auto next = static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)]);
        if ((next & 0xC0U) != 0x80U) return lone;
        code = code << 6 | (next & 0x3FU);
    }
    if (!isSound(code, count)) return lone;
    return {code, count, count == 4 ? 2 : 1};
}

// How many ASCII bytes stand at the start, in steps of eight.
std::size_t asciiRun(std::string_view bytes, std::size_t at, std::size_t most) {
    constexpr std::uint64_t high = 0x8080808080808080;
    std::size_t run = 0;
    while (run + 8 <= most && at + run + 8 <= bytes.size()) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + at + run, 8);
        if ((word & high) != 0) break;
        run += 8;
    }
    return run;
}

}  // namespace

int unitsIn(std::string_view bytes) {
    int units = 0;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t run = asciiRun(bytes, at, bytes.size());
        at += run;
        units += static_cast<int>(run);
        if (at >= bytes.size()) break;
        const Unit unit = unitAt(bytes, at);
        at += static_cast<std::size_t>(unit.bytes);
        units += unit.units;
    }
    return units;
}

int bytesOfUnits(std::string_view bytes, int units) {
    std::size_t at = 0;
    while (at < bytes.size() && units > 0) {
        const std::size_t run = asciiRun(bytes, at, static_cast<std::size_t>(units));
        at += run;
        units -= static_cast<int>(run);
        if (at >= bytes.size() || units <= 0) break;
        const Unit unit = unitAt(bytes, at);
        units -= unit.units;
        if (units < 0) break;
        at += static_cast<std::size_t>(unit.bytes);
    }
    return static_cast<int>(at);
}

QString unitsOf(std::string_view bytes) {
    QString text;
    text.reserve(static_cast<qsizetype>(bytes.size()));
    for (std::size_t at = 0; at < bytes.size();) {
        if (const std::size_t run = asciiRun(bytes, at, bytes.size()); run > 0) {
            text += QLatin1String(bytes.data() + at, static_cast<qsizetype>(run));
            at += run;
            continue;
        }
        const Unit unit = unitAt(bytes, at);
        at += static_cast<std::size_t>(unit.bytes);
        if (unit.units == 2) {
            text += QChar(QChar::highSurrogate(unit.code));
            text += QChar(QChar::lowSurrogate(unit.code));
        } else {
            text += QChar(static_cast<char16_t>(unit.code));
        }
    }
    return text;
}

}  // namespace tarn::platform::qt
