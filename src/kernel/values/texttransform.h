// SPDX-License-Identifier: Apache-2.0
//
// The text encoder for strings of the language; see kernel/text/transform.h for its modes.
#pragma once

#include "kernel/values/values.h"

#include <cstdint>

namespace tarn {

// 756 when `key`, `text` or `result` is no string; 753 for a mode that is none, with an empty result. `result`
// is assigned as StringAssignView does it, and may be `key` or `text`. Texts have one byte for each character.
void TextTransform(const StringDescriptor* key, std::int32_t mode, const StringDescriptor* text,
                   StringDescriptor* result);

}  // namespace tarn
