// SPDX-License-Identifier: Apache-2.0
//
// Controls that hold a text: one line, several lines, an edit window. The text stands in the widget alone
// (textstores.h).
#pragma once

#include "platform/qt/controls/widgets.h"

namespace tarn::platform::qt {

Peer* makeLinePeer(Control& control, QWidget* parent);
// Of an edit window: what stands in for it where its component cannot be loaded.
Peer* makeLinesPeer(Control& control, QWidget* parent);
Peer* makeEditAreaPeer(Control& control, QWidget* parent);

}  // namespace tarn::platform::qt
