// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/programfolders.h"

#include "ide/build/compiler.h"
#include "ide/options/pathsoptions.h"
#include "ide/program/projlist.h"
#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/files.h"

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {
namespace {

constexpr std::string_view PathsSection = "PathsOptionsDlg", PathsKey = "Edit1";

bool isInherited(const std::string& folder) {
    return ("\n" + GETINHERITEDPATHSML()).find("\n" + folder + "\n") != std::string::npos;
}

}  // namespace

bool ISSAMEFILE(const std::string& one, const std::string& other) {
    FRAME(ISSAMEFILE);
    if (os::native(one) == os::native(other)) return true;
    if (one.empty() || other.empty()) return false;
    const os::FileInfo a = os::infoOf(one), b = os::infoOf(other);
    return a.exists && b.exists && a.device == b.device && a.inode == b.inode;
}

bool ISINPROGRAM(const std::string& file) {
    FRAME(ISINPROGRAM);
    STAMP();
    const std::string name = FILEGETFNAME(file), files = PROJECTGETFILES(ProjectEditorDlg);
    for (int n = 1; n <= STRLINES(files); ++n)
        if (STREQUAL(FILEGETFNAME(STRLINE(files, n)), name)) return true;
    return false;
}

FolderSearch FINDINFOLDERS(const std::string& mainFile, const std::string& file) {
    FRAME(FINDINFOLDERS);
    STAMP();
    const std::string found = FOLDERLISTFINDFILE(GETINHERITEDPATHSML() + FILEGETDIR(mainFile) + "\n", file);
    FolderSearch search;
    for (int n = 1; n <= STRLINES(found); ++n) {
        STAMP();
        (ISSAMEFILE(STRLINE(found, n), file) ? search.inside : search.other) = true;
    }
    return search;
}

Placing ASKPLACING(const std::string& title, const std::string& what, const std::string& copied,
                   const std::string& file, const std::string& mainFile) {
    FRAME(ASKPLACING);
    STAMP();
    const std::string answer =
        MSGBOX(title,
               "The " + what + " being added (" + FILEGETFNAME(file) +
                   ") is not currently in one of the inherited folders.\n"
                   "You can update the inherited folder list to include the new path (" +
                   FILEGETDIR(file) + ")\nOr you can copy the " + copied + " to the main program folder (" +
                   FILEGETDIR(mainFile) + ")\nWhat do you want to do?\n",
               "Update folders\nCopy file\nCancel", BoxIcon::Question);
    return answer == "Update folders" ? Placing::UpdateFolders
           : answer == "Copy file"    ? Placing::CopyFile
                                      : Placing::Cancel;
}

std::string COMMITWITHFOLDER(ProgramChanges& changes, const std::string& title,
                             const std::string& classFile) {
    FRAME(COMMITWITHFOLDER);
    const std::string before = GETINHERITEDPATHS(), folder = FILEGETDIR(classFile);
    STAMP();
    UPDATEINHERITPATHS(title, classFile, false);
    STAMP();
    std::string error = isInherited(folder)
                            ? changes.commit()
                            : "The inherited folder list could not be updated. Nothing was changed.";
    STAMP();
    if (error.empty() || GETINHERITEDPATHS() == before) return error;
    PROFILESTRPUT(GETIDEINIFILE(), PathsSection, PathsKey, before);
    REFRESHCOMMANDLINE();
    STAMP();
    return error;
}

void KEEPTIME(const std::string& source, const std::string& copy) {
    FRAME(KEEPTIME);
    const os::FileInfo info = os::infoOf(source);
    if (info.exists) os::files().setModified(os::native(copy), info.modified);
}

}  // namespace tarn
