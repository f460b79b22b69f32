// SPDX-License-Identifier: Apache-2.0
//
// Small text helpers of this layer. Case is that of ASCII letters; all other bytes stand for themselves.
#pragma once

#include "os/text/ascii.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn::platform {

using ascii::upper;
std::string upper(std::string_view text);
bool sameText(std::string_view a, std::string_view b);  // without regard to case
bool lessText(std::string_view a, std::string_view b);  // an order without regard to case
std::string_view trim(std::string_view text);           // blanks, tabs and carriage returns at both ends
bool isIdentifier(std::string_view text);               // a letter or "_", then letters, digits and "_"
// The number that is the whole of `text`, decimal or with 0x; none if it is no number or too large.
std::optional<int> wholeNumber(std::string_view text);
// The number at the start of `text`, 0 if there is none ("1-Yes" gives 1).
int leadingNumber(std::string_view text);

struct LessText {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return lessText(a, b); }
};

}  // namespace tarn::platform
