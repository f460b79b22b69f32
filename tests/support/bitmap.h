// SPDX-License-Identifier: Apache-2.0
//
// The bytes of a BMP file of one colour, 24 bits a pixel.
#pragma once

#include <string>

namespace tarn {

inline std::string littleEndian(unsigned value, int bytes) {
    std::string out;
    for (int i = 0; i < bytes; i++) out += static_cast<char>(value >> 8 * i & 0xFF);
    return out;
}

// Colour: 0xRRGGBB.
inline std::string bitmap(int width, int height, unsigned colour) {
    const int row = (width * 3 + 3) / 4 * 4;
    const auto size = static_cast<unsigned>(row * height);
    std::string out = "BM" + littleEndian(54 + size, 4) + littleEndian(0, 4) + littleEndian(54, 4);
    out += littleEndian(40, 4) + littleEndian(static_cast<unsigned>(width), 4) +
           littleEndian(static_cast<unsigned>(height), 4) + littleEndian(1, 2) + littleEndian(24, 2) +
           littleEndian(0, 4) + littleEndian(size, 4) + std::string(16, '\0');
    std::string line;
    for (int x = 0; x < width; x++) line += littleEndian(colour, 3);
    line.resize(static_cast<std::size_t>(row));
    for (int y = 0; y < height; y++) out += line;
    return out;
}

}  // namespace tarn
