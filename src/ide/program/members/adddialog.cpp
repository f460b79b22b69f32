// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/adddialog.h"

#include "ide/designer/files/dlgtest.h"
#include "ide/designer/files/openresource.h"
#include "ide/designer/files/scratch.h"
#include "ide/editor/lineends.h"
#include "ide/editor/sourcefile.h"
#include "ide/program/members/messages.h"
#include "ide/program/members/namedfiles.h"
#include "ide/program/members/programchanges.h"
#include "ide/program/members/programnames.h"
#include "ide/program/members/windowfunction.h"
#include "ide/program/projedit.h"
#include "ide/program/projwindow.h"
#include "kernel/windows/resourcetext.h"
#include "library/dialogs/dlgutil.h"
#include "library/system/system.h"
#include "os/files.h"

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {
namespace {

// Where the dialog goes, and the names that it may not have there.
struct Target {
    std::string resourceFile, classFile;  // the class is empty where there is none
    std::string names;                    // of the resources and of the functions, one a line
    ProgramNames others;                  // of the program's other resource files
};

std::string headOf(const ResourceChoice& dialog) {
    return "The following dialog:\n\n\t" + dialog.name + " in '" + dialog.file + "'\n\n";
}

std::string DIALOGOBSTACLE(const ResourceChoice& dialog, const Target& target) {
    FRAME(DIALOGOBSTACLE);
    STAMP();
    const std::string error = TESTPROPERTIES(dialog.file, dialog.name).error;
    if (!error.empty()) return "cannot be added to the program, because of the following error:\n" + error;
    return target.resourceFile.empty() ? "cannot be added. You have not specified where the dialog is added "
                                         "to.\nChoose a resource file in the program window and try again."
                                       : "";
}

Target FINDTARGET() {
    FRAME(FINDTARGET);
    STAMP();
    Target target;
    target.resourceFile = GETCURRENTRESOURCE().file;
    if (target.resourceFile.empty()) return target;
    const std::string twin = TWINFILE(target.resourceFile, ClassExtension);
    if (FileSize(twin) >= 0) target.classFile = twin;
    STAMP();
    std::string text;
    static_cast<void>(ProgramChanges().load(target.classFile, text));
    target.names = RESOURCENAMES(target.resourceFile, "*").text + FUNCTIONNAMES(text);
    STAMP();
    target.others = ProgramNames::beside(target.resourceFile);
    return target;
}

// ---- the name ----

bool isIn(const std::string& names, const std::string& name) {
    for (int n = 1; n <= STRLINES(names); ++n)
        if (STREQUAL(STRLINE(names, n), name)) return true;
    return false;
}

// What is wrong with the name, as a question for another one; empty if it can be taken.
std::string questionFor(const std::string& name, const Target& target) {
    const std::string begin = "Dialog " + name + " cannot be added",
                      end = "Choose another name for the dialog being added.\n";
    if (STREQUAL(name, "main"))
        return begin + ", as the program already has a function called 'main'.\n" + end;
    if (!ISNAME(name))
        return begin +
               ", as the name is not a valid identifier.\nIt must start with a letter, and contain only "
               "letters, numbers or an underscore.\n" +
               end;
    const std::string holder = isIn(target.names, name) ? target.resourceFile : target.others.holderOf(name);
    if (!holder.empty())
        return begin + ". The following file (or its class file):\n\n\t'" + holder +
               "'\n\nalready contains a dialog or function called '" + name + "'. " + end;
    return {};
}

// Empty if the user gives up.
std::string ASKNAME(const std::string& title, std::string name, const Target& target) {
    FRAME(ASKNAME);
    for (std::string question = questionFor(name, target); !question.empty();
         question = questionFor(name, target)) {
        STAMP();
        name = STRTRIM(INPUTBOX(title, question, name));
        if (name.empty()) return {};
    }
    return name;
}

// ---- the text ----

struct Copy {
    std::string text, error;
};

// By resources, wherever in the program.
std::string takenNames(const Target& target) {
    return RESOURCENAMES(target.resourceFile, "*").text + target.others.all();
}

std::string FITCOPY(const std::string& file, const std::string& name, const Target& target) {
    FRAME(FITCOPY);
    STAMP();
    std::string error = STREQUAL(name, NameOfTests) ? "" : ResourceRename(file, NameOfTests, name);
    if (error.empty()) error = FIXPROPERTY_OWNER(file, name);
    STAMP();
    if (error.empty()) error = FIXPROPERTY_POSITION(file, name);
    STAMP();
    return error.empty() ? FIXPROPERTY_MENU(file, name, takenNames(target)) : error;
}

// The dialog as a resource text of its own that fits the target.
Copy COPYDIALOG(const ResourceChoice& dialog, const std::string& name, const Target& target) {
    FRAME(COPYDIALOG);
    STAMP();
    const PropertyTest test = TESTPROPERTIES(dialog.file, dialog.name, true);
    Copy copy{"", test.error};
    STAMP();
    if (copy.error.empty()) copy.error = FITCOPY(test.scratchFile, name, target);
    STAMP();
    if (copy.error.empty()) {
        const os::FileError error = os::readFile(test.scratchFile, copy.text);
        copy.error = std::string(os::describe(error));
    }
    if (!test.scratchFile.empty()) os::files().remove(test.scratchFile);
    return copy;
}

// The target's text with the dialog behind it, in which it is found again.
std::string MERGE(const Copy& copy, const std::string& name, const Target& target, std::string& text) {
    FRAME(MERGE);
    STAMP();
    const std::string merged =
        ADOPTLINEENDS(DIALOGMERGERCTEXT(text, ADOPTLINEENDS(copy.text, text), false), text);
    STAMP();
    const ResourceText found = ResourceTextInfo(merged, target.resourceFile, "DIALOG", name);
    if (!found.error.empty()) return found.error;
    if (found.text.empty()) return "It would be a part of what stands in front of it.";
    text = merged;
    return {};
}

// ---- the command ----

std::string ADDFUNCTION(ProgramChanges& changes, const std::string& name, const Target& target) {
    FRAME(ADDFUNCTION);
    if (target.classFile.empty()) return {};
    std::string text;
    STAMP();
    if (std::string error = changes.load(target.classFile, text); !error.empty()) return error;
    const std::string before = text;
    const std::string error = ADDWINDOWFUNCTION(name, text);
    STAMP();
    if (!error.empty()) return "Could not add the window function for '" + name + "'.\n" + error;
    changes.edit(target.classFile, ADOPTLINEENDS(text, before));
    return {};
}

std::string ADDCOPY(const Copy& copy, const std::string& name, const Target& target) {
    FRAME(ADDCOPY);
    ProgramChanges changes;
    std::string text;
    STAMP();
    std::string error = changes.load(target.resourceFile, text);
    if (error.empty()) error = MERGE(copy, name, target, text);
    STAMP();
    if (!error.empty()) return error;
    changes.save(target.resourceFile, text);
    error = ADDFUNCTION(changes, name, target);
    STAMP();
    return error.empty() ? changes.commit() : error;
}

// A copied dialog names its pictures as it did where it was.
void tellPictures(const std::string& title, const std::string& name, const Target& target) {
    const std::string missing = MISSINGPICTURES(target.resourceFile, name);
    if (missing.empty()) return;
    MSGBOX(title, "Dialog " + name + " names the following picture(s), which the program does not have:\n\n" +
                      INDENTLINES(LIMITLINES(missing)) +
                      "\nAdd them with Program-Add File, or choose others in the dialog editor.\n");
}

}  // namespace

void PROJECTADDDIALOG(const std::string& title) {
    FRAME(PROJECTADDDIALOG);
    STAMP();
    const ResourceChoice dialog = OPENRESOURCEDIALOG(title, "dialog", "", "");
    STAMP();
    if (dialog.name.empty()) return;
    const Target target = FINDTARGET();
    STAMP();
    const std::string reason = DIALOGOBSTACLE(dialog, target);
    STAMP();
    if (!reason.empty()) return MSGBOX(title, headOf(dialog) + reason);
    const std::string name = ASKNAME(title, dialog.name, target);
    STAMP();
    if (name.empty() || !SETTLECODEWINDOW(target.resourceFile)) return;
    STAMP();
    const Copy copy = COPYDIALOG(dialog, name, target);
    STAMP();
    const std::string error = copy.error.empty() ? ADDCOPY(copy, name, target) : copy.error;
    STAMP();
    if (!error.empty())
        return MSGBOX(title, headOf(dialog) +
                                 "cannot be added to the program, because of the following error:\n" + error);
    if (IsLoaded(ProjectEditorDlg)) PROJECTREFRESH(ProjectEditorDlg);
    STAMP();
    MSGBOX(title, "Added " + name + " from '" + dialog.file + "'");
    STAMP();
    tellPictures(title, name, target);
    STAMP();
}

}  // namespace tarn
