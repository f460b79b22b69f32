// SPDX-License-Identifier: Apache-2.0
//
// Where the user wants a program to stop first, told by the environment when it starts one: the value of `RunTo` in the
// section "debug", a class and a line. It is for one program and one stop.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::string_view RunToKey = "RunTo";

struct RunToPlace {
    std::string className;  // empty: nothing was told
    std::int32_t line = 0;
};

// Takes it out of the file, so that the next program runs on. A value of another form is nothing; one that cannot be taken
// out of the file counts all the same. Cost: one read of the file, and a write if something was told.
RunToPlace TakeRunTo(std::string_view settingsFile);

}  // namespace tarn
