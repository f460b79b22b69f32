// SPDX-License-Identifier: Apache-2.0
//
// Which texts a file of a format can hold so that the text that is read back is the one that was written.
// Delimited text is written without quotes, and XML without an encoding, so not every text fits.
//
// Each function looks at the bytes from `from` on; what stands ahead of them counts only as such.
// Cost: linear in the bytes; nothing is allocated.
#pragma once

#include "kernel/data/format.h"

#include <cstddef>
#include <string_view>

namespace tarn {

struct TextMisfit {
    enum class Way { OtherFormat, OtherSeparator, OtherEncoding };  // by which the text could be held
    std::size_t at = std::string_view::npos;                        // the byte that does not fit
    std::string_view why{};                                         // "holds a line end"
    Way way = Way::OtherFormat;
    [[nodiscard]] bool any() const { return at != std::string_view::npos; }
};

TextMisfit MisfitOfCell(std::string_view text, std::size_t from, char separator);
TextMisfit MisfitOfLine(std::string_view text, std::size_t from);
TextMisfit MisfitOfXml(std::string_view text, std::size_t from);
TextMisfit MisfitOfXbase(std::string_view text, std::size_t from);

}  // namespace tarn
