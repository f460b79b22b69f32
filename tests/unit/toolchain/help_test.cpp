// SPDX-License-Identifier: Apache-2.0
//
// The making of the help: the Markdown it is written in, the book of articles with its topics and links, what the
// program itself tells, and that the code of the recipes is accepted by the compiler.
#include "kernel/run/errors.h"
#include "kernel/text/words.h"
#include "support/toolchain_folder.h"
#include "toolchain/help/facts.h"
#include "toolchain/language/checker.h"
#include "toolchain/language/classes.h"

#include <algorithm>
#include <filesystem>

namespace tarn::help {
namespace {

TEST(HelpMarkup, KnowsBlocksAndWhatStandsInLines) {
    struct Case {
        const char *text, *html;
    };
    const Case cases[] = {
        {"one\ntwo\n\nthree", "<p>one\ntwo</p>\n<p>three</p>\n"},
        {"a < b & c > d \"e\"", "<p>a &lt; b &amp; c &gt; d &quot;e&quot;</p>\n"},
        {"`x < y` and **b**", "<p><code>x &lt; y</code> and <b>b</b></p>\n"},
        {"<kbd>F1</kbd> <b>", "<p><kbd>F1</kbd> &lt;b&gt;</p>\n"},
        {"[a](#B)", "<p><a href=\"#B\">a</a></p>\n"},
        {"[1, 2] and (x)", "<p>[1, 2] and (x)</p>\n"},
        {"`open, ** and [a]( are letters", "<p>`open, ** and [a]( are letters</p>\n"},
        {"- a\n  b\n- c\ntext", "<ul>\n<li>a\n  b</li>\n<li>c\ntext</li>\n</ul>\n"},
        {"1. a\n2. b", "<ol>\n<li>a</li>\n<li>b</li>\n</ol>\n"},
        {"| A | B |\n|---|---|\n| `a|b` | c |",
         "<table>\n<tr><th>A</th><th>B</th></tr>\n<tr><td><code>a|b</code></td><td>c</td></tr>\n</table>\n"},
        {"```cls\n<x>\n\n# no heading\n```\nafter", "<pre>&lt;x&gt;\n\n# no heading\n</pre>\n<p>after</p>\n"},
        {"    code\n\n    more\n\ntext", "<pre>code\n\nmore\n</pre>\n<p>text</p>\n"},
        {"### Sub {#A}", "<a name=\"a\"></a><h3>Sub</h3>\n"},
        {"", ""},
        {"```\nnever closed", "<pre>never closed\n</pre>\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(htmlOf(c.text), c.html) << c.text;
}

TEST(HelpMarkup, ReadsTopicsAndKeywordsOfHeadings) {
    const Heading full = headingOf("  Title `x` {#One #Two_B | word, other word}");
    EXPECT_EQ(full.title, "Title `x`");
    EXPECT_EQ(full.topics, (std::vector<std::string>{"One", "Two_B"}));
    EXPECT_EQ(full.keywords, (std::vector<std::string>{"word", "other word"}));
    EXPECT_EQ(headingOf("plain").topics.size(), 0U);
    EXPECT_EQ(headingOf("{#A}").title, "{#A}") << "a title is needed";
    EXPECT_EQ(topicKey("Help_Run-time Errors"), "help_run-time_errors");
}

TEST(HelpMarkup, CutsAtHeadingsButNotInCode) {
    const auto sections = sectionsOf("front\n# A\na\n```\n# no\n## no\n```\n## B {#b}\nb\n### c\n");
    ASSERT_EQ(sections.size(), 3U);
    EXPECT_EQ(sections[0].level, 0);
    EXPECT_EQ(sections[1].heading.title, "A");
    EXPECT_EQ(sections[2].level, 2);
    EXPECT_EQ(sections[2].body, "b\n### c\n");
}

Article article(const std::string& topic, const std::string& html = "<p>x</p>\n", int depth = 1) {
    Article made;
    made.depth = depth;
    made.heading = {"The " + topic, {topic}, {}};
    made.html = html;
    return made;
}

TEST(HelpBook, ResolvesTopicsInAnyCaseAndWithBlanks) {
    Book book;
    book.add(article("Run_Start"));
    book.add(article("A/B", "<a name=\"inner\"></a>"));
    EXPECT_EQ(book.placeOf("RUN START"), "run_start.htm");
    EXPECT_EQ(book.placeOf("a/b"), "a-b.htm") << "a name of a file has no slash";
    EXPECT_EQ(book.placeOf("inner"), "a-b.htm#inner");
    EXPECT_EQ(book.placeOf("nothing"), "");
}

TEST(HelpBook, TellsWhatIsWrong) {
    Book twice;
    twice.add(article("A"));
    twice.add(article("a"));
    EXPECT_EQ(twice.faults().size(), 1U);
    Book astray;
    astray.add(article("A", "<a href=\"#Nowhere\">n</a><a href=\"http://x\">x</a>"));
    astray.link();
    EXPECT_EQ(astray.faults().size(), 2U) << "nothing leads nowhere, or outside";
}

TEST(HelpBook, LinksFunctionsWhereTheyAreNamedButNotToThemselves) {
    Book book;
    book.add(article("STRFIND", "<code>STRFIND(text)</code>"));
    book.add(article(
        "B", "<code>STRFIND(a, b)</code> <code>strfind</code> <code>STR</code> <code>STRFIND x</code>"));
    book.link();
    EXPECT_EQ(book.articles()[0].html, "<code>STRFIND(text)</code>");
    EXPECT_EQ(book.articles()[1].html,
              "<a href=\"#STRFIND\"><code>STRFIND(a, b)</code></a> <code>strfind</code> "
              "<code>STR</code> <code>STRFIND x</code>");
    EXPECT_NE(book.page(book.articles()[1]).find("href=\"strfind.htm\""), std::string::npos);
    EXPECT_NE(book.wholePage().find("href=\"#strfind\""), std::string::npos);
    EXPECT_NE(book.wholePage().find("<a id=\"strfind\"></a>"), std::string::npos)
        << "in any case that is asked for";
}

TEST(HelpBook, NestsTheContents) {
    Book book;
    book.add(article("A", "", 0));
    book.add(article("B", "", 1));
    book.add(article("C", "", 2));
    book.add(article("D", "", 1));
    book.add(article("E", "", 0));
    const std::string text = book.project({"a.htm"});
    const std::string toc = text.substr(text.find("<toc>"), text.find("</toc>") - text.find("<toc>"));
    std::string shape;
    for (std::size_t at = 0; at < toc.size(); ++at) {
        if (toc.compare(at, 9, "<section ") == 0) shape += '(';
        if (toc.compare(at, 10, "</section>") == 0) shape += ')';
    }
    EXPECT_EQ(shape, "((())())()") << toc;
}

TEST(HelpFacts, EachFunctionNeedsASentenceAndEachSentenceAFunction) {
    Book book;
    addFunctions(book, "# L {#L}\n## F {#F}\n- STRFIND: Finds.\n- NOSUCH: Nothing.\n");
    bool missing = false, unknown = false, known = false;
    for (const std::string& fault : book.faults()) {
        missing = missing || fault == "the function STRLEFT has no sentence";
        unknown = unknown || fault == "the library has no function NOSUCH";
        known = known || fault.find("STRFIND ") != std::string::npos;
    }
    EXPECT_TRUE(missing);
    EXPECT_TRUE(unknown);
    EXPECT_FALSE(known);
    const Article& page = book.articles()[2];
    EXPECT_NE(page.html.find("STRFIND(text : string, what : string) return integer"), std::string::npos);
    EXPECT_EQ(page.html.find("tarn_sys"), std::string::npos) << "what stands behind it is no matter of users";
}

TEST(HelpFacts, EachErrorNeedsItsText) {
    Book book;
    addErrors(book, "# E {#E}\n## 602\nWhy.\n## 999\nNone.\n");
    EXPECT_EQ(std::count(book.faults().begin(), book.faults().end(), "there is no run-time error 999"), 1);
    EXPECT_EQ(std::count(book.faults().begin(), book.faults().end(), "the run-time error 602 has no text"),
              0);
    EXPECT_EQ(std::count(book.faults().begin(), book.faults().end(), "the run-time error 603 has no text"),
              1);
    EXPECT_EQ(book.placeOf("602"), "602.htm");
    EXPECT_EQ(book.placeOf("ERR_ARRAY_BOUNDS"), "602.htm");
}

class Recipes : public toolchain::ToolchainTest {};

struct Code {
    std::string text, output;  // empty: nothing is told of what it writes
};

std::vector<Code> codeIn(const std::string& file) {
    constexpr std::string_view begin = "```cls\n", fence = "```", out = "```\n\n```out\n";
    std::string text;
    os::readFile(file, text);
    std::vector<Code> blocks;
    for (std::size_t at = 0; (at = text.find(begin, at)) != std::string::npos;) {
        at += begin.size();
        const std::size_t end = text.find(fence, at);
        Code code{text.substr(at, end - at), ""};
        if (text.compare(end, out.size(), out) == 0) {
            const std::size_t from = end + out.size();
            code.output = text.substr(from, text.find(fence, from) - from);
        }
        blocks.push_back(std::move(code));
    }
    return blocks;
}

TEST_F(Recipes, AreAcceptedByTheCompiler) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(SOURCE_DIR "/docs/help")) {
        if (entry.path().extension() != ".md") continue;
        for (const auto& [code, output] : codeIn(entry.path())) {
            const std::string name = code.find("Class Hello") != std::string::npos ? "Hello.cls" : "Main.cls";
            const std::string file = write(name, code);
            toolchain::Messages messages;
            toolchain::ClassLoader loader({});
            toolchain::ClassTree* tree = loader.load(file, messages);
            toolchain::checkClass(*tree, messages);
            EXPECT_TRUE(messages.list().empty()) << code << messages.report(file);
            ++count;
        }
    }
    EXPECT_GE(count, 24U);
}

TEST_F(Recipes, WriteWhatTheySay) {
    write("environment/ide.ini", "[ordo]\nCLS=\"" + dir + "tools/quarn.exe\" /p1 /d1 /q ^.cls\n");
    write("config/tarnwick/registry.ini",
          "[SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ide.exe]\n=" + dir +
              "environment/ide.exe\n");
    std::size_t count = 0;
    for (const auto& [code, expected] : codeIn(SOURCE_DIR "/docs/help/howdoi.md")) {
        if (expected.empty()) continue;
        const std::string source = write("Main.cls", code);
        ASSERT_EQ(ordo({"-fa", source, "-o" + dir + "o"}), 0) << code << errors();
        std::filesystem::remove(source);  // away from its source it runs without a debugger
        run(dir + "Main.exe", {});
        EXPECT_EQ(output, expected) << code;
        ++count;
    }
    EXPECT_GE(count, 14U);
}

}  // namespace
}  // namespace tarn::help
