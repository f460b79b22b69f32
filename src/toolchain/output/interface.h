// SPDX-License-Identifier: Apache-2.0
//
// What stands at the head of each generated C file.
#pragma once

#include <string_view>

namespace tarn::toolchain {

extern const std::string_view CoreText;  // core.h, built in

inline constexpr const char* OnerrorSymbol = "onerror";

}  // namespace tarn::toolchain
