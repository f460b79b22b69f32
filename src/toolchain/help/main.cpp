// SPDX-License-Identifier: Apache-2.0
//
// Makes the help at build time:  tarn-help SOURCES PAGES HELP
//
// SOURCES is the project, PAGES a folder for the pages and the project of the compiled help, HELP the folder that
// users get; it receives the whole help as one page, and the pages of the messages. Exit status 1, with the faults, if
// the help is not whole.
#include "os/files.h"
#include "toolchain/help/facts.h"

#include <cstdio>
#include <filesystem>

namespace fs = std::filesystem;
using namespace tarn;

namespace {

std::string textOf(const std::string& path, help::Book& book) {
    std::string text;
    os::readFile(path, text);
    if (text.empty()) book.fault(path + " is empty or not there");
    return text;
}

// The documents of the language lead to other documents of the sources, which users need not have.
std::string withoutForeignLinks(std::string text) {
    for (std::size_t at = 0; (at = text.find("](", at)) != std::string::npos;) {
        const std::size_t open = text.rfind('[', at), close = text.find(')', at);
        if (open == std::string::npos || close == std::string::npos || text[at + 2] == '#') {
            ++at;
            continue;
        }
        text.erase(at, close - at + 1);
        text.erase(open, 1);
    }
    return text;
}

void fill(help::Book& book, const std::string& sources) {
    const std::string pages = sources + "/docs/help/";
    for (const char* stem : {"start", "environment", "keyboard", "howdoi"})
        book.addChapter(textOf(pages + stem + ".md", book), stem);
    book.addChapter(textOf(pages + "words.md", book), "words");
    help::addWords(book);
    book.addChapter(withoutForeignLinks(textOf(sources + "/docs/language.md", book)), "language");
    help::addFunctions(book, textOf(pages + "functions.md", book));
    help::addConstants(book);
    help::addTypes(book);
    help::addMessages(book);
    help::addErrors(book, textOf(pages + "errors.md", book));
    book.addChapter(textOf(pages + "support.md", book), "support");
    book.link();
}

void write(const std::string& path, const std::string& text, help::Book& book) {
    if (!os::saveFile(path, text, os::Durability::Unsynced).ok()) book.fault(path + " cannot be written");
}

// Pages that are written by hand lead to the whole help by its file, and are called by their numbers alone.
std::string relinked(std::string text, const help::Book& book) {
    const std::string title = "<title>Message ";
    if (const std::size_t at = text.find(title); at != std::string::npos) {
        const std::string number = text.substr(at + title.size(), 4);
        for (const help::Article& article : book.articles())
            if (article.ready && article.heading.topics.front() == number)
                text.replace(at + 7, title.size() - 7 + 4, help::escaped(article.heading.title));
    }
    const std::string whole = "href=\"../Tarnwick.htm#";
    for (std::size_t at = 0; (at = text.find(whole, at)) != std::string::npos;) {
        const std::size_t begin = at + whole.size(), end = text.find('"', begin);
        const std::string to = "href=\"../" + book.placeOf(text.substr(begin, end - begin));
        text.replace(at, end - at, to);
        at += to.size();
    }
    return text;
}

void writeAll(help::Book& book, const std::string& sources, const std::string& pages, const std::string& to) {
    fs::remove_all(pages);
    fs::remove_all(to + "/messages");
    for (const std::string& folder : {pages + "/messages", to + "/messages"}) fs::create_directories(folder);
    std::vector<std::string> files;
    for (const help::Article& article : book.articles()) {
        if (article.ready) continue;
        write(pages + "/" + article.file, book.page(article), book);
        files.push_back(article.file);
    }
    for (const auto& entry : fs::directory_iterator(sources + "/docs/help/messages")) {
        const std::string name = "messages/" + entry.path().filename().string();
        const std::string text = textOf(entry.path().string(), book);
        write(to + "/" + name, text, book);
        write(pages + "/" + name, relinked(text, book), book);
        files.push_back(name);
    }
    write(pages + "/Tarnwick.qhp", book.project(files), book);
    write(to + "/Tarnwick.htm", book.wholePage(), book);
}

}  // namespace

int main(int count, char** words) {
    if (count != 4) return std::fprintf(stderr, "tarn-help SOURCES PAGES HELP\n"), 2;
    help::Book book;
    fill(book, words[1]);
    if (book.faults().empty()) writeAll(book, words[1], words[2], words[3]);
    for (const std::string& fault : book.faults()) std::fprintf(stderr, "help: %s\n", fault.c_str());
    return book.faults().empty() ? 0 : 1;
}
