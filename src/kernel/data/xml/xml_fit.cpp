// SPDX-License-Identifier: Apache-2.0
//
// Which texts fit into XML.
#include "kernel/data/textfit.h"

namespace tarn {

namespace {

// The bytes of the UTF-8 character at `i` that XML may hold; 0 for what is none.
std::size_t xmlCharacter(std::string_view text, std::size_t i) {
    const auto byte = [&](std::size_t n) {
        return n < text.size() ? static_cast<unsigned char>(text[n]) : 0U;
    };
    const unsigned first = byte(i);
    if (first < 0x80) return first >= 0x20 || first == '\t' || first == '\n' ? 1 : 0;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4) return 0;
    unsigned code = first & (0xFFU >> (length + 1));
    for (std::size_t n = 1; n < length; ++n) {
        if ((byte(i + n) & 0xC0U) != 0x80) return 0;
        code = code << 6U | (byte(i + n) & 0x3FU);
    }
    constexpr unsigned least[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < least[length] || code > 0x10FFFF || surrogate || code == 0xFFFE || code == 0xFFFF ? 0
                                                                                                    : length;
}

}  // namespace

TextMisfit MisfitOfXml(std::string_view text, std::size_t from) {
    for (std::size_t i = from; i < text.size();) {
        const std::size_t length = xmlCharacter(text, i);
        if (length == 0 && static_cast<unsigned char>(text[i]) < ' ')
            return {i, "holds a control character, which XML cannot hold"};
        if (length == 0)
            return {i, "holds a byte that XML cannot hold (it is no UTF-8)", TextMisfit::Way::OtherEncoding};
        i += length;
    }
    return {};
}

}  // namespace tarn
