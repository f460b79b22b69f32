// SPDX-License-Identifier: Apache-2.0
//
// Icon lists whose rows hold columns (USETABSTOPS): a grid with the control's caption as its title line. TAB
// parts the columns of both.
#pragma once

#include "platform/qt/controls/widgets.h"

namespace tarn::platform::qt {

// Rows are cut into cells when they are painted, so 100,000 rows cost no more than a hundred. Each column is
// as wide as its title and its widest cell among some hundred rows, within limits; the user may change that.
Peer* makeGridPeer(Control& control, QWidget* parent);

}  // namespace tarn::platform::qt
