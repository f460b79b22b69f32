// SPDX-License-Identifier: GPL-3.0-or-later
//
// The deleting of all backups at once: they are looked for, shown, and deleted when the user says so.
#include "ide/editor/backup.h"
#include "ide/editor/textedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "kernel/run/fileerrors.h"
#include "library/system/longwork.h"
#include "library/system/system.h"
#include "os/files.h"

#include <set>
#include <utility>
#include <vector>

MODULE("textedit", tarn::BACKUP_ONERROR)

namespace tarn {
namespace {

struct Found {
    std::set<std::string> files;  // full paths, ascending
    std::int64_t bytes = 0;
    bool stopped = false;  // by the user, before all of them were found
};

// Walks folders below folders. A link to a folder leads elsewhere, or in a circle, and is not followed; a folder that is
// reached twice, since one of the paths lies in another, is walked once.
class Search {
public:
    void walk(const std::string& folder) { walk(folder, deepest); }
    Found found() {
        found_.stopped = work_.stopped();
        return std::move(found_);
    }

private:
    static constexpr int deepest = 64;

    void walk(const std::string& folder, int depth) {
        std::string place;
        if (depth == 0 || !work_.go() ||
            os::files().resolve(os::native(folder), place) != os::FileError::None)
            return;
        if (!seen_.insert(place).second) return;
        std::vector<std::string> names;
        os::files().list(place, names);
        for (const std::string& name : names) look(folder, FILEADDSEPARATOR(place) + name, name, depth);
    }
    void look(const std::string& folder, const std::string& path, const std::string& name, int depth) {
        const os::FileInfo info = os::infoOf(path);
        if (info.folder) {
            std::string place;
            const bool isLink = os::files().resolve(path, place) != os::FileError::None || place != path;
            if (!isLink) walk(FILEADDSEPARATOR(folder) + name, depth - 1);
            return;
        }
        if (!info.exists || info.special || !name.ends_with(".bak") || name.find('\n') != std::string::npos)
            return;
        if (path == settings_) return;
        if (found_.files.insert(FILEADDSEPARATOR(folder) + name).second) found_.bytes += info.size;
    }

    Found found_;
    std::set<std::string> seen_;
    // Not a backup of a text: what the settings begin with when they are lost.
    std::string settings_ = FILECHANGEEXT(GETIDEINIFILE(), ".bak");
    LongWork work_{"Looking for backup files"};
};

std::string withCommas(std::int64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3;) text.insert(at -= 3, ",");
    return text;
}

std::string linesOf(const std::set<std::string>& files) {
    std::string lines;
    for (const std::string& file : files) lines += file + "\n";
    return lines;
}

// All of them, whatever happens to one; the first failure is told.
void deleteFiles(const std::set<std::string>& files) {
    std::int32_t failure = 0;
    for (const std::string& file : files) {
        const os::FileError error = os::files().remove(os::native(file));
        if (failure == 0 && !IsMissing(error)) failure = FileWriteCode(error);
    }
    SetError(failure);
}

Found findBackups() {
    Search search;
    const std::string paths = GETINHERITEDPATHSML();
    std::vector<std::string> folders;
    for (int i = 1; i <= STRLINES(paths); i++) folders.push_back(STRLINE(paths, i));
    folders.push_back(GETEXAMPLEDIR());
    const std::string file = EDITWNDGETFILENAME(SDIEdit);
    if (FILECHK(file)) folders.push_back(FILEGETDIR(file));
    for (const std::string& folder : folders)
        if (!folder.empty()) search.walk(folder);
    return search.found();
}

}  // namespace

void EDITWNDDELETEBACKUPS(const std::string& title) {
    FRAME(EDITWNDDELETEBACKUPS);
    STAMP();
    const Found found = findBackups();
    STAMP();
    if (found.stopped) return;
    if (found.bytes < 1) return MSGBOX(title, "There are no backup files to delete.");
    const std::string prompt = STR(static_cast<int>(found.files.size())) + " backup files, " +
                               withCommas(found.bytes) +
                               " bytes total.\nTo delete all these files, select any one file and press OK.\n"
                               "Or press Cancel not to delete anything.";
    const std::string chosen = ListBox(title, prompt, linesOf(found.files));
    STAMP();
    if (!chosen.empty()) deleteFiles(found.files);
    STAMP();
}

}  // namespace tarn
