// SPDX-License-Identifier: Apache-2.0
//
// The window with the settings of a delimited text file.
#include "kernel/tables/tables.h"
#include "library/data/dbutil.h"
#include "library/data/dbutil_grid.h"
#include "library/data/dbutil_layout_internal.h"
#include "library/data/dbutil_windows.h"
#include "library/system/system.h"

#include <climits>
#include <utility>

MODULE("dbutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

std::string DLGCHECKINTFIELD(const Object& control, std::string_view name, int low, int high) {
    FRAME(DLGCHECKINTFIELD);
    STAMP();
    bool ok = false;
    const int value = CVTI(STRTRIM(GetText(control)), ok);
    if (ok && value >= low && value <= high) return {};
    return std::string(name) + " should be between " + STR(low) + " and " + STR(high) + ".";
}

// ---- settings of delimited text ----

namespace {

using detail::countText;

constexpr int MostPreviewRows = 1000;

void complain(const Object& window, const std::string& text) {
    MsgBox(GetCaption(window), text, "OK", BoxIcon::Error);
}

std::string fieldText(const Object& window, std::string_view name) {
    return GetText(FINDCONTROL(window, name));
}

// Empty if the settings can be used.
std::string settingsFault(const Object& window, int mostRows) {
    const struct {
        std::string_view control, name;
        int low, high;
    } fields[] = {{"numheaderrows", "Header rows", 0, 2},
                  {"numfooterrows", "Footer rows", 0, 2},
                  {"maxdatarows", "Rows to read", -1, mostRows}};
    for (const auto& field : fields) {
        const std::string fault =
            DLGCHECKINTFIELD(FINDCONTROL(window, field.control), field.name, field.low, field.high);
        if (!fault.empty()) return fault;
    }
    const std::string separator = fieldText(window, "separatorchar");
    const bool one = separator.size() == 1 || GETSEPARATOR(separator).size() == 1;
    return one ? "" : "Separator should be one character, or \\t for a tab.";
}

void readSettings(const Object& window, RecordDescriptor* record) {
    GETOPTIONSRECORD(fieldText(window, "numheaderrows"), fieldText(window, "numfooterrows"),
                     fieldText(window, "separatorchar"), fieldText(window, "maxdatarows"), record);
}

DataFormat formatOf(const DataOptions& options) {
    return options.separatorchar == ',' ? FormatComma : FormatTab;
}

void layOutSettings(const Object& window) {
    detail::layOutList(window, "idok", "idcancel");
    detail::stretchToMargin(window, "datasource");
    const Rect rows = GetPosition(FINDCONTROL(window, "iconlist1"), CLIENT_UNIT);
    for (const std::string_view name : {"btnpreview", "actualdatarows"}) {
        const Object control = FINDCONTROL(window, name);
        Rect place = GetPosition(control, CLIENT_UNIT);
        place.x = rows.x + rows.w - place.w;
        SetPosition(control, CLIENT_UNIT, place);
    }
}

void confirmSettings(const Object& window) {
    const std::string fault = settingsFault(window, INT_MAX);
    if (!fault.empty()) return complain(window, fault);
    Hide(window);
}

bool settingsButton(const Object& window, const std::string& name) {
    if (STREQUAL(name, "btnpreview"))
        TABBEDFILESETUPDLG_PREVIEW(window);
    else if (STREQUAL(name, "idok"))
        confirmSettings(window);
    else if (STREQUAL(name, "idcancel"))
        Unload(window);
    else
        return false;
    return true;
}

void suggestSettings(const Object& window, const std::string& filename) {
    const PossibleFileDetails details = GETPOSSIBLEFILEDETAILS(filename);
    const std::pair<std::string_view, std::string_view> texts[] = {{"datasource", filename},
                                                                   {"numheaderrows", details.headerRows},
                                                                   {"numfooterrows", "0"},
                                                                   {"separatorchar", details.separator},
                                                                   {"maxdatarows", "-1"}};
    for (const auto& [name, text] : texts) SetText(FINDCONTROL(window, name), text);
}

// What keeps a preview from being shown; empty if it can be shown, or if the user stopped it.
std::string previewFault(const DataTable& data) {
    const std::string cannot = "Cannot preview the file, an error occurred while ";
    if (data.step == DataTable::Step::Columns) return cannot + "finding the columns.\n" + data.message;
    if (data.step == DataTable::Step::Rows) return cannot + "reading the rows.\n" + data.message;
    return {};
}

void showPreview(const Object& window, const DataTable& data) {
    const Object count = FINDCONTROL(window, "actualdatarows");
    if (data.step == DataTable::Step::Stopped) return SetCaption(count, "Stopped");
    SetCaption(count, countText(TableCount(data.table.get()), data.columns));
    FILLLISTBOX(FINDCONTROL(window, "iconlist1"), false, 1, "", data.table.get());
    if (!data.remark.empty())
        MsgBox(GetCaption(window), "Not all of the file could be read as it stands.\n" + data.remark, "OK",
               BoxIcon::Warning);
}

}  // namespace

void TABBEDFILESETUPDLG_PREVIEW(const Object& window) {
    FRAME(TABBEDFILESETUPDLG_PREVIEW);
    STAMP();
    const Object list = FINDCONTROL(window, "iconlist1");
    Clear(list);
    SetCaption(list, "");
    SetCaption(FINDCONTROL(window, "actualdatarows"), "");
    STAMP();
    const std::string filename = fieldText(window, "datasource");
    if (FileSize(filename) <= 0)
        return complain(window, "File '" + filename + "' is empty or does not exist.");
    STAMP();
    std::string fault = settingsFault(window, MostPreviewRows);
    if (!fault.empty()) return complain(window, fault);
    RecordValue record;
    STAMP();
    readSettings(window, record.get());
    const DataOptions options = DataOptionsOf(record.get(), FormatComma);
    STAMP();
    const DataTable data = LOADDATATABLE(filename, &options, formatOf(options));
    STAMP();
    fault = previewFault(data);
    if (!fault.empty()) return complain(window, fault);
    showPreview(window, data);
    STAMP();
}

bool TABBEDFILESETUPDLG(const Object& window, int event, const Object& control, int) {
    FRAME(TABBEDFILESETUPDLG);
    STAMP();
    bool result = true;
    switch (event) {
    case LOAD_EVENT: detail::limitSize(window, 100); break;
    case RESIZE_EVENT: layOutSettings(window); break;
    case COMMAND_EVENT: result = settingsButton(window, GetName(control)); break;
    default: result = false;
    }
    STAMP();
    return result;
}

DataFormat TABBEDFILESETUPDIALOG(const Object&, const std::string& filename, RecordDescriptor* options) {
    FRAME(TABBEDFILESETUPDIALOG);
    STAMP();
    RegisterWindow(TabbedFileSetupDlg, TABBEDFILESETUPDLG);
    Load(TabbedFileSetupDlg);
    STAMP();
    if (!IsLoaded(TabbedFileSetupDlg)) return FormatUnknown;
    suggestSettings(TabbedFileSetupDlg, filename);
    STAMP();
    Show(TabbedFileSetupDlg, true);
    STAMP();
    if (!IsLoaded(TabbedFileSetupDlg)) return FormatUnknown;
    readSettings(TabbedFileSetupDlg, options);
    STAMP();
    Unload(TabbedFileSetupDlg);
    STAMP();
    return formatOf(DataOptionsOf(options, FormatComma));
}

}  // namespace tarn
