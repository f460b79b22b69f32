// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/toolmenu.h"

#include "ide/build/toolrun.h"
#include "ide/designer/check/dlgcheck.h"
#include "ide/designer/dlgedit.h"
#include "ide/designer/files/dlgtest.h"
#include "ide/designer/files/openresource.h"
#include "ide/editor/bitmaptext.h"
#include "ide/editor/textedit.h"
#include "ide/menus/filemenu.h"
#include "ide/options/compoptions.h"
#include "ide/options/debugoptions.h"
#include "ide/options/editoroptions.h"
#include "ide/options/fonts.h"
#include "ide/options/genoptions.h"
#include "ide/options/keysoptions.h"
#include "ide/options/pathsoptions.h"
#include "ide/program/newdialog.h"
#include "ide/program/projedit.h"
#include "ide/program/testtemplate.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "kernel/tables/tables.h"
#include "library/data/dbutil_windows.h"
#include "library/system/longwork.h"
#include "library/system/system.h"

MODULE("toolmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

constexpr const char* ExploreTitle = "Tools-Explore Data File";
constexpr const char* TestTitle = "Tools-Test Dialog";

std::string dataFilter() {
    const std::string patterns = DataFilePatterns();
    return "Data files (" + patterns + ")|" + patterns + "|All files (*)|*|";
}

// What the user can do about a file that cannot be shown.
std::string nextStep(const std::string& file, bool delimited) {
    if (FileSize(file) <= 0) return "Choose a file that holds data.";
    if (delimited) return "Choose the file again and change its settings. 'Preview' shows what they give.";
    return "Use File-Open to see what is in the file, or choose another file.";
}

void tellFailure(const std::string& file, const std::string& message, bool delimited) {
    MsgBox(ExploreTitle, message + "\n\n" + nextStep(file, delimited), "OK", BoxIcon::Error);
}

// What the file is, as far as its first rows tell. False if the user has stopped the look into it.
bool identify(const std::string& file, DataFileInfo& info) {
    LongWork work("Looking into '" + FILEGETFNAME(file) + "'");
    constexpr DataOptions firstRows{0, 0, ',', 100, true};
    info = GetDataFileInfo(file, &firstRows);
    return !info.stopped && !work.stopped();
}

void showTable(const std::string& file, const DataOptions* options, DataFormat format) {
    const DataTable data = LOADDATATABLE(file, options, format);
    STAMP();
    if (data.step == DataTable::Step::Stopped) return;
    if (data.step != DataTable::Step::Done) return tellFailure(file, data.message, options != nullptr);
    if (!data.remark.empty())
        MsgBox(ExploreTitle, "Not all of '" + file + "' could be read as it stands.\n" + data.remark, "OK",
               BoxIcon::Warning);
    STAMP();
    TABLEVIEWDIALOG(Main, "", "", data.table.get(), file);
}

// The user may see by the preview what is wrong with the settings, so they are asked for even when the first
// look found no columns.
void exploreDelimited(const std::string& file) {
    RecordValue record;
    const DataFormat format = TABBEDFILESETUPDIALOG(Main, file, record.get());
    STAMP();
    if (format == FormatUnknown) return;
    const DataOptions options = DataOptionsOf(record.get(), format);
    STAMP();
    showTable(file, &options, format);
}

}  // namespace

void DO_EXPLORE_DB() {
    FRAME(DO_EXPLORE_DB);
    STAMP();
    const std::string file = OpenFileDialog(ExploreTitle, "", dataFilter());
    if (file.empty()) return;
    STAMP();
    DataFileInfo info;
    if (!identify(file, info)) return;
    STAMP();
    if (IsDelimited(info.format)) return exploreDelimited(file);
    if (!info.message.empty()) return tellFailure(file, info.message, false);
    showTable(file, nullptr, info.format);
    STAMP();
}

void DO_EXPLORE_RCFILE(const Object& programLabel) {
    FRAME(DO_EXPLORE_RCFILE);
    STAMP();
    const std::string file = OpenFileDialog("Tools-Explore Resource File", "", "Resource files (*.rc)|*.rc|");
    STAMP();
    if (file.empty() || !CLOSEALL()) return;
    STAMP();
    PROJECTOPEN(ProjectEditorDlg, "Program Window", file, programLabel);
    STAMP();
}

namespace {

// The test shows what the file has. False if the user would rather not see that of a dialog that has changed since.
bool mayTest(const ResourceChoice& choice) {
    const bool open = STREQUAL(choice.file, DIALOGGETFILENAME()) && STREQUAL(choice.name, DIALOGGETDLGNAME());
    if (!open || !DIALOGGETMODIFY()) return true;
    const std::string answer = MsgBox(TestTitle,
                                      "The dialog '" + choice.name +
                                          "' has been changed since it was saved.\nDo you want to save it "
                                          "before it is shown?",
                                      "&Yes\n&No\n&Cancel", BoxIcon::Question);
    if (answer == "&Yes") DIALOGSAVE();
    return answer == "&No" || (answer == "&Yes" && !DIALOGGETMODIFY());
}

}  // namespace

void DO_TEST_DIALOG() {
    FRAME(DO_TEST_DIALOG);
    STAMP();
    const CurrentResource current = GETCURRENTRESOURCE();
    STAMP();
    const ResourceChoice choice = OPENRESOURCEDIALOG(TestTitle, "dialog", current.file, current.dialog);
    STAMP();
    if (choice.file.empty() || choice.name.empty() || !mayTest(choice)) return;
    STAMP();
    WINDOWTESTERDIALOG(TestTitle, choice.file, choice.name);
    STAMP();
}

void DO_TEST_RCFILE() {
    FRAME(DO_TEST_RCFILE);
    STAMP();
    Load(RcFileTestDlg);
    STAMP();
    Show(RcFileTestDlg, true);
    STAMP();
}

void DO_OPTIONS_RCFILE(const std::string& title) {
    FRAME(DO_OPTIONS_RCFILE);
    STAMP();
    CREATERCFILEDIALOG(title);
}

void CREATERCFILEDIALOG(const std::string& title) {
    FRAME(CREATERCFILEDIALOG);
    STAMP();
    const std::string refusal = "Cannot create a new RC file.\n";
    if (!PROJECTGETMAINFILE().empty())
        return MSGBOX(title, refusal + "The program window must be closed first.\n");
    STAMP();
    if (!EDITWNDGETFILENAME(SDIEdit).empty())
        return MSGBOX(title, refusal + "The code editor must be closed first.\n");
    STAMP();
    PROJECTNEWDIALOG();
    STAMP();
}

void DO_OPTIONS_COMP() {
    FRAME(DO_OPTIONS_COMP);
    STAMP();
    COMPOPTIONSDIALOG();
}

void DO_OPTIONS_DEBUG() {
    FRAME(DO_OPTIONS_DEBUG);
    STAMP();
    DEBUGOPTIONSDIALOG();
}

void DO_OPTIONS_EDITOR(const Object& mainWindow, const Object& timerLabel) {
    FRAME(DO_OPTIONS_EDITOR);
    STAMP();
    EDITOROPTIONSDIALOG(mainWindow, timerLabel);
}

void DO_OPTIONS_FONTS() {
    FRAME(DO_OPTIONS_FONTS);
    STAMP();
    FONTOPTIONSDIALOG();
}

void DO_OPTIONS_GEN(const Object& mainWindow) {
    FRAME(DO_OPTIONS_GEN);
    STAMP();
    GENOPTIONSDIALOG(mainWindow);
}

void DO_OPTIONS_PATHS() {
    FRAME(DO_OPTIONS_PATHS);
    STAMP();
    PATHSOPTIONSDIALOG();
}

void DO_OPTIONS_KEYS() {
    FRAME(DO_OPTIONS_KEYS);
    STAMP();
    KEYSOPTIONSDIALOG();
}

void DO_CONVERT_BMP() {
    FRAME(DO_CONVERT_BMP);
    STAMP();
    const std::string file =
        OpenFileDialog("Tools-Convert Bitmap", "", "Bitmaps (*.bmp)|*.bmp|All files (*)|*|");
    STAMP();
    if (!file.empty()) CONVERTBMPDIALOG(file);
    STAMP();
}

void DO_CHECK_DIALOG() {
    FRAME(DO_CHECK_DIALOG);
    STAMP();
    CHECKDIALOGDLG();
    STAMP();
}

void DO_TEST_TEMPLATE() {
    FRAME(DO_TEST_TEMPLATE);
    STAMP();
    const TemplateChoice choice = OPENTEMPLATEDIALOG();
    STAMP();
    if (!choice.section.empty()) TESTTEMPLATE(choice.filename, choice.section);
    STAMP();
}

}  // namespace tarn
