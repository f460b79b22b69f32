// SPDX-License-Identifier: Apache-2.0
//
// A program that runs beside this one, whose output is read and whose input is written here.
#pragma once

#include "os/process.h"

#include <memory>
#include <string>

namespace tarn {

// Starts the program as EXEC does, with the same arguments, files behind " > " and " < ", and codes, and waits for nothing.
// What no file is named for goes through pipes: see os::Child. Null, with the code in the error cell, if it does not start.
std::unique_ptr<os::Child> EXECPIPED(const std::string& program, const std::string& arguments,
                                     const std::string& folder);

}  // namespace tarn
