// SPDX-License-Identifier: GPL-3.0-or-later
//
// Program-Copy EXE File: which files the packager gets.
#include "ide/build/build.h"
#include "ide/build/compiler.h"
#include "ide/build/toolrun.h"
#include "ide/program/projedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/ship/packager.h"
#include "library/ship/ownlibraries.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

MODULE("progmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

constexpr const char* PackagerText =
    "This command copies the EXE file and its supporting files (bitmaps, icons etc) to any destination. "
    "These files may "
    "then be installed to a single folder on another computer and run from there.";

// What every program needs beside it.
constexpr std::string_view LibraryFiles[] = {"libtarnwick.so", "libtarnwick-qt.so", "tarnwick-fatal"};

bool bringUpToDate(const std::string& title, const std::string& file) {
    Sound();
    const std::string answer = MsgBox(
        title,
        "File '" + file +
            "' is not up to date.\nIt should be brought up to date before copying the EXE file.\nDo you want "
            "to bring the files up to date now?\n",
        "Yes\nNo\nCancel", BoxIcon::Question);
    if (answer != "Yes") return answer == "No";
    bool ok = false;
    std::string built = file;
    RUN_BUILD("Run-Quickbuild", "-fm", built, ok);
    return ok;
}

bool isMain(const std::string& title, const std::string& file) {
    if (ISMAINCLASS(file)) return true;
    MSGBOX(title,
           "File '" + file +
               "' is not a main class.\nIt is only possible to copy the EXE file after compiling a main "
               "class.");
    return false;
}

bool holdsName(const std::string& files, std::string_view name) {
    for (int i = 1; i <= STRLINES(files); ++i)
        if (FILEGETFNAME(STRLINE(files, i)) == name) return true;
    return false;
}

}  // namespace

std::string GETLIBRARYFILES(const std::string& files) {
    FRAME(GETLIBRARYFILES);
    std::string missing;
    for (const std::string_view name : LibraryFiles) {
        if (holdsName(files, name)) continue;
        STAMP();
        for (const std::string& folder : {GETCOMPILERDIR(), GETAPPDIR()}) {
            const std::string file = folder + std::string(name);
            if (holdsName(missing, name) || FileSize(file) < 1) continue;
            missing += file + "\n";
        }
    }
    return missing;
}

void COPYEXE(const std::string& title, const std::string& mainClass) {
    FRAME(COPYEXE);
    STAMP();
    const DependencyList targets = LOADDEPLIST(mainClass, "/ft", true);
    STAMP();
    const DependencyList stale =
        targets.error.empty() ? LOADDEPLIST(mainClass, "/fq", true) : DependencyList();
    STAMP();
    const std::string error = targets.error.empty() ? stale.error : targets.error;
    if (!error.empty()) return MSGBOX(title, "It is not possible to copy the EXE file.\n" + error);
    if (!isMain(title, mainClass)) return;
    STAMP();
    if (!stale.files.empty() && !bringUpToDate(title, mainClass)) return;
    STAMP();
    PACKAGERDIALOG(Main, mainClass, WITHSMALLLIBRARIES(targets.files + GETLIBRARYFILES(targets.files)),
                   PackagerText);
    STAMP();
}

}  // namespace tarn
