// SPDX-License-Identifier: Apache-2.0
//
// The property sheet.
#include "library/designer/propedit_sheet.h"

#include "library/designer/propedit.h"
#include "library/designer/propedit_options_internal.h"
#include "library/designer/propedit_rows.h"
#include "library/dialogs/dialogshape.h"
#include "library/system/system.h"

#include <algorithm>
#include <vector>

MODULE("propedit", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

using Lines = std::vector<std::string_view>;

constexpr int HelpKeyCommand = 257;
constexpr int margin = 10;  // pixels below the rows, and below the buttons

bool isHidden(std::string_view options) {
    return detail::Options(options).is("HIDDEN");
}

std::string_view lineAt(const Lines& lines, std::size_t n) {
    return n < lines.size() ? lines[n] : std::string_view();
}

// ---- filling ----

// The number of rows that are shown.
int fillRows(const Object& window, const Lines& names, const Lines& options, const Lines& values) {
    const int rows = PROPERTYROWS(window);
    int used = 0;
    for (std::size_t n = 0; n < options.size() && used < rows; ++n)
        if (!isHidden(options[n]))
            FILLPROPERTYROW(PROPERTYROW(window, ++used), lineAt(names, n), options[n],
                            SHOWNPROPERTY(options[n], lineAt(values, n)));
    for (int n = used + 1; n <= rows; ++n) HIDEPROPERTYROW(PROPERTYROW(window, n));
    return used;
}

// The frame and the dividers reach to the last row, the buttons stand below it, and the window ends there.
void layOut(const Object& window, int rows) {
    const int bottom = FRAMEPROPERTYROWS(window, rows);
    for (const std::string_view name : {"idok", "idcancel", "idhelp"}) {
        Rect at = GetPosition(FINDCONTROL(window, name), CLIENT_UNIT);
        at.y = bottom + margin;
        SetPosition(FINDCONTROL(window, name), CLIENT_UNIT, at);
    }
    const Rect ok = GetPosition(FINDCONTROL(window, "idok"), CLIENT_UNIT);
    Rect client = GetPosition(window, CLIENT_UNIT);
    client.h = ok.y + ok.h + margin;
    SetPosition(window, CLIENT_UNIT, client);
}

std::string collect(const Object& window, const Lines& options, const Lines& before) {
    const int rows = PROPERTYROWS(window);
    int used = 0;
    std::string values;
    for (std::size_t n = 0; n < std::max(options.size(), before.size()); ++n) {
        const bool shown = n < options.size() && !isHidden(options[n]) && used < rows;
        values += shown ? GetText(PROPERTYROW(window, ++used).value) : std::string(lineAt(before, n));
        values += "\n";
    }
    return values;
}

// What is proposed first is replaced by what the user types, as it is in a control that Tab has reached.
void selectFirst(const Object& window) {
    const PropertyRow row = PROPERTYROW(window, 1);
    const auto length = static_cast<int>(GetText(row.value).size());
    if (length > 0) SetSelection(row.value, 1, length);
}

// ---- what the user does ----

void showHelp(const Object& window) {
    if (!GetEnabled(FINDCONTROL(window, "idhelp"))) return Sound();
    MULTIHELP(0, GetCaption(FINDCONTROL(window, "lblhelpfile")), HelpKeyCommand,
              GetCaption(FINDCONTROL(window, "lblhelpkey")));
}

void stepValue(const Object& window, int n, int step) {
    const PropertyRow row = PROPERTYROW(window, n);
    const std::string options = GetText(row.options);
    if (!EXTRAPROPS(options)) return Sound();
    const std::string before = GetText(row.value), after = GETNEXTVALUE(options, before, step);
    if (after != before) SetText(row.value, after);
}

bool key(const Object& window, const Object& control, int code) {
    const int row = PROPERTYROWOF(window, control, "edtvalue1");
    if (row == 0) return false;
    switch (code) {
    case KEY_UP: stepValue(window, row, -1); return true;
    case KEY_DOWN: stepValue(window, row, 1); return true;
    case KEY_F4: CHOOSEPROPERTY(window, PROPERTYROW(window, row)); return true;
    default: return false;
    }
}

bool press(const Object& window, const Object& control) {
    const int row = PROPERTYROWOF(window, control, "btndrop1");
    if (row > 0) {
        CHOOSEPROPERTY(window, PROPERTYROW(window, row));
        return true;
    }
    if (!STREQUAL(GetName(control), "idok")) return false;
    const int failed = CHECKALLVALUES(FINDCONTROL(window, "lblname1"), FINDCONTROL(window, "edtvalue1"),
                                      FINDCONTROL(window, "edtoptions1"));
    if (failed == 0) Hide(window);
    return true;
}

// OK is the sheet's own: what is wrong is told by CHECKALLVALUES.
constexpr DialogShape shape = {.ok = "", .cancel = "idcancel", .help = "idhelp", .showHelp = showHelp};

}  // namespace

bool PROPERTIESDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(PROPERTIESDLG);
    STAMP();
    bool result = false;
    if (event == KEYPRESS_EVENT) result = key(window, control, parameter);
    if (event == COMMAND_EVENT) result = press(window, control);
    if (!result) result = DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}

int CHECKALLVALUES(const Object& labels, const Object& edits, const Object& options) {
    FRAME(CHECKALLVALUES);
    STAMP();
    const int rows = ControlUbound(labels);
    for (int n = 1; n <= rows; ++n) {
        STAMP();
        const Object edit = ControlElement(edits, n);
        if (!GetVisible(edit)) continue;
        const std::string before = GetText(edit);
        std::string value = before;
        const std::string problem = PROPERTYPROBLEM(GetText(ControlElement(options, n)), value);
        if (value != before) SetText(edit, value);
        if (problem.empty()) continue;
        TELLPROPERTYPROBLEM(GetCaption(labels.owner()), GetCaption(ControlElement(labels, n)), problem);
        return n;
    }
    return 0;
}

bool PROPERTIESDIALOG(const std::string& title, const std::string& helpFile, const std::string& helpKey,
                      std::string_view names, std::string_view options, std::string& values) {
    FRAME(PROPERTIESDIALOG);
    STAMP();
    const Object& window = PropertiesDlg;
    RegisterWindow(window, PROPERTIESDLG);
    Load(window);
    STAMP();
    if (!IsLoaded(window)) return false;
    SetCaption(window, title);
    const std::pair<std::string_view, std::string_view> labels[] = {
        {"lbltitle", title}, {"lblhelpfile", helpFile}, {"lblhelpkey", helpKey}};
    for (const auto& [name, text] : labels) SetCaption(FINDCONTROL(window, name), text);
    SetEnabled(FINDCONTROL(window, "idhelp"), !helpFile.empty() && !helpKey.empty());
    STAMP();
    const Lines optionLines = detail::linesOf(options), before = detail::linesOf(values);
    layOut(window, fillRows(window, detail::linesOf(names), optionLines, before));
    STAMP();
    selectFirst(window);
    STAMP();
    Show(window, true);
    STAMP();
    if (!IsLoaded(window)) return false;
    values = collect(window, optionLines, before);
    STAMP();
    Unload(window);
    STAMP();
    return true;
}

}  // namespace tarn
