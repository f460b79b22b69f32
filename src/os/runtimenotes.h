// SPDX-License-Identifier: Apache-2.0
//
// Short notes that processes of one user leave for each other: files in the user's run-time folder, which nobody else
// can enter. A reader finds the old note or the new one, never a part. They are gone when the session ends at the latest.
//
// Names are letters, digits, '-', '_' and '.', at most 100 of them, and begin with a letter; any other is not written and
// not found. Cost: some five system calls each; listing reads the folder.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::os {

inline constexpr std::size_t MaximalNote = 65536;  // bytes

// False if it could not be written: the note of before is then as it was.
bool putNote(const std::string& name, std::string_view text);
// Empty if there is none, or if it is longer than a note can be.
std::string getNote(const std::string& name);
void dropNote(const std::string& name);
// The names that begin so, in no order.
std::vector<std::string> notesWith(std::string_view start);

}  // namespace tarn::os
