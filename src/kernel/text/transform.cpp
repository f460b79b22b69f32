// SPDX-License-Identifier: Apache-2.0
#include "kernel/text/transform.h"

#include "kernel/text/numbers.h"
#include "os/text/ascii.h"

namespace tarn {

namespace {

constexpr std::string_view builtInKey = "A lantern in the harbour shows the way 1600-01-01";

std::string shifted(std::string_view key, std::string_view bytes, bool add) {
    if (key.empty()) key = builtInKey;
    std::string out(bytes);
    std::size_t at = 0;
    for (char& c : out) {
        c = static_cast<char>(add ? c + key[at] : c - key[at]);
        if (++at == key.size()) at = 0;
    }
    return out;
}

std::string hidden(std::string_view key, std::string_view bytes) {
    return shifted(key, bytes, true);
}
std::string shown(std::string_view key, std::string_view bytes) {
    return shifted(key, bytes, false);
}

std::string toBase64(std::string_view, std::string_view bytes) {
    return Base64Encode(bytes);
}

// The letter's value; -1 for any other character.
int base64Value(char c) {
    if (ascii::isUpper(c)) return c - 'A';
    if (ascii::isLower(c)) return c - 'a' + 26;
    if (ascii::isDigit(c)) return c - '0' + 52;
    return c == '+' ? 62 : c == '/' ? 63 : -1;
}

// The bits of the letters one behind another; what "=" stands for is no bits.
std::string fromBase64(std::string_view, std::string_view text) {
    std::string out;
    out.reserve(text.size() / 4 * 3 + 3);
    unsigned bits = 0, count = 0;
    for (const char c : text) {
        const int value = base64Value(c);
        if (value < 0) continue;
        bits = (bits << 6 | static_cast<unsigned>(value)) & 0xFFFF;
        count += 6;
        if (count < 8) continue;
        count -= 8;
        out += static_cast<char>(bits >> count & 0xFF);
    }
    return out;
}

std::string toHex(std::string_view, std::string_view bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(bytes.size() * 3);
    for (const char c : bytes) {
        out += digits[static_cast<unsigned char>(c) >> 4];
        out += digits[c & 15];
        out += ' ';
    }
    return out;
}

std::string fromHex(std::string_view, std::string_view text) {
    std::string out;
    out.reserve(text.size() / 2);
    int high = -1;
    for (const char c : text) {
        const int digit = ascii::hexDigit(c);
        if (digit < 0) continue;
        if (high >= 0) out += static_cast<char>(high << 4 | digit);
        high = high < 0 ? digit : -1;
    }
    return out;
}

struct Way {
    std::int32_t mode;
    std::string (*apply)(std::string_view key, std::string_view bytes);
};
constexpr Way ways[] = {{TransformHide, hidden},       {TransformShow, shown},
                        {TransformToBase64, toBase64}, {TransformFromBase64, fromBase64},
                        {TransformToHex, toHex},       {TransformFromHex, fromHex}};

}  // namespace

std::string TransformBytes(std::string_view key, std::int32_t mode, std::string_view bytes, bool& ok) {
    for (const Way& way : ways) {
        ok = way.mode == mode;
        if (ok) return way.apply(key, bytes);
    }
    return {};
}

}  // namespace tarn
