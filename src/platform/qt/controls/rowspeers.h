// SPDX-License-Identifier: Apache-2.0
//
// Lists of rows that are one text each, and combo boxes. The rows are read where they stand, in the control; many that come
// at once are measured once. Cost: a view asks for the rows that it shows.
#pragma once

#include "platform/qt/controls/widgets.h"

namespace tarn::platform::qt {

Peer* makeRowsPeer(Control& control, QWidget* parent);
Peer* makeComboPeer(Control& control, QWidget* parent);

}  // namespace tarn::platform::qt
