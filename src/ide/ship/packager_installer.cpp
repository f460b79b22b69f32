// SPDX-License-Identifier: GPL-3.0-or-later
//
// The button that makes an installer: the properties of the program first, which the installer tells, then a build if they
// have changed.
#include "ide/build/build.h"
#include "ide/build/compiler.h"
#include "ide/build/toolrun.h"
#include "ide/editor/sourcefile.h"
#include "ide/program/progprops.h"
#include "ide/shell/windows.h"
#include "ide/ship/packager.h"
#include "ide/ship/packager_internal.h"
#include "library/dialogs/versioninfo.h"
#include "library/settings/profstr.h"
#include "library/ship/copyutil.h"
#include "library/ship/ownlibraries.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("progmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

// What a build has added is handed over too: the first properties of a program make it a file of resources.
void refreshFiles(const Object& window, const std::string& mainClass) {
    const DependencyList targets = LOADDEPLIST(mainClass, "/ft", true);
    if (targets.error.empty())
        packager::setFiles(window, WITHSMALLLIBRARIES(targets.files + GETLIBRARYFILES(targets.files)));
}

// False if the build failed.
bool buildWithProperties(const Object& window, const std::string& mainClass) {
    MSGBOX(GetCaption(window),
           "The Program Properties have changed.\nAbout to do a Quickbuild to bring the program up to date.");
    std::string file = mainClass;
    bool ok = false;
    RUN_BUILD("Run-Quickbuild", "-fm", file, ok);
    if (ok) refreshFiles(window, mainClass);
    return ok;
}

void makeInstaller(const Object& window, const std::string& mainClass) {
    constexpr std::string_view extensions[] = {EXT_ICO};
    const VersionFields fields = packager::versionOf(mainClass);
    const std::string text = STRWORD(fields.version, 1) + "." + STRWORD(fields.version, 2);
    STAMP();
    static_cast<void>(COPYTOINSTALLER(window, fields.company, fields.copyright, fields.product,
                                      fields.description, text, fields.version,
                                      packager::iconOf(mainClass, extensions), packager::filesOf(window),
                                      FILECHANGEEXT(mainClass, EXT_EXE)));
}

}  // namespace

VersionFields packager::versionOf(const std::string& mainClass) {
    const LoadedVersion loaded = LOADVERSIONINFO(mainClass, FIRSTVERSIONINFO(mainClass));
    return loaded.found ? loaded.fields : VERSIONINFOTOFIELDS(GETDEFAULTVERSIONINFO(FILEBASENAME(mainClass)));
}

std::string packager::iconOf(const std::string& mainClass, std::span<const std::string_view> extensions) {
    const std::string resources = TWINFILE(mainClass, ResourceExtension);
    if (FileSize(resources) < 1) return {};
    const std::string icons = ResourceInfo(resources, "ICON", "*").text + "\n";
    const std::string name = STRTOKEN(STRLINE(icons, 1), 1);
    if (name.empty()) return {};
    const std::string file = RESOURCEGETFILENAME(resources, "ICON", name);
    const std::string path = file.empty() || ISROOTED(file) ? file : FILEGETDIR(mainClass) + file;
    const bool fits = std::any_of(extensions.begin(), extensions.end(), [&](std::string_view extension) {
        return STREQUAL(FILEGETEXT(path), extension);
    });
    return fits && FileSize(path) > 0 ? path : std::string();
}

void packager::createInstaller(const Object& window) {
    FRAME(PACKAGER_INSTALLER);
    const std::string mainClass = mainClassOf(window);
    STAMP();
    const PropertiesResult result = PROGRAMPROPERTIESDIALOG("Program Properties (Needed for Installer)",
                                                            mainClass, FIRSTVERSIONINFO(mainClass));
    STAMP();
    if (result == PropertiesResult::Cancel) return;
    if (result == PropertiesResult::Save && !buildWithProperties(window, mainClass)) return;
    STAMP();
    makeInstaller(window, mainClass);
    STAMP();
}

}  // namespace tarn
