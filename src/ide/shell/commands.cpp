// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/commands.h"

#include "ide/designer/objects/dlgmenu.h"
#include "ide/menus/editblocks.h"
#include "ide/menus/editmenu.h"
#include "ide/menus/editsearch.h"
#include "ide/menus/filemenu.h"
#include "ide/menus/helpmenu.h"
#include "ide/menus/progmenu.h"
#include "ide/menus/runmenu.h"
#include "ide/menus/toolmenu.h"
#include "ide/menus/viewmenu.h"
#include "ide/menus/wndmenu.h"
#include "ide/shell/ide.h"
#include "ide/shell/welcome.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"

MODULE("ide", tarn::IDE_ONERROR)

namespace tarn {
namespace {

// What a handler may need of the event.
struct Fired {
    Object control;
    int parameter;
};
using Handler = void (*)(const Fired& fired);

struct Row {
    std::string_view control, button;  // the button mirrors the menu item; empty if there is none
    Handler handler;                   // null: not built yet, so the item is disabled
    bool isArray = false;              // `control` is the first element of a control array
};

std::string lastActive() {
    return GetCaption(MAINCONTROL("lbllastactive"));
}

void openFile(const Fired& fired) {
    DO_OPEN(fired.parameter == 0 ? std::string() : commandText(), MAINCONTROL("programlabel"));
}

// The caption of a recent file is "&", its digit, a blank and the path.
void openRecent(const Fired& fired) {
    const Object first = MAINCONTROL("file_mru_1");
    const std::string caption = GetCaption(fired.control);
    DO_MRU(first, first, caption.size() > 3 ? caption.substr(3) : "", MAINCONTROL("programlabel"));
}

void quickbuild(const Fired&) {
    bool ignored = false;
    DO_QUICKBUILD(true, ignored);
}

void restoreBackup(const Fired& fired) {
    DO_UNDO("Edit-Undo (restore from backup)", GetCaption(fired.control), MAINCONTROL("lblautobackuptimer"));
}

// The user's choice of a window must not be undone by giving the focus back.
void chooseWindow(const Fired&) {
    DO_WINDOW_WINDOWS();
    SetCaption(MAINCONTROL("lbllastactive"), "");
}

void showOutput(const Fired&) {
    DO_WINDOW_OUTPUT();
    SetCaption(MAINCONTROL("lbllastactive"), "");
}

void showWelcome(const Fired&) {
    DO_WELCOME();
    SetCaption(MAINCONTROL("lbllastactive"), "");
}

void toggleToolbar(const Fired&) {
    DO_STD_TOOLBAR(Main, MAINCONTROL("codelabel"), MAINCONTROL("view_std_toolbar"));
}

// The commands in the order in which they are tried.
constexpr Row rows[] = {
    {"file_new_textfile", "btnfile_new_textfile",
     [](const Fired&) { DO_NEW_TEXTFILE(MAINCONTROL("codelabel")); }},
    {"file_new_class", "", [](const Fired&) { DO_NEW_CLASS(MAINCONTROL("codelabel")); }},
    {"file_new_program", "",
     [](const Fired&) { DO_NEW_PROGRAM(MAINCONTROL("programlabel"), MAINCONTROL("codelabel")); }},
    {"file_open", "btnfile_open", openFile},
    {"file_open_examples", "",
     [](const Fired&) { DO_OPEN_EXAMPLES("Examples and Tutorials", MAINCONTROL("programlabel")); }},
    {"file_save", "btnfile_save", [](const Fired&) { DO_SAVE(); }},
    {"file_save_as", "", [](const Fired&) { DO_SAVE_AS(); }},
    {"file_save_all", "", [](const Fired&) { DO_SAVE_ALL(); }},
    {"file_close_all", "", [](const Fired&) { DO_CLOSE_ALL(); }},
    {"file_close", "", [](const Fired&) { DO_CLOSE(lastActive()); }},
    {"file_print", "btnfile_print", [](const Fired&) { DO_PRINT(); }},
    {"file_printer_setup", "", [](const Fired&) { DO_PRINTER_SETUP(MAINCONTROL("printername")); }},
    {"file_mru_1", "", openRecent, true},
    {"file_exit", "", [](const Fired&) { DO_EXIT(); }},
    {"edit_undo_typing", "", [](const Fired&) { DO_UNDO_TYPING(); }},
    {"edit_redo_typing", "", [](const Fired&) { DO_REDO_TYPING(); }},
    {"edit_undo_01", "", restoreBackup, true},
    {"edit_cut", "", [](const Fired&) { DO_CUT(); }},
    {"edit_copy", "", [](const Fired&) { DO_COPY(); }},
    {"edit_paste", "", [](const Fired&) { DO_PASTE(MAINCONTROL("programlabel")); }},
    {"edit_delete", "", [](const Fired&) { DO_DELETE(); }},
    {"edit_select_all", "", [](const Fired&) { DO_SELECT_ALL(); }},
    {"edit_comment_block", "", [](const Fired&) { DO_COMMENT_BLOCK(); }},
    {"edit_uncomment_block", "", [](const Fired&) { DO_UNCOMMENT_BLOCK(); }},
    {"edit_insert_file", "", [](const Fired&) { DO_INSERT_FILE(); }},
    {"edit_find", "btnedit_find", [](const Fired&) { DO_FIND(); }},
    {"edit_find_next", "", [](const Fired&) { DO_FIND_NEXT(); }},
    {"edit_replace", "btnedit_replace", [](const Fired&) { DO_REPLACE(); }},
    {"edit_find_marks", "", [](const Fired&) { DO_FIND_MARKS(); }},
    {"edit_find_files", "", [](const Fired&) { DO_FIND_FILES(); }},
    {"edit_replace_files", "", [](const Fired&) { DO_REPLACE_FILES(); }},
    {"edit_properties", "", [](const Fired&) { DO_PROPERTIES(); }},
    {"edit_dialog_changes", "", [](const Fired&) { DO_DIALOG_CHANGES(); }},
    {"edit_dialog_preview", "", [](const Fired&) { DO_DIALOG_PREVIEW(); }},
    {"edit_dialog_properties", "", [](const Fired&) { DO_PROPERTY_WINDOW(); }},
    {"edit_dialog_align_left", "",
     [](const Fired& fired) { DIALOGCOMMAND(STRLOWER(GetName(fired.control))); }, true},
    {"edit_dialog_duplicate", "", [](const Fired&) { DO_DIALOG_DUPLICATE(); }},
    {"view_line", "", [](const Fired&) { DO_LINE(); }},
    {"view_function_list", "", [](const Fired&) { DO_FUNCTION_LIST(); }},
    {"view_browse_info", "", [](const Fired&) { DO_BROWSE_INFO(); }},
    {"view_errors", "", [](const Fired&) { DO_ERRORS(); }},
    {"view_program_window", "", [](const Fired&) { DO_PROGRAM_WINDOW(MAINCONTROL("programlabel")); }},
    {"view_std_toolbar", "", toggleToolbar},
    {"view_toolbox", "", [](const Fired&) { DO_TOOLBOX(MAINCONTROL("view_toolbox")); }},
    {"view_declaration", "", [](const Fired&) { DO_DECLARATION(); }},
    {"view_back", "", [](const Fired&) { DO_BACK(); }},
    {"view_complete", "", [](const Fired&) { DO_COMPLETE(); }},
    {"view_fold_all", "", [](const Fired&) { DO_FOLD_ALL(true); }},
    {"view_unfold_all", "", [](const Fired&) { DO_FOLD_ALL(false); }},
    {"view_ends_lf", "", [](const Fired&) { DO_LINE_ENDS(ENDS_LF); }},
    {"view_ends_crlf", "", [](const Fired&) { DO_LINE_ENDS(ENDS_CRLF); }},
    {"view_tab_2", "", [](const Fired&) { DO_TAB_WIDTH(2); }},
    {"view_tab_3", "", [](const Fired&) { DO_TAB_WIDTH(3); }},
    {"view_tab_4", "", [](const Fired&) { DO_TAB_WIDTH(4); }},
    {"view_tab_8", "", [](const Fired&) { DO_TAB_WIDTH(8); }},
    {"view_blanks", "", [](const Fired&) { DO_LOOK("BlanksOn"); }},
    {"view_brackets", "", [](const Fired&) { DO_LOOK("BracketsOn"); }},
    {"view_current_line", "", [](const Fired&) { DO_LOOK("CurrentLineOn"); }},
    {"view_folds", "", [](const Fired&) { DO_LOOK("FoldsOn"); }},
    {"view_changes", "", [](const Fired&) { DO_LOOK("ChangesOn"); }},
    {"view_choices", "", [](const Fired&) { DO_LOOK("ChoicesOn"); }},
    {"view_zoom_in", "", [](const Fired&) { DO_ZOOM(1); }},
    {"view_zoom_out", "", [](const Fired&) { DO_ZOOM(-1); }},
    {"view_zoom_normal", "", [](const Fired&) { DO_ZOOM(0); }},
    {"program_add_class", "", [](const Fired&) { DO_ADD_CLASS(); }},
    {"program_add_rcfile", "", [](const Fired&) { DO_ADD_RCFILE(); }},
    {"program_add_dialog", "", [](const Fired&) { DO_ADD_DIALOG(); }},
    {"program_add_database", "", nullptr},
    {"program_add_file", "", [](const Fired&) { DO_ADD_FILE(); }},
    {"program_edit_properties", "", [](const Fired&) { DO_EDIT_PROPERTIES(); }},
    {"program_refresh", "", [](const Fired&) { DO_REFRESH(); }},
    {"program_remove_file", "", [](const Fired&) { DO_REMOVE_FILE(); }},
    {"program_show_input", "", [](const Fired&) { DO_SHOW_INPUT(); }},
    {"program_show_output", "", [](const Fired&) { DO_SHOW_OUTPUT(); }},
    {"program_copy_exe", "", [](const Fired&) { DO_COPY_EXE(); }},
    {"run_quickbuild", "btnrun_quickbuild", quickbuild},
    {"run_rebuild", "", [](const Fired&) { DO_REBUILD(); }},
    {"run_compile", "", [](const Fired&) { DO_COMPILE(); }},
    {"run_start", "btnrun_start", [](const Fired&) { DO_START(); }},
    {"run_debug", "btnrun_debug", [](const Fired&) { DO_DEBUG(); }},
    {"run_arguments", "", [](const Fired&) { DO_ARGUMENTS(); }},
    {"run_info", "", [](const Fired&) { DO_INFO(); }},
    {"run_breakpoint", "", [](const Fired&) { DO_TOGGLE_BREAKPOINT(); }},
    {"run_rule", "", [](const Fired&) { DO_BREAKPOINT_RULE(); }},
    {"run_to_cursor", "", [](const Fired&) { DO_RUN_TO_CURSOR(); }},
    {"run_break", "", [](const Fired&) { DO_BREAK(); }},
    {"tools_explore_rcfile", "", [](const Fired&) { DO_EXPLORE_RCFILE(MAINCONTROL("programlabel")); }},
    {"tools_explore_db", "", [](const Fired&) { DO_EXPLORE_DB(); }},
    {"tools_test_dialog", "", [](const Fired&) { DO_TEST_DIALOG(); }},
    {"tools_test_rcfile", "", [](const Fired&) { DO_TEST_RCFILE(); }},
    {"tools_convert_bmp", "", [](const Fired&) { DO_CONVERT_BMP(); }},
    {"tools_options_rcfile", "", [](const Fired&) { DO_OPTIONS_RCFILE("Tools-Create Resource File"); }},
    {"tools_check_dialog", "", [](const Fired&) { DO_CHECK_DIALOG(); }},
    {"tools_test_template", "", [](const Fired&) { DO_TEST_TEMPLATE(); }},
    {"tools_options_comp", "", [](const Fired&) { DO_OPTIONS_COMP(); }},
    {"tools_options_debug", "", [](const Fired&) { DO_OPTIONS_DEBUG(); }},
    {"tools_options_editor", "",
     [](const Fired&) { DO_OPTIONS_EDITOR(Main, MAINCONTROL("lblautobackuptimer")); }},
    {"tools_options_fonts", "", [](const Fired&) { DO_OPTIONS_FONTS(); }},
    {"tools_options_gen", "", [](const Fired&) { DO_OPTIONS_GEN(Main); }},
    {"tools_options_paths", "", [](const Fired&) { DO_OPTIONS_PATHS(); }},
    {"tools_options_keys", "", [](const Fired&) { DO_OPTIONS_KEYS(); }},
    {"window_arrange", "", [](const Fired&) { DO_WINDOW_ARRANGE(); }},
    {"window_close_all", "", [](const Fired&) { DO_WINDOW_CLOSE_ALL(); }},
    {"window_windows", "", chooseWindow},
    {"window_program", "", [](const Fired&) { DO_WINDOW_PROGRAM(); }},
    {"window_code", "", [](const Fired&) { DO_WINDOW_CODE(); }},
    {"window_dialog", "", [](const Fired&) { DO_WINDOW_DIALOG(); }},
    {"window_browser", "", [](const Fired&) { DO_WINDOW_BROWSER(); }},
    {"window_error", "", [](const Fired&) { DO_WINDOW_ERROR(); }},
    {"window_output", "", showOutput},
    {"help_filecontents", "", [](const Fired&) { DO_FILECONTENTS(); }},
    {"help_fileindex", "", [](const Fired&) { DO_FILEINDEX(); }},
    {"help_using_help", "", [](const Fired&) { DO_USING_HELP(); }},
    {"help_developer_env", "", [](const Fired&) { DO_DEVELOPER_ENV(); }},
    {"help_keyboard", "", [](const Fired&) { DO_KEYBOARD(); }},
    {"help_getting_started", "", [](const Fired&) { DO_GETTING_STARTED(); }},
    {"help_example_progs", "", [](const Fired&) { DO_EXAMPLE_PROGS(); }},
    {"help_how_do_i", "", [](const Fired&) { DO_HOW_DO_I(); }},
    {"help_compiler_errors", "", [](const Fired&) { DO_COMPILER_ERRORS(); }},
    {"help_run_time_errors", "", [](const Fired&) { DO_RUN_TIME_ERRORS(); }},
    {"help_tech_support", "", [](const Fired&) { DO_TECH_SUPPORT(); }},
    {"help_welcome", "", showWelcome},
    {"help_about", "", [](const Fired&) { DO_ABOUT(Main); }},
};

bool inArrayOf(const Object& control, const Object& first) {
    if (first.empty() || control.window() != first.window()) return false;
    const Object last = ControlElement(first, ControlUbound(first));
    return control.number() >= first.number() && control.number() <= last.number();
}

bool matches(const Row& row, const Object& control, const std::string& name) {
    if (row.isArray) return inArrayOf(control, MAINCONTROL(row.control));
    return name == row.control || (!row.button.empty() && name == row.button);
}

}  // namespace

void DO_COMMAND(const Object& control, int parameter) {
    FRAME(DO_COMMAND);
    STAMP();
    const std::string name = GetName(control);
    for (const Row& row : rows) {
        if (!matches(row, control, name)) continue;
        STAMP();
        if (row.handler != nullptr) row.handler(Fired{control, parameter});
        break;
    }
    STAMP();
    CLOSEWELCOME();
    STAMP();
    UPDATEMAINWINDOW();
    STAMP();
    REACTIVATELASTWINDOW();
    STAMP();
}

bool HASHANDLER(std::string_view controlName) {
    FRAME(HASHANDLER);
    for (const Row& row : rows) {
        if (row.control == controlName || row.button == controlName) return row.handler != nullptr;
    }
    return false;
}

void DISABLEUNHANDLED() {
    FRAME(DISABLEUNHANDLED);
    for (const Row& row : rows) {
        STAMP();
        if (row.handler != nullptr) continue;
        SetEnabled(MAINCONTROL(row.control), false);
        if (!row.button.empty()) SetEnabled(MAINCONTROL(row.button), false);
    }
}

}  // namespace tarn
