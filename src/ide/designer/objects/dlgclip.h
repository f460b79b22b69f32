// SPDX-License-Identifier: GPL-3.0-or-later
//
// Cut, copy, paste and duplicate of the controls that are selected in the dialog editor. The dialog itself and its menu are
// not copied.
//
// Pasted controls lie on top, are selected, and keep their names where these are free; else they get the next free one, and
// members of an array that was pasted with its first control follow that one's name. They keep their distances, stay inside
// the dialog as far as it has room, and move by a step of the grid from where another control stands exactly. Only one
// button of a dialog is its default one: that which was there.
//
// Cut, Paste and Duplicate are one step of undo each. What is not possible beeps, and tells why in the status line and the
// hint of the window; that a dialog has too many controls, or takes none, is told as ADDOBJECT tells it. Nothing is pasted
// in part.
// Cost: that of the texts, twice, and a redraw.
#pragma once

namespace tarn {

void DIALOGCUT();
void DIALOGCOPY();
void DIALOGPASTE();
void DIALOGDUPLICATE();

}  // namespace tarn
