// SPDX-License-Identifier: Apache-2.0
//
// How the parts of the module profstr read and write a whole settings file. Both set the error cell on
// failure.
#pragma once

#include <string>
#include <string_view>

namespace tarn::detail {

// The text of the file; valid until the next call. A missing file and an empty name read as empty. `readable`
// is false when the file is there and cannot be read: nothing may be written then.
std::string_view readProfile(const std::string& file, bool& readable);
bool writeProfile(const std::string& file, std::string_view text);

}  // namespace tarn::detail
