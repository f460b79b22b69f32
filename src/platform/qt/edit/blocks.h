// SPDX-License-Identifier: GPL-3.0-or-later
//
// The blocks of a text that can be folded, by rules that come as one text (platform/operations/edits.h). A line is
// scanned by itself from the depth at its start, so that a change is followed until the depth is what it was. Words
// compare without regard to case; those in strings and comments do not count. Cost: linear in the line.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace tarn::platform::qt {

class BlockRules {
public:
    BlockRules() = default;
    explicit BlockRules(std::string_view rules);
    [[nodiscard]] bool empty() const { return any_.empty() && first_.empty(); }

    static constexpr int Deepest = 3000;  // blocks that stand deeper are not told apart
    struct Line {
        int start = 0, end = 0;  // how many blocks are open at its start and its end
        bool comment = false;    // it holds a comment and nothing else
    };
    [[nodiscard]] Line scan(std::string_view line, int depth) const;

private:
    using Words = std::set<std::string, std::less<>>;
    Words first_, any_, end_, outer_;
    std::string comment_;
};

}  // namespace tarn::platform::qt
