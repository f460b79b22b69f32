// SPDX-License-Identifier: Apache-2.0
//
// What the program family shares. Only the system library includes this.
#pragma once

#include <string>
#include <vector>

namespace tarn::detail {

// The key whose default value is the command of the browser, with "%1" for the page.
inline constexpr char BrowserKey[] = "http\\shell\\open\\command";

// The program's file: one with a folder is looked for there alone, another on PATH. Empty if it is not there.
std::string FindProgram(const std::string& program);
// Starts a program and does not wait for it. False, without an error, if it cannot be started.
bool StartProgram(const std::string& program, const std::vector<std::string>& arguments);

// The address of a file, by its full path, or one from the current folder.
std::string FileUrl(const std::string& path);

}  // namespace tarn::detail
