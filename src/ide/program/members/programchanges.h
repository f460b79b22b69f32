// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a command means to change in a program: texts of classes and resource files, new files, files that go. They are
// gathered here and made together by `commit`, so that the program is the old or the new one whatever happens between
// (changes.h). The class in the Code window is changed there:
//
//   save     there and on the disk, which both have the new text then
//   edit     there alone, as if the user had typed it, and Undo takes it back; any other file on the disk
//
// A command asks all its questions first: nothing may be shown between `load` and `commit`. Errors are texts, empty on
// success. Cost: reads each file that is loaded; commit that of changes.h.
#pragma once

#include "ide/editor/ownwrites.h"
#include "ide/program/changes.h"

#include <string>
#include <vector>

namespace tarn {

class ProgramChanges {
public:
    // The text as it stands now: behind the changes so far, else in the Code window, else in the file. A file that does not
    // exist is empty.
    [[nodiscard]] std::string load(const std::string& file, std::string& text) const;
    void save(const std::string& file, const std::string& text);
    void edit(const std::string& file, const std::string& text);
    void create(const std::string& file, const std::string& text);  // that file must not be there yet
    void remove(const std::string& file);
    // Another file with the contents that the source has on the disk. One that stands there already goes if `replaces`; else
    // the commit fails.
    [[nodiscard]] std::string copy(const std::string& source, const std::string& file, bool replaces);

    // All or nothing.
    [[nodiscard]] std::string commit();

private:
    [[nodiscard]] const os::FileChange* find(const std::string& file) const;
    void put(os::FileChange change);

    std::vector<os::FileChange> files_;
    std::string windowFile_, windowText_;  // of the Code window; the file is empty where it is not changed
    bool windowSaved_ = false;
};

// The class with its name in the clause ("ADD") or without ("DEL"). Changes nothing where nothing is to be changed.
[[nodiscard]] std::string CHANGEUSES(ProgramChanges& changes, const std::string& classFile,
                                     const std::string& operation, const std::string& name,
                                     bool* changed = nullptr);

}  // namespace tarn
