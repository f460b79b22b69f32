// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/progprops.h"

#include "ide/build/toolrun.h"
#include "ide/editor/sourcefile.h"
#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "kernel/windows/resources.h"
#include "library/designer/propedit_sheet.h"
#include "library/dialogs/versioninfo.h"
#include "library/system/system.h"

MODULE("dlgutil", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

constexpr const char* HelpKey = "Program Properties";

struct Row {
    std::string_view name, options;
    std::string VersionFields::*field;
};
constexpr Row rows[] = {
    {"Comments", "String", &VersionFields::comments},
    {"CompanyName", "String", &VersionFields::company},
    {"LegalCopyright", "String", &VersionFields::copyright},
    {"LegalTrademarks", "String", &VersionFields::trademarks},
    {"ProductName", "String", &VersionFields::product},
    {"ProgramDescription", "String", &VersionFields::description},
    {"VersionNumber", "Integer[1:4]", &VersionFields::version},
};

// False if the user has left the sheet without OK.
bool edit(const std::string& title, VersionFields& fields) {
    std::string names, options, values;
    for (const Row& row : rows) {
        names += std::string(row.name) + "\n";
        options += std::string(row.options) + "\n";
        values += fields.*row.field + "\n";
    }
    if (!PROPERTIESDIALOG(title, GETHELPFILE(), HelpKey, names, options, values)) return false;
    int line = 0;
    for (const Row& row : rows) fields.*row.field = STRLINE(values, ++line);
    return true;
}

}  // namespace

std::string FIRSTVERSIONINFO(const std::string& mainFile) {
    FRAME(FIRSTVERSIONINFO);
    STAMP();
    const std::string lines = ResourceInfo(TWINFILE(mainFile, ResourceExtension), "VERSIONINFO", "*").text;
    std::size_t position = 1;
    return NextWord(lines, position);
}

PropertiesResult PROGRAMPROPERTIESDIALOG(const std::string& title, const std::string& mainFile,
                                         const std::string& name) {
    FRAME(PROGRAMPROPERTIESDIALOG);
    STAMP();
    const LoadedVersion loaded = LOADVERSIONINFO(mainFile, name, title);
    STAMP();
    if (!loaded.ok) return PropertiesResult::Cancel;
    const VersionFields before =
        loaded.found ? loaded.fields : VERSIONINFOTOFIELDS(GETDEFAULTVERSIONINFO(FILEBASENAME(mainFile)));
    VersionFields after = before;
    STAMP();
    if (!edit(title, after)) return PropertiesResult::Cancel;
    STAMP();
    if (after == before) return PropertiesResult::Ok;
    const bool saved =
        SAVEVERSIONINFO(mainFile, name.empty() ? std::string(DefaultVersionName) : name, after, title);
    STAMP();
    if (!saved) return PropertiesResult::Ok;
    if (IsLoaded(ProjectEditorDlg)) PROJECTREFRESH(ProjectEditorDlg);
    STAMP();
    return PropertiesResult::Save;
}

}  // namespace tarn
