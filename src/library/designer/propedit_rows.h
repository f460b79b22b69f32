// SPDX-License-Identifier: Apache-2.0
//
// The rows in which a window shows properties: five control arrays with one member for each row, named by their first
// members.
//
//   lblname1     the name                         edtoptions1   the options text (hidden)
//   edtvalue1    the value                        linerow1      the line below
//   btndrop1     opens what there is to choose from
//
// shpframe stands around the rows, shpcolumn1 and shpcolumn2 between their columns. Rows count from 1. Errors of the
// windowing operations stay in the cell for the caller's stamp. Cost: a look-up of five controls for each row.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>

namespace tarn {

struct PropertyRow {
    Object name, value, drop, options, line;
};
PropertyRow PROPERTYROW(const Object& window, int row);
int PROPERTYROWS(const Object& window);  // how many there are
// The row that has the control as its member of an array; 0 if none has.
int PROPERTYROWOF(const Object& window, const Object& control, std::string_view array);

// The value as a sheet shows it: in the form of the list that it is from; one that the options do not allow as their
// default.
std::string SHOWNPROPERTY(std::string_view options, std::string_view value);
// The value in the form in which it is stored, and what is wrong with it; empty if nothing is.
std::string PROPERTYPROBLEM(std::string_view options, std::string& value);
void TELLPROPERTYPROBLEM(const std::string& title, const std::string& name, const std::string& problem);

// Shows a property in a row. `shown` comes from SHOWNPROPERTY.
void FILLPROPERTYROW(const PropertyRow& row, std::string_view name, std::string_view options,
                     std::string_view shown);
void HIDEPROPERTYROW(const PropertyRow& row);
// Makes the frame and the dividers reach to the last of so many rows; the pixel of the client area below it.
int FRAMEPROPERTYROWS(const Object& window, int rows);
// Opens what stands behind the drop button, below the value. Beeps where there is nothing to choose from.
void CHOOSEPROPERTY(const Object& window, const PropertyRow& row);

}  // namespace tarn
