// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations on the text of an edit control that touch many places at once: replacing, and marking. Both are
// for modules of this system, not for programs. Places are 1-based byte positions. 702 and 727 as everywhere; a control
// without a text answers with nothing and takes nothing. Cost: one pass over the places; in the edit window the text
// between them stays where it is.
#pragma once

#include "platform/object.h"

#include <string>
#include <vector>

namespace tarn::platform {

namespace types {
struct TextEdit {
    int start = 1, length = 0;  // what goes
    std::string text;           // what comes in its place
};
}  // namespace types

// Carries out all edits as one step of undo and sends one CHANGE_EVENT, as a user's edit does. Their places are those of
// the text before, from its start to its end; one that begins before the end of another is left out, and one that
// reaches beyond the text ends with it. The caret stands behind the last of them and is scrolled into view.
Code ReplaceParts(const Object& object, const std::vector<TextEdit>& edits);

// Marks these places, and no others, so that the user sees them all. A mark stays with its text while that is edited;
// SetText takes all of them away. Of what is on a screen only the edit window has marks.
Code SetMarks(const Object& object, const std::vector<Selection>& places);
Answer<std::vector<Selection>> GetMarks(const Object& object);

// The lines, from 1, whose blocks are folded; a block that begins in none of them is open. Lines that begin no block are
// left out. Only the edit window on a screen has folds.
Code SetFolds(const Object& object, const std::vector<int>& lines);
Answer<std::vector<int>> GetFolds(const Object& object);

}  // namespace tarn::platform
