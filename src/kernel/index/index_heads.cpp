// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_heads.h"

#include "os/text/bigendian.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace tarn {

namespace {

constexpr std::int32_t headBytes = 8;
constexpr std::uint64_t sign = std::uint64_t{1} << 63U;

// The first bytes of a field, from the top bit of `bits` on.
struct Piece {
    std::uint64_t bits = 0;
    std::int32_t bytes = headBytes;
    bool whole = true;  // nothing of the field stands behind them
};

std::uint64_t firstBytes(const char* at, std::int32_t bytes) {
    char padded[headBytes] = {};
    if (bytes > 0) std::memcpy(padded, at, static_cast<std::size_t>(std::min(bytes, headBytes)));
    return bigendian::at<std::uint64_t>(padded);
}

// What is no number comes last, and the two zeros are one.
std::uint64_t bitsOfReal(double value) {
    if (std::isnan(value)) return ~std::uint64_t{0};
    const auto bits = std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value);
    return (bits & sign) != 0 ? ~bits : bits | sign;
}

Piece pieceOf(const KeyPart& part) {
    switch (part.kind) {
    case KindInteger: return {HeadOfInteger(ReadAt<std::int32_t>(part.at)), 4, true};
    case KindFixed: return {ReadAt<std::uint64_t>(part.at) ^ sign, headBytes, true};
    case KindReal: return {bitsOfReal(ReadAt<double>(part.at)), headBytes, true};
    case KindString:  // wide characters are not in the order of their bytes
        return {CharacterWidth == 1 ? firstBytes(part.at, part.bytes) : 0, headBytes, false};
    case KindArray: return {firstBytes(part.at, part.bytes), part.bytes, part.bytes <= headBytes};
    default: return {std::uint64_t{ReadAt<std::uint8_t>(part.at)} << 56U, 1, true};
    }
}

std::uint64_t hashText(std::uint64_t hash, const char* at, std::int32_t bytes) {
    hash = MixHash(hash, static_cast<std::uint32_t>(bytes));
    for (; bytes > 0; at += headBytes, bytes -= headBytes) hash = MixHash(hash, firstBytes(at, bytes));
    return hash;
}

}  // namespace

KeyHead HeadOfFields(const KeyView& key) {
    KeyHead head;
    std::int32_t used = 0;
    for (std::int32_t i = 0; i < key.count && used < headBytes; ++i) {
        const Piece piece = pieceOf(key.parts[i]);
        head.bits |= piece.bits >> static_cast<std::uint32_t>(used * 8);
        used += std::min(piece.bytes, headBytes);
        head.whole = piece.whole && used <= headBytes && i + 1 == key.count;
        if (!piece.whole) break;
    }
    return head;
}

bool HeadTellsKey(const KeyView& key) {
    std::int32_t bytes = 0;
    for (std::int32_t i = 0; i < key.count; ++i) {
        if (key.parts[i].kind > KindFixed) return false;
        bytes += KindSize[key.parts[i].kind];
    }
    return bytes != 0 && bytes <= headBytes;
}

void FieldsOfHead(std::uint64_t head, KeyView& shape, char* fields) {
    for (std::int32_t i = 0; i < shape.count; ++i) {
        KeyPart& part = shape.parts[i];
        part.bytes = KindSize[part.kind];
        part.at = part.field = fields;
        if (part.kind == KindInteger)
            WriteAt(fields, static_cast<std::uint32_t>((head ^ sign) >> 32U));
        else if (part.kind == KindFixed)
            WriteAt(fields, head ^ sign);
        else
            WriteAt(fields, static_cast<std::uint8_t>(head >> 56U));
        fields += part.bytes;
        head = part.bytes < headBytes ? head << static_cast<std::uint32_t>(part.bytes * 8) : 0;
    }
}

std::uint32_t HashOfFields(const KeyView& key) {
    std::uint64_t hash = 0;
    for (std::int32_t i = 0; i < key.count; ++i) {
        const KeyPart& part = key.parts[i];
        hash = part.kind == KindString || part.kind == KindArray ? hashText(hash, part.at, part.bytes)
                                                                 : MixHash(hash, pieceOf(part).bits);
    }
    return static_cast<std::uint32_t>(MixHash(hash, 0));
}

}  // namespace tarn
