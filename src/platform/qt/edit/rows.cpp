// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/edit/rows.h"

#include "os/text/utf8.h"

#include <algorithm>

namespace tarn::platform::qt {

namespace {

// Where a row of a line ends that begins at `from`: between two characters.
std::size_t endOfRow(std::string_view line, std::size_t from) {
    if (line.size() - from <= static_cast<std::size_t>(Rows::RowBytes)) return line.size();
    std::size_t end = from + Rows::RowBytes;
    for (int back = 0; back < 3 && utf8::isFollowing(line[end]); ++back) --end;
    return end;
}

}  // namespace

bool Rows::needed(std::string_view text) {
    for (std::size_t from = 0; text.size() - from > static_cast<std::size_t>(LongLine);) {
        // From the farthest place of a line that is not endless back to its end.
        const std::size_t end = text.substr(from, LongLine + 1).find_last_of("\r\n");
        if (end == std::string_view::npos) return true;
        from += end + 1;
    }
    return false;
}

bool Rows::possible(std::string_view text) {
    const std::size_t first = text.find('\r');
    if (first == std::string_view::npos) return true;
    for (std::size_t at = first; at != std::string_view::npos; at = text.find('\r', at + 1))
        if (text.substr(at, 2) != "\r\n") return false;
    for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1))
        if (at == 0 || text[at - 1] != '\r') return false;
    return true;
}

void Rows::stop() {
    on_ = false;
    at_.clear();
}

void Rows::start(std::string_view text) {
    stop();
    on_ = true;
    pairs_ = text.find('\r') != std::string_view::npos;
}

bool Rows::fits(std::string_view text) const {
    if (!pairs_) return text.find('\r') == std::string_view::npos;
    return possible(text) &&
           (text.find('\n') == std::string_view::npos || text.find('\r') != std::string_view::npos);
}

std::string Rows::parted(std::string_view text) const {
    const std::string_view mark = pairs_ ? "\r\n" : "\n";
    std::string out;
    out.reserve(text.size() + text.size() / RowBytes + 2);
    for (;;) {
        const std::size_t end = text.find_first_of("\r\n");
        const std::string_view line = text.substr(0, end);
        for (std::size_t at = 0; at < line.size();) {
            const std::size_t next = endOfRow(line, at);
            out.append(line.substr(at, next - at));
            if (next < line.size()) out += '\r';
            at = next;
        }
        if (end == std::string_view::npos) return out;
        out.append(mark);
        text.remove_prefix(end + (text.substr(end, 2) == "\r\n" ? 2 : 1));
    }
}

std::string Rows::joined(std::string_view part, int from) const {
    std::string out;
    out.reserve(part.size());
    std::size_t done = 0;
    for (std::size_t i = before(from); i < at_.size(); ++i) {
        const auto at = static_cast<std::size_t>(at_[i] - from);
        if (at >= part.size()) break;
        out.append(part.substr(done, at - done));
        done = at + 1;
    }
    return out.append(part.substr(std::min(done, part.size())));
}

void Rows::inserting(int at, int count) {
    for (std::size_t i = before(at); i < at_.size(); ++i) at_[i] += count;
}

void Rows::inserted(int at, std::string_view text, char next) {
    if (!on_) return;
    const std::size_t place = before(at);
    std::vector<int> found;
    for (std::size_t i = text.find('\r'); i != std::string_view::npos; i = text.find('\r', i + 1)) {
        const char behind = i + 1 < text.size() ? text[i + 1] : next;
        if (!pairs_ || behind != '\n') found.push_back(at + static_cast<int>(i));
    }
    at_.insert(at_.begin() + static_cast<std::ptrdiff_t>(place), found.begin(), found.end());
}

void Rows::removing(int at, int count) {
    if (!on_) return;
    const auto first = at_.begin() + static_cast<std::ptrdiff_t>(before(at)),
               last = at_.begin() + static_cast<std::ptrdiff_t>(before(at + count));
    for (auto left = at_.erase(first, last); left != at_.end(); ++left) *left -= count;
}

std::size_t Rows::before(int position) const {
    return static_cast<std::size_t>(std::lower_bound(at_.begin(), at_.end(), position) - at_.begin());
}

bool Rows::isAdded(int position) const {
    return std::binary_search(at_.begin(), at_.end(), position);
}

int Rows::toText(int position) const {
    return position - static_cast<int>(before(position));
}

int Rows::toControl(int position, bool behind) const {
    // The number of them whose place in the text lies in front.
    std::size_t low = 0, high = at_.size();
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        const int place = at_[middle] - static_cast<int>(middle);
        if (behind ? place <= position : place < position)
            low = middle + 1;
        else
            high = middle;
    }
    return position + static_cast<int>(low);
}

}  // namespace tarn::platform::qt
