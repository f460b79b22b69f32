// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the Properties window shows, and where, for the file with its events. The window is open.
#pragma once

#include "ide/designer/properties/propshared.h"
#include "kernel/windows/windowing.h"

#include <string_view>
#include <vector>

namespace tarn {

Object PROPERTYPART(std::string_view name);  // a control of the window
std::vector<int> SHOWNOBJECTS();             // the objects whose properties are shown
int SHOWNROWS();                             // the rows that show a property
// The properties of the objects that have the search in their names.
std::vector<SharedProperty> FOUNDPROPERTIES(const std::vector<int>& objects);
void FILLPROPERTYWINDOW(const std::vector<int>& objects);
void LAYOUTPROPERTYWINDOW();  // the values take what the names leave of the width

}  // namespace tarn
