// SPDX-License-Identifier: Apache-2.0
//
// Pictures by name: a file, or a picture of the application's resources. SVG pictures are drawn anew at each
// size and pixel ratio; those that speak of `currentColor` take the palette's text colour, so that a change
// of the palette needs no new icon. Cost: a name is read once; a size is drawn once for each colour.
#pragma once

#include <QIcon>
#include <QPixmap>

#include <string>

namespace tarn::platform::qt {

// The null icon if there is no such picture.
QIcon iconOf(const std::string& picture);
// A file; one of the same name with the extension ".svg" beside it goes before it, since it is sharp at any
// scale.
QIcon iconOfFile(const std::string& file);
// The picture at its own size in device-independent pixels, drawn for `ratio`; pure magenta is transparent.
QPixmap pictureOfFile(const std::string& file, qreal ratio);

}  // namespace tarn::platform::qt
