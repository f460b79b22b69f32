// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: what an edit window shows around its text, and help while one types. An object that is no
// edit window answers with an empty value and takes none, without an error. Without a screen the state is kept, and
// line ends are converted all the same. Positions count bytes from 1. Cost: constant, but for the text itself.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

// A part of the text; what lies outside of it is left out. Of any object that has a text.
Answer<std::string> GetTextRange(const Object& object, int start, int length);

Answer<int> GetLooks(const Object& window);  // bits: LOOK_BRACKETS and so on
Code SetLooks(const Object& window, int looks);
Answer<int> GetTabWidth(const Object& window);        // columns
Code SetTabWidth(const Object& window, int columns);  // cut to 1 to 32
// How many points the text is larger than its font; the user changes it too. From -8 to 20.
Answer<int> GetZoom(const Object& window);
Code SetZoom(const Object& window, int points);

// How the lines end: ENDS_NONE where there is one line, ENDS_MIXED where they differ.
Answer<int> GetLineEnds(const Object& window);
// Gives every line ENDS_LF, ENDS_CRLF or ENDS_CR in one undo step, and sends CHANGE_EVENT if that changed the text.
// A text that is read only, or would pass its greatest length, stays as it is.
Code SetLineEnds(const Object& window, int ends);

// What begins and ends a block that can be folded, a rule on each line: "first WORDS" begin one at the start of a
// line, "any WORDS" anywhere, "end WORDS" end it together with the word that follows, "comment STARTER" makes a block
// of lines that begin so, "outer WORDS" is what stands in no other block. Without rules nothing is folded.
Answer<std::string> GetBlocks(const Object& window);
Code SetBlocks(const Object& window, std::string_view rules);
// Folds, or unfolds, all blocks. SetSelection unfolds what it selects.
Code FoldAll(const Object& window, bool folded);

// Offers words in a list at the caret. A row is a word, and behind a tab the name of a picture; rows are in the order
// of their upper case. The one that is picked takes the place of the word at the caret, of which `typed` bytes stand in
// front of it; without rows a list that is open closes.
Code ShowChoices(const Object& window, std::string_view rows, int typed);
Answer<std::string> GetChoices(const Object& window);  // as they were shown last
// A hint at a position of the text, with a part of it marked; an empty one closes it.
Code ShowCallTip(const Object& window, int position, std::string_view text, int markStart, int markLength);
Answer<std::string> GetCallTip(const Object& window);

}  // namespace tarn::platform
