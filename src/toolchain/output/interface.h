// SPDX-License-Identifier: Apache-2.0
//
// What stands at the head of each generated C file.
#pragma once

#include <string_view>

namespace tarn::toolchain {

extern const std::string_view
    InterfaceText;  // the kernel's C interface, made by the build from kernel/api/api.h
extern const std::string_view PreludeText;  // short forms of library functions

inline constexpr const char* OnerrorSymbol = "onerror";

}  // namespace tarn::toolchain
