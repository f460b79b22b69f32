// SPDX-License-Identifier: GPL-3.0-or-later
//
// The buttons that copy the files as they are.
#include "ide/build/toolrun.h"
#include "ide/shell/idecore.h"
#include "ide/ship/packager.h"
#include "ide/ship/packager_internal.h"
#include "library/settings/profstr.h"
#include "library/ship/copyutil.h"
#include "library/system/system.h"

MODULE("progmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

constexpr std::string_view Section = "PackagerDlg";

void setIfAbove0(std::string_view key, std::int64_t& value) {
    const int number = PROFILESTRGETINT(GETIDEINIFILE(), Section, key);
    if (number > 0) value = number;
}

// The folder is empty if the user has named none.
FloppyDrive floppyDrive(const Object& window) {
    FloppyDrive drive;
    setIfAbove0("FloppyCapacity", drive.capacity);
    setIfAbove0("FloppyUnit", drive.allocationUnit);
    drive.folder = PROFILESTRGET(GETIDEINIFILE(), Section, "FloppyFolder");
    if (!drive.folder.empty()) return drive;
    drive.folder = OpenFolderDialog(GetCaption(window), "");
    if (!drive.folder.empty()) PROFILESTRPUT(GETIDEINIFILE(), Section, "FloppyFolder", drive.folder);
    return drive;
}

}  // namespace

void packager::copyToFloppy(const Object& window) {
    FRAME(PACKAGER_FLOPPY);
    STAMP();
    const FloppyDrive drive = floppyDrive(window);
    STAMP();
    if (!drive.folder.empty()) static_cast<void>(COPYTOFLOPPY(window, filesOf(window), drive));
    STAMP();
}

void packager::copyToFolder(const Object& window) {
    FRAME(PACKAGER_FOLDER);
    STAMP();
    const std::string folder = OpenFolderDialog(GetCaption(window), FILEGETDIR(mainClassOf(window)));
    STAMP();
    if (!folder.empty()) static_cast<void>(COPYTOFOLDER(window, filesOf(window), folder));
    STAMP();
}

void packager::copyToZip(const Object& window) {
    FRAME(PACKAGER_ZIP);
    STAMP();
    const std::string mainClass = mainClassOf(window);
    const std::string proposed = mainClass.empty() ? std::string() : FILECHANGEEXT(mainClass, EXT_ZIP);
    STAMP();
    static_cast<void>(COPYTOZIP(window, filesOf(window), proposed));
    STAMP();
}

}  // namespace tarn
