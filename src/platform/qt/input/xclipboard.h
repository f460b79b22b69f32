// SPDX-License-Identifier: Apache-2.0
//
// The text that another program has on the clipboard of an X server, with a bound. The toolkit fetches all of it before
// it answers, and a text of 100,000,000 bytes keeps the program from its user for seconds; this stops at what a text of
// the language can hold. Cost: the bytes fetched, some 30 MB a second.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace tarn::platform::qt {

// What a text of the language can hold.
inline constexpr std::size_t LargestText = 4096000;

// At most `most` bytes, as they came. Nothing where there is no X server, or its clipboard has no text in UTF-8 (which
// an empty one does not have either): then the toolkit knows more. A program that does not answer for a second has no
// text. Not for a clipboard of this program's own, which could not answer meanwhile.
std::optional<std::string> foreignClipboard(std::size_t most);

}  // namespace tarn::platform::qt
