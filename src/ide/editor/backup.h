// SPDX-License-Identifier: GPL-3.0-or-later
//
// Automatic backups: while a text is changed, timed copies of what stands in the window are written beside its file,
// `FILE (YYYY-MM-DD hh-mm-ss).bak`. They are the restore points of the Edit menu (restore.h). The name holds all that
// is known of a backup; there is no index.
//
// A backup is there whole or not at all, never goes through a link and never over another file. One that cannot be
// written is told in a box; the text stays as it is.
//
// Cost of the list: a look at the folder's time; the folder is read only when something in it may have changed.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>

namespace tarn {

// ---- settings ----
int EDITWNDGETINTERVAL();    // minutes; 0 or less: no backups
int EDITWNDGETMAXBACKUPS();  // kept of a file; 0: all
bool EDITWNDGETPLAYSOUND();

// ---- names ----

// What stands between the first "(" and the first ")" of the whole path; empty if the "(" comes first or not at all, or
// the ")" does not follow it. So a folder with parentheses in its name hides the date of what is in it.
std::string FILEGETEMBEDDEDDATE(std::string_view name);

// "Monday", for a text that begins with a date; empty for another.
std::string DAYNAMEOF(std::string_view date);

struct BackupName {
    std::string backupName;  // for a backup made now; nothing stands under it. Empty unless the code is 0
    std::string oldestName;  // what has to go for it; empty: nothing
    int code = 0;            // why there can be no backups; see EDITWNDBACKUPERRMSG
};
BackupName EDITWNDGETBACKUPNAME(const std::string& file);
// The name of a backup made now, whether there can be one or not. A second that has its backup is left to it: then it is
// the next one that is free, within a hundred.
std::string FREEBACKUPNAME(const std::string& file);
// 1 the name is not valid, 2 it is too long, 3 file or folder cannot be written, 4 it is a backup; empty for 0.
std::string EDITWNDBACKUPERRMSG(int code);
// Full paths of the files whose names begin with that of `file` and end with ".bak", one a line, the latest name first.
std::string EDITWNDGETBACKUPLIST(const std::string& file);

// ---- writing ----

// Writes the window's text beside its file, if it was changed since the last backup; the oldest one may go for it.
void EDITWNDAUTOBACKUP(const Object& window);
// A new file of these bytes, with the permissions of `like`. False, with 652 to 657 in the error cell, if it is not there.
bool WRITEBACKUP(const std::string& backup, const std::string& bytes, const std::string& like);
// The second of two sounds, which comes a while behind the first.
void PLAYSECONDSOUND();

// The caption of `label` is "1" while the timer runs and "0" while it does not.
void EDITWNDSETTIMER(const Object& window, const Object& label, int minutes);
void EDITWNDKILLTIMER(const Object& window, const Object& label);

// Warns that there will be no backups of this file, and tells what helps.
void EDITWNDCHECKBACKUPOK(const std::string& file);
// The same for code `code`, whether backups are on or not.
void TELLNOBACKUPS(const std::string& file, int code);

// Offers to delete all backups below the inherited paths, the examples and the folder of the Code window's file.
void EDITWNDDELETEBACKUPS(const std::string& title);

// A backup that cannot be written, or deleted, is told in a box, and the program goes on.
void BACKUP_ONERROR(std::int32_t code);

}  // namespace tarn
