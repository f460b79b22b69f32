// SPDX-License-Identifier: Apache-2.0
//
// The text encoder: texts hidden by a key, and bytes as letters or hexadecimal digits and back. What is read
// back may hold anything between the letters or digits; no text is refused. Cost: linear.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// A mode is 1, -1, or four characters, the first in the low byte.
constexpr std::int32_t TransformMode(std::string_view word) {
    std::uint32_t mode = 0;
    for (std::size_t i = word.size(); i > 0; --i) mode = mode << 8 | static_cast<unsigned char>(word[i - 1]);
    return static_cast<std::int32_t>(mode);
}
inline constexpr std::int32_t TransformHide = 1, TransformShow = -1;
inline constexpr std::int32_t TransformToBase64 = TransformMode("B64X");
inline constexpr std::int32_t TransformFromBase64 = TransformMode("B64D");
inline constexpr std::int32_t TransformToHex = TransformMode("HEXX");
inline constexpr std::int32_t TransformFromHex = TransformMode("HEXD");

//   1       each byte plus that of the key at the same position, modulo 256; the key repeats, and an empty one
//           is replaced by one of the kernel's own. This hides a text from a glance and from no one else.
//   -1      the reverse, with the same key
//   "B64X"  Base64 with padding
//   "B64D"  the bytes of the Base64 letters; an end that makes no byte is dropped
//   "HEXX"  each byte as two upper-case digits and a blank
//   "HEXD"  the bytes of the pairs of digits; a digit without another is dropped
//
// `ok` is false, and the result empty, for any other mode.
std::string TransformBytes(std::string_view key, std::int32_t mode, std::string_view bytes, bool& ok);

}  // namespace tarn
