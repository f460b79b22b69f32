// SPDX-License-Identifier: Apache-2.0
//
// Operations on property lists: the texts of `NAME=value` lines, parted by LF, in which windows, controls and
// menu items are held and changed.
//
// A name is looked up without regard to case and written in upper case; it begins at the start of a line, so
// NAME is never found in SYSNAME. A value reaches from behind the "=" to the next LF or NUL, and nothing is
// trimmed. Of two lines with one name the first counts. Writing replaces a line in its place; a property that
// the list does not hold is never created.
//
// A value may stand in double quotes. GETPROPVALUE takes them off when they stand at both ends (a lone quote
// stays); the readers of numbers and positions, and GETPROPERTYLISTS, take the text as it stands.
//
// None of these operations sets the error cell. What is absent is an empty value, 0 or an unchanged list; a
// control that is no Listbox gives an empty result or -1. Cost: a lookup walks the lines up to the one it
// finds and copies its value alone; the checks of names compare every pair at worst.
#pragma once

#include "kernel/windows/resources.h"
#include "kernel/windows/windowing.h"
#include "library/designer/dlgunits.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn {

// ---- names and values ----

// The names, one a line. A name reaches from the start of a line to the next "=", which may stand on a later
// line.
std::string GETPROPNAMES(std::string_view list);
// With an empty name all values, one a line, in the order of the list.
std::string GETPROPVALUE(std::string_view list, std::string_view name);
// Replaces the value; the line ends with LF then.
void SETPROPVALUE(std::string_view name, std::string_view value, std::string& list);

// The same on two texts of which line n of `values` belongs to line n of `names`. A line counts when it ends
// with LF; the names are whole lines.
std::string GETPROPVALUE(std::string_view name, std::string_view names, std::string_view values);
void SETPROPVALUE(std::string_view name, std::string_view value, std::string_view names, std::string& values);

// The property's value in every entry of a Listbox, one a line.
std::string GETPROPVALUE(const Object& list, std::string_view name);

// Decimal, or hexadecimal behind "0x"; 0 for what is neither or no integer.
int GETPROPINT(std::string_view list, std::string_view name);
void SETPROPINT(std::string_view name, int value, std::string& list);

// ---- positions ----

// A signed decimal at the 1-based position, behind blanks; the position is then behind its last digit. A
// number outside the integers becomes the nearest one.
int GETINT(std::string_view text, std::size_t& position);
// The four numbers of POSITION. A list without that line that begins with a sign or a digit is itself taken
// for the four numbers.
UnitRect GETPROPPOSITION(std::string_view list);
void SETPROPPOSITION(std::string& list, const UnitRect& position);
// The four numbers, parted by blanks.
std::string POSITIONTEXT(const UnitRect& position);
std::string POSITIONTEXT(const Rect& position);

// ---- whole dialogs, as entries of list controls ----

// Entry n and an LF as element n - 1; at most 256 entries.
ObjectArray TSTRINGARRAY(const Object& list);
// All objects as one text, those of `menulist` first: a line "name:type", the properties, "END".
std::string GETPROPERTYLISTS(const Object& datalist, const Object& menulist);
// The first entry of which the property equals `value`, in any case; -1 if there is none or a text is empty.
int SEARCHPROPLIST(const Object& list, std::string_view name, std::string_view value);

// What a check of names found: what to tell the user, and the entry to select.
struct NameFault {
    std::string message;  // empty: nothing was found
    int index = -1;       // 1-based, in its control
    bool second = false;  // it is an entry of the second control
};
// Names of library objects, which a control may not bear.
inline constexpr std::string_view BadNames =
    "Sysclipboard Sysscreen Sysprinter Control Window Printer Screen Clipboard";
// Two objects of one name in the entries of both controls; the first entry of each, the dialog and the menu,
// takes no part. `index` is the entry to check, above 1, in the first control or, with `second`, in the
// second; -1 checks all.
NameFault CHECKDUPLICATES(const Object& first, const Object& last, int index, bool second);
// An object that bears one of `badNames`, which are parted by blanks; all entries take part.
NameFault CHECKBADNAMES(const Object& first, const Object& last, int index, bool second,
                        std::string_view badNames);

// What a type's properties are and may be, one a line; empty for what is no type.
std::string GETOBJECTTYPELIST(const std::string& type);

}  // namespace tarn
