// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/options/backuptimer.h"

#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/settings/profstr.h"
#if __has_include("ide/editor/backup.h")
#include "ide/editor/backup.h"
#define HAS_BACKUPS 1
#else
#define HAS_BACKUPS 0
#endif

MODULE("toolmenu")

namespace tarn {

#if HAS_BACKUPS

bool HASBACKUPS() {
    return true;
}

int BACKUPINTERVAL() {
    FRAME(BACKUPINTERVAL);
    STAMP();
    return EDITWNDGETINTERVAL();
}

void RESTARTBACKUPTIMER(const Object& label, int minutes) {
    FRAME(RESTARTBACKUPTIMER);
    STAMP();
    EDITWNDKILLTIMER(SDIEdit, label);
    STAMP();
    EDITWNDSETTIMER(SDIEdit, label, minutes);
    STAMP();
}

void DELETEBACKUPS(const std::string& title) {
    FRAME(DELETEBACKUPS);
    STAMP();
    EDITWNDDELETEBACKUPS(title);
    STAMP();
}

#else

bool HASBACKUPS() {
    return false;
}

int BACKUPINTERVAL() {
    FRAME(BACKUPINTERVAL);
    STAMP();
    return PROFILESTRGETINT(GETIDEINIFILE(), "EditorOptionsDlg", "AutoBackupInterval");
}

void RESTARTBACKUPTIMER(const Object&, int) {}
void DELETEBACKUPS(const std::string&) {}

#endif

}  // namespace tarn
