// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/addfile.h"

#include "ide/designer/files/scratch.h"
#include "ide/editor/ownwrites.h"
#include "ide/program/members/programfolders.h"
#include "ide/program/members/programnames.h"
#include "ide/program/projedit.h"
#include "ide/program/projlist.h"
#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "kernel/windows/resources.h"
#include "library/settings/placeholders.h"
#include "library/settings/profstr.h"
#include "library/system/product.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>
#include <array>

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {
namespace {

constexpr const char* Filter =
    "All files(*.*)|*.*|Bitmap files(*.bmp)|*.bmp|Icon files(*.ico)|*.ico|EXE files(*.exe)|*.exe|"
    "Text files(*.txt)|*.txt|XML files(*.xml)|*.xml|Wave files(*.wav)|*.wav|";
constexpr int MostTries = 10;  // numbers behind a name

struct FileType {
    std::string_view extension, kind;
};
constexpr std::array<FileType, 6> types = {{{".bmp", "BITMAP"},
                                            {".ico", "BITMAP"},
                                            {".exe", "INCFILE"},
                                            {".txt", "INCFILE"},
                                            {".xml", "INCFILE"},
                                            {".wav", "INCFILE"}}};

const FileType* typeOf(const std::string& file) {
    const std::string extension = FILEGETEXT(file);
    const auto found = std::find_if(types.begin(), types.end(), [&](const FileType& type) {
        return STREQUAL(type.extension, extension);
    });
    return found == types.end() ? nullptr : &*found;
}

std::string allExtensions() {
    std::string all;
    for (const FileType& type : types) ADDWORD(type.extension, " ", all);
    return STRTRIM(all);
}

PlaceholderFolders folders() {
    return {GETRESOURCEDIR(), GETCOMPILERDIR()};
}

bool isOwnProgram(const std::string& file) {
    const std::string mainFile = PROJECTGETMAINFILE();
    return !mainFile.empty() && ISSAMEFILE(file, FILECHANGEEXT(mainFile, ".exe"));
}

// What no line of a resource file can hold.
bool hasLineEnd(const std::string& path) {
    return path.find_first_of("\r\n") != std::string::npos;
}

// Why the file cannot be added; empty if it can.
std::string obstacleOf(const std::string& file, const std::string& target) {
    if (typeOf(file) == nullptr)
        return "cannot be added. Only files of type " + allExtensions() + " can be added to a resource file.";
    if (isOwnProgram(file))
        return "does not need adding. It is the main program file and is always included.";
    if (target.empty())
        return "cannot be added. You have not specified where the file is added to.\n"
               "Choose a resource file in the program window and try again.";
    if (ISFILENAMEINRESOURCEFILE(target, file))
        return "is already in the resource file and does not need adding again.";
    if (FileSize(file) < 0) return "cannot be added. The file does not exist or cannot be found.";
    return hasLineEnd(file) ? "cannot be added. Its path holds a line end." : "";
}

// A name that no resource of the file has, made of the file's name; empty if there are too many like it.
std::string freeName(const std::string& file, const std::string& names) {
    const auto isFree = [&, all = "\n" + STRUPPER(names)](const std::string& name) {
        return all.find("\n" + STRUPPER(name) + "\n") == std::string::npos;
    };
    constexpr int Most = static_cast<int>(MaxIdentifier);
    const std::string stem = STRTOIDENTIFIER(FILEGETFNAME(file), Most, "_");
    std::string name = stem;
    for (int n = 1; n <= MostTries && !isFree(name); ++n) {
        const std::string number = STR(n);
        name = STRLEFT(stem, Most - static_cast<int>(number.size())) + number;
    }
    return isFree(name) ? name : "";
}

std::string statementOf(const std::string& name, const std::string& file) {
    const std::string path = FILEUNRESOLVEPATHS(file, folders());
    return name + " " + std::string(typeOf(file)->kind) + " \"" +
           STRREPLACE(STRREPLACE(path, "\\", "\\\\"), "\"", "\\\"") + "\"\n";
}

}  // namespace

bool ISFILENAMEINRESOURCEFILE(const std::string& resourceFile, const std::string& file) {
    FRAME(ISFILENAMEINRESOURCEFILE);
    for (const char* kind : {"BITMAP", "INCFILE", "DBFILE", "ICON"}) {
        STAMP();
        const std::string lines = ResourceInfo(resourceFile, kind, "*").text;
        for (int n = 1; n <= STRLINES(lines); ++n)
            if (ISSAMEFILE(FILEOFRESOURCE(resourceFile, STRLINE(lines, n), folders()), file)) return true;
    }
    return false;
}

void PROJECTADDFILE(const std::string& title) {
    FRAME(PROJECTADDFILE);
    STAMP();
    const std::string file = OpenFileDialog(title, "*:*", Filter);
    if (file.empty()) return;
    STAMP();
    const std::string target = GETCURRENTRESOURCE().file;
    STAMP();
    const std::string names = RESOURCENAMES(target, "*").text + ProgramNames::beside(target).all();
    std::string reason = obstacleOf(file, target);
    STAMP();
    const std::string name = reason.empty() ? freeName(file, names) : "";
    if (reason.empty() && name.empty())
        reason = "cannot be added. The resource file contains too many files with similar names (over " +
                 STR(MostTries) + ") total.\nChoose another file and try again.";
    if (!reason.empty()) return MSGBOX(title, "The following file:\n\n\t" + file + "\n\n" + reason);
    STAMP();
    if (!ASKCODEWINDOW(target)) return;
    STAMP();
    const std::string error = ResourceWriteText(target, statementOf(name, file));
    STAMP();
    if (error.empty()) SHOWOWNWRITE(target);
    STAMP();
    if (!error.empty()) return MSGBOX(title, "Cannot add " + file + " to '" + target + "'\n" + error);
    if (IsLoaded(ProjectEditorDlg)) PROJECTREFRESH(ProjectEditorDlg);
    STAMP();
    MSGBOX(title, "Added " + file + " to '" + target + "'");
}

}  // namespace tarn
