// SPDX-License-Identifier: GPL-3.0-or-later
//
// Replace in Files: the same files as Find in Files, and a list of all changes before anything is written, in which whole
// files can be left out.
//
// A file is written whole or not at all, and its old bytes stand beside it first, under the name of an automatic backup.
// Not written, and told: files that are changed in the Code window, that have changed on the disk since the list was
// made, whose backup or whose text could not be written, and that would have no room in the Code window. A file that
// stands in the Code window unchanged is read again.
#pragma once

#include "ide/search/filechoices.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn {

inline const Object ReplaceFilesDlg("ReplaceFilesDlg"), ReplaceListDlg("ReplaceListDlg");

bool REPLACEFILESDLG(const Object& window, int event, const Object& control, int parameter);
bool REPLACELISTDLG(const Object& window, int event, const Object& control, int parameter);
void REPLACEFILESDIALOG();

// ---- the steps ----

struct LineChange {
    int line = 1;
    std::string before, after;  // as the list shows them
};
struct FileChange {
    std::string file;
    std::uint64_t digest = 0;  // of the bytes that the list was made from
    int count = 0;             // replacements
    std::vector<LineChange> lines;
    bool wanted = true;
};
struct ReplacePlan {
    std::vector<FileChange> files;
    std::string notes;  // lines on what was passed over
    bool stopped = false;
};

// What would change. Cost: reads all files; keeps the lines that change, not the texts.
ReplacePlan PLANREPLACEMENTS(const FileChoices& choices);

struct ReplaceReport {
    int replacements = 0, files = 0;
    std::string problems;  // a line for each file that was not written
};
// Writes the files that are wanted.
ReplaceReport WRITEREPLACEMENTS(const FileChoices& choices, const ReplacePlan& plan);

}  // namespace tarn
