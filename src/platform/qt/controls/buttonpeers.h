// SPDX-License-Identifier: Apache-2.0
//
// What is pressed: push buttons, bitmap buttons, check boxes and radio buttons.
#pragma once

#include "platform/qt/controls/widgets.h"

namespace tarn::platform::qt {

Peer* makePushPeer(Control& control, QWidget* parent);
Peer* makeBitmapButtonPeer(Control& control, QWidget* parent, bool flat);  // `flat`: on a toolbar
Peer* makeCheckPeer(Control& control, QWidget* parent);
Peer* makeRadioPeer(Control& control, QWidget* parent);

}  // namespace tarn::platform::qt
