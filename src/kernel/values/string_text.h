// SPDX-License-Identifier: Apache-2.0
//
// The text of a string for readers that take bytes: a byte for each character, whatever the width of a
// character is.
#pragma once

#include "kernel/values/strings.h"

#include <string>
#include <string_view>

namespace tarn {

// Characters from 128 up become '?' when they are wider than a byte: they stand in no number, word or date.
// The one NUL that ends a terminated string is no part of its text. Empty for what is no string.
class NarrowText {
public:
    explicit NarrowText(const StringDescriptor* s);
    [[nodiscard]] std::string_view view() const { return view_; }

private:
    std::string narrow_;
    std::string_view view_;
};

}  // namespace tarn
