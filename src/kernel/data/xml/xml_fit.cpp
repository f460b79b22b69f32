// SPDX-License-Identifier: Apache-2.0
//
// Which texts fit into XML.
#include "kernel/data/textfit.h"

#include "os/text/utf8.h"

namespace tarn {

namespace {

// The bytes of the UTF-8 character at `i` that XML may hold; 0 for what is none.
std::size_t xmlCharacter(std::string_view text, std::size_t i) {
    const auto first = static_cast<unsigned char>(text[i]);
    if (first < 0x80) return first >= 0x20 || first == '\t' || first == '\n' ? 1 : 0;
    const std::string_view character = text.substr(i, utf8::lengthOfFirst(text.substr(i)));
    return character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF" ? 0 : character.size();
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
