// SPDX-License-Identifier: Apache-2.0
//
// The small Markdown in which the help is written, as HTML. What it knows: headings, paragraphs, lists with "-" or
// numbers, tables, fenced and indented code, `code`, **bold**, [text](target) and <kbd>; every other "<" is a letter.
// A target "#Topic" is left as it is for whoever knows the pages. Cost: linear in the text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::help {

// "Title {#Topic #Other | keyword, another}": what stands in braces may be missing.
struct Heading {
    std::string title;
    std::vector<std::string> topics, keywords;
};
Heading headingOf(std::string_view line);

// A text cut at its headings of the first two levels; `level` is 1 or 2, 0 for what stands in front of all.
struct Section {
    int level = 0;
    Heading heading;
    std::string body;
};
std::vector<Section> sectionsOf(std::string_view text);

std::string escaped(std::string_view text);     // for HTML
std::string inlineHtml(std::string_view text);  // within a line
std::string htmlOf(std::string_view text);  // whole blocks; "### Title {#topic}" is a heading with an anchor
// The form in which topics are compared and pages are named: lower case, "_" for each blank.
std::string topicKey(std::string_view topic);
std::vector<std::string> linesOf(std::string_view text);

}  // namespace tarn::help
