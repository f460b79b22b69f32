// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/restore.h"

#include "ide/editor/backup.h"
#include "ide/editor/seenfile.h"
#include "ide/editor/textedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/text/dates.h"
#include "library/dialogs/dialogshape.h"
#include "library/dialogs/dlgutil.h"
#include "library/system/system.h"
#include "library/time/timeutil.h"

#include <algorithm>

MODULE("editmenu", tarn::RESTORE_ONERROR)

namespace tarn {

void RESTORE_ONERROR(std::int32_t code) {
    if (!ISFILEERROR(code)) return DefaultErrorHandler(code);
    TELLERROR(
        code,
        "The file was not restored. Nothing is lost: the text that it had is in the file or in its newest "
        "restore point, and the restore point that you have chosen is as it was.");
}

namespace {

// ---- the dialog ----

void showTopic(const Object& window) {
    const std::string caption = GetCaption(window);
    SHOWHELP(HELPTOPIC(STRTRIM(std::string_view(caption).substr(0, caption.find('(')))));
}

// The shape of the dialog's events; the button of the details is its own.
const DialogShape shape = [] {
    DialogShape undo;
    undo.cancel = "pushbutton3";
    undo.help = "pushbutton4";
    undo.showHelp = showTopic;
    undo.hides = true;
    return undo;
}();

constexpr std::string_view ShowCaption = "Details...", HideCaption = "Hide details";

// The buttons stand below the last label that is shown, and the window ends below them.
void endBelow(const Object& window, std::string_view label) {
    constexpr int gap = 20, usualDpi = 96;
    const int scaled = std::max(gap, gap * GetDpiY(window) / usualDpi);
    const Rect last = GetPosition(FINDCONTROL(window, label), CLIENT_UNIT);
    const int bottom = last.y + last.h;
    for (const char* name : {"pushbutton1", "pushbutton2", "pushbutton3", "pushbutton4"}) {
        const Object button = FINDCONTROL(window, name);
        Rect place = GetPosition(button, CLIENT_UNIT);
        place.y = bottom + scaled;
        SetPosition(button, CLIENT_UNIT, place);
    }
    Rect client = GetPosition(window, CLIENT_UNIT);
    client.h = bottom + GetPosition(FINDCONTROL(window, "pushbutton1"), CLIENT_UNIT).h + 2 * scaled;
    SetPosition(window, CLIENT_UNIT, client);
}

void showDetails(const Object& window, bool on) {
    for (const char* name : {"label4", "lblmoredetails"}) SetVisible(FINDCONTROL(window, name), on);
    SetCaption(FINDCONTROL(window, "pushbutton2"), on ? HideCaption : ShowCaption);
    endBelow(window, on ? "lblmoredetails" : "lblprompt");
}

// As high as its lines are when they are broken at the label's edge.
void fitDetails(const Object& window) {
    const Object label = FINDCONTROL(window, "lblmoredetails");
    const std::string text = GetCaption(label);
    Rect place = GetPosition(label, CLIENT_UNIT);
    int lines = 0;
    for (int i = 1; i <= STRLINES(text); i++) {
        constexpr int perCent = 85;  // of the width are used where words break lines
        lines += 1 + TextWidth(window, STRLINE(text, i)) * 100 / (std::max(place.w, 1) * perCent);
    }
    place.h = (lines + 1) * TextHeight(window, "X");
    SetPosition(label, CLIENT_UNIT, place);
}

const RegisteredWindow registered("UndoDlg", UNDODLG);

// ---- what it says ----

std::string sentence(std::string_view head, const std::string& name, std::string_view why) {
    return std::string(head) + "\n\n\t'" + name + "'\n\n" + std::string(why);
}

std::string promptOf(const std::string& file, const std::string& backup) {
    std::string date = TIMEMAKEFULLSTR(FILEGETEMBEDDEDDATE(backup));
    if (!ISDATESTRVALID(date)) return "Restore '" + FILEGETFNAME(file) + "' to how it was.";
    constexpr std::size_t minutes = 16, colon = 13;  // of "YYYY-MM-DD hh:mm"
    date.resize(minutes);
    date[colon] = ':';
    return "Restore '" + FILEGETFNAME(file) + "' to how it was on " + DAYNAMEOF(date) + " " + date + ".";
}

std::string stepsOf(const std::string& file, const std::string& backup, const std::string& fresh) {
    std::string steps;
    int number = 0;
    const auto add = [&](const std::string& step) { steps += STR(++number) + step + "\n"; };
    if (GetModify(SDIEdit)) add(". You will be prompted whether to save changes in the text editor.");
    add(". The copy of '" + FILEGETFNAME(file) + "' in the editor will be closed.");
    add(". '" + file + "' will be renamed to '" + fresh + "'.");
    add(". '" + backup + "' will be copied to '" + file + "'.");
    return steps;
}

bool userAgrees(const std::string& title, const std::string& file, const std::string& backup,
                const std::string& fresh) {
    Load(UndoDlg);
    SetCaption(UndoDlg, title);
    const std::pair<const char*, std::string> texts[] = {{"lblcurrentfile", file},
                                                         {"lblbackupfile", backup},
                                                         {"lblprompt", promptOf(file, backup)},
                                                         {"lblmoredetails", stepsOf(file, backup, fresh)}};
    for (const auto& [label, text] : texts) SetCaption(FINDCONTROL(UndoDlg, label), PLAINCAPTION(text));
    fitDetails(UndoDlg);
    Show(UndoDlg, true);
    const bool agreed = IsLoaded(UndoDlg);
    if (agreed) Unload(UndoDlg);
    return agreed;
}

// ---- the restoring ----

// The file's text goes into a new backup and the old backup's into the file, which so is never without one of them, as
// it would be between a renaming and a copying; and its date is new, so that what is built of it is built again.
void exchange(const std::string& file, const std::string& backup, const std::string& fresh) {
    FRAME(DO_UNDO);
    std::string restored, before;
    STAMP();
    const bool isThere = FileSize(file) >= 0;
    const bool read = LOADFILE(backup, restored) && (!isThere || LOADFILE(file, before));
    STAMP();
    if (!read) return;
    const bool kept = !isThere || WRITEBACKUP(fresh, before, file);
    STAMP();
    if (kept) SAVEFILE(file, restored);
    STAMP();
}

void restore(const std::string& title, const std::string& file, const std::string& backup) {
    const FileWork work;
    const std::string fresh = EDITWNDGETBACKUPNAME(file).backupName;
    if (!userAgrees(title, file, backup, fresh)) return;
    EDITWNDCLOSE(SDIEdit, true);
    if (!EDITWNDGETFILENAME(SDIEdit).empty()) return;
    exchange(file, backup, fresh);
    EDITWNDOPEN(SDIEdit, file, false, 0);
}

}  // namespace

bool UNDODLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(UNDODLG);
    STAMP();
    if (event == LOAD_EVENT) showDetails(window, false);
    STAMP();
    if (event == COMMAND_EVENT && GetName(control) == "pushbutton2") {
        showDetails(window, GetCaption(control) == ShowCaption);
        return true;
    }
    return DIALOGSHAPEEVENT(shape, window, event, control, parameter);
}

void RESTOREFROMBACKUP(const std::string& title, const std::string& backup, const Object& timerLabel) {
    FRAME(DO_UNDO);
    STAMP();
    const std::string file = EDITWNDGETFILENAME(SDIEdit);
    if (!FILECHK(file))
        return MSGBOX(title,
                      sentence("The following filename:", file,
                               "is missing or invalid. No restore points are available for this file."));
    STAMP();
    if (FileSize(backup) < 0)
        return MSGBOX(title, sentence("The following backup file:", backup,
                                      "is missing or invalid. The file cannot be used as a restore point."));
    STAMP();
    if (const int code = EDITWNDGETBACKUPNAME(file).code; code != 0) return TELLNOBACKUPS(file, code);
    STAMP();
    EDITWNDKILLTIMER(SDIEdit, timerLabel);
    STAMP();
    restore(title, file, backup);
    STAMP();
    EDITWNDSETTIMER(SDIEdit, timerLabel, EDITWNDGETINTERVAL());
}

}  // namespace tarn
