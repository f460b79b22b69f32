// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/examples.h"

#include "ide/menus/filemenu.h"
#include "ide/menus/runmenu.h"
#include "ide/program/projedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/dialogs/commdlgs_examples.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"

MODULE("filemenu")

namespace tarn {
namespace {

bool hasExamples(const std::string& title, const std::string& folder) {
    if (!folder.empty() && DiskSpace(folder) >= 0 && os::infoOf(folder).folder) return true;
    ClearError();
    MSGBOX(title,
           "Can't open examples, the path to the example files cannot be found.\nThe following path is "
           "invalid:\n\n\t'" +
               folder + "'\n\nUse Tools-Options-Paths to set up the paths correctly.");
    return false;
}

std::string lastPart(const std::string& folder) {
    return FILEGETFNAME(STRLEFT(folder, static_cast<int>(folder.size()) - 1));
}

// Copies the files of the folder, whose sub-folders belong to nobody's example.
bool copyFolder(const std::string& from, const std::string& to) {
    std::vector<std::string> names;
    if (os::makeFolders(to) != os::FileError::None || os::files().list(from, names) != os::FileError::None)
        return false;
    for (const std::string& name : names) {
        std::string bytes;
        if (os::infoOf(from + name).folder) continue;
        if (os::readFile(from + name, bytes) != os::FileError::None ||
            !os::saveFile(to + name, bytes, os::Durability::Unsynced).ok())
            return false;
    }
    return true;
}

// The file to work on: in a copy of its folder, if the user wants one; empty if the user wants nothing.
std::string writable(const std::string& title, const std::string& file) {
    const std::string folder = FILEGETDIR(file);
    if (os::infoOf(folder).writable || os::environment("HOME").empty()) return file;
    const std::string own = FILEADDSEPARATOR(os::environment("HOME")) + STRLOWER(ProductWord) + "-examples/" +
                            lastPart(folder) + "/";
    const std::string there = own + FILEGETFNAME(file);
    if (FileSize(there) > 0) return there;
    const std::string answer =
        MsgBox(title,
               "The folder of this example cannot be written, so it can be read but not built there:\n\n\t'" +
                   folder + "'\n\nDo you want to work on a copy in the following folder?\n\n\t'" + own + "'",
               "&Copy\n&Read Only\nCancel", BoxIcon::Question);
    if (answer == "&Read Only") return file;
    if (answer != "&Copy") return {};
    if (copyFolder(folder, own)) return there;
    MSGBOX(title, "The example could not be copied to the following folder:\n\n\t'" + own +
                      "'\n\nMake room for it, or open it as it is.");
    return {};
}

// The file to work on, its folder the current one unless a program is open; empty if the user wants nothing.
std::string enter(const std::string& title, const std::string& example) {
    const bool open = !PROJECTGETMAINFILE().empty();
    if (FileSize(example) < 0) {
        MSGBOX(title, "File '" + example + "' was not found.");
        return {};
    }
    STAMP();
    std::string file = writable(title, example);
    STAMP();
    if (!file.empty() && !open) SETCURDIR(FILEGETDIR(file));
    return file;
}

}  // namespace

void OPENEXAMPLE(const std::string& title, const std::string& file) {
    FRAME(OPENEXAMPLE);
    STAMP();
    const std::string mine = enter(title, file);
    STAMP();
    if (!mine.empty()) DO_OPEN(mine, MAINCONTROL("programlabel"));
}

void BROWSEEXAMPLES(const std::string& title) {
    FRAME(BROWSEEXAMPLES);
    const std::string folder = GETEXAMPLEDIR();
    STAMP();
    if (!hasExamples(title, folder)) return;
    STAMP();
    const ExampleChoice choice = OPENEXAMPLEDIALOG({title,
                                                    folder,
                                                    "&Open\n&Run\n&Cancel\n&Help\n",
                                                    GETHELPFILE(),
                                                    "File_Open Examples",
                                                    {GETRESOURCEDIR(), GETCOMPILERDIR()}});
    STAMP();
    const bool opens = choice.button == "&Open" || choice.button == "Open";
    const bool runs = choice.button == "&Run" || choice.button == "Run";
    if ((!opens && !runs) || choice.file.empty()) return;
    const std::string file = enter(title, choice.file);
    STAMP();
    if (file.empty()) return;
    if (opens) return DO_OPEN(file, MAINCONTROL("programlabel"));
    DO_START_EXAMPLE(file);
}

}  // namespace tarn
