// SPDX-License-Identifier: Apache-2.0
//
// Sets as text, and back. A set is read as a whole before any of it is stored, so the text may do anything.
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/numbers.h"
#include "kernel/values/sets.h"
#include "kernel/values/sets_bits.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <new>
#include <string>

namespace tarn {

namespace {

constexpr std::int32_t syntaxError = 1;

void appendNumber(std::string& text, std::int32_t value) {
    char digits[8];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

std::string textOf(const Bits& bits, std::string_view to) {
    std::string text = "[";
    for (std::int32_t lo = NextInBits(bits, bits.lower, true); lo <= bits.upper;) {
        const std::int32_t behind = NextInBits(bits, lo, false);
        if (text.size() > 1) text += ',';
        appendNumber(text, lo);
        if (behind - lo > 1) {
            text += to;
            appendNumber(text, behind - 1);
        }
        lo = NextInBits(bits, behind, true);
    }
    return text + "]";
}

// A set that is being read. It widens as a dynamic one does, from the bounds 1..1 on.
class Reading {
public:
    Reading() { clear(ByteOf(lower_), ByteOf(upper_)); }
    // The members lo to hi; what no set can hold is remembered.
    void include(std::int32_t lo, std::int32_t hi) {
        if (!IsSetRange(lo, hi)) {
            outside_ = true;
            return;
        }
        const std::int32_t lower = std::min(lower_, lo), upper = std::max(upper_, hi);
        clear(ByteOf(lower), ByteOf(lower_) - 1);
        clear(ByteOf(upper_) + 1, ByteOf(upper));
        lower_ = lower;
        upper_ = upper;
        FillBits(bits(), lo, hi, true);
    }
    [[nodiscard]] bool outside() const { return outside_; }
    [[nodiscard]] Bits bits() { return {at(ByteOf(lower_)), lower_, upper_}; }

private:
    std::uint8_t* at(std::int32_t byte) { return buffer_ + (byte - ByteOf(LowestBound)); }
    void clear(std::int32_t first, std::int32_t last) {
        if (first <= last) std::memset(at(first), 0, static_cast<std::size_t>(last - first + 1));
    }

    std::int32_t lower_ = 1, upper_ = 1;
    bool outside_ = false;
    BitsBuffer buffer_;  // only the bytes within the bounds are set to anything
};

// A text and how far it has been read.
class Scan {
public:
    Scan(std::string_view text, std::size_t at) : text_(text), at_(at) {}

    [[nodiscard]] std::size_t position() const { return at_; }
    void skipBlanks() { at_ = std::min(text_.find_first_not_of(' ', at_), text_.size()); }
    bool take(std::string_view expected) {
        if (text_.substr(at_, expected.size()) != expected) return false;
        at_ += expected.size();
        return true;
    }
    [[nodiscard]] bool atNumber() const {
        const char c = at_ < text_.size() ? text_[at_] : ' ';
        return ascii::isDigit(c) || c == '+' || c == '-';
    }
    bool number(std::int32_t& value) {
        std::size_t length = 0;
        IntegerFromText(text_.substr(at_), value, length);
        at_ += length;
        return length != 0;
    }

private:
    std::string_view text_;
    std::size_t at_;
};

bool readMembers(Scan& scan, Reading& set) {
    std::int32_t lo = 0;
    if (!scan.number(lo)) return false;
    std::int32_t hi = lo;
    if ((scan.take("..") || scan.take(":")) && !scan.number(hi)) return false;
    set.include(lo, hi);
    return true;
}

// False: what stands at the position may not stand there.
bool readSet(Scan& scan, Reading& set) {
    scan.skipBlanks();
    if (!scan.take("[")) return false;
    do {
        scan.skipBlanks();
        if (scan.atNumber() && !readMembers(scan, set)) return false;
        scan.skipBlanks();
    } while (scan.take(","));
    return scan.take("]");
}

}  // namespace

void SetToText(const SetDescriptor* s, bool dots, StringDescriptor* dest) {
    if (!AcceptSet(s)) return;
    std::string text;
    try {
        text = textOf(BitsOf(*s), dots ? ".." : ":");
    } catch (const std::bad_alloc&) {
        SetError(ERR_OUT_OF_MEMORY);
    }
    StringAssignView(dest, text);
}

void SetFromText(std::string_view text, std::int32_t& position, SetDescriptor* dest, std::int32_t& error) {
    error = ERR_SET_TYPE;
    if (!AcceptSet(dest)) return;
    error = syntaxError;
    text = text.substr(0, INT32_MAX - 1);  // positions are integers
    if (position < 1 || static_cast<std::size_t>(position) > text.size() + 1) return;
    Scan scan(text, static_cast<std::size_t>(position) - 1);
    Reading set;
    const bool complete = readSet(scan, set);
    position = static_cast<std::int32_t>(scan.position()) + 1;
    if (!complete) return;
    if (set.outside()) SetError(ERR_SET_BOUNDS);
    error = set.outside() ? std::int32_t{ERR_SET_BOUNDS} : StoreBits(*dest, set.bits());
}

}  // namespace tarn
