// SPDX-License-Identifier: Apache-2.0
//
// What the texts of all kinds of number share: the field that they stand in, and the caller's buffer that
// they go to. Only the modules of numbers, conversions, texts of fields and the C interface include this.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::int32_t WidestField = 100;

// Filled up with blanks to the width: on the left, or on the right for a negative one. Never cut.
inline std::string Padded(std::string text, std::int32_t width) {
    const auto field = static_cast<std::size_t>(std::abs(std::clamp(width, -WidestField, WidestField)));
    if (text.size() < field) text.insert(width < 0 ? text.size() : 0, field - text.size(), ' ');
    return text;
}

// Without the blanks around it.
inline std::string_view Unpadded(std::string_view text) {
    const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

// The text with its NUL, or only a NUL when that is more than `size` bytes. Nothing without room for a NUL.
inline void PutText(std::string_view text, char* buffer, std::int32_t size) {
    if (buffer == nullptr || size < 1) return;
    const std::size_t count = text.size() < static_cast<std::size_t>(size) ? text.size() : 0;
    buffer[text.copy(buffer, count)] = 0;
}

}  // namespace tarn
