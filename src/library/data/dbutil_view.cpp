// SPDX-License-Identifier: Apache-2.0
//
// The window with the rows of a table.
#include "kernel/tables/tables.h"
#include "library/data/dbutil_grid.h"
#include "library/data/dbutil_layout_internal.h"
#include "library/data/dbutil_windows.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dbutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

// The titles with blanks behind them as far as their columns are to be wide.
std::string widened(const std::vector<std::string>& titles, std::string_view widths) {
    std::string texts(widths), line;
    for (char& c : texts) c = c == ',' || c == '\t' ? ' ' : c;
    int column = 0;
    for (const std::string& title : titles) {
        if (column > 0) line += '\t';
        line += title;
        bool ok = false;
        const int width = CVTI(STRTRIM(STRWORD(texts, ++column)), ok);
        constexpr int widest = 1000;
        const int blanks = std::min(ok ? width : 0, widest) - static_cast<int>(title.size());
        line.append(static_cast<std::size_t>(std::max(blanks, 0)), ' ');
    }
    return line;
}

void layOutView(const Object& window) {
    detail::layOutList(window, "idok", "idcancel");
    detail::stretchToMargin(window, "lblrows");
}

bool viewButton(const Object& window, const std::string& name) {
    if (STREQUAL(name, "idok"))
        Hide(window);
    else if (STREQUAL(name, "idcancel"))
        Unload(window);
    else
        return false;
    return true;
}

// A row is picked by Return and by a double click; a window that only shows has no button for it.
bool pick(const Object& window) {
    const Object button = FINDCONTROL(window, "idok");
    if (!GetVisible(button)) return false;
    if (GetListIndex(FINDCONTROL(window, "iconlist1")) > 0) Hide(window);
    return true;
}

void prepareView(const Object& window, const std::string& caption) {
    if (caption.empty()) return;
    SetCaption(window, caption);
    SetVisible(FINDCONTROL(window, "idok"), false);
    SetCaption(FINDCONTROL(window, "idcancel"), "Close");
}

void fillView(const Object& window, const std::string& columnTitle, std::string_view widths,
              const TableDescriptor* table) {
    const Object list = FINDCONTROL(window, "iconlist1"), count = FINDCONTROL(window, "lblrows");
    const bool whole = FILLLISTBOX(list, false, 1, columnTitle, table);
    const std::vector<std::string> titles = GETCOLUMNPOSITIONS(list);
    SetCaption(list, widened(titles, widths));
    const std::string all = detail::countText(TableCount(table), static_cast<int>(titles.size()));
    SetCaption(count, whole ? all : all + ", of which the first " + STR(GetListCount(list)) + " are shown");
}

}  // namespace

bool TABLEVIEWDLG(const Object& window, int event, const Object& control, int) {
    FRAME(TABLEVIEWDLG);
    STAMP();
    bool result = true;
    switch (event) {
    case LOAD_EVENT: detail::limitSize(window, 50); break;
    case RESIZE_EVENT: layOutView(window); break;
    case COMMAND_EVENT: result = viewButton(window, GetName(control)); break;
    case DBLCLICK_EVENT: result = pick(window); break;
    default: result = false;
    }
    STAMP();
    return result;
}

TableViewChoice TABLEVIEWDIALOG(const Object&, const std::string& columnTitle, std::string_view columnWidths,
                                const TableDescriptor* table, const std::string& caption) {
    FRAME(TABLEVIEWDIALOG);
    TableViewChoice choice;
    STAMP();
    RegisterWindow(TableViewDlg, TABLEVIEWDLG);
    Load(TableViewDlg);
    STAMP();
    if (!IsLoaded(TableViewDlg)) return choice;
    prepareView(TableViewDlg, caption);
    fillView(TableViewDlg, columnTitle, columnWidths, table);
    STAMP();
    Show(TableViewDlg, true);
    STAMP();
    if (!IsLoaded(TableViewDlg)) return choice;
    const Object list = FINDCONTROL(TableViewDlg, "iconlist1");
    choice.rowNumber = GetListIndex(list);
    choice.selected = choice.rowNumber > 0;
    if (choice.selected) choice.result = GetList(list, choice.rowNumber);
    STAMP();
    Unload(TableViewDlg);
    STAMP();
    return choice;
}

}  // namespace tarn
