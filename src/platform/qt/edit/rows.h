// SPDX-License-Identifier: GPL-3.0-or-later
//
// Endless lines in rows. The control measures a whole line at every key, which in a line of 4,000,000 bytes takes more
// than a second; so a text with a line beyond LongLine bytes stands in it with a carriage return after each RowBytes
// bytes of such a line. That is possible where a lone carriage return is no line end of the text: all its lines end in
// LF, or all in CR LF. Of the others the lines stay as they are.
//
// Positions of the control count from 0 and count the added bytes; those of the text do not. Cost: linear to begin,
// then logarithmic in the number of rows, and linear in it for a change.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform::qt {

class Rows {
public:
    static constexpr int LongLine = 16384, RowBytes = 1000;

    static bool needed(std::string_view text);    // it has an endless line
    static bool possible(std::string_view text);  // and its line ends leave room for rows

    [[nodiscard]] bool on() const { return on_; }
    [[nodiscard]] bool pairs() const { return pairs_; }  // lines end in CR LF
    void stop();
    void start(std::string_view text);  // of a text that is possible; nothing is parted yet
    // What goes into the control in the place of a text that is put in, with the line ends of the others.
    [[nodiscard]] std::string parted(std::string_view text) const;
    [[nodiscard]] bool fits(std::string_view text) const;  // it has no carriage return of its own
    // A part of the control's text that begins at `from`, without what was added.
    [[nodiscard]] std::string joined(std::string_view part, int from) const;

    // Told of every change: in front of it, and of what has come in; `next` is the byte behind that.
    void inserting(int at, int count);
    void inserted(int at, std::string_view text, char next);
    void removing(int at, int count);

    [[nodiscard]] int added() const { return static_cast<int>(at_.size()); }
    [[nodiscard]] const std::vector<int>& places() const { return at_; }
    [[nodiscard]] bool isAdded(int position) const;
    [[nodiscard]] int toText(int position) const;
    // `behind`: in front of a row, not at the end of the row before.
    [[nodiscard]] int toControl(int position, bool behind) const;

private:
    [[nodiscard]] std::size_t before(int position) const;  // how many of them stand in front of it

    std::vector<int> at_;  // where the added ones stand, ascending
    bool on_ = false, pairs_ = false;
};

}  // namespace tarn::platform::qt
