// SPDX-License-Identifier: GPL-3.0-or-later
//
// What makes one list of texts of another: whole texts that stay, texts of which a part becomes another, and new ones. A
// history keeps these instead of the lists.
//
// A delta belongs to the list that it was made from, which the caller has to give again; with another one the result means
// nothing, but nothing is read beyond its texts.
// Cost: the lists are hashed; a delta of one changed text is some 10 bytes longer than what is new in it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// Empty for two lists that are the same.
std::string LISTDELTA(const std::vector<std::string>& from, const std::vector<std::string>& to);
std::vector<std::string> DELTAAPPLIED(const std::vector<std::string>& from, std::string_view delta);

// Numbers from 0 on, in as few bytes as they need.
void PUTNUMBER(std::string& bytes, std::size_t number);
// Takes one off the front; 0 where none is.
std::size_t TAKENUMBER(std::string_view& bytes);

}  // namespace tarn
