// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/edit/units.h"

#include "os/text/utf8.h"

#include <cstdint>
#include <cstring>

namespace tarn::platform::qt {

namespace {

struct Unit {
    char32_t code = 0;  // of a sound character; else the byte
    int bytes = 1, units = 1;
};

Unit unitAt(std::string_view bytes, std::size_t at) {
    const std::string_view character = bytes.substr(at, utf8::lengthOfFirst(bytes.substr(at)));
    if (character.empty()) return {static_cast<unsigned char>(bytes[at]), 1, 1};
    return {utf8::codeOf(character), static_cast<int>(character.size()), character.size() == 4 ? 2 : 1};
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
