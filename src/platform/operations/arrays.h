// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: control arrays, which are controls with one array name and an index from 1, and the
// menu items that come and go in them. 707 for a control that is in no array. Cost: linear in the controls of
// the window.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

Answer<std::string> Controlarray(const Object& element);  // the name of the array
Answer<int> Controlarraypos(const Object& element);       // the index of the element
Answer<int> ControlLbound(const Object& element);         // always 1
Answer<int> ControlUbound(const Object& element);         // how many elements there are
Object ControlElement(const Object& element, int index);  // another element; empty outside the bounds
// The set radio button of the array; an empty object, and the position 0, if none is set.
Answer<Object> Controlselection(const Object& element);
Answer<int> Controlselectionpos(const Object& element);

// Each new item stands behind `after` (and what hangs below it) and belongs to its array; its number is the
// next free one. Only for menu items of an array: 707.
Code AddMenuitem(const Object& after, std::string_view caption);
Code AddMenuitems(const Object& after, std::string_view captions);  // one for each line
Code RemoveMenuitem(const Object& item);
Code RemoveMenuitems(const Object& first, const Object& last);  // of one array, both included

}  // namespace tarn::platform
