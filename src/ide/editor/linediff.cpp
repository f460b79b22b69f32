// SPDX-License-Identifier: GPL-3.0-or-later
//
// The shortest way from one list of lines to the other is searched by the number of its steps: for each diagonal the
// furthest place that d steps reach is kept, and what was kept for each d leads back.
#include "ide/editor/linediff.h"

#include "os/text/ascii.h"

#include <algorithm>
#include <vector>

namespace tarn {
namespace {

using Lines = std::vector<std::string_view>;
constexpr int MostSteps = 500;
constexpr int Around = 2;  // common lines shown on both sides

Lines linesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) lines.push_back(ascii::takeLine(text));
    return lines;
}

struct Row {
    char mark;  // ' ', '-' or '+'
    std::string_view line;
    int number;  // in the first text, of this line or of the next one there
};

class Comparison {
public:
    Comparison(const Lines& a, const Lines& b) : a_(a), b_(b) {
        const int most = static_cast<int>(std::min(a.size(), b.size()));
        while (head_ < most && a[index(head_)] == b[index(head_)]) ++head_;
        while (tail_ < most - head_ && a[a.size() - 1 - index(tail_)] == b[b.size() - 1 - index(tail_)])
            ++tail_;
        n_ = static_cast<int>(a.size()) - head_ - tail_;
        m_ = static_cast<int>(b.size()) - head_ - tail_;
    }

    std::vector<Row> rows() {
        std::vector<Row> rows;
        for (int i = std::max(0, head_ - Around); i < head_; ++i) rows.push_back({' ', a_[index(i)], i + 1});
        const std::vector<Row> middle = search() ? wayBack() : allDifferent();
        rows.insert(rows.end(), middle.begin(), middle.end());
        const int end = head_ + n_;
        for (int i = end; i < std::min(end + Around, end + tail_); ++i)
            rows.push_back({' ', a_[index(i)], i + 1});
        return rows;
    }

private:
    static std::size_t index(int i) { return static_cast<std::size_t>(i); }
    [[nodiscard]] std::string_view lineA(int x) const { return a_[index(head_ + x)]; }
    [[nodiscard]] std::string_view lineB(int y) const { return b_[index(head_ + y)]; }

    // The furthest x on diagonal k after d - 1 steps and one more; diagonals count from -MostSteps - 1.
    [[nodiscard]] static int stepOnto(const std::vector<int>& furthest, int k, int d) {
        const auto at = [&](int diagonal) { return furthest[index(diagonal + MostSteps + 1)]; };
        const bool down = k == -d || (k != d && at(k - 1) < at(k + 1));
        return down ? at(k + 1) : at(k - 1) + 1;
    }

    // False if it takes more than MostSteps.
    bool search() {
        std::vector<int> furthest(index(2 * MostSteps + 3), 0);
        for (int d = 0; d <= std::min(MostSteps, n_ + m_); ++d) {
            trace_.push_back(furthest);
            for (int k = -d; k <= d; k += 2) {
                int x = d == 0 ? 0 : stepOnto(furthest, k, d), y = x - k;
                while (x < n_ && y >= 0 && y < m_ && lineA(x) == lineB(y)) ++x, ++y;
                furthest[index(k + MostSteps + 1)] = x;
                if (x >= n_ && y >= m_) return true;
            }
        }
        return false;
    }

    [[nodiscard]] std::vector<Row> wayBack() const {
        std::vector<Row> rows;
        int x = n_, y = m_;
        for (int d = static_cast<int>(trace_.size()) - 1; d > 0; --d) {
            const std::vector<int>& furthest = trace_[index(d)];
            const int k = x - y, start = stepOnto(furthest, k, d);
            while (x > start) --x, --y, rows.push_back({' ', lineA(x), head_ + x + 1});
            const auto at = [&](int diagonal) { return furthest[index(diagonal + MostSteps + 1)]; };
            const bool down = k == -d || (k != d && at(k - 1) < at(k + 1));
            if (down)
                --y, rows.push_back({'+', lineB(y), head_ + x + 1});
            else
                --x, rows.push_back({'-', lineA(x), head_ + x + 1});
        }
        while (x > 0) --x, rows.push_back({' ', lineA(x), head_ + x + 1});
        std::reverse(rows.begin(), rows.end());
        return rows;
    }

    [[nodiscard]] std::vector<Row> allDifferent() const {
        std::vector<Row> rows;
        for (int x = 0; x < n_; ++x) rows.push_back({'-', lineA(x), head_ + x + 1});
        for (int y = 0; y < m_; ++y) rows.push_back({'+', lineB(y), head_ + n_ + 1});
        return rows;
    }

    const Lines &a_, &b_;
    int head_ = 0, tail_ = 0;  // common lines
    int n_ = 0, m_ = 0;        // lines between them
    std::vector<std::vector<int>> trace_;
};

// Whether a changed line stands within reach.
bool isNearChange(const std::vector<Row>& rows, std::size_t at) {
    const std::size_t from = at < Around ? 0 : at - Around, to = std::min(rows.size(), at + Around + 1);
    return std::any_of(rows.begin() + static_cast<std::ptrdiff_t>(from),
                       rows.begin() + static_cast<std::ptrdiff_t>(to),
                       [](const Row& row) { return row.mark != ' '; });
}

// What cannot be seen of a line's end is written out.
std::string shownLine(std::string_view line) {
    if (line.ends_with("\r\n")) return std::string(line.substr(0, line.size() - 2)) + "  (CR LF)\n";
    if (line.ends_with('\n')) return std::string(line);
    return std::string(line) + "  (no line end)\n";
}

}  // namespace

std::string LINEDIFFERENCE(std::string_view first, std::string_view second, int most) {
    if (first == second) return {};
    const Lines a = linesOf(first), b = linesOf(second);
    const std::vector<Row> rows = Comparison(a, b).rows();
    std::string out;
    bool open = false;
    for (std::size_t i = 0, shown = 0; i < rows.size(); ++i) {
        if (!isNearChange(rows, i)) {
            open = false;
            continue;
        }
        if (++shown > static_cast<std::size_t>(most)) return out + "...(more)...\n";
        if (!open) out += "Line " + std::to_string(rows[i].number) + ":\n";
        open = true;
        out += std::string{rows[i].mark, ' '} + shownLine(rows[i].line);
    }
    return out;
}

int LINESCHANGED(std::string_view first, std::string_view second) {
    if (first == second) return 0;
    const Lines a = linesOf(first), b = linesOf(second);
    int changed = 0, gone = 0, come = 0;  // the last two: since the last common line
    const auto close = [&] {
        changed += std::max(gone, come);
        gone = come = 0;
    };
    for (const Row& row : Comparison(a, b).rows()) {
        if (row.mark == '-') ++gone;
        if (row.mark == '+') ++come;
        if (row.mark == ' ') close();
    }
    close();
    return changed;
}

}  // namespace tarn
