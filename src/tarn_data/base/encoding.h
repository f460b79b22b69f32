// SPDX-License-Identifier: Apache-2.0
//
// Which encoding the bytes of a text file are in, and texts of other encodings as UTF-8.
//
// What is told of a file:
//
//   encoding      how it is told                                                     mark
//   Utf8          nothing else fits, and every byte is UTF-8 (or ASCII)              none, or EF BB BF
//   Utf16Little   the mark, or: of the first bytes most of every second are 0         none, or FF FE
//   Utf16Big      likewise                                                           none, or FE FF
//   Utf32Little   the mark, or: of the first bytes most of every last three of four are 0   none, or FF FE 00 00
//   Utf32Big      likewise, of the first three                                       none, or 00 00 FE FF
//   Latin1        a guess: bytes that are no UTF-8, none of them from 80 to 9F       none
//   Windows1252   a guess: the same, with such bytes, which are letters and marks    none
//
// The guesses are only that: other encodings of one byte look the same. So nobody converts by a guess in
// silence; `iconvCommand` is what the user can be told.
//
// Rules: `firstBad` is the first byte, from 0 and with the mark counted, that is no part of a UTF-8
// character, `firstBadLine` its line from 1; both tell of UTF-8 alone (-1 and 0 for wide encodings, and where all
// bytes fit). A character that the end of the file cuts is bad, too.
//
// Cost: encodingOfBeginning looks at the bytes that it is given; findEncoding reads the file once in blocks
// of 256 KiB, and ends at the first bad byte but for the look for bytes from 80 to 9F in the rest of that block.
#pragma once

#include "tarn_data/base/problem.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::datatool {

enum class Encoding { Utf8, Utf16Little, Utf16Big, Utf32Little, Utf32Big, Latin1, Windows1252 };

struct EncodingFacts {
    Encoding encoding = Encoding::Utf8;
    std::size_t markBytes = 0;  // at the beginning, that are no text
    std::int64_t firstBad = -1;
    std::int64_t firstBadLine = 0;
    // UTF-16 or UTF-32.
    [[nodiscard]] bool isWide() const {
        return encoding >= Encoding::Utf16Little && encoding <= Encoding::Utf32Big;
    }
    [[nodiscard]] bool isUtf32() const {
        return encoding == Encoding::Utf32Little || encoding == Encoding::Utf32Big;
    }
    // "UTF-16" or "UTF-32", for what is wide.
    [[nodiscard]] std::string wideName() const { return isUtf32() ? "UTF-32" : "UTF-16"; }
};

// From the first bytes of a file, some hundred or more: marks, and UTF-16 and UTF-32 without one. Others are Utf8.
EncodingFacts encodingOfBeginning(std::string_view bytes);
// From the whole file. A problem when it cannot be read, or the user stops it.
Problem findEncoding(const std::string& file, EncodingFacts& facts);

// As iconv calls it: "UTF-16LE".
std::string_view encodingName(Encoding encoding);
// "iconv -f UTF-16LE -t UTF-8 'd/a.csv' >'a-utf8.csv'", with names that the shell takes as they are.
std::string iconvCommand(const std::string& file, Encoding encoding);

// Writes a file of UTF-16 or UTF-32 as UTF-8 without a mark to `to`, which must not be there. A problem when either
// fails, when the user stops it, and when a character is not whole: with the byte that it begins at.
Problem writeAsUtf8(const std::string& file, const EncodingFacts& facts, const std::string& to);

}  // namespace tarn::datatool
