// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/outputtext.h"

#include "os/text/utf8.h"

#include <algorithm>
#include <utility>

namespace tarn {
namespace {

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
            const utf8::First next = utf8::first(bytes);
            if (next.kind == utf8::First::Kind::Cut) break;
            plain = next.bytes;
            const bool good = next.kind == utf8::First::Kind::Character;
            addCharacter(good ? std::string(bytes.substr(0, plain)) : asNumbers(bytes.substr(0, plain)));
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
