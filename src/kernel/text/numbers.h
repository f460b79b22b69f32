// SPDX-License-Identifier: Apache-2.0
//
// Integers and booleans: arithmetic that never traps, and their texts. Also the check sum and the text form
// of bytes.
//
// A format is a fixed number (the number times 10000): its integer part is the field width, negative for
// left-justified; its decimals do not concern integers and booleans. Widths lie between -100 and 100, and one
// beyond that is brought to it. Texts are padded with blanks and never cut.
//
// Cost: some nanoseconds, except Crc32 and Base64 (linear).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// Rounds towards minus infinity; 643 and 0 for b = 0. The most negative integer by -1 wraps to itself.
std::int32_t IntegerDiv(std::int32_t a, std::int32_t b);
// Has the sign of the divisor: a = b * IntegerDiv(a, b) + IntegerMod(a, b). 643 and 0 for b = 0.
std::int32_t IntegerMod(std::int32_t a, std::int32_t b);

// Right-justified in `width` characters when it is positive, left-justified when negative. Base 16 gives the
// two's complement in upper-case digits, without a sign; any other base counts as 10. The second form writes
// at most `size` bytes with the NUL; a text that does not fit is left out (`buffer` is then empty).
std::string IntegerToText(std::int32_t value, std::int32_t width, std::int32_t base = 10);
void IntegerToText(std::int32_t value, std::int32_t width, char* buffer, std::int32_t size,
                   std::int32_t base = 10);
// An optional sign, then digits. `end` is the position, from 0, behind the last digit, and so the number of
// characters that were read; 0, with `value` unchanged, when the text does not begin with a number or it is
// outside the integers.
void IntegerFromText(std::string_view text, std::int32_t& value, std::size_t& end);
// A whole text that is one integer, blanks around it or not; "NULL", in capitals, is 0. Otherwise `ok` is
// false and `value` unchanged.
void IntegerFromWholeText(std::string_view text, std::int32_t& value, bool& ok);

inline constexpr std::int64_t DefaultFormat = 10000;  // width 1

std::string BooleanToText(bool value, std::int64_t format = DefaultFormat);  // "True" or "False"
// "True" or "Yes", "False" or "No", in any case. Otherwise `ok` is false and `value` unchanged.
void BooleanFromText(std::string_view text, bool& value, bool& ok);

// The IEEE check sum; 0 for no bytes. `before` is the sum of the bytes that come before these.
std::uint32_t Crc32(const void* buffer, std::size_t size, std::uint32_t before = 0);

std::string Base64Encode(std::string_view bytes);  // standard alphabet, padded, no line ends
// Line ends, tabs and blanks are skipped. Anything else outside the alphabet, a wrong length or padding, and
// bits of the last digit that belong to no byte but are not 0, make `ok` false and leave `bytes` unchanged.
// `text` may be that of `bytes` itself.
void Base64Decode(std::string_view text, std::string& bytes, bool& ok);

}  // namespace tarn
