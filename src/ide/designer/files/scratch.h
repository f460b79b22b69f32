// SPDX-License-Identifier: GPL-3.0-or-later
//
// Dialogs on their way between a resource file and a scratch file: what the operations of dlgtest.h share.
#pragma once

#include "ide/designer/files/dlgtest.h"
#include "kernel/windows/resources.h"

#include <functional>
#include <string>

namespace tarn {

inline const std::string NameOfTests = "TestDlg";  // of the dialog in a scratch file

std::string READOBJECTS(const std::string& file, const std::string& dialog, DialogObjects& objects);

// Reads the dialog, and writes it back if `change` says that it has changed something.
std::string CHANGEOBJECTS(const std::string& file, const std::string& dialog,
                          const std::function<bool(DialogObjects& objects)>& change);

// The names of a kind of resources, one a line; `error` as ResourceInfo has it.
ResourceText RESOURCENAMES(const std::string& file, const std::string& kind);

// A file of its own in the folder of a resource file, gone with this object unless it is to be kept. Its name,
// "~dlgtest1.tmp", is none that a program has, and what a test that was killed has left behind for more than an hour goes
// with the next one.
class ScratchFile {
public:
    ScratchFile() = default;
    ~ScratchFile() { drop(); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    // Makes the file, and writes the objects into it. An error text, which says so where the folder takes no file.
    std::string make(const std::string& beside, const DialogObjects& objects);
    // Makes the file with that text. As `make` otherwise.
    std::string makeOf(const std::string& beside, const std::string& text);
    [[nodiscard]] const std::string& path() const { return path_; }
    // Gives the dialog the name of tests, so that the test window can be loaded from it.
    std::string rename(const std::string& dialog);
    void drop();         // deletes it
    std::string keep();  // leaves it to the caller, who deletes it

private:
    std::string path_;
};

}  // namespace tarn
