// SPDX-License-Identifier: Apache-2.0
//
// The parts of the help that follow from the program: the functions, constants and types of the library, the messages
// of the compiler, the run-time errors, the words that are kept for later. Their heads, numbers and texts are the
// program's own; what is said of them is written by hand, and what lacks its sentence is a fault of the book.
#pragma once

#include "toolchain/help/book.h"

#include <string_view>

namespace tarn::help {

// `text`: families as articles, with a line "- NAME: sentence" for each function.
void addFunctions(Book& book, std::string_view text);
void addConstants(Book& book);
void addTypes(Book& book);
// `text`: an article "## 602" with cause and cure for each code.
void addErrors(Book& book, std::string_view text);
void addMessages(Book& book);
// Words of the language without an article are faults; the words that are kept for later get one article.
void addWords(Book& book);

}  // namespace tarn::help
