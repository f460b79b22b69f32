// SPDX-License-Identifier: Apache-2.0
//
// The help as a book: articles in chapters, each under its topics, and what is written of it: one page for each
// article with the project from which the help engine's generator makes the compiled help, and one page with all of
// them for a browser. What is wrong (a topic of two articles, a link that leads nowhere) is kept as a list of faults;
// a book with faults is not written.
#pragma once

#include "toolchain/help/markup.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace tarn::help {

struct Article {
    int depth = 1;  // in the contents: 0 a chapter, 1 an article of it, 2 one below that
    Heading heading;
    std::string html;
    std::string file;  // within the help; made from the first topic
    // A page that lies in the help folder as it is, such as those of the messages: `html` is then empty.
    bool ready = false;
    bool listed = true;  // in the contents
};

class Book {
public:
    void add(Article article);
    // The chapter of a text: its first heading is the chapter's, each further one an article. A heading without
    // topics gets one of `stem` and its title.
    void addChapter(std::string_view text, const std::string& stem);
    // Topics that lead to an article if nothing else has them.
    void addSpare(const std::string& topic, const std::string& target);

    bool has(const std::string& topic) const;
    void link();  // resolves all links; call it when all articles are there
    const std::vector<std::string>& faults() const { return faults_; }
    void fault(const std::string& text) { faults_.push_back(text); }

    std::string page(const Article& article) const;  // one article as a page
    std::string wholePage() const;                   // all of them, for a browser
    std::string project(const std::vector<std::string>& files) const;
    const std::vector<Article>& articles() const { return articles_; }
    std::string placeOf(const std::string& topic) const;  // file, and "#anchor"; empty if there is none

private:
    void enter(const std::string& topic, const std::string& place);
    std::string linked(const Article& article) const;
    std::string contents() const;
    std::string keywords() const;

    std::vector<Article> articles_;
    std::map<std::string, std::string> places_;  // by topic key
    std::set<std::string> linkedTopics_;
    std::vector<std::pair<std::string, std::string>> spares_;
    std::vector<std::string> faults_;
};

}  // namespace tarn::help
