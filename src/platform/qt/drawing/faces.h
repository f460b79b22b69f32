// SPDX-License-Identifier: Apache-2.0
//
// Faces of buttons: a picture above a text, drawn anew at each size and scale in the desktop's colours.
#pragma once

#include "platform/model/pictures.h"

#include <QByteArray>
#include <QIcon>

namespace tarn::platform::qt {

QIcon faceOf(const PictureSource& face);
QIcon iconOfBytes(const QByteArray& bytes);  // of an image file; see pictures.h

}  // namespace tarn::platform::qt
