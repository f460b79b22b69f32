// SPDX-License-Identifier: Apache-2.0
//
// What the modules of strings share: arguments as a Text (where the characters stand, how many, how wide
// each), so that operations work the same for strings, NUL-ended texts, length-prefixed texts and bytes. Only
// they include this.
#pragma once

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <cstring>

namespace tarn::strings {

struct Text {
    const char* bytes = nullptr;
    std::int32_t count = 0;  // characters
    std::int32_t width = 1;  // bytes of each
};

inline std::size_t bytesOf(std::int32_t characters) {
    return static_cast<std::size_t>(characters) * static_cast<std::size_t>(CharacterWidth);
}

inline bool isString(const StringDescriptor* s) {
    return s != nullptr && s->tag == TagString && (s->maxlength >= 1 || s->maxlength == UNBOUNDED) &&
           s->size >= 0 && s->length >= 0 && bytesOf(s->length) <= static_cast<std::size_t>(s->size);
}

template <class... Strings>
bool accept(const Strings*... strings) {
    if ((isString(strings) && ...)) [[likely]]
        return true;
    SetError(ERR_STRING_TYPE);
    return false;
}

inline Text textOf(const StringDescriptor* s) {
    return {At(s->data), s->length, CharacterWidth};
}
inline Text textOf(std::string_view bytes) {
    return {bytes.data(), static_cast<std::int32_t>(std::min<std::size_t>(bytes.size(), INT32_MAX)), 1};
}

inline std::int32_t characterAt(const Text& text, std::int32_t index) {
    const char* at =
        text.bytes + std::size_t{static_cast<std::uint32_t>(index)} * static_cast<std::size_t>(text.width);
    if (text.width == 1) return static_cast<unsigned char>(*at);
    std::uint16_t wide = 0;
    std::memcpy(&wide, at, sizeof wide);
    return wide;
}

inline void storeCharacter(char* at, std::int32_t c) {
    if (CharacterWidth == 1) {
        *at = static_cast<char>(c);
        return;
    }
    const auto wide = static_cast<std::uint16_t>(c);
    std::memcpy(at, &wide, sizeof wide);
}

}  // namespace tarn::strings
