// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/removeitem.h"

#include "ide/designer/dlgdisk.h"
#include "ide/editor/sourcefile.h"
#include "ide/program/members/confirmremove.h"
#include "ide/program/members/programchanges.h"
#include "ide/program/members/removechecks.h"
#include "ide/program/projwindow.h"
#include "ide/program/usesclause.h"
#include "kernel/windows/resourcetext.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {
namespace {

constexpr const char* DeletionWarning =
    "Warning: if you select the 'Also delete file(s)' checkbox, this will permanently delete the file.";

struct Removal {
    const Object& window;
    ProjectRow row;
    std::string report, error;  // both empty: the user has said no
    ProgramChanges changes;
    [[nodiscard]] const ProjectItem& item() const { return row.item; }
};

// Makes the changes; the report holds only then.
void COMMIT(Removal& removal) {
    FRAME(COMMIT);
    STAMP();
    if (removal.error.empty()) removal.error = removal.changes.commit();
    if (!removal.error.empty()) removal.report.clear();
}

// Takes the resource out of the text of its file.
void TAKEOUT(Removal& removal, const std::string& resourceFile, const std::string& kind) {
    FRAME(TAKEOUT);
    std::string text;
    STAMP();
    removal.error = removal.changes.load(resourceFile, text);
    if (removal.error.empty())
        removal.error = ResourceTextDelete(text, resourceFile, kind, removal.item().name);
    STAMP();
    if (!removal.error.empty()) return;
    removal.changes.save(resourceFile, text);
    removal.report += "Removed " + removal.item().name + " from '" + resourceFile + "'\n";
}

// Deletes the file, if it is there.
void DELETEFILE(Removal& removal, const std::string& file) {
    FRAME(DELETEFILE);
    STAMP();
    if (FileSize(file) < 0) {
        removal.report += "File '" + file + "' was not deleted as it does not exist.\n";
        return;
    }
    removal.changes.remove(file);
    removal.report += "Deleted file '" + file + "'\n";
}

// ---- a resource file ----

void REMOVERESOURCEFILE(Removal& removal) {
    FRAME(REMOVERESOURCEFILE);
    const std::string& file = removal.item().file;
    STAMP();
    const RemoveChoice choice = CONFIRMREMOVEDIALOG("File '" + file + "'", DeletionWarning, false, true);
    STAMP();
    if (!choice.remove) return;
    if (choice.alsoDelete)
        DELETEFILE(removal, file);
    else
        removal.report = "File '" + file + "' was not deleted.\n";
    COMMIT(removal);
}

// ---- a dialog ----

// The window function of the dialog, from the Code window if the class is open there.
void TAKEOUTFUNCTION(Removal& removal) {
    FRAME(TAKEOUTFUNCTION);
    const std::string &name = removal.item().name, file = TWINFILE(removal.item().file, ClassExtension);
    std::string text, kind;
    STAMP();
    if (!removal.error.empty() || FileSize(file) < 0) return;
    removal.error = removal.changes.load(file, text);
    const bool found = removal.error.empty() && SYMFINDFUNCTION(name, 0, text, kind);
    STAMP();
    if (!found || STRLOWER(kind).find("callback") == std::string::npos) return;
    if (!SYMDELETEFUNCTION(name, 0, text)) {
        removal.error = "The function " + name + "() could not be removed from '" + file + "'.";
        return;
    }
    STAMP();
    removal.changes.edit(file, text);
    removal.report += "Removed " + kind + " function " + name + "() from '" + file + "'" +
                      (ISINEDITOR(file) ? " (in editor)" : "") + "\n";
}

void REMOVEDIALOG(Removal& removal) {
    FRAME(REMOVEDIALOG);
    const ProjectItem& item = removal.item();
    STAMP();
    const RemoveChoice choice = CONFIRMREMOVEDIALOG("Dialog '" + item.name + "'",
                                                    "This will remove the dialog from '" + item.file + "'.",
                                                    ISCLASSFILE(PROJECTGETMAINFILE(removal.window)), false);
    STAMP();
    if (!choice.remove || !SETTLECODEWINDOW(item.file)) return;
    TAKEOUT(removal, item.file, "DIALOG");
    if (choice.alsoRemove) TAKEOUTFUNCTION(removal);
    STAMP();
    COMMIT(removal);
    if (removal.error.empty()) NOTEDIALOGREMOVED(item.file, item.name);
}

// ---- a version block ----

void REMOVEVERSION(Removal& removal) {
    FRAME(REMOVEVERSION);
    const ProjectItem& item = removal.item();
    STAMP();
    const RemoveChoice choice = CONFIRMREMOVEDIALOG(
        "VersionInfo '" + item.name + "'",
        "This will remove the version information from '" + item.file + "'.", false, false);
    STAMP();
    if (!choice.remove || !SETTLECODEWINDOW(item.file)) return;
    TAKEOUT(removal, item.file, "VERSIONINFO");
    COMMIT(removal);
}

// ---- a class ----

// The classes whose clause names this one, one a line.
std::string USERSOF(const Removal& removal) {
    FRAME(USERSOF);
    std::string users, text;
    STAMP();
    const std::string files = PROJECTGETFILES(removal.window);
    for (int n = 1; n <= STRLINES(files); ++n) {
        const std::string file = STRLINE(files, n);
        STAMP();
        if (!ISCLASSFILE(file) || !removal.changes.load(file, text).empty()) continue;
        const UsesChange change = CHANGEUSESCLAUSE(text, "DEL", removal.item().name);
        if (change.changed || !change.error.empty()) users += file + "\n";
    }
    return users;
}

// False if the user wants to keep a text that differs from its file.
bool SETTLEALL(const std::string& files) {
    FRAME(SETTLEALL);
    for (int n = 1; n <= STRLINES(files); ++n) {
        STAMP();
        if (!SETTLECODEWINDOW(STRLINE(files, n))) return false;
    }
    return true;
}

void TAKEOUTCLASS(Removal& removal, const std::string& users) {
    FRAME(TAKEOUTCLASS);
    const std::string& name = removal.item().name;
    for (int n = 1; n <= STRLINES(users) && removal.error.empty(); ++n) {
        STAMP();
        const std::string file = STRLINE(users, n);
        removal.error = CHANGEUSES(removal.changes, file, "DEL", name);
        removal.report += "Removed class '" + name + "' from Uses clause of '" + file + "'\n";
    }
    if (users.empty())
        removal.report += "Class '" + name + "' is not in the Uses clause of any other classes.\n";
}

void REMOVECLASS(Removal& removal) {
    FRAME(REMOVECLASS);
    const ProjectItem& item = removal.item();
    STAMP();
    const bool library = ISLIBRARYCLASS(item);
    const std::string text =
        library ? "This file is part of the run time library. Although you can remove it from the program, "
                  "the actual file will not be deleted."
                : "Warning: if you select the 'Also delete file(s)' checkbox, the class file and dialog file "
                  "will be permanently deleted.";
    const RemoveChoice choice = CONFIRMREMOVEDIALOG("Class '" + item.name + "'", text, false, !library);
    STAMP();
    if (!choice.remove) return;
    const std::string twin = TWINFILE(item.file, ResourceExtension), users = USERSOF(removal);
    if (choice.alsoDelete && ISOPENINEDITOR(twin)) {
        removal.error = REMOVALMESSAGE(item.file, OpenInEditor);
        return;
    }
    STAMP();
    if (!SETTLEALL(users)) return;
    TAKEOUTCLASS(removal, users);
    STAMP();
    if (choice.alsoDelete)
        for (const std::string& file : {item.file, twin}) DELETEFILE(removal, file);
    COMMIT(removal);
}

// ---- a file that the program brings along ----

void REMOVEINCLUDED(Removal& removal) {
    FRAME(REMOVEINCLUDED);
    const ProjectItem& item = removal.item();
    STAMP();
    const std::string resourceFile = GROUPFILE(removal.window, removal.row);
    const RemoveChoice choice = CONFIRMREMOVEDIALOG("File '" + item.file + "'", DeletionWarning, false, true);
    STAMP();
    if (!choice.remove || !SETTLECODEWINDOW(resourceFile)) return;
    TAKEOUT(removal, resourceFile, item.type);
    if (choice.alsoDelete) DELETEFILE(removal, item.file);
    STAMP();
    COMMIT(removal);
}

// ---- the command ----

struct Remover {
    Member member;
    void (*remove)(Removal& removal);
};
constexpr Remover removers[] = {{Member::ResourceFile, REMOVERESOURCEFILE},
                                {Member::Dialog, REMOVEDIALOG},
                                {Member::VersionInfo, REMOVEVERSION},
                                {Member::Class, REMOVECLASS},
                                {Member::IncludedFile, REMOVEINCLUDED}};

}  // namespace

void PROJECTITEMDELETE(const Object& window) {
    FRAME(PROJECTITEMDELETE);
    STAMP();
    Removal removal{window, PROJECTITEMINFO(window), {}, {}, {}};
    if (removal.row.row == 0) return Sound();
    STAMP();
    const std::string caption = GetCaption(window), obstacle = REMOVALOBSTACLE(window, removal.row);
    STAMP();
    if (!obstacle.empty()) return MSGBOX(caption, obstacle);
    const Member member = MEMBEROF(removal.item());
    for (const Remover& remover : removers) {
        STAMP();
        if (remover.member == member) remover.remove(removal);
    }
    STAMP();
    if (!removal.error.empty()) return MSGBOX(caption, removal.error);
    if (removal.report.empty()) return;
    MSGBOX(caption, LIMITLINES(removal.report));
    STAMP();
    if (IsLoaded(window)) PROJECTREFRESH(window);
    STAMP();
}

}  // namespace tarn
