// SPDX-License-Identifier: GPL-3.0-or-later
//
//   settings   how often, how many, with sounds or not
//   names      whether there can be backups of a file, what the next is called, which there are
//   writing    the backup itself, its sounds, its timer
//   warning    that there will be none
#include "ide/editor/backup.h"

#include "ide/editor/textedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "kernel/run/fileerrors.h"
#include "kernel/text/dates.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "library/time/timeutil.h"
#include "os/clock.h"
#include "os/files.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <limits>
#include <vector>

MODULE("textedit", tarn::BACKUP_ONERROR)

namespace tarn {

namespace {

// What was tried last with a backup, for whom a failure is told.
struct Attempt {
    std::string file, backup;
    bool deletes = false;
};
Attempt attempt;
std::string told;  // the failure that the user knows of, until a backup is written again

}  // namespace

void BACKUP_ONERROR(std::int32_t code) {
    if (!ISFILEERROR(code)) return DefaultErrorHandler(code);
    const std::string failure = STR(code) + (attempt.deletes ? " delete " : " write ") + attempt.file;
    if (failure == told) return ContinueAfterError();  // each tick tries again
    told = failure;
    const std::string what = attempt.deletes ? "An old automatic backup could not be deleted:"
                                             : "The automatic backup could not be written:";
    TELLERROR(code, what + "\n\n\t'" + attempt.backup +
                        "'\n\nThe text in its window is as it was, and the next backup is tried in its time. "
                        "Check that there is room beside its file and that you may write there.");
}

// ---- settings ----

namespace {

constexpr std::string_view section = "EditorOptionsDlg";

}  // namespace

int EDITWNDGETINTERVAL() {
    FRAME(EDITWNDGETINTERVAL);
    STAMP();
    return PROFILESTRGETINT(GETIDEINIFILE(), section, "AutoBackupInterval");
}

int EDITWNDGETMAXBACKUPS() {
    FRAME(EDITWNDGETMAXBACKUPS);
    STAMP();
    return PROFILESTRGETINT(GETIDEINIFILE(), section, "AutoBackupMaxfiles");
}

bool EDITWNDGETPLAYSOUND() {
    FRAME(EDITWNDGETPLAYSOUND);
    STAMP();
    return PROFILESTRGET(GETIDEINIFILE(), section, "chkSoundEffects") == "1";
}

// ---- names ----

namespace {

constexpr std::string_view BackupExtension = ".bak";
constexpr std::string_view StampForm = "YYYY-MM-DD hh:mm:ss";
constexpr std::size_t SuffixLength = StampForm.size() + 3 + BackupExtension.size();  // " (", ")"
constexpr std::size_t LongestPath = 255;

enum NoBackups { Possible = 0, BadName = 1, TooLong = 2, ReadOnly = 3, IsBackup = 4 };

// Of the moment that is `later` seconds from now.
std::string suffix(int later) {
    char now[DateSize] = "", then[DateSize] = "";
    DateNow(now, DateSize);
    DateAdd("S", later, now, then, DateSize);
    std::string stamp = std::string(then).substr(0, StampForm.size());
    std::replace(stamp.begin(), stamp.end(), ':', '-');
    return " (" + stamp + ")" + std::string(BackupExtension);
}

bool cannotBeWritten(const std::string& file) {
    const os::FileInfo info = os::infoOf(os::native(file)), folder = os::infoOf(os::native(FILEGETDIR(file)));
    return (info.exists && !info.writable) || (folder.exists && !folder.writable);
}

int codeOf(const std::string& file) {
    if (!FILECHK(file)) return BadName;
    if (file.size() + SuffixLength > LongestPath) return TooLong;
    if (cannotBeWritten(file)) return ReadOnly;
    return STREQUAL(FILEGETEXT(file), BackupExtension) ? IsBackup : Possible;
}

// Whether the name is one that backups of this file have; those of "note 2" are listed with those of "note".
bool isBackupOf(const std::string& file, const std::string& name) {
    const std::string_view rest = std::string_view(name).substr(std::min(file.size(), name.size()));
    return name.size() == file.size() + SuffixLength && name.starts_with(file) && rest.starts_with(" (") &&
           rest.substr(2 + StampForm.size()) == ")" + std::string(BackupExtension) &&
           ISDATESTRVALID(rest.substr(2));
}

// What was found last. It holds as long as the folder has the time that it had then, if that was a while ago: the
// clock of some disks goes in steps of two seconds.
struct KnownList {
    std::string file, list;
    std::int64_t folderTime = 0, looked = 0;
};
constexpr std::int64_t DiskClockStep = 2'500'000'000;  // nanoseconds

KnownList& known() {
    static KnownList last;
    return last;
}

void forgetList() {
    known() = {};
}

std::string readList(const std::string& folder, const std::string& name) {
    std::vector<std::string> names;
    os::files().list(os::native(folder), names);
    std::string list;
    const auto isOne = [&](const std::string& one) {
        return one.starts_with(name) && one.size() >= name.size() + BackupExtension.size() &&
               one.ends_with(BackupExtension) && one.find('\n') == std::string::npos;
    };
    for (auto one = names.rbegin(); one != names.rend(); ++one)
        if (isOne(*one)) list.append(folder).append(*one) += '\n';
    return list;
}

}  // namespace

std::string FILEGETEMBEDDEDDATE(std::string_view name) {
    FRAME(FILEGETEMBEDDEDDATE);
    const std::size_t open = name.find('('), close = name.find(')');
    if (open == std::string_view::npos || open == 0 || close == std::string_view::npos || close < open)
        return {};
    return std::string(name.substr(open + 1, close - open - 1));
}

std::string DAYNAMEOF(std::string_view date) {
    FRAME(DAYNAMEOF);
    if (!ISDATESTRVALID(date)) return {};
    constexpr int days = 7, firstDay = 7;  // the day with the number 0 was a Saturday
    const int number = (TIMEGETDAYNUMBER(date) + firstDay - 1) % days;
    return std::string(DayName((number + days) % days + 1));
}

std::string EDITWNDBACKUPERRMSG(int code) {
    FRAME(EDITWNDBACKUPERRMSG);
    switch (code) {
    case BadName: return "The filename is invalid.";
    case TooLong: return "The filename is too long to include the timestamp.";
    case ReadOnly: return "The file is read-only or is stored on a read-only disk.";
    case IsBackup: return "The file is already a backup file because it has the extension '.bak'.";
    default: return {};
    }
}

std::string EDITWNDGETBACKUPLIST(const std::string& file) {
    FRAME(EDITWNDGETBACKUPLIST);
    if (!FILECHK(file)) return {};
    const std::string folder = FILEGETDIR(file);
    STAMP();
    const os::FileInfo info = os::infoOf(os::native(folder));
    KnownList& last = known();
    if (last.file == file && info.exists && info.modified == last.folderTime &&
        last.looked - info.modified > DiskClockStep)
        return last.list;
    const std::int64_t now = os::clock().now();
    last = {file, readList(folder, FILEGETFNAME(file)), info.modified, now};
    return last.list;
}

std::string FREEBACKUPNAME(const std::string& file) {
    FRAME(FREEBACKUPNAME);
    constexpr int attempts = 100;
    std::string name;
    for (int later = 0; later < attempts; later++) {
        STAMP();
        name = file + suffix(later);
        if (FileSize(name) < 0) break;
    }
    return name;
}

BackupName EDITWNDGETBACKUPNAME(const std::string& file) {
    FRAME(EDITWNDGETBACKUPNAME);
    STAMP();
    BackupName result;
    result.code = codeOf(file);
    if (result.code != Possible) return result;
    STAMP();
    result.backupName = FREEBACKUPNAME(file);
    const std::string list = EDITWNDGETBACKUPLIST(file);
    const int most = EDITWNDGETMAXBACKUPS();
    STAMP();
    const std::string oldest = most > 0 && STRLINES(list) >= most ? STRLINE(list, most) : "";
    if (isBackupOf(file, oldest)) result.oldestName = oldest;
    return result;
}

// ---- writing ----

namespace {

void play(std::string_view name) {
    PlaySound(GETAPPDIR() + std::string(name));
}

// A wait would hold up the user, so the second sound comes by a timer.
void playSecondLater() {
    if (IsLoaded(Main)) SETTIMER(MAINCONTROL("lblautobackuptimer"), 1000);
}

}  // namespace

bool WRITEBACKUP(const std::string& backup, const std::string& bytes, const std::string& like) {
    FRAME(WRITEBACKUP);
    constexpr std::uint32_t usual = 0666, permissions = 0777;
    STAMP();
    const os::FileInfo info = os::infoOf(os::native(like));
    const os::FileError error = os::saveNewFile(backup, bytes, info.exists ? info.mode & permissions : usual);
    forgetList();
    SetError(FileWriteCode(error));
    return error == os::FileError::None;
}

void EDITWNDAUTOBACKUP(const Object& window) {
    FRAME(EDITWNDAUTOBACKUP);
    STAMP();
    if (EDITWNDGETMAXLENGTH(window) == 0 || !GETMODIFYPRIVATE(window)) return;
    STAMP();
    const std::string file = EDITWNDGETFILENAME(window);
    const BackupName names = EDITWNDGETBACKUPNAME(file);
    STAMP();
    if (names.code != Possible) return;
    SETMODIFYPRIVATE(window, false);
    STAMP();
    attempt = {file, names.backupName, false};
    const bool written = WRITEBACKUP(names.backupName, GetText(window), file);
    STAMP();
    if (!written) return SETMODIFYPRIVATE(window, true);
    if (told.find(" write ") != std::string::npos) told.clear();
    const bool sounds = EDITWNDGETPLAYSOUND();
    if (sounds) play("save.wav");
    STAMP();
    if (names.oldestName.empty() || FileSize(names.oldestName) < 0) return;
    attempt = {file, names.oldestName, true};
    FILEDELETE(names.oldestName);
    forgetList();
    STAMP();
    if (sounds) playSecondLater();
}

void PLAYSECONDSOUND() {
    FRAME(PLAYSECONDSOUND);
    STAMP();
    KILLTIMER(MAINCONTROL("lblautobackuptimer"));
    STAMP();
    play("snip.wav");
}

void EDITWNDSETTIMER(const Object& window, const Object& label, int minutes) {
    FRAME(EDITWNDSETTIMER);
    STAMP();
    SetCaption(label, minutes > 0 ? "1" : "0");
    if (minutes <= 0) return;
    constexpr int minute = 60 * 1000;  // milliseconds
    STAMP();
    const int milliseconds = std::min(minutes, std::numeric_limits<int>::max() / minute) * minute;
    Assert(SETTIMER(window, milliseconds), "SetTimer could not start the auto-backup timer");
    STAMP();
}

void EDITWNDKILLTIMER(const Object& window, const Object& label) {
    FRAME(EDITWNDKILLTIMER);
    STAMP();
    if (GetCaption(label) == "1") Assert(KILLTIMER(window), "KillTimer did not kill the auto-backup timer");
    STAMP();
    SetCaption(label, "0");
    STAMP();
}

// ---- warning ----

namespace {

// By code, from 1.
constexpr std::string_view advice[] = {
    "To enable Automatic Backups and Undo for this file, save the file first, give\n"
    "it a valid name, then re-open it again.",
    "To enable Automatic Backups and Undo for this file, close the file and copy it\n"
    "to a folder with a shorter path.",
    "To enable Automatic Backups and Undo for this file, close the file,\n"
    "copy it to a local disk, give it read-write access, then re-open it.",
    "To enable Automatic Backups and Undo for this file, close the file, make a copy\n"
    "and rename it, then re-open it",
};

}  // namespace

void TELLNOBACKUPS(const std::string& file, int code) {
    FRAME(TELLNOBACKUPS);
    if (code == Possible) return;
    STAMP();
    MSGBOX("Automatic Backups", "Automatic Backups and Undo will not work for the following file:\n\n\t'" +
                                    file + "'\n\n" + EDITWNDBACKUPERRMSG(code) + "\n" +
                                    std::string(advice[code - 1]));
}

void EDITWNDCHECKBACKUPOK(const std::string& file) {
    FRAME(EDITWNDCHECKBACKUPOK);
    STAMP();
    told.clear();  // of another text
    if (EDITWNDGETINTERVAL() <= 0) return;
    STAMP();
    TELLNOBACKUPS(file, EDITWNDGETBACKUPNAME(file).code);
}

}  // namespace tarn
