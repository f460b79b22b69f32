// SPDX-License-Identifier: Apache-2.0
//
// Which texts fit into a field of an Xbase file.
#include "kernel/data/textfit.h"
#include "kernel/data/xbase/xbase.h"

namespace tarn {

TextMisfit MisfitOfXbase(std::string_view text, std::size_t from) {
    const std::size_t zero = text.find('\0', from);
    if (zero != std::string_view::npos) return {zero, "holds a zero byte"};
    const auto longest = static_cast<std::size_t>(MaxXbaseFieldLength);
    if (text.size() > longest) return {longest, "has more than 255 characters"};
    return {};
}

}  // namespace tarn
