// SPDX-License-Identifier: Apache-2.0
//
// The pages of the messages and the description of the language say what the compiler does: each number has a page,
// the wrong example of a page gives its number and no other, the right one none; lists of messages and of words
// that stand in documents are those of the compiler.
#include "kernel/text/words.h"
#include "unit/toolchain/checked_fixture.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>

namespace tarn::toolchain {
namespace {

constexpr int FirstOfTools = 1900;  // what they tell has no class as an example
const std::string Pages = SOURCE_DIR "/docs/help/messages/";

std::string textOf(const std::string& path) {
    std::string bytes;
    os::readFile(path, bytes);
    return bytes;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

std::string plain(const std::string& html) {
    return replaced(replaced(replaced(html, "&lt;", "<"), "&gt;", ">"), "&amp;", "&");
}
std::string shown(Problem problem) {
    return replaced(problemText(problem, {}), "%", "...");
}

// What stands between `open` and the next `close`, each time.
std::vector<std::string> between(const std::string& text, const std::string& open, const std::string& close) {
    std::vector<std::string> found;
    for (std::size_t at = 0; (at = text.find(open, at)) != std::string::npos;) {
        at += open.size();
        found.push_back(text.substr(at, text.find(close, at) - at));
    }
    return found;
}

class MessagePages : public CheckedClass {
protected:
    // The numbers that an example gives.
    std::string check(const std::string& source) {
        std::string found;
        for (const Message& message : messagesOf(source)) found += std::to_string(message.number) + " ";
        return found;
    }
    // The other files that the examples of a page need.
    void writeFiles(const std::string& page) {
        for (const std::string& part : between(page, "<pre class=\"file\" title=\"", "</pre>")) {
            const std::size_t name = part.find("\">");
            write(part.substr(0, name), plain(part.substr(name + 2)) + "\n");
        }
    }
};

TEST_F(MessagePages, EachNumberHasAPageAndEachPageANumber) {
    std::set<std::string> expected = {"index.htm", "messages.css"};
    for (const Problem problem : allProblems())
        expected.insert(std::to_string(static_cast<int>(problem)) + ".htm");
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(Pages))
        found.insert(entry.path().filename());
    EXPECT_EQ(found, expected);
}

TEST_F(MessagePages, EachNumberStandsInTheTableOnce) {
    const std::string header = textOf(SOURCE_DIR "/src/toolchain/output/messages.h");
    std::size_t numbers = 0;
    for (const std::string& line : between(header, " = 1", "\n"))
        numbers += line.size() == 4 && line.back() == ',';
    std::set<Problem> problems;
    for (const Problem problem : allProblems())
        EXPECT_TRUE(problems.insert(problem).second) << static_cast<int>(problem);
    EXPECT_EQ(problems.size(), numbers);
}

TEST_F(MessagePages, SayWhatTheCompilerSays) {
    for (const Problem problem : allProblems()) {
        const std::string number = std::to_string(static_cast<int>(problem));
        const std::string page = textOf(Pages + number + ".htm");
        EXPECT_NE(page.find("<title>Message " + number + "</title>"), std::string::npos) << number;
        const auto text = between(page, "<p class=\"message\">", "</p>");
        ASSERT_EQ(text.size(), 1U) << number;
        EXPECT_EQ(plain(text[0]), shown(problem)) << number;
    }
}

TEST_F(MessagePages, TheWrongExampleGivesThisNumberAndTheRightOneNone) {
    for (const Problem problem : allProblems()) {
        const int number = static_cast<int>(problem);
        const std::string page = textOf(Pages + std::to_string(number) + ".htm");
        const auto wrong = between(page, "<pre class=\"wrong\">", "</pre>");
        const auto right = between(page, "<pre class=\"right\">", "</pre>");
        ASSERT_EQ(wrong.size(), number < FirstOfTools ? 1U : 0U) << number;
        ASSERT_EQ(right.size(), wrong.size()) << number;
        if (wrong.empty()) continue;
        for (const char* extension : {".cls", ".rc"})
            for (const auto& entry : std::filesystem::directory_iterator(dir))
                if (entry.path().extension() == extension) std::filesystem::remove(entry.path());
        writeFiles(page);
        EXPECT_EQ(check(plain(wrong[0]) + "\n"), std::to_string(number) + " ") << report;
        EXPECT_EQ(check(plain(right[0]) + "\n"), "") << number << "\n" << report;
    }
}

TEST_F(MessagePages, LeadOnlyToPagesThatAreThere) {
    for (const auto& entry : std::filesystem::directory_iterator(Pages)) {
        for (const std::string& target : between(textOf(entry.path()), "href=\"", "\"")) {
            const std::string file = target.substr(0, target.find('#'));
            EXPECT_TRUE(std::filesystem::exists(BINARY_DIR "/help/messages/" + file))
                << entry.path() << " " << target;
            EXPECT_EQ(target.find("://"), std::string::npos) << "nothing leads outside";
        }
    }
}

// Lists of "number text" as the documents have them.
void expectAll(const std::map<int, std::string>& found, const char* where) {
    std::map<int, std::string> expected;
    for (const Problem problem : allProblems()) expected[static_cast<int>(problem)] = shown(problem);
    EXPECT_EQ(found, expected) << where;
}

TEST_F(MessagePages, TheListsOfTheDocumentsAreThoseOfTheCompiler) {
    std::map<int, std::string> language, help, index;
    for (const std::string& row : between(textOf(SOURCE_DIR "/docs/language.md"), "\n| 1", " |\n"))
        language[std::stoi("1" + row)] = row.substr(row.find(" | ") + 3);
    expectAll(language, "docs/language.md");
    const std::string mark = ".htm\">", behind = "</a></dt><dd>";
    for (const std::string& row :
         between(textOf(BINARY_DIR "/help/Tarnwick.htm"), "\"><a href=\"messages/", "</dd>"))
        help[std::stoi(row)] = plain(row.substr(row.find(behind) + behind.size()));
    expectAll(help, "the general help");
    for (const std::string& row : between(textOf(Pages + "index.htm"), "<dt><a href=\"", "</dd>"))
        index[std::stoi(row)] = plain(row.substr(row.find(behind) + behind.size()));
    expectAll(index, "the list of the pages");
}

std::set<std::string> wordsOf(const std::string& text) {
    std::istringstream stream(text);
    std::set<std::string> words;
    for (std::string word; stream >> word;) words.insert(word);
    return words;
}

TEST_F(MessagePages, TheListsOfReservedWordsAreThoseOfTheCompiler) {
    const auto lists = between(textOf(SOURCE_DIR "/docs/language.md"), "\n```words\n", "```");
    ASSERT_EQ(lists.size(), 2U);
    EXPECT_EQ(wordsOf(lists[0]), std::set<std::string>(std::begin(ReservedWords), std::end(ReservedWords)));
    const auto table =
        between(textOf(SOURCE_DIR "/src/kernel/text/words.cpp"), "FutureReservedWords[] = {", "};");
    ASSERT_EQ(table.size(), 1U);
    std::set<std::string> later;
    for (const std::string& word : wordsOf(replaced(replaced(table[0], "\"", " "), ",", " ")))
        later.insert(word);
    EXPECT_EQ(wordsOf(lists[1]), later);
    for (const std::string& word : later) EXPECT_TRUE(IsFutureReservedWord(word)) << word;
}

}  // namespace
}  // namespace tarn::toolchain
