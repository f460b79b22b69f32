// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/namedfiles.h"

#include "ide/designer/files/scratch.h"
#include "ide/program/members/programnames.h"
#include "ide/program/projwindow.h"
#include "kernel/windows/resources.h"
#include "library/designer/proputil.h"
#include "library/dialogs/dlgutil.h"
#include "library/system/resourceline.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/text/ascii.h"

#include <set>

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {
namespace {

constexpr std::string_view kinds[] = {"BITMAP", "ICON", "INCFILE", "DBFILE"};

// A path that means another file for a copy of the resource file.
bool isRelative(const std::string& path) {
    return !path.empty() && !ISROOTED(path) && path.front() != '<' && path.front() != '{';
}

// As they are written, in the order of the file, each once.
std::vector<std::string> relativePaths(const std::string& resourceFile) {
    std::vector<std::string> paths;
    std::set<std::string> known;
    for (const std::string_view kind : kinds) {
        const std::string lines = ResourceInfo(resourceFile, std::string(kind), "*").text;
        for (std::string_view rest = lines; !rest.empty();) {
            const std::string path =
                os::native(RESOURCELINEFILENAME(std::string(ascii::withoutLineEnd(ascii::takeLine(rest)))));
            if (isRelative(path) && known.insert(path).second) paths.push_back(path);
        }
    }
    return paths;
}

bool isPictureOf(const std::string& resourceFile, const std::string& picture) {
    if (!ResourceInfo(resourceFile, "BITMAP", picture).text.empty()) return true;
    if (!ProgramNames::beside(resourceFile).holderOf(picture).empty()) return true;
    const std::string path = os::native(picture);
    return FileSize(ISROOTED(path) ? path : FILEGETDIR(resourceFile) + path) >= 0;
}

// The pictures of all objects, controls and menu items alike.
std::set<std::string> picturesIn(const ObjectArray& objects) {
    std::set<std::string> pictures;
    for (const std::string& object : objects)
        if (const std::string picture = object.empty() ? "" : GETPROPVALUE(object, "PICTURE");
            !picture.empty())
            pictures.insert(picture);
    return pictures;
}

}  // namespace

std::vector<NamedFile> ASKNAMEDFILES(const std::string& title, const std::string& resourceFile,
                                     const std::string& folder) {
    FRAME(ASKNAMEDFILES);
    std::vector<NamedFile> files;
    std::string names;
    STAMP();
    for (const std::string& path : relativePaths(resourceFile)) {
        const NamedFile file{FILEGETDIR(resourceFile) + path, folder + path};
        if (FileSize(file.source) < 0 || FileSize(file.copy) >= 0) continue;
        files.push_back(file);
        names += path + "\n";
    }
    STAMP();
    if (files.empty()) return files;
    const std::string answer =
        MSGBOX(title,
               "The resource file (" + FILEGETFNAME(resourceFile) +
                   ") names the following file(s), which are not in the main program folder:\n\n" +
                   INDENTLINES(LIMITLINES(names)) +
                   "\nDo you want to copy them too?\nIf not, you should copy them later, or the program "
                   "cannot be built or does not find them.\n",
               "Yes\nNo", BoxIcon::Question);
    if (answer != "Yes") files.clear();
    return files;
}

std::string MISSINGPICTURES(const std::string& resourceFile, const std::string& dialog) {
    FRAME(MISSINGPICTURES);
    ObjectArray objects, menu;
    STAMP();
    if (!ResourceRead(resourceFile, dialog, objects).empty()) return {};
    std::set<std::string> pictures = picturesIn(objects);
    const std::string menuName = GETPROPVALUE(objects[0], "MENU");
    if (!menuName.empty() && ResourceRead(resourceFile, menuName, menu).empty())
        pictures.merge(picturesIn(menu));
    STAMP();
    std::string missing;
    for (const std::string& picture : pictures)
        if (!isPictureOf(resourceFile, picture)) missing += picture + "\n";
    return missing;
}

}  // namespace tarn
