// SPDX-License-Identifier: Apache-2.0
#include "toolchain/help/markup.h"

#include "os/text/ascii.h"

#include <algorithm>

namespace tarn::help {
namespace {

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}

bool isFence(std::string_view line) {
    return line.starts_with("```");
}
bool isRow(std::string_view line) {
    return line.starts_with("|");
}
bool isRule(std::string_view line) {
    return isRow(line) && line.find_first_not_of("|-: ") == std::string_view::npos;
}
bool isCode(std::string_view line) {
    return line.starts_with("    ");
}

// The length of "- " or "12. " at the head of an item; 0 if it is none.
std::size_t markLength(std::string_view line) {
    if (line.starts_with("- ")) return 2;
    std::size_t digits = 0;
    while (digits < line.size() && ascii::isDigit(line[digits])) ++digits;
    return digits > 0 && line.substr(digits).starts_with(". ") ? digits + 2 : 0;
}

bool endsParagraph(std::string_view line) {
    return trimmed(line).empty() || isFence(line) || isRow(line) || line.starts_with("#") ||
           markLength(line) > 0;
}

// The cells of "| a | b |"; a bar within `code` belongs to its cell.
std::vector<std::string> cellsOf(std::string_view row) {
    std::vector<std::string> cells;
    std::string cell;
    bool code = false;
    for (const char c : row.substr(1)) {
        if (c == '`') code = !code;
        if (c != '|' || code) {
            cell += c;
            continue;
        }
        cells.emplace_back(trimmed(cell));
        cell.clear();
    }
    return cells;
}

class Blocks {
public:
    explicit Blocks(std::string_view text) : lines_(linesOf(text)) {}

    std::string html() {
        while (at_ < lines_.size()) {
            const std::string& line = lines_[at_];
            if (trimmed(line).empty())
                ++at_;
            else if (isFence(line))
                fence();
            else if (line.starts_with("#"))
                heading();
            else if (isRow(line))
                table();
            else if (isCode(line))
                code();
            else if (markLength(line) > 0)
                list();
            else
                out_ += "<p>" + inlineHtml(paragraph()) + "</p>\n";
        }
        return std::move(out_);
    }

private:
    void fence() {
        std::string text;
        for (++at_; at_ < lines_.size() && !isFence(lines_[at_]); ++at_) text += lines_[at_] + "\n";
        ++at_;
        out_ += "<pre>" + escaped(text) + "</pre>\n";
    }
    void code() {
        std::string text;
        for (; at_ < lines_.size() && (isCode(lines_[at_]) || trimmed(lines_[at_]).empty()); ++at_)
            text += (isCode(lines_[at_]) ? lines_[at_].substr(4) : "") + "\n";
        while (text.ends_with("\n\n")) text.pop_back();
        out_ += "<pre>" + escaped(text) + "</pre>\n";
    }
    void heading() {
        const std::string& line = lines_[at_++];
        const Heading heading = headingOf(std::string_view(line).substr(line.find_first_not_of('#')));
        for (const std::string& topic : heading.topics)
            out_ += "<a name=\"" + escaped(topicKey(topic)) + "\"></a>";
        out_ += "<h3>" + inlineHtml(heading.title) + "</h3>\n";
    }
    std::string paragraph() {
        std::string text = lines_[at_++];
        while (at_ < lines_.size() && !endsParagraph(lines_[at_])) text += "\n" + lines_[at_++];
        return text;
    }
    void list() {
        const std::string tag = lines_[at_].starts_with("- ") ? "ul" : "ol";
        out_ += "<" + tag + ">\n";
        while (at_ < lines_.size() && markLength(lines_[at_]) > 0) {
            lines_[at_].erase(0, markLength(lines_[at_]));
            out_ += "<li>" + inlineHtml(paragraph()) + "</li>\n";
        }
        out_ += "</" + tag + ">\n";
    }
    void row(const std::string& line, const std::string& tag) {
        out_ += "<tr>";
        for (const std::string& cell : cellsOf(line))
            out_ += "<" + tag + ">" + inlineHtml(cell) + "</" + tag + ">";
        out_ += "</tr>\n";
    }
    void table() {
        out_ += "<table>\n";
        const bool headed = at_ + 1 < lines_.size() && isRule(lines_[at_ + 1]);
        for (bool first = headed; at_ < lines_.size() && isRow(lines_[at_]); ++at_, first = false)
            if (!isRule(lines_[at_])) row(lines_[at_], first ? "th" : "td");
        out_ += "</table>\n";
    }

    std::vector<std::string> lines_;
    std::size_t at_ = 0;
    std::string out_;
};

// One piece of a line that has a meaning; the place behind it, or `at` if nothing begins there.
std::size_t piece(std::string_view text, std::size_t at, std::string& out) {
    const auto end = [&](std::string_view mark, std::size_t from) { return text.find(mark, from); };
    const std::string_view rest = text.substr(at);
    if (rest.starts_with("`")) {
        const std::size_t close = end("`", at + 1);
        if (close == std::string_view::npos) return at;
        out += "<code>" + escaped(text.substr(at + 1, close - at - 1)) + "</code>";
        return close + 1;
    }
    if (rest.starts_with("**")) {
        const std::size_t close = end("**", at + 2);
        if (close == std::string_view::npos) return at;
        out += "<b>" + inlineHtml(text.substr(at + 2, close - at - 2)) + "</b>";
        return close + 2;
    }
    for (const std::string_view tag : {"<kbd>", "</kbd>"}) {
        if (!rest.starts_with(tag)) continue;
        out += tag;
        return at + tag.size();
    }
    const std::size_t middle = rest.starts_with("[") ? end("](", at) : std::string_view::npos;
    const std::size_t close = middle == std::string_view::npos ? middle : end(")", middle);
    if (close == std::string_view::npos) return at;
    out += "<a href=\"" + escaped(text.substr(middle + 2, close - middle - 2)) + "\">" +
           inlineHtml(text.substr(at + 1, middle - at - 1)) + "</a>";
    return close + 1;
}

}  // namespace

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        if (lines.back().ends_with('\r')) lines.back().pop_back();
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::string topicKey(std::string_view topic) {
    std::string key = ascii::lowered(topic);
    std::replace(key.begin(), key.end(), ' ', '_');
    return key;
}

Heading headingOf(std::string_view line) {
    Heading heading;
    const std::size_t open = line.rfind(" {#");
    heading.title = trimmed(line.substr(0, open));
    if (open == std::string_view::npos || !trimmed(line).ends_with('}')) return heading;
    std::string_view inner = trimmed(line.substr(open + 2));
    inner.remove_suffix(1);
    const std::size_t bar = std::min(inner.find('|'), inner.size());
    for (std::string_view topics = inner.substr(0, bar); !topics.empty();) {
        const std::size_t next = std::min(topics.find(" #"), topics.size());
        heading.topics.emplace_back(trimmed(topics.substr(1, next - 1)));
        topics.remove_prefix(std::min(next + 1, topics.size()));
    }
    for (std::string_view words = inner.substr(std::min(bar + 1, inner.size())); !words.empty();) {
        const std::size_t next = std::min(words.find(','), words.size());
        if (!trimmed(words.substr(0, next)).empty())
            heading.keywords.emplace_back(trimmed(words.substr(0, next)));
        words.remove_prefix(std::min(next + 1, words.size()));
    }
    return heading;
}

std::vector<Section> sectionsOf(std::string_view text) {
    std::vector<Section> sections(1);
    bool fenced = false;
    for (const std::string& line : linesOf(text)) {
        if (isFence(line)) fenced = !fenced;
        const int level = fenced || line.starts_with("###") ? 0
                          : line.starts_with("## ")         ? 2
                          : line.starts_with("# ")          ? 1
                                                            : 0;
        if (level > 0) {
            sections.push_back(
                {level, headingOf(std::string_view(line).substr(static_cast<std::size_t>(level))), ""});
        } else {
            sections.back().body += line + "\n";
        }
    }
    if (trimmed(sections.front().body).empty()) sections.erase(sections.begin());
    return sections;
}

std::string escaped(std::string_view text) {
    std::string out;
    for (const char c : text) {
        switch (c) {
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '&': out += "&amp;"; break;
        case '"': out += "&quot;"; break;
        default: out += c;
        }
    }
    return out;
}

std::string inlineHtml(std::string_view text) {
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t next = piece(text, at, out);
        if (next == at) out += escaped(text.substr(at++, 1));
        at = std::max(at, next);
    }
    return out;
}

std::string htmlOf(std::string_view text) {
    return Blocks(text).html();
}

}  // namespace tarn::help
