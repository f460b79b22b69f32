// SPDX-License-Identifier: Apache-2.0
//
// The work folder of an installation and its journal; see install.h.
#pragma once

#include "os/files.h"
#include "toolchain/setup/installed.h"

#include <string>
#include <vector>

namespace tarn::setup {

class WorkFolder {
public:
    explicit WorkFolder(const std::string& app);
    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string fresh() const { return path_ + "/new"; }
    [[nodiscard]] std::string old() const { return path_ + "/old"; }
    [[nodiscard]] std::string journal() const { return path_ + "/journal"; }
    [[nodiscard]] std::string keptEntry(std::size_t number) const;
    // With all that is in it, but files that an installation there does not own.
    void remove() const;

private:
    std::string path_;
};

// What stands outside of the work folder and may be half done.
struct Journal {
    bool had = false;  // an installation was there before
    struct Entry {
        std::string path;
        bool kept = false;  // its old text stands in the work folder, under its number
    };
    std::vector<Entry> entries;
};
std::string textOf(const Journal& journal);
Journal readJournal(const std::string& text);

// Makes folders in their order, ahead of an installation into `app`; what went wrong, empty on success. They are noted
// before the first is made, in a file in the nearest folder above `app` that is there.
std::string makeNotedFolders(const std::string& app, const std::vector<std::string>& folders);
// Removes those of them that are empty, and the note.
void removeNotedFolders(const std::string& app);

// Files that do not belong to an installation go from one folder to the other, under other names where these are taken; a
// file of the list that has been changed goes as NAME.saved. The first failure ends it.
os::FileError moveStrangers(const std::string& from, const Installed& list, const std::string& to);
// The same back, with their own names again.
os::FileError moveStrangersBack(const std::string& from, const Installed& list, const std::string& to);

// Writes a desktop entry: by a file beside it, which undoing knows, so that a death leaves nothing there.
os::FileError writeEntry(const std::string& path, std::string_view text, std::uint32_t mode);

// The files of an installation and then its folder; files that are not its own stay, and with them the folder and a list
// that names no file any more: a later installation knows by it that the place is its own. It can be done again.
os::FileError removeInstalled(const std::string& app, const Installed& list);

bool exists(const std::string& path);  // a file or a folder

}  // namespace tarn::setup
