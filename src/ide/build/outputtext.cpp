// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/outputtext.h"

#include <algorithm>
#include <utility>

namespace tarn {
namespace {

// How many bytes a character of UTF-8 has by its first one; 0 for a byte that begins none.
std::size_t lengthOf(unsigned char first) {
    if (first < 0x80) return 1;
    if (first < 0xC2 || first > 0xF4) return 0;
    return first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

bool isFollowing(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

// Whether the second byte may follow the first: no character is written longer than it must be, none stands for half of a
// pair, and none is beyond the last.
bool maySecond(unsigned char first, unsigned char second) {
    switch (first) {
    case 0xE0: return second >= 0xA0;
    case 0xED: return second < 0xA0;
    case 0xF0: return second >= 0x90;
    case 0xF4: return second < 0x90;
    default: return true;
    }
}

struct Character {
    std::size_t bytes;  // 0: more must come to tell
    bool good;
};

Character characterAt(std::string_view bytes) {
    const auto first = static_cast<unsigned char>(bytes[0]);
    const std::size_t length = lengthOf(first);
    if (length == 0) return {1, false};
    for (std::size_t i = 1; i < length; ++i) {
        if (i == bytes.size()) return {0, false};
        const bool fits =
            isFollowing(bytes[i]) && (i > 1 || maySecond(first, static_cast<unsigned char>(bytes[i])));
        if (!fits) return {i, false};
    }
    return {length, true};
}

std::string asNumbers(std::string_view bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string out;
    for (const char c : bytes) {
        const auto value = static_cast<unsigned char>(c);
        out.append("\\x");
        out += digits[value >> 4U];
        out += digits[value & 15U];
    }
    return out;
}

bool isPlain(char c) {
    return static_cast<unsigned char>(c) >= ' ' && c != '\x7F' && static_cast<unsigned char>(c) < 0x80;
}

}  // namespace

void OutputText::add(std::string_view bytes) {
    std::string joined;
    if (!part_.empty()) {
        joined.swap(part_);
        bytes = joined.append(bytes);
    }
    while (!bytes.empty()) {
        std::size_t plain = 0;
        while (plain < bytes.size() && plain < LongestLine && isPlain(bytes[plain])) ++plain;
        if (plain == 0) {
            const Character next = characterAt(bytes);
            if (next.bytes == 0) break;
            plain = next.bytes;
            addCharacter(next.good ? std::string(bytes.substr(0, plain)) : asNumbers(bytes.substr(0, plain)));
        } else {
            plain = std::min(plain, LongestLine - std::min(open_.size(), LongestLine - 1));
            addCharacter(bytes.substr(0, plain));
        }
        bytes.remove_prefix(plain);
    }
    part_ = bytes;
}

void OutputText::addCharacter(std::string_view character) {
    const char c = character.front();
    const bool follows = c == '\n' && afterReturn_;
    afterReturn_ = c == '\r';
    if (follows) return;
    if (c == '\n' || c == '\r') return endLine();
    if (open_.size() + character.size() > LongestLine) endLine();
    if ((static_cast<unsigned char>(c) < ' ' && c != '\t') || c == '\x7F')
        open_ += asNumbers(character);
    else
        open_ += character;
}

void OutputText::endLine() {
    open_ += '\n';
    bytes_ += open_.size();
    lines_.push_back(std::move(open_));
    open_.clear();
    // Many at once, so that a window that shows the text seldom has to begin anew.
    if (lines_.size() <= MostLines && bytes_ <= MostBytes) return;
    while (lines_.size() > MostLines * 3 / 4 || bytes_ > MostBytes * 3 / 4) {
        bytes_ -= lines_.front().size();
        lines_.pop_front();
        ++dropped_;
    }
    ++cuts_;
}

void OutputText::addLine(std::string_view line) {
    end();
    if (!open_.empty()) endLine();
    afterReturn_ = false;
    open_ = line;
    endLine();
}

void OutputText::end() {
    const std::string rest = asNumbers(part_);
    part_.clear();
    open_ += rest;
}

void OutputText::clear() {
    const std::int64_t cuts = cuts_;
    *this = OutputText();
    cuts_ = cuts + 1;
}

std::string OutputText::text() const {
    std::string out;
    out.reserve(bytes_ + open_.size() + 80);
    if (dropped_ > 0) out = "... " + std::to_string(dropped_) + " line(s) before these are not kept ...\n";
    for (const std::string& line : lines_) out += line;
    return out += open_;
}

}  // namespace tarn
