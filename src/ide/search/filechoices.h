// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the dialogs of searches in files have in common: what is looked for, and where. Their controls: edit1 (the text),
// edit2 (the new text, where there is one), edit3 (patterns of names), radio1 (the folder of the program), radio2 (and
// the inherited folders), radio3 (the folder in edit4), pushbutton4 (choose that), check1 (words), check2 (case),
// check3 (regular expression), check4 (folders in it too). They are kept in the settings.
#pragma once

#include "ide/search/filewalk.h"
#include "kernel/windows/windowing.h"
#include "library/dialogs/textsearch.h"

#include <memory>
#include <string>
#include <vector>

namespace tarn {

struct FileChoices {
    std::string text, with;
    bool matchWord = false, matchCase = false, regex = false;
    std::string patterns;
    std::vector<std::string> folders;
    bool subfolders = false;
};

FileChoices FILECHOICES(const Object& dialog);
// Offers the word at the cursor and, the first time, the sources in all folders of the program's.
void OFFERFILECHOICES(const Object& dialog);
// Why there is nothing to search for, or nowhere; empty if there is.
std::string FILECHOICEPROBLEM(const Object& dialog);
// Lets the user choose the folder, by the button or by entering it; false for any other event.
bool CHOOSEFOLDER(const Object& dialog, int event, const Object& control);

std::unique_ptr<TextSearch> SEARCHOF(const FileChoices& choices);
// The text of a file as it is to be searched: that of the Code window, where the file stands there, changed.
bool TEXTOFFILE(const std::string& file, std::string& text, SkippedFiles& skipped);
// Whether the file stands in the Code window, changed.
bool ISCHANGEDINEDITOR(const std::string& file);

// A line of a text as a list shows it: blanks in front taken away, control characters as blanks, and at most some 200
// bytes, among them the one at the offset `at`.
std::string SHOWNLINE(std::string_view line, std::size_t at);

}  // namespace tarn
