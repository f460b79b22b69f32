// SPDX-License-Identifier: Apache-2.0
//
// The code page of an Xbase file, by the byte 29 of its header.
#pragma once

#include <string>
#include <string_view>

namespace tarn::datatool {

// "code page 1252"; "code page mark 5A" for one that is not known, "" for a header without one.
std::string codePageOf(std::string_view header);

}  // namespace tarn::datatool
