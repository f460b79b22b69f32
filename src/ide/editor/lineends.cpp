// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/lineends.h"

#include "library/system/system.h"

MODULE("editmenu")

namespace tarn {

std::string ADOPTLINEENDS(const std::string& text, std::string_view around) {
    FRAME(ADOPTLINEENDS);
    bool feeds = false, pairs = false;
    for (std::size_t at = around.find('\n'); at != std::string_view::npos; at = around.find('\n', at + 1)) {
        const bool pair = at > 0 && around[at - 1] == '\r';
        (pair ? pairs : feeds) = true;
    }
    if (feeds == pairs) return text;
    return pairs ? STRNL2CRNL(text) : STRREPLACE(text, "\r\n", "\n", false);
}

}  // namespace tarn
