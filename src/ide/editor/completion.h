// SPDX-License-Identifier: GPL-3.0-or-later
//
// Words offered while one types in a class: reserved words, and the names that the place knows (names.h); and the head
// of what is called, with the argument that comes next. In comments and strings, and in texts that are no classes,
// nothing is offered.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// Offers what the word at the caret can become. `automatic`: while the user types, which is done once, at the third
// letter of a word.
void COMPLETEWORD(const Object& window, bool automatic);
// Shows the head of the call in which the caret stands; closes it where there is none.
void SHOWCALLHINT(const Object& window);
// What a change of the text asks for.
void OFFERHELP(const Object& window);

// The rows of the list for a word that begins so, "word<tab>picture", each word once.
struct NamePlace;
std::string COMPLETIONROWS(const NamePlace& place, const std::string& begun);

}  // namespace tarn
