// SPDX-License-Identifier: Apache-2.0
//
// Pictures by name: a file, or a picture of the application's resources. SVG pictures are drawn anew at each
// size and pixel ratio; those that speak of `currentColor` take the palette's text colour, so that a change
// of the palette needs no new icon. Cost: a name is read once; a size is drawn once for each colour.
#pragma once

#include <QIcon>
#include <QPixmap>

#include <string>
#include <string_view>

namespace tarn::platform::qt {

// The null icon if there is no such picture.
QIcon iconOf(const std::string& picture);
// At that size in device-independent pixels: a bitmap is stretched where its proportions differ, an SVG keeps
// its own. Null if there is none.
QPixmap pictureScaled(const std::string& picture, const QSize& size, qreal ratio);
// The picture at its own size, as a file of a format of the toolkit ("PNG"); empty if that cannot be done.
std::string encodedPicture(const std::string& picture, const std::string& format);
QSize measuredSize(std::string_view bytes);  // of an image file; empty if it is none

// A file; one of the same name with the extension ".svg" beside it goes before it, since it is sharp at any
// scale.
QIcon iconOfFile(const std::string& file);

}  // namespace tarn::platform::qt
