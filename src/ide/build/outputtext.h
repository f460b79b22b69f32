// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a program has written, as text that can be shown whatever it wrote: bytes that are no UTF-8, and control characters
// but the tab, are shown by their number as \xHH; line ends are LF, CR LF and CR. The last lines are kept, up to
// `MostLines` and `MostBytes`; a line of its own on top tells how many went. A line of more than `LongestLine` bytes goes
// on in the next one.
//
// Cost: linear in what is added, however much that is; `text` copies what is kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

namespace tarn {

class OutputText {
public:
    static constexpr std::size_t MostLines = 5000, MostBytes = 400'000, LongestLine = 2000;

    void add(std::string_view bytes);
    void addLine(std::string_view line);  // what the environment itself says, on a line of its own
    void end();                           // nothing follows: a character that is not whole is shown as bytes
    void clear();

    [[nodiscard]] bool empty() const { return lines_.empty() && open_.empty(); }
    [[nodiscard]] std::string text() const;
    // Counts up whenever lines go out of the text; as long as it stays the same, a new text begins as the old one.
    [[nodiscard]] std::int64_t cuts() const { return cuts_; }
    [[nodiscard]] std::int64_t dropped() const { return dropped_; }

private:
    void addCharacter(std::string_view character);
    void endLine();

    std::deque<std::string> lines_;  // with their LF
    std::string open_;               // the line that has no end yet
    std::string part_;               // of a character that is not whole yet
    std::size_t bytes_ = 0;          // of the lines
    std::int64_t dropped_ = 0, cuts_ = 0;
    bool afterReturn_ = false;
};

}  // namespace tarn
