// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/string_text.h"

namespace tarn {

NarrowText::NarrowText(const StringDescriptor* s) {
    if (KindOf(s) != KindString) return;
    view_ = StringView(s);
    if (CharacterWidth != 1) {
        const std::int32_t length = StringLength(s);
        for (std::int32_t i = 1; i <= length; ++i) {
            const std::int32_t c = StringGetChar(s, i);
            narrow_ += static_cast<char>(c < 128 ? c : '?');
        }
        view_ = narrow_;
    }
    if (view_.ends_with('\0')) view_.remove_suffix(1);
}

}  // namespace tarn
