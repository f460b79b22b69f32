// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/listdelta.h"

#include <algorithm>
#include <unordered_map>

namespace tarn {

void PUTNUMBER(std::string& bytes, std::size_t number) {
    for (; number >= 0x80; number >>= 7) bytes += static_cast<char>(0x80 | (number & 0x7f));
    bytes += static_cast<char>(number);
}

std::size_t TAKENUMBER(std::string_view& bytes) {
    std::size_t number = 0;
    for (unsigned shift = 0; !bytes.empty() && shift < 64; shift += 7) {
        const auto byte = static_cast<unsigned char>(bytes.front());
        bytes.remove_prefix(1);
        number |= static_cast<std::size_t>(byte & 0x7fU) << shift;
        if (byte < 0x80) break;
    }
    return number;
}

namespace {

// A delta is a row of these, each with its numbers behind it.
enum Part : std::size_t {
    Run,    // index, count: texts that stay
    Patch,  // index, bytes kept in front, bytes kept at the end, length, and the bytes between them
    Whole,  // length, and a new text
};

struct Kept {
    std::size_t front = 0, back = 0;
    [[nodiscard]] std::size_t bytes() const { return front + back; }
};

Kept keptOf(const std::string& from, const std::string& to) {
    const std::size_t most = std::min(from.size(), to.size());
    Kept kept;
    while (kept.front < most && from[kept.front] == to[kept.front]) ++kept.front;
    while (kept.bytes() < most && from[from.size() - 1 - kept.back] == to[to.size() - 1 - kept.back])
        ++kept.back;
    return kept;
}

class Writer {
public:
    explicit Writer(const std::vector<std::string>& from) : from_(from) {
        for (std::size_t i = from.size(); i-- > 0;) places_[from[i]] = i;
    }
    void add(std::size_t index, const std::string& text) {
        if (next_ < from_.size() && from_[next_] == text) return stays(next_);
        if (const auto place = places_.find(text); place != places_.end()) return stays(place->second);
        becomes(index, text);
    }
    std::string delta() {
        endRun();
        return std::move(delta_);
    }

private:
    void stays(std::size_t at) {
        if (count_ > 0 && at != start_ + count_) endRun();
        if (count_++ == 0) start_ = at;
        next_ = at + 1;
    }
    void endRun() {
        if (count_ > 0) put({Run, start_, count_});
        count_ = 0;
    }
    void put(std::initializer_list<std::size_t> numbers) {
        for (const std::size_t number : numbers) PUTNUMBER(delta_, number);
    }
    // A text changes most often where it stands: behind the one before it, or at its index.
    void becomes(std::size_t index, const std::string& text) {
        constexpr std::size_t least = 8;  // bytes that are worth the numbers
        endRun();
        std::size_t source = from_.size();
        Kept best;
        for (const std::size_t at : {next_, index}) {
            if (at >= from_.size()) continue;
            const Kept kept = keptOf(from_[at], text);
            if (kept.bytes() > best.bytes()) source = at, best = kept;
        }
        if (best.bytes() < least) {
            put({Whole, text.size()});
            delta_ += text;
            return;
        }
        const std::size_t length = text.size() - best.bytes();
        put({Patch, source, best.front, best.back, length});
        delta_.append(text, best.front, length);
        next_ = source + 1;
    }

    const std::vector<std::string>& from_;
    std::unordered_map<std::string_view, std::size_t> places_;
    std::string delta_;
    std::size_t start_ = 0, count_ = 0;  // of the run that is not written yet
    std::size_t next_ = 0;               // behind the text that was used last
};

std::string_view takeText(std::string_view& bytes) {
    const std::size_t length = TAKENUMBER(bytes);
    const std::string_view text = bytes.substr(0, length);
    bytes.remove_prefix(text.size());
    return text;
}

void takeRun(const std::vector<std::string>& from, std::string_view& delta, std::vector<std::string>& to) {
    const std::size_t start = std::min(TAKENUMBER(delta), from.size());
    const std::size_t count = std::min(TAKENUMBER(delta), from.size() - start);
    const auto first = from.begin() + static_cast<std::ptrdiff_t>(start);
    to.insert(to.end(), first, first + static_cast<std::ptrdiff_t>(count));
}

void takePatch(const std::vector<std::string>& from, std::string_view& delta, std::vector<std::string>& to) {
    const std::size_t at = TAKENUMBER(delta);
    const std::string_view source = at < from.size() ? std::string_view(from[at]) : std::string_view();
    const std::size_t front = std::min(TAKENUMBER(delta), source.size());
    const std::size_t back = std::min(TAKENUMBER(delta), source.size());
    std::string text(source.substr(0, front));
    text.append(takeText(delta)).append(source.substr(source.size() - back));
    to.push_back(std::move(text));
}

}  // namespace

std::string LISTDELTA(const std::vector<std::string>& from, const std::vector<std::string>& to) {
    if (from == to) return {};
    if (to.empty()) return std::string(1, Run) + std::string(2, '\0');  // no texts of the first
    Writer writer(from);
    for (std::size_t i = 0; i < to.size(); ++i) writer.add(i, to[i]);
    return writer.delta();
}

std::vector<std::string> DELTAAPPLIED(const std::vector<std::string>& from, std::string_view delta) {
    if (delta.empty()) return from;
    std::vector<std::string> to;
    while (!delta.empty()) {
        switch (TAKENUMBER(delta)) {
        case Run: takeRun(from, delta, to); break;
        case Patch: takePatch(from, delta, to); break;
        default: to.emplace_back(takeText(delta));
        }
    }
    return to;
}

}  // namespace tarn
