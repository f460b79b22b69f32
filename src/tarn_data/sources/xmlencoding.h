// SPDX-License-Identifier: Apache-2.0
//
// XML that is not UTF-8: by its first bytes UTF-16 or UTF-32, or by its declaration Latin-1, Latin-9 or Windows-1252. It is read
// from a copy in UTF-8, and a note says so. What is declared to be in another encoding is refused, with the
// command that converts it. Without a declaration, bytes that are no UTF-8 stay what they are.
//
// Cost: for other encodings one pass over the file, and a copy of it.
#pragma once

#include "tarn_data/commands/commands.h"

#include <string>
#include <string_view>

namespace tarn::datatool {

// The encoding that the declaration at the head of a file names; "" when there is none.
std::string_view declaredEncoding(std::string_view beginning);
// Sets `source.path` to the copy where one is needed.
Problem takeXmlEncoding(Source& source);

}  // namespace tarn::datatool
