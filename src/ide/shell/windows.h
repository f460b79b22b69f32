// SPDX-License-Identifier: GPL-3.0-or-later
//
// The windows of the environment by name, and the controls of Main that hold its state. A window may be named
// before it is loaded; `MAINCONTROL` needs Main to be loaded and gives an object that names nothing
// otherwise.
#pragma once

#include "kernel/windows/windowing.h"
#include "library/system/product.h"
#include "library/system/system.h"

#include <string_view>

namespace tarn {

inline const Object Main("Main");
inline const Object SDIEdit("SDIEdit");
inline const Object ViewDlg("ViewDlg");
inline const Object ProjectEditorDlg("ProjectEditorDlg");
inline const Object DialogDlg("DialogDlg");
inline const Object ToolboxDlg("ToolboxDlg");
inline const Object MenuEditDlg("MenuEditDlg");
inline const Object RcFileTestDlg("RcFileTestDlg");
inline const Object TestDlg("TestDlg");
inline const Object BrowseInfoDlg("BrowseInfoDlg");
inline const Object StartupDlg("StartupDlg");
inline const Object FileInfoDlg("FileInfoDlg");
inline const Object ConvertBmpDlg("ConvertBmpDlg");
inline const Object ArgumentsDlg("ArgumentsDlg");
inline const Object GotoFuncDlg("GotoFuncDlg");
inline const Object MoreInfoDlg("MoreInfoDlg");
inline const Object UndoDlg("UndoDlg");
inline const Object DifferenceDlg("DifferenceDlg");
inline const Object CompOptionsDlg("CompOptionsDlg");
inline const Object DebugOptionsDlg("DebugOptionsDlg");
inline const Object EditorOptionsDlg("EditorOptionsDlg");
inline const Object GenOptionsDlg("GenOptionsDlg");
inline const Object PathsOptionsDlg("PathsOptionsDlg");
inline const Object KeysOptionsDlg("KeysOptionsDlg");

inline Object MAINCONTROL(std::string_view name) {
    return FINDCONTROL(Main, name);
}

inline bool ISSHOWN(const Object& window) {
    return IsLoaded(window) && GetVisible(window);
}

inline constexpr std::string_view ClassExtension = SourceExtension;
inline constexpr std::string_view ResourceExtension = ".rc";
inline constexpr std::string_view Untitled = "<untitled>";

inline bool ISCLASSFILE(std::string_view file) {
    return STREQUAL(FILEGETEXT(file), ClassExtension);
}

}  // namespace tarn
