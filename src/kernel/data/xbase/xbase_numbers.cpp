// SPDX-License-Identifier: Apache-2.0
//
// Numbers of few digits are read here, longer and odder ones by the readers of numbers; both give the same
// results. Bytes 0 around a number count as blanks.
#include "kernel/data/short_number.h"
#include "kernel/data/xbase/xbase_access_internal.h"
#include "kernel/text/fixed.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace tarn {

namespace {

// ---- reading ----

std::string_view withoutFill(std::string_view text) {
    text = WithoutXbaseFill(text);
    while (!text.empty() && IsXbaseFill(text.front())) text.remove_prefix(1);
    return text;
}

// False for what has another form, or digits that are more than a real holds exactly.
bool readShort(std::string_view text, ShortNumber& number) {
    constexpr int most = MostShortDigits;
    const char* at = text.data();
    const char* const end = at + text.size();
    if (at != end && (*at == '-' || *at == '+')) number.negative = *at++ == '-';
    const char* point = nullptr;
    int digits = 0;
    for (; at != end; ++at) {
        if (*at == '.' && point == nullptr) {
            point = at;
            continue;
        }
        if (!ascii::isDigit(*at) || ++digits > most) return false;
        number.digits = number.digits * 10 + (*at - '0');
    }
    number.decimals = point == nullptr ? 0 : static_cast<std::int32_t>(end - point) - 1;
    return digits > 0;
}

// An integer may have decimals that are all 0, and any number of zeros in front.
bool readInteger(std::string_view text, std::int64_t lowest, std::int64_t highest, std::int32_t& value) {
    const bool sign = !text.empty() && (text[0] == '-' || text[0] == '+');
    const bool negative = sign && text[0] == '-';
    text.remove_prefix(sign ? 1 : 0);
    const std::size_t point = text.find('.');
    const std::string_view whole = text.substr(0, point);
    const std::string_view decimals = point == std::string_view::npos ? "" : text.substr(point + 1);
    if (whole.size() + decimals.size() == 0) return false;
    if (decimals.find_first_not_of('0') != std::string_view::npos) return false;
    std::int64_t magnitude = 0;
    for (const char c : whole) {
        if (!ascii::isDigit(c)) return false;
        magnitude = std::min(magnitude * 10 + (c - '0'), std::int64_t{INT32_MAX} + 2);
    }
    const std::int64_t number = negative ? -magnitude : magnitude;
    if (number < lowest || number > highest) return false;
    value = static_cast<std::int32_t>(number);
    return true;
}

bool readFixed(std::string_view text, char* at) {
    ShortNumber number;
    return FixedFieldFrom(readShort(text, number), number, text, at);
}

bool readReal(std::string_view text, char* at) {
    ShortNumber number;
    return RealFieldFrom(readShort(text, number), number, text, at);
}

bool readNumber(std::string_view text, char* at, Kind kind) {
    if (kind == KindFixed) return readFixed(text, at);
    if (kind == KindReal) return readReal(text, at);
    std::int32_t value = 0;
    if (kind == KindInteger) {
        const bool ok = readInteger(text, INT32_MIN, INT32_MAX, value);
        if (ok) WriteAt(at, value);
        return ok;
    }
    const bool ok = readInteger(text, 0, UINT8_MAX, value);
    if (ok) WriteAt(at, static_cast<std::uint8_t>(value));
    return ok;
}

// ---- writing ----

// Writes a field from its end; `fits` is false once there was no room.
class Backwards {
public:
    Backwards(char* field, std::int32_t length) : first_(field), at_(field + length) {}
    void put(char c) {
        if (at_ == first_)
            fits_ = false;
        else
            *--at_ = c;
    }
    void zeros(std::int32_t count) {
        for (; count > 0 && fits_; --count) put('0');
    }
    void digits(std::uint64_t& number, std::int32_t count) {
        for (; count > 0; --count, number /= 10) put(static_cast<char>('0' + number % 10));
    }
    void rest(std::uint64_t number) {
        do digits(number, 1);
        while (number != 0);
    }
    [[nodiscard]] bool fits() const { return fits_; }

private:
    char *first_, *at_;
    bool fits_ = true;
};

// A number that has `own` decimals, with as many as the field has: rounded to the nearest, halves away from
// 0. One that is 0 then has no sign.
bool writeScaled(std::uint64_t magnitude, bool negative, std::int32_t own, std::int32_t decimals, char* field,
                 std::int32_t length) {
    const auto unit =
        static_cast<std::uint64_t>(PowersOfTen[static_cast<std::size_t>(std::max(own - decimals, 0))]);
    std::uint64_t number = (magnitude + unit / 2) / unit;
    const bool sign = negative && number != 0;
    Backwards out(field, length);
    out.zeros(decimals - own);
    out.digits(number, std::min(own, decimals));
    if (decimals > 0) out.put('.');
    out.rest(number);
    if (sign) out.put('-');
    return out.fits();
}

// A number that is 0 with these decimals has no sign.
bool writeReal(double value, std::int32_t decimals, char* field, std::int32_t length) {
    if (!std::isfinite(value) || decimals > length) return false;
    char text[1 + MaxXbaseFieldLength];  // the sign of such a 0 does not take room
    const auto end = std::to_chars(text, text + length + 1, value, std::chars_format::fixed, decimals);
    if (end.ec != std::errc()) return false;
    const bool negative = text[0] == '-';
    const bool isZero =
        negative && std::all_of(text + 1, end.ptr, [](char c) { return c == '0' || c == '.'; });
    const std::string_view shown(text + isZero, static_cast<std::size_t>(end.ptr - text) - isZero);
    if (shown.size() > static_cast<std::size_t>(length)) return false;
    shown.copy(field + length - shown.size(), shown.size());
    return true;
}

bool writeNumber(const char* at, Kind kind, std::int32_t decimals, char* field, std::int32_t length) {
    if (kind == KindReal) return writeReal(ReadAt<double>(at), decimals, field, length);
    std::int64_t value = 0;
    if (kind == KindFixed)
        value = ReadAt<Fixed>(at);
    else
        value = kind == KindInteger ? ReadAt<std::int32_t>(at) : ReadAt<std::uint8_t>(at);
    const auto bits = static_cast<std::uint64_t>(value);
    return writeScaled(value < 0 ? 0 - bits : bits, value < 0, kind == KindFixed ? FixedDecimals : 0,
                       decimals, field, length);
}

}  // namespace

bool ReadXbaseNumber(std::string_view text, char* at, Kind kind) {
    text = withoutFill(text);
    if (!text.empty() && readNumber(text, at, kind)) return true;
    std::memset(at, 0, static_cast<std::size_t>(KindSize[kind]));
    return text.empty();
}

bool WriteXbaseNumber(const char* at, Kind kind, std::int32_t decimals, char* field, std::int32_t length) {
    if (writeNumber(at, kind, decimals, field, length)) return true;
    std::memset(field, ' ', static_cast<std::size_t>(length));
    return false;
}

}  // namespace tarn
