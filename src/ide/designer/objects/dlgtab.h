// SPDX-License-Identifier: GPL-3.0-or-later
//
// The order of the controls, which is that of the Tab key, of the list and of what lies on top, and the way to change it by
// clicks: while it is on, controls show their numbers; the first that is clicked becomes the first, and so on. What was not
// clicked follows in its old order. Nothing changes until it ends, which is one step.
//
// State: the label `taborder`, empty while it is off: the number of objects at its beginning, then what was clicked.
#pragma once

#include <vector>

namespace tarn {

bool TABORDERISON();
void TABORDERBEGIN();
void TABORDERCLICK(int index);   // the last one that was clicked gives its number back
void TABORDEREND();              // makes the new order; none if objects have come or gone meanwhile
std::vector<int> TABORDERNOW();  // all controls as the clicks so far would have them
std::size_t TABORDERCHOSEN();    // how many of them were clicked

// Puts the controls into an order, which holds each of their indexes once. One step; selection and locks go along.
void REORDERCONTROLS(const std::vector<int>& order);

}  // namespace tarn
