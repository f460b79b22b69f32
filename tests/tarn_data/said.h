// SPDX-License-Identifier: Apache-2.0
//
// For tests that run commands in this process: what they say is gathered here.
#pragma once

#include <string>

namespace tarn::datatool {

std::string& said();

}  // namespace tarn::datatool
