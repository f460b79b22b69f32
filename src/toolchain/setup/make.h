// SPDX-License-Identifier: Apache-2.0
//
// Makes an installer of a script: one executable file, which is there whole or not at all; one of that name that was there
// before stays until then.
#pragma once

#include "toolchain/setup/script.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::setup {

struct MakeRequest {
    std::string script;        // file
    std::string made;          // file
    std::string setupProgram;  // what installs: goes in front of the package
    std::string askProgram =
        {};  // what asks in windows; empty, or without the libraries that it needs: left out
    std::string_view first = {};  // the bytes of what is started; empty: what installs is started itself
    // What questions call the program, by the head and the file of its compiled resources (empty: there is none); without it,
    // or when it tells nothing, they take the title, else the name.
    std::function<std::string(const Package&, const std::string& resources)> product = {};
};
// The bytes of what is started (first.c), which are built in; empty for a processor that it is not written for.
std::string_view firstProgram();
// What is wrong, for the user, one a line with file and line; empty on success. Cost: reads each file twice.
std::string makeInstaller(const MakeRequest& request);

}  // namespace tarn::setup
