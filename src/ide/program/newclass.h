// SPDX-License-Identifier: GPL-3.0-or-later
//
// The texts of a new class or of a new program, from the templates Template.NewMainClass, Template.NewNonMainClass and
// Template.NewDialog of the settings. Nothing is written: who asked for the texts writes them (changes.h).
//
// The checks have an order, and the first that fails is told: the templates, a class of the library with that name, the
// folder, the class file, the resource file.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// All of it empty: there is nothing to make. Without a resource file the last two are.
struct NewClass {
    std::string classText, classFile, resourceText, resourceFile;
    // The user has given up the changes of the Code window. Unless another file is shown there, they are to be marked
    // again: RESTORECHANGES.
    bool discarded = false;
    [[nodiscard]] bool empty() const { return classFile.empty(); }
};

// How a program begins: "Program Type" of its template.
enum ProgramType { WithoutWindow = 0, WithWindow = 1 };

// Asks about the changes in the Code window, and then for the properties of the class that `path` proposes. `label`, if it
// is a Label, has the name of the file in the Code window then.
NewClass NEWCLASSDIALOG(const Object& label, const std::string& title, const std::string& path, bool nonMain,
                        ProgramType type);
// The texts of a new program without asking; it has a window, and nothing is said of files that are there.
NewClass NEWCLASSGETTEXT(const std::string& title, const std::string& path);

// For a command that ended without a new file in the Code window: what was given up is a change again.
void RESTORECHANGES(const NewClass& made);

}  // namespace tarn
