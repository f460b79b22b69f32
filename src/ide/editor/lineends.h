// SPDX-License-Identifier: GPL-3.0-or-later
//
// Line ends of what is put into a text: Copy makes CR LF of all of them, and a text of LF alone must not get others by
// what is pasted into it. Cost: linear in both texts.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

// `text` with the line ends of `around`, CR LF or LF; as it is if `around` has none, or both kinds.
std::string ADOPTLINEENDS(const std::string& text, std::string_view around);

}  // namespace tarn
