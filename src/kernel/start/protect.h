// SPDX-License-Identifier: Apache-2.0
//
// Reports of what the program cannot go on after. Nothing here allocates.
#pragma once

#include <cstdint>

namespace tarn {

// Builds title and text of a fatal report and shows them. Never allocates. Null texts count as empty.
void ReportFatal(std::int32_t code, const char* message, const char* file, const char* function,
                 std::int32_t line, const char* extra);
// The same with the class, function and line that run now.
void ReportFatalHere(std::int32_t code);

}  // namespace tarn
