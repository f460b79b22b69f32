// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the environment adds to the search dialogs: regular expressions, the number of hits while the user types, and
// marks at all hits.
#pragma once

#include "kernel/windows/windowing.h"
#include "library/dialogs/textsearch.h"

#include <memory>
#include <string>
#include <string_view>

namespace tarn {

// The dialogs have these additions as long as one of these lives; there is one at a time. The check box of regular
// expressions is kept as "Regex" in the section of the settings, which need not have it.
class SearchDialogs {
public:
    explicit SearchDialogs(std::string_view section);
    ~SearchDialogs();
    SearchDialogs(const SearchDialogs&) = delete;
    SearchDialogs& operator=(const SearchDialogs&) = delete;
};

bool ISREGEXCHOSEN(std::string_view section);

// A pattern that is not valid gives a search that finds nothing and says why.
std::unique_ptr<TextSearch> MAKESEARCH(const std::string& text, bool matchWord, bool matchCase, bool regex);

// "No hits", "1 hit", "25 hits", "More than 3,000 hits" where counting would take longer than a key may; in a few words
// what is wrong with a pattern. Cost: 30 ms at most for a text as it stands, 100 for a pattern.
std::string COUNTHITS(std::string_view text, TextSearch& search);

// Marks all hits, as long as there are no marks; else takes them away. Without a hit it tells so; an empty text beeps.
void TOGGLEMARKS(const Object& window, TextSearch& search, const std::string& shown);

}  // namespace tarn
