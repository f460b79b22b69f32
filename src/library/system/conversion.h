// SPDX-License-Identifier: Apache-2.0
//
// The conversion family of the system library: values of one kind from those of another, and values as text.
// Functions of one name are told apart by the kind of their arguments; an enum is its ordinal, a byte. What
// cannot be converted gives 0, false or an empty text and the error of its kind: 981 boolean, 983 integer, 984
// fixed, 985 real; a number outside the kind's range 641. Cost: tens of nanoseconds.
#pragma once

#include "kernel/values/owned.h"
#include "kernel/windows/windowing.h"
#include "library/system/numbers.h"

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// Only a boolean: no pointer and no number counts as one.
template <class T>
concept Boolean = std::same_as<T, bool>;

// ---- to boolean: any number but 0; of texts True, Yes, False and No in any case ----
bool CVTB(std::uint8_t n);
bool CVTB(std::int32_t n);
bool CVTB(FixedValue n);
bool CVTB(double n);
bool CVTB(std::string_view text);

// ---- to fixed: true is 1; see FixedFromReal and FixedFromText ----
FixedValue CVTF(Boolean auto n) {
    return FixedValue(n ? FixedOne : 0);
}
FixedValue CVTF(std::int32_t n);
FixedValue CVTF(double n);
FixedValue CVTF(std::string_view text);

// ---- to integer: decimals are cut off; the whole text must be one, and "NULL" is 0 ----
std::int32_t CVTI(FixedValue n);
std::int32_t CVTI(double n);
std::int32_t CVTI(std::string_view text);
// Without an error, and without blanks around it: `ok` tells.
std::int32_t CVTI(std::string_view text, bool& ok);

// ---- to real; see RealFromText ----
double CVTR(Boolean auto n) {
    return n ? 1 : 0;
}
double CVTR(std::uint8_t n);
double CVTR(std::int32_t n);
double CVTR(FixedValue n);
double CVTR(std::string_view text);

// ---- to string: any value that the table of conversions turns into one, and arrays of characters, which are
// the fields of Xbase files. 986 for any other. ----
std::string CVTS(const void* value, Kind kind);

std::int32_t ORD(std::string_view text);  // the code of the first character; 0 for the empty text
std::string CHR(std::int32_t code);       // the character of that code, modulo 256

// ---- as text, in a field ----

// The format of a number: width and decimals (see kernel/text/fixed.h), as an integer, which is the width
// alone, a fixed or real number such as 8.2, or a text such as "8.2". 984 for a text that is no number, and
// 641 for a real that no fixed number can hold; both then count as 0.
class Format {
public:
    Format(std::int32_t width) : word_(Fixed{width} * FixedOne) {}
    Format(FixedValue format) : word_(format.word) {}
    Format(double format) { FixedFromReal(format, word_); }
    Format(std::string_view text) : word_(CVTF(text).word) {}
    Format(const std::string& text) : Format(std::string_view(text)) {}
    Format(const char* text) : Format(std::string_view(text)) {}
    [[nodiscard]] Fixed word() const { return word_; }

private:
    Fixed word_ = 0;
};

// Without a format: "True" or "False"; decimal digits; a fixed number with four decimals; a real in exponent
// form with 16 decimals, which is enough to read the same number back; a text as it is. With one, all of them
// are filled up with blanks to the width, and never cut.
std::string STR(Boolean auto value) {
    return value ? "True" : "False";
}
std::string STR(std::uint8_t value);
std::string STR(std::int32_t value);
std::string STR(FixedValue value);
std::string STR(double value);
std::string STR(std::string_view value);
std::string STR(std::uint8_t value, Format format);
std::string STR(std::int32_t value, Format format);
std::string STR(FixedValue value, Format format);
std::string STR(double value, Format format);
std::string STR(std::string_view value, Format format);
std::string STR(Boolean auto value, Format format) {
    return STR(std::string_view(value ? "True" : "False"), format);
}

// Hexadecimal digits in capitals, with zeros in front up to `width` (1 to 255, and one beyond that is brought
// to it). Negative numbers in two's complement, a fixed one by its word. A text: two digits for each byte.
std::string HEXSTR(std::uint32_t value, int width = 1);
std::string HEXSTR(std::int32_t value, int width = 1);
std::string HEXSTR(std::uint8_t value, int width = 1);
std::string HEXSTR(FixedValue value, int width = 1);
std::string HEXSTR(std::string_view bytes);
std::string HEXSTR(Boolean auto value, int width = 1) {
    return HEXSTR(std::uint8_t{value}, width);
}
// The number of the hexadecimal digits at the beginning; 0 if there are none. Of more than eight the last
// eight count.
std::uint32_t HEXVAL(std::string_view text);

// ---- one of two; both are computed ----
bool IIF(bool condition, Boolean auto yes, Boolean auto no) {
    return condition ? yes : no;
}
std::uint8_t IIF(bool condition, std::uint8_t yes, std::uint8_t no);
std::int32_t IIF(bool condition, std::int32_t yes, std::int32_t no);
FixedValue IIF(bool condition, FixedValue yes, FixedValue no);
double IIF(bool condition, double yes, double no);
std::string IIF(bool condition, std::string_view yes, std::string_view no);
Object IIF(bool condition, const Object& yes, const Object& no);

// ---- sets from text: "[1..3,7]", with ":" or ".."; blanks may stand between and around ----
// 989 for a text that is no set, 601 and 616 for members that do not fit (see SetFromText); the set is then as
// it was, but for 616.
void SETVALUE(std::string_view text, SetDescriptor* set);
// The same, but that `ok` alone tells of a text that is no set.
void SETVALUE(std::string_view text, SetDescriptor* set, bool& ok);

// ---- the fields of Xbase files: arrays of as many characters as the field has, all 0 at first. 760 for a
// size outside 1 to 32767. ----
ArrayValue TCHARS(int size);
ArrayValue TNUMERIC(int size);
ArrayValue TDATE(int size = 8);     // "YYYYMMDD"
ArrayValue TLOGICAL(int size = 1);  // T or F

}  // namespace tarn
