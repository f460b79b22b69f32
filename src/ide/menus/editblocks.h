// SPDX-License-Identifier: GPL-3.0-or-later
//
// The commands of the Edit menu that work on the text in the Code window by its selection and the clipboard. Each is one
// step of the text's undo list. Without a file in the window they beep, but for Paste, which begins a new text.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

void DO_CUT();
void DO_COPY();
// Asks about example code (ide/editor/example.h) whether it becomes files. A text longer than the Code window takes is
// cut. What DO_COPY has put there, with CR LF as its line ends, comes back as it was; and the lines end as those of the
// text in the window do, if these end all alike. An empty clipboard leaves the selection as it is.
void DO_PASTE(const Object& programLabel);
void DO_DELETE();
void DO_SELECT_ALL();
// "//" at the start of each line of the selection, which is widened to whole lines; and the first "//" off the lines that
// begin with it, blanks and tabs aside. The lines stay selected. Without a selection they beep.
void DO_COMMENT_BLOCK();
void DO_UNCOMMENT_BLOCK();
void DO_INSERT_FILE();

// Asks whether the example becomes a new program or normal text. For a program the open windows are closed first, and
// the name of each file is asked for; leaving one of these questions ends it, and files that are written stay. Then the
// main class is opened, or the first file if there is none.
void PASTEEXAMPLE(const std::string& text, const Object& programLabel);
std::string GETCLIPBOARDTEXT(const Object& clipboardObject);

}  // namespace tarn
