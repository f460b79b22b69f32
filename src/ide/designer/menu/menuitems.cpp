// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/menu/menuitems.h"

#include "ide/shell/windows.h"
#include "kernel/windows/resources.h"
#include "library/designer/propedit.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"

#include <algorithm>
#include <iterator>

MODULE("dlgedit2")

namespace tarn {
namespace {

constexpr int deepest = 11;
constexpr std::string_view indent = "...", separatorLine = "-----";

Object part(std::string_view name) {
    return FINDCONTROL(MenuEditDlg, name);
}
Object rows() {
    return part("listbox1");
}
Object data() {
    return part("data1");
}
int rowCount() {
    return GetListCount(data());
}
bool exists(int row) {
    return row >= 1 && row <= rowCount();
}

int levelOf(std::string_view list) {
    return GETPROPPOSITION(list).x;
}
// An item without a caption and a name; one that is drawn as a line by its caption needs no name either.
bool isLine(std::string_view caption) {
    return !caption.empty() && caption.find_first_not_of('-') == std::string_view::npos;
}
bool isSeparator(std::string_view list) {
    const std::string caption = STRTRIM(GETPROPVALUE(list, "CAPTION"));
    return isLine(caption) || (caption.empty() && GETPROPVALUE(list, "NAME").empty());
}

// An item that was written by hand may lack the line, which is then added.
void put(std::string_view name, const std::string& value, std::string& list) {
    SETPROPVALUE(name, value, list);
    if (STRFIND("\n" + std::string(name) + "=", "\n" + list) > 0) return;
    if (!list.empty() && list.back() != '\n') list += '\n';
    list.append(name).append("=").append(value).append("\n");
}

void putLevel(int level, std::string& list) {
    put("POSITION", STR(level), list);
}

// The row in both lists.
void setRow(int row, const std::string& list) {
    SetList(data(), row, list);
    SetList(rows(), row, PROPLISTTOLISTITEM(list));
}

void note(const char* action, int row) {
    SetCaption(part("label5"), action + STR(row));
    SetChecked(part("checkbox1"), true);
}

// The properties that are shown; what an item does not tell has the value that it means then.
constexpr struct Field {
    const char *edit, *property, *missing;
} fields[] = {
    {"edit1", "CAPTION", ""}, {"edit2", "CHECKED", "0"}, {"edit3", "ENABLED", "1"}, {"edit4", "NAME", ""}};

std::string valueOf(const Field& field, std::string_view list) {
    const std::string value = GETPROPVALUE(list, field.property);
    return value.empty() ? field.missing : value;
}

void tell(const std::string& text) {
    MSGBOX(GetCaption(MenuEditDlg), text);
}

}  // namespace

std::string STRDELCHARS(std::string_view text, std::string_view characters) {
    std::string rest(text);
    std::erase_if(rest, [&](char c) { return characters.find(c) != std::string_view::npos; });
    return rest;
}

// ---- showing ----

std::string PROPLISTTOLISTITEM(std::string_view list) {
    if (!MENUITEMVIEW) return std::string(list);
    std::string shown;
    for (int level = std::min(levelOf(list), MAX_CONTROLS); level > 1; --level) shown += indent;
    const std::string caption = GETPROPVALUE(list, "CAPTION");
    const bool separator = caption.empty() && GETPROPVALUE(list, "NAME").empty();
    return shown.append(separator ? separatorLine : caption);
}

void SETMENUINFO(const Object& listbox, const Object& dataList, const std::vector<std::string>& items) {
    FRAME(SETMENUINFO);
    STAMP();
    Clear(listbox);
    Clear(dataList);
    for (std::size_t n = 1; n < items.size(); ++n) {
        STAMP();
        AddItem(dataList, items[n]);
        AddItem(listbox, PROPLISTTOLISTITEM(items[n]));
    }
    STAMP();
}

void GETMENUINFO(const Object&, const Object& dataList, std::vector<std::string>& items) {
    FRAME(GETMENUINFO);
    STAMP();
    items.resize(1);
    const int count = GetListCount(dataList);
    for (int row = 1; row <= count; ++row) {
        STAMP();
        items.push_back(GetList(dataList, row) + "\n");
    }
    STAMP();
}

void SHOWMENUITEMPROPS(int row) {
    FRAME(SHOWMENUITEMPROPS);
    STAMP();
    const std::string list = exists(row) ? GetList(data(), row) : std::string();
    for (const Field& field : fields) SetText(part(field.edit), valueOf(field, list));
    STAMP();
}

void SELECTMENUITEM(int row) {
    FRAME(SELECTMENUITEM);
    STAMP();
    SetListIndex(rows(), row);
    SetCaption(part("label6"), STR(row));
    STAMP();
}

// ---- checking and storing ----

namespace {

// An item is one line of text for each property.
std::string entered(std::string_view edit) {
    std::string text = GetText(part(edit));
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\n' || c == '\0'; }, ' ');
    return STRTRIM(text);
}

std::string enteredSwitch(std::string_view edit) {
    const std::string text = entered(edit);
    return text == "1" ? text : "0";
}

// Another row with that name, in any case. The row itself may hide it from a search from the first row on.
bool isTaken(const std::string& name, int row) {
    const int first = SEARCHPROPLIST(data(), "NAME", name);
    if (first != row) return first > 0;
    for (int other = row + 1; other <= rowCount(); ++other)
        if (STREQUAL(GETPROPVALUE(GetList(data(), other), "NAME"), name)) return true;
    return false;
}

constexpr std::size_t LongestName = 40;  // characters of an identifier

std::string faultOf(const MenuItemCheck& item, int row) {
    const std::string head = "The following Name property is not allowed:\n\n\t'" + item.name + "'\n\n";
    constexpr const char* again = "\nPlease fix up the Name property, then try again.";
    if (isLine(item.caption)) return {};
    if (!item.name.empty() && !ISSYMBOLSTR(item.name))
        return head + "Names should start with a letter and contain letters, digits or the underscore." +
               again;
    if (item.name.size() > LongestName)
        return head + "A name can have at most " + STR(static_cast<int>(LongestName)) + " characters." +
               again;
    if (!item.name.empty() && isTaken(item.name, row))
        return head + "It is already being used for another menu item." + again;
    if (item.caption.empty() && !item.name.empty())
        return "This menu item is not valid. It should have a Caption property.";
    return {};
}

// A caption stands in quotes, so that its own stay its own.
void putValues(const MenuItemCheck& item, std::string& list) {
    const std::string values[] = {"\"" + item.caption + "\"", item.checked, item.enabled, item.name};
    for (std::size_t n = 0; n < std::size(fields); ++n) put(fields[n].property, values[n], list);
}

bool differs(const MenuItemCheck& item, std::string_view list) {
    const std::string* const values[] = {&item.caption, &item.checked, &item.enabled, &item.name};
    for (std::size_t n = 0; n < std::size(fields); ++n)
        if (STRTRIM(valueOf(fields[n], list)) != *values[n]) return true;
    return false;
}

}  // namespace

MenuItemCheck CHECKMENUITEMPROPS(int row) {
    FRAME(CHECKMENUITEMPROPS);
    STAMP();
    MenuItemCheck item{entered("edit1"), enteredSwitch("edit2"), enteredSwitch("edit3"), entered("edit4")};
    const std::string fault = faultOf(item, row);
    item.ok = fault.empty();
    STAMP();
    if (!item.ok) tell(fault);
    STAMP();
    return item;
}

bool STOREMENUITEMPROPS(int row) {
    FRAME(STOREMENUITEMPROPS);
    STAMP();
    if (!exists(row)) return true;
    const MenuItemCheck item = CHECKMENUITEMPROPS(row);
    STAMP();
    if (!item.ok) return false;
    std::string list = GetList(data(), row);
    if (!differs(item, list)) return true;
    note("Updating ", row);
    putValues(item, list);
    setRow(row, list);
    STAMP();
    return true;
}

// ---- the commands ----

void ADDMENUITEMPROPS(int row) {
    FRAME(ADDMENUITEMPROPS);
    STAMP();
    if (rowCount() >= MAX_CONTROLS)
        return tell("Cannot add a menu item, this menu has too many items.\nThe maximum number allowed is " +
                    STR(MAX_CONTROLS) + ".");
    const MenuItemCheck item = CHECKMENUITEMPROPS(-1);
    STAMP();
    if (!item.ok) return;
    const bool before = exists(row);
    const int at = before ? row : rowCount() + 1;
    std::string list = GETOBJECTDEFAULTS("Menuitem");
    putValues(item, list);
    putLevel(before ? levelOf(GetList(data(), row)) : 1, list);
    STAMP();
    AddItem(data(), at, list);
    AddItem(rows(), at, PROPLISTTOLISTITEM(list));
    note("Adding ", at);
    SELECTMENUITEM(at);
    STAMP();
}

void DELETEMENUITEMPROPS(int row) {
    FRAME(DELETEMENUITEMPROPS);
    STAMP();
    if (!exists(row)) return Sound();
    RemoveItem(data(), row);
    RemoveItem(rows(), row);
    note("Deleting ", row);
    STAMP();
    const int next = std::min(row, rowCount());
    SELECTMENUITEM(next);
    SHOWMENUITEMPROPS(next);
    STAMP();
}

namespace {

void swapRows(int row, int other) {
    const std::string list = GetList(data(), row), otherList = GetList(data(), other);
    setRow(row, otherList);
    setRow(other, list);
    note("Moving ", row);
    SELECTMENUITEM(other);
}

void moveUp(int row) {
    if (row == 1) return Sound();
    swapRows(row, row - 1);
}
void moveDown(int row) {
    if (row == rowCount()) return Sound();
    swapRows(row, row + 1);
}

void setLevel(int row, int level, const char* action) {
    std::string list = GetList(data(), row);
    putLevel(level, list);
    setRow(row, list);
    note(action, row);
}

void indentRow(int row) {
    const int level = levelOf(GetList(data(), row));
    if (level >= deepest) return Sound();
    setLevel(row, level + 1, "Indenting ");
}
void unindentRow(int row) {
    const int level = levelOf(GetList(data(), row));
    if (level < 2) return Sound();
    setLevel(row, level - 1, "Unindenting ");
}

constexpr struct {
    std::string_view caption;
    void (*move)(int row);
} moves[] = {{"MOVE UP", moveUp}, {"MOVE DOWN", moveDown}, {"INDENT", indentRow}, {"UNINDENT", unindentRow}};

}  // namespace

void MOVEMENUITEMPROPS(int row, std::string_view caption) {
    FRAME(MOVEMENUITEMPROPS);
    STAMP();
    SetCaption(part("label5"), "");
    if (!exists(row)) return Sound();
    const std::string wanted = STRUPPER(STRDELCHARS(caption, "&"));
    STAMP();
    for (const auto& one : moves)
        if (one.caption == wanted) one.move(row);
    STAMP();
}

// ---- the tree ----

namespace {

std::vector<std::string> itemsOf(const Object& dataList) {
    std::vector<std::string> items;
    const int count = GetListCount(dataList);
    for (int row = 1; row <= count; ++row) items.push_back(GetList(dataList, row));
    return items;
}

// No item may be more than one level below the one before it. What hangs below an item that is pulled back follows.
void repair(std::vector<int>& levels) {
    int last = 0;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const int level = std::max(levels[i], 1), excess = level - last - 1;
        levels[i] = level;
        if (excess > 0) {
            levels[i] -= excess;
            for (std::size_t below = i + 1; below < levels.size() && levels[below] > level; ++below)
                levels[below] -= excess;
        }
        last = levels[i];
    }
}

// The levels as they are then.
std::vector<int> repairRows(const std::vector<std::string>& items) {
    std::vector<int> levels;
    for (const std::string& item : items) levels.push_back(levelOf(item));
    repair(levels);
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (levels[i] == levelOf(items[i])) continue;
        std::string list = items[i];
        putLevel(levels[i], list);
        setRow(static_cast<int>(i) + 1, list);
        SetChecked(part("checkbox1"), true);
    }
    return levels;
}

// The first row that needs a name and has none; 0 if there is none.
int nameless(const std::vector<std::string>& items, const std::vector<int>& levels) {
    for (std::size_t i = 0; i < items.size(); ++i) {
        const bool popup = i + 1 < items.size() && levels[i + 1] > levels[i];
        if (!popup && !isSeparator(items[i]) && GETPROPVALUE(items[i], "NAME").empty())
            return static_cast<int>(i) + 1;
    }
    return 0;
}

}  // namespace

bool PROCESSMENUITEMPROPS(const Object& dataList) {
    FRAME(PROCESSMENUITEMPROPS);
    STAMP();
    const std::vector<std::string> items = itemsOf(dataList);
    const int row = nameless(items, repairRows(items));
    STAMP();
    if (row == 0) return true;
    tell("The following Menuitem does not have a name:\n\n\t'" +
         GETPROPVALUE(items[static_cast<std::size_t>(row - 1)], "CAPTION") +
         "'\n\nPlease choose a name for this Menuitem. All Menuitems must have a name,\n"
         "except for separators and menuitems that lead to popup menus.");
    STAMP();
    SELECTMENUITEM(row);
    SHOWMENUITEMPROPS(row);
    STAMP();
    return false;
}

}  // namespace tarn
