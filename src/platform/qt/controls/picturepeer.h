// SPDX-License-Identifier: Apache-2.0
//
// Shapes, icons and images.
#pragma once

#include "platform/qt/controls/widgets.h"

namespace tarn::platform::qt {

Peer* makePicturePeer(Control& control, QWidget* parent);

}  // namespace tarn::platform::qt
