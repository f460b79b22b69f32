// SPDX-License-Identifier: Apache-2.0
//
// One function for each pair of kinds. Each reads its source whole before it writes, so that a number may be
// converted where it stands.
#include "kernel/values/convert.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "kernel/values/adt.h"
#include "kernel/values/string_text.h"
#include "kernel/values/strings.h"

#include <cmath>

namespace tarn {

namespace {

using Conversion = void (*)(const void* source, void* target);

StringDescriptor* asString(void* target) {
    return static_cast<StringDescriptor*>(target);
}
const StringDescriptor* asString(const void* source) {
    return static_cast<const StringDescriptor*>(source);
}

// ---- from the kinds that count ----

std::int32_t booleanAt(const void* source) {
    return ReadAt<std::uint8_t>(source) != 0 ? 1 : 0;
}
std::int32_t enumAt(const void* source) {
    return ReadAt<std::uint8_t>(source);
}
std::int32_t integerAt(const void* source) {
    return ReadAt<std::int32_t>(source);
}

template <std::int32_t read(const void*)>
void countToInteger(const void* source, void* target) {
    WriteAt(target, read(source));
}
template <std::int32_t read(const void*)>
void countToFixed(const void* source, void* target) {
    Fixed f = 0;
    FixedFromInteger(read(source), f);
    WriteAt(target, f);
}
template <std::int32_t read(const void*)>
void countToReal(const void* source, void* target) {
    WriteAt(target, static_cast<double>(read(source)));
}
template <std::int32_t read(const void*)>
void countToString(const void* source, void* target) {
    StringAssignView(asString(target), IntegerToText(read(source), 1));
}

void booleanToString(const void* source, void* target) {
    StringAssignView(asString(target), BooleanToText(booleanAt(source) != 0));
}

// ---- from fixed and real ----

template <class Number>
void copy(const void* source, void* target) {
    WriteAt(target, ReadAt<Number>(source));
}

// `fits` says whether `whole` is one of the integers.
void putInteger(bool fits, std::int32_t whole, void* target) {
    if (!fits) SetError(ERR_NUMBER_TOO_LARGE);
    WriteAt(target, fits ? whole : 0);
}

void fixedToInteger(const void* source, void* target) {
    const auto f = ReadAt<Fixed>(source);
    const Fixed whole = f / FixedOne;
    putInteger(whole >= INT32_MIN && whole <= INT32_MAX, FixedToInteger(f), target);
}

void fixedToReal(const void* source, void* target) {
    WriteAt(target, FixedToReal(ReadAt<Fixed>(source)));
}

void fixedToString(const void* source, void* target) {
    StringAssignView(asString(target), FixedToText(ReadAt<Fixed>(source)));
}

void realToInteger(const void* source, void* target) {
    const double whole = std::trunc(ReadAt<double>(source));
    const bool fits = whole >= INT32_MIN && whole <= INT32_MAX;  // NaN does not
    putInteger(fits, fits ? static_cast<std::int32_t>(whole) : 0, target);
}

void realToFixed(const void* source, void* target) {
    Fixed f = 0;
    FixedFromReal(ReadAt<double>(source), f);
    WriteAt(target, f);
}

void realToString(const void* source, void* target) {
    StringAssignView(asString(target), RealToText(ReadAt<double>(source), RealTextDecimals));
}

// ---- from strings ----

template <class Number, Kind kind, void read(std::string_view, Number&, bool&)>
void stringTo(const void* source, void* target) {
    if (KindOf(source) != KindString) {
        SetError(ERR_STRING_TYPE);
        return;
    }
    const NarrowText text(asString(source));
    Number value{};
    bool ok = false;
    read(text.view(), value, ok);
    if (ok)
        WriteAt(target, value);
    else
        SetError(AdtConversionError(kind));
}

void stringToString(const void* source, void* target) {
    StringAssign(asString(target), asString(source));
}

// ---- the table ----

// By target and source, in the order of the kinds from boolean to string. Every other kind has no conversion.
constexpr Conversion none = nullptr;
constexpr Conversion conversions[KindString + 1][KindString + 1] = {
    {},
    {},
    {},
    {none, countToInteger<booleanAt>, countToInteger<enumAt>, countToInteger<integerAt>, fixedToInteger,
     realToInteger, stringTo<std::int32_t, KindInteger, IntegerFromWholeText>},
    {none, countToFixed<booleanAt>, countToFixed<enumAt>, countToFixed<integerAt>, copy<Fixed>, realToFixed,
     stringTo<Fixed, KindFixed, FixedFromText>},
    {none, countToReal<booleanAt>, countToReal<enumAt>, countToReal<integerAt>, fixedToReal, copy<double>,
     stringTo<double, KindReal, RealFromText>},
    {none, booleanToString, countToString<enumAt>, countToString<integerAt>, fixedToString, realToString,
     stringToString},
};

constexpr bool isInTable(Kind kind) {
    return kind >= KindBoolean && kind <= KindString;
}

}  // namespace

void AdtConvert(const void* source, Kind sourceKind, void* target, Kind targetKind, bool& ok) {
    const Conversion convert =
        isInTable(sourceKind) && isInTable(targetKind) ? conversions[targetKind][sourceKind] : none;
    ok = convert != none;
    if (!ok) return;
    if (source == nullptr || target == nullptr) {
        SetError(ERR_COMPONENT_INVALID);
        return;
    }
    convert(source, target);
}

}  // namespace tarn
