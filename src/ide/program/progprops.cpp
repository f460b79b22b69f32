// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/progprops.h"

#include "ide/build/toolrun.h"
#include "ide/editor/ownwrites.h"
#include "ide/editor/sourcefile.h"
#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "kernel/windows/resources.h"
#include "library/designer/propedit.h"
#include "library/designer/propedit_sheet.h"
#include "library/dialogs/versioninfo.h"
#include "library/settings/profstr.h"
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

constexpr std::string_view VersionOptions = rows[6].options;
constexpr int MostOfNumber = 65535;  // a number of a version has 16 bits

// ---- the version ----

// The version as the sheet shows it: what is no list of numbers, such as a word that a compiler replaces, is its default.
std::string shownVersion(const std::string& version) {
    std::string whole = version;
    for (int count = STRWORDCOUNT(version); count > 0 && count < 4; ++count) whole += " 0";
    const ValueCheck check = CHECKVALUE(VersionOptions, whole);
    return check.message.empty() ? whole : check.fallback;
}

// Four numbers with one blank between; empty if one of them cannot stand in a version.
std::string plainVersion(const std::string& version) {
    std::string plain;
    std::size_t position = 1;
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        const int number = CVTI(NextWord(version, position), ok);
        if (!ok || number < 0 || number > MostOfNumber) return {};
        plain += (i > 0 ? " " : "") + STR(number);
    }
    return plain;
}

// ---- the sheet ----

// False if the user has left the sheet without OK.
bool askOnce(const std::string& title, VersionFields& fields) {
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

// The same, until the version is one. A version that the user has not touched stays as it is written.
bool edit(const std::string& title, VersionFields& fields) {
    const std::string written = fields.version, shown = shownVersion(written);
    fields.version = shown;
    while (askOnce(title, fields)) {
        const std::string version = plainVersion(fields.version);
        if (fields.version == shown || !version.empty()) {
            fields.version = fields.version == shown ? written : version;
            return true;
        }
        MSGBOX(title, "There is a problem with the 'VersionNumber' property.\nA list of numbers should be "
                      "used.\n(4 numbers "
                      "total, between 0 and " +
                          STR(MostOfNumber) + ")\n");
    }
    return false;
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
    const std::string resources = TWINFILE(mainFile, ResourceExtension);
    if (!ASKCODEWINDOW(resources)) return PropertiesResult::Cancel;
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
    SHOWOWNWRITE(resources);
    STAMP();
    if (IsLoaded(ProjectEditorDlg)) PROJECTREFRESH(ProjectEditorDlg);
    STAMP();
    return PropertiesResult::Save;
}

}  // namespace tarn
