// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/addclass.h"

#include "ide/editor/sourcefile.h"
#include "ide/program/members/classname.h"
#include "ide/program/members/messages.h"
#include "ide/program/members/namedfiles.h"
#include "ide/program/members/programchanges.h"
#include "ide/program/members/programfolders.h"
#include "ide/program/projlist.h"
#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/files.h"

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {
namespace {

// Why the class cannot be added, as it is shown; empty if it can.
std::string obstacleOf(const std::string& file, const std::string& mainFile, const FolderSearch& places) {
    const std::string name = FILEGETFNAME(file);
    if (!ISCLASSFILE(file) || !SYMISCLASS(1, file, ProductWord, "CLASS"))
        return FILEMESSAGE(file, "cannot be added because it is not a class.\n"
                                 "The Add Class command only works with classes.");
    if (ISMAINCLASS(file))
        return FILEMESSAGE(file, "is a main class and cannot be added.\n"
                                 "The program already has a main class called '" +
                                     mainFile + "'.");
    if (ISINPROGRAM(file))
        return FILEMESSAGE(name, "is already part of the program. It cannot be added twice.");
    if (places.other)
        return FILEMESSAGE(
            name, "cannot be added, because a file with the same name already exists.\n"
                  "The existing file is in an inherited folder, or in the folder containing the main "
                  "program.\nChoose a different class or rename the existing file.");
    if (ISCOREFILE(file) && !ISSAMEFILE(FILEGETDIR(file), FILEADDSEPARATOR(GETINHERITEDLIBPATH())))
        return FILEMESSAGE(file, std::string("cannot be added, because ") + CoreName);
    if (!ISNAME(FILEBASENAME(file)))
        return FILEMESSAGE(file,
                           "cannot be added to the program, as its filename is not a valid class name.\n" +
                               NAMEFAULT(FILEBASENAME(file)) +
                               "\nMake a copy of the file with another name and try again.\n");
    if (const std::string held = SYMGETCLASSNAME(1, file, ProductWord); !STREQUAL(held, FILEBASENAME(file)))
        return FILEMESSAGE(file, "cannot be added to the program. It holds the class '" + held +
                                     "', and a class must be called like its file.\n"
                                     "Rename the file or the class, and try again.\n");
    return {};
}

// A copy of the class, with its resource file where it has one, beside the main class.
struct Copy {
    std::string source, file;
    bool replaces = false;  // as the user has said
};
struct Copies {
    std::vector<Copy> files;
    std::string error;
    bool cancelled = false;
};

// A file that is there already goes only if the user says so.
void plan(Copies& copies, const std::string& source, const std::string& folder) {
    Copy copy{source, folder + FILEGETFNAME(source)};
    copy.replaces = FileSize(copy.file) >= 0;
    copies.cancelled =
        copy.replaces && MSGBOX("Copy File", "'" + copy.file + "' already exists, do you want to replace it?",
                                "Replace\nCancel", BoxIcon::Question) != "Replace";
    copies.files.push_back(copy);
}

Copies planCopies(const std::string& title, const std::string& file, const std::string& mainFile) {
    Copies copies;
    const std::string folder = FILEGETDIR(mainFile), twin = TWINFILE(file, ResourceExtension);
    plan(copies, file, folder);
    if (copies.cancelled || FileSize(twin) < 0) return copies;
    plan(copies, twin, folder);
    if (copies.cancelled) return copies;
    for (const NamedFile& named : ASKNAMEDFILES(title, twin, folder))
        copies.files.push_back({named.source, named.copy});
    return copies;
}

std::string addCopies(ProgramChanges& changes, const Copies& copies) {
    for (const Copy& copy : copies.files) {
        os::makeFolders(os::native(FILEGETDIR(copy.file)));
        if (std::string error = changes.copy(copy.source, copy.file, copy.replaces); !error.empty())
            return error;
    }
    return {};
}

std::string COPYCLASS(ProgramChanges& changes, const Copies& copies) {
    FRAME(COPYCLASS);
    STAMP();
    std::string error = addCopies(changes, copies);
    if (error.empty()) error = changes.commit();
    STAMP();
    if (!error.empty()) return error;
    for (const Copy& copy : copies.files) KEEPTIME(copy.source, copy.file);
    return {};
}

// True if the class was added. What went wrong is told.
bool ADDTOPROGRAM(const std::string& title, const std::string& file, const std::string& mainFile,
                  bool inside) {
    FRAME(ADDTOPROGRAM);
    STAMP();
    const Placing placing =
        inside ? Placing::Cancel
               : ASKPLACING(title, "class", "class file (and resource file)", file, mainFile);
    if (!inside && placing == Placing::Cancel) return false;
    STAMP();
    const Copies copies = placing == Placing::CopyFile ? planCopies(title, file, mainFile) : Copies();
    if (copies.cancelled || !SETTLECODEWINDOW(mainFile)) return false;
    STAMP();
    ProgramChanges changes;
    std::string error = FileSize(file) < 0 ? "The file '" + file + "' was not found."
                                           : CHANGEUSES(changes, mainFile, "ADD", FILEBASENAME(file));
    STAMP();
    if (error.empty())
        error = placing == Placing::CopyFile        ? COPYCLASS(changes, copies)
                : placing == Placing::UpdateFolders ? COMMITWITHFOLDER(changes, title, file)
                                                    : changes.commit();
    STAMP();
    if (!error.empty()) MsgBox(title, error, "OK", BoxIcon::Error);
    return error.empty();
}

}  // namespace

void PROJECTADDCLASS(const std::string& title) {
    FRAME(PROJECTADDCLASS);
    STAMP();
    const std::string mainFile = PROJECTGETMAINFILE();
    if (!ISCLASSFILE(mainFile)) return Sound();
    STAMP();
    const std::string file = OpenFileDialog(title, "*.cls", "Class (*.cls)|*.cls|");
    if (file.empty()) return;
    STAMP();
    const FolderSearch places = FINDINFOLDERS(mainFile, file);
    STAMP();
    const std::string obstacle = obstacleOf(file, mainFile, places);
    STAMP();
    if (!obstacle.empty()) return MSGBOX(title, obstacle);
    const bool added = ADDTOPROGRAM(title, file, mainFile, places.inside);
    STAMP();
    if (added) PROJECTREFRESH(ProjectEditorDlg);
    STAMP();
}

}  // namespace tarn
