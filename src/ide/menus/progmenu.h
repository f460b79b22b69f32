// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Program menu. What its commands do stands in ide/program/members.
#pragma once

namespace tarn {

void DO_ADD_CLASS();
void DO_ADD_RCFILE();
void DO_ADD_DIALOG();
void DO_ADD_FILE();
void DO_EDIT_PROPERTIES();
void DO_REFRESH();
void DO_REMOVE_FILE();
void DO_SHOW_INPUT();
void DO_SHOW_OUTPUT();
void DO_COPY_EXE();

}  // namespace tarn
