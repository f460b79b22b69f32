// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/build.h"

#include "ide/build/compiler.h"
#include "ide/build/textview.h"
#include "ide/build/toolrun.h"
#include "ide/designer/dlgedit.h"
#include "ide/editor/textedit.h"
#include "ide/program/projedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/toolresults.h"

MODULE("runmenu", tarn::RESULTS_ONERROR)

namespace tarn {
namespace {

bool isOpenFile(const std::string& file) {
    return STREQUAL(file, PROJECTGETMAINFILE()) || STREQUAL(file, EDITWNDGETFILENAME(SDIEdit));
}

bool hasUnsavedClass() {
    return IsLoaded(SDIEdit) && GetModify(SDIEdit) && ISCLASSFILE(EDITWNDGETFILENAME(SDIEdit));
}

// ---- what may be built ----

bool mayBuildUntitled(const std::string& title, std::string& file) {
    SAVEALL();
    file = EDITWNDGETFILENAME(SDIEdit);
    if (ISCLASSFILE(file)) return FileSize(file) > 0;
    SHOWNOCLASSERROR(title, file);
    return false;
}

bool isThere(const std::string& title, const std::string& file, std::int64_t least) {
    if (FileSize(file) >= least) return true;
    MSGBOX(title, "It is not possible to use the '" + title + "' command.\nThe following file:\n\n\t'" +
                      file + "'\n\nis empty or does not exist.");
    return false;
}

// The file may have gone from the disk since it was opened.
bool mayBuildOpenFile(const std::string& title, const std::string& file) {
    SAVEALL();
    const bool unsavedClass = hasUnsavedClass();
    if (!unsavedClass && !DIALOGGETMODIFY()) return isThere(title, file, 0);
    MSGBOX(title, std::string("You must save this ") + (unsavedClass ? "class" : "dialog") +
                      " before using '" + title + "'.");
    return false;
}

bool mayBuildOtherFile(const std::string& title, const std::string& file) {
    return isThere(title, file, 1);
}

bool mayBuild(const std::string& title, std::string& file) {
    if (file == Untitled) return mayBuildUntitled(title, file);
    if (!ISCLASSFILE(file)) {
        SHOWNOCLASSERROR(title, file);
        return false;
    }
    return isOpenFile(file) ? mayBuildOpenFile(title, file) : mayBuildOtherFile(title, file);
}

bool isMain(const std::string& title, const std::string& file) {
    if (ISMAINCLASS(file)) return true;
    MSGBOX(title,
           "File '" + file + "' is not a main class.\n'" + title +
               "' only works with main classes.\n\nInstead, compile this class using the 'Run-Compile' "
               "command.");
    return false;
}

bool hasMakeTool(const std::string& title) {
    const std::string tool = GETORDOEXE();
    if (!FINDTOOL(tool).empty()) return true;
    MSGBOX(title, "Cannot find the ORDO program. It should be in the following file:\n\t'" + tool +
                      "'\n\nUse Tools-Options-Paths to make sure the Compiler File Path folder\ncontains the "
                      "ORDO.EXE program file.");
    return false;
}

// Runs the make tool; false if it could not be started. What it could not say itself, because it was stopped
// or died, is written where its messages would stand, so that the error window shows it.
bool make(const std::string& options, const std::string& file) {
    const std::string errors = GETCOMPILERMESSAGES(), output = GETMAKEMESSAGES();
    const std::string line = options + " " + QUOTEARGUMENT(file) + " -i" +
                             QUOTEARGUMENT(GETINHERITEDPATHS()) + " -o" + QUOTEARGUMENT(output);
    const ToolRun run = RUNTOOL(FINDTOOL(GETORDOEXE()), line, 0 + 1, errors, output);
    if (!run.started) return false;
    const bool clean = ISCLEAN(run.messages);
    if (!run.fault.empty())
        SAVEFILE(errors, run.fault + (clean ? "" : run.messages));
    else if (!clean && FileSize(errors) < 1)
        SAVEFILE(errors, run.messages);
    return true;
}

}  // namespace

// ---- build ----

void RUN_BUILD(const std::string& title, const std::string& makeOptions, std::string& file, bool& ok) {
    FRAME(RUN_BUILD);
    ok = false;
    STAMP();
    if (!hasMakeTool(title)) return;
    STAMP();
    if (!mayBuild(title, file) || file.empty()) return;
    STAMP();
    if (!isMain(title, file)) return;
    STAMP();
    const bool ran = make(makeOptions, file);
    STAMP();
    if (!ran) return;
    ok = UPDATEERRORWINDOW(GETCOMPILERDIR());
}

bool UPDATEERRORWINDOW(const std::string& compilerDir) {
    FRAME(UPDATEERRORWINDOW);
    const std::string file = os::resultFile(compilerDir, CompilerMessages);
    std::string text;
    STAMP();
    if (FileSize(file) > 0) LOADFILE(file, text);
    STAMP();
    if (ISCLEAN(text)) {
        if (IsLoaded(ViewDlg)) SetText(ViewDlg, "");
        return true;
    }
    VIEWDIALOG(ErrorsTitle, file, GetFontName(SDIEdit), GetFontSize(SDIEdit));
    return false;
}

void SHOWNOCLASSERROR(const std::string& title, const std::string& file) {
    FRAME(SHOWNOCLASSERROR);
    const std::string first = "It is not possible to use the '" + title + "' command.\n";
    STAMP();
    MSGBOX(title, first + (file.empty() ? "There is no file to build or run."
                                        : "'" + file +
                                              "' is not a class, it does not have the correct "
                                              "extension (*.cls)."));
}

void RUN_COMPILE(const Object& window) {
    FRAME(RUN_COMPILE);
    const std::string title = "Run-Compile";
    STAMP();
    if (EDITWNDGETFILENAME(window).empty())
        return MSGBOX(title, "There is no file to compile.\nUse File-Open to open a file first.");
    if (!SYMISCLASS(0, GetText(window), ProductWord, "CLASS"))
        return MSGBOX(title, "This file cannot be compiled because it is not a class.\nOpen a class then try "
                             "again.");
    STAMP();
    if (GetModify(window)) EDITWNDSAVE(window, false);
    STAMP();
    if (GetModify(window)) return MSGBOX(title, "You have to save this class before compiling it.");
    const std::string file = EDITWNDGETFILENAME(window);
    if (!ISCLASSFILE(file))
        return MSGBOX(title, "The following class:\n\n\t'" + file +
                                 "'\n\ncannot be compiled because it does not have the correct extension "
                                 "(*.cls)\nSave the class with the extension '.cls' then recompile it.");
    STAMP();
    COMPILESINGLEFILE(file, 1);
}

// ---- what is current ----

bool ISUPTODATE(const std::string& file) {
    FRAME(ISUPTODATE);
    STAMP();
    if (file.empty() || file == Untitled || !ISCLASSFILE(file)) return false;
    if (isOpenFile(file) && (hasUnsavedClass() || DIALOGGETMODIFY())) return false;
    if (!isOpenFile(file) && FileSize(file) < 1) return false;
    STAMP();
    const DependencyList stale = LOADDEPLIST(file, "/fq", true);
    return stale.files.empty() && stale.error.empty();
}

}  // namespace tarn
