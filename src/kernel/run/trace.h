// SPDX-License-Identifier: Apache-2.0
//
// Where the trace of level 2 goes.
#pragma once

#include <string>

namespace tarn {

std::string TraceFile();  // full path; one file for all programs of the user, who may not have any yet

}  // namespace tarn
