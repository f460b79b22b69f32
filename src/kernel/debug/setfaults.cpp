// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/setfaults.h"

#include "os/text/ascii.h"

#include <algorithm>
#include <charconv>

namespace tarn {

namespace {

// A number of any size: one that is too large for its type is outside of all bounds.
struct Member {
    std::size_t at = 0;
    std::string_view text;
    std::int64_t value = 0;
};

class SetWalk {
public:
    SetWalk(std::string_view text, std::size_t at, std::int32_t lower, std::int32_t upper)
        : text_(text), at_(at), lower_(lower), upper_(upper) {}

    std::optional<SetFault> run() {
        if (!take("[")) return {};
        skipBlanks();
        if (next() == ']') return {};
        do {
            skipBlanks();
            if (next() == ',' || next() == ']')
                return SetFault{at_, "a member is missing: write one, or take the comma away"};
            if (!members() || fault_) return fault_;
            skipBlanks();
        } while (take(","));
        return {};
    }

private:
    // One, or a range. False: it is neither.
    bool members() {
        Member low, high;
        if (!number(low)) return false;
        const bool isRange = take("..") || take(":");
        if (isRange && !number(high)) return false;
        check(low);
        if (!isRange) return true;
        check(high);
        if (!fault_ && high.value < low.value)
            fault_ = SetFault{low.at, "the range " + shown(low) + ".." + shown(high) +
                                          " has no members: the lesser number comes first"};
        return true;
    }
    bool number(Member& member) {
        member.at = at_;
        if (next() == '+' || next() == '-') ++at_;
        const std::size_t digits = at_;
        while (ascii::isDigit(next())) ++at_;
        member.text = text_.substr(member.at, at_ - member.at);
        const char* const from = member.text.data() + (member.text.starts_with('+') ? 1 : 0);
        const auto read = std::from_chars(from, member.text.data() + member.text.size(), member.value);
        if (read.ec == std::errc::result_out_of_range)
            member.value = member.text.starts_with('-') ? INT64_MIN : INT64_MAX;
        return at_ > digits;
    }
    void check(const Member& member) {
        if (fault_ || (member.value >= lower_ && member.value <= upper_)) return;
        fault_ = SetFault{member.at, "the member " + shown(member) +
                                         " is outside of the set: its members are from " +
                                         std::to_string(lower_) + " to " + std::to_string(upper_)};
    }
    static std::string shown(const Member& member) {
        constexpr std::size_t most = 20;
        return member.text.size() <= most ? std::string(member.text)
                                          : std::string(member.text.substr(0, most)) + "...";
    }
    void skipBlanks() { at_ = std::min(text_.find_first_not_of(' ', at_), text_.size()); }
    [[nodiscard]] char next() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    bool take(std::string_view expected) {
        if (!text_.substr(at_).starts_with(expected)) return false;
        at_ += expected.size();
        return true;
    }

    std::string_view text_;
    std::size_t at_;
    std::int32_t lower_, upper_;
    std::optional<SetFault> fault_;
};

}  // namespace

std::optional<SetFault> FaultOfSet(std::string_view text, std::size_t at, std::int32_t lower,
                                   std::int32_t upper) {
    return SetWalk(text, at, lower, upper).run();
}

}  // namespace tarn
