// SPDX-License-Identifier: Apache-2.0
//
// The parts of the text of a version block, for its writer (versioninfo.cpp) and its editor (versioninfo_edit.cpp). Cost:
// linear in the texts.
#pragma once

#include "library/dialogs/versioninfo.h"

#include <string>
#include <string_view>

namespace tarn::detail {

inline constexpr std::string_view NullMark = "\\0";

struct VersionKey {
    std::string_view name;
    std::string VersionFields::*field;
};
inline constexpr VersionKey versionKeys[] = {
    {"Comments", &VersionFields::comments},        {"CompanyName", &VersionFields::company},
    {"LegalCopyright", &VersionFields::copyright}, {"LegalTrademarks", &VersionFields::trademarks},
    {"ProductName", &VersionFields::product},      {"FileDescription", &VersionFields::description},
};

// The text that a token of the block says, and back: in quotes, with the mark of its end where `null` is set.
std::string versionText(const std::string& token);
std::string quotedVersionText(const std::string& text, bool null);
// Four numbers; those that are missing are 0.
std::string versionNumbers(const std::string& version, std::string_view separator);
std::string versionValueLine(std::string_view key, const std::string& text);  // with its line end

}  // namespace tarn::detail
