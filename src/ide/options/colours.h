// SPDX-License-Identifier: GPL-3.0-or-later
//
// The colours of highlighting as the user chooses them: a list box of named colours and a group of radio buttons
// (normal, bold, italic) for each setting of a section "Hilite" of the settings, such as "0x800000 BOLD". A colour is
// 0xBBGGRR. A setting whose colour has no name gets a row of its own, so that it is not lost by being looked at; one
// that is both bold and italic shows as bold, and stays as it is until the user chooses anew.
//
// `radio` is any button of its group.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>

namespace tarn {

// The rows: a name with its colour as the picture. Rows that are there go.
void ADDCOLORITEMS(const Object& list);
// What the controls say, as a setting; "0" while no colour is selected.
std::string HILITEVALUESTOSTR(const Object& list, const Object& radio);
// Shows a setting, and keeps its text as the caption of `label`. A key that is absent selects no colour.
void LOADHILITEVALUES(const std::string& file, std::string_view section, std::string_view key,
                      const Object& list, const Object& radio, const Object& label);
// Whether the controls say another colour or style than the text in `label`.
bool HILITEVALUESCHANGED(const Object& list, const Object& radio, const Object& label);
void SAVEHILITEVALUES(const std::string& file, std::string_view section, std::string_view key,
                      const Object& list, const Object& radio);

}  // namespace tarn
