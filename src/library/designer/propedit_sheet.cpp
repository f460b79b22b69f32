// SPDX-License-Identifier: Apache-2.0
//
// The property sheet.
#include "library/designer/propedit_sheet.h"

#include "library/designer/propedit.h"
#include "library/designer/propedit_options_internal.h"
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

constexpr std::string_view rowParts[] = {"lblname1", "edtvalue1", "btndrop1", "edtoptions1", "linerow1"};

struct Row {
    Object name, value, drop, options, line;
    Row(const Object& window, int n) {
        Object* const parts[] = {&name, &value, &drop, &options, &line};
        for (std::size_t i = 0; i < std::size(parts); ++i)
            *parts[i] = ControlElement(FINDCONTROL(window, rowParts[i]), n);
    }
};

int rowsOf(const Object& window) {
    return ControlUbound(FINDCONTROL(window, rowParts[0]));
}

bool isHidden(std::string_view options) {
    return detail::Options(options).is("HIDDEN");
}

std::string_view lineAt(const Lines& lines, std::size_t n) {
    return n < lines.size() ? lines[n] : std::string_view();
}

// ---- filling ----

// The value as the sheet shows it.
std::string shownValue(std::string_view options, std::string_view value) {
    const std::string shown = GETNEXTVALUE(options, value, 0);
    const ValueCheck check = CHECKVALUE(options, shown);
    return check.message.empty() ? shown : GETNEXTVALUE(options, check.fallback, 0);
}

void fillRow(const Row& row, std::string_view name, std::string_view options, std::string_view value) {
    const LengthLimits limits = GETMINMAX(options);
    const bool limited = STRUPPER(name).starts_with("NAME") && limits.found;
    SetCaption(row.name, name);
    SetText(row.options, options);
    SetText(row.value, shownValue(options, value));
    SetMaxLength(row.value, limited ? limits.maximum : 0);
    SetEnabled(row.value, !detail::Options(options).is("CONST"));
    const bool drops = EXTRAPROPS(options);
    if (drops) SetPicture(row.drop, "droparrow");
    SetVisible(row.drop, drops);
}

void hideRow(const Row& row) {
    for (const Object& part : {row.name, row.value, row.drop, row.line}) SetVisible(part, false);
}

// The number of rows that are shown.
int fillRows(const Object& window, const Lines& names, const Lines& options, const Lines& values) {
    const int rows = rowsOf(window);
    int used = 0;
    for (std::size_t n = 0; n < options.size() && used < rows; ++n)
        if (!isHidden(options[n]))
            fillRow(Row(window, ++used), lineAt(names, n), options[n], lineAt(values, n));
    for (int n = used + 1; n <= rows; ++n) hideRow(Row(window, n));
    return used;
}

// The frame and the dividers reach to the last row, the buttons stand below it, and the window ends there.
void layOut(const Object& window, int rows) {
    const Rect top = GetPosition(FINDCONTROL(window, "shpframe"), CLIENT_UNIT);
    int bottom = top.y;
    if (rows > 0) {
        const Rect line = GetPosition(Row(window, rows).line, CLIENT_UNIT);
        bottom = line.y + line.h;
    }
    for (const std::string_view name : {"shpframe", "shpcolumn1", "shpcolumn2"}) {
        Rect at = GetPosition(FINDCONTROL(window, name), CLIENT_UNIT);
        at.h = bottom - at.y;
        SetPosition(FINDCONTROL(window, name), CLIENT_UNIT, at);
    }
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
    const int rows = rowsOf(window);
    int used = 0;
    std::string values;
    for (std::size_t n = 0; n < std::max(options.size(), before.size()); ++n) {
        const bool shown = n < options.size() && !isHidden(options[n]) && used < rows;
        values += shown ? GetText(Row(window, ++used).value) : std::string(lineAt(before, n));
        values += "\n";
    }
    return values;
}

// ---- what the user does ----

void showHelp(const Object& window) {
    if (!GetEnabled(FINDCONTROL(window, "idhelp"))) return Sound();
    MULTIHELP(0, GetCaption(FINDCONTROL(window, "lblhelpfile")), HelpKeyCommand,
              GetCaption(FINDCONTROL(window, "lblhelpkey")));
}

// The row of a value edit or drop button; 0 for any other control.
int rowOf(const Object& window, const Object& control, std::string_view part) {
    if (control.isWindow()) return 0;
    const Object first = FINDCONTROL(window, part);
    for (int n = rowsOf(window); n > 0; --n)
        if (ControlElement(first, n) == control) return n;
    return 0;
}

void stepValue(const Object& window, int n, int step) {
    const Row row(window, n);
    const std::string options = GetText(row.options);
    if (!EXTRAPROPS(options)) return Sound();
    const std::string before = GetText(row.value), after = GETNEXTVALUE(options, before, step);
    if (after != before) SetText(row.value, after);
}

// Opens what stands behind the drop button, under the value.
void choose(const Object& window, int n) {
    const Row row(window, n);
    const Rect client = GetPosition(window, CLIENT_UNIT), edit = GetPosition(row.value, CLIENT_UNIT);
    const std::string before = GetText(row.value);
    std::string value = before;
    const bool has = EXTRAPROPS(GetText(row.options), window, client.x + edit.x, client.y + edit.y + edit.h,
                                GetCaption(row.name) + " Property", value);
    if (!has) Sound();
    if (value != before) SetText(row.value, value);
}

bool key(const Object& window, const Object& control, int code) {
    const int row = rowOf(window, control, "edtvalue1");
    if (row == 0) return false;
    switch (code) {
    case KEY_UP: stepValue(window, row, -1); return true;
    case KEY_DOWN: stepValue(window, row, 1); return true;
    case KEY_F4: choose(window, row); return true;
    default: return false;
    }
}

bool press(const Object& window, const Object& control) {
    const int row = rowOf(window, control, "btndrop1");
    if (row > 0) {
        choose(window, row);
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
        const std::string text = GetText(ControlElement(options, n)), before = GetText(edit);
        const std::string value = detail::normalValue(text, before);
        if (value != before) SetText(edit, value);
        const std::string message = CHECKVALUE(text, value).message;
        if (message.empty()) continue;
        MSGBOX(GetCaption(labels.owner()), "There is a problem with the '" +
                                               GetCaption(ControlElement(labels, n)) + "' property.\n" +
                                               message);
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
