// SPDX-License-Identifier: Apache-2.0
#include "toolchain/help/facts.h"

#include "kernel/run/errors.h"
#include "kernel/text/words.h"
#include "os/text/ascii.h"
#include "toolchain/language/library.h"
#include "toolchain/output/messages.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <map>

namespace tarn::help {
namespace {

using toolchain::systemText;

std::string wordOf(std::string_view text) {
    std::size_t end = 0;
    while (end < text.size() && ascii::isSymbol(text[end])) ++end;
    return std::string(text.substr(0, end));
}

// ---- functions ----

struct Function {
    std::string name;
    std::vector<std::string> forms;
};

// Of each name all forms, as a class would call them: without what stands behind them in the run-time.
std::map<std::string, Function> functionsOfLibrary() {
    constexpr std::string_view begin = "public function ", end = " external ";
    std::map<std::string, Function> functions;
    for (const std::string& line : linesOf(systemText())) {
        if (!line.starts_with(begin)) continue;
        const std::string form = line.substr(begin.size(), line.find(end) - begin.size());
        Function& function = functions[topicKey(wordOf(form))];
        if (function.name.empty()) function.name = wordOf(form);
        function.forms.push_back(form);
    }
    return functions;
}

Article pageOf(const Function& function, const std::string& sentence, const Heading& family) {
    Article article;
    article.depth = 2;
    article.heading = {function.name, {function.name}, {}};
    article.html = "<pre>";
    for (const std::string& form : function.forms) article.html += escaped(form) + "\n";
    article.html += "</pre>\n<p>" + inlineHtml(sentence) + "</p>\n<p>See <a href=\"#" +
                    escaped(family.topics.front()) + "\">" + escaped(family.title) + "</a>.</p>\n";
    return article;
}

// The sentences of a family, in their order; they are taken out of its text.
std::vector<std::pair<std::string, std::string>> sentencesIn(std::string& body) {
    std::vector<std::pair<std::string, std::string>> sentences;
    std::string rest;
    for (const std::string& line : linesOf(body)) {
        const std::string name = line.starts_with("- ") ? wordOf(std::string_view(line).substr(2)) : "";
        const bool one = !name.empty() && line.substr(2 + name.size()).starts_with(": ");
        if (one)
            sentences.emplace_back(name, line.substr(4 + name.size()));
        else if (!sentences.empty() && line.starts_with("  "))
            sentences.back().second += line.substr(1);
        else
            rest += line + "\n";
    }
    body = rest;
    return sentences;
}

void addFamily(Book& book, const Section& section, std::map<std::string, Function>& functions) {
    std::string body = section.body;
    const auto sentences = sentencesIn(body);
    Article family;
    family.heading = section.heading;
    family.html = htmlOf(body) + "<table>\n";
    std::vector<Article> pages;
    for (const auto& [name, sentence] : sentences) {
        const auto found = functions.find(topicKey(name));
        if (found == functions.end()) {
            book.fault("the library has no function " + name);
            continue;
        }
        const std::string shown = escaped(found->second.name);
        family.html += "<tr><td><a href=\"#" + shown + "\"><code>" + shown + "</code></a></td><td>" +
                       inlineHtml(sentence) + "</td></tr>\n";
        pages.push_back(pageOf(found->second, sentence, section.heading));
        functions.erase(found);
    }
    family.html += "</table>\n";
    book.add(std::move(family));
    for (Article& page : pages) book.add(std::move(page));
}

// ---- constants and types ----

struct Constant {
    std::string name, value;
};

std::vector<Constant> constantsOfLibrary() {
    constexpr std::string_view begin = "public const ";
    std::vector<Constant> constants;
    for (const std::string& line : linesOf(systemText())) {
        if (!line.starts_with(begin)) continue;
        const std::string name = wordOf(std::string_view(line).substr(begin.size()));
        constants.push_back({name, line.substr(begin.size() + name.size() + 3)});
    }
    return constants;
}

struct Group {
    const char *title, *text;
    bool (*holds)(const std::string& name);
};
constexpr Group groups[] = {
    {"Events of windows", "What the function of a window gets as its event.",
     [](const std::string& name) { return name.ends_with("_EVENT"); }},
    {"Keys", "The parameter of KEYPRESS_EVENT. KEYSTR gives the name of a key.",
     [](const std::string& name) { return name.starts_with("KEY_"); }},
    {"Colours", "Blue stands in the high byte, red in the low one.",
     [](const std::string& name) {
         return name == "BLACK" || name == "WHITE" || name.starts_with("DARK") || name.starts_with("LIGHT");
     }},
    {"Extensions of files", "With their dots.",
     [](const std::string& name) { return name.starts_with("EXT_"); }},
    {"Limits and others", "",
     [](const std::string& name) {
         return name.starts_with("MAX_") || name == "NULLWORD" || name == "FILENAMECHARS" ||
                name.ends_with("CONTINUABLE");
     }},
};

bool isErrorCode(const Constant& constant) {
    return constant.name.starts_with("ERR_") && !constant.name.ends_with("CONTINUABLE");
}

// The constant of a code.
std::string constantOf(int code) {
    for (const Constant& constant : constantsOfLibrary())
        if (isErrorCode(constant) && std::atoi(constant.value.c_str()) == code) return constant.name;
    return {};
}

// The places of a message that are filled in, as dots.
std::string withDots(std::string_view text) {
    std::string out;
    for (const char c : text) out += c == '%' ? std::string("...") : std::string(1, c);
    return out;
}

constexpr int codes[] = {
#define TARN_CODE(code, name, text) code,
    TARN_ERRORS(TARN_CODE)
#undef TARN_CODE
};

}  // namespace

void addFunctions(Book& book, std::string_view text) {
    auto functions = functionsOfLibrary();
    for (const Section& section : sectionsOf(text)) {
        if (section.level == 2) {
            addFamily(book, section, functions);
        } else if (section.level == 1) {
            Article article;
            article.depth = 0;
            article.heading = section.heading;
            article.html = htmlOf(section.body);
            book.add(std::move(article));
        }
    }
    for (const auto& [key, function] : functions)
        book.fault("the function " + function.name + " has no sentence");
}

void addConstants(Book& book) {
    Article article;
    article.heading = {"Constants of the library", {"Library_Constants"}, {"Constants"}};
    article.html = "<p>Beside these each run-time error has a constant, which its page names: see <a "
                   "href=\"#Help_Run-time_Errors\">run-time errors</a>.</p>\n";
    const auto constants = constantsOfLibrary();
    std::size_t shown = 0;
    for (const Group& group : groups) {
        article.html += "<h3>" + std::string(group.title) + "</h3>\n<p>" + group.text + "</p>\n<table>\n";
        for (const Constant& constant : constants) {
            if (!group.holds(constant.name)) continue;
            ++shown;
            book.addSpare(constant.name, "Library_Constants");
            article.html += "<tr><td><code>" + constant.name + "</code></td><td>" + escaped(constant.value) +
                            "</td></tr>\n";
        }
        article.html += "</table>\n";
    }
    const auto errors =
        static_cast<std::size_t>(std::count_if(constants.begin(), constants.end(), isErrorCode));
    if (shown + errors != constants.size()) book.fault("a constant of the library stands in no group");
    book.add(std::move(article));
}

void addTypes(Book& book) {
    constexpr std::string_view begin = "public type ";
    Article article;
    article.heading = {"Types of the library", {"Library_Types"}, {"Types of the library"}};
    article.html = "<p>A class uses them as if it had declared them.</p>\n<pre>";
    bool inside = false;
    for (const std::string& line : linesOf(systemText())) {
        if (line.starts_with(begin)) {
            book.addSpare(wordOf(std::string_view(line).substr(begin.size())), "Library_Types");
            article.html += escaped(line.substr(7)) + "\n";
            inside = line.ends_with(" record");
        } else if (inside) {
            article.html += escaped(line) + "\n";
            inside = line != "end record";
        }
    }
    article.html += "</pre>\n";
    book.add(std::move(article));
}

void addErrors(Book& book, std::string_view text) {
    std::map<int, std::string> bodies;
    Article list;
    list.depth = 0;
    for (const Section& section : sectionsOf(text)) {
        if (section.level == 2)
            bodies[std::atoi(section.heading.title.c_str())] = section.body;
        else if (section.level == 1)
            list.heading = section.heading, list.html = htmlOf(section.body);
    }
    std::vector<Article> pages;
    list.html += "<table>\n";
    for (const int code : codes) {
        const std::string number = std::to_string(code), name = constantOf(code);
        if (bodies[code].empty()) book.fault("the run-time error " + number + " has no text");
        list.html += "<tr><td><a href=\"#" + number + "\">" + number + "</a></td><td>" +
                     escaped(ErrorText(code)) + "</td></tr>\n";
        Article page;
        page.heading = {number + " " + ErrorText(code), {number}, {ErrorText(code)}};
        if (!name.empty()) page.heading.topics.push_back(name);
        page.html = htmlOf(bodies[code]);
        if (!name.empty()) page.html += "<p>Its constant is <code>" + name + "</code>.</p>\n";
        page.html += "<p>See <a href=\"#Help_Run-time_Errors\">all run-time errors</a>.</p>\n";
        pages.push_back(std::move(page));
        bodies.erase(code);
    }
    list.html += "</table>\n";
    for (const auto& [code, body] : bodies)
        if (!body.empty()) book.fault("there is no run-time error " + std::to_string(code));
    book.add(std::move(list));
    for (Article& page : pages) book.add(std::move(page));
}

void addMessages(Book& book) {
    Article list;
    list.depth = 0;
    list.heading = {"Compiler messages",
                    {"Help_Compiler_Errors"},
                    {"Messages of the compiler", "Errors of the compiler"}};
    list.html =
        "<p>What compiler and make tool say. <kbd>F1</kbd> on a message in the error window opens its "
        "page; so does <kbd>F1</kbd> on its number in the Code window.</p>\n<dl>\n";
    std::vector<Article> pages;
    for (const toolchain::Problem problem : toolchain::allProblems()) {
        const std::string number = std::to_string(static_cast<int>(problem));
        const std::string text = withDots(toolchain::problemText(problem, {}));
        Article page;
        page.ready = true;
        page.file = "messages/" + number + ".htm";
        page.heading = {number + " " + text, {number}, {"Message " + number}};
        list.html += "<dt id=\"m" + number + "\"><a href=\"" + page.file + "\">" + number + "</a></dt><dd>" +
                     escaped(text) + "</dd>\n";
        pages.push_back(std::move(page));
    }
    list.html += "</dl>\n";
    book.add(std::move(list));
    for (Article& page : pages) book.add(std::move(page));
}

void addWords(Book& book) {
    for (const std::string_view word : ReservedWords)
        if (!book.has(std::string(word))) book.fault("the word " + std::string(word) + " has no article");
    Article later;
    later.heading = {"Words kept for later", {"Words_Kept_For_Later"}, {"Words that are no names"}};
    later.html = "<p>These words mean nothing yet, and cannot be names either, so that a later version may "
                 "use them. The compiler tells it by message <a href=\"#1108\">1108</a>.</p>\n<p>";
    for (const std::string_view word : FutureReservedWordList()) {
        later.html += "<code>" + std::string(word) + "</code> ";
        book.addSpare(std::string(word), "Words_Kept_For_Later");
    }
    later.html += "</p>\n";
    book.add(std::move(later));
}

}  // namespace tarn::help
