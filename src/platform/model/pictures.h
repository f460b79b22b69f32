// SPDX-License-Identifier: Apache-2.0
//
// The pictures that the program has loaded or built, for views: where what stands behind a name comes from.
// Equal pictures are kept once, until the program ends.
#pragma once

#include "platform/object.h"

#include <string>
#include <string_view>

namespace tarn::platform {

struct PictureSource {
    std::string bytes;  // of a file; empty for a button's face
    // A face: its size, its text, and the bytes of the picture above it (empty: none).
    int width = 0, height = 0;
    std::string text, icon;
    bool face = false;
};

// What stands behind a name that PictureName made; null for any other name.
const PictureSource* pictureSource(std::string_view name);
// The size that the head of a BMP, PNG, ICO or SVG tells; 0 x 0 for other formats.
Picture measuredPicture(std::string_view bytes);

}  // namespace tarn::platform
