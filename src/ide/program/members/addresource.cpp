// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/addresource.h"

#include "ide/designer/files/dlgtest.h"
#include "ide/designer/files/scratch.h"
#include "ide/editor/lineends.h"
#include "ide/editor/sourcefile.h"
#include "ide/program/members/classname.h"
#include "ide/program/members/messages.h"
#include "ide/program/members/namedfiles.h"
#include "ide/program/members/programchanges.h"
#include "ide/program/members/programfolders.h"
#include "ide/program/members/programnames.h"
#include "ide/program/members/windowfunction.h"
#include "ide/program/projlist.h"
#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "library/designer/proputil.h"
#include "library/source/codewiz.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/text/ascii.h"

#include <vector>

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {
namespace {

// The resource file, the class that is made for it, and where they are looked for.
struct NewPair {
    std::string resourceFile, classFile, mainFile;
};

// ---- checks ----

// Another file of either name in the folders of the program, or a class beside the resource file.
bool isTaken(const NewPair& pair) {
    const std::string folder = FILEGETDIR(pair.classFile), name = FILEGETFNAME(pair.classFile);
    return !NAMEINFOLDER(folder, name).empty() || FINDINFOLDERS(pair.mainFile, pair.resourceFile).other ||
           FINDINFOLDERS(pair.mainFile, pair.classFile).other;
}

// Only letters and digits, since the class is called like the file.
bool isClassName(const std::string& stem) {
    return ISNAME(stem) && STRTOIDENTIFIER(stem, static_cast<int>(MaxIdentifier), "") == stem;
}

// What is wrong with the name behind its underscores and spaces, as a line; empty if nothing is.
std::string otherFault(const std::string& stem) {
    const std::string rest = STRREPLACE(STRREPLACE(stem, " ", ""), "_", "");
    return isClassName(rest) ? "" : NAMEFAULT(rest) + "\n";
}

// What a dialog may not be called, since a function of that name is made; empty if it may.
std::string unfitName(const std::string& dialog) {
    if (STREQUAL(dialog, "main")) return "The program already has a function called 'main'.";
    return ISNAME(dialog) ? "" : "Its name is not a valid identifier.";
}

// The first name of the file that the program cannot have; empty if all are well.
std::string BADNAME(const std::string& file) {
    FRAME(BADNAME);
    STAMP();
    const std::string dialogs = RESOURCENAMES(file, "DIALOG").text;
    for (std::string_view rest = dialogs; !rest.empty();) {
        const std::string dialog(ascii::withoutLineEnd(ascii::takeLine(rest)));
        const std::string reason = unfitName(dialog);
        if (!reason.empty()) return "(Dialog " + dialog + ") " + reason;
    }
    STAMP();
    const ProgramNames taken = ProgramNames::ofAll();
    const std::string names = RESOURCENAMES(file, "*").text;
    for (std::string_view rest = names; !rest.empty();) {
        const std::string name(ascii::withoutLineEnd(ascii::takeLine(rest)));
        const std::string holder = taken.holderOf(name);
        if (!holder.empty()) return "The name '" + name + "' is already used in '" + holder + "'.";
    }
    return {};
}

// Why the file cannot be added; empty if it can.
std::string obstacleOf(const NewPair& pair) {
    const std::string& file = pair.resourceFile;
    if (FileSize(file) < 0 || !STREQUAL(FILEGETEXT(file), ResourceExtension))
        return "cannot be added to the program, because it is not a resource file.";
    if (const std::string error = TESTFILEPROPERTIES(file); !error.empty())
        return "cannot be added to the program, because of the following error:\n" + error;
    if (!isClassName(FILEBASENAME(file)))
        return "cannot be added to the program, as its filename is not a valid class name.\n"
               "Make a copy of the file, remove underscores and spaces from its name and try again.\n" +
               otherFault(FILEBASENAME(file));
    if (ISINPROGRAM(pair.classFile) || ISINPROGRAM(file))
        return "cannot be added to the program. The resource file must have a\n"
               "different name from all other classes and resource files in the program.";
    if (isTaken(pair))
        return "cannot be added, because a file or a class with the same name already exists.\n"
               "The existing file is in an inherited folder, or in the folder containing the main program.\n"
               "Choose a different class or rename the existing file.";
    if (ISCOREFILE(pair.classFile)) return std::string("cannot be added, because ") + CoreName;
    const std::string bad = BADNAME(file);
    return bad.empty() ? "" : "cannot be added to the program, because of the following error:\n" + bad;
}

// ---- the class ----

// The template's text with the window function of each dialog of the file.
TemplateText MAKECLASS(const NewPair& pair) {
    FRAME(MAKECLASS);
    STAMP();
    const TemplateText body = LOADTEMPLATE(GETIDEINIFILE(), "Template.NewNonMainClass.cls");
    STAMP();
    if (!body.message.empty()) return body;
    TemplateParameters list = TEMPLATETOPROPLIST(body.text);
    SETPROPVALUE("Name", FILEBASENAME(pair.classFile), list.names, list.values);
    SETPROPVALUE("Directory", FILEGETDIR(pair.classFile), list.names, list.values);
    TemplateText made = UPDATETEMPLATE(list, body.text, false);
    STAMP();
    if (!made.message.empty()) return made;
    const std::string plain = made.text;
    made.message = ADDWINDOWFUNCTIONS(RESOURCENAMES(pair.resourceFile, "DIALOG").text, made.text);
    made.text = ADOPTLINEENDS(made.text, plain);
    return made;
}

// ---- the command ----

// Both files in the folder of the main class.
std::string COPYPAIR(ProgramChanges& changes, const NewPair& pair, const std::string& classText,
                     const std::vector<NamedFile>& named) {
    FRAME(COPYPAIR);
    const std::string folder = FILEGETDIR(pair.mainFile),
                      resourceCopy = folder + FILEGETFNAME(pair.resourceFile),
                      classCopy = folder + FILEGETFNAME(pair.classFile);
    STAMP();
    Assert(FileSize(resourceCopy) < 0 && FileSize(classCopy) < 0,
           "'" + resourceCopy + "' and its class should not exist.");
    STAMP();
    std::string error = changes.copy(pair.resourceFile, resourceCopy, false);
    if (!error.empty()) return error;
    changes.create(classCopy, classText);
    for (const NamedFile& file : named) {
        os::makeFolders(os::native(FILEGETDIR(file.copy)));
        error = changes.copy(file.source, file.copy, false);
        if (!error.empty()) return error;
    }
    error = changes.commit();
    STAMP();
    if (!error.empty()) return error;
    KEEPTIME(pair.resourceFile, resourceCopy);
    for (const NamedFile& file : named) KEEPTIME(file.source, file.copy);
    return {};
}

std::string MAKECHANGES(const std::string& title, const NewPair& pair, Placing placing,
                        const std::vector<NamedFile>& named) {
    FRAME(MAKECHANGES);
    STAMP();
    if (FileSize(pair.resourceFile) < 0) return "The file '" + pair.resourceFile + "' was not found.";
    STAMP();
    const TemplateText made = MAKECLASS(pair);
    STAMP();
    if (!made.message.empty()) return "Cannot create new class.\n" + made.message + "\n";
    ProgramChanges changes;
    const std::string error = CHANGEUSES(changes, pair.mainFile, "ADD", FILEBASENAME(pair.classFile));
    STAMP();
    if (!error.empty()) return error;
    if (placing == Placing::CopyFile) return COPYPAIR(changes, pair, made.text, named);
    changes.create(pair.classFile, made.text);
    return placing == Placing::UpdateFolders ? COMMITWITHFOLDER(changes, title, pair.classFile)
                                             : changes.commit();
}

// True if the file was added. What went wrong is told.
bool ADDTOPROGRAM(const std::string& title, const NewPair& pair) {
    FRAME(ADDTOPROGRAM);
    STAMP();
    const bool inside = FINDINFOLDERS(pair.mainFile, pair.resourceFile).inside;
    const Placing placing =
        inside ? Placing::Cancel
               : ASKPLACING(title, "resource file", "resource file", pair.resourceFile, pair.mainFile);
    STAMP();
    if (!inside && placing == Placing::Cancel) return false;
    std::vector<NamedFile> named;
    if (placing == Placing::CopyFile)
        named = ASKNAMEDFILES(title, pair.resourceFile, FILEGETDIR(pair.mainFile));
    STAMP();
    if (!SETTLECODEWINDOW(pair.mainFile)) return false;
    STAMP();
    const std::string error = MAKECHANGES(title, pair, placing, named);
    STAMP();
    if (!error.empty()) MsgBox(title, error, "OK", BoxIcon::Error);
    return error.empty();
}

}  // namespace

void PROJECTADDRESOURCE(const std::string& title) {
    FRAME(PROJECTADDRESOURCE);
    STAMP();
    const std::string mainFile = PROJECTGETMAINFILE();
    if (!ISCLASSFILE(mainFile)) return Sound();
    STAMP();
    const std::string file = OpenFileDialog(title, "*.rc", "Resource files (*.rc)|*.rc|");
    if (file.empty()) return;
    STAMP();
    const NewPair pair{file, TWINFILE(file, ClassExtension), mainFile};
    const std::string obstacle = obstacleOf(pair);
    STAMP();
    if (!obstacle.empty()) return MSGBOX(title, FILEMESSAGE(file, obstacle));
    const bool added = ADDTOPROGRAM(title, pair);
    STAMP();
    if (added) PROJECTREFRESH(ProjectEditorDlg);
    STAMP();
}

}  // namespace tarn
