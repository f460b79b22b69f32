// SPDX-License-Identifier: Apache-2.0
//
// What the parts of the module codewiz share. Each is a pure function of its arguments, without an error of its own.
#pragma once

#include "library/source/codewiz.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn::detail {

// The text with its loops written out; nothing if it gets too long, or its loops nest too deep.
std::optional<std::string> unrollLoops(std::string text);
// With the values of parameters put in; nothing if it gets too long.
std::optional<std::string> fillParameters(const TemplateParameters& parameters, std::string_view text);
std::string applyForms(std::string text);              // #UCASE( and its like
std::string applyLineCommands(std::string_view text);  // #//, #IF, #ELSE, #END
std::string joinContinuedLines(std::string_view text, bool crlf);

bool startsWith(std::string_view text, std::string_view word);  // in any case
std::string_view trimmed(std::string_view text);

}  // namespace tarn::detail
