// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/newprogram.h"

#include "ide/designer/dlgedit.h"
#include "ide/editor/recentfiles.h"
#include "ide/editor/textedit.h"
#include "ide/menus/filemenu.h"
#include "ide/options/pathsoptions.h"
#include "ide/program/changes.h"
#include "ide/program/members/programfolders.h"
#include "ide/program/newclass.h"
#include "ide/program/projlist.h"
#include "ide/program/projwindow.h"
#include "ide/program/usesclause.h"
#include "ide/shell/ide.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

#include <cstdlib>

namespace tarn {
namespace {

// A file that cannot be read; the commands write by changes.h, which tells its own failures.
void NEWPROGRAM_ONERROR(std::int32_t code) {
    if (!ISFILEERROR(code)) return IDE_ONERROR(code);
    TELLERROR(code, "Nothing was made. Check that you may read the files of the program.");
}

}  // namespace
}  // namespace tarn

MODULE("projedit", tarn::NEWPROGRAM_ONERROR)

namespace tarn {
namespace {

using Kind = os::FileChange::Kind;

constexpr const char* ClassStem = "New";
constexpr const char* ProgramStem = "App";

bool isThere(const std::string& file) {
    return FileSize(file) >= 0;
}

void tell(const std::string& title, const std::string& message) {
    MsgBox(title, message, "OK", BoxIcon::Error);
}

// False if the files could not be written, which is told.
bool write(const std::string& title, const std::vector<os::FileChange>& changes) {
    const std::string error = CHANGEFILES(changes);
    if (!error.empty()) tell(title, error);
    return error.empty();
}

// ---- a class ----

bool resourcesAreOpen(const std::string& title, const std::string& mainFile) {
    if (!STREQUAL(FILEGETEXT(mainFile), ResourceExtension)) return false;
    MSGBOX(title, "Cannot create a new class. There is a resource file:\n\n\t'" + mainFile +
                      "'\n\nwhich is open in the Program Editor window. This file must be closed first.");
    return true;
}

// The class, its resource file if it has one, and the main class with the new name in its Uses clause. False: told.
bool writeClass(const std::string& title, const NewClass& made, const std::string& mainFile) {
    std::vector<os::FileChange> changes{{made.classFile, made.classText, Kind::Create}};
    if (!made.resourceFile.empty()) changes.push_back({made.resourceFile, made.resourceText, Kind::Create});
    if (ISCLASSFILE(mainFile)) {
        std::string text;
        if (!isThere(mainFile))
            return tell(title, "The new class cannot be added to the Uses clause of '" + mainFile +
                                   "'.\nThe file was not found."),
                   false;
        if (!LOADFILE(mainFile, text)) return false;
        const UsesChange uses = CHANGEUSESCLAUSE(text, "ADD", FILEBASENAME(made.classFile));
        if (!uses.error.empty())
            return tell(title, "The new class cannot be added to the Uses clause of '" + mainFile + "'.\n" +
                                   uses.error),
                   false;
        if (uses.changed) changes.push_back({mainFile, uses.text});
    }
    return write(title, changes);
}

// A class beside the main class is found there; in any other folder only by the inherited path.
void askForFolder(const std::string& title, const std::string& classFile, const std::string& mainFile) {
    if (!ISCLASSFILE(mainFile) || ISSAMEFILE(FILEGETDIR(classFile), FILEGETDIR(mainFile))) return;
    STAMP();
    UPDATEINHERITPATHS(title, classFile);
}

// ---- a program ----

std::string freeProgram() {
    const std::string start = FILEADDSEPARATOR(GETCURDIR()) + ProgramStem;
    std::string file = FILETEMPNAME(FILEADDSEPARATOR(GETCURDIR()), ProgramStem, ClassExtension);
    int number = std::atoi(file.c_str() + start.size());
    const auto taken = [](const std::string& path) {  // in any case, as the make tool finds files
        return !NAMEINFOLDER(FILEGETDIR(path), FILEGETFNAME(path)).empty();
    };
    while (taken(file) || taken(FILECHANGEEXT(file, ResourceExtension)))
        file = start + STR(++number) + std::string(ClassExtension);
    return file;
}

bool holdsOneDialog(const std::string& resourceFile) {
    return STRLINES(ResourceInfo(resourceFile, "*", "*").text) == 1 &&
           STRLINES(ResourceInfo(resourceFile, "DIALOG", "*").text) == 1;
}

bool holds(const std::string& file, const std::string& wanted) {
    std::string text;
    return isThere(file) && LOADFILE(file, text) && text == wanted;
}

// The program that was made last, if it is as it was made; else nothing.
NewClass untouchedProgram(const std::string& title) {
    const std::string last = FILETEMPNAMES(FILEADDSEPARATOR(GETCURDIR()), ProgramStem, ClassExtension).last;
    const std::string resources = FILECHANGEEXT(last, ResourceExtension);
    if (!isThere(last) || !isThere(resources) || !holdsOneDialog(resources)) return {};
    if (SYMGETCLASSNAME(1, last, ProductWord).empty()) return {};
    STAMP();
    NewClass made = NEWCLASSGETTEXT(title, last);
    const bool untouched =
        !made.empty() && holds(last, made.classText) && holds(resources, made.resourceText);
    return untouched ? made : NewClass();
}

// What is to be opened; nothing if the user has left, or it could not be written.
NewClass makeProgram(const Object& label, const std::string& title, bool ask) {
    NewClass made = ask ? NewClass() : untouchedProgram(title);
    STAMP();
    if (!made.empty()) return made;
    const std::string file = freeProgram();
    STAMP();
    made = ask ? NEWCLASSDIALOG(label, title, file, false, WithWindow) : NEWCLASSGETTEXT(title, file);
    STAMP();
    if (made.empty()) return made;
    std::vector<os::FileChange> changes{{made.classFile, made.classText, Kind::Create}};
    if (!made.resourceFile.empty()) changes.push_back({made.resourceFile, made.resourceText, Kind::Create});
    if (write(title, changes)) return made;
    RESTORECHANGES(made);
    return {};
}

}  // namespace

void PROJECTNEWNONMAIN(const Object& label, const std::string& title) {
    FRAME(PROJECTNEWNONMAIN);
    STAMP();
    const std::string mainFile = PROJECTGETMAINFILE();
    if (resourcesAreOpen(title, mainFile)) return;
    STAMP();
    const std::string folder = mainFile.empty() ? FILEADDSEPARATOR(GETCURDIR()) : FILEGETDIR(mainFile);
    const std::string path = FILETEMPNAME(folder, ClassStem, ClassExtension);
    STAMP();
    const NewClass made = NEWCLASSDIALOG(label, title, path, true, WithWindow);
    STAMP();
    if (made.empty() || !FILECHK(made.classFile)) return RESTORECHANGES(made);
    const bool written = writeClass(title, made, mainFile);
    STAMP();
    if (!written) return RESTORECHANGES(made);
    EDITWNDOPEN(SDIEdit, made.classFile, false, 0);
    STAMP();
    askForFolder(title, made.classFile, mainFile);
    STAMP();
    if (IsLoaded(ProjectEditorDlg)) PROJECTREFRESH(ProjectEditorDlg);
    STAMP();
}

void PROJECTNEWMAIN(const Object& programWindow, const Object& label, const std::string& title, bool ask) {
    FRAME(PROJECTNEWMAIN);
    STAMP();
    if (!CLOSEALL()) return;
    STAMP();
    const NewClass made = makeProgram(label, title, ask);
    STAMP();
    if (made.empty()) return;
    EDITWNDOPEN(SDIEdit, made.classFile, false, 0);
    STAMP();
    if (!made.resourceFile.empty()) OPENDIALOG(made.resourceFile, "Main");
    STAMP();
    SETCURDIR(FILEGETDIR(made.classFile));
    STAMP();
    PROJECTOPEN(programWindow, "Program Window", made.classFile, label);
    STAMP();
    SAVEMRUITEM(GETIDEINIFILE(), "MRU", 5, made.classFile);
    STAMP();
}

}  // namespace tarn
