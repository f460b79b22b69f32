// SPDX-License-Identifier: Apache-2.0
#include "toolchain/help/book.h"

#include "os/text/ascii.h"

#include <algorithm>
#include <functional>

namespace tarn::help {
namespace {

constexpr std::string_view Space = "org.tarnwick.help";

// A name that holds in any file system and any address.
std::string fileOf(const std::string& topic) {
    std::string name;
    for (const char c : topicKey(topic))
        name += ascii::isLetter(c) || ascii::isDigit(c) || c == '_' || c == '-' ? c : '-';
    return name + ".htm";
}

// Each `open`...`close` of the text is replaced by what `change` makes of what stands between.
std::string replacedBetween(const std::string& text, std::string_view open, std::string_view close,
                            const std::function<std::string(const std::string&)>& change) {
    std::string out;
    std::size_t at = 0;
    for (std::size_t found = 0; (found = text.find(open, at)) != std::string::npos;) {
        const std::size_t begin = found + open.size(), end = text.find(close, begin);
        if (end == std::string::npos) break;
        out += text.substr(at, found - at) + change(text.substr(begin, end - begin));
        at = end + close.size();
    }
    return out + text.substr(at);
}

// "STRFIND(text, what)" names STRFIND; what does not begin with a capital letter names nothing.
std::string calledIn(const std::string& code) {
    std::size_t end = 0;
    while (end < code.size() && ascii::isSymbol(code[end])) ++end;
    const bool whole = end == code.size() || code[end] == '(';
    return end > 2 && whole && code[0] >= 'A' && code[0] <= 'Z' ? code.substr(0, end) : "";
}

constexpr std::string_view BrowserStyle = R"(:root { color-scheme: light dark; }
body { font: 16px/1.5 system-ui, sans-serif; max-width: 46em; margin: 2em auto; padding: 0 1em; }
h1 { border-bottom: 1px solid; padding-top: 1em; }
kbd { border: 1px solid; border-radius: 3px; padding: 0 .3em; font-family: inherit; }
pre { padding: .6em 1em; border-left: .3em solid gray; overflow-x: auto; }
th { text-align: left; }
td, th { padding: .1em 1em .1em 0; vertical-align: top; }
dt { font-weight: bold; }
)";

std::string head(const std::string& title, std::string_view style) {
    std::string text = "<!DOCTYPE html>\n<!-- SPDX-License-Identifier: GPL-3.0-or-later -->\n<html "
                       "lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" +
                       escaped(title) + "</title>\n";
    if (!style.empty()) text.append("<style>\n").append(style).append("</style>\n");
    return text + "</head>\n<body>\n";
}

}  // namespace

void Book::enter(const std::string& topic, const std::string& place) {
    if (!places_.emplace(topicKey(topic), place).second) fault("two articles have the topic " + topic);
}

void Book::add(Article article) {
    if (article.file.empty()) article.file = fileOf(article.heading.topics.front());
    for (const std::string& topic : article.heading.topics) enter(topic, article.file);
    replacedBetween(article.html, "<a name=\"", "\"", [&](const std::string& anchor) {
        enter(anchor, article.file + "#" + anchor);
        return std::string();
    });
    articles_.push_back(std::move(article));
}

void Book::addChapter(std::string_view text, const std::string& stem) {
    for (const Section& section : sectionsOf(text)) {
        if (section.level == 0) continue;  // a remark in front
        Article article;
        article.depth = section.level - 1;
        article.heading = section.heading;
        if (article.heading.topics.empty())
            article.heading.topics.push_back(section.level == 1 ? stem : stem + " " + section.heading.title);
        article.html = htmlOf(section.body);
        add(std::move(article));
    }
}

void Book::addSpare(const std::string& topic, const std::string& target) {
    spares_.emplace_back(topic, target);
}

std::string Book::placeOf(const std::string& topic) const {
    const auto found = places_.find(topicKey(topic));
    return found == places_.end() ? "" : found->second;
}
bool Book::has(const std::string& topic) const {
    return !placeOf(topic).empty();
}

void Book::link() {
    for (const auto& [topic, target] : spares_)
        if (!has(topic)) enter(topic, placeOf(target));
    for (Article& article : articles_) {
        article.html = replacedBetween(article.html, "<code>", "</code>", [&](const std::string& code) {
            const std::string name = calledIn(code), place = placeOf(name);
            const bool there = !name.empty() && !place.empty() && place != article.file;
            return there ? "<a href=\"#" + name + "\"><code>" + code + "</code></a>"
                         : "<code>" + code + "</code>";
        });
        replacedBetween(article.html, "href=\"", "\"", [&](const std::string& target) {
            const bool ready = target.starts_with("messages/");
            if (!ready && (!target.starts_with("#") || !has(target.substr(1))))
                fault("\"" + article.heading.title + "\" leads to " + target + ", which is not there");
            return std::string();
        });
    }
}

std::string Book::linked(const Article& article) const {
    return replacedBetween(article.html, "href=\"#", "\"",
                           [this](const std::string& topic) { return "href=\"" + placeOf(topic) + "\""; });
}

std::string Book::page(const Article& article) const {
    return head(article.heading.title, "") + "<h1>" + inlineHtml(article.heading.title) + "</h1>\n" +
           linked(article) + "</body>\n</html>\n";
}

std::string Book::wholePage() const {
    std::string text = head("Tarnwick help", BrowserStyle);
    for (const Article& article : articles_) {
        if (article.ready) continue;
        text += "<section id=\"" + escaped(article.heading.topics.front()) + "\">\n";
        std::set<std::string> anchors = {article.heading.topics.front()};
        for (const std::string& topic : article.heading.topics)
            for (const std::string& form : {topic, topicKey(topic)})
                if (anchors.insert(form).second) text += "<a id=\"" + escaped(form) + "\"></a>";
        text += "<h1>" + inlineHtml(article.heading.title) + "</h1>\n";
        // An anchor has the case in which its heading writes it.
        text += replacedBetween(article.html, "href=\"#", "\"", [this](const std::string& topic) {
            const std::string place = placeOf(topic);
            return "href=\"" + (place.starts_with("messages/") ? place : "#" + topicKey(topic)) + "\"";
        });
        text += "</section>\n";
    }
    return text + "</body>\n</html>\n";
}

std::string Book::contents() const {
    std::string text;
    int open = 0;
    for (const Article& article : articles_) {
        if (!article.listed) continue;
        for (; open > article.depth; --open) text += "</section>\n";
        text += "<section title=\"" + escaped(article.heading.title) + "\" ref=\"" + article.file + "\">\n";
        ++open;
    }
    for (; open > 0; --open) text += "</section>\n";
    return text;
}

std::string Book::keywords() const {
    std::string text;
    const auto keyword = [&text](const std::string& name, const std::string& id, const std::string& place) {
        text += "<keyword name=\"" + escaped(name) + "\"" +
                (id.empty() ? "" : " id=\"" + escaped(id) + "\"") + " ref=\"" + place + "\"/>\n";
    };
    std::set<std::string> done;
    for (const Article& article : articles_) {
        for (const std::string& topic : article.heading.topics) {
            done.insert(topicKey(topic));
            keyword(article.heading.title, topicKey(topic), article.file);
        }
        for (const std::string& word : article.heading.keywords) keyword(word, "", article.file);
    }
    for (const auto& [topic, place] : places_)
        if (!done.contains(topic)) keyword(topic, topic, place);
    return text;
}

std::string Book::project(const std::vector<std::string>& files) const {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<QtHelpProject version=\"1.0\">\n";
    text.append("<namespace>").append(Space).append("</namespace>\n<virtualFolder>help</virtualFolder>\n");
    text += "<filterSection>\n<toc>\n" + contents() + "</toc>\n<keywords>\n" + keywords() +
            "</keywords>\n<files>\n";
    for (const std::string& file : files) text += "<file>" + file + "</file>\n";
    return text + "</files>\n</filterSection>\n</QtHelpProject>\n";
}

}  // namespace tarn::help
