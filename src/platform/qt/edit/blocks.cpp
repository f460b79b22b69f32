// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/edit/blocks.h"

#include <algorithm>

namespace tarn::platform::qt {

namespace {

bool isWord(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           static_cast<unsigned char>(c) >= 128;
}

std::string lowered(std::string_view word) {
    std::string out(word);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return out;
}

std::string_view takeWord(std::string_view& text) {
    while (!text.empty() && (text[0] == ' ' || text[0] == '\t')) text.remove_prefix(1);
    const std::string_view word = text.substr(0, text.find_first_of(" \t"));
    text.remove_prefix(word.size());
    return word;
}

// The words of a line that stand in no string and no comment.
class Words {
public:
    Words(std::string_view line, std::string_view comment) : line_(line), comment_(comment) {}
    bool next() {
        while (at_ < line_.size()) {
            const std::size_t start = at_;
            if (!comment_.empty() && line_.substr(at_, comment_.size()) == comment_) {
                at_ = line_.size();
            } else if (line_[at_] == '"') {
                const std::size_t close = line_.find('"', at_ + 1);
                at_ = close == std::string_view::npos ? line_.size() : close + 1;
            } else if (isWord(line_[at_])) {
                while (at_ < line_.size() && isWord(line_[at_])) ++at_;
                word = lowered(line_.substr(start, std::min<std::size_t>(at_ - start, 40)));
                return true;
            } else {
                ++at_;
            }
        }
        return false;
    }
    std::string word;

private:
    std::string_view line_, comment_;
    std::size_t at_ = 0;
};

}  // namespace

BlockRules::BlockRules(std::string_view rules) {
    while (!rules.empty()) {
        std::string_view line = rules.substr(0, rules.find('\n'));
        rules.remove_prefix(std::min(line.size() + 1, rules.size()));
        const std::string_view kind = takeWord(line);
        Words* const into = kind == "first"   ? &first_
                            : kind == "any"   ? &any_
                            : kind == "end"   ? &end_
                            : kind == "outer" ? &outer_
                                              : nullptr;
        for (std::string_view word = takeWord(line); !word.empty(); word = takeWord(line)) {
            if (into != nullptr)
                into->insert(lowered(word));
            else if (kind == "comment")
                comment_ = word;
        }
    }
}

BlockRules::Line BlockRules::scan(std::string_view line, int depth) const {
    Line found{depth, depth, false};
    const std::size_t text = line.find_first_not_of(" \t\r\n");
    found.comment =
        text != std::string_view::npos && !comment_.empty() && line.substr(text, comment_.size()) == comment_;
    if (found.comment) return found;
    bool first = true, ending = false;
    for (qt::Words words(line, comment_); words.next(); first = false) {
        if (ending) {  // the word that tells what ends
            ending = false;
            continue;
        }
        if (end_.contains(words.word)) {
            found.end = std::max(found.end - 1, 0);
            ending = true;
            continue;
        }
        if (outer_.contains(words.word)) found.start = found.end = 0;  // whatever was left open
        if (any_.contains(words.word) || (first && first_.contains(words.word))) ++found.end;
    }
    found.end = std::min(found.end, Deepest);
    return found;
}

}  // namespace tarn::platform::qt
