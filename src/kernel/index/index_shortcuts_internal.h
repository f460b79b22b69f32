// SPDX-License-Identifier: Apache-2.0
//
// Shortcuts from the hash of a key to its row, beside a mirrored tree (index_mirror.h). A line of eight fills a line of
// the processor's cache, so that a search waits for memory twice: for the line, and then for the row's entry, its
// descriptor and its content together, whose places the line tells.
//
//   offset size  line
//        0   16  tags: 16 bits of the hash for each, 0 for none, never 1
//       16   32  rows: its number in bits 0-16; above them the lower 15 bits of where its content is thought to stand
//       48   16  the upper 13 bits of that (its offset / 16). No more than a hint: 0 for unknown, and it may be out of date
//
// A full line loses one for each that it gets: a key without a shortcut is looked for in the tree. A slot without a tag
// keeps the row that it had, which may be gone or another one by now.
#pragma once

#include "kernel/index/index_mirror.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace tarn {

inline constexpr std::int32_t SlotsOfLine = 8, LineBytes = 64;

struct ShortcutLine {
    std::uint16_t tags[SlotsOfLine];
    std::uint32_t rows[SlotsOfLine];
    std::uint16_t places[SlotsOfLine];
};
static_assert(sizeof(ShortcutLine) == LineBytes);

// The block of `lines` lines, which begin where a line of the cache does.
constexpr std::int32_t BytesOfLines(std::int32_t lines) {
    return (lines + 1) * LineBytes;
}
inline ShortcutLine* LinesOf(const IndexMirror& mirror) {
    const auto at = reinterpret_cast<std::uintptr_t>(At(mirror.shortcuts));
    return reinterpret_cast<ShortcutLine*>((at + LineBytes - 1) / LineBytes * LineBytes);
}

// The shortcuts of the keys with this hash.
class Shortcuts {
public:
    Shortcuts(const IndexMirror& mirror, std::uint32_t hash)
        : line_(LinesOf(mirror)[std::uint64_t{hash} * static_cast<std::uint32_t>(mirror.lineCount) >> 32U]),
          tag_(tagOf(hash)) {}

    // Calls `visit` with the slots whose tags are that of the hash, until it gives true; true then too. Seldom also with
    // one behind them whose tag differs in its lowest bit alone, which the borrow from below takes for the same: that is
    // no empty slot, as there is no tag 1. Only the row's own key tells whether it is the one.
    template <class Visit>
    bool eachSlot(const Visit& visit) const {
        // One number for both halves, because no processor guesses in which of them a key stands.
        std::uint64_t same = sameTags(0) >> 1U | sameTags(1);
        for (; same != 0; same &= same - 1) {
            const int bit = std::countr_zero(same);
            if (visit(bit / tagBits + bit % 2 * slotsOfHalf)) return true;
        }
        return false;
    }
    [[nodiscard]] bool isSlotOfHash(const ShortcutLine& line, std::int32_t slot) const {
        return &line == &line_ && line.tags[slot] == tag_;
    }
    [[nodiscard]] std::uint32_t row(std::int32_t slot) const { return line_.rows[slot] & MostMirroredRow; }
    [[nodiscard]] Offset place(std::int32_t slot) const {
        const std::uint32_t upper = line_.places[slot];
        return (upper << lowerBits | line_.rows[slot] >> MirroredRowBits) * placeStep;
    }
    void put(std::uint32_t row, Offset place) {
        std::int32_t into = tag_ % SlotsOfLine;
        for (std::int32_t slot = 0; slot < SlotsOfLine; ++slot) {
            if (line_.tags[slot] == 0) into = slot;
        }
        line_.tags[into] = tag_;
        set(into, row, place);
    }
    void set(std::int32_t slot, std::uint32_t row, Offset place) {
        const std::uint32_t steps = place / placeStep;
        line_.rows[slot] = steps << MirroredRowBits | row;
        line_.places[slot] = static_cast<std::uint16_t>(steps >> lowerBits);
    }
    void forget(std::uint32_t row) {
        for (std::int32_t slot = 0; slot < SlotsOfLine; ++slot) {
            if (line_.tags[slot] == tag_ && this->row(slot) == row) line_.tags[slot] = 0;
        }
    }

private:
    static constexpr std::int32_t slotsOfHalf = 4, tagBits = 16, topOfTag = 15;
    static constexpr std::uint64_t everySlot = 0x0001000100010001;
    static constexpr std::uint32_t placeStep = 16, lowerBits = 32 - MirroredRowBits;

    // The top bit of each tag of a half that is the own one.
    [[nodiscard]] std::uint64_t sameTags(std::int32_t half) const {
        std::uint64_t tags = 0;
        std::memcpy(&tags, line_.tags + half * slotsOfHalf, sizeof tags);
        const std::uint64_t differs = tags ^ everySlot * tag_;
        return (differs - everySlot) & ~differs & everySlot << topOfTag;
    }

    // From other bits than the line's number: those are the top ones.
    static std::uint16_t tagOf(std::uint32_t hash) {
        const auto tag = static_cast<std::uint16_t>(hash);
        return tag > 1 ? tag : static_cast<std::uint16_t>(tag + 2);
    }

    ShortcutLine& line_;
    std::uint16_t tag_;
};

// A key as searches in a mirror take it, and the hash of a row's.
inline MirrorView::Key MirrorKeyOf(const KeyView& key) {
    return {HeadOfKey(key), &key};
}
inline std::uint32_t HashOfRow(const IndexTree& index, const MirrorView& tree, std::uint32_t row) {
    if (index.isNodeless()) return HashOfWhole(tree.head(row));
    const KeyView key = KeyOfNode(NodeKey(tree.node(row)), index.root->kinds);
    return HashOfKey(key, HeadOfKey(key));
}

}  // namespace tarn
